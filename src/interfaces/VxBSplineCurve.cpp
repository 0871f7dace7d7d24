// VxBSplineCurve: evaluation (de Boor), derivatives, Frenet frames, arc length and the global cubic
// interpolant. The interpolant solves one small linear system per curve; nothing is cached, so a
// curve stays a plain value that copies cheaply and needs no invalidation.
#include <interfaces/VxBSplineCurve.h>

#include <interfaces/VxTolerance.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// Local vector arithmetic keeps this file independent of the order in which the math sources of
// the interface layer come together; these are the same formulas as VxVector's.
double Dot(const VxVector& a, const VxVector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
VxVector Cross(const VxVector& a, const VxVector& b) {
    return VxVector(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                    a[0] * b[1] - a[1] * b[0]);
}
double Norm(const VxVector& a) {
    return std::sqrt(Dot(a, a));
}
double Distance(const VxPoint& a, const VxPoint& b) {
    return Norm(a - b);
}

bool IsFinite(const VxPoint& p) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

// Size of the control polygon's bounding box: the length scale that makes the "no curvature"
// test independent of units and of the parameter's speed.
double ControlScale(const std::vector<VxPoint>& ctrl) {
    if (ctrl.empty()) {
        return 0.0;
    }
    VxPoint lo = ctrl[0];
    VxPoint hi = ctrl[0];
    for (const VxPoint& p : ctrl) {
        for (int i = 0; i < 3; ++i) {
            lo[i] = std::min(lo[i], p[i]);
            hi[i] = std::max(hi[i], p[i]);
        }
    }
    return Distance(lo, hi);
}

// One row of a linear system, stored as the window of columns [lo, lo + v.size()) that holds its
// non-zeros. Band rows stay a few entries wide through elimination; the wrapped rows of a
// periodic system are wide, and only they and the rows they touch grow.
struct SparseRow {
    int lo = 0;
    std::vector<double> v;
    double rhs[3] = {0.0, 0.0, 0.0};

    int Hi() const { return lo + static_cast<int>(v.size()); }
    double At(int c) const {
        return c >= lo && c < Hi() ? v[static_cast<std::size_t>(c - lo)] : 0.0;
    }
    void Add(int c, double x) {
        if (v.empty()) {
            lo = c;
            v.assign(1, 0.0);
        } else if (c < lo) {
            v.insert(v.begin(), static_cast<std::size_t>(lo - c), 0.0);
            lo = c;
        } else if (c >= Hi()) {
            v.resize(static_cast<std::size_t>(c - lo) + 1, 0.0);
        }
        v[static_cast<std::size_t>(c - lo)] += x;
    }
};

// Gaussian elimination with partial pivoting, three right-hand sides (x, y, z) at once. Rows are
// scaled to a largest entry of one first: interpolation rows hold basis values in [0, 1], the end
// condition rows second derivatives that grow with 1 / (knot spacing)^2.
bool SolveRows(std::vector<SparseRow>& rows, std::vector<VxPoint>& x) {
    const int n = static_cast<int>(rows.size());
    for (SparseRow& r : rows) {
        double big = 0.0;
        for (double a : r.v) {
            big = std::max(big, std::fabs(a));
        }
        if (!(big > 0.0) || !std::isfinite(big)) {
            return false;
        }
        for (double& a : r.v) {
            a /= big;
        }
        for (double& b : r.rhs) {
            b /= big;
        }
    }
    for (int j = 0; j < n; ++j) {
        int pivot = -1;
        double best = 0.0;
        for (int r = j; r < n; ++r) {
            const double a = std::fabs(rows[r].At(j));
            if (a > best) {
                best = a;
                pivot = r;
            }
        }
        if (pivot < 0 || best < 1e-13) {
            return false;
        }
        std::swap(rows[j], rows[pivot]);
        const SparseRow& piv = rows[j];
        const double pj = piv.At(j);
        for (int r = j + 1; r < n; ++r) {
            const double a = rows[r].At(j);
            if (a == 0.0) {
                continue;
            }
            const double f = a / pj;
            for (int c = std::max(j, piv.lo); c < piv.Hi(); ++c) {
                const double pc = piv.At(c);
                if (pc != 0.0) {
                    rows[r].Add(c, -f * pc);
                }
            }
            rows[r].Add(j, -rows[r].At(j)); // exactly zero, not round-off
            for (int k = 0; k < 3; ++k) {
                rows[r].rhs[k] -= f * piv.rhs[k];
            }
        }
    }
    x.assign(static_cast<std::size_t>(n), VxPoint());
    for (int i = n - 1; i >= 0; --i) {
        const SparseRow& r = rows[i];
        double s[3] = {r.rhs[0], r.rhs[1], r.rhs[2]};
        for (int c = i + 1; c < r.Hi(); ++c) {
            const double a = r.At(c);
            for (int k = 0; k < 3; ++k) {
                s[k] -= a * x[c][k];
            }
        }
        const double d = r.At(i);
        x[i] = VxPoint(s[0] / d, s[1] / d, s[2] / d);
        if (!IsFinite(x[i])) {
            return false;
        }
    }
    return true;
}

// Adds the order-th derivative of every basis function at t to the row; ctrlToColumn maps a
// control point index to the unknown it stands for.
template <class Map>
void AddBasisRow(SparseRow& row, const VxKnotVec& knots, int ctrlCount, double t, int order,
                 Map ctrlToColumn) {
    const int p = 3;
    const int span = knots.FindSpan(p, ctrlCount, t);
    std::vector<std::vector<double>> ders;
    knots.DersBasisFuns(span, t, p, order, ders);
    for (int j = 0; j <= p; ++j) {
        const double a = ders[order][j];
        if (a != 0.0) {
            row.Add(ctrlToColumn(span - p + j), a);
        }
    }
}

void SetRhs(SparseRow& row, const VxPoint& q) {
    row.rhs[0] = q[0];
    row.rhs[1] = q[1];
    row.rhs[2] = q[2];
}

// Chord-length parameters: u[0] = 0, u.back() = 1, one per point (plus the closing chord when
// closed). Points are distinct by construction, so every step is positive.
std::vector<double> ChordParameters(const std::vector<VxPoint>& q, bool closed) {
    const std::size_t n = q.size();
    std::vector<double> u(closed ? n + 1 : n, 0.0);
    double total = 0.0;
    for (std::size_t k = 1; k < u.size(); ++k) {
        total += Distance(q[k % n], q[k - 1]);
        u[k] = total;
    }
    for (double& x : u) {
        x /= total;
    }
    u.back() = 1.0;
    return u;
}

} // namespace

VxBSplineCurve::VxBSplineCurve(int degree, const std::vector<VxPoint>& ctrlPoints,
                               const VxKnotVec& knots, bool periodic) {
    Set(degree, ctrlPoints, knots, periodic);
}

bool VxBSplineCurve::Set(int degree, const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knots,
                         bool periodic) {
    const int n = static_cast<int>(ctrlPoints.size());
    if (!knots.IsValidFor(degree, n)) {
        return false;
    }
    for (const VxPoint& p : ctrlPoints) {
        if (!IsFinite(p)) {
            return false;
        }
    }
    if (periodic) {
        const double tol = VxTolerance::kZero * std::max(1.0, ControlScale(ctrlPoints));
        for (int i = 0; i < degree; ++i) {
            if (Distance(ctrlPoints[i], ctrlPoints[n - degree + i]) > tol) {
                return false;
            }
        }
    }
    m_degree = degree;
    m_ctrl = ctrlPoints;
    m_knots = knots;
    m_periodic = periodic;
    return true;
}

VxBSplineCurve* VxBSplineCurve::CreateInterpolateCurve(const std::vector<VxPoint>& points,
                                                       bool closed) {
    // Coincident neighbours would give a zero chord, a repeated knot and a singular system.
    std::vector<VxPoint> q;
    q.reserve(points.size());
    for (const VxPoint& p : points) {
        if (!IsFinite(p)) {
            return nullptr;
        }
        if (q.empty() || Distance(q.back(), p) > VxTolerance::kZero) {
            q.push_back(p);
        }
    }
    if (closed) {
        while (q.size() > 1 && Distance(q.back(), q.front()) <= VxTolerance::kZero) {
            q.pop_back();
        }
    }
    const int p = 3;
    std::vector<VxPoint> ctrl;
    std::vector<double> knots;

    if (!closed) {
        const int n = static_cast<int>(q.size());
        if (n < 2) {
            return nullptr;
        }
        // Knots at the data parameters, clamped: n + 2 control points. The two extra equations
        // are natural end conditions (C'' = 0), which keep two- and three-point input well posed
        // where not-a-knot ends would need more points.
        const std::vector<double> u = ChordParameters(q, false);
        const int count = n + 2;
        knots.assign(p + 1, 0.0);
        knots.insert(knots.end(), u.begin() + 1, u.end() - 1);
        knots.insert(knots.end(), p + 1, 1.0);
        const VxKnotVec kv(knots);
        auto identity = [](int c) { return c; };
        std::vector<SparseRow> rows(static_cast<std::size_t>(count));
        AddBasisRow(rows[0], kv, count, 0.0, 0, identity);
        SetRhs(rows[0], q[0]);
        AddBasisRow(rows[1], kv, count, 0.0, 2, identity);
        for (int k = 1; k + 1 < n; ++k) {
            AddBasisRow(rows[k + 1], kv, count, u[k], 0, identity);
            SetRhs(rows[k + 1], q[k]);
        }
        AddBasisRow(rows[n], kv, count, 1.0, 2, identity);
        AddBasisRow(rows[n + 1], kv, count, 1.0, 0, identity);
        SetRhs(rows[n + 1], q[n - 1]);
        if (!SolveRows(rows, ctrl)) {
            return nullptr;
        }
    } else {
        const int m = static_cast<int>(q.size());
        if (m < 3) {
            return nullptr;
        }
        // Periodic knots: the spacing of the chord parameters continued by one period on both
        // sides, and m + 3 control points of which the last three repeat the first three. With
        // that, C(t + 1) = C(t) to all orders, so the seam is as smooth as any other knot.
        const std::vector<double> u = ChordParameters(q, true); // m + 1 values
        const int count = m + p;
        for (int j = p; j >= 1; --j) {
            knots.push_back(u[m - j] - 1.0);
        }
        knots.insert(knots.end(), u.begin(), u.end());
        for (int j = 1; j <= p; ++j) {
            knots.push_back(1.0 + u[j]);
        }
        const VxKnotVec kv(knots);
        // At u[k] the non-zero basis functions are those of control points k, k + 1, k + 2; the
        // middle one is the largest, so shifting columns by one puts it on the diagonal.
        auto column = [m](int c) { return (c % m - 1 + m) % m; };
        std::vector<SparseRow> rows(static_cast<std::size_t>(m));
        for (int k = 0; k < m; ++k) {
            AddBasisRow(rows[k], kv, count, u[k], 0, column);
            SetRhs(rows[k], q[k]);
        }
        std::vector<VxPoint> x;
        if (!SolveRows(rows, x)) {
            return nullptr;
        }
        for (int i = 0; i < count; ++i) {
            ctrl.push_back(x[column(i)]);
        }
    }

    auto* curve = new VxBSplineCurve();
    if (!curve->Set(p, ctrl, VxKnotVec(knots), closed)) {
        delete curve;
        return nullptr;
    }
    return curve;
}

void VxBSplineCurve::GetDomain(double& start, double& end) const {
    if (m_ctrl.empty()) {
        start = end = 0.0;
        return;
    }
    start = m_knots.DomainStart(m_degree);
    end = m_knots.DomainEnd(static_cast<int>(m_ctrl.size()));
}

double VxBSplineCurve::Normalised(double t) const {
    double a = 0.0;
    double b = 0.0;
    GetDomain(a, b);
    if (!std::isfinite(t)) {
        return a;
    }
    if (m_periodic) {
        const double len = b - a;
        double r = std::fmod(t - a, len);
        if (r < 0.0) {
            r += len;
        }
        return std::min(a + r, b);
    }
    return std::clamp(t, a, b);
}

VxPoint VxBSplineCurve::Evaluate(double t) const {
    if (m_ctrl.empty()) {
        return VxPoint();
    }
    t = Normalised(t);
    const int p = m_degree;
    const int span = m_knots.FindSpan(p, static_cast<int>(m_ctrl.size()), t);
    std::vector<VxPoint> d(m_ctrl.begin() + (span - p), m_ctrl.begin() + (span + 1));
    for (int r = 1; r <= p; ++r) {
        for (int j = p; j >= r; --j) {
            const int i = j + span - p;
            const double alpha = (t - m_knots[i]) / (m_knots[i + p + 1 - r] - m_knots[i]);
            for (int k = 0; k < 3; ++k) {
                d[j][k] = (1.0 - alpha) * d[j - 1][k] + alpha * d[j][k];
            }
        }
    }
    return d[p];
}

VxVector VxBSplineCurve::Derivative(double t, int order) const {
    if (m_ctrl.empty() || order < 0) {
        return VxVector();
    }
    if (order > m_degree) {
        return VxVector();
    }
    t = Normalised(t);
    const int p = m_degree;
    const int span = m_knots.FindSpan(p, static_cast<int>(m_ctrl.size()), t);
    std::vector<std::vector<double>> ders;
    m_knots.DersBasisFuns(span, t, p, order, ders);
    VxVector r;
    for (int j = 0; j <= p; ++j) {
        const VxPoint& c = m_ctrl[static_cast<std::size_t>(span - p + j)];
        for (int k = 0; k < 3; ++k) {
            r[k] += ders[order][j] * c[k];
        }
    }
    return r;
}

bool VxBSplineCurve::FrenetFrame(double t, VxFrame& frame) const {
    if (m_ctrl.empty()) {
        return false;
    }
    double a = 0.0;
    double b = 0.0;
    GetDomain(a, b);
    const double range = b - a;
    const double scale = ControlScale(m_ctrl);
    t = Normalised(t);

    VxVector tangent = Derivative(t, 1);
    if (!(Norm(tangent) > 1e-12 * std::max(scale, 1e-300))) {
        // A stalled parameter (repeated control points): the secant across it still points along
        // the curve.
        const double h = 1e-6 * range;
        tangent = Evaluate(Normalised(t + h)) - Evaluate(Normalised(t - h));
        if (!(Norm(tangent) > 1e-12 * std::max(scale, 1e-300))) {
            return false;
        }
    }
    tangent = tangent / Norm(tangent);

    // Principal normal at s, projected onto the plane normal to the tangent at t. Curvature
    // counts as vanishing when kappa times the curve's size is below 1e-8: that is round-off in
    // C'' (the natural ends give ~1e-15), not shape.
    auto normalAt = [&](double s, VxVector& n) {
        const VxVector d1 = Derivative(s, 1);
        const VxVector d2 = Derivative(s, 2);
        const double speed = Norm(d1);
        const VxVector bin = Cross(d1, d2);
        if (!(speed > 0.0) || !(Norm(bin) * scale > 1e-8 * speed * speed * speed)) {
            return false;
        }
        n = Cross(bin, d1);
        n = n - tangent * Dot(n, tangent);
        const double len = Norm(n);
        if (!(len > 1e-9 * Norm(Cross(bin, d1)))) {
            return false;
        }
        n = n / len;
        return true;
    };

    VxVector normal;
    bool found = normalAt(t, normal);
    static const double kProbe[] = {1e-4, 1e-3, 1e-2, 0.05, 0.1, 0.2, 0.35, 0.5};
    for (double f : kProbe) {
        if (found) {
            break;
        }
        for (double s : {t + f * range, t - f * range}) {
            const double sn = Normalised(s);
            if (sn != t && normalAt(sn, normal)) {
                found = true;
                break;
            }
        }
    }
    if (!found) {
        // Straight curve: the world axis least aligned with the tangent gives a stable normal.
        int least = 0;
        for (int i = 1; i < 3; ++i) {
            if (std::fabs(tangent[i]) < std::fabs(tangent[least])) {
                least = i;
            }
        }
        VxVector axis;
        axis[least] = 1.0;
        normal = axis - tangent * Dot(axis, tangent);
        normal = normal / Norm(normal);
    }
    frame = VxFrame(Evaluate(t), tangent, normal);
    return true;
}

double VxBSplineCurve::SpeedIntegral(double a, double b) const {
    // Adaptive five-point Gauss-Legendre inside every knot span (the speed has kinks only at
    // knots). A piece is halved until the halves agree with the whole to 1e-12: the speed of a
    // sharply turning cubic is the root of a quartic with complex zeros near the real axis, and
    // a fixed rule is then off by parts in 1e5.
    static const double kX[5] = {0.0, -0.5384693101056831, 0.5384693101056831, -0.9061798459386640,
                                 0.9061798459386640};
    static const double kW[5] = {0.5688888888888889, 0.4786286704993665, 0.4786286704993665,
                                 0.2369268850561891, 0.2369268850561891};
    auto gauss = [&](double lo, double hi) {
        const double half = 0.5 * (hi - lo);
        const double mid = lo + half;
        double sum = 0.0;
        for (int g = 0; g < 5; ++g) {
            sum += kW[g] * Norm(Derivative(mid + half * kX[g], 1));
        }
        return sum * half;
    };
    struct Piece {
        double lo, hi, whole;
        int depth;
    };
    const int n = static_cast<int>(m_ctrl.size());
    double total = 0.0;
    std::vector<Piece> stack;
    for (int s = m_degree; s < n; ++s) {
        const double lo = std::max(a, m_knots[s]);
        const double hi = std::min(b, m_knots[s + 1]);
        if (!(hi > lo)) {
            continue;
        }
        stack.push_back({lo, hi, gauss(lo, hi), 0});
        while (!stack.empty()) {
            const Piece p = stack.back();
            stack.pop_back();
            const double mid = 0.5 * (p.lo + p.hi);
            const double left = gauss(p.lo, mid);
            const double right = gauss(mid, p.hi);
            if (p.depth >= 16 || std::fabs(left + right - p.whole) <= 1e-12 * (left + right)) {
                total += left + right;
            } else {
                stack.push_back({p.lo, mid, left, p.depth + 1});
                stack.push_back({mid, p.hi, right, p.depth + 1});
            }
        }
    }
    return total;
}

double VxBSplineCurve::Length() const {
    double a = 0.0;
    double b = 0.0;
    GetDomain(a, b);
    return m_ctrl.empty() ? 0.0 : SpeedIntegral(a, b);
}

double VxBSplineCurve::Length(double t0, double t1) const {
    if (m_ctrl.empty()) {
        return 0.0;
    }
    double a = 0.0;
    double b = 0.0;
    GetDomain(a, b);
    t0 = std::isfinite(t0) ? std::clamp(t0, a, b) : a;
    t1 = std::isfinite(t1) ? std::clamp(t1, a, b) : a;
    return t1 >= t0 ? SpeedIntegral(t0, t1) : -SpeedIntegral(t1, t0);
}

double VxBSplineCurve::ParameterAtLength(double s) const {
    double a = 0.0;
    double b = 0.0;
    GetDomain(a, b);
    if (m_ctrl.empty() || !std::isfinite(s) || s <= 0.0) {
        return a;
    }
    // Walk the spans to the one that holds s, then Newton on the length inside it, kept inside
    // a shrinking bracket so a near-stalled speed cannot throw it out.
    const int n = static_cast<int>(m_ctrl.size());
    double lo = a;
    double hi = b;
    double rest = s;
    bool inside = false;
    for (int k = m_degree; k < n; ++k) {
        if (!(m_knots[k + 1] > m_knots[k])) {
            continue;
        }
        const double len = SpeedIntegral(m_knots[k], m_knots[k + 1]);
        if (rest <= len) {
            lo = m_knots[k];
            hi = m_knots[k + 1];
            inside = true;
            break;
        }
        rest -= len;
    }
    if (!inside) {
        return b;
    }
    const double spanStart = lo;
    const double tol = 1e-13 * std::max(s, 1.0);
    double t = lo + (hi - lo) * 0.5;
    for (int it = 0; it < 100; ++it) {
        const double f = SpeedIntegral(spanStart, t) - rest;
        if (std::fabs(f) <= tol) {
            break;
        }
        if (f > 0.0) {
            hi = t;
        } else {
            lo = t;
        }
        const double speed = Norm(Derivative(t, 1));
        double next = speed > 0.0 ? t - f / speed : 0.5 * (lo + hi);
        if (!(next > lo && next < hi)) {
            next = 0.5 * (lo + hi);
        }
        if (hi - lo <= 1e-15 * std::max(1.0, std::fabs(hi))) {
            break;
        }
        t = next;
    }
    return t;
}

bool VxBSplineCurve::GetMiddlePoint(VxPoint& point, double& t) const {
    if (m_ctrl.empty()) {
        return false;
    }
    t = ParameterAtLength(0.5 * Length());
    point = Evaluate(t);
    return true;
}
