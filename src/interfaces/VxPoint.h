// VxPoint: a position in model space (millimetres), three doubles.
#pragma once

#include <interfaces/VxVector.h>

class VxPoint {
public:
    VxPoint() = default;
    VxPoint(double x, double y, double z) : m_p{x, y, z} {}
    explicit VxPoint(const VxVector& v) : m_p{v[0], v[1], v[2]} {}
    VxPoint(const VxPoint&) = default;
    VxPoint& operator=(const VxPoint&) = default;

    double& operator[](int i) { return m_p[i]; }
    double operator[](int i) const { return m_p[i]; }
    double x() const { return m_p[0]; }
    double y() const { return m_p[1]; }
    double z() const { return m_p[2]; }
    void Set(double x, double y, double z) {
        m_p[0] = x;
        m_p[1] = y;
        m_p[2] = z;
    }
    const double* Data() const { return m_p; }

    double DistanceToPoint(const VxPoint& p) const;
    double SquareDistanceToPoint(const VxPoint& p) const;
    operator VxVector() const { return VxVector(m_p[0], m_p[1], m_p[2]); }

    VxPoint operator+(const VxVector& v) const {
        return VxPoint(m_p[0] + v[0], m_p[1] + v[1], m_p[2] + v[2]);
    }
    VxPoint operator-(const VxVector& v) const {
        return VxPoint(m_p[0] - v[0], m_p[1] - v[1], m_p[2] - v[2]);
    }
    VxVector operator-(const VxPoint& p) const {
        return VxVector(m_p[0] - p.m_p[0], m_p[1] - p.m_p[1], m_p[2] - p.m_p[2]);
    }
    VxPoint& operator+=(const VxVector& v);
    VxPoint& operator-=(const VxVector& v);
    bool operator==(const VxPoint& p) const {
        return m_p[0] == p.m_p[0] && m_p[1] == p.m_p[1] && m_p[2] == p.m_p[2];
    }
    bool operator!=(const VxPoint& p) const { return !(*this == p); }

    // Affine combination (1 - t) a + t b.
    static VxPoint Lerp(const VxPoint& a, const VxPoint& b, double t);

private:
    double m_p[3] = {0.0, 0.0, 0.0};
};
