// Glyph text and screen primitives of the shader path on a headless context (llvmpipe unless
// LIBGL_ALWAYS_SOFTWARE=0), each iteration ended by glFinish so the rasteriser's work counts:
//   BM_RenderText3Label        one list-row label (12 characters, 16 pixels) with every glyph
//                              already in the store: what the gap editor pays per label per frame;
//   BM_RenderText3Value        one card value ("1.2", 24 pixels), warm;
//   BM_ScreenQuadrangle        one DrawQuadrangle3 (a card background), warm;
//   BM_TextureFontFirstBuild   a fresh any-size store and its first list row: 11 glyphs rendered
//                              by FreeType and uploaded, one texture each;
//   BM_AsciiStoreFirstBuild    the narrow store's first fill: all 128 ASCII glyphs at 48 pixels.
#include <GL/gl.h>

#include <mesh/VxDrawerFiles.h>
#include <platform/VxFileSystem.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/NuTextureFont.h>
#include <shader/RenderV1.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <set>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;
constexpr float kNear = 0.1f;
constexpr float kFar = 100.0f;
constexpr float kZ = -(kNear + kFar) / 2.0f;
const wchar_t* const kRow = L"在11与21之间增加片切";

struct Context {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxGLContext> gl;
    bool ok = false;
};

Context& Ctx() {
    static Context c = [] {
        Context c;
        c.window = VxNativeWindow::CreateOffscreen(kW, kH);
        c.gl = std::make_unique<VxGLContext>();
        c.ok = c.window && c.gl->Create(c.window.get(), 24, 8);
        if (c.ok) {
            glViewport(0, 0, kW, kH);
            RenderV1* r = RenderV1::GetInstance();
            r->GenTextureFont();
            c.ok = r->ftFace != nullptr;
        }
        return c;
    }();
    return c;
}

void Label(const wchar_t* text, int pixelSize) {
    RenderV1::GetInstance()->RenderText3(CPoint(20, 60), kZ, text, glm::vec3(0, 0, 0), kW, kH,
                                         kNear, kFar, pixelSize, 12);
}

void BM_RenderText3Label(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context or no font");
        return;
    }
    Label(kRow, 16);
    glFinish();
    for (auto _ : state) {
        Label(kRow, 16);
        glFinish();
    }
}
BENCHMARK(BM_RenderText3Label)->Unit(benchmark::kMicrosecond);

void BM_RenderText3Value(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context or no font");
        return;
    }
    Label(L"1.2", 24);
    glFinish();
    for (auto _ : state) {
        Label(L"1.2", 24);
        glFinish();
    }
}
BENCHMARK(BM_RenderText3Value)->Unit(benchmark::kMicrosecond);

void BM_ScreenQuadrangle(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context or no font");
        return;
    }
    RenderV1* r = RenderV1::GetInstance();
    const auto draw = [r] {
        r->DrawQuadrangle3(CPoint(20, 40), CPoint(68, 40), CPoint(68, 72), CPoint(20, 72), kZ,
                           glm::vec3(1, 1, 1), kW, kH, kNear, kFar);
        glFinish();
    };
    draw();
    for (auto _ : state) {
        draw();
    }
}
BENCHMARK(BM_ScreenQuadrangle)->Unit(benchmark::kMicrosecond);

void BM_TextureFontFirstBuild(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context or no font");
        return;
    }
    const std::string path =
        VxFileSystem::ToNativePath(VxDrawerFiles::Path(L"\\default.ttf").Str().c_str());
    for (auto _ : state) {
        NuTextureFont font(path.c_str(), 16);
        font.SetString(kRow);
        glFinish();
        state.PauseTiming();
        std::set<GLuint> textures;
        for (const NuGlyphCell* cell : font.result) {
            textures.insert(cell->Texture());
        }
        for (GLuint t : textures) {
            glDeleteTextures(1, &t);
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_TextureFontFirstBuild)->Unit(benchmark::kMillisecond);

void BM_AsciiStoreFirstBuild(benchmark::State& state) {
    if (!Ctx().ok) {
        state.SkipWithError("no GL context or no font");
        return;
    }
    RenderV1* r = RenderV1::GetInstance();
    for (auto _ : state) {
        // The first narrow draw fills the whole store, then draws one character.
        r->RenderText(VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 0),
                      std::string("0"), 0, 0, 0.01f, glm::vec3(0, 0, 0));
        glFinish();
        state.PauseTiming();
        for (auto& entry : r->asciiCharacters) {
            glDeleteTextures(1, &entry.second.textureID);
        }
        r->asciiCharacters.clear();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_AsciiStoreFirstBuild)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
