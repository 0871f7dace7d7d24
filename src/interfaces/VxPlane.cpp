// VxPlane: distances, projections and intersections with a plane held as a point and a unit
// normal. Parallel cases answer false; a plane with a zero normal (collinear points) is
// parallel to everything.
#include <interfaces/VxPlane.h>

#include <interfaces/VxTolerance.h>

VxPlane::VxPlane(const VxPoint& p, const VxVector& normal) : m_point(p), m_normal(normal) {
    m_normal.Normalize();
}

VxPlane::VxPlane(const VxPoint& a, const VxPoint& b, const VxPoint& c)
    : m_point(a), m_normal((b - a) * (c - a)) {
    m_normal.Normalize();
}

VxPoint VxPlane::ProjectPoint(const VxPoint& p) const {
    return p - m_normal * ((p - m_point) % m_normal);
}

double VxPlane::DistanceToPoint(const VxPoint& p, bool isSigned) const {
    const double d = (p - m_point) % m_normal;
    return isSigned ? d : (d < 0.0 ? -d : d);
}

bool VxPlane::Intersect(const VxLine& line, VxPoint& hit) const {
    // Both directions are unit, so the dot product is the cosine of the angle between the line
    // and the normal: the test is on the angle, not on lengths.
    const double denom = m_normal % line.Direction();
    if (VxTolerance::IsZero(denom)) {
        return false;
    }
    const double t = ((m_point - line.Point()) % m_normal) / denom;
    hit = line.Evaluate(t);
    return true;
}

bool VxPlane::Intersect(const VxPlane& plane, VxLine& line) const {
    const VxVector dir = m_normal * plane.m_normal;
    const double len2 = dir % dir;
    // |n1 x n2| is the sine of the angle between unit normals.
    if (VxTolerance::IsZero(dir.Magnitude())) {
        return false;
    }
    // Point on both planes nearest to this plane's point: solve with this point as origin, so
    // large coordinates do not cancel. With h = n2 . (P2 - P1) the point is P1 + h (d x n1)/|d|^2.
    const double h = (plane.m_point - m_point) % plane.m_normal;
    const VxPoint p = m_point + (dir * m_normal) * (h / len2);
    line = VxLine(p, dir);
    return true;
}
