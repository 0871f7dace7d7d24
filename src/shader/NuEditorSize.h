// NuEditorSize: the half extents, in clip units, of a gap-editor element, chosen so an element
// keeps its pixel size when the window changes and grows with zoom only up to a limit. The base
// depends on the view's height in three bands (1000 below 350, 2000 from 351 to 499, 4000 from 500
// up), with a height of exactly 350 falling into the 4000 band: the editor has always measured it
// that way and its layouts are tuned to it. The zoom is the view transform's scale, at most
// 0.035615.
#pragma once

class VxViewRegion;

class NuEditorSize {
public:
    static constexpr double kMaxScale = 0.035615;

    static int Base(int regionHeight);
    static double Scale(double xformScale);

    // For the region's size and scale; `factor` shrinks cards (0.8) against buttons (1.0). A
    // null or empty region gives zero extents.
    NuEditorSize(const VxViewRegion* region, float sizeX, float sizeY, float factor = 1.0f);

    double halfX = 0.0;
    double halfY = 0.0;
};
