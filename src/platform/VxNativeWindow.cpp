// VxNativeWindow: size queries of an X11 or off-screen target, and the surface made for it.
// It does not open X11 connections or create windows; FromX11 only wraps what the host made.
#include <platform/VxNativeWindow.h>

#include <platform/VxGLContext.h>

#include <EGL/egl.h>
#include <X11/Xlib.h>

#include <algorithm>

namespace {

// A bad Window id must not end the process: Xlib's default error handler exits. Errors raised
// while the handler is installed are only counted.
int g_x11Errors = 0;
int CountX11Error(Display*, XErrorEvent*) {
    ++g_x11Errors;
    return 0;
}

bool QueryAttributes(void* display, unsigned long window, XWindowAttributes* attributes) {
    Display* dpy = static_cast<Display*>(display);
    XSync(dpy, False);
    g_x11Errors = 0;
    XErrorHandler previous = XSetErrorHandler(CountX11Error);
    const Status ok = XGetWindowAttributes(dpy, window, attributes);
    XSync(dpy, False);
    XSetErrorHandler(previous);
    return ok != 0 && g_x11Errors == 0;
}

} // namespace

VxNativeWindow::~VxNativeWindow() {
    DestroySurface();
}

std::unique_ptr<VxNativeWindow> VxNativeWindow::CreateOffscreen(int width, int height) {
    std::unique_ptr<VxNativeWindow> window(new VxNativeWindow());
    window->m_kind = Kind::Offscreen;
    window->m_width = std::max(1, width);
    window->m_height = std::max(1, height);
    return window;
}

std::unique_ptr<VxNativeWindow> VxNativeWindow::FromX11(void* display, unsigned long window) {
    if (!display || window == 0) {
        return nullptr;
    }
    std::unique_ptr<VxNativeWindow> result(new VxNativeWindow());
    result->m_kind = Kind::X11;
    result->m_x11Display = display;
    result->m_x11Window = window;
    return result;
}

bool VxNativeWindow::GetClientSize(int* width, int* height) const {
    int w = 0;
    int h = 0;
    bool ok = true;
    if (m_kind == Kind::Offscreen) {
        w = m_width;
        h = m_height;
    } else {
        XWindowAttributes attributes{};
        ok = QueryAttributes(m_x11Display, m_x11Window, &attributes);
        if (ok) {
            w = attributes.width;
            h = attributes.height;
        }
    }
    if (width) {
        *width = w;
    }
    if (height) {
        *height = h;
    }
    return ok;
}

int VxNativeWindow::GetWidth() const {
    int w = 0;
    GetClientSize(&w, nullptr);
    return w;
}

int VxNativeWindow::GetHeight() const {
    int h = 0;
    GetClientSize(nullptr, &h);
    return h;
}

unsigned long VxNativeWindow::GetVisualId() const {
    if (m_kind != Kind::X11) {
        return 0;
    }
    XWindowAttributes attributes{};
    if (!QueryAttributes(m_x11Display, m_x11Window, &attributes) || !attributes.visual) {
        return 0;
    }
    return XVisualIDFromVisual(attributes.visual);
}

bool VxNativeWindow::SetOffscreenSize(int width, int height) {
    if (m_kind != Kind::Offscreen) {
        return false;
    }
    width = std::max(1, width);
    height = std::max(1, height);
    if (width == m_width && height == m_height) {
        return true;
    }
    m_width = width;
    m_height = height;
    if (!m_eglSurface) {
        return true;
    }
    // A pbuffer has a fixed size, so the surface is made again. The context that drew into the old
    // one on this thread is moved over, so the caller's context stays current through a resize.
    EGLDisplay display = m_eglDisplay;
    EGLSurface old = m_eglSurface;
    const EGLint attributes[] = {EGL_WIDTH, m_width, EGL_HEIGHT, m_height, EGL_NONE};
    EGLSurface fresh = eglCreatePbufferSurface(display, m_eglConfig, attributes);
    if (fresh == EGL_NO_SURFACE) {
        return false;
    }
    const bool wasCurrent =
        eglGetCurrentDisplay() == display &&
        (eglGetCurrentSurface(EGL_DRAW) == old || eglGetCurrentSurface(EGL_READ) == old);
    EGLContext context = eglGetCurrentContext();
    m_eglSurface = fresh;
    if (wasCurrent && context != EGL_NO_CONTEXT) {
        eglMakeCurrent(display, fresh, fresh, context);
    }
    eglDestroySurface(display, old);
    return true;
}

bool VxNativeWindow::CreateSurface(void* eglDisplay, void* eglConfig) {
    if (m_eglSurface || !eglDisplay || !eglConfig) {
        return false;
    }
    if (!VxGLContext::RetainDisplay(eglDisplay)) {
        return false;
    }
    EGLSurface surface = EGL_NO_SURFACE;
    if (m_kind == Kind::Offscreen) {
        const EGLint attributes[] = {EGL_WIDTH, m_width, EGL_HEIGHT, m_height, EGL_NONE};
        surface = eglCreatePbufferSurface(eglDisplay, eglConfig, attributes);
    } else {
        // Mesa's software path dereferences what it fetched for a window id that does not exist;
        // a window the server cannot describe gets no surface.
        if (!GetClientSize(nullptr, nullptr)) {
            VxGLContext::ReleaseDisplay(eglDisplay);
            return false;
        }
        // The 1.4 entry point takes the Window itself (the 1.5 platform one wants a pointer to it);
        // it works on every EGL that offers the X11 platform.
        surface = eglCreateWindowSurface(eglDisplay, eglConfig,
                                         static_cast<EGLNativeWindowType>(m_x11Window), nullptr);
    }
    if (surface == EGL_NO_SURFACE) {
        VxGLContext::ReleaseDisplay(eglDisplay);
        return false;
    }
    m_eglDisplay = eglDisplay;
    m_eglConfig = eglConfig;
    m_eglSurface = surface;
    return true;
}

void VxNativeWindow::DestroySurface() {
    if (!m_eglSurface) {
        return;
    }
    // Destroying a surface that is still current is legal: EGL frees it when it is released.
    eglDestroySurface(m_eglDisplay, m_eglSurface);
    VxGLContext::ReleaseDisplay(m_eglDisplay);
    m_eglSurface = nullptr;
    m_eglConfig = nullptr;
    m_eglDisplay = nullptr;
}
