// VxViewerOverlays: what vxview's function keys do with the clinical overlays. The seventeen
// overlays share nine keys: one overlay a key where it stands alone, related ones together, and
// F7 steps through the four patient pictures one at a time.
#pragma once

#include <string>

class VxViewerOverlays {
public:
    // Key 1 to 9 for F1 to F9; what changed ("overlays numbers: on"), or empty for another key.
    static std::string OnFunctionKey(int n);
    static const char* KeyHelp();
};
