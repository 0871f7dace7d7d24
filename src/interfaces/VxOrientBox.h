// VxOrientBox: a box in a frame of its own, given by that frame and half extents along its axes.
#pragma once

#include <interfaces/VxFrame.h>
#include <interfaces/VxPoint.h>

class VxOrientBox {
public:
    VxOrientBox() = default;
    VxOrientBox(const VxFrame& frame, double halfX, double halfY, double halfZ)
        : m_frame(frame), m_half{halfX, halfY, halfZ} {}

    const VxFrame& GetFrame() const { return m_frame; }
    double HalfExtent(int axis) const { return m_half[axis]; }
    // Fills eight points: bit 0 of the index picks -/+X, bit 1 -/+Y, bit 2 -/+Z.
    void Get8Corners(VxPoint* corners) const;

private:
    VxFrame m_frame;
    double m_half[3] = {0.0, 0.0, 0.0};
};
