// VxCaseOverlays: the host's side of the overlay cache for one case. It gives the cache a model
// of the case's entities whose pictures are in the layout the library shows (rows from the
// bottom up, R, G, B bytes, as VxCacheStuff::CreateCimage loads files), hands over the case's
// anchor grids, and takes everything back again. The case's own pictures stay as they are, in
// the desktop layout the case files use.
// Take the overlays back (Uninstall, or the destructor) before the aux registry is cleared: the
// registry would otherwise free objects the cache still points at.
#pragma once

#include <interfaces/VxModel.h>
#include <interfaces/VxPatientInfo.h>

class CImage;
class VxCase;

class VxCaseOverlays {
public:
    VxCaseOverlays() = default;
    ~VxCaseOverlays();
    VxCaseOverlays(const VxCaseOverlays&) = delete;
    VxCaseOverlays& operator=(const VxCaseOverlays&) = delete;

    // Clears the cache and gives it this case. The case must outlive the installation.
    void Install(VxCase& c);
    // Hides every overlay of the cache (the arch wire included, which Clear keeps) and forgets
    // the model.
    void Uninstall();
    bool IsInstalled() const { return m_case != nullptr; }
    // The model the cache reads: the case's entities and measures, the display pictures.
    VxModel& Model() { return m_model; }

    // A copy for the cache. The case reader and the synthetic patient already hold their
    // pictures in the overlay layout (VxPictureLayout), so a 24-bit picture is copied as it
    // stands; turning it again would show it upside down in swapped colours. A picture of
    // another depth has not been through the reader and is brought into the layout. False for
    // a null picture.
    static bool ToDisplayLayout(const CImage& source, CImage& target);

private:
    VxCase* m_case = nullptr;
    VxModel m_model;
    VxPatientInfo m_pictures;
};
