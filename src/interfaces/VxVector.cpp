// VxVector: lengths, normalisation and angles of free vectors. Angles come from atan2 of the
// cross and dot products rather than acos of a dot product, which loses half its digits near
// 0 and pi. No tolerance beyond VxTolerance is applied to lengths.
#include <interfaces/VxVector.h>

#include <interfaces/VxTolerance.h>

#include <cmath>
#include <limits>

double VxVector::Magnitude() const {
    return std::sqrt(SquareMagnitude());
}

bool VxVector::Normalize() {
    const double len = Magnitude();
    // Below the smallest normal double 1/len overflows; such a vector has no direction anyway.
    if (!(len >= std::numeric_limits<double>::min()) || !std::isfinite(len)) {
        return false;
    }
    m_v[0] /= len;
    m_v[1] /= len;
    m_v[2] /= len;
    return true;
}

VxVector VxVector::Normalized() const {
    VxVector v(*this);
    v.Normalize();
    return v;
}

void VxVector::Flip() {
    m_v[0] = -m_v[0];
    m_v[1] = -m_v[1];
    m_v[2] = -m_v[2];
}

bool VxVector::IsZero() const {
    return VxTolerance::IsZero(Magnitude());
}

bool VxVector::IsParallelTo(const VxVector& v) const {
    return IsParallelTo(v, VxTolerance::kZero);
}

bool VxVector::IsParallelTo(const VxVector& v, double angleTolerance) const {
    if (IsZero() || v.IsZero()) {
        return false;
    }
    // |a x b| = |a||b| sin(angle): comparing against the product of the lengths makes the test
    // independent of how long the two vectors are.
    const double sinAngle = ((*this) * v).Magnitude() / (Magnitude() * v.Magnitude());
    return sinAngle <= angleTolerance;
}

double VxVector::AngleWith(const VxVector& v) const {
    const double crossLen = ((*this) * v).Magnitude();
    const double dot = (*this) % v;
    if (crossLen == 0.0 && dot == 0.0) {
        return 0.0; // one of them is zero
    }
    return std::atan2(crossLen, dot);
}

double VxVector::AngleWith(const VxVector& v, const VxVector& axis) const {
    const VxVector cross = (*this) * v;
    const double angle = AngleWith(v);
    return (cross % axis) < 0.0 ? -angle : angle;
}

VxVector VxVector::operator*(const VxVector& v) const {
    return VxVector(m_v[1] * v.m_v[2] - m_v[2] * v.m_v[1], m_v[2] * v.m_v[0] - m_v[0] * v.m_v[2],
                    m_v[0] * v.m_v[1] - m_v[1] * v.m_v[0]);
}

double VxVector::operator%(const VxVector& v) const {
    return m_v[0] * v.m_v[0] + m_v[1] * v.m_v[1] + m_v[2] * v.m_v[2];
}

VxVector& VxVector::operator+=(const VxVector& v) {
    m_v[0] += v.m_v[0];
    m_v[1] += v.m_v[1];
    m_v[2] += v.m_v[2];
    return *this;
}

VxVector& VxVector::operator-=(const VxVector& v) {
    m_v[0] -= v.m_v[0];
    m_v[1] -= v.m_v[1];
    m_v[2] -= v.m_v[2];
    return *this;
}

VxVector& VxVector::operator*=(double s) {
    m_v[0] *= s;
    m_v[1] *= s;
    m_v[2] *= s;
    return *this;
}

VxVector& VxVector::operator/=(double s) {
    m_v[0] /= s;
    m_v[1] /= s;
    m_v[2] /= s;
    return *this;
}
