// VxOverlayTestScene: host-side bring-up of the synthetic patient for the overlay tests.
#include "VxOverlayTestScene.h"

#include "VxTestPaths.h"

#include <GL/glew.h>

#include <VxCase.h>
#include <VxCaseOverlays.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <overlays/VxCacheStuff.h>
#include <platform/VxGLContext.h>
#include <platform/VxMessageSink.h>
#include <platform/VxNativeWindow.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxViewRegion.h>

#include <memory>

namespace {

struct State {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxCaseOverlays overlays;
    bool open = false;
};

State& S() {
    static State* s = new State(); // lives to the end: the registries point into it
    return *s;
}

VxOpenGLRender* Render() {
    return VxRenderStatus::GetInstance()->GetRender();
}

} // namespace

bool VxOverlayTestScene::Open() {
    State& s = S();
    if (s.open) {
        Render()->GetGLContext()->MakeCurrent();
        return true;
    }
    VxMessageSink::SetHandler([](const std::string&, const std::string&) {});
    s.window = VxNativeWindow::CreateOffscreen(kWidth, kHeight);
    if (!s.window || !Render()->Create(s.window.get(), 24, 8) || !Render()->GetGLContext()) {
        return false;
    }
    Render()->ResizeViewport(kWidth, kHeight);
    s.patient = VxSyntheticPatient::Generate(1);
    s.patient->Install();
    Render()->SetModel(&s.patient->model);
    VxRenderStatus::GetInstance()->GetSelecter()->SetModel(&s.patient->model);
    s.overlays.Install(*s.patient);
    s.open = true;
    return true;
}

VxCase& VxOverlayTestScene::Case() {
    return *S().patient;
}

VxCaseOverlays& VxOverlayTestScene::Overlays() {
    return S().overlays;
}

VxCacheStuff* VxOverlayTestScene::Cache() {
    return VxCacheStuff::GetInstance();
}

void VxOverlayTestScene::Look(VxViewManager::FixedView side, int step, double zoom) {
    VxCase& c = Case();
    c.SetCurrentStep(step);
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kWidth, kHeight);
    views->CreateSingleView();
    views->SetActiveView(0);
    const VxBBox box = c.model.GetBBox();
    VxXForm fit;
    fit.SetRotation(VxViewManager::GetFixedMatrix(side) *
                    VxViewManager::GetReferenceRotation(c.model));
    fit.SetScale(1.8 * zoom / box.Diagonal());
    const VxPoint centre = box.Center();
    fit.SetTranslation(VxVector(-centre[0], -centre[1], -centre[2]));
    views->GetView(0)->SetXForm(fit);
    Render()->RenderScene(true); // the mappings read the last frame's matrices
}

VxTestImage VxOverlayTestScene::Frame() {
    Render()->RenderScene(true);
    VxRenderStatus::GetInstance()->GetAuxRender()->Render();
    glFinish();
    VxTestImage img(kWidth, kHeight);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
    img.FlipRows();
    for (size_t i = 3; i < img.rgba.size(); i += 4) {
        img.rgba[i] = 255;
    }
    return img;
}

CPoint VxOverlayTestScene::ToScreen(const VxPoint& p) {
    return Render()->MapModelPointToScreen(VxViewManager::GetInstance()->GetView(0), p, nullptr);
}

VxObject* VxOverlayTestScene::Click(const CPoint& pixel) {
    Render()->ProcessFeedback(pixel);
    return VxRenderStatus::GetInstance()->GetSelecter()->DoSelect(pixel);
}

void VxOverlayTestScene::Reset() {
    VxCacheStuff* cache = Cache();
    cache->SetShowToothFDI(false);
    cache->SetShowMoveDiff(false);
    cache->SetShowFacc(false);
    cache->SetShowArchWire(false);
    // Clear takes the key point back and removes every other overlay; the anchor grids it
    // forgets are handed over again.
    cache->Clear();
    S().overlays.Install(Case());
    VxRenderStatus::GetInstance()->GetAuxRender()->Clear();
}

void VxOverlayTestScene::Save(const VxTestImage& image, const std::string& name) {
    VxWritePng(VxTestOutputDir() + "/" + name + ".png", image);
}
