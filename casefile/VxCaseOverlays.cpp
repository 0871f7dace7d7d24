// VxCaseOverlays: hands a case to the overlay cache and takes it back.
#include "VxCaseOverlays.h"

#include "VxCase.h"

#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>
#include <overlays/VxCacheStuff.h>

#include <cstring>
#include <memory>

VxCaseOverlays::~VxCaseOverlays() {
    if (IsInstalled()) {
        Uninstall();
    }
}

bool VxCaseOverlays::ToDisplayLayout(const CImage& source, CImage& target) {
    if (source.IsNull()) {
        return false;
    }
    if (source.GetBPP() != 24) {
        return VxPictureLayout::ToOverlayLayout(source, target);
    }
    const int w = source.GetWidth();
    const int h = source.GetHeight();
    if (!target.IsNull()) {
        target.Destroy();
    }
    if (!target.Create(w, h, 24)) {
        return false;
    }
    for (int j = 0; j < h; ++j) {
        std::memcpy(target.GetPixelAddress(0, j), source.GetPixelAddress(0, j),
                    static_cast<std::size_t>(w) * 3);
    }
    return true;
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
    m_pictures = VxPatientInfo();
    if (const VxPatientInfo* info = c.model.GetPatientInfo()) {
        using Setter = void (VxPatientInfo::*)(std::unique_ptr<CImage>);
        const CImage* sources[4] = {info->GetCephalometricImg(), info->GetFrontalSmileImg(),
                                    info->GetProfileImg(), info->GetPanoramicImg()};
        const Setter setters[4] = {&VxPatientInfo::SetCephalometricImg,
                                   &VxPatientInfo::SetFrontalSmileImg,
                                   &VxPatientInfo::SetProfileImg, &VxPatientInfo::SetPanoramicImg};
        for (int i = 0; i < 4; ++i) {
            auto picture = std::make_unique<CImage>();
            if (sources[i] != nullptr && ToDisplayLayout(*sources[i], *picture)) {
                (m_pictures.*setters[i])(std::move(picture));
            }
        }
        m_model.SetPatientInfo(&m_pictures);
    }
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
    m_pictures = VxPatientInfo();
    m_case = nullptr;
}
