// VxPlane: a point on the plane and a unit normal.
#pragma once

#include <interfaces/VxLine.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxPlane {
public:
    VxPlane() = default;
    VxPlane(const VxPoint& p, const VxVector& normal);
    // Through three points, normal (b - a) x (c - a). Collinear points give a zero normal.
    VxPlane(const VxPoint& a, const VxPoint& b, const VxPoint& c);

    const VxVector& Normal() const { return m_normal; }
    VxPoint GetArbitraryPoint() const { return m_point; }
    VxPoint ProjectPoint(const VxPoint& p) const;
    // Signed (positive on the side the normal points to) or absolute distance.
    double DistanceToPoint(const VxPoint& p, bool isSigned = false) const;
    // False when the line is parallel to the plane.
    bool Intersect(const VxLine& line, VxPoint& hit) const;
    // False when the planes are parallel.
    bool Intersect(const VxPlane& plane, VxLine& line) const;

private:
    VxPoint m_point;
    VxVector m_normal{0, 0, 1};
};
