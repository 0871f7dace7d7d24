// VxGLContext: EGL display choice, config choice, surface and context creation, GLEW loading.
// Not here: anything drawn, and any GL state beyond what glewInit itself queries.
#include <platform/VxGLContext.h>

#include <platform/VxDriverQuirks.h>
#include <platform/VxNativeWindow.h>

#include <GL/glew.h>
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <vector>

namespace {

struct DisplayUse {
    int refs = 0;
    EGLint major = 0;
    EGLint minor = 0;
};

// Never destroyed: contexts and windows held by other static objects may release their displays
// during exit, after a static map would already be gone.
std::map<void*, DisplayUse>& Displays() {
    static auto* displays = new std::map<void*, DisplayUse>();
    return *displays;
}

VxGLContext::OffscreenPlatform g_offscreenPlatform = VxGLContext::OffscreenPlatform::Auto;

bool HasToken(const char* list, const char* token) {
    if (!list || !token) {
        return false;
    }
    const size_t n = std::strlen(token);
    for (const char* p = list; (p = std::strstr(p, token)) != nullptr; p += n) {
        const bool startOk = p == list || p[-1] == ' ';
        const bool endOk = p[n] == '\0' || p[n] == ' ';
        if (startOk && endOk) {
            return true;
        }
    }
    return false;
}

const char* ClientExtensions() {
    // Without EGL_EXT_client_extensions this query fails with EGL_BAD_DISPLAY; leave no error.
    const char* list = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (!list) {
        eglGetError();
    }
    return list;
}

bool DebugLogEnabled() {
#ifdef VX_GL_DEBUG
    return true;
#else
    const char* env = std::getenv("VX_EGL_DEBUG");
    return env && *env && std::strcmp(env, "0") != 0;
#endif
}

std::string EGLErrorName(EGLint error) {
    switch (error) {
    case EGL_SUCCESS:
        return "EGL_SUCCESS";
    case EGL_NOT_INITIALIZED:
        return "EGL_NOT_INITIALIZED";
    case EGL_BAD_ACCESS:
        return "EGL_BAD_ACCESS";
    case EGL_BAD_ALLOC:
        return "EGL_BAD_ALLOC";
    case EGL_BAD_ATTRIBUTE:
        return "EGL_BAD_ATTRIBUTE";
    case EGL_BAD_CONFIG:
        return "EGL_BAD_CONFIG";
    case EGL_BAD_CONTEXT:
        return "EGL_BAD_CONTEXT";
    case EGL_BAD_CURRENT_SURFACE:
        return "EGL_BAD_CURRENT_SURFACE";
    case EGL_BAD_DISPLAY:
        return "EGL_BAD_DISPLAY";
    case EGL_BAD_MATCH:
        return "EGL_BAD_MATCH";
    case EGL_BAD_NATIVE_PIXMAP:
        return "EGL_BAD_NATIVE_PIXMAP";
    case EGL_BAD_NATIVE_WINDOW:
        return "EGL_BAD_NATIVE_WINDOW";
    case EGL_BAD_PARAMETER:
        return "EGL_BAD_PARAMETER";
    case EGL_BAD_SURFACE:
        return "EGL_BAD_SURFACE";
    case EGL_CONTEXT_LOST:
        return "EGL_CONTEXT_LOST";
    default: {
        char buf[32];
        std::snprintf(buf, sizeof buf, "EGL error 0x%04x", static_cast<unsigned>(error));
        return buf;
    }
    }
}

EGLint ConfigAttrib(EGLDisplay display, EGLConfig config, EGLint attribute) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

// A display is usable for off-screen work when it has a config GL can render into a pbuffer of.
bool HasPbufferGLConfig(EGLDisplay display) {
    const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT, EGL_NONE};
    EGLint count = 0;
    return eglChooseConfig(display, attributes, nullptr, 0, &count) && count > 0;
}

VxGLContext::OffscreenPlatform EffectivePlatform() {
    if (g_offscreenPlatform != VxGLContext::OffscreenPlatform::Auto) {
        return g_offscreenPlatform;
    }
    const char* env = std::getenv("VX_EGL_PLATFORM");
    if (env) {
        if (std::strcmp(env, "surfaceless") == 0) {
            return VxGLContext::OffscreenPlatform::Surfaceless;
        }
        if (std::strcmp(env, "device") == 0) {
            return VxGLContext::OffscreenPlatform::Device;
        }
        if (std::strcmp(env, "default") == 0) {
            return VxGLContext::OffscreenPlatform::Default;
        }
    }
    return VxGLContext::OffscreenPlatform::Auto;
}

} // namespace

bool VxGLContext::RetainDisplay(void* display) {
    if (!display) {
        return false;
    }
    DisplayUse& use = Displays()[display];
    if (use.refs == 0 && !eglInitialize(display, &use.major, &use.minor)) {
        Displays().erase(display);
        return false;
    }
    ++use.refs;
    return true;
}

void VxGLContext::ReleaseDisplay(void* display) {
    auto it = Displays().find(display);
    if (it == Displays().end()) {
        return;
    }
    if (--it->second.refs <= 0) {
        // The same display comes back from eglGetPlatformDisplay for the same native display, so
        // a later user simply initialises it again.
        eglTerminate(display);
        Displays().erase(it);
    }
}

void VxGLContext::SetOffscreenPlatform(OffscreenPlatform platform) {
    g_offscreenPlatform = platform;
}

VxGLContext::OffscreenPlatform VxGLContext::GetOffscreenPlatform() {
    return g_offscreenPlatform;
}

VxGLContext::~VxGLContext() {
    ReleaseAll();
}

void VxGLContext::ReleaseAll() {
    if (m_context) {
        if (eglGetCurrentContext() == m_context) {
            eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
        eglDestroyContext(m_display, m_context);
        m_context = nullptr;
    }
    if (m_ownsDisplayRef) {
        ReleaseDisplay(m_display);
        m_ownsDisplayRef = false;
    }
    m_display = nullptr;
    m_config = nullptr;
    m_pixelFormat = 0;
}

void VxGLContext::Fail(const std::string& message) {
    m_lastError = message;
    if (DebugLogEnabled()) {
        std::fprintf(stderr, "VxGLContext: %s\n", message.c_str());
    }
}

bool VxGLContext::Create(HWND window, int depthBits, int stencilBits) {
    if (!GetDC(window)) {
        return false;
    }
    const int format = ChoosePixelFormat(depthBits, stencilBits);
    return format != 0 && SetPixelFormat(format) && CreateContext() && MakeCurrent();
}

bool VxGLContext::GetDC(HWND window) {
    if (m_context) {
        Fail("GetDC: the context already exists");
        return false;
    }
    if (!window) {
        Fail("GetDC: no window");
        return false;
    }
    ReleaseAll();
    m_window = window;

    const char* client = ClientExtensions();
    EGLDisplay display = EGL_NO_DISPLAY;
    if (window->HasPixelFormat()) {
        // The window's format was set by another context: draw through the same display.
        display = window->GetEGLDisplay();
        m_platformName = window->IsOffscreen() ? "offscreen (shared)" : "x11";
        if (!RetainDisplay(display)) {
            display = EGL_NO_DISPLAY;
        }
    } else if (!window->IsOffscreen()) {
        // Like GetDC on a stale handle: a window the server does not know has no device context.
        if (!window->GetClientSize(nullptr, nullptr)) {
            Fail("GetDC: the X11 window does not exist");
            return false;
        }
        if (HasToken(client, "EGL_KHR_platform_x11") || HasToken(client, "EGL_EXT_platform_x11")) {
            display = eglGetPlatformDisplay(EGL_PLATFORM_X11_KHR, window->GetX11Display(), nullptr);
            m_platformName = "x11";
        }
        if (display != EGL_NO_DISPLAY && !RetainDisplay(display)) {
            display = EGL_NO_DISPLAY;
        }
    } else {
        const OffscreenPlatform wanted = EffectivePlatform();
        const bool any = wanted == OffscreenPlatform::Auto;
        auto tryDisplay = [&](EGLDisplay candidate, const char* name) {
            if (display != EGL_NO_DISPLAY || candidate == EGL_NO_DISPLAY) {
                return;
            }
            if (!RetainDisplay(candidate)) {
                eglGetError();
                return;
            }
            if (!HasPbufferGLConfig(candidate)) {
                ReleaseDisplay(candidate);
                return;
            }
            display = candidate;
            m_platformName = name;
        };
        // Mesa's surfaceless platform needs no window system and, unlike its name suggests, does
        // offer pbuffers. NVIDIA's EGL does not have it and is reached through a device instead.
        if ((any || wanted == OffscreenPlatform::Surfaceless) &&
            HasToken(client, "EGL_MESA_platform_surfaceless")) {
            tryDisplay(
                eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr),
                "surfaceless");
        }
        if ((any || wanted == OffscreenPlatform::Device) &&
            HasToken(client, "EGL_EXT_platform_device")) {
            auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(
                eglGetProcAddress("eglQueryDevicesEXT"));
            EGLDeviceEXT devices[16];
            EGLint count = 0;
            if (queryDevices && queryDevices(16, devices, &count)) {
                for (EGLint i = 0; i < count && display == EGL_NO_DISPLAY; ++i) {
                    tryDisplay(eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr),
                               "device");
                }
            }
        }
        if (any || wanted == OffscreenPlatform::Default) {
            tryDisplay(eglGetDisplay(EGL_DEFAULT_DISPLAY), "default");
        }
    }
    if (display == EGL_NO_DISPLAY) {
        Fail(std::string("GetDC: no EGL display for this window (client extensions: ") +
             (client ? client : "none") + ")");
        m_platformName = "";
        return false;
    }
    m_display = display;
    m_ownsDisplayRef = true;
    const DisplayUse& use = Displays()[display];
    m_eglMajor = use.major;
    m_eglMinor = use.minor;
    if (!eglBindAPI(EGL_OPENGL_API)) {
        Fail("GetDC: the display offers no desktop OpenGL (" + EGLErrorName(eglGetError()) + ")");
        return false;
    }
    return true;
}

int VxGLContext::ChoosePixelFormat(int depthBits, int stencilBits) {
    if (!m_display || !m_window) {
        Fail("ChoosePixelFormat: GetDC has not succeeded");
        return 0;
    }
    depthBits = depthBits < 0 ? 0 : depthBits;
    stencilBits = stencilBits < 0 ? 0 : stencilBits;
    const bool offscreen = m_window->IsOffscreen();
    const EGLint attributes[] = {EGL_COLOR_BUFFER_TYPE,
                                 EGL_RGB_BUFFER,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_GREEN_SIZE,
                                 8,
                                 EGL_BLUE_SIZE,
                                 8,
                                 EGL_DEPTH_SIZE,
                                 depthBits,
                                 EGL_STENCIL_SIZE,
                                 stencilBits,
                                 EGL_SURFACE_TYPE,
                                 offscreen ? EGL_PBUFFER_BIT : EGL_WINDOW_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT,
                                 EGL_NONE};
    EGLint count = 0;
    std::vector<EGLConfig> configs;
    if (eglChooseConfig(m_display, attributes, nullptr, 0, &count) && count > 0) {
        configs.resize(static_cast<size_t>(count));
        eglChooseConfig(m_display, attributes, configs.data(), count, &count);
        configs.resize(static_cast<size_t>(count));
    }

    // eglChooseConfig puts deeper colour first (quirk "egl-choose-config-deep-colour-first"),
    // which is not what a 32-bit pixel format means. Rank ourselves: exactly 8 bits a channel,
    // the window's own visual, alpha, no multisampling, the least depth and stencil that satisfy
    // the request.
    const EGLint visual = offscreen ? 0 : static_cast<EGLint>(m_window->GetVisualId());
    EGLConfig best = nullptr;
    long bestScore = 0;
    for (EGLConfig config : configs) {
        if (ConfigAttrib(m_display, config, EGL_RED_SIZE) != 8 ||
            ConfigAttrib(m_display, config, EGL_GREEN_SIZE) != 8 ||
            ConfigAttrib(m_display, config, EGL_BLUE_SIZE) != 8) {
            continue;
        }
        const EGLint alpha = ConfigAttrib(m_display, config, EGL_ALPHA_SIZE);
        if (alpha != 8 && alpha != 0) {
            continue;
        }
        long score = 0;
        if (visual != 0 && ConfigAttrib(m_display, config, EGL_NATIVE_VISUAL_ID) != visual) {
            score += 1L << 40;
        }
        if (alpha != 8) {
            score += 1L << 32;
        }
        if (ConfigAttrib(m_display, config, EGL_CONFIG_CAVEAT) != EGL_NONE) {
            score += 1L << 28;
        }
        score += static_cast<long>(ConfigAttrib(m_display, config, EGL_SAMPLES)) << 20;
        score += static_cast<long>(ConfigAttrib(m_display, config, EGL_DEPTH_SIZE) - depthBits)
                 << 10;
        score += ConfigAttrib(m_display, config, EGL_STENCIL_SIZE) - stencilBits;
        if (!best || score < bestScore) {
            best = config;
            bestScore = score;
        }
    }
    if (!best) {
        char what[160];
        std::snprintf(what, sizeof what,
                      "ChoosePixelFormat: no RGBA8 %s config with depth %d and stencil %d; "
                      "the display offers:\n",
                      offscreen ? "pbuffer" : "window", depthBits, stencilBits);
        Fail(what + DescribeConfigs(m_display));
        return 0;
    }
    // Choosing changes nothing, as on the desktop: only SetPixelFormat takes the format.
    return ConfigAttrib(m_display, best, EGL_CONFIG_ID);
}

bool VxGLContext::SetPixelFormat(int pixelFormat) {
    if (!m_display || !m_window) {
        Fail("SetPixelFormat: GetDC has not succeeded");
        return false;
    }
    const EGLint attributes[] = {EGL_CONFIG_ID, pixelFormat, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (pixelFormat <= 0 || !eglChooseConfig(m_display, attributes, &config, 1, &count) ||
        count < 1) {
        Fail("SetPixelFormat: no config with id " + std::to_string(pixelFormat));
        return false;
    }
    if (m_window->HasPixelFormat()) {
        // A window takes one format for its life; setting the same one again is harmless.
        const bool same =
            m_window->GetEGLDisplay() == m_display &&
            ConfigAttrib(m_display, m_window->GetEGLConfig(), EGL_CONFIG_ID) == pixelFormat;
        if (!same) {
            Fail("SetPixelFormat: the window already has another pixel format");
            return false;
        }
    } else if (!m_window->CreateSurface(m_display, config)) {
        Fail("SetPixelFormat: surface creation failed (" + EGLErrorName(eglGetError()) + ")");
        return false;
    }
    // A context made before keeps the config it was made with.
    if (!m_context) {
        m_config = config;
    }
    m_pixelFormat = pixelFormat;
    return true;
}

bool VxGLContext::CreateContext() {
    if (!m_display || !m_config) {
        Fail("CreateContext: no pixel format");
        return false;
    }
    if (m_context) {
        return true;
    }
    eglBindAPI(EGL_OPENGL_API);
    const EGLint versioned[] = {EGL_CONTEXT_MAJOR_VERSION,
                                4,
                                EGL_CONTEXT_MINOR_VERSION,
                                5,
                                EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                                EGL_NONE};
    m_context = eglCreateContext(m_display, m_config, EGL_NO_CONTEXT, versioned);
    m_versioned = m_context != EGL_NO_CONTEXT;
    if (!m_context) {
        eglGetError();
        m_context = eglCreateContext(m_display, m_config, EGL_NO_CONTEXT, nullptr);
    }
    if (!m_context) {
        Fail("CreateContext: " + EGLErrorName(eglGetError()));
        return false;
    }
    return true;
}

bool VxGLContext::MakeCurrent() {
    if (!m_context || !m_window || !m_window->GetEGLSurface()) {
        Fail("MakeCurrent: no context or no surface");
        return false;
    }
    // The bound API is per thread; a thread that never bound OpenGL would make the context
    // current in the OpenGL ES slot.
    eglBindAPI(EGL_OPENGL_API);
    EGLSurface surface = m_window->GetEGLSurface();
    if (!eglMakeCurrent(m_display, surface, surface, m_context)) {
        Fail("MakeCurrent: " + EGLErrorName(eglGetError()));
        return false;
    }
    if (m_glewStatus < 0) {
        // GLEW only reads extension strings with this set on a compatibility context of some
        // drivers; without it entry points of core features may stay null.
        glewExperimental = GL_TRUE;
        m_glewStatus = static_cast<int>(glewInit());
        // glewInit's result is not trusted either way: see the quirk's entry.
        m_entryPointsLoaded = glGenBuffers && glBindBuffer && glBufferData && glCreateShader &&
                              glUseProgram && glGenFramebuffers && glGenVertexArrays;
        if (m_glewStatus != GLEW_OK && !(m_glewStatus == GLEW_ERROR_NO_GLX_DISPLAY &&
                                         VxDriverQuirks::Applies("glew-glx-error-under-egl"))) {
            Fail("MakeCurrent: glewInit failed with " + std::to_string(m_glewStatus));
        }
    }
    return true;
}

bool VxGLContext::MakeCurrent(HWND window) {
    if (!window) {
        Fail("MakeCurrent: no window");
        return false;
    }
    if (window == m_window) {
        return MakeCurrent();
    }
    if (!m_context) {
        Fail("MakeCurrent: no context");
        return false;
    }
    if (!window->HasPixelFormat()) {
        // Only windows the same display serves can take this context.
        bool sameDisplay = false;
        if (window->IsOffscreen()) {
            sameDisplay = m_window && m_window->IsOffscreen();
        } else if (m_window && !m_window->IsOffscreen()) {
            sameDisplay = eglGetPlatformDisplay(EGL_PLATFORM_X11_KHR, window->GetX11Display(),
                                                nullptr) == m_display;
        }
        if (!sameDisplay || !window->CreateSurface(m_display, m_config)) {
            Fail("MakeCurrent: the window cannot take this context's pixel format");
            return false;
        }
    } else if (window->GetEGLDisplay() != m_display) {
        Fail("MakeCurrent: the window belongs to another display");
        return false;
    }
    m_window = window;
    return MakeCurrent();
}

void VxGLContext::DoneCurrent() {
    if (m_context && eglGetCurrentContext() == m_context) {
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }
}

bool VxGLContext::SwapBuffers() {
    void* surface = GetSurface();
    if (!m_display || !surface) {
        return false;
    }
    // On a pbuffer this does nothing and succeeds, so a frame's last call is the same either way.
    return eglSwapBuffers(m_display, surface) == EGL_TRUE;
}

bool VxGLContext::IsCurrent() const {
    return m_context && eglGetCurrentContext() == m_context;
}

void* VxGLContext::GetSurface() const {
    return m_window ? m_window->GetEGLSurface() : nullptr;
}

std::string VxGLContext::DescribeConfigs(void* display) {
    EGLint count = 0;
    if (!display || !eglGetConfigs(display, nullptr, 0, &count) || count <= 0) {
        return "  (no configs)\n";
    }
    std::vector<EGLConfig> configs(static_cast<size_t>(count));
    eglGetConfigs(display, configs.data(), count, &count);
    std::ostringstream out;
    for (EGLint i = 0; i < count; ++i) {
        EGLConfig c = configs[static_cast<size_t>(i)];
        const EGLint surfaces = ConfigAttrib(display, c, EGL_SURFACE_TYPE);
        const EGLint renderable = ConfigAttrib(display, c, EGL_RENDERABLE_TYPE);
        out << "  id " << ConfigAttrib(display, c, EGL_CONFIG_ID) << ": rgba "
            << ConfigAttrib(display, c, EGL_RED_SIZE) << '/'
            << ConfigAttrib(display, c, EGL_GREEN_SIZE) << '/'
            << ConfigAttrib(display, c, EGL_BLUE_SIZE) << '/'
            << ConfigAttrib(display, c, EGL_ALPHA_SIZE) << " depth "
            << ConfigAttrib(display, c, EGL_DEPTH_SIZE) << " stencil "
            << ConfigAttrib(display, c, EGL_STENCIL_SIZE) << " samples "
            << ConfigAttrib(display, c, EGL_SAMPLES) << " visual "
            << ConfigAttrib(display, c, EGL_NATIVE_VISUAL_ID)
            << ((surfaces & EGL_WINDOW_BIT) ? " window" : "")
            << ((surfaces & EGL_PBUFFER_BIT) ? " pbuffer" : "")
            << ((renderable & EGL_OPENGL_BIT) ? " gl" : " no-gl") << "\n";
    }
    return out.str();
}
