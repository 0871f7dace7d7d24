// VxQuaternion: rotations as (w, x, y, z). Rotation of a vector divides by the squared norm, so
// a quaternion that drifted from unit length after many products still rotates without
// scaling; nothing renormalises the stored numbers.
#include <interfaces/VxQuaternion.h>

#include <cmath>

VxQuaternion VxQuaternion::FromAxisAngle(const VxVector& axis, double angle) {
    VxVector k(axis);
    if (!k.Normalize()) {
        return VxQuaternion();
    }
    const double s = std::sin(0.5 * angle);
    return VxQuaternion(std::cos(0.5 * angle), k[0] * s, k[1] * s, k[2] * s);
}

VxVector VxQuaternion::operator*(const VxVector& v) const {
    const double n2 = m_w * m_w + m_x * m_x + m_y * m_y + m_z * m_z;
    if (n2 == 0.0) {
        return v;
    }
    // q v q* / |q|^2 = v + 2 (w (u x v) + u x (u x v)) / |q|^2 with u the vector part.
    const VxVector u(m_x, m_y, m_z);
    const VxVector uv = u * v;
    return v + (uv * m_w + u * uv) * (2.0 / n2);
}

VxQuaternion VxQuaternion::operator*(const VxQuaternion& q) const {
    return VxQuaternion(m_w * q.m_w - m_x * q.m_x - m_y * q.m_y - m_z * q.m_z,
                        m_w * q.m_x + m_x * q.m_w + m_y * q.m_z - m_z * q.m_y,
                        m_w * q.m_y - m_x * q.m_z + m_y * q.m_w + m_z * q.m_x,
                        m_w * q.m_z + m_x * q.m_y - m_y * q.m_x + m_z * q.m_w);
}

VxMatrix VxQuaternion::ToMatrix() const {
    VxMatrix m = VxMatrix::Identity(4);
    const double n2 = m_w * m_w + m_x * m_x + m_y * m_y + m_z * m_z;
    if (n2 == 0.0) {
        return m;
    }
    const double s = 2.0 / n2;
    const double w = m_w, x = m_x, y = m_y, z = m_z;
    m[0][0] = 1.0 - s * (y * y + z * z);
    m[0][1] = s * (x * y - w * z);
    m[0][2] = s * (x * z + w * y);
    m[1][0] = s * (x * y + w * z);
    m[1][1] = 1.0 - s * (x * x + z * z);
    m[1][2] = s * (y * z - w * x);
    m[2][0] = s * (x * z - w * y);
    m[2][1] = s * (y * z + w * x);
    m[2][2] = 1.0 - s * (x * x + y * y);
    return m;
}
