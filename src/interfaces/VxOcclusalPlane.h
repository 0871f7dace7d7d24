// VxOcclusalPlane: the occlusal plane of one jaw in a treatment scheme, a frame (origin at a
// corner, X and Y spanning the plane, Z its normal) and the side length of the square the
// overlay draws. It does not fit the plane to the teeth; the host provides it.
#pragma once

#include <interfaces/VxFrame.h>

class VxOcclusalPlane {
public:
    VxOcclusalPlane() = default;
    VxOcclusalPlane(const VxFrame& frame, double length) : m_frame(frame), m_length(length) {}

    const VxFrame& GetPlaneFrame() const { return m_frame; }
    double GetLength() const { return m_length; }
    void SetPlaneFrame(const VxFrame& frame) { m_frame = frame; }
    void SetLength(double length) { m_length = length; }

private:
    VxFrame m_frame;
    double m_length = 0.0; // millimetres
};
