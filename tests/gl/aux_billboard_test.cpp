// Pin labels in a 300 x 200 window at 4 pixels a millimetre, on both render paths: the plate's
// anchor and hit, the mark gate that lets one of two labels on a line show, the front test, the
// description lines, and the plate kept within three quarters of the view while the view pans
// the pinned point off screen.
#include "VxAuxTestScene.h"
#include "VxTestRenderPath.h"

#include <GL/glew.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/NuCameraSnapshot.h>
#include <frame/VxOpenGLRender.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kW = 300;
constexpr int kH = 200;

VxViewRegion* View() {
    return VxViewManager::GetInstance()->GetView(0);
}

class AuxBillBoardTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
    }
    void TearDown() override {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        GLint program = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        EXPECT_EQ(program, 0);
        GLint depthMask = 0;
        glGetIntegerv(GL_DEPTH_WRITEMASK, &depthMask);
        EXPECT_EQ(depthMask, GL_TRUE);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        VxApplyRenderPath(VxTestRenderPath::Fixed);
    }
    // Text type before text: the glyph lists are built for the type.
    static VxAuxBillBoard3d* AddLabel(const wchar_t* text, const VxPoint& start,
                                      const VxPoint& stop, int mark = 0) {
        auto* b = new VxAuxBillBoard3d(View());
        b->SetTextType(Text_ModelDepth);
        b->SetText(CString(text));
        b->SetLine(start, stop);
        b->SetMark(mark);
        b->SetComponentsColor(VxColor(255, 140, 0), VxColor(0, 0, 255), VxColor(0, 0, 0));
        VxAuxTestScene::Aux()->AddAuxObject(b);
        return b;
    }
    static CPoint PlateCentre(VxAuxBillBoard3d* b) {
        double x = 0, y = 0;
        for (int i = 0; i < 4; ++i) {
            const CPoint p = VxAuxTestScene::Render()->MapModelPointToScreen(
                View(), b->GetPlateCorner(i), nullptr);
            x += p.x / 4.0;
            y += p.y / 4.0;
        }
        return CPoint(int(std::lround(x)), int(std::lround(y)));
    }
    static inline bool open = false;
};

} // namespace

TEST_P(AuxBillBoardTest, PlateStandsOnTheLineEndAndIsHitInsideOnly) {
    // Close enough for the glyphs to be legible on both paths.
    VxAuxTestScene scene(10.0, false);
    VxAuxBillBoard3d* label = AddLabel(L"11", VxPoint(0, -9, 0), VxPoint(0, 0, 0));
    EXPECT_FALSE(label->HitTest(150, 100)) << "nothing placed before the first drawing";
    ASSERT_EQ(VxAuxTestScene::Aux()->GetBillBoards().size(), 1u);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, std::string("aux_billboard_plate_") +
                                  (GetParam() == VxTestRenderPath::Shader ? "shader" : "fixed"));
    ASSERT_TRUE(label->IsPlateValid());
    EXPECT_EQ(label->GetAnchor(), AnchorPosition_Below);
    EXPECT_TRUE(label->IsFront());
    // The diamond's lower tip sits on the line's end (the window's centre), the plate above it.
    const CPoint tip =
        VxAuxTestScene::Render()->MapModelPointToScreen(View(), label->GetPlateCorner(3), nullptr);
    EXPECT_NEAR(tip.x, 150, 1);
    EXPECT_NEAR(tip.y, 100, 1);
    const CPoint c = PlateCentre(label);
    EXPECT_NEAR(c.x, 150, 1);
    EXPECT_LT(c.y, 95);
    const int half = 100 - c.y; // centre to tip, in pixels
    EXPECT_TRUE(label->HitTest(c.x, c.y));
    EXPECT_TRUE(label->HitTest(c.x + half - 4, c.y));
    EXPECT_FALSE(label->HitTest(c.x + half + 10, c.y));
    EXPECT_FALSE(label->HitTest(c.x, c.y - half - 10));
    // White plate with dark glyphs on it, a blue rim, and the orange leader below.
    int white = 0;
    int black = 0;
    for (int y = c.y - half / 2; y <= c.y + half / 2; ++y) {
        for (int x = c.x - half + 1; x <= c.x + half / 3; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            white += (p[0] > 220 && p[1] > 220 && p[2] > 220) ? 1 : 0;
            black += (p[0] < 90 && p[1] < 90 && p[2] < 90) ? 1 : 0;
        }
    }
    EXPECT_GT(white, 20);
    EXPECT_GT(black, 5) << "the label's glyphs";
    int rim = 0;
    for (int x = c.x - half - 2; x <= c.x - half / 2; ++x) {
        const std::uint8_t* p = img.Pixel(x, c.y);
        rim += (p[2] > 150 && p[0] < 100) ? 1 : 0;
    }
    EXPECT_GE(rim, 1) << "blue rim at the left tip";
    const std::uint8_t* leader = img.Pixel(150, 150);
    EXPECT_GT(leader[0], 200);
    EXPECT_GT(leader[1], 100);
    EXPECT_LT(leader[2], 80);
    VxAuxTestScene::Aux()->HitTest(c);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), label);
    VxAuxTestScene::Aux()->SetHitObject(nullptr);

    // With several views the frame's camera record holds the last view drawn, while the
    // registry draws each view under its own matrices: the label must not follow the record.
    scene.Frame();
    VxXForm other = View()->GetXForm();
    other.SetScale(other.GetScale() * 2.0);
    other.SetTranslation(other.GetTranslation() + VxVector(7, -3, 0));
    NuCameraSnapshot::GetInstance()->SetViewTransform(&other);
    VxAuxTestScene::Aux()->Render();
    const VxTestImage underOther = VxAuxTestScene::Read();
    // The glyphs may move by a pixel: the renderer offsets each glyph by its bearing along the
    // model axes of its own space. Leader, plate and rim must not move at all.
    int differ = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            if (std::abs(y - c.y) <= half / 2 && x >= c.x - half && x <= c.x + half / 2) {
                continue;
            }
            const std::uint8_t* a = img.Pixel(x, y);
            const std::uint8_t* b = underOther.Pixel(x, y);
            differ += (std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]) > 60);
        }
    }
    EXPECT_EQ(differ, 0) << "the same pixels whatever it holds";
}

TEST_P(AuxBillBoardTest, FallingLineSetsThePlateToTheSideAndLowerDown) {
    VxAuxTestScene scene(4.0, false);
    VxAuxBillBoard3d* label = AddLabel(L"31", VxPoint(0, 10, 0), VxPoint(0, 0, 0));
    EXPECT_EQ(label->GetAnchor(), AnchorPosition_Side);
    EXPECT_DOUBLE_EQ(label->GetTextPos()[1], -5.0) << "dropped by five millimetres";
    scene.FrameWithAux();
    ASSERT_TRUE(label->IsPlateValid());
    const CPoint end = scene.ToScreen(VxPoint(0, -5, 0));
    const CPoint c = PlateCentre(label);
    EXPECT_GT(c.x, end.x + 5) << "to the right of the line's end";
    EXPECT_LT(c.y, end.y - 3) << "standing on its level";
}

TEST_P(AuxBillBoardTest, PlateBehindItsPinIsNotDrawnAndDescriptionShowsOnRequest) {
    VxAuxTestScene scene(10.0, false);
    const VxTestImage bare = scene.FrameWithAux();
    // A leader running 20 mm away from the viewer: the plate would stand behind its pin.
    VxAuxBillBoard3d* behind = AddLabel(L"41", VxPoint(0, 0, 0), VxPoint(0, 2, -20));
    VxTestImage img = scene.FrameWithAux();
    EXPECT_FALSE(behind->IsFront());
    EXPECT_FALSE(behind->IsPlateValid());
    EXPECT_EQ(img.rgba, bare.rgba) << "nothing drawn for it";
    VxAuxTestScene::Aux()->RemoveAuxObject(behind, true);

    // A second line is a description: under the plate only when shown.
    VxAuxBillBoard3d* label = AddLabel(L"11\nUR1", VxPoint(0, -9, 0), VxPoint(0, 0, 0));
    img = scene.FrameWithAux();
    const CPoint c = PlateCentre(label);
    const int half = 100 - c.y;
    const auto darkBelow = [&](const VxTestImage& im) {
        int dark = 0;
        for (int y = c.y + half / 3; y <= std::min(c.y + 2 * half, kH - 1); ++y) {
            for (int x = std::max(c.x - 2 * half, 0); x <= std::min(c.x + 2 * half, kW - 1); ++x) {
                const std::uint8_t* p = im.Pixel(x, y);
                dark += (p[0] < 90 && p[1] < 90 && p[2] < 90) ? 1 : 0;
            }
        }
        return dark;
    };
    const int without = darkBelow(img);
    label->SetShowDescript(true);
    img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, std::string("aux_billboard_descript_") +
                                  (GetParam() == VxTestRenderPath::Shader ? "shader" : "fixed"));
    EXPECT_GT(darkBelow(img), without + 10);
}

TEST_P(AuxBillBoardTest, OfTwoMarkedLabelsOnOneLineExactlyOneShows) {
    VxAuxTestScene scene(4.0, false);
    VxAuxBillBoard3d* even = AddLabel(L"12", VxPoint(0, -10, 0), VxPoint(0, 0, 0), 2468);
    VxAuxBillBoard3d* odd = AddLabel(L"13", VxPoint(0, -10, 0), VxPoint(0, 0, 0), 1357);
    scene.FrameWithAux();
    EXPECT_NE(even->IsPlateValid(), odd->IsPlateValid());
    EXPECT_TRUE(odd->IsPlateValid()) << "the start lies below the stop";
    EXPECT_FALSE(even->HitTest(150, 100));

    // Turned upside down the start lies above: the other label's turn.
    auto* upper = AddLabel(L"14", VxPoint(0, 10, 0), VxPoint(0, 0, 0), 2468);
    auto* lower = AddLabel(L"15", VxPoint(0, 10, 0), VxPoint(0, 0, 0), 1357);
    scene.FrameWithAux();
    EXPECT_TRUE(upper->IsPlateValid());
    EXPECT_FALSE(lower->IsPlateValid());
}

TEST_P(AuxBillBoardTest, PlateStaysWithinThreeQuartersOfTheViewWhileItPans) {
    VxAuxTestScene scene(4.0, false);
    VxAuxBillBoard3d* label = AddLabel(L"21", VxPoint(0, -10, 0), VxPoint(0, 0, 0));
    const double tolerance = 2.0 / kH; // a pixel of rounding either way
    int checked = 0;
    for (int step = -12; step <= 12; ++step) {
        for (int axis = 0; axis < 2; ++axis) {
            VxXForm xf = View()->GetXForm();
            // Up to 60 mm: the pinned point leaves the 75 x 50 mm view on every side.
            xf.SetTranslation(axis == 0 ? VxVector(step * 5.0, 0, 0) : VxVector(0, step * 5.0, 0));
            View()->SetXForm(xf);
            scene.FrameWithAux();
            ASSERT_TRUE(label->IsPlateValid());
            for (int i = 0; i < 4; ++i) {
                const CPoint p = VxAuxTestScene::Render()->MapModelPointToScreen(
                    View(), label->GetPlateCorner(i), nullptr);
                const double nx = 2.0 * p.x / kW - 1.0;
                const double ny = 1.0 - 2.0 * p.y / kH;
                EXPECT_LE(std::abs(nx), 0.75 + tolerance) << "step " << step << " axis " << axis;
                EXPECT_LE(std::abs(ny), 0.75 + tolerance) << "step " << step << " axis " << axis;
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 25 * 2 * 4);
}

VX_BOTH_RENDER_PATHS(AuxBillBoardTest);
