// VxQuaternion: a unit rotation quaternion (w, x, y, z).
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxVector.h>

class VxQuaternion {
public:
    VxQuaternion() = default; // identity
    VxQuaternion(double w, double x, double y, double z) : m_w(w), m_x(x), m_y(y), m_z(z) {}
    VxQuaternion& operator=(const VxQuaternion&) = default;

    // Rotation of angle radians about axis (right-handed). A zero axis gives the identity.
    static VxQuaternion FromAxisAngle(const VxVector& axis, double angle);
    // Rotates a vector.
    VxVector operator*(const VxVector& v) const;
    // Composition: (a * b) rotates by b first, then by a.
    VxQuaternion operator*(const VxQuaternion& q) const;
    VxQuaternion Conjugate() const { return VxQuaternion(m_w, -m_x, -m_y, -m_z); }
    VxMatrix ToMatrix() const; // 4 x 4
    double W() const { return m_w; }
    double X() const { return m_x; }
    double Y() const { return m_y; }
    double Z() const { return m_z; }

private:
    double m_w = 1.0, m_x = 0.0, m_y = 0.0, m_z = 0.0;
};
