// VxNativeWindow: what a window handle points to on this platform. Either an X11 window the host
// owns (the library only reads its size and draws into it), or an off-screen target of a given
// size that GL renders into through a pbuffer. The window also carries the EGL surface made for it
// once a pixel format is set, because, as with a desktop window, the format and the drawable belong
// to the window and every context drawing into it shares them.
// It does not create, map or destroy X11 windows, pump events, or own the X11 connection.
#pragma once

#include <platform/VxWindowHandle.h>

#include <memory>

class VxNativeWindow {
public:
    enum class Kind { Offscreen, X11 };

    ~VxNativeWindow();
    VxNativeWindow(const VxNativeWindow&) = delete;
    VxNativeWindow& operator=(const VxNativeWindow&) = delete;

    // An off-screen target; sizes below 1 are raised to 1 (a pbuffer cannot be empty).
    static std::unique_ptr<VxNativeWindow> CreateOffscreen(int width, int height);
    // Wraps a host window: display is an X11 Display*, window an X11 Window. Null when either is
    // missing. The host keeps both alive for as long as this object lives.
    static std::unique_ptr<VxNativeWindow> FromX11(void* display, unsigned long window);

    Kind GetKind() const { return m_kind; }
    bool IsOffscreen() const { return m_kind == Kind::Offscreen; }
    void* GetX11Display() const { return m_x11Display; }
    unsigned long GetX11Window() const { return m_x11Window; }

    // Client size in pixels. For an X11 window this asks the server every time (the host may
    // have resized it); 0 x 0 when the server does not answer.
    int GetWidth() const;
    int GetHeight() const;
    bool GetClientSize(int* width, int* height) const;
    // X11 visual id of the window, 0 for an off-screen target or when the server does not answer.
    unsigned long GetVisualId() const;

    // Changes an off-screen target's size; false for an X11 window. Where a pbuffer already
    // exists it is made again at the new size, and a context current on it stays current on the
    // new one.
    bool SetOffscreenSize(int width, int height);

    // The drawable made when a pixel format was set on the window (VxGLContext::SetPixelFormat).
    // Opaque EGL handles, null before.
    void* GetEGLDisplay() const { return m_eglDisplay; }
    void* GetEGLConfig() const { return m_eglConfig; }
    void* GetEGLSurface() const { return m_eglSurface; }
    bool HasPixelFormat() const { return m_eglSurface != nullptr; }

private:
    friend class VxGLContext;
    VxNativeWindow() = default;

    // Makes the window's surface on display with config; the window then holds a reference on the
    // display. False (nothing kept) when EGL refuses.
    bool CreateSurface(void* eglDisplay, void* eglConfig);
    void DestroySurface();

    Kind m_kind = Kind::Offscreen;
    int m_width = 1;
    int m_height = 1;
    void* m_x11Display = nullptr;
    unsigned long m_x11Window = 0;

    void* m_eglDisplay = nullptr;
    void* m_eglConfig = nullptr;
    void* m_eglSurface = nullptr;
};
