// Aux-object benchmarks on the synthetic patient at 1280 x 800 off screen, fixed-function path:
//   BM_AuxFrameBare          RenderScene + the empty registry's Render + glFinish: the frame a
//                            host pays without aux objects;
//   BM_AuxFrame200           the same with 200 visible aux objects over the teeth (100 lines,
//                            50 spheres, 25 arrows, 25 circles; Arg 1: 200 lines), the goal
//                            being at most 10 % more;
//   BM_AuxFrame500Points     the same with 500 spheres;
//   BM_AuxRenderLines        Render alone over 5,000 hidden and 200 visible lines;
//   BM_AuxHitTest200         HitTest over 200 points that all miss, so the whole set is walked;
//   BM_AuxHitTestPolyline500 one polyline of 500 points, half of them marked (the first round
//                            reads the depth under each), the cursor on none;
//   BM_PipeSetBSplineCurve   the tube mesh of an arch-long curve at each density (0, 1, 2).
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxCircle.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxPolyline.h>
#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include "support/VxBenchScene.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>

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

double Frac(int i, int n) {
    return (i + 0.5) / n;
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

void BM_AuxFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_AuxFrameBare)->Unit(benchmark::kMillisecond);

void BM_AuxFrame200(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    // Arg 1: lines only, the commonest aux objects of the measuring and marking tools.
    const int lines = state.range(0) == 1 ? 200 : 100;
    for (int i = 0; i < lines; ++i) {
        auto* line = new VxAuxLine();
        line->SetStartPoint(InBox(s, Frac(i, lines), 0.2, 0.9));
        line->SetStopPoint(InBox(s, Frac(i, lines), 0.8, 0.9));
        line->SetType(i % 2 ? AuxLineType_Solid : AuxLineType_Dashed);
        s.aux->AddAuxObject(line);
    }
    for (int i = 0; i < (lines == 100 ? 50 : 0); ++i) {
        auto* point = new VxAuxPoint();
        point->SetPos(InBox(s, Frac(i % 10, 10), Frac(i / 10, 5), 0.9));
        s.aux->AddAuxObject(point);
    }
    for (int i = 0; i < (lines == 100 ? 25 : 0); ++i) {
        auto* arrow = new VxAuxArrow();
        arrow->SetPoint(InBox(s, Frac(i, 25), 0.3, 0.9), InBox(s, Frac(i, 25), 0.4, 0.95));
        s.aux->AddAuxObject(arrow);
        auto* circle = new VxAuxCircle();
        circle->Set(InBox(s, Frac(i, 25), 0.6, 0.9), VxVector(0, 0, 1), 2.0);
        s.aux->AddAuxObject(circle);
    }
    for (auto _ : state) {
        Frame(s);
    }
    s.aux->Clear();
}
BENCHMARK(BM_AuxFrame200)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_AuxFrame500Points(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (int i = 0; i < 500; ++i) {
        auto* point = new VxAuxPoint();
        point->SetPos(InBox(s, Frac(i % 25, 25), Frac(i / 25, 20), 0.9));
        s.aux->AddAuxObject(point);
    }
    for (auto _ : state) {
        Frame(s);
    }
    s.aux->Clear();
}
BENCHMARK(BM_AuxFrame500Points)->Unit(benchmark::kMillisecond);

void BM_AuxRenderLines(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (int i = 0; i < 5200; ++i) {
        auto* line = new VxAuxLine();
        line->SetStartPoint(InBox(s, Frac(i % 200, 200), 0.1, 0.9));
        line->SetStopPoint(InBox(s, Frac(i % 200, 200), 0.9, 0.9));
        line->SetVisible(i < 200 ? 1 : 0);
        s.aux->AddAuxObject(line);
    }
    s.render->RenderScene(true);
    for (auto _ : state) {
        s.aux->Render();
        glFinish();
    }
    s.aux->Clear();
}
BENCHMARK(BM_AuxRenderLines)->Unit(benchmark::kMillisecond);

void BM_AuxHitTest200(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (int i = 0; i < 200; ++i) {
        auto* point = new VxAuxPoint();
        point->SetPos(InBox(s, Frac(i % 20, 20), Frac(i / 20, 10), 0.9));
        s.aux->AddAuxObject(point);
    }
    s.render->RenderScene(true);
    for (auto _ : state) {
        s.aux->HitTest(CPoint(1, 1));
        benchmark::DoNotOptimize(s.aux->GetHitObject());
    }
    s.aux->Clear();
}
BENCHMARK(BM_AuxHitTest200)->Unit(benchmark::kMicrosecond);

void BM_AuxHitTestPolyline500(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    auto* poly = new VxAuxPolyline();
    std::vector<VxPoint> pts;
    std::vector<VxPointType_e> types;
    for (int i = 0; i < 500; ++i) {
        const double a = 6.283185307179586 * i / 500;
        pts.push_back(InBox(s, 0.5 + 0.4 * std::cos(a), 0.5 + 0.4 * std::sin(a), 0.9));
        types.push_back(i % 2 ? VxPointType_Marked : VxPointType_Plain);
    }
    poly->SetPoints(pts);
    poly->SetPointsType(types);
    s.aux->AddAuxObject(poly);
    s.render->RenderScene(true);
    for (auto _ : state) {
        s.aux->HitTest(CPoint(1, 1));
        benchmark::DoNotOptimize(s.aux->GetHitObject());
    }
    s.aux->Clear();
}
BENCHMARK(BM_AuxHitTestPolyline500)->Unit(benchmark::kMicrosecond);

void BM_PipeSetBSplineCurve(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    std::vector<VxPoint> arch;
    for (int i = 0; i <= 12; ++i) {
        const double a = 3.14159265358979 * i / 12;
        arch.emplace_back(25 * std::cos(a), 20 * std::sin(a), 0.0);
    }
    std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(arch, false));
    VxAuxPipeLine pipe;
    pipe.SetDensity(static_cast<AuxPipeLineDensity>(state.range(0)));
    for (auto _ : state) {
        pipe.SetBSplineCurve(curve.get());
        benchmark::DoNotOptimize(pipe.GetMesh());
    }
    state.counters["faces"] = pipe.GetMesh() ? pipe.GetMesh()->GetFaceCount() : 0;
}
BENCHMARK(BM_PipeSetBSplineCurve)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
