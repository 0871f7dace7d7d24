// B-spline curves and surfaces against independent references: the Cox-de Boor recursion written
// out below, chord-length parameters recomputed here, dense polylines for arc length, and GLU's
// own NURBS tessellator for the knot vectors we hand to gluNurbsCurve.
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxBSplineSurface.h>
#include <interfaces/VxKnotVec.h>

#include <GL/glu.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

const double kPi = 3.14159265358979323846;

double Dot(const VxVector& a, const VxVector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
double Len(const VxVector& a) {
    return std::sqrt(Dot(a, a));
}
VxVector Cross(const VxVector& a, const VxVector& b) {
    return VxVector(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                    a[0] * b[1] - a[1] * b[0]);
}
double Dist(const VxPoint& a, const VxPoint& b) {
    return Len(a - b);
}

// The textbook recursion, with 0/0 taken as 0. Half-open spans, so it is zero at the very end
// of a clamped domain; callers stay below it.
double CoxDeBoor(const std::vector<double>& U, int i, int p, double t) {
    if (p == 0) {
        return (U[i] <= t && t < U[i + 1]) ? 1.0 : 0.0;
    }
    double r = 0.0;
    const double d1 = U[i + p] - U[i];
    const double d2 = U[i + p + 1] - U[i + 1];
    if (d1 > 0.0) {
        r += (t - U[i]) / d1 * CoxDeBoor(U, i, p - 1, t);
    }
    if (d2 > 0.0) {
        r += (U[i + p + 1] - t) / d2 * CoxDeBoor(U, i + 1, p - 1, t);
    }
    return r;
}

VxPoint BruteCurve(const std::vector<double>& U, int p, const std::vector<VxPoint>& P, double t) {
    VxPoint r;
    for (int i = 0; i < static_cast<int>(P.size()); ++i) {
        const double n = CoxDeBoor(U, i, p, t);
        for (int k = 0; k < 3; ++k) {
            r[k] += n * P[i][k];
        }
    }
    return r;
}

std::vector<VxPoint> RandomPoints(std::mt19937& rng, int n, double scale = 10.0) {
    std::uniform_real_distribution<double> d(-scale, scale);
    std::vector<VxPoint> pts;
    for (int i = 0; i < n; ++i) {
        pts.emplace_back(d(rng), d(rng), d(rng));
    }
    return pts;
}

// A jaw-like arc of tooth points: a flattened parabola with a little height change.
std::vector<VxPoint> ArchPoints(int n) {
    std::vector<VxPoint> pts;
    for (int i = 0; i < n; ++i) {
        const double x = -25.0 + 50.0 * i / (n - 1);
        pts.emplace_back(x, 30.0 - 0.045 * x * x, 2.0 * std::sin(0.1 * x));
    }
    return pts;
}

std::vector<double> Chords(const std::vector<VxPoint>& q, bool closed) {
    std::vector<double> u(1, 0.0);
    const size_t n = q.size();
    for (size_t k = 1; k < (closed ? n + 1 : n); ++k) {
        u.push_back(u.back() + Dist(q[k % n], q[k - 1]));
    }
    for (double& x : u) {
        x /= u.back();
    }
    return u;
}

// Arc length table of a dense polyline: parameters, points, cumulative lengths.
struct Polyline {
    std::vector<double> t, s;
    std::vector<VxPoint> p;
};
Polyline Sample(const VxBSplineCurve& c, int n) {
    Polyline pl;
    double a = 0, b = 0;
    c.GetDomain(a, b);
    for (int i = 0; i <= n; ++i) {
        const double t = a + (b - a) * i / n;
        pl.t.push_back(t);
        pl.p.push_back(c.Evaluate(t));
        pl.s.push_back(i == 0 ? 0.0 : pl.s.back() + Dist(pl.p[i], pl.p[i - 1]));
    }
    return pl;
}

void ExpectOrthonormalRightHanded(const VxFrame& f) {
    EXPECT_NEAR(Len(f.DirX()), 1.0, 1e-9);
    EXPECT_NEAR(Len(f.DirY()), 1.0, 1e-9);
    EXPECT_NEAR(Len(f.DirZ()), 1.0, 1e-9);
    EXPECT_NEAR(Dot(f.DirX(), f.DirY()), 0.0, 1e-9);
    EXPECT_NEAR(Dot(f.DirX(), f.DirZ()), 0.0, 1e-9);
    EXPECT_NEAR(Dot(f.DirY(), f.DirZ()), 0.0, 1e-9);
    EXPECT_NEAR(Dot(Cross(f.DirX(), f.DirY()), f.DirZ()), 1.0, 1e-9);
}

} // namespace

TEST(VxBSplineCurveTest, EvaluationMatchesCoxDeBoorForManyKnotVectors) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> gap(0.05, 1.0);
    for (int p = 1; p <= 4; ++p) {
        for (int variant = 0; variant < 3; ++variant) {
            const int n = p + 1 + 4 * variant + 1;
            std::vector<double> U;
            if (variant == 2) {
                // Unclamped, uneven knots: the form a periodic curve uses.
                double x = 0.0;
                for (int i = 0; i < n + p + 1; ++i) {
                    U.push_back(x);
                    x += gap(rng);
                }
            } else {
                U.assign(p + 1, 0.0);
                double x = 0.0;
                for (int i = 0; i < n - p - 1; ++i) {
                    x += gap(rng);
                    U.push_back(x);
                    if (variant == 1 && i == 1) {
                        U.push_back(x); // a double interior knot
                        ++i;
                    }
                }
                x += gap(rng);
                U.insert(U.end(), p + 1, x);
            }
            ASSERT_EQ(static_cast<int>(U.size()), n + p + 1);
            const std::vector<VxPoint> P = RandomPoints(rng, n);
            VxBSplineCurve c(p, P, VxKnotVec(U));
            ASSERT_TRUE(c.IsValid()) << "p=" << p << " variant=" << variant;
            double a = 0, b = 0;
            c.GetDomain(a, b);
            EXPECT_EQ(a, U[p]);
            EXPECT_EQ(b, U[n]);
            for (int i = 0; i < 200; ++i) {
                const double t = a + (b - a) * i / 200.0;
                const VxPoint ref = BruteCurve(U, p, P, t);
                EXPECT_LT(Dist(c.Evaluate(t), ref), 1e-10) << "p=" << p << " t=" << t;
                // First derivative against a central difference of the reference.
                const double h = 1e-6 * (b - a);
                if (t - h > a && t + h < b) {
                    const VxVector fd =
                        (BruteCurve(U, p, P, t + h) - BruteCurve(U, p, P, t - h)) / (2.0 * h);
                    const VxVector d1 = c.Derivative(t, 1);
                    // Skip the kinks at knots of full multiplicity minus one, where the
                    // difference straddles two polynomials.
                    bool nearKnot = false;
                    for (double u : U) {
                        nearKnot = nearKnot || std::fabs(u - t) < 2 * h;
                    }
                    if (!nearKnot) {
                        EXPECT_LT(Len(d1 - fd), 1e-5 * (1.0 + Len(fd))) << "p=" << p << " t=" << t;
                    }
                }
            }
            // The end of the domain is the limit from the left.
            EXPECT_LT(Dist(c.Evaluate(b), BruteCurve(U, p, P, b - 1e-12 * (b - a))), 1e-8);
            EXPECT_EQ(c.Derivative(0.5 * (a + b), p + 1), VxVector());
        }
    }
}

TEST(VxBSplineCurveTest, BadInputIsRefusedAndKeepsTheOldCurve) {
    const std::vector<VxPoint> P = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    VxBSplineCurve c(3, P, VxKnotVec::ClampedUniform(3, 4));
    ASSERT_TRUE(c.IsValid());
    const VxPoint before = c.Evaluate(0.3);
    EXPECT_FALSE(c.Set(3, P, VxKnotVec({0, 0, 0, 0, 1, 1, 1})));          // one knot short
    EXPECT_FALSE(c.Set(3, P, VxKnotVec({0, 0, 0, 0, 1, 0.5, 1, 1})));     // decreasing
    EXPECT_FALSE(c.Set(3, P, VxKnotVec({0, 0, 0, 0, 0, 0, 0, 0})));       // empty domain
    EXPECT_FALSE(c.Set(4, P, VxKnotVec::ClampedUniform(4, 4)));           // too few points
    EXPECT_FALSE(c.Set(3, P, VxKnotVec({0, 1, 2, 3, 4, 5, 6, 7}), true)); // does not wrap
    std::vector<VxPoint> bad = P;
    bad[2][1] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(c.Set(3, bad, VxKnotVec::ClampedUniform(3, 4)));
    EXPECT_EQ(c.Evaluate(0.3), before);

    VxBSplineCurve empty;
    EXPECT_FALSE(empty.IsValid());
    EXPECT_EQ(empty.Evaluate(0.5), VxPoint());
    VxFrame f;
    EXPECT_FALSE(empty.FrenetFrame(0.5, f));
    VxPoint m;
    double t = -1;
    EXPECT_FALSE(empty.GetMiddlePoint(m, t));
    EXPECT_EQ(empty.Length(), 0.0);

    // The factory refuses what cannot make a curve.
    const VxPoint p(1, 2, 3);
    EXPECT_EQ(VxBSplineCurve::CreateInterpolateCurve({}, false), nullptr);
    EXPECT_EQ(VxBSplineCurve::CreateInterpolateCurve({p}, false), nullptr); // one-tooth arch
    EXPECT_EQ(VxBSplineCurve::CreateInterpolateCurve({p, p, p}, false), nullptr);
    EXPECT_EQ(VxBSplineCurve::CreateInterpolateCurve({p, VxPoint(2, 2, 3)}, true), nullptr);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(VxBSplineCurve::CreateInterpolateCurve({p, VxPoint(nan, 0, 0), VxPoint()}, false),
              nullptr);
    // Repeated neighbours are merged rather than refused.
    std::unique_ptr<VxBSplineCurve> merged(VxBSplineCurve::CreateInterpolateCurve(
        {p, p, VxPoint(5, 2, 3), VxPoint(5, 2, 3), VxPoint(5, 7, 3)}, false));
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->CtrlPoints().size(), 5u);
}

TEST(VxBSplineCurveTest, OpenInterpolantPassesThroughItsPointsAtChordParameters) {
    std::mt19937 rng(11);
    for (int n : {2, 3, 4, 5, 8, 16, 60}) {
        const std::vector<VxPoint> q = n == 16 ? ArchPoints(16) : RandomPoints(rng, n);
        std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(q, false));
        ASSERT_TRUE(c) << n;
        EXPECT_EQ(c->Degree(), 3);
        EXPECT_FALSE(c->IsClosed());
        double a = 0, b = 0;
        c->GetDomain(a, b);
        EXPECT_EQ(a, 0.0);
        EXPECT_EQ(b, 1.0);
        const std::vector<double> u = Chords(q, false);
        for (int k = 0; k < n; ++k) {
            EXPECT_LT(Dist(c->Evaluate(u[k]), q[k]), 1e-9) << "n=" << n << " k=" << k;
        }
        // Natural ends.
        EXPECT_LT(Len(c->Derivative(0.0, 2)), 1e-7 * Len(c->Derivative(0.0, 1)));
        EXPECT_LT(Len(c->Derivative(1.0, 2)), 1e-7 * Len(c->Derivative(1.0, 1)));

        // gluNurbsCurve's count rule, monotone knots, clamped ends on the end points.
        const std::vector<double>& K = c->KnotVec().GetKnots();
        ASSERT_EQ(K.size(), c->CtrlPoints().size() + c->Degree() + 1);
        for (size_t i = 1; i < K.size(); ++i) {
            EXPECT_LE(K[i - 1], K[i]);
        }
        for (int i = 0; i <= 3; ++i) {
            EXPECT_EQ(K[i], 0.0);
            EXPECT_EQ(K[K.size() - 1 - i], 1.0);
        }
        EXPECT_LT(Dist(c->CtrlPoints().front(), q.front()), 1e-12);
        EXPECT_LT(Dist(c->CtrlPoints().back(), q.back()), 1e-12);
    }
    // Two points give a straight, evenly parameterised segment.
    const VxPoint a(1, 2, 3), b(4, 6, 3);
    std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve({a, b}, false));
    ASSERT_TRUE(c);
    for (double t : {0.1, 0.25, 0.9}) {
        EXPECT_LT(Dist(c->Evaluate(t), VxPoint::Lerp(a, b, t)), 1e-12);
    }
    EXPECT_NEAR(c->Length(), 5.0, 1e-12);
}

TEST(VxBSplineCurveTest, ClosedInterpolantIsPeriodicAndSmoothAtTheSeam) {
    std::mt19937 rng(5);
    for (int m : {3, 4, 7, 25}) {
        std::vector<VxPoint> q = RandomPoints(rng, m);
        std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(q, true));
        ASSERT_TRUE(c) << m;
        EXPECT_TRUE(c->IsClosed());
        const std::vector<double> u = Chords(q, true);
        for (int k = 0; k < m; ++k) {
            EXPECT_LT(Dist(c->Evaluate(u[k]), q[k]), 1e-9) << "m=" << m << " k=" << k;
        }
        const std::vector<double>& K = c->KnotVec().GetKnots();
        ASSERT_EQ(K.size(), c->CtrlPoints().size() + 4);
        EXPECT_EQ(K[3], 0.0);
        EXPECT_EQ(K[c->CtrlPoints().size()], 1.0);
        for (size_t i = 1; i < K.size(); ++i) {
            EXPECT_LE(K[i - 1], K[i]);
        }

        // The same data without wrapping evaluates the last span up to t = 1 itself, so the
        // seam is compared between two different polynomial pieces.
        VxBSplineCurve plain(c->Degree(), c->CtrlPoints(), c->KnotVec(), false);
        ASSERT_TRUE(plain.IsValid());
        EXPECT_LT(Dist(plain.Evaluate(1.0), plain.Evaluate(0.0)), 1e-9);
        EXPECT_LT(Dist(plain.Evaluate(1.0), q[0]), 1e-9);
        for (int order = 1; order <= 2; ++order) {
            const VxVector d0 = plain.Derivative(0.0, order);
            const VxVector d1 = plain.Derivative(1.0, order);
            EXPECT_LT(Len(d0 - d1), 1e-7 * (1.0 + Len(d0))) << "m=" << m << " order=" << order;
        }
        // Wrapping: a closed curve repeats with period one.
        EXPECT_LT(Dist(c->Evaluate(0.3), c->Evaluate(1.3)), 1e-9);
        EXPECT_LT(Dist(c->Evaluate(0.3), c->Evaluate(-0.7)), 1e-9);

        // A loop that repeats its first point gives the same curve.
        q.push_back(q.front());
        std::unique_ptr<VxBSplineCurve> again(VxBSplineCurve::CreateInterpolateCurve(q, true));
        ASSERT_TRUE(again);
        EXPECT_EQ(again->CtrlPoints().size(), c->CtrlPoints().size());
        EXPECT_LT(Dist(again->Evaluate(0.42), c->Evaluate(0.42)), 1e-12);
    }
}

TEST(VxBSplineCurveTest, FrenetFrameIsOrthonormalAndFollowsTheCurveOrALine) {
    // Points on a helix of radius 10: the normal must point at the axis.
    std::vector<VxPoint> q;
    for (int i = 0; i < 40; ++i) {
        const double a = 0.25 * i;
        q.emplace_back(10 * std::cos(a), 10 * std::sin(a), 1.5 * a);
    }
    std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(q, false));
    ASSERT_TRUE(c);
    for (double t : {0.0, 0.05, 0.3, 0.5, 0.77, 1.0}) {
        VxFrame f;
        ASSERT_TRUE(c->FrenetFrame(t, f));
        ExpectOrthonormalRightHanded(f);
        EXPECT_LT(Dist(f.GetOrigin(), c->Evaluate(t)), 1e-12);
        const double h = 1e-6;
        const VxVector fd = c->Evaluate(std::min(t + h, 1.0)) - c->Evaluate(std::max(t - h, 0.0));
        EXPECT_NEAR(Dot(f.DirX(), fd) / Len(fd), 1.0, 1e-9) << t;
        if (t > 0.02 && t < 0.98) {
            // Normal towards the helix axis, binormal in the osculating plane's normal.
            const VxPoint o = f.GetOrigin();
            const VxVector toAxis = VxVector(-o[0], -o[1], 0.0);
            EXPECT_GT(Dot(f.DirY(), toAxis) / Len(toAxis), 0.9) << t;
            EXPECT_NEAR(Dot(f.DirZ(), c->Derivative(t, 2)), 0.0, 1e-8 * Len(c->Derivative(t, 2)));
        }
    }
    // The natural end has no curvature of its own; its frame continues the one just inside.
    VxFrame end, inside;
    ASSERT_TRUE(c->FrenetFrame(0.0, end));
    ASSERT_TRUE(c->FrenetFrame(0.01, inside));
    EXPECT_GT(Dot(end.DirY(), inside.DirY()), 0.9);

    // A straight curve still gives a frame, the same one all along the line.
    std::unique_ptr<VxBSplineCurve> line(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(0, 0, 0), VxPoint(1, 1, 1), VxPoint(3, 3, 3), VxPoint(4, 4, 4)}, false));
    ASSERT_TRUE(line);
    VxFrame f, g;
    ASSERT_TRUE(line->FrenetFrame(0.5, f));
    ASSERT_TRUE(line->FrenetFrame(0.9, g));
    ExpectOrthonormalRightHanded(f);
    const double r = 1.0 / std::sqrt(3.0);
    EXPECT_NEAR(Dot(f.DirX(), VxVector(r, r, r)), 1.0, 1e-9);
    EXPECT_NEAR(Dot(f.DirY(), g.DirY()), 1.0, 1e-9);
}

TEST(VxBSplineCurveTest, MiddlePointHalvesTheArcLength) {
    std::mt19937 rng(3);
    struct Case {
        std::vector<VxPoint> pts;
        bool closed;
    };
    std::vector<Case> cases = {{ArchPoints(14), false},
                               {{VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(1, 5, 0)}, false},
                               {RandomPoints(rng, 9), false},
                               {RandomPoints(rng, 6), true}};
    for (const Case& k : cases) {
        std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(k.pts, k.closed));
        ASSERT_TRUE(c);
        const Polyline pl = Sample(*c, 40000);
        const double total = pl.s.back();
        EXPECT_NEAR(c->Length(), total, 1e-6 * total);
        VxPoint mid;
        double t = -1;
        ASSERT_TRUE(c->GetMiddlePoint(mid, t));
        EXPECT_LT(Dist(mid, c->Evaluate(t)), 1e-12);
        size_t i = 0;
        while (pl.s[i + 1] < 0.5 * total) {
            ++i;
        }
        const double f = (0.5 * total - pl.s[i]) / (pl.s[i + 1] - pl.s[i]);
        const VxPoint ref = VxPoint::Lerp(pl.p[i], pl.p[i + 1], f);
        EXPECT_LT(Dist(mid, ref), 1e-5 * total);
        EXPECT_NEAR(c->Length(0.0, t), 0.5 * c->Length(), 1e-9 * total);
        EXPECT_NEAR(c->ParameterAtLength(c->Length(0.0, 0.8)), 0.8, 1e-9);
    }
    // A closed interpolant of a circle is close to the circle's own length.
    std::vector<VxPoint> circle;
    for (int i = 0; i < 32; ++i) {
        circle.emplace_back(7 * std::cos(2 * kPi * i / 32), 7 * std::sin(2 * kPi * i / 32), 0);
    }
    std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(circle, true));
    ASSERT_TRUE(c);
    EXPECT_NEAR(c->Length(), 2 * kPi * 7, 1e-4);
}

// GLU's NURBS tessellator is an independent reader of the control points, order and full knot
// vector. libGLU is opened at run time because only the library links it.
namespace {
#define VX_GLU_FN(name, fn) decltype(&fn) name = Get<decltype(&fn)>(#fn)
struct Glu {
    void* lib = dlopen("libGLU.so.1", RTLD_NOW | RTLD_LOCAL);
    template <typename F> F Get(const char* symbol) const {
        return lib ? reinterpret_cast<F>(dlsym(lib, symbol)) : nullptr;
    }
    VX_GLU_FN(newRenderer, gluNewNurbsRenderer);
    VX_GLU_FN(deleteRenderer, gluDeleteNurbsRenderer);
    VX_GLU_FN(property, gluNurbsProperty);
    VX_GLU_FN(callback, gluNurbsCallback);
    VX_GLU_FN(beginCurve, gluBeginCurve);
    VX_GLU_FN(endCurve, gluEndCurve);
    VX_GLU_FN(curve, gluNurbsCurve);
    bool Ok() const {
        return newRenderer && deleteRenderer && property && callback && beginCurve && endCurve &&
               curve;
    }
};
std::vector<VxPoint>* g_gluVertices = nullptr;
int g_gluErrors = 0;
void GLAPIENTRY OnVertex(GLfloat* v) {
    g_gluVertices->emplace_back(v[0], v[1], v[2]);
}
void GLAPIENTRY OnError(GLenum) {
    ++g_gluErrors;
}
} // namespace

TEST(VxBSplineCurveTest, GluTessellatesOurCurvesOntoTheSameShape) {
    static Glu glu;
    if (!glu.Ok()) {
        GTEST_SKIP() << "libGLU.so.1 could not be opened: " << dlerror();
    }
    for (bool closed : {false, true}) {
        std::vector<VxPoint> q = ArchPoints(9);
        if (closed) {
            q.emplace_back(0, -10, 0);
        }
        std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(q, closed));
        ASSERT_TRUE(c);
        std::vector<GLfloat> knots(c->KnotVec().GetKnots().begin(), c->KnotVec().GetKnots().end());
        std::vector<GLfloat> ctrl;
        for (const VxPoint& p : c->CtrlPoints()) {
            ctrl.insert(ctrl.end(), {static_cast<GLfloat>(p[0]), static_cast<GLfloat>(p[1]),
                                     static_cast<GLfloat>(p[2])});
        }
        std::vector<VxPoint> vertices;
        g_gluVertices = &vertices;
        g_gluErrors = 0;
        GLUnurbs* nurb = glu.newRenderer();
        ASSERT_NE(nurb, nullptr);
        // Tessellate into callbacks with a fixed parameter step: no GL context, no matrices.
        glu.property(nurb, GLU_NURBS_MODE, GLU_NURBS_TESSELLATOR);
        glu.property(nurb, GLU_AUTO_LOAD_MATRIX, GL_FALSE);
        glu.property(nurb, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
        glu.property(nurb, GLU_U_STEP, 400.0f);
        glu.callback(nurb, GLU_NURBS_VERTEX, reinterpret_cast<_GLUfuncptr>(&OnVertex));
        glu.callback(nurb, GLU_NURBS_ERROR, reinterpret_cast<_GLUfuncptr>(&OnError));
        glu.beginCurve(nurb);
        glu.curve(nurb, static_cast<GLint>(knots.size()), knots.data(), 3, ctrl.data(),
                  c->Degree() + 1, GL_MAP1_VERTEX_3);
        glu.endCurve(nurb);
        glu.deleteRenderer(nurb);
        g_gluVertices = nullptr;

        EXPECT_EQ(g_gluErrors, 0) << "closed=" << closed;
        ASSERT_GT(vertices.size(), 50u) << "closed=" << closed;
        // GLU covers exactly our domain: it starts and ends where we do ...
        EXPECT_LT(Dist(vertices.front(), c->Evaluate(0.0)), 1e-4);
        EXPECT_LT(Dist(vertices.back(), c->Evaluate(1.0)), 1e-4);
        // ... and every vertex it makes lies on our curve, to float precision.
        const Polyline pl = Sample(*c, 4000);
        double worst = 0.0;
        for (const VxPoint& v : vertices) {
            double best = 1e9;
            for (size_t i = 1; i < pl.p.size(); ++i) {
                const VxVector seg = pl.p[i] - pl.p[i - 1];
                const double f = std::clamp(Dot(v - pl.p[i - 1], seg) / Dot(seg, seg), 0.0, 1.0);
                best = std::min(best, Len(v - (pl.p[i - 1] + seg * f)));
            }
            worst = std::max(worst, best);
        }
        EXPECT_LT(worst, 1e-3) << "closed=" << closed;
    }
}

TEST(VxBSplineSurfaceTest, EvaluationMatchesTheTensorProductOfCoxDeBoor) {
    std::mt19937 rng(21);
    const int pu = 2, pv = 3, nu = 5, nv = 7;
    const std::vector<double> U = {0, 0, 0, 0.2, 0.5, 1.1, 1.1, 1.1};
    const std::vector<double> V = {-1, -1, -1, -1, 0, 0.25, 0.3, 2, 2, 2, 2};
    const std::vector<VxPoint> P = RandomPoints(rng, nu * nv);
    VxBSplineSurface s(pu, pv, nu, nv, P, VxKnotVec(U), VxKnotVec(V));
    ASSERT_TRUE(s.IsValid());
    for (int i = 0; i < 25; ++i) {
        for (int j = 0; j < 25; ++j) {
            const double u = 1.1 * i / 25.0;
            const double v = -1.0 + 3.0 * j / 25.0;
            VxPoint ref;
            for (int a = 0; a < nu; ++a) {
                for (int b = 0; b < nv; ++b) {
                    const double w = CoxDeBoor(U, a, pu, u) * CoxDeBoor(V, b, pv, v);
                    for (int k = 0; k < 3; ++k) {
                        ref[k] += w * P[a * nv + b][k]; // U-major net
                    }
                }
            }
            EXPECT_LT(Dist(s.Evaluate(u, v), ref), 1e-10) << u << ", " << v;
        }
    }
    // Clamped corners are the corner control points.
    EXPECT_LT(Dist(s.Evaluate(1.1, 2.0), P.back()), 1e-12);
    EXPECT_LT(Dist(s.Evaluate(0.0, 2.0), P[nv - 1]), 1e-12);

    VxBSplineSurface copy;
    copy = s;
    EXPECT_FALSE(copy.Set(pu, pv, nu, nv + 1, P, VxKnotVec(U), VxKnotVec(V)));
    EXPECT_FALSE(copy.Set(pu, pv, nu, nv, P, VxKnotVec(V), VxKnotVec(U)));
    EXPECT_EQ(copy.Evaluate(0.4, 0.4), s.Evaluate(0.4, 0.4));
    EXPECT_EQ(VxBSplineSurface().Evaluate(0.5, 0.5), VxPoint());
}
