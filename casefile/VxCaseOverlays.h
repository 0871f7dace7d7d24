// VxCaseOverlays: the host's side of the overlay cache for one case. It gives the cache a model
// of the case's entities, measures and pictures (the case holds them in the layout the library
// shows: rows from the bottom up, R, G, B bytes, as VxCacheStuff::CreateCimage loads files),
// hands over the case's anchor grids, and takes everything back again.
// Take the overlays back (Uninstall, or the destructor) before the aux registry is cleared: the
// registry would otherwise free objects the cache still points at.
#pragma once

#include <interfaces/VxModel.h>

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
    // The model the cache reads: the case's entities, measures and pictures.
    VxModel& Model() { return m_model; }

private:
    VxCase* m_case = nullptr;
    VxModel m_model;
};
