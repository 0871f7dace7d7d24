// VxViewerOverlays: the function keys' groups of overlays.
#include "VxViewerOverlays.h"

#include "VxAppOverlays.h"

#include <vector>

namespace {

// Overlays a key turns on or off together, by F-key number. The pictures are key I's (VxViewer),
// which also takes the patient out of their way.
const std::vector<std::vector<const char*>> kGroups = {
    {},
    {"numbers"},
    {"marks"},
    {"facc"},
    {"refs", "keypoint"},
    {"archwire"},
    {"midplane", "backplane", "beauty"},
    {},
    {"upplane", "lowplane"},
    {"upline", "lowline"},
};

std::string Names(const std::vector<const char*>& group) {
    std::string out;
    for (const char* n : group) {
        out += (out.empty() ? "" : ", ") + std::string(n);
    }
    return out;
}

} // namespace

std::string VxViewerOverlays::OnFunctionKey(int n) {
    if (n < 1 || n >= int(kGroups.size()) || kGroups[size_t(n)].empty()) {
        return std::string();
    }
    const std::vector<const char*>& group = kGroups[size_t(n)];
    const bool on = !VxAppOverlays::IsShown(group.front());
    for (const char* name : group) {
        VxAppOverlays::Show(name, on);
    }
    return "overlay " + Names(group) + (on ? ": on" : ": off");
}

const char* VxViewerOverlays::KeyHelp() {
    return "  F1               tooth numbers on/off\n"
           "  F2               movement marks on/off (blue within the limits, black past them)\n"
           "  F3               Facc curves on/off\n"
           "  F4               tooth references and the cephalometric key point on/off\n"
           "  F5               arch wire on/off\n"
           "  F6               middle, back boundary and beauty planes on/off\n"
           "  F8               upper and lower occlusal planes on/off\n"
           "  F9               upper and lower tooth arch lines on/off\n";
}
