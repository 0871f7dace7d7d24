// VxBeautyPlane: the aesthetic reference plane of a jaw, a frame (origin at a corner, X and Y
// spanning the plane, Z its normal), the side length of the square the overlay draws, and the
// facial landmarks the plane was taken through. The host computes it; this class only keeps it.
#pragma once

#include <interfaces/VxFrame.h>
#include <interfaces/VxPoint.h>

#include <vector>

class VxBeautyPlane {
public:
    VxBeautyPlane() = default;
    VxBeautyPlane(const VxFrame& frame, double length, const std::vector<VxPoint>& points)
        : m_frame(frame), m_length(length), m_points(points) {}

    const VxFrame& GetPlaneFrame() const { return m_frame; }
    double GetLength() const { return m_length; }
    // Replaces the vector's content with the landmarks, in the order they were set.
    void GetBeauPt(std::vector<VxPoint>& points) const { points = m_points; }

    void SetPlaneFrame(const VxFrame& frame) { m_frame = frame; }
    void SetLength(double length) { m_length = length; }
    void SetBeauPt(const std::vector<VxPoint>& points) { m_points = points; }

private:
    VxFrame m_frame;
    double m_length = 0.0; // millimetres
    std::vector<VxPoint> m_points;
};
