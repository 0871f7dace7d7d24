// VxCaseOverlays: hands a case to the overlay cache and takes it back.
#include "VxCaseOverlays.h"

#include "VxCase.h"

#include <overlays/VxCacheStuff.h>

VxCaseOverlays::~VxCaseOverlays() {
    if (IsInstalled()) {
        Uninstall();
    }
}

void VxCaseOverlays::Install(VxCase& c) {
    if (IsInstalled()) {
        Uninstall();
    }
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    cache->Clear();
    m_case = &c;
    m_model.Clear();
    std::vector<VxEntity*> entities;
    c.model.GetEntities(entities);
    for (VxEntity* e : entities) {
        m_model.AddEntity(e);
    }
    m_model.SetPanMeasure(c.model.GetPanMeasure());
    m_model.SetCepMeasure(c.model.GetCepMeasure());
    // The case holds its pictures in the layout the overlays upload as it stands (rows from the
    // bottom up, bytes R, G, B): they are handed over as they are, so that they show upright and
    // in true colours.
    m_model.SetPatientInfo(c.model.GetPatientInfo());
    cache->SetModel(&m_model);
    for (const auto& [fdi, grid] : c.anchorGrids) {
        if (VxTooth* tooth = c.FindTooth(fdi)) {
            cache->AddAttachAnchorGrids(tooth, grid);
        }
    }
}

void VxCaseOverlays::Uninstall() {
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    cache->SetShowArchWire(false);
    cache->Clear();
    cache->SetModel(nullptr);
    m_model.Clear();
    m_model.SetPatientInfo(nullptr);
    m_case = nullptr;
}
