#include "VxCase.h"

#include <interfaces/VxMoveDiffDataMgr.h>
#include <interfaces/VxReferenceMgr.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxTransformMatrix.h>

VxCase::VxCase() = default;

VxCase::~VxCase() {
    // The registries hold raw pointers into this case; leaving them behind would dangle.
    if (m_installed) {
        Uninstall();
    }
}

void VxCase::BuildModel() {
    model.Clear();
    for (auto& t : teeth) {
        model.AddEntity(t.get());
    }
    for (auto& g : gums) {
        model.AddEntity(g.get());
    }
    for (auto& j : jaws) {
        model.AddEntity(j.get());
    }
    if (skull) {
        model.AddEntity(skull.get());
    }
    for (auto& a : attachments) {
        model.AddEntity(a.get());
    }
    for (auto& w : wedges) {
        model.AddEntity(w.get());
    }
    model.SetPatientInfo(&patientInfo);
    model.SetPanMeasure(&panMeasure);
    model.SetCepMeasure(&cepMeasure);
}

VxTooth* VxCase::FindTooth(int fdi) const {
    for (const auto& t : teeth) {
        if (t->GetFDI() == fdi) {
            return t.get();
        }
    }
    return nullptr;
}

void VxCase::Swap(VxCase& other) {
    if (this == &other) {
        return;
    }
    teeth.swap(other.teeth);
    backupRoots.swap(other.backupRoots);
    gums.swap(other.gums);
    jaws.swap(other.jaws);
    skull.swap(other.skull);
    stdAttachments.swap(other.stdAttachments);
    attachments.swap(other.attachments);
    wedges.swap(other.wedges);
    placements.swap(other.placements);
    std::swap(stepCount, other.stepCount);
    std::swap(currentStep, other.currentStep);
    std::swap(scheme, other.scheme);
    toothRefs.swap(other.toothRefs);
    upperJawRef.swap(other.upperJawRef);
    lowerJawRef.swap(other.lowerJawRef);
    movementDiffs.swap(other.movementDiffs);
    gapInfos.swap(other.gapInfos);
    anchorGrids.swap(other.anchorGrids);
    std::swap(patientInfo, other.patientInfo);
    std::swap(panMeasure, other.panMeasure);
    std::swap(cepMeasure, other.cepMeasure);
    std::swap(model, other.model);
    // The records are members, not pointers: after the exchange each model would point at the
    // other case's records.
    for (VxCase* c : {this, &other}) {
        if (c->model.GetPatientInfo() != nullptr) {
            c->model.SetPatientInfo(&c->patientInfo);
        }
        if (c->model.GetPanMeasure() != nullptr) {
            c->model.SetPanMeasure(&c->panMeasure);
        }
        if (c->model.GetCepMeasure() != nullptr) {
            c->model.SetCepMeasure(&c->cepMeasure);
        }
    }
    if (m_installed) {
        Install();
    } else if (other.m_installed) {
        other.Install();
    }
}

bool VxCase::IsEmpty() const {
    return teeth.empty() && backupRoots.empty() && gums.empty() && jaws.empty() && !skull &&
           stdAttachments.empty() && attachments.empty() && wedges.empty() && placements.empty() &&
           stepCount == 0 && currentStep == 0 && scheme.GetStepCount() == 0 &&
           scheme.GetUpArch() == nullptr && scheme.GetLowArch() == nullptr &&
           scheme.GetUpOccPlane() == nullptr && scheme.GetLowOccPlane() == nullptr &&
           scheme.GetIPRInfo().empty() && toothRefs.empty() && !upperJawRef && !lowerJawRef &&
           movementDiffs.empty() && gapInfos.empty() && anchorGrids.empty() &&
           patientInfo.GetPanoramicImg() == nullptr && patientInfo.GetProfileImg() == nullptr &&
           patientInfo.GetFrontalSmileImg() == nullptr &&
           patientInfo.GetCephalometricImg() == nullptr && panMeasure.GetBrightPos() == 0 &&
           panMeasure.GetContrastPos() == 0 && !panMeasure.HasData() &&
           cepMeasure.GetBrightPos() == 0 && cepMeasure.GetContrastPos() == 0 &&
           cepMeasure.GetAllMeasurePts().empty() && model.GetEntityCount() == 0;
}

VxJaw* VxCase::FindJaw(bool up) const {
    for (const auto& j : jaws) {
        if (j->IsUp() == up) {
            return j.get();
        }
    }
    return nullptr;
}

void VxCase::Install() {
    if (model.GetEntityCount() == 0) {
        BuildModel();
    }
    VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
    tm->Clear();
    for (const auto& [entity, steps] : placements) {
        for (const auto& [step, infos] : steps) {
            tm->SetDrawInfos(const_cast<VxEntity*>(entity), step, infos);
        }
    }
    tm->SetCurrentStep(currentStep);

    VxSchemeMgr* sm = VxSchemeMgr::GetInstance();
    sm->Clear();
    sm->SetCurScheme(sm->AddScheme(std::make_unique<VxScheme>(scheme)));

    VxReferenceMgr* rm = VxReferenceMgr::GetInstance();
    rm->Clear();
    for (const auto& r : toothRefs) {
        rm->Add(r);
    }
    if (upperJawRef) {
        rm->SetJawRef(*upperJawRef);
    }
    if (lowerJawRef) {
        rm->SetJawRef(*lowerJawRef);
    }

    VxMoveDiffDataMgr::GetInstance()->SetMovementDiff(movementDiffs);
    m_installed = true;
}

void VxCase::SetCurrentStep(int step) {
    currentStep = step;
    if (m_installed) {
        VxTransformMatrix::GetInstance()->SetCurrentStep(step);
    }
}

void VxCase::Uninstall() {
    VxTransformMatrix::GetInstance()->Clear();
    VxSchemeMgr::GetInstance()->Clear();
    VxReferenceMgr::GetInstance()->Clear();
    VxMoveDiffDataMgr::GetInstance()->Clear();
    m_installed = false;
}
