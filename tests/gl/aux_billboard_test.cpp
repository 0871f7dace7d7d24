// Pin labels in a 300 x 200 window at 4 pixels a millimetre: the plate's hit, the mark gate that
// lets one of two labels on a line show, and the plate kept within three quarters of the view
// while the view pans the pinned point off screen.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace {

constexpr int kW = 300;
constexpr int kH = 200;

VxViewRegion* View() {
    return VxViewManager::GetInstance()->GetView(0);
}

class AuxBillBoardTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }
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

TEST_F(AuxBillBoardTest, PlateIsHitAtItsCentreAndNotTenPixelsOutside) {
    VxAuxTestScene scene(4.0, false);
    VxAuxBillBoard3d* label = AddLabel(L"11", VxPoint(0, -10, 0), VxPoint(0, 0, 0));
    EXPECT_FALSE(label->HitTest(150, 100)) << "nothing placed before the first drawing";
    ASSERT_EQ(VxAuxTestScene::Aux()->GetBillBoards().size(), 1u);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_billboard_plate");
    ASSERT_TRUE(label->IsPlateValid());
    const CPoint c = PlateCentre(label);
    EXPECT_NEAR(c.x, 150, 2);
    EXPECT_NEAR(c.y, 100, 2);
    EXPECT_TRUE(label->HitTest(c.x, c.y));
    // The diamond reaches 3 mm (12 pixels) either side of its centre.
    EXPECT_TRUE(label->HitTest(c.x + 8, c.y));
    EXPECT_FALSE(label->HitTest(c.x + 12 + 10, c.y));
    EXPECT_FALSE(label->HitTest(c.x, c.y - 12 - 10));
    // White plate with black glyphs on it (they start 2.7 mm left of the centre, 1.8 mm high),
    // and the orange leader below.
    int white = 0;
    int black = 0;
    for (int y = c.y - 8; y <= c.y + 8; ++y) {
        for (int x = c.x - 11; x <= c.x + 4; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            white += (p[0] > 220 && p[1] > 220 && p[2] > 220) ? 1 : 0;
            black += (p[0] < 60 && p[1] < 60 && p[2] < 60) ? 1 : 0;
        }
    }
    EXPECT_GT(white, 20);
    EXPECT_GT(black, 5);
    const std::uint8_t* leader = img.Pixel(150, 100 + 30);
    EXPECT_GT(leader[0], 200);
    EXPECT_GT(leader[1], 100);
    VxAuxTestScene::Aux()->HitTest(c);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), label);
}

TEST_F(AuxBillBoardTest, OfTwoMarkedLabelsOnOneLineExactlyOneShows) {
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

TEST_F(AuxBillBoardTest, PlateStaysWithinThreeQuartersOfTheViewWhileItPans) {
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
