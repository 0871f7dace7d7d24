// VxPolyline: an ordered list of points, open or closed.
#pragma once

#include <interfaces/VxPoint.h>

#include <vector>

class VxPolyline {
public:
    VxPolyline() = default;
    explicit VxPolyline(const std::vector<VxPoint>& points) : m_points(points) {}

    const std::vector<VxPoint>& Points() const { return m_points; }
    bool IsClosed() const { return m_closed; }
    // Joins the last point back to the first.
    void MakeClosed() { m_closed = true; }
    double Length() const;
    // True when two non-adjacent segments come within tolerance of each other (3D test; for a
    // closed polyline the closing segment counts and the first and last segments are adjacent).
    // Consecutive points closer than the tolerance count as one; a last point on the first
    // closes the polyline rather than touching it. Fewer than three distinct points never
    // self-intersect.
    bool IsSelfIntersect() const;
    // The same test with a distance tolerance of its own (model units) instead of
    // VxTolerance::kZero.
    bool IsSelfIntersect(double tolerance) const;

private:
    std::vector<VxPoint> m_points;
    bool m_closed = false;
};
