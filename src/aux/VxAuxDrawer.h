// VxAuxDrawer: immediate-mode helpers for diagnostic geometry (boxes, frames, segments, points).
// They need no registry and no object, and draw at once with the matrices in GL.
#pragma once

class VxBBox;
class VxFrame;
class VxLineSeg;
class VxOrientBox;
class VxPoint;

class VxAuxDrawer {
public:
    virtual ~VxAuxDrawer() = default;

    // Dashed purple edges, with the edges behind the scene drawn again blended.
    static void DrawBox(const VxBBox& box);
    // The three axes in red, green and blue. Pops the attribute stack twice after one push:
    // the caller must have pushed one group of its own that this pop consumes.
    static void DrawFrame(const VxFrame& frame, double length);
    // A thick red segment over everything.
    static void DrawLsg(const VxLineSeg& segment);
    static void DrawOrientBox(const VxOrientBox& box);
    static void DrawPoint(const VxPoint& point);

private:
    static void DrawBoxDepth(const VxBBox& box);
};
