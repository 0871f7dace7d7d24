// The frame driver on a real headless context: the background picture lands pixel for pixel,
// the layout lines sit where they belong, RenderScene(false) and a frame without views paint
// and touch no view camera, the eye distance only grows, a failed Create still leaves IsValid
// true, and the version test holds on every frame. Pictures go to the test output folder.
#include "VxTestImage.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxMessageSink.h>
#include <platform/VxNativeWindow.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace {

constexpr int kW = 240;
constexpr int kH = 200;

// The background: a red ramp left to right, a green ramp bottom to top, blue constant, and
// white corners, so that the layout lines (tinted by the texel of the last texture coordinate,
// which averages the four corners) come out in their own colour.
unsigned char BkR(int x, int y) {
    return (x == 0 || x == kW - 1) && (y == 0 || y == kH - 1)
               ? 255
               : static_cast<unsigned char>(x * 255 / (kW - 1));
}
unsigned char BkG(int x, int y) {
    return (x == 0 || x == kW - 1) && (y == 0 || y == kH - 1)
               ? 255
               : static_cast<unsigned char>(y * 255 / (kH - 1));
}
unsigned char BkB(int x, int y) {
    return (x == 0 || x == kW - 1) && (y == 0 || y == kH - 1) ? 255 : 96;
}

// A 24-bit bottom-up BMP; y counts from the bottom as in the file.
bool WriteBmp(const std::string& path, int w, int h, unsigned char (*r)(int, int),
              unsigned char (*g)(int, int), unsigned char (*b)(int, int)) {
    return VxWriteBmp24(path, w, h, [&](int x, int y) {
        return VxTestRgb{r(x, y), g(x, y), b(x, y)};
    });
}

// Whole surface, top row first.
VxTestImage ReadFrame(int w, int h) {
    VxTestImage image(w, h);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, image.rgba.data());
    image.FlipRows();
    return image;
}

// Colour at GL window coordinates (from the bottom).
const std::uint8_t* At(const VxTestImage& img, int x, int glY) {
    return img.Pixel(x, img.height - 1 - glY);
}

bool Near(const std::uint8_t* p, int r, int g, int b, int tol) {
    return std::abs(p[0] - r) <= tol && std::abs(p[1] - g) <= tol && std::abs(p[2] - b) <= tol;
}

void SavePng(const VxTestImage& img, const std::string& name) {
    VxWritePng(VxTestOutputDir() + "/" + name + ".png", img);
}

// A box-shaped mesh so the model has a bounding box; there are no drawers yet, so it is not
// drawn, which is exactly what the frame must then do.
void MakeBox(VxMesh& m, double half) {
    std::vector<VxPoint> p;
    for (int i = 0; i < 8; ++i) {
        p.emplace_back(i & 1 ? half : -half, i & 2 ? half : -half, i & 4 ? half : -half);
    }
    m.SetMeshData(p, {0, 1, 3, 0, 3, 2, 4, 5, 7, 4, 7, 6});
}

VxMesh* MakeBox(double half) {
    VxMesh* m = new VxMesh();
    MakeBox(*m, half);
    return m;
}

class FrameRenderTest : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        bkPath = VxTestOutputDir() + "/frame_background.bmp";
        WriteBmp(bkPath, kW, kH, BkR, BkG, BkB);
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        render = VxRenderStatus::GetInstance()->GetRender();
        render->SetBkGround(CString::FromUtf8(bkPath));
        created = render->Create(window, 24, 8);
    }

protected:
    void SetUp() override {
        if (!created) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        render->GetGLContext()->MakeCurrent();
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->EnableSynView(false);
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        render->SetModel(&model);
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
        }
    }

    static inline std::string bkPath;
    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxViewManager* mgr = nullptr;
    VxModel model;
};

// Icon: a magenta key colour (first pixel) around a solid 20 x 20 orange square.
unsigned char IcoR(int x, int y) {
    return x >= 8 && x < 28 && y >= 8 && y < 28 ? 250 : 255;
}
unsigned char IcoG(int x, int y) {
    return x >= 8 && x < 28 && y >= 8 && y < 28 ? 140 : 0;
}
unsigned char IcoB(int x, int y) {
    return x >= 8 && x < 28 && y >= 8 && y < 28 ? 20 : 255;
}

} // namespace

// The corner icons are private and nothing in the library calls them; the test reaches them.
class VxOpenGLRenderTestAccess {
public:
    static bool LoadLeftInfoImage(VxOpenGLRender* r) { return r->LoadLeftInfoImage(); }
    static void DrawLeftDownInfo(VxOpenGLRender* r) { r->DrawLeftDownInfo(); }
};

TEST_F(FrameRenderTest, CornerIconsKeyOutTheirFirstColour) {
    const std::string icon = VxTestOutputDir() + "/frame_icon.bmp";
    ASSERT_TRUE(WriteBmp(icon, 36, 36, IcoR, IcoG, IcoB));
    render->SetLeftDownBmp({CString::FromUtf8(icon), CString::FromUtf8(icon)});
    ASSERT_TRUE(VxOpenGLRenderTestAccess::LoadLeftInfoImage(render));
    mgr->CreateSingleView();
    render->RenderScene(true);
    glColor4f(1.f, 1.f, 1.f, 1.f);
    VxOpenGLRenderTestAccess::DrawLeftDownInfo(render);
    const VxTestImage img = ReadFrame(kW, kH);
    SavePng(img, "frame_corner_icons");
    for (int i = 0; i < 2; ++i) {
        const int x0 = 100 * i + 8; // the icon covers x0 .. x0 + 35, y 8 .. 43
        EXPECT_TRUE(Near(At(img, x0 + 18, 26), 250, 140, 20, 3)) << i;
        // The key colour is transparent: the background shows.
        EXPECT_TRUE(Near(At(img, x0 + 2, 10), BkR(x0 + 2, 10), BkG(x0 + 2, 10), 96, 1)) << i;
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    // A missing file ends the load with false.
    render->SetLeftDownBmp({CString(L"/nonexistent/icon.bmp")});
    VxMessageSink::SetHandler([](const std::string&, const std::string&) {});
    EXPECT_FALSE(VxOpenGLRenderTestAccess::LoadLeftInfoImage(render));
    VxMessageSink::Reset();
    render->SetLeftDownBmp({});
}

TEST_F(FrameRenderTest, BackgroundPictureLandsPixelForPixel) {
    mgr->CreateSingleView();
    ASSERT_TRUE(render->RenderScene(false));
    const VxTestImage img = ReadFrame(kW, kH);
    SavePng(img, "frame_background");
    // The same size as the window, texel centres on pixel centres: exact but for rounding.
    int worst = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            const std::uint8_t* p = At(img, x, y);
            worst = std::max({worst, std::abs(p[0] - BkR(x, y)), std::abs(p[1] - BkG(x, y)),
                              std::abs(p[2] - BkB(x, y))});
        }
    }
    EXPECT_LE(worst, 1);
    // Not a flat picture: the ramps are there.
    EXPECT_GT(At(img, kW - 2, 5)[0], 240);
    EXPECT_LT(At(img, 1, 5)[0], 5);
    EXPECT_GT(At(img, 5, kH - 2)[1], 240);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(FrameRenderTest, FalseFramePaintsAndTouchesNoViewCamera) {
    mgr->CreateSingleView();
    VxViewRegion* view = mgr->GetView(0);
    view->GetCamera()->SetViewPort(7, 8, 9, 10);
    view->GetCamera()->SetFrustum(-3, 3, -2, 2, 5, 6);
    view->GetCamera()->SetLocationZ(123.0);
    glClearColor(0.f, 0.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_TRUE(render->RenderScene(false));
    int x, y, w, h;
    view->GetCamera()->GetViewPort(x, y, w, h);
    EXPECT_EQ(x + y + w + h, 34);
    double l, r, b, t, n, f;
    view->GetCamera()->GetFrustum(l, r, b, t, n, f);
    EXPECT_EQ(n, 5.0);
    EXPECT_EQ(view->GetCamera()->GetLocationZ(), 123.0);
    const VxTestImage img = ReadFrame(kW, kH);
    EXPECT_TRUE(Near(At(img, 100, 100), BkR(100, 100), BkG(100, 100), BkB(100, 100), 1));

    // A model frame does set the camera from the view.
    EXPECT_TRUE(render->RenderScene(true));
    view->GetCamera()->GetViewPort(x, y, w, h);
    EXPECT_EQ(w, kW);
    EXPECT_EQ(h, kH);
    EXPECT_EQ(view->GetCamera()->GetLocationZ(), render->GetEyeDistance());
    view->GetCamera()->GetFrustum(l, r, b, t, n, f);
    EXPECT_DOUBLE_EQ(r, 240.0 / 200.0);
    EXPECT_DOUBLE_EQ(t, 1.0);
    EXPECT_DOUBLE_EQ(f, 2.0 * render->GetEyeDistance() + 1.0);
}

TEST_F(FrameRenderTest, ZeroViewsStillPaint) {
    ASSERT_TRUE(mgr->GetAllViews().empty());
    EXPECT_TRUE(render->RenderScene(true));
    const VxTestImage img = ReadFrame(kW, kH);
    SavePng(img, "frame_zero_views");
    EXPECT_TRUE(Near(At(img, 120, 50), BkR(120, 50), BkG(120, 50), BkB(120, 50), 1));
    EXPECT_TRUE(Near(At(img, 0, 0), 255, 255, 255, 1));
}

TEST_F(FrameRenderTest, EntitiesWithoutDrawerAreSkipped) {
    // The shader path has no skull drawer.
    VxSkull a, b;
    MakeBox(a, 0.5);
    MakeBox(b, 0.8);
    model.AddEntity(&a);
    model.AddEntity(&b);
    OpenGLVersion::GetInstance()->Set_btestversion(true);
    mgr->CreateSingleView();
    EXPECT_TRUE(render->RenderScene(true));
    const VxTestImage img = ReadFrame(kW, kH);
    EXPECT_TRUE(Near(At(img, 120, 100), BkR(120, 100), BkG(120, 100), BkB(120, 100), 1));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    // The model-view matrix was still read back into the view: look-at x identity.
    const double* mv = mgr->GetView(0)->GetModelViewMatrix();
    EXPECT_NEAR(mv[14], -render->GetEyeDistance(), 1e-5); // GL keeps floats
    EXPECT_DOUBLE_EQ(mv[0], 1.0);
    model.Clear();
}

TEST_F(FrameRenderTest, EyeDistanceOnlyGrows) {
    std::unique_ptr<VxMesh> box(MakeBox(1.0)); // diagonal 2 sqrt 3, centre at the origin
    model.AddEntity(box.get());
    mgr->CreateSingleView();
    VxViewRegion* view = mgr->GetView(0);
    const double diagonal = 2.0 * std::sqrt(3.0);
    const double start = render->GetEyeDistance();

    view->GetXForm().SetTranslation(VxVector(3, 4, 0)); // |t + c| = 5
    view->GetXForm().SetScale(1.0);
    render->RenderScene(true);
    const double e1 = std::max(start, (5.0 + diagonal) * 1.0 + 2.0);
    EXPECT_DOUBLE_EQ(render->GetEyeDistance(), e1);

    view->GetXForm().SetScale(50.0); // zoom in on the model: the eye moves out
    render->RenderScene(true);
    const double e2 = std::max(e1, (5.0 + diagonal) * 50.0 + 2.0);
    EXPECT_DOUBLE_EQ(render->GetEyeDistance(), e2);
    EXPECT_DOUBLE_EQ(view->GetCamera()->GetLocationZ(), e2);

    view->GetXForm().SetScale(0.5);
    render->RenderScene(true);
    EXPECT_DOUBLE_EQ(render->GetEyeDistance(), e2);
    EXPECT_DOUBLE_EQ(view->GetCamera()->GetLocationZ(), e2);
    EXPECT_DOUBLE_EQ(render->GetCamera()->GetLocationZ(), e2);
    model.Clear();
}

TEST_F(FrameRenderTest, TwoViewLineSitsLeftOfTheMiddle) {
    VxModel empty;
    mgr->CreateSingleView();
    mgr->SwitchTo2View(empty);
    ASSERT_EQ(mgr->GetAllViews().size(), 2u);
    render->RenderScene(false);
    const VxTestImage img = ReadFrame(kW, kH);
    SavePng(img, "frame_two_view_lines");
    // Line colour (0.67, 0.75, 0.84) times the white corner texels.
    const int lineX = kW / 2 - 1;
    int lineColumns = 0;
    for (int x = lineX - 3; x <= lineX + 3; ++x) {
        const bool isLine = Near(At(img, x, kH / 2), 171, 191, 214, 2);
        if (isLine) {
            ++lineColumns;
            EXPECT_GE(x, lineX - 1);
            EXPECT_LE(x, lineX);
        }
    }
    EXPECT_EQ(lineColumns, 2); // two pixels wide
    EXPECT_TRUE(Near(At(img, lineX + 2, kH / 2), BkR(lineX + 2, kH / 2), BkG(0, kH / 2), 96, 1));
}

TEST_F(FrameRenderTest, FiveViewLinesAtTheirRows) {
    // H = 800 puts the horizontal line at y = 480.
    ASSERT_TRUE(window->SetOffscreenSize(300, 800));
    render->GetGLContext()->MakeCurrent();
    render->ResizeViewport(300, 800);
    mgr->SetTotalViewSize(300, 800);
    VxModel empty;
    mgr->CreateSingleView();
    mgr->SwitchTo5View(empty);
    render->RenderScene(false);
    const VxTestImage img = ReadFrame(300, 800);
    SavePng(img, "frame_five_view_lines");
    auto isLine = [&](int x, int y) { return Near(At(img, x, y), 171, 191, 214, 2); };
    // Horizontal: rows 479 and 480.
    EXPECT_TRUE(isLine(200, 480) || isLine(200, 479));
    EXPECT_FALSE(isLine(200, 477));
    EXPECT_FALSE(isLine(200, 482));
    // Bottom divider at x = W/2 - 1 = 149 below the line, none above it there.
    EXPECT_TRUE(isLine(149, 200) || isLine(148, 200));
    EXPECT_FALSE(isLine(149, 700) || isLine(148, 700));
    // Top dividers at x = W/3 - 1 = 99 and 2W/3 - 1 = 199, above the line only.
    EXPECT_TRUE(isLine(99, 700) || isLine(98, 700));
    EXPECT_TRUE(isLine(199, 700) || isLine(198, 700));
    EXPECT_FALSE(isLine(99, 200) || isLine(98, 200));
    mgr->Clear();
    ASSERT_TRUE(window->SetOffscreenSize(kW, kH));
    render->GetGLContext()->MakeCurrent();
}

TEST_F(FrameRenderTest, ZoomAreaDrawsOnlyWhileSet) {
    mgr->CreateSingleView();
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    status->StartZoomArea(CPoint(20, 30));
    status->UnderZoomArea(CPoint(120, 90));
    render->RenderScene(true);
    render->DrawZoomArea();
    VxTestImage img = ReadFrame(kW, kH);
    SavePng(img, "frame_zoom_area");
    // Screen (60, 60) is GL row 140: background blended with (0, 0, 1) at a quarter.
    const int x = 60, y = kH - 60;
    const auto* p = At(img, x, y);
    EXPECT_NEAR(p[0], BkR(x, y) * 0.75, 2);
    EXPECT_NEAR(p[2], BkB(x, y) * 0.75 + 255 * 0.25, 2);
    const auto* outside = At(img, 200, y);
    EXPECT_TRUE(Near(outside, BkR(200, y), BkG(200, y), BkB(200, y), 1));

    status->FinishZoomArea();
    render->RenderScene(true);
    render->DrawZoomArea();
    img = ReadFrame(kW, kH);
    EXPECT_TRUE(Near(At(img, x, y), BkR(x, y), BkG(x, y), BkB(x, y), 1));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(FrameRenderTest, VersionTestRunsOnEveryView) {
    OpenGLVersion* version = OpenGLVersion::GetInstance();
    const char* v = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    ASSERT_NE(v, nullptr);
    const bool passes = OpenGLVersion::VersionPassesTest(v);
    version->Set_btestversion(true);
    mgr->CreateSingleView();
    render->RenderScene(true);
    EXPECT_EQ(version->Get_btestversion(), passes) << v;
    EXPECT_STREQ(version->GetVersion(), v);
    version->Set_btestversion(true);
}

TEST(FrameCreateTest, FailedCreateKeepsTheWindowAndIsValid) {
    std::vector<std::string> messages;
    VxMessageSink::SetHandler(
        [&](const std::string& text, const std::string&) { messages.push_back(text); });
    VxOpenGLRender bare;
    EXPECT_FALSE(bare.IsValid());
    EXPECT_FALSE(bare.Create(nullptr, 24, 8));
    EXPECT_FALSE(bare.IsValid());

    // A missing background: Create still succeeds, and one message names the path.
    auto win2 = VxNativeWindow::CreateOffscreen(32, 32);
    VxOpenGLRender third;
    third.SetBkGround(CString(L"/nonexistent/dir/bk.bmp"));
    if (!third.Create(win2.get(), 24, 8)) {
        VxMessageSink::Reset();
        GTEST_SKIP() << "no EGL context on this machine";
    }
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find("Failed to open DIB file"), std::string::npos);
    EXPECT_NE(messages[0].find("/nonexistent/dir/bk.bmp"), std::string::npos);
    VxMessageSink::Reset();

    // A window that already carries another pixel format refuses the one asked for here, so
    // Create stops at SetPixelFormat.
    auto win = VxNativeWindow::CreateOffscreen(32, 32);
    VxGLContext other;
    ASSERT_TRUE(other.Create(win.get(), 0, 0));
    auto probeWin = VxNativeWindow::CreateOffscreen(8, 8);
    VxGLContext probe;
    ASSERT_TRUE(probe.GetDC(probeWin.get()));
    if (other.GetPixelFormat() == probe.ChoosePixelFormat(24, 8)) {
        GTEST_SKIP() << "the driver offers one config for both requests";
    }
    VxOpenGLRender render;
    EXPECT_FALSE(render.Create(win.get(), 24, 8));
    EXPECT_TRUE(render.IsValid());
    EXPECT_EQ(render.GetWindow(), win.get());
}
