// VxLine: projection onto and distance to an unbounded line. A line through two equal points
// has a zero direction; it then behaves as its one point, and planes never intersect it.
#include <interfaces/VxLine.h>

VxLine::VxLine(const VxPoint& a, const VxPoint& b) : m_point(a), m_dir(b - a) {
    m_dir.Normalize();
}

VxLine::VxLine(const VxPoint& p, const VxVector& direction) : m_point(p), m_dir(direction) {
    m_dir.Normalize();
}

VxPoint VxLine::ProjectPoint(const VxPoint& p, double* parameter) const {
    const double t = (p - m_point) % m_dir;
    if (parameter != nullptr) {
        *parameter = t;
    }
    return m_point + m_dir * t;
}

double VxLine::DistanceToPoint(const VxPoint& p) const {
    return p.DistanceToPoint(ProjectPoint(p, nullptr));
}
