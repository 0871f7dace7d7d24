// IPR, collision and grid overlay benchmarks on the synthetic patient at 1280 x 800 off screen,
// fixed-function path, each frame ended by glFinish:
//   BM_OverlayIprShow30         showing 30 IPR labels (the plan's 8 records over and over): the
//                               text of each billboard is built here, once per show;
//   BM_OverlayFrameFiveBare     a five-view frame with an empty registry: the reference;
//   BM_OverlayFrameFiveContacts the same with every contact of the closed bite and every value
//                               label shown;
//   BM_OverlayGridBuild         the first DrawGrid: one screen line a pixel row and column;
//   BM_OverlayGridRefresh       a refresh after a zoom (the ratio alternating 4.4 and 12.4);
//   BM_OverlayFrameBare         a one-view frame with an empty registry: the reference;
//   BM_OverlayFrameGrid         the same with the grid shown (10 mm cells);
//   BM_OverlayGridDelete        DeleteGrid, the registry's one-pass removal;
//   BM_OverlayLinesRemoveEach   as many screen lines removed one RemoveAuxObject at a time, in
//                               the grid's order, as a grid without the one-pass removal would;
//   BM_OverlayLinesRemoveAll    the same lines removed in one pass (what DeleteGrid does).
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticCollision.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxLine2D.h>
#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <overlays/VxCacheStuff.h>
#include <overlays/VxMeasureGrid.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct Scene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxOpenGLRender* render = nullptr;
    VxAuxRender* aux = nullptr;
    VxXForm front;
    std::vector<VxGapInfo> contacts; // the case's records and the closed bite's contacts
    std::string error;
};

Scene& GetScene() {
    static Scene* s = [] {
        auto* s = new Scene;
        s->window = VxNativeWindow::CreateOffscreen(kW, kH);
        s->render = VxRenderStatus::GetInstance()->GetRender();
        s->aux = VxRenderStatus::GetInstance()->GetAuxRender();
        g_bDIBShowMessage = false;
        if (!s->render->Create(s->window.get(), 24, 8)) {
            s->error = "no GL context";
            return s;
        }
        OpenGLVersion::GetInstance()->Set_btestversion(false);
        s->render->ResizeViewport(kW, kH);
        s->patient = VxSyntheticPatient::Generate(1);
        s->patient->Install();
        s->render->SetModel(&s->patient->model);
        const VxBBox box = s->patient->model.GetBBox();
        s->front.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                             VxViewManager::GetReferenceRotation(s->patient->model));
        s->front.SetScale(2.3 / box.Diagonal());
        const VxPoint c = box.Center();
        s->front.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
        s->contacts = s->patient->gapInfos;
        // Occlusal contacts: each upper posterior tooth on the lower one below it, the bite
        // closed by 2.8 mm.
        const VxMatrix lift = VxMatrix::Translation(VxVector(0, 0, 2.8));
        for (const auto& u : s->patient->teeth) {
            const int fdi = u->GetFDI();
            VxTooth* l = s->patient->FindTooth((fdi / 10 == 1 ? 40 : 30) + fdi % 10);
            if (!u->IsUp() || fdi % 10 < 4 || l == nullptr) {
                continue;
            }
            VxGapInfo g;
            const VxMatrix& pu = s->patient->placements[u.get()][0].begin()->matrix;
            const VxMatrix& pl = s->patient->placements[l][0].begin()->matrix;
            if (VxSyntheticCollision::Measure(u.get(), pu, l, lift * pl, 0.0, g) && !g.IsGap()) {
                s->contacts.push_back(g);
            }
        }
        return s;
    }();
    return *s;
}

void SingleView(Scene& s) {
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView();
    views->GetView(0)->SetXForm(s.front);
    s.render->RenderScene(true);
    glFinish();
}

void FiveViews(Scene& s) {
    SingleView(s);
    VxViewManager::GetInstance()->SwitchTo5View(s.patient->model);
    s.render->RenderScene(true);
    glFinish();
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
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    cache->ClearRemoveGlazeInfo();
    cache->RemoveCollisionStuff();
    cache->DeleteGrid();
    s.aux->Clear();
    return true;
}

void BM_OverlayIprShow30(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    const std::vector<VxIPR>& records = s.patient->scheme.GetIPRInfo();
    for (auto _ : state) {
        for (int i = 0; i < 30; ++i) {
            const VxIPR& r = records[size_t(i) % records.size()];
            const VxPoint gap = r.GetGapPos();
            cache->ShowRemoveGlaze(r, VxPoint(0, gap[1] - 10, gap[2] - 8));
        }
        glFinish();
        state.PauseTiming();
        cache->ClearRemoveGlazeInfo();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_OverlayIprShow30)->Unit(benchmark::kMillisecond);

void BM_OverlayFrameFiveBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    FiveViews(s);
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_OverlayFrameFiveBare)->Unit(benchmark::kMillisecond);

void BM_OverlayFrameFiveContacts(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    FiveViews(s);
    std::vector<VxGapInfo*> gaps;
    for (VxGapInfo& g : s.contacts) {
        gaps.push_back(&g);
    }
    VxCacheStuff::GetInstance()->ShowCollisionInfo(gaps);
    for (auto _ : state) {
        Frame(s);
    }
    state.counters["contacts"] = double(gaps.size());
    VxCacheStuff::GetInstance()->RemoveCollisionStuff();
}
BENCHMARK(BM_OverlayFrameFiveContacts)->Unit(benchmark::kMillisecond);

void BM_OverlayGridBuild(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    for (auto _ : state) {
        cache->DrawGrid(1);
        state.PauseTiming();
        cache->DeleteGrid();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_OverlayGridBuild)->Unit(benchmark::kMillisecond);

void BM_OverlayGridRefresh(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    cache->DrawGrid(1);
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    bool near = false;
    for (auto _ : state) {
        // What a zoom leaves behind: the frame's new ratio. The caption changes with it.
        view->SetpixelmodelRatio(near ? 12.4 : 4.4);
        near = !near;
        cache->RefreshMeshBenchmark(0.0);
    }
    cache->DeleteGrid();
}
BENCHMARK(BM_OverlayGridRefresh)->Unit(benchmark::kMicrosecond);

void BM_OverlayFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_OverlayFrameBare)->Unit(benchmark::kMillisecond);

void BM_OverlayFrameGrid(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    VxCacheStuff::GetInstance()->DrawGrid(1);
    for (auto _ : state) {
        Frame(s);
    }
    VxCacheStuff::GetInstance()->DeleteGrid();
}
BENCHMARK(BM_OverlayFrameGrid)->Unit(benchmark::kMillisecond);

void BM_OverlayGridDelete(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    SingleView(s);
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    for (auto _ : state) {
        state.PauseTiming();
        cache->DrawGrid(1);
        state.ResumeTiming();
        cache->DeleteGrid();
    }
}
BENCHMARK(BM_OverlayGridDelete)->Unit(benchmark::kMillisecond);

// Arg: how many windows' worth of lines (1: this window's grid, 4: a grid over a screen of
// twice the width and height). Each form removes them in the grid's order: the rows, registered
// after the columns, first.
void GridLines(Scene& s, int windows, std::vector<VxAuxObject*>& order) {
    std::vector<VxAuxObject*> columns;
    std::vector<VxAuxObject*> rows;
    for (int w = 0; w < windows; ++w) {
        for (int i = 0; i < kW; ++i) {
            columns.push_back(new VxAuxLine2D());
            s.aux->AddAuxObject(columns.back());
        }
        for (int i = 0; i < kH; ++i) {
            rows.push_back(new VxAuxLine2D());
            s.aux->AddAuxObject(rows.back());
        }
    }
    order = rows;
    order.insert(order.end(), columns.begin(), columns.end());
}

void BM_OverlayLinesRemoveEach(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<VxAuxObject*> order;
        GridLines(s, int(state.range(0)), order);
        state.ResumeTiming();
        for (VxAuxObject* line : order) {
            s.aux->RemoveAuxObject(line, true);
        }
    }
}
BENCHMARK(BM_OverlayLinesRemoveEach)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

void BM_OverlayLinesRemoveAll(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<VxAuxObject*> order;
        GridLines(s, int(state.range(0)), order);
        state.ResumeTiming();
        s.aux->RemoveAuxObjects(order, true);
    }
}
BENCHMARK(BM_OverlayLinesRemoveAll)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
