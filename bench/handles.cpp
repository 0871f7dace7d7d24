// Manipulator benchmarks on the synthetic patient at 1280 x 800 off screen, fixed-function path,
// each frame ended by glFinish, the handles on the lower right first molar (46):
//   BM_HandleFrameBare        RenderScene + the empty registry's Render: the reference frame;
//   BM_HandleFrameAtRest      the same with the frame handle at rest (balls, lines, letters);
//   BM_HandleFrameRotate      the frame handle turning: its ring and the 360 ticks every frame;
//   BM_HandleDragStepFrame    one drag step of the frame handle (Transform, parts placed again):
//                             the baseline of the next;
//   BM_HandleDragStepMode7    one drag step of the position handle in mode 7: Transform and the
//                             SetGeometry it runs, which interpolates and tubes five pipes.
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxFrame.h>
#include <aux/VxAuxPosition.h>
#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include "support/VxBenchScene.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct Scene : VxBenchScene {
    VxFrame molar;
};

Scene& GetScene() {
    static Scene* s = [] {
        auto* s = new Scene;
        if (!s->Open(kW, kH, false)) {
            return s;
        }
        VxTooth* tooth = s->patient->FindTooth(46);
        if (tooth == nullptr) {
            s->error = "no tooth 46";
            return s;
        }
        const auto infos = VxTransformMatrix::GetInstance()->GetDrawInfos(tooth);
        const VxMatrix m = infos.empty() ? VxMatrix::Identity() : infos.begin()->matrix;
        const VxFrame f = tooth->GetFrame();
        s->molar =
            VxFrame(m.Transform(f.GetOrigin()), m.Transform(f.DirX()), m.Transform(f.DirY()));
        return s;
    }();
    return *s;
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

VxAuxFrame* AddFrameHandle(Scene& s) {
    auto* h = new VxAuxFrame;
    h->SetRefDist(8.0);
    h->SetGeometry(s.molar);
    s.aux->AddAuxObject(h);
    return h;
}

void BM_HandleFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_HandleFrameBare)->Unit(benchmark::kMillisecond);

void BM_HandleFrameAtRest(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    AddFrameHandle(s);
    for (auto _ : state) {
        Frame(s);
    }
    s.aux->Clear();
}
BENCHMARK(BM_HandleFrameAtRest)->Unit(benchmark::kMillisecond);

void BM_HandleFrameRotate(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    VxAuxFrame* h = AddFrameHandle(s);
    Frame(s);
    h->SetSupportTranslate(false);
    const CPoint ball = s.render->MapModelPointToScreen(h->TurnBall(2).GetPos());
    if (!h->HitTest(ball.x, ball.y) || h->GetOperMode() != HandleOper_Rotate) {
        state.SkipWithError("the turn ball was not hit");
        return;
    }
    for (auto _ : state) {
        Frame(s);
    }
    s.aux->Clear();
}
BENCHMARK(BM_HandleFrameRotate)->Unit(benchmark::kMillisecond);

void BM_HandleDragStepFrame(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    VxAuxFrame* h = AddFrameHandle(s);
    Frame(s);
    const CPoint c = s.render->MapModelPointToScreen(h->GetFrame().GetOrigin());
    if (!h->HitTest(c.x, c.y)) {
        state.SkipWithError("the centre ball was not hit");
        return;
    }
    bool back = false;
    for (auto _ : state) {
        // Forth and back, so that the handle stays on the tooth.
        const CPoint a(c.x + (back ? 4 : 0), c.y);
        const CPoint b(c.x + (back ? 0 : 4), c.y);
        benchmark::DoNotOptimize(h->Transform(a, b, false, false));
        back = !back;
    }
    s.aux->Clear();
}
BENCHMARK(BM_HandleDragStepFrame)->Unit(benchmark::kMillisecond);

void BM_HandleDragStepMode7(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    auto* p = new VxAuxPosition;
    p->SetRefDist(8.0);
    p->SetMoveMode(HandleMov_All);
    p->SetDisplayPoint(s.molar.GetOrigin());
    p->SetGeometry(s.molar);
    s.aux->AddAuxObject(p);
    Frame(s);
    // The wide arc: a turn about Y, measured on the plane through the origin.
    const CPoint c = s.render->MapModelPointToScreen(p->WidePipeMiddle(0));
    if (!p->HitTest(c.x, c.y) || p->GetActualMovMode() == HandleMov_Unset) {
        state.SkipWithError("no piece of the position handle was hit");
        return;
    }
    const CPoint o = s.render->MapModelPointToScreen(s.molar.GetOrigin());
    bool back = false;
    double moved = 0;
    for (auto _ : state) {
        const CPoint a(o.x + 40, o.y + (back ? 6 : 0));
        const CPoint b(o.x + 40, o.y + (back ? 0 : 6));
        // An identity step would skip the rebuild: counted, so a figure from it shows.
        moved += p->Transform(a, b, false, false).IsIdentity() ? 0.0 : 1.0;
        back = !back;
    }
    state.counters["actual_mode"] = p->GetActualMovMode();
    state.counters["moved_share"] = moved / static_cast<double>(state.iterations());
    s.aux->Clear();
}
BENCHMARK(BM_HandleDragStepMode7)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
