// Capture on a real headless context: CreateSnapshot of the whole window and of a rectangle, and a
// frame rendered through VxFrameBufferObj, each compared pixel for pixel with the window's own
// read-back of an asymmetric picture (so a flipped or shifted image cannot pass), plus the
// buffer object's size, flag and re-setup rules. Pictures go to the test output folder.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <frame/VxFrameBufferObj.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CImage.h>
#include <interfaces/CRect.h>
#include <interfaces/VxModel.h>
#include <platform/VxGLContext.h>
#include <platform/VxMessageSink.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 160;
constexpr int kH = 120;

// In GL window coordinates (y up) of a w x h target: a dark blue ground, a red block at the top
// left, a green bar along the bottom, a white triangle pointing right, and a grey ramp of 8-bit
// steps across the middle, so rounding of the float read-back shows too.
void DrawPattern(int w, int h) {
    glViewport(0, 0, w, h);
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, w, 0, h, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    auto quad = [](int x0, int y0, int x1, int y1) {
        glBegin(GL_QUADS);
        glVertex2i(x0, y0);
        glVertex2i(x1, y0);
        glVertex2i(x1, y1);
        glVertex2i(x0, y1);
        glEnd();
    };
    glColor3ub(10, 20, 90);
    quad(0, 0, w, h);
    glColor3ub(230, 30, 40);
    quad(4, h - 30, 44, h - 4);
    glColor3ub(20, 200, 60);
    quad(0, 0, w, 9);
    for (int x = 0; x < w; ++x) {
        const GLubyte v = static_cast<GLubyte>(x * 255 / (w - 1));
        glColor3ub(v, static_cast<GLubyte>(255 - v), 128);
        quad(x, h / 2 - 6, x + 1, h / 2 + 6);
    }
    glColor3ub(255, 255, 255);
    glBegin(GL_TRIANGLES);
    glVertex2i(w - 50, 20);
    glVertex2i(w - 10, 35);
    glVertex2i(w - 50, 50);
    glEnd();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
}

// The bound framebuffer's colour, rows top-down.
VxTestImage ReadTopDown(int w, int h) {
    VxTestImage img(w, h);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
    img.FlipRows();
    for (size_t i = 3; i < img.rgba.size(); i += 4) {
        img.rgba[i] = 255; // snapshots carry no alpha
    }
    return img;
}

VxTestImage FromCImage(const CImage& image) {
    VxTestImage img(image.GetWidth(), image.GetHeight());
    for (int y = 0; y < img.height; ++y) {
        for (int x = 0; x < img.width; ++x) {
            const COLORREF c = image.GetPixel(x, y);
            std::uint8_t* p = img.Pixel(x, y);
            p[0] = GetRValue(c);
            p[1] = GetGValue(c);
            p[2] = GetBValue(c);
            p[3] = 255;
        }
    }
    return img;
}

VxTestImage Crop(const VxTestImage& src, int left, int top, int w, int h) {
    VxTestImage out(w, h);
    for (int y = 0; y < h; ++y) {
        std::copy_n(src.Pixel(left, top + y), w * 4, out.Pixel(0, y));
    }
    return out;
}

// A frame buffer object's read-back: BGRA, bottom row first.
VxTestImage FromBgraBottomUp(const std::vector<unsigned char>& bgra, int w, int h) {
    VxTestImage img(w, h);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const unsigned char* s = &bgra[(static_cast<size_t>(h - 1 - y) * w + x) * 4];
            std::uint8_t* d = img.Pixel(x, y);
            d[0] = s[2];
            d[1] = s[1];
            d[2] = s[0];
            d[3] = 255;
        }
    }
    return img;
}

void Save(const VxTestImage& img, const std::string& name) {
    VxWritePng(VxTestOutputDir() + "/" + name + ".png", img);
}

std::string DrainErrors() {
    std::string s;
    for (GLenum e = glGetError(); e != GL_NO_ERROR; e = glGetError()) {
        s += std::to_string(e) + " ";
    }
    return s;
}

class CaptureTest : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        // No background file: the loader's complaint is not what these tests are about.
        VxMessageSink::SetHandler([](const std::string&, const std::string&) {});
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        render = VxRenderStatus::GetInstance()->GetRender();
        created = render->Create(window, 24, 8);
        VxMessageSink::Reset();
    }

protected:
    void SetUp() override {
        if (!created) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        render->GetGLContext()->MakeCurrent();
        VxViewManager::GetInstance()->Clear();
        VxViewManager::GetInstance()->SetTotalViewSize(kW, kH);
        render->SetModel(&model);
        render->ResizeViewport(kW, kH);
        DrainErrors();
    }
    void TearDown() override {
        if (created) {
            render->SetModel(nullptr);
        }
    }

    // One frame the way the host makes one: RenderScene, then its own drawing on top.
    void Frame() {
        render->RenderScene(false);
        DrawPattern(kW, kH);
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxModel model;
};

// Exact: the pattern's colours are 8-bit values, which the float read-back rounds back to
// themselves.
constexpr int kExact = 0;

TEST_F(CaptureTest, SnapshotOfTheWholeWindowIsTheWindow) {
    Frame();
    const VxTestImage window = ReadTopDown(kW, kH);
    std::unique_ptr<CImage> shot(render->CreateSnapshot(CRect(0, 0, kW, kH)));
    ASSERT_NE(shot, nullptr);
    EXPECT_EQ(shot->GetWidth(), kW);
    EXPECT_EQ(shot->GetHeight(), kH);
    EXPECT_EQ(shot->GetBPP(), 24);
    const VxTestImage img = FromCImage(*shot);
    Save(window, "capture_window");
    Save(img, "capture_snapshot");
    EXPECT_TRUE(VxCompareImages(img, window, kExact, 0.0, "capture_snapshot_whole"));
    // Right way up: red block at the top left, green bar at the bottom, through DIB addressing.
    const auto* bits = static_cast<const std::uint8_t*>(shot->GetBits());
    const std::uint8_t* topLeft = bits + 10 * shot->GetPitch() + 10 * 3;
    EXPECT_EQ(topLeft[2], 230); // R of B, G, R
    EXPECT_EQ(topLeft[1], 30);
    const std::uint8_t* bottom = bits + (kH - 3) * shot->GetPitch() + 80 * 3;
    EXPECT_EQ(bottom[1], 200);
    EXPECT_EQ(DrainErrors(), "");
}

TEST_F(CaptureTest, SnapshotOfARectangleCountsRowsFromTheTop) {
    Frame();
    const VxTestImage window = ReadTopDown(kW, kH);
    const CRect rects[] = {CRect(10, 20, 70, 50), CRect(100, 60, 160, 120), CRect(0, 0, 1, 1),
                           CRect(3, 100, 157, 117)};
    for (const CRect& r : rects) {
        std::unique_ptr<CImage> shot(render->CreateSnapshot(r));
        ASSERT_NE(shot, nullptr);
        const VxTestImage img = FromCImage(*shot);
        EXPECT_TRUE(VxCompareImages(img, Crop(window, r.left, r.top, r.Width(), r.Height()), kExact,
                                    0.0, "capture_snapshot_rect"))
            << r.left << "," << r.top << "," << r.right << "," << r.bottom;
    }
    std::unique_ptr<CImage> part(render->CreateSnapshot(CRect(10, 20, 70, 50)));
    Save(FromCImage(*part), "capture_snapshot_rect");
    // An empty rectangle gives no picture.
    EXPECT_EQ(render->CreateSnapshot(CRect(5, 5, 5, 40)), nullptr);
    EXPECT_EQ(DrainErrors(), "");
}

TEST_F(CaptureTest, FrameBufferFrameMatchesTheWindow) {
    Frame();
    const VxTestImage window = ReadTopDown(kW, kH);

    VxFrameBufferObj* fbo = VxRenderStatus::GetInstance()->GetFrameBufObj();
    ASSERT_TRUE(fbo->Setup(kW, kH));
    fbo->Begin();
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER),
              static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    Frame();
    std::vector<unsigned char> bgra(static_cast<size_t>(fbo->GetFrameImgSize()), 0xAB);
    fbo->ReadImgFromFBO(bgra.data(), fbo->GetFrameImgSize());
    fbo->End();
    EXPECT_TRUE(fbo->GetIsOffScreenRendering());
    fbo->Destory();
    EXPECT_FALSE(fbo->GetIsOffScreenRendering());

    const VxTestImage img = FromBgraBottomUp(bgra, kW, kH);
    Save(img, "capture_fbo");
    EXPECT_TRUE(VxCompareImages(img, window, kExact, 0.0, "capture_fbo"));
    EXPECT_EQ(DrainErrors(), "");
}

TEST_F(CaptureTest, FrameBufferOfItsOwnSize) {
    // A frame larger than the window, independent of it.
    VxFrameBufferObj fbo;
    ASSERT_TRUE(fbo.Setup(300, 90));
    fbo.Begin();
    DrawPattern(300, 90);
    const VxTestImage expected = ReadTopDown(300, 90);
    std::vector<unsigned char> bgra(static_cast<size_t>(fbo.GetFrameImgSize()));
    fbo.ReadImgFromFBO(bgra.data(), static_cast<int>(bgra.size()));
    fbo.End();
    fbo.Destory();
    EXPECT_TRUE(VxCompareImages(FromBgraBottomUp(bgra, 300, 90), expected, kExact, 0.0,
                                "capture_fbo_own_size"));
    EXPECT_EQ(expected.Pixel(10, 10)[0], 230) << "the red block at the top left";
    EXPECT_EQ(DrainErrors(), "");
}

TEST_F(CaptureTest, SetupSizesAndFlags) {
    VxFrameBufferObj fbo;
    EXPECT_EQ(fbo.GetFrameImgSize(), 0);
    EXPECT_FALSE(fbo.GetIsOffScreenRendering());
    ASSERT_TRUE(fbo.Setup(640, 480));
    EXPECT_EQ(fbo.GetFrameImgSize(), 1228800);
    EXPECT_TRUE(fbo.GetIsOffScreenRendering());

    // Setup again at another size deletes the first buffers before it makes new ones.
    GLint firstName = 0;
    fbo.Begin();
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &firstName);
    fbo.End();
    ASSERT_NE(firstName, 0);
    ASSERT_TRUE(fbo.Setup(32, 16));
    GLint secondName = 0;
    fbo.Begin();
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &secondName);
    GLint width = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &width);
    GLint rb = width;
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(rb));
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &width);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    fbo.End();
    EXPECT_EQ(width, 32);
    EXPECT_TRUE(secondName == firstName || !glIsFramebuffer(static_cast<GLuint>(firstName)));
    EXPECT_EQ(fbo.GetFrameImgSize(), 32 * 16 * 4);

    // Off screen from Setup to Destory, also after End; the size outlives Destory.
    EXPECT_TRUE(fbo.GetIsOffScreenRendering());
    fbo.Destory();
    EXPECT_FALSE(fbo.GetIsOffScreenRendering());
    EXPECT_FALSE(glIsFramebuffer(static_cast<GLuint>(secondName)));
    EXPECT_EQ(fbo.GetFrameImgWidth(), 32);
    EXPECT_EQ(DrainErrors(), "");

    // Sizes are kept in 16 bits (GL refuses the storage itself; that is not tested).
    VxFrameBufferObj wide;
    wide.Setup(65536 + 10, 5);
    EXPECT_EQ(wide.GetFrameImgWidth(), 10);
    EXPECT_EQ(wide.GetFrameImgHeight(), 5);
    wide.Destory();
    DrainErrors();

    // A buffer too small for the image is zeroed, never overrun.
    VxFrameBufferObj small;
    small.Setup(8, 8);
    small.Begin();
    std::vector<unsigned char> tiny(16, 0xEE);
    small.ReadImgFromFBO(tiny.data(), 16);
    small.End();
    small.Destory();
    for (unsigned char c : tiny) {
        EXPECT_EQ(c, 0);
    }
}

} // namespace
