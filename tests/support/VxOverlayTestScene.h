// VxOverlayTestScene: the synthetic patient (seed 1) brought up as a host does for the overlay
// tests: one off-screen context of a fixed size (black window), the case installed with the
// renderer, the selecter and the overlay cache (VxCaseOverlays), one view framed on the patient
// from a chosen side. Frame() draws the scene and the aux registry and reads the picture back.
// Reset() hides every overlay and empties the registry, in that order, so that no test leaves
// objects behind for the next.
#pragma once

#include "VxTestImage.h"

#include <interfaces/CPoint.h>
#include <interfaces/VxPoint.h>
#include <views/VxViewManager.h>

#include <string>

class VxCacheStuff;
class VxCase;
class VxCaseOverlays;
class VxObject;

class VxOverlayTestScene {
public:
    static constexpr int kWidth = 480;
    static constexpr int kHeight = 320;

    // Once per process; false where EGL gives no context.
    static bool Open();
    static VxCase& Case();
    static VxCaseOverlays& Overlays();
    static VxCacheStuff* Cache();

    // A single view of the whole patient from one side, at a treatment step; `zoom` > 1 comes
    // closer about the patient's centre.
    static void Look(VxViewManager::FixedView side, int step, double zoom = 1.0);
    // The frame with the registry drawn, read back top-down.
    static VxTestImage Frame();
    // A model point where the last frame put it (y from the top).
    static CPoint ToScreen(const VxPoint& p);
    // The host's click: stencil read, then the entity pick.
    static VxObject* Click(const CPoint& pixel);
    // Every overlay off (the arch wire included), registry emptied.
    static void Reset();
    static void Save(const VxTestImage& image, const std::string& name);
};
