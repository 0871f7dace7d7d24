// Pin-label benchmarks on the synthetic patient in the five-view layout at 1280 x 800 off
// screen, each frame ended by glFinish; Arg 0 the fixed-function path, Arg 1 the shader path:
//   BM_BillboardFrameBare   RenderScene + the empty registry's Render: the reference frame;
//   BM_BillboardFrame40     the same with 40 pin labels (leader, plate, two-digit text) on the
//                           teeth, each placed and drawn in every one of the five views.
// The share of the labels is (BM_BillboardFrame40 - BM_BillboardFrameBare) / the bare frame.
#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxTooth.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct Scene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxOpenGLRender* render = nullptr;
    VxAuxRender* aux = nullptr;
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
        s->render->ResizeViewport(kW, kH);
        VxViewManager* views = VxViewManager::GetInstance();
        views->Clear();
        views->SetTotalViewSize(kW, kH);
        views->CreateSingleView();
        s->patient = VxSyntheticPatient::Generate(1);
        s->patient->Install();
        s->render->SetModel(&s->patient->model);
        views->SwitchTo5View(s->patient->model);
        s->render->RenderScene(true);
        glFinish();
        return s;
    }();
    return *s;
}

bool Ready(benchmark::State& state, Scene& s) {
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return false;
    }
    s.aux->Clear();
    OpenGLVersion::GetInstance()->Set_btestversion(state.range(0) == 1);
    s.render->RenderScene(true);
    glFinish();
    return true;
}

void Frame(Scene& s) {
    s.render->RenderScene(true);
    s.aux->Render();
    glFinish();
}

// 40 labels: one on each tooth, then a second round a little higher up.
void AddLabels(Scene& s) {
    int n = 0;
    for (int round = 0; n < 40; ++round) {
        for (const auto& t : s.patient->teeth) {
            if (n == 40) {
                break;
            }
            const VxPoint c = t->GetBBox().Center();
            const double up = t->IsUp() ? 1.0 : -1.0;
            auto* b = new VxAuxBillBoard3d();
            b->SetTextType(Text_ModelDepth);
            b->SetText(CString(std::to_wstring(t->GetFDI()).c_str()));
            b->SetLine(c, VxPoint(c[0], c[1] + up * (8.0 + 4.0 * round), c[2] + 3.0));
            b->SetComponentsColor(VxColor(40, 160, 255), VxColor(40, 160, 255), VxColor(0, 0, 0));
            s.aux->AddAuxObject(b);
            ++n;
        }
    }
}

void BM_BillboardFrameBare(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    for (auto _ : state) {
        Frame(s);
    }
}
BENCHMARK(BM_BillboardFrameBare)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_BillboardFrame40(benchmark::State& state) {
    Scene& s = GetScene();
    if (!Ready(state, s)) {
        return;
    }
    AddLabels(s);
    for (auto _ : state) {
        Frame(s);
    }
    // Labels placed in the last view drawn (a label hidden by its gate or behind its pin is not).
    int placed = 0;
    for (VxAuxObject* o : s.aux->GetBillBoards()) {
        placed += static_cast<VxAuxBillBoard3d*>(o)->IsPlateValid() ? 1 : 0;
    }
    state.counters["placed"] = placed;
    s.aux->Clear();
}
BENCHMARK(BM_BillboardFrame40)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
