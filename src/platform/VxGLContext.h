// VxGLContext: an OpenGL context made through EGL, standing where a desktop system would use
// GetDC / ChoosePixelFormat / SetPixelFormat / wglCreateContext / wglMakeCurrent / SwapBuffers.
// The steps are separate calls so a caller can stop at the first that fails, exactly as it would
// with the desktop sequence; Create runs them all in order.
//
// Off-screen windows render into a pbuffer on a display without a window system (Mesa's
// surfaceless platform, else an EGL device, else the default display); X11 windows get a window
// surface on the X11 platform display of their connection.
//
// It deliberately does not share objects between contexts, does not check which thread calls it,
// and never touches GL before the first MakeCurrent. EGL handles come back as void* (EGLDisplay,
// EGLSurface, EGLContext are all pointer typedefs) so this header pulls in no EGL or X11 headers.
#pragma once

#include <platform/VxWindowHandle.h>

#include <string>

class VxGLContext {
public:
    // Which display an off-screen window uses. Auto tries surfaceless, device, default in that
    // order; the environment variable VX_EGL_PLATFORM (surfaceless, device, default) overrides
    // Auto.
    enum class OffscreenPlatform { Auto, Surfaceless, Device, Default };

    VxGLContext() = default;
    ~VxGLContext();
    VxGLContext(const VxGLContext&) = delete;
    VxGLContext& operator=(const VxGLContext&) = delete;

    // All steps below in order; false at the first that fails, leaving what was made so far.
    bool Create(HWND window, int depthBits, int stencilBits);

    // 1. "Device context": the EGL display that serves the window, initialised, OpenGL API bound.
    bool GetDC(HWND window);
    // 2. Pixel format: an EGL config with 8-bit RGBA (8-bit RGB where an X11 window's visual has
    //    no alpha), at least the asked depth and stencil bits, drawable into the window's kind of
    //    surface. Returns the config's id, or 0 when nothing matches.
    int ChoosePixelFormat(int depthBits, int stencilBits);
    // 3. Sets the chosen format on the window, which makes its surface. A window that already has
    //    a surface with another format refuses, as a desktop window does.
    bool SetPixelFormat(int pixelFormat);
    // 4. The context: OpenGL 4.5 compatibility profile if offered, else whatever compatibility
    //    context the driver gives without version attributes.
    bool CreateContext();
    // 5. Binds the context to the window on this thread. The first time, GLEW loads the entry
    //    points.
    bool MakeCurrent();
    // Binds to another window served by the same display (an X11 window of the same connection,
    // or another off-screen target); its pixel format is set here when it has none. The window
    // given to any of these calls must outlive the context's use of it.
    bool MakeCurrent(HWND window);
    void DoneCurrent();
    bool SwapBuffers();

    // The context exists.
    bool IsValid() const { return m_context != nullptr; }
    bool IsCurrent() const;

    HWND GetWindow() const { return m_window; }
    void* GetDisplay() const { return m_display; }
    void* GetSurface() const;
    void* GetContext() const { return m_context; }
    int GetPixelFormat() const { return m_pixelFormat; }

    // What the steps found, for diagnostics and tests.
    const char* GetPlatformName() const { return m_platformName; }
    int GetEGLMajor() const { return m_eglMajor; }
    int GetEGLMinor() const { return m_eglMinor; }
    // True when the 4.5 compatibility attributes were accepted, false after the fallback.
    bool HasVersionedContext() const { return m_versioned; }
    // glewInit's result at the first MakeCurrent (GLEW_OK is 0), -1 before.
    int GetGlewStatus() const { return m_glewStatus; }
    // GLEW's pointers for buffers and programs are set. This, not glewInit's result, decides.
    bool EntryPointsLoaded() const { return m_entryPointsLoaded; }
    // Why the last failing step failed, with the configs the display offered when choosing failed.
    const std::string& GetLastError() const { return m_lastError; }

    // Every config of the display, one line each (id, RGBA, depth, stencil, samples, surfaces).
    static std::string DescribeConfigs(void* display);
    static void SetOffscreenPlatform(OffscreenPlatform platform);
    static OffscreenPlatform GetOffscreenPlatform();

private:
    friend class VxNativeWindow;
    // Displays are counted: initialised at the first user and terminated after the last, so an
    // X11 connection the host closes later is not left behind inside EGL.
    static bool RetainDisplay(void* display);
    static void ReleaseDisplay(void* display);

    void Fail(const std::string& message);
    void ReleaseAll();

    HWND m_window = nullptr;
    void* m_display = nullptr;
    bool m_ownsDisplayRef = false;
    void* m_config = nullptr;
    void* m_context = nullptr;
    int m_pixelFormat = 0;
    const char* m_platformName = "";
    int m_eglMajor = 0;
    int m_eglMinor = 0;
    bool m_versioned = false;
    int m_glewStatus = -1;
    bool m_entryPointsLoaded = false;
    std::string m_lastError;
};
