// VxKnotVec: span search and Cox-de Boor basis evaluation (the triangular schemes of Piegl and
// Tiller, "The NURBS Book", A2.1 to A2.3). Knot insertion, refinement and NURBS weights are left
// out: nothing in the renderer needs them.
#include <interfaces/VxKnotVec.h>

#include <algorithm>
#include <cmath>

bool VxKnotVec::IsValidFor(int degree, int ctrlCount) const {
    if (degree < 1 || ctrlCount < degree + 1) {
        return false;
    }
    if (m_knots.size() != static_cast<std::size_t>(ctrlCount) + degree + 1) {
        return false;
    }
    for (std::size_t i = 0; i < m_knots.size(); ++i) {
        if (!std::isfinite(m_knots[i])) {
            return false;
        }
        if (i > 0 && m_knots[i] < m_knots[i - 1]) {
            return false;
        }
    }
    return DomainEnd(ctrlCount) > DomainStart(degree);
}

int VxKnotVec::FindSpan(int degree, int ctrlCount, double t) const {
    const double lo = DomainStart(degree);
    const double hi = DomainEnd(ctrlCount);
    if (!(t > lo)) { // also catches NaN
        int s = degree;
        while (s < ctrlCount - 1 && !((*this)[s] < (*this)[s + 1])) {
            ++s;
        }
        return s;
    }
    if (t >= hi) {
        int s = ctrlCount - 1;
        while (s > degree && !((*this)[s] < (*this)[s + 1])) {
            --s;
        }
        return s;
    }
    // knot[degree] < t < knot[ctrlCount]: the last knot <= t bounds a non-empty span.
    auto first = m_knots.begin() + degree;
    auto last = m_knots.begin() + ctrlCount + 1;
    const int s = static_cast<int>(std::upper_bound(first, last, t) - m_knots.begin()) - 1;
    return std::clamp(s, degree, ctrlCount - 1);
}

void VxKnotVec::BasisFuns(int span, double t, int degree, double* values) const {
    std::vector<double> left(static_cast<std::size_t>(degree) + 1);
    std::vector<double> right(static_cast<std::size_t>(degree) + 1);
    values[0] = 1.0;
    for (int j = 1; j <= degree; ++j) {
        left[j] = t - (*this)[span + 1 - j];
        right[j] = (*this)[span + j] - t;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            const double tmp = values[r] / (right[r + 1] + left[j - r]);
            values[r] = saved + right[r + 1] * tmp;
            saved = left[j - r] * tmp;
        }
        values[j] = saved;
    }
}

void VxKnotVec::DersBasisFuns(int span, double t, int degree, int order,
                              std::vector<std::vector<double>>& ders) const {
    const int p = degree;
    const auto P = static_cast<std::size_t>(p) + 1;
    ders.assign(static_cast<std::size_t>(std::max(order, 0)) + 1, std::vector<double>(P, 0.0));
    const int n = std::clamp(order, 0, p);

    // ndu holds the basis values of every degree (upper triangle) and the knot differences
    // (lower triangle) that the derivative recurrences divide by.
    std::vector<std::vector<double>> ndu(P, std::vector<double>(P, 0.0));
    std::vector<double> left(P), right(P);
    ndu[0][0] = 1.0;
    for (int j = 1; j <= p; ++j) {
        left[j] = t - (*this)[span + 1 - j];
        right[j] = (*this)[span + j] - t;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            ndu[j][r] = right[r + 1] + left[j - r];
            const double tmp = ndu[r][j - 1] / ndu[j][r];
            ndu[r][j] = saved + right[r + 1] * tmp;
            saved = left[j - r] * tmp;
        }
        ndu[j][j] = saved;
    }
    for (int j = 0; j <= p; ++j) {
        ders[0][j] = ndu[j][p];
    }

    std::vector<std::vector<double>> a(2, std::vector<double>(P, 0.0));
    for (int r = 0; r <= p; ++r) {
        int s1 = 0;
        int s2 = 1;
        a[0][0] = 1.0;
        for (int k = 1; k <= n; ++k) {
            double d = 0.0;
            const int rk = r - k;
            const int pk = p - k;
            if (r >= k) {
                a[s2][0] = a[s1][0] / ndu[pk + 1][rk];
                d = a[s2][0] * ndu[rk][pk];
            }
            const int j1 = rk >= -1 ? 1 : -rk;
            const int j2 = (r - 1 <= pk) ? k - 1 : p - r;
            for (int j = j1; j <= j2; ++j) {
                a[s2][j] = (a[s1][j] - a[s1][j - 1]) / ndu[pk + 1][rk + j];
                d += a[s2][j] * ndu[rk + j][pk];
            }
            if (r <= pk) {
                a[s2][k] = -a[s1][k - 1] / ndu[pk + 1][r];
                d += a[s2][k] * ndu[r][pk];
            }
            ders[k][r] = d;
            std::swap(s1, s2);
        }
    }
    double factor = p;
    for (int k = 1; k <= n; ++k) {
        for (int j = 0; j <= p; ++j) {
            ders[k][j] *= factor;
        }
        factor *= (p - k);
    }
}

VxKnotVec VxKnotVec::ClampedUniform(int degree, int ctrlCount) {
    if (degree < 1 || ctrlCount < degree + 1) {
        return VxKnotVec();
    }
    std::vector<double> k(static_cast<std::size_t>(ctrlCount) + degree + 1, 0.0);
    const int interior = ctrlCount - degree; // number of spans
    for (int i = 0; i < static_cast<int>(k.size()); ++i) {
        if (i <= degree) {
            k[i] = 0.0;
        } else if (i >= ctrlCount) {
            k[i] = 1.0;
        } else {
            k[i] = static_cast<double>(i - degree) / interior;
        }
    }
    return VxKnotVec(std::move(k));
}
