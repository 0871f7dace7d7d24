// VxViewerOverlays: what vxview's function keys do with the clinical overlays. The thirteen
// overlays other than the pictures share eight keys: one overlay a key where it stands alone,
// related ones together. The four patient pictures are key I's, one at a time.
#pragma once

#include <string>

class VxViewerOverlays {
public:
    // Key 1 to 9 for F1 to F9; what changed ("overlays numbers: on"), or empty for another key.
    static std::string OnFunctionKey(int n);
    static const char* KeyHelp();
};
