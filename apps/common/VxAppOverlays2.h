// VxAppOverlays2: the IPR labels, the collision map, the attachment labels and the measuring grid
// of the cache, shown on the scene's case the way a host would: the IPR records of the plan, the
// contacts and gaps measured on the teeth, the case's attachments, and a millimetre grid over
// every view. Labels are placed for the view of the moment, so the programs show them again after
// anything that moves the view or the teeth (Refresh); the grid only follows the zoom.
// One set per process, like the cache it drives.
#pragma once

#include <string>
#include <vector>

class VxAppScene;

class VxAppOverlays2 {
public:
    // "ipr", "collision", "attachments", "grid".
    static const std::vector<std::string>& Names();
    static bool IsName(const std::string& name);
    // One line a name, for --help and the key list.
    static std::string Help();

    // Turns one overlay on or off for the scene's case at its current step and view. False with
    // `error` set for an unknown name or a scene without a case.
    static bool Set(VxAppScene& scene, const std::string& name, bool on, std::string& error);
    static bool Toggle(VxAppScene& scene, const std::string& name, std::string& error);
    static bool IsOn(const std::string& name);
    // Shows again what is on, for the view, step and layout of now (draws one frame to learn
    // them). The grid is rebuilt only when the views changed.
    static void Refresh(VxAppScene& scene);
    // After a frame: when a view's zoom changed since the grid last looked, its visible lines
    // follow it; true when the next frame will differ.
    static bool AfterFrame();
    // Takes every overlay of this set off the screen, keeping which are on (before the aux
    // registry is cleared by someone else, or the case goes).
    static void RemoveAll();
    // Takes them off and forgets them.
    static void Reset();
};
