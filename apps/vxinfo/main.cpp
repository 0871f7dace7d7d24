// vxinfo: opens an off-screen GL context through the library's platform layer and prints what it
// got (EGL platform and version, GL vendor, renderer, version, depth and stencil bits, the quirks
// that apply). Exits 1 with the reason when no context can be made (the configs on offer when none
// matched the request).
// With --shaders it also compiles every program of the shader path from the library's source
// table (each failing stage prints its record), and says which of the shader path's images and
// font were found beside the library.
// It draws nothing and opens no window.
//
// Usage: vxinfo [--platform auto|surfaceless|device|default] [--depth N] [--stencil N] [--shaders]
#include <platform/VxDriverQuirks.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>
#include <shader/ShaderSourceTable.h>

#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

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
                         "[--depth N] [--stencil N] [--shaders]\n"
                         "  --shaders  compile every shader-path program and list the shader "
                         "path's images and font\n");
    return 2;
}

// Every vertex and fragment pair the renderer compiles. True when all link.
bool ReportShaders() {
    static const char* const kPairs[][2] = {
        {"tooth_vertex_shader", "tooth_frag_shader"},
        {"Mesh_vertex_shader", "Mesh_frag_shader"},
        {"Mesh_vertex_shader", "Mesh_frag_shaderforBackAndFront"},
        {"tooth_vertex_shader", "Mesh_frag_shader"},
        {"Gum_vertex_shader", "Gum_frag_shader"},
        {"billboard3d_vertex_shader", "billboard3d_frag_shader"},
        {"triandcolor_vertex_shader", "triandcolor_frag_shader"},
        {"QuadrTexture_vertex_shader", "QuadrTexture_frag_shader"},
        {"QuadrSelection_vertex_shader", "QuadrSelection_frag_shader"},
        {"QuadrTexture_forpng_vertex_shader", "QuadrTexture_forpng_frag_shader"},
        {"line_vertex_shader", "line_frag_shader"},
        {"text_vertex_shader", "text_frag_shader"},
        {"text_chinese_vertex_shader", "text_chinese_frag_shader"},
    };
    bool all = true;
    std::fflush(stdout);
    for (const auto& pair : kPairs) {
        Shader shader(ShaderSourceTable::Source(pair[0]), ShaderSourceTable::Source(pair[1]));
        GLint linked = 0;
        glGetProgramiv(shader.program, GL_LINK_STATUS, &linked);
        std::printf("program:        %s + %s: %s\n", pair[0], pair[1],
                    linked ? "linked" : "FAILED");
        all = all && linked;
        shader.deleteProgram();
    }
    const RenderV1* r = RenderV1::GetInstance();
    std::printf("gum colour map: %dx%d%s\n", r->gumImageWidth, r->gumImageHeight,
                r->gumImagePixels ? "" : " (missing)");
    std::printf("gum bump map:   %dx%d%s\n", r->gumBumpWidth, r->gumBumpHeight,
                r->gumBumpPixels ? "" : " (missing)");
    int images = 0;
    for (const auto& e : r->editorImages) {
        images += e.second.pixels != nullptr;
    }
    std::printf("editor images:  %d of %d\n", images, static_cast<int>(r->editorImages.size()));
    std::printf("font:           %s\n", r->ftFace ? "default.ttf loaded" : "MISSING");
    return all;
}

} // namespace

int main(int argc, char** argv) {
    int depthBits = 24;
    int stencilBits = 8;
    bool shaders = false;
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
        } else if (arg == "--shaders") {
            shaders = true;
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
    if (shaders && !ReportShaders()) {
        return 1;
    }
    return context.EntryPointsLoaded() ? 0 : 1;
}
