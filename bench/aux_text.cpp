// Text and axis-cross benchmarks on the synthetic patient at 1280 x 800 off screen,
// fixed-function path, each frame ended by glFinish:
//   BM_TextFrameBare        RenderScene + the empty registry's Render: the reference frame;
//   BM_TextFrameAxisCross   the same plus DrawCoordinateSystem (one view);
//   BM_TextFrame40Labels    the same plus 40 outline-glyph labels (two digits each) over the
//                           teeth; Arg 1: 40 screen-bitmap labels instead;
//   BM_TextSetText40        re-texting 40 outline labels: glyph lists freed and compiled again,
//                           the costly step that drawing never repeats.
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include "support/VxBenchScene.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

using Scene = VxBenchScene;

Scene& GetScene() {
    static Scene* s = [] {
        auto* s = new Scene;
        s->Open(kW, kH, false);
        return s;
    }();
    return *s;
}

VxPoint InBox(const Scene& s, double u, double v, double w) {
    return s.InBox(u, v, w);
}

void Frame(Scene& s) {
    s.render->RenderScene(true);
    s.aux->Render();
    glFinish();
}

bool Ready(benchmark::State& state, Scene& s) {
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return false;
    }
    s.aux->Clear();
    return true;
}

std::vector<VxAuxText*> AddLabels(Scene& s, Text_Type type) {
    std::vector<VxAuxText*> labels;
    for (int i = 0; i < 40; ++i) {
        auto* t = new VxAuxText();
        t->SetTextType(type);
        t->SetColor(VxColor(255, 140, 0));
        if (type == Text_OnScreen) {
            t->SetTextPos(CPoint(20 + (i % 10) * 120, 40 + (i / 10) * 150));
        } else {
            t->SetTextPos(InBox(s, (i % 10 + 0.5) / 10.0, (i / 10 + 0.5) / 4.0, 1.0));
        }
        t->SetText(CString(std::to_wstring(11 + i).c_str()));
        s.aux->AddAuxObject(t);
        labels.push_back(t);
    }
    return labels;
}

void BM_TextFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_TextFrameBare)->Unit(benchmark::kMillisecond);

void BM_TextFrameAxisCross(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        s.render->RenderScene(true);
        s.aux->Render();
        s.render->DrawCoordinateSystem();
        glFinish();
    }
}
BENCHMARK(BM_TextFrameAxisCross)->Unit(benchmark::kMillisecond);

void BM_TextFrame40Labels(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    AddLabels(s, state.range(0) == 0 ? Text_ModelNoDepth : Text_OnScreen);
    for (auto _ : state) {
        Frame(s);
    }
    s.aux->Clear();
}
BENCHMARK(BM_TextFrame40Labels)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_TextSetText40(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    std::vector<VxAuxText*> labels = AddLabels(s, Text_ModelNoDepth);
    int round = 0;
    for (auto _ : state) {
        for (size_t i = 0; i < labels.size(); ++i) {
            labels[i]->SetText(CString(std::to_wstring(10 + (round + int(i)) % 90).c_str()));
        }
        glFinish();
        ++round;
    }
    s.aux->Clear();
}
BENCHMARK(BM_TextSetText40)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
