// Clinical overlay benchmarks on the synthetic patient at 1280 x 800 off screen, fixed-function
// path, frames ended by glFinish:
//   BM_ShowOverlay/<i>       one SetShow...(true) of overlay i (a rebuild each time, since a
//                            show removes first): 0 numbers, 1 marks, 2 facc, 3 refs,
//                            4 keypoint (shown and taken back), 5 archwire, 6 midplane,
//                            7 backplane, 8 beauty, 9 upplane, 10 lowplane, 11 upline,
//                            12 lowline, 13 xray, 14 front, 15 profile, 16 panoramic;
//   BM_ShowAllOverlays       all seventeen shown at once (goal: under 100 ms);
//   BM_FiveViewFrameBare     RenderScene + the registry's Render in the five-view layout, no
//                            overlay: the reference frame;
//   BM_FiveViewFrameOverlays the same frame with every overlay of the tooth, plane and curve
//                            groups shown (the pictures fill views on their own and are left
//                            out; goal: at most 1.3 times the bare frame);
//   BM_FiveViewFrameOverlaysNoRefs  the same without the reference overlay;
//   BM_FiveViewFrameOneOverlay/<i>  one overlay at a time, to see where the cost lies.
// The ratios: divide the overlay frame by the bare one, both from the same run.
#include <GL/glew.h>

#include <VxCase.h>
#include <VxCaseOverlays.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <overlays/VxCacheStuff.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct Scene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxCaseOverlays overlays;
    VxOpenGLRender* render = nullptr;
    std::string error;
};

Scene* MakeScene() {
    auto* s = new Scene;
    s->window = VxNativeWindow::CreateOffscreen(kW, kH);
    s->render = VxRenderStatus::GetInstance()->GetRender();
    g_bDIBShowMessage = false;
    if (!s->render->Create(s->window.get(), 24, 8)) {
        s->error = "no GL context: " + s->render->GetGLContext()->GetLastError();
        return s;
    }
    OpenGLVersion::GetInstance()->Set_btestversion(false);
    s->render->ResizeViewport(kW, kH);
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView();
    s->patient = VxSyntheticPatient::Generate(1);
    s->patient->Install();
    s->render->SetModel(&s->patient->model);
    const VxBBox box = s->patient->model.GetBBox();
    VxXForm xf;
    xf.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                   VxViewManager::GetReferenceRotation(s->patient->model));
    xf.SetScale(2.3 / box.Diagonal());
    const VxPoint c = box.Center();
    xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    views->GetView(0)->SetXForm(xf);
    s->render->RenderScene(true);
    s->overlays.Install(*s->patient);
    return s;
}

Scene& GetScene() {
    static Scene* scene = MakeScene();
    return *scene;
}

using Show = void (VxCacheStuff::*)(bool);
const Show kShows[] = {&VxCacheStuff::SetShowToothFDI,      &VxCacheStuff::SetShowMoveDiff,
                       &VxCacheStuff::SetShowFacc,          &VxCacheStuff::SetShowToothRef,
                       &VxCacheStuff::SetShowKeyPoint,      &VxCacheStuff::SetShowArchWire,
                       &VxCacheStuff::SetShowMiddlePlane,   &VxCacheStuff::SetShowBackBoundaryPlane,
                       &VxCacheStuff::SetShowBeautyPlane,   &VxCacheStuff::SetShowUpJawPlane,
                       &VxCacheStuff::SetShowDownJawPlane,  &VxCacheStuff::SetShowUpToothLine,
                       &VxCacheStuff::SetShowDownToothLine, &VxCacheStuff::SetShowXImg,
                       &VxCacheStuff::SetShowFrontImg,      &VxCacheStuff::SetShowProfile,
                       &VxCacheStuff::SetShowPanoramic};
constexpr int kOverlays = int(sizeof kShows / sizeof kShows[0]);
constexpr int kKeyPoint = 4;
constexpr int kFirstPicture = 13;

bool Ready(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return false;
    }
    s.render->GetGLContext()->MakeCurrent();
    return true;
}

void HideAll() {
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    for (Show show : kShows) {
        (cache->*show)(false);
    }
    cache->Clear();
    GetScene().overlays.Install(*GetScene().patient);
}

void BM_ShowOverlay(benchmark::State& state) {
    if (!Ready(state)) {
        return;
    }
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    const int i = int(state.range(0));
    for (auto _ : state) {
        (cache->*kShows[i])(true);
        if (i == kKeyPoint) {
            (cache->*kShows[i])(false); // a second show would leave the first registered
        }
    }
    HideAll();
}
BENCHMARK(BM_ShowOverlay)->DenseRange(0, kOverlays - 1)->Unit(benchmark::kMillisecond);

void BM_ShowAllOverlays(benchmark::State& state) {
    if (!Ready(state)) {
        return;
    }
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    for (auto _ : state) {
        for (int i = 0; i < kOverlays; ++i) {
            (cache->*kShows[i])(true);
        }
        cache->SetShowKeyPoint(false);
    }
    HideAll();
}
BENCHMARK(BM_ShowAllOverlays)->Unit(benchmark::kMillisecond);

void FiveViewFrames(benchmark::State& state, bool withOverlays, int first = 0,
                    int last = kFirstPicture - 1, int skip = -1) {
    if (!Ready(state)) {
        return;
    }
    Scene& s = GetScene();
    VxViewManager* views = VxViewManager::GetInstance();
    views->SwitchTo5View(s.patient->model);
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    if (withOverlays) {
        for (int i = first; i <= last; ++i) {
            if (i == skip) {
                continue;
            }
            (cache->*kShows[i])(true);
        }
    }
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    s.render->RenderScene(true);
    aux->Render();
    glFinish();
    for (auto _ : state) {
        s.render->RenderScene(true);
        aux->Render();
        glFinish();
    }
    HideAll();
    views->SwitchToSingleView();
}

void BM_FiveViewFrameBare(benchmark::State& state) {
    FiveViewFrames(state, false);
}
BENCHMARK(BM_FiveViewFrameBare)->Unit(benchmark::kMillisecond);

void BM_FiveViewFrameOverlays(benchmark::State& state) {
    FiveViewFrames(state, true);
}
BENCHMARK(BM_FiveViewFrameOverlays)->Unit(benchmark::kMillisecond);

// Every one but the reference overlay, whose hundreds of lit spheres cost most of the frame.
void BM_FiveViewFrameOverlaysNoRefs(benchmark::State& state) {
    FiveViewFrames(state, true, 0, kFirstPicture - 1, 3);
}
BENCHMARK(BM_FiveViewFrameOverlaysNoRefs)->Unit(benchmark::kMillisecond);

// One overlay at a time in the same frame, to see where the cost of the full set lies.
void BM_FiveViewFrameOneOverlay(benchmark::State& state) {
    FiveViewFrames(state, true, int(state.range(0)), int(state.range(0)));
}
BENCHMARK(BM_FiveViewFrameOneOverlay)
    ->DenseRange(0, kFirstPicture - 1)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
