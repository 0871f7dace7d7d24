// Shader-path program costs on a headless context (llvmpipe unless LIBGL_ALWAYS_SOFTWARE=0):
//   BM_FirstFrameCompileAll   the twelve kept programs compiled from the source table, each then
//                             used for one one-point draw and glFinish, which is what a first
//                             frame pays (Mesa finishes code generation at the first draw);
//   BM_PerCallMeshCompile     what every immediate mesh draw pays for its own program: compile,
//                             link, one draw, delete;
//   BM_PerCallGumCompile      the same for a gum drawn that way (two compiles, one delete).
// Mesa's on-disk shader cache is turned off, so every iteration compiles for real: the figures
// are a cold start, the cost a host sees the first time on a machine.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>

// Reaches the renderer's private slots so each iteration starts from empty ones.
class RenderV1Probe {
public:
    static void CompileAllKept() {
        RenderV1* r = RenderV1::GetInstance();
        for (int i = 0; i < RenderV1::Kept_Count; ++i) {
            Shader* s = r->KeptProgram(static_cast<RenderV1::KeptProgram_e>(i));
            DrawOnePoint(s);
        }
    }
    static void ForgetKept() {
        RenderV1* r = RenderV1::GetInstance();
        Shader** slots[] = {
            &r->meshShader,         &r->toothShader,          &r->gumShader,
            &r->attachShader,       &r->billboardShader,      &r->triandcolorShader,
            &r->quadrTextureShader, &r->quadrSelectionShader, &r->quadrTextureForPngShader,
            &r->lineShader,         &r->textShader,           &r->textChineseShader};
        for (Shader** slot : slots) {
            if (*slot) {
                (*slot)->deleteProgram();
                delete *slot;
                *slot = nullptr;
            }
        }
    }
    static void PerCall(bool gum) {
        Shader* s = RenderV1::GetInstance()->CompileCurrentMeshShader(false, gum);
        DrawOnePoint(s);
        s->deleteProgram();
    }

private:
    static void DrawOnePoint(Shader* s) {
        s->use();
        glDrawArrays(GL_POINTS, 0, 1);
        glUseProgram(0);
        glFinish();
    }
};

namespace {

struct Context {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxGLContext> gl;
    GLuint vao = 0;
    bool ok = false;
};

Context& Ctx() {
    static Context c = [] {
        Context c;
        c.window = VxNativeWindow::CreateOffscreen(64, 64);
        c.gl = std::make_unique<VxGLContext>();
        c.ok = c.window && c.gl->Create(c.window.get(), 24, 8);
        if (c.ok) {
            glGenVertexArrays(1, &c.vao);
            glBindVertexArray(c.vao);
        }
        return c;
    }();
    return c;
}

void BM_FirstFrameCompileAll(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context");
        return;
    }
    for (auto _ : state) {
        RenderV1Probe::CompileAllKept();
        state.PauseTiming();
        RenderV1Probe::ForgetKept();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_FirstFrameCompileAll)->Unit(benchmark::kMillisecond);

void BM_PerCallMeshCompile(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context");
        return;
    }
    for (auto _ : state) {
        RenderV1Probe::PerCall(false);
    }
}
BENCHMARK(BM_PerCallMeshCompile)->Unit(benchmark::kMillisecond);

void BM_PerCallGumCompile(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context");
        return;
    }
    for (auto _ : state) {
        RenderV1Probe::PerCall(true);
    }
}
BENCHMARK(BM_PerCallGumCompile)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setenv("MESA_SHADER_CACHE_DISABLE", "true", 0);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
