// Texts and the axis cross read back from real frames: screen texts placed from the top-left and
// from the bottom-right, outline text that faces the viewer through a roll and grows with zoom,
// the depth-tested and the always-on-top model forms over the grey slab (x < 0, top at z = 1),
// re-texting without leaking display lists, and the axis cross kept to its corner, deaf to zoom
// and pan but turning with the model.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>
#include <cstdlib>

namespace {

constexpr int kW = 300;
constexpr int kH = 200;

struct Box {
    int x0 = 1 << 30, y0 = 1 << 30, x1 = -1, y1 = -1; // inclusive; empty when x1 < 0
    int count = 0;
    bool Empty() const { return count == 0; }
    int Width() const { return x1 - x0 + 1; }
    int Height() const { return y1 - y0 + 1; }
};

// Bounding box of the pixels for which `on` holds (y from the top).
template <typename On> Box InkBox(const VxTestImage& img, On on) {
    Box b;
    for (int y = 0; y < img.height; ++y) {
        for (int x = 0; x < img.width; ++x) {
            if (on(img.Pixel(x, y))) {
                b.x0 = std::min(b.x0, x);
                b.y0 = std::min(b.y0, y);
                b.x1 = std::max(b.x1, x);
                b.y1 = std::max(b.y1, y);
                ++b.count;
            }
        }
    }
    return b;
}

bool IsWhite(const std::uint8_t* p) {
    return p[0] > 200 && p[1] > 200 && p[2] > 200;
}
bool IsGreen(const std::uint8_t* p) {
    return p[1] > 150 && p[0] < 80 && p[2] < 80;
}

VxViewRegion* View() {
    return VxViewManager::GetInstance()->GetView(0);
}

void Roll(double degrees) {
    VxXForm xf = View()->GetXForm();
    VxMatrix r = VxMatrix::Identity(3);
    const double a = degrees * 3.14159265358979 / 180.0;
    r[0][0] = std::cos(a);
    r[0][1] = -std::sin(a);
    r[1][0] = std::sin(a);
    r[1][1] = std::cos(a);
    xf.SetRotation(r);
    View()->SetXForm(xf);
}

// Display lists alive among the names handed out so far.
int LiveLists() {
    const GLuint probe = glGenLists(1);
    glDeleteLists(probe, 1);
    int n = 0;
    for (GLuint i = 1; i < probe; ++i) {
        n += glIsList(i) ? 1 : 0;
    }
    return n;
}

class AuxTextTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH, false); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }

    // A registered text; the registry owns it.
    static VxAuxText* AddText(Text_Type type, const wchar_t* s, const VxColor& c) {
        auto* t = new VxAuxText();
        t->SetTextType(type);
        t->SetColor(c);
        t->SetText(CString(s));
        VxAuxTestScene::Aux()->AddAuxObject(t);
        return t;
    }
    static inline bool open = false;
};

} // namespace

TEST_F(AuxTextTest, ScreenTextBoxesCountFromTopLeftAndBottomRight) {
    VxAuxTestScene scene(4.0, false);
    VxAuxText* a = AddText(Text_OnScreen, L"HH", VxColor(255, 255, 255));
    a->SetTextPos(CPoint(20, 30));
    const VxTestImage img = scene.FrameWithAux();
    ASSERT_GT(a->GetBitmapWidth(), 0);
    const int bh = a->GetBitmapHeight();
    Box ink = InkBox(img, IsWhite);
    ASSERT_FALSE(ink.Empty());
    // The bitmap stands on the raster point: above y = 30 (from the top), right of x = 20.
    EXPECT_GE(ink.x0, 20);
    EXPECT_LT(ink.x1, 20 + a->GetBitmapWidth());
    EXPECT_GE(ink.y0, 30 - bh);
    EXPECT_LT(ink.y1, 30);
    EXPECT_GT(ink.Height(), bh / 2) << "letters, not a speck";

    a->SetTextPos(CPoint(-60, -40));
    const VxTestImage img2 = scene.FrameWithAux();
    ink = InkBox(img2, IsWhite);
    ASSERT_FALSE(ink.Empty());
    EXPECT_GE(ink.x0, kW - 60);
    EXPECT_LT(ink.x1, kW - 60 + a->GetBitmapWidth());
    EXPECT_GE(ink.y0, kH - 40 - bh);
    EXPECT_LT(ink.y1, kH - 40);

    // The whole-window form lands at the same place, drawn once after the views.
    a->SetTextType(Text_OnScreenOnce);
    const VxTestImage img3 = scene.FrameWithAux();
    const Box once = InkBox(img3, IsWhite);
    EXPECT_EQ(once.x0, ink.x0);
    EXPECT_EQ(once.y1, ink.y1);
    EXPECT_EQ(once.count, ink.count);
}

TEST_F(AuxTextTest, CaptureIntoTheOffScreenBufferPlacesScreenTextByItsSize) {
    VxAuxTestScene scene(4.0, false);
    VxAuxText* a = AddText(Text_OnScreen, L"HH", VxColor(255, 255, 255));
    a->SetTextPos(CPoint(-40, -10));
    // A buffer smaller than the window: measured from the window's right edge the text would
    // fall outside it.
    constexpr int fw = 200;
    constexpr int fh = 120;
    VxFrameBufferObj* fbo = VxRenderStatus::GetInstance()->GetFrameBufObj();
    ASSERT_TRUE(fbo->Setup(fw, fh));
    fbo->Begin();
    scene.Frame();
    VxAuxTestScene::Aux()->Render();
    std::vector<std::uint8_t> rgba(size_t(fw) * fh * 4);
    glReadPixels(0, 0, fw, fh, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    fbo->End();
    fbo->Destory();
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < fh; ++y) { // bottom-up
        for (int x = 0; x < fw; ++x) {
            const std::uint8_t* p = &rgba[(size_t(y) * fw + x) * 4];
            if (!IsWhite(p)) {
                continue;
            }
            const bool box = x >= fw - 40 && x < fw - 40 + a->GetBitmapWidth() && y >= 10 &&
                             y < 10 + a->GetBitmapHeight();
            (box ? inside : outside) += 1;
        }
    }
    EXPECT_GT(inside, 20);
    EXPECT_EQ(outside, 0);
}

TEST_F(AuxTextTest, EmptyTextAndHiddenTypeDrawNothingAndLeaveStateAlone) {
    VxAuxTestScene scene(4.0, false);
    VxAuxText* a = AddText(Text_OnScreen, L"", VxColor(255, 255, 255));
    a->SetTextPos(CPoint(20, 30));
    VxAuxText* b = AddText(Text_Hidden, L"H", VxColor(255, 255, 255));
    b->SetTextPos(VxPoint(0, 0, 0));
    scene.Frame();
    const GLboolean lighting = glIsEnabled(GL_LIGHTING);
    glColor4f(0.25f, 0.5f, 0.75f, 1.0f);
    VxAuxTestScene::Aux()->Render();
    EXPECT_TRUE(InkBox(VxAuxTestScene::Read(), IsWhite).Empty());
    GLfloat c[4];
    glGetFloatv(GL_CURRENT_COLOR, c);
    EXPECT_FLOAT_EQ(c[0], 0.25f);
    EXPECT_FLOAT_EQ(c[2], 0.75f);
    GLint base = -1;
    glGetIntegerv(GL_LIST_BASE, &base);
    EXPECT_EQ(base, 0);
    EXPECT_EQ(glIsEnabled(GL_LIGHTING), lighting);
}

TEST_F(AuxTextTest, ModelTextFacesTheViewerThroughARollAndScalesWithZoom) {
    VxAuxTestScene scene(8.0, false);
    // "L" tells upright from upside down and mirrored: stem on the left, foot to the right.
    VxAuxText* t = AddText(Text_ModelNoDepth, L"L", VxColor(0, 255, 0));
    t->SetTextPos(VxPoint(2, -2, 0));
    ASSERT_NE(t->GetListBase(), VxAuxText::kNoList);
    // Ink of the four quadrants of the letter's box: the foot fills the lower right, the stem
    // the left, and the upper right stays nearly empty (serifs aside). A mirrored letter swaps
    // left and right, an upside-down one top and bottom.
    auto checkUpright = [](const VxTestImage& img, const char* what) {
        const Box b = InkBox(img, IsGreen);
        ASSERT_FALSE(b.Empty()) << what;
        ASSERT_GT(b.Height(), 8) << what;
        const int mx = (b.x0 + b.x1 + 1) / 2;
        const int my = (b.y0 + b.y1 + 1) / 2;
        int q[2][2] = {{0, 0}, {0, 0}}; // [lower][right]
        for (int y = b.y0; y <= b.y1; ++y) {
            for (int x = b.x0; x <= b.x1; ++x) {
                q[y >= my][x >= mx] += IsGreen(img.Pixel(x, y)) ? 1 : 0;
            }
        }
        EXPECT_GT(q[1][1], 2 * q[0][1]) << what << ": foot at the lower right";
        EXPECT_GT(q[0][0], 2 * q[0][1]) << what << ": stem at the upper left";
    };
    const VxTestImage flat = scene.FrameWithAux();
    const Box before = InkBox(flat, IsGreen);
    checkUpright(flat, "unrolled");
    // 2.5 mm em at 8 px/mm: a cap height of about 0.65 em.
    EXPECT_NEAR(before.Height(), 0.65 * 2.5 * 8.0, 4.0);

    Roll(90.0);
    const VxTestImage rolled = scene.FrameWithAux();
    const Box after = InkBox(rolled, IsGreen);
    checkUpright(rolled, "rolled 90 degrees");
    EXPECT_NEAR(after.Height(), before.Height(), 1.0);
    VxAuxTestScene::Save(rolled, "aux_text_rolled_L");

    Roll(0.0);
    VxXForm xf = View()->GetXForm();
    xf.SetScale(xf.GetScale() * 2.0);
    View()->SetXForm(xf);
    const Box zoomed = InkBox(scene.FrameWithAux(), IsGreen);
    EXPECT_NEAR(zoomed.Height(), 2.0 * before.Height(), 2.0);
}

TEST_F(AuxTextTest, DepthTestedTextHidesBehindTheSlabAndTheOtherDoesNot) {
    VxAuxTestScene scene(8.0, true);
    // Below the slab's top, over its middle.
    VxAuxText* t = AddText(Text_ModelDepth, L"H", VxColor(0, 255, 0));
    t->SetTextPos(VxPoint(-10, 0, -0.5));
    EXPECT_TRUE(InkBox(scene.FrameWithAux(), IsGreen).Empty());
    t->SetTextType(Text_ModelNoDepth);
    EXPECT_FALSE(InkBox(scene.FrameWithAux(), IsGreen).Empty());
    // The same text lifted above the slab shows with the depth test too.
    t->SetTextType(Text_ModelDepth);
    t->SetTextPos(VxPoint(-10, 0, 2.0));
    EXPECT_FALSE(InkBox(scene.FrameWithAux(), IsGreen).Empty());
}

TEST_F(AuxTextTest, RetextingAThousandTimesLeaksNoDisplayLists) {
    VxAuxTestScene scene(4.0, false);
    VxAuxText* t = AddText(Text_ModelNoDepth, L"0", VxColor(0, 255, 0));
    scene.FrameWithAux();
    VxAuxTestScene::Render()->DrawCoordinateSystem();
    const int before = LiveLists();
    for (int i = 0; i < 1000; ++i) {
        t->SetText(CString(std::to_wstring(i % 97).c_str()));
        scene.FrameWithAux();
        VxAuxTestScene::Render()->DrawCoordinateSystem();
    }
    t->SetText(CString(L"0"));
    EXPECT_EQ(LiveLists(), before);
    // Too long for lists: nothing kept, nothing drawn, no crash.
    t->SetText(CString(std::wstring(161, L'A').c_str()));
    EXPECT_EQ(t->GetListBase(), VxAuxText::kNoList);
    EXPECT_TRUE(InkBox(scene.FrameWithAux(), IsGreen).Empty());
    // More lines and longer lines than the rows hold are cut, not written past.
    std::wstring many;
    for (int i = 0; i < 8; ++i) {
        many += std::wstring(40, L'W') + L"\n";
    }
    t->SetText(CString(many.substr(0, 160).c_str()));
    EXPECT_LE(t->GetLineCount(), VxAuxText::kMaxLines);
    scene.FrameWithAux();
}

TEST_F(AuxTextTest, AxisCrossStaysInTheLowerRightCornerAndIgnoresZoomAndPan) {
    VxAuxTestScene scene(4.0, false);
    Roll(30.0);
    scene.Frame();
    const VxTestImage plain = VxAuxTestScene::Read();
    scene.Frame();
    const GLboolean lighting = glIsEnabled(GL_LIGHTING);
    const GLboolean depth = glIsEnabled(GL_DEPTH_TEST);
    VxAuxTestScene::Render()->DrawCoordinateSystem();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(glIsEnabled(GL_LIGHTING), lighting);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), depth);
    EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
    const VxTestImage cross = VxAuxTestScene::Read();
    VxAuxTestScene::Save(cross, "aux_axis_cross_300x200");
    // Axis viewport: 100 high, 100 * 300 / 200 = 150 wide, at the view's lower right.
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            const bool changed = std::memcmp(plain.Pixel(x, y), cross.Pixel(x, y), 3) != 0;
            const bool corner = x >= kW - 150 && y >= kH - 100;
            (corner ? inside : outside) += changed ? 1 : 0;
        }
    }
    EXPECT_EQ(outside, 0);
    EXPECT_GT(inside, 100);

    // Zoom and pan leave the corner pixel for pixel as it was.
    VxXForm xf = View()->GetXForm();
    xf.SetScale(xf.GetScale() * 3.0);
    xf.SetTranslation(VxVector(5.0, -3.0, 0.0));
    View()->SetXForm(xf);
    scene.Frame();
    VxAuxTestScene::Render()->DrawCoordinateSystem();
    const VxTestImage moved = VxAuxTestScene::Read();
    int differ = 0;
    for (int y = kH - 100; y < kH; ++y) {
        for (int x = kW - 150; x < kW; ++x) {
            differ += std::memcmp(cross.Pixel(x, y), moved.Pixel(x, y), 3) != 0 ? 1 : 0;
        }
    }
    EXPECT_EQ(differ, 0);

    // A turn of the model turns the cross.
    Roll(120.0);
    scene.Frame();
    VxAuxTestScene::Render()->DrawCoordinateSystem();
    const VxTestImage turned = VxAuxTestScene::Read();
    differ = 0;
    for (int y = kH - 100; y < kH; ++y) {
        for (int x = kW - 150; x < kW; ++x) {
            differ += std::memcmp(cross.Pixel(x, y), turned.Pixel(x, y), 3) != 0 ? 1 : 0;
        }
    }
    EXPECT_GT(differ, 50);
}
