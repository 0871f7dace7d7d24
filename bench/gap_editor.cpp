// Gap editor benchmarks on the synthetic patient at 1280 x 800 off screen, shader path, one
// full-window front view, every gap of the patient carrying a reduction or a space (so every gap
// in view shows a card, its arrows and its lock); each frame ended by glFinish:
//   BM_GapFrameBare      RenderScene with the editor switched off: the reference frame;
//   BM_GapFrameEditor    the same frame with the editor drawn (goal: at most 1.2 x the bare one);
//   BM_GapPickEmpty      the pick pass with picking switched off: frame buffer made, cleared,
//                        one pixel read, freed; the floor of any hover step;
//   BM_GapHoverMove      one MouseLeftMoving over a card (one full pick pass; goal: under 5 ms).
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <gapeditor/ModelCreateModify.h>
#include <gapeditor/ViewControllerCreateModify.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include "support/VxBenchScene.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct Scene : VxBenchScene {
    VxViewRegion* view = nullptr;
    CPoint cardPixel;
};

std::vector<std::tuple<int, int, double>> Values(size_t n) {
    const double pattern[] = {0.3, -1.2, 0.5, 0.2, -0.3, 1.2};
    std::vector<std::tuple<int, int, double>> v;
    for (size_t i = 0; i < n; ++i) {
        v.emplace_back(int(i), int(i) + 1, pattern[i % 6]);
    }
    return v;
}

Scene& GetScene() {
    static Scene* s = [] {
        auto* s = new Scene;
        // The editor draws on the shader path only.
        if (!s->Open(kW, kH, true)) {
            return s;
        }
        s->view = VxViewManager::GetInstance()->GetView(0);

        ModelCreateModify* editor = ModelCreateModify::getInstance();
        editor->InitData(&s->patient->model, {}, {});
        editor->InitData(&s->patient->model, Values(editor->GetupGumGapStartPointList().size()),
                         Values(editor->GetdownGumGapStartPointList().size()));
        // A pixel over a card: the leader end of the first shown upper record.
        RenderV1* r = RenderV1::GetInstance();
        for (const GumGapGraphicsObject& g : editor->GetUpGumGapGraphicsObjects()) {
            if (r->DisplayJudge(s->view, g.points[2])) {
                s->cardPixel = s->render->MapModelPointToScreen(g.points[3]);
                break;
            }
        }
        return s;
    }();
    return *s;
}

bool Ready(benchmark::State& state, Scene& s) {
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return false;
    }
    return true;
}

void Frame(Scene& s) {
    s.render->RenderScene(true);
    glFinish();
}

void BM_GapFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    ModelCreateModify::getInstance()->SetIsShowIPR(false);
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_GapFrameBare)->Unit(benchmark::kMillisecond);

void BM_GapFrameEditor(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    ModelCreateModify::getInstance()->SetIsShowIPR(true);
    for (auto _ : state) {
        Frame(s);
    }
    ModelCreateModify::getInstance()->SetIsShowIPR(false);
}
BENCHMARK(BM_GapFrameEditor)->Unit(benchmark::kMillisecond);

void BM_GapPickEmpty(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    Frame(s);
    ModelCreateModify::getInstance()->SetIsOnCreateModified(false);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            RenderV1::GetInstance()->ObjectSelected(s.view, s.cardPixel.x, s.cardPixel.y));
    }
}
BENCHMARK(BM_GapPickEmpty)->Unit(benchmark::kMillisecond);

void BM_GapHoverMove(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    Frame(s);
    ModelCreateModify::getInstance()->SetIsOnCreateModified(true);
    ViewControllerCreateModify* controller = ViewControllerCreateModify::getInstance();
    for (auto _ : state) {
        controller->SetupCurrentMouseState(s.cardPixel.x, s.cardPixel.y, s.view);
        controller->MouseLeftMoving();
    }
    state.counters["element"] = controller->GetObjectHovered().element;
}
BENCHMARK(BM_GapHoverMove)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
