// VxPoint: distances and affine steps between positions. Nothing here applies a tolerance.
#include <interfaces/VxPoint.h>

#include <cmath>

double VxPoint::DistanceToPoint(const VxPoint& p) const {
    return std::sqrt(SquareDistanceToPoint(p));
}

double VxPoint::SquareDistanceToPoint(const VxPoint& p) const {
    const double dx = m_p[0] - p.m_p[0];
    const double dy = m_p[1] - p.m_p[1];
    const double dz = m_p[2] - p.m_p[2];
    return dx * dx + dy * dy + dz * dz;
}

VxPoint& VxPoint::operator+=(const VxVector& v) {
    m_p[0] += v[0];
    m_p[1] += v[1];
    m_p[2] += v[2];
    return *this;
}

VxPoint& VxPoint::operator-=(const VxVector& v) {
    m_p[0] -= v[0];
    m_p[1] -= v[1];
    m_p[2] -= v[2];
    return *this;
}

VxPoint VxPoint::Lerp(const VxPoint& a, const VxPoint& b, double t) {
    // Written as a + t (b - a) would not give b exactly at t = 1.
    return VxPoint((1.0 - t) * a.m_p[0] + t * b.m_p[0], (1.0 - t) * a.m_p[1] + t * b.m_p[1],
                   (1.0 - t) * a.m_p[2] + t * b.m_p[2]);
}
