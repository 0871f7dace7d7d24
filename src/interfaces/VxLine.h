// VxLine: an unbounded line, a point and a unit direction.
#pragma once

#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxLine {
public:
    VxLine() = default;
    // Through two points; the direction points from a to b.
    VxLine(const VxPoint& a, const VxPoint& b);
    VxLine(const VxPoint& p, const VxVector& direction);
    VxLine(const VxLine&) = default;
    VxLine& operator=(const VxLine&) = default;

    const VxPoint& Point() const { return m_point; }
    const VxVector& Direction() const { return m_dir; }
    // Foot of the perpendicular from p; `parameter` (may be null) receives its signed distance
    // along the direction from Point().
    VxPoint ProjectPoint(const VxPoint& p, double* parameter) const;
    VxPoint Evaluate(double parameter) const { return m_point + m_dir * parameter; }
    double DistanceToPoint(const VxPoint& p) const;

private:
    VxPoint m_point;
    VxVector m_dir{0, 0, 1};
};
