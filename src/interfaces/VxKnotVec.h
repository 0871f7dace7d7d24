// VxKnotVec: the knot vector of a B-spline and the basis arithmetic that depends only on it (span
// search, Cox-de Boor values and their derivatives). It holds no control points and no degree:
// curves and surfaces own one per parametric direction and pass their degree in.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

class VxKnotVec {
public:
    VxKnotVec() = default;
    explicit VxKnotVec(std::vector<double> knots) : m_knots(std::move(knots)) {}
    VxKnotVec(const VxKnotVec&) = default;
    VxKnotVec& operator=(const VxKnotVec&) = default;

    // Every knot, repeated end knots included, in the form gluNurbsCurve and gluNurbsSurface take:
    // the count is control points + degree + 1.
    const std::vector<double>& GetKnots() const { return m_knots; }
    void SetKnots(std::vector<double> knots) { m_knots = std::move(knots); }
    int Size() const { return static_cast<int>(m_knots.size()); }
    bool IsEmpty() const { return m_knots.empty(); }
    double operator[](int i) const { return m_knots[static_cast<std::size_t>(i)]; }

    // True when the knots are finite and non-decreasing, their count fits (ctrlCount + degree + 1)
    // and the domain [knot[degree], knot[ctrlCount]] has a positive length.
    bool IsValidFor(int degree, int ctrlCount) const;
    // The parameter range over which degree + 1 basis functions are non-zero and sum to one.
    double DomainStart(int degree) const { return (*this)[degree]; }
    double DomainEnd(int ctrlCount) const { return (*this)[ctrlCount]; }

    // The span s, degree <= s < ctrlCount, with knot[s] <= t < knot[s + 1] and knot[s] <
    // knot[s + 1]. Parameters outside the domain give the first or last non-empty span, so the
    // basis routines below never divide by a zero-length interval. Requires IsValidFor.
    int FindSpan(int degree, int ctrlCount, double t) const;
    // values[j] = N(span - degree + j, degree)(t), j = 0..degree.
    void BasisFuns(int span, double t, int degree, double* values) const;
    // ders[k][j]: k-th derivative of N(span - degree + j, degree) at t, k = 0..order. Orders above
    // the degree are zero.
    void DersBasisFuns(int span, double t, int degree, int order,
                       std::vector<std::vector<double>>& ders) const;

    // Clamped knots with evenly spaced interior knots over [0, 1]: ctrlCount + degree + 1 values.
    static VxKnotVec ClampedUniform(int degree, int ctrlCount);

private:
    std::vector<double> m_knots;
};
