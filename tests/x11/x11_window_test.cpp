// A context on a real X11 window: made through FromX11, cleared, swapped, and the result read both
// through GL and from the X server itself (XGetImage), which is the reference that the swap put
// the frame on the window. Needs an X server: run under xvfb-run -a; without DISPLAY the tests
// are skipped with that reason.
#include "VxGLTest.h"

#include <interfaces/CWnd.h>
#include <platform/VxDriverQuirks.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <type_traits>

namespace {

// Xlib is a private dependency of the library, so the test does not link it; it is loaded with
// the library, and the few calls made here are looked up at run time.
struct Xlib {
    decltype(&XOpenDisplay) OpenDisplay = nullptr;
    decltype(&XCloseDisplay) CloseDisplay = nullptr;
    decltype(&XCreateSimpleWindow) CreateSimpleWindow = nullptr;
    decltype(&XDestroyWindow) DestroyWindow = nullptr;
    decltype(&XMapWindow) MapWindow = nullptr;
    decltype(&XSelectInput) SelectInput = nullptr;
    decltype(&XWindowEvent) WindowEvent = nullptr;
    decltype(&XResizeWindow) ResizeWindow = nullptr;
    decltype(&XSync) Sync = nullptr;
    decltype(&XGetImage) GetImage = nullptr;

    bool Load() {
        auto get = [](auto& fn, const char* name) {
            fn = reinterpret_cast<std::remove_reference_t<decltype(fn)>>(dlsym(RTLD_DEFAULT, name));
            return fn != nullptr;
        };
        return get(OpenDisplay, "XOpenDisplay") && get(CloseDisplay, "XCloseDisplay") &&
               get(CreateSimpleWindow, "XCreateSimpleWindow") &&
               get(DestroyWindow, "XDestroyWindow") && get(MapWindow, "XMapWindow") &&
               get(SelectInput, "XSelectInput") && get(WindowEvent, "XWindowEvent") &&
               get(ResizeWindow, "XResizeWindow") && get(Sync, "XSync") &&
               get(GetImage, "XGetImage");
    }
};

class X11WindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* display = std::getenv("DISPLAY");
        if (!display || !*display) {
            GTEST_SKIP() << "no X display (DISPLAY is unset); run under xvfb-run -a";
        }
        ASSERT_TRUE(m_x.Load()) << "Xlib symbols not found in the process";
        m_display = m_x.OpenDisplay(nullptr);
        if (!m_display) {
            GTEST_SKIP() << "cannot open X display " << display;
        }
        const int screen = DefaultScreen(m_display);
        m_window =
            m_x.CreateSimpleWindow(m_display, RootWindow(m_display, screen), 0, 0, 160, 120, 0,
                                   BlackPixel(m_display, screen), BlackPixel(m_display, screen));
        m_x.SelectInput(m_display, m_window, StructureNotifyMask | ExposureMask);
        m_x.MapWindow(m_display, m_window);
        XEvent event;
        m_x.WindowEvent(m_display, m_window, StructureNotifyMask, &event); // MapNotify
        m_x.Sync(m_display, False);
    }

    void TearDown() override {
        m_context.reset();
        m_native.reset();
        if (m_display) {
            if (m_window) {
                m_x.DestroyWindow(m_display, m_window);
            }
            m_x.CloseDisplay(m_display);
        }
    }

    // Colour of one window pixel as the X server holds it, as 0xRRGGBB (x, y from the top).
    unsigned long ServerPixel(int x, int y) {
        XImage* image = m_x.GetImage(m_display, m_window, x, y, 1, 1, AllPlanes, ZPixmap);
        if (!image) {
            return 0xFFFFFFFF;
        }
        const unsigned long pixel = XGetPixel(image, 0, 0) & 0xFFFFFF;
        XDestroyImage(image); // both are macros over the image's own function table
        return pixel;
    }

    bool MakeContext() {
        m_native = VxNativeWindow::FromX11(m_display, m_window);
        m_context = std::make_unique<VxGLContext>();
        return m_native && m_context->Create(m_native.get(), 24, 8);
    }

    Xlib m_x;
    Display* m_display = nullptr;
    Window m_window = 0;
    std::unique_ptr<VxNativeWindow> m_native;
    std::unique_ptr<VxGLContext> m_context;
};

} // namespace

TEST_F(X11WindowTest, ClearSwapAndReadBack) {
    ASSERT_TRUE(MakeContext()) << m_context->GetLastError();
    EXPECT_STREQ(m_context->GetPlatformName(), "x11");
    EXPECT_EQ(m_native->GetWidth(), 160);
    EXPECT_EQ(m_native->GetHeight(), 120);
    EXPECT_TRUE(m_context->EntryPointsLoaded());
    GLint depthBits = 0;
    GLint stencilBits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    glGetIntegerv(GL_STENCIL_BITS, &stencilBits);
    EXPECT_EQ(depthBits, 24);
    EXPECT_EQ(stencilBits, 8);

    glViewport(0, 0, 160, 120);
    glClearColor(1.0f, 0.5f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    // The back buffer before the swap, through GL.
    GLubyte rgba[4] = {};
    glReadPixels(80, 60, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    EXPECT_EQ(rgba[0], 255);
    EXPECT_NEAR(rgba[1], 128, 1);
    EXPECT_EQ(rgba[2], 0);

    // Scissor a blue corner at GL's bottom-left, which X11 sees at the bottom-left too.
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 10, 10);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    glFinish();
    ASSERT_TRUE(m_context->SwapBuffers());
    m_x.Sync(m_display, False);

    const unsigned long centre = ServerPixel(80, 60);
    EXPECT_EQ(centre >> 16 & 0xFF, 255u) << std::hex << centre;
    EXPECT_NEAR(static_cast<int>(centre >> 8 & 0xFF), 128, 1) << std::hex << centre;
    EXPECT_EQ(centre & 0xFF, 0u) << std::hex << centre;
    EXPECT_EQ(ServerPixel(2, 117), 0x0000FFu) << "bottom-left corner (X counts from the top)";
    EXPECT_EQ(ServerPixel(2, 2) & 0xFF, 0u) << "top-left must not be blue";
}

TEST_F(X11WindowTest, SizeFollowsTheServerAndCWndCarriesTheHandle) {
    ASSERT_TRUE(MakeContext()) << m_context->GetLastError();
    CWnd wnd(m_native.get());
    EXPECT_EQ(wnd.GetSafeHwnd(), m_native.get());
    m_x.ResizeWindow(m_display, m_window, 200, 90);
    m_x.Sync(m_display, False);
    CRect client;
    wnd.GetClientRect(&client);
    EXPECT_EQ(client, CRect(0, 0, 200, 90));
    EXPECT_EQ(wnd.Detach(), m_native.get());
    EXPECT_EQ(wnd.GetSafeHwnd(), nullptr);
    wnd.GetClientRect(&client);
    EXPECT_TRUE(client.IsRectEmpty());

    // The surface follows the window: a full clear after the resize covers the new area.
    ASSERT_TRUE(m_context->MakeCurrent());
    if (VxDriverQuirks::Applies("llvmpipe-x11-resize-at-swap")) {
        ASSERT_TRUE(m_context->SwapBuffers()); // the frame that still has the old size
    }
    glViewport(0, 0, 200, 90);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_TRUE(m_context->SwapBuffers());
    m_x.Sync(m_display, False);
    EXPECT_EQ(ServerPixel(199, 89), 0x00FF00u);
}

TEST_F(X11WindowTest, ABadWindowIdFailsQuietly) {
    auto bogus = VxNativeWindow::FromX11(m_display, 0x7FFFFFF0);
    ASSERT_NE(bogus, nullptr);
    int w = -1;
    int h = -1;
    EXPECT_FALSE(bogus->GetClientSize(&w, &h));
    EXPECT_EQ(w, 0);
    EXPECT_EQ(h, 0);
    VxGLContext context;
    EXPECT_FALSE(context.Create(bogus.get(), 24, 8));
}

TEST_F(X11WindowTest, AnOffscreenAndAnX11ContextLiveSideBySide) {
    ASSERT_TRUE(MakeContext()) << m_context->GetLastError();
    auto offscreen = VxNativeWindow::CreateOffscreen(16, 16);
    VxGLContext headless;
    ASSERT_TRUE(headless.Create(offscreen.get(), 24, 8)) << headless.GetLastError();
    EXPECT_NE(headless.GetDisplay(), m_context->GetDisplay());
    // The context of an X11 window cannot move to an off-screen target of another display.
    EXPECT_FALSE(m_context->MakeCurrent(offscreen.get()));
    ASSERT_TRUE(m_context->MakeCurrent());
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_TRUE(m_context->SwapBuffers());
    m_x.Sync(m_display, False);
    EXPECT_EQ(ServerPixel(5, 5), 0xFFFFFFu);
}
