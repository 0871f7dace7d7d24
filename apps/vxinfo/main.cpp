// vxinfo: opens an off-screen GL context through the library's platform layer and prints what it
// got (EGL platform and version, GL vendor, renderer, version, depth and stencil bits, the quirks
// that apply). Exits 1 with the reason when no context can be made (the configs on offer when none
// matched the request).
// It draws nothing and opens no window.
//
// Usage: vxinfo [--platform auto|surfaceless|device|default] [--depth N] [--stencil N]
#include <platform/VxDriverQuirks.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>

#include <GL/gl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

const char* GLString(GLenum name) {
    const char* s = reinterpret_cast<const char*>(glGetString(name));
    return s ? s : "(none)";
}

int Usage() {
    std::fprintf(stderr, "usage: vxinfo [--platform auto|surfaceless|device|default] "
                         "[--depth N] [--stencil N]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    int depthBits = 24;
    int stencilBits = 8;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (arg == "--platform" && value) {
            const std::string p = value;
            if (p == "surfaceless") {
                VxGLContext::SetOffscreenPlatform(VxGLContext::OffscreenPlatform::Surfaceless);
            } else if (p == "device") {
                VxGLContext::SetOffscreenPlatform(VxGLContext::OffscreenPlatform::Device);
            } else if (p == "default") {
                VxGLContext::SetOffscreenPlatform(VxGLContext::OffscreenPlatform::Default);
            } else if (p != "auto") {
                return Usage();
            }
            ++i;
        } else if (arg == "--depth" && value) {
            depthBits = std::atoi(value);
            ++i;
        } else if (arg == "--stencil" && value) {
            stencilBits = std::atoi(value);
            ++i;
        } else {
            return Usage();
        }
    }

    auto window = VxNativeWindow::CreateOffscreen(256, 256);
    VxGLContext context;
    if (!context.Create(window.get(), depthBits, stencilBits)) {
        std::fprintf(stderr, "vxinfo: could not make an OpenGL context: %s\n",
                     context.GetLastError().c_str());
        return 1;
    }

    GLint depth = 0;
    GLint stencil = 0;
    GLint red = 0;
    GLint alpha = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depth);
    glGetIntegerv(GL_STENCIL_BITS, &stencil);
    glGetIntegerv(GL_RED_BITS, &red);
    glGetIntegerv(GL_ALPHA_BITS, &alpha);
    const char* renderer = GLString(GL_RENDERER);
    const char* vendor = GLString(GL_VENDOR);

    std::printf("EGL platform:   %s (EGL %d.%d)\n", context.GetPlatformName(),
                context.GetEGLMajor(), context.GetEGLMinor());
    std::printf("pixel format:   config %d, asked depth %d stencil %d\n", context.GetPixelFormat(),
                depthBits, stencilBits);
    std::printf("context:        %s\n", context.HasVersionedContext()
                                            ? "4.5 compatibility profile requested"
                                            : "driver default (4.5 compatibility refused)");
    std::printf("GL vendor:      %s\n", vendor);
    std::printf("GL renderer:    %s\n", renderer);
    std::printf("GL version:     %s\n", GLString(GL_VERSION));
    std::printf("GLSL version:   %s\n", GLString(GL_SHADING_LANGUAGE_VERSION));
    std::printf("depth bits:     %d\n", depth);
    std::printf("stencil bits:   %d\n", stencil);
    std::printf("colour bits:    %d per channel, alpha %d\n", red, alpha);
    std::printf("GLEW:           status %d, entry points %s\n", context.GetGlewStatus(),
                context.EntryPointsLoaded() ? "loaded" : "MISSING");
    std::string quirks;
    for (const std::string& q : VxDriverQuirks::Active(renderer, vendor)) {
        quirks += (quirks.empty() ? "" : ", ") + q;
    }
    std::printf("driver quirks:  %s\n", quirks.empty() ? "none" : quirks.c_str());
    return context.EntryPointsLoaded() ? 0 : 1;
}
