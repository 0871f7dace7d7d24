// VxSyntheticArch: arch curves and rigid tooth poses; see the header.
#include "VxSyntheticArch.h"

#include <algorithm>
#include <cmath>

VxSyntheticArch::VxSyntheticArch(double y0, double a, double b)
    : m_y0(y0), m_a(a), m_b(b), m_step(0.005) {
    const int n = static_cast<int>(60.0 / m_step);
    m_len.resize(static_cast<size_t>(n) + 1);
    m_len[0] = 0.0;
    for (int i = 1; i <= n; ++i) {
        const double xm = (i - 0.5) * m_step;
        const double dy = 2.0 * m_a * xm + 4.0 * m_b * xm * xm * xm;
        m_len[static_cast<size_t>(i)] =
            m_len[static_cast<size_t>(i) - 1] + m_step * std::sqrt(1.0 + dy * dy);
    }
}

VxSyntheticArch VxSyntheticArch::Upper() {
    return VxSyntheticArch(kForward + 0.0, 0.030, 2.9e-5);
}

VxSyntheticArch VxSyntheticArch::Lower() {
    return VxSyntheticArch(kForward - 3.2, 0.034, 3.2e-5);
}

double VxSyntheticArch::XAt(double s) const {
    const double as = std::min(std::fabs(s), m_len.back());
    const auto it = std::lower_bound(m_len.begin(), m_len.end(), as);
    size_t i = static_cast<size_t>(it - m_len.begin());
    if (i == 0) {
        return 0.0;
    }
    const double l0 = m_len[i - 1];
    const double l1 = m_len[i];
    const double x = (static_cast<double>(i - 1) + (as - l0) / (l1 - l0)) * m_step;
    return s < 0.0 ? -x : x;
}

VxPoint VxSyntheticArch::At(double s) const {
    const double x = XAt(s);
    return VxPoint(x, m_y0 - (m_a * x * x + m_b * x * x * x * x), 0.0);
}

VxVector VxSyntheticArch::Tangent(double s) const {
    const double x = XAt(s);
    VxVector t(1.0, -(2.0 * m_a * x + 4.0 * m_b * x * x * x), 0.0);
    t.Normalize();
    return t;
}

VxVector VxSyntheticArch::Outward(double s) const {
    const VxVector t = Tangent(s);
    return VxVector(-t.y(), t.x(), 0.0);
}

VxVector VxRotateVector(const VxVector& v, const VxVector& k, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return v * c + (k * v) * s + k * ((k % v) * (1.0 - c));
}

VxMatrix VxToothPose::Matrix() const {
    VxMatrix m = VxMatrix::Identity(4);
    for (int r = 0; r < 3; ++r) {
        m[r][0] = x[r];
        m[r][1] = y[r];
        m[r][2] = z[r];
        m[r][3] = o[r];
    }
    return m;
}

VxMatrix VxToothPose::Inverse() const {
    VxMatrix m = VxMatrix::Identity(4);
    const VxVector ov(o.x(), o.y(), o.z());
    const VxVector axes[3] = {x, y, z};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            m[r][c] = axes[r][c];
        }
        m[r][3] = -(axes[r] % ov);
    }
    return m;
}

VxPoint VxToothPose::ToWorld(const VxPoint& p) const {
    return o + x * p.x() + y * p.y() + z * p.z();
}

VxToothPose VxToothPose::Rotated(const VxVector& axis, double angle) const {
    VxToothPose r = *this;
    r.x = VxRotateVector(x, axis, angle);
    r.y = VxRotateVector(y, axis, angle);
    r.z = VxRotateVector(z, axis, angle);
    return r;
}

VxToothPose VxToothPose::Moved(const VxVector& t) const {
    VxToothPose r = *this;
    r.o = o + t;
    return r;
}

VxToothPose VxToothPose::Interpolate(const VxToothPose& a, const VxToothPose& b, double t) {
    // Relative rotation R = Rb Ra^T as axis and angle; small here (well below 180
    // degrees).
    double m[3][3];
    const VxVector ax[3] = {a.x, a.y, a.z};
    const VxVector bx[3] = {b.x, b.y, b.z};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            double s = 0.0;
            for (int k = 0; k < 3; ++k) {
                s += bx[k][r] * ax[k][c];
            }
            m[r][c] = s;
        }
    }
    const double tr = m[0][0] + m[1][1] + m[2][2];
    const double angle = std::acos(std::max(-1.0, std::min(1.0, 0.5 * (tr - 1.0))));
    VxToothPose p = a;
    if (angle > 1e-12) {
        VxVector axis(m[2][1] - m[1][2], m[0][2] - m[2][0], m[1][0] - m[0][1]);
        axis.Normalize();
        p = a.Rotated(axis, angle * t);
    }
    if (t >= 1.0) {
        p.x = b.x;
        p.y = b.y;
        p.z = b.z;
    }
    p.o = VxPoint::Lerp(a.o, b.o, t);
    return p;
}
