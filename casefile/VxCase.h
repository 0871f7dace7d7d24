// VxCase: one patient case held in memory, owning every model object a host would own (teeth,
// gums, jaws, skull, attachments, wedges, plan, references, images and measures). The rendering
// library never owns the host's objects; this class is the host side of that contract for the
// programs, tests and benchmarks. Install() hands the case to the library's process-wide
// registries (placements, scheme, references, movement differences); Uninstall() takes it back.
// It deliberately knows nothing about files: VxCaseIO reads and writes it, VxSyntheticPatient
// makes one.
#pragma once

#include <interfaces/DrawInfo_s.h>
#include <interfaces/ThreeMovementDiff_s.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxCepMeasure.h>
#include <interfaces/VxFilledWedge.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxJawRef.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxPanMeasure.h>
#include <interfaces/VxPatientInfo.h>
#include <interfaces/VxScheme.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxToothRef.h>
#include <overlays/VxAttachAnchorGrid.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class VxCase {
public:
    VxCase();
    ~VxCase();
    VxCase(const VxCase&) = delete;
    VxCase& operator=(const VxCase&) = delete;

    // Entities, in the order they are added to the model (teeth, gums, jaws, skull, attachments,
    // wedges). Backup roots and standard attachments are meshes the entities point to; they are
    // not entities of the model.
    std::vector<std::unique_ptr<VxTooth>> teeth;
    std::vector<std::unique_ptr<VxMesh>> backupRoots; // teeth[i]->GetBackupRoot() points here
    std::vector<std::unique_ptr<VxGum>> gums;
    std::vector<std::unique_ptr<VxJaw>> jaws;
    std::unique_ptr<VxSkull> skull; // optional
    std::vector<std::unique_ptr<VxStdAttach>> stdAttachments;
    std::vector<std::unique_ptr<VxAttachment>> attachments;
    std::vector<std::unique_ptr<VxFilledWedge>> wedges;

    // Treatment plan: placements of each entity for each step (an entity with no entry for a
    // step is drawn where it is), the step the host shows, and the scheme (arches, occlusal
    // planes, per-tooth steps, IPR records).
    std::map<const VxEntity*, std::map<int, std::set<DrawInfo_s>>> placements;
    int stepCount = 0;
    int currentStep = 0;
    VxScheme scheme;

    // Reference data.
    std::vector<VxToothRef> toothRefs;
    std::optional<VxJawRef> upperJawRef;
    std::optional<VxJawRef> lowerJawRef;
    std::map<int, ThreeMovementDiff_s> movementDiffs;
    std::vector<VxGapInfo> gapInfos;
    // Candidate attachment points on each tooth, by FDI number. The host hands them to the
    // overlay cache (VxCaseOverlays does); case files do not carry them.
    std::map<int, VxAttachAnchorGrid> anchorGrids;

    // Patient pictures and measures.
    VxPatientInfo patientInfo;
    VxPanMeasure panMeasure;
    VxCepMeasure cepMeasure;

    // The model the renderer is given. BuildModel() fills it from the entity lists above (call it
    // after filling them; Install calls it when the model is empty).
    VxModel model;
    void BuildModel();

    VxTooth* FindTooth(int fdi) const;

    // Exchanges the whole content with `other`. The objects themselves stay where they are, so
    // every pointer between them (placements, references, records) stays valid; each model is
    // re-aimed at its own case's records. An installed case is installed again with what it
    // received, so the registries never point into the other case.
    void Swap(VxCase& other);
    // True when the case holds no entity, plan, reference, record, picture or measure.
    bool IsEmpty() const;
    VxJaw* FindJaw(bool up) const;

    // Registers the case with the process-wide registries: VxTransformMatrix (placements and
    // current step), VxSchemeMgr (a copy of the scheme as current), VxReferenceMgr,
    // VxMoveDiffDataMgr. Only one case is installed at a time; installing clears what was there.
    void Install();
    void SetCurrentStep(int step);
    void Uninstall();
    bool IsInstalled() const { return m_installed; }

private:
    bool m_installed = false;
};
