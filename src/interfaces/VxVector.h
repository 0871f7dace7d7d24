// VxVector: a free 3D direction or displacement in doubles. Point-like operations live on
// VxPoint; the two convert into each other explicitly where a formula needs it.
#pragma once

class VxVector {
public:
    VxVector() = default;
    VxVector(double x, double y, double z) : m_v{x, y, z} {}
    VxVector(const VxVector&) = default;
    VxVector& operator=(const VxVector&) = default;

    double& operator[](int i) { return m_v[i]; }
    double operator[](int i) const { return m_v[i]; }
    double x() const { return m_v[0]; }
    double y() const { return m_v[1]; }
    double z() const { return m_v[2]; }
    void Set(double x, double y, double z) {
        m_v[0] = x;
        m_v[1] = y;
        m_v[2] = z;
    }
    const double* Data() const { return m_v; }

    double Magnitude() const;
    double SquareMagnitude() const { return m_v[0] * m_v[0] + m_v[1] * m_v[1] + m_v[2] * m_v[2]; }
    // Scales to unit length in place. A zero vector stays zero and the call answers false.
    bool Normalize();
    VxVector Normalized() const;
    // Reverses the direction in place.
    void Flip();
    bool IsZero() const;
    // True for parallel and anti-parallel vectors; a zero vector is parallel to nothing. The
    // tolerance is on the sine of the angle between them (VxTolerance::kZero by default).
    bool IsParallelTo(const VxVector& v) const;
    bool IsParallelTo(const VxVector& v, double angleTolerance) const;
    // Unsigned angle in radians, 0 to pi; 0 when either vector is zero.
    double AngleWith(const VxVector& v) const;
    // Signed angle in radians, -pi to pi, turning this onto v about axis (right-handed): the
    // unsigned angle, negative when this x v points against the axis. Its magnitude always
    // equals AngleWith(v); the vectors are not projected onto the plane of the axis.
    double AngleWith(const VxVector& v, const VxVector& axis) const;

    VxVector operator*(const VxVector& v) const; // cross product
    double operator%(const VxVector& v) const;   // dot product
    VxVector operator-() const { return VxVector(-m_v[0], -m_v[1], -m_v[2]); }
    VxVector operator+(const VxVector& v) const {
        return VxVector(m_v[0] + v.m_v[0], m_v[1] + v.m_v[1], m_v[2] + v.m_v[2]);
    }
    VxVector operator-(const VxVector& v) const {
        return VxVector(m_v[0] - v.m_v[0], m_v[1] - v.m_v[1], m_v[2] - v.m_v[2]);
    }
    VxVector operator*(double s) const { return VxVector(m_v[0] * s, m_v[1] * s, m_v[2] * s); }
    VxVector operator/(double s) const { return VxVector(m_v[0] / s, m_v[1] / s, m_v[2] / s); }
    VxVector& operator+=(const VxVector& v);
    VxVector& operator-=(const VxVector& v);
    VxVector& operator*=(double s);
    VxVector& operator/=(double s);
    bool operator==(const VxVector& v) const {
        return m_v[0] == v.m_v[0] && m_v[1] == v.m_v[1] && m_v[2] == v.m_v[2];
    }
    bool operator!=(const VxVector& v) const { return !(*this == v); }

private:
    double m_v[3] = {0.0, 0.0, 0.0};
};

inline VxVector operator*(double s, const VxVector& v) {
    return v * s;
}
