// VxLineSeg: distances from a bounded segment to points and to other segments, with parallel
// and zero-length segments handled. No intersection points are reported, only distances.
#include <interfaces/VxLineSeg.h>

#include <algorithm>

namespace {
double Clamp01(double t) {
    return std::min(1.0, std::max(0.0, t));
}
} // namespace

double VxLineSeg::DistanceToPoint(const VxPoint& p) const {
    const VxVector d = m_end - m_start;
    const double len2 = d % d;
    if (len2 == 0.0) {
        return p.DistanceToPoint(m_start);
    }
    const double t = Clamp01(((p - m_start) % d) / len2);
    return p.DistanceToPoint(m_start + d * t);
}

double VxLineSeg::DistanceToSegment(const VxLineSeg& other) const {
    // Closest points of two segments: minimise |P(s) - Q(t)| over the unit square, clamping s,
    // then t, then s again. For parallel segments any s gives the minimum once t and s are
    // re-clamped, so s = 0 is taken.
    const VxVector d1 = m_end - m_start;
    const VxVector d2 = other.m_end - other.m_start;
    const VxVector r = m_start - other.m_start;
    const double a = d1 % d1;
    const double e = d2 % d2;
    const double f = d2 % r;
    double s = 0.0;
    double t = 0.0;
    if (a == 0.0 && e == 0.0) {
        return m_start.DistanceToPoint(other.m_start);
    }
    if (a == 0.0) {
        return other.DistanceToPoint(m_start);
    }
    if (e == 0.0) {
        return DistanceToPoint(other.m_start);
    }
    const double c = d1 % r;
    const double b = d1 % d2;
    const double denom = a * e - b * b; // = |d1 x d2|^2, never negative in exact arithmetic
    if (denom > 1e-12 * a * e) {
        s = Clamp01((b * f - c * e) / denom);
    }
    t = (b * s + f) / e;
    if (t < 0.0) {
        t = 0.0;
        s = Clamp01(-c / a);
    } else if (t > 1.0) {
        t = 1.0;
        s = Clamp01((b - c) / a);
    }
    return (m_start + d1 * s).DistanceToPoint(other.m_start + d2 * t);
}
