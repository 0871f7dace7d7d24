// The viewer's mouse arithmetic against independent references: the arcball rotation carries
// the first sphere point's direction onto the second's, is a proper rotation about their normal,
// and turns by the angle between them; the pan of a drag, pushed forward through the view's own
// map (rotation x scale x (p + t)), moves the model by exactly the dragged pixels in view units.
// The viewer's sources are compiled into this test rather than linked.
#include "../../apps/vxview/VxArcball.cpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

VxVector Apply(const VxMatrix& m, const VxVector& v) {
    return VxVector(m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2],
                    m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2],
                    m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2]);
}

double Det3(const VxMatrix& m) {
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

// A point of the arcball surface as the renderer makes it: sphere inside, hyperbola outside.
VxPoint Sphere(double x, double y) {
    const double d = x * x + y * y;
    return VxPoint(x, y, d < 0.5 ? std::sqrt(1.0 - d) : 1.0 / (2.0 * std::sqrt(d)));
}

} // namespace

TEST(ViewerArcballTest, CarriesTheFirstDirectionOntoTheSecond) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-1.2, 1.2);
    for (int i = 0; i < 200; ++i) {
        const VxPoint a = Sphere(u(rng), u(rng));
        const VxPoint b = Sphere(u(rng), u(rng));
        const VxMatrix m = VxArcballRotation(a, b);
        ASSERT_EQ(m.Rows() * 10 + m.Cols(), 33);
        const VxVector va = VxVector(a[0], a[1], a[2]).Normalized();
        const VxVector vb = VxVector(b[0], b[1], b[2]).Normalized();
        EXPECT_NEAR((Apply(m, va) - vb).Magnitude(), 0.0, 1e-9) << i;
        // A proper rotation: orthonormal rows, determinant one.
        EXPECT_NEAR(Det3(m), 1.0, 1e-9);
        const VxMatrix id = m * m.Transposed();
        for (int p = 0; p < 3; ++p) {
            for (int q = 0; q < 3; ++q) {
                EXPECT_NEAR(id[p][q], p == q ? 1.0 : 0.0, 1e-9);
            }
        }
        // The axis (a x b) stays put, and the turn is the angle between a and b.
        const VxVector axis = (va * vb).Normalized();
        EXPECT_NEAR((Apply(m, axis) - axis).Magnitude(), 0.0, 1e-9);
        const double trace = m[0][0] + m[1][1] + m[2][2];
        EXPECT_NEAR(std::acos(std::clamp((trace - 1.0) / 2.0, -1.0, 1.0)), va.AngleWith(vb), 1e-7);
    }
}

TEST(ViewerArcballTest, NoTurnWithoutAnAxis) {
    const VxPoint c(0, 0, 1);
    EXPECT_TRUE(VxArcballRotation(c, c).IsIdentity());
    EXPECT_TRUE(VxArcballRotation(c, VxPoint(0, 0, 2)).IsIdentity()); // parallel
    EXPECT_TRUE(VxArcballRotation(VxPoint(0, 0, 0), c).IsIdentity()); // degenerate point
    // Dragging right turns the front of the model to the right: about +y.
    const VxMatrix m = VxArcballRotation(Sphere(0, 0), Sphere(0.3, 0));
    EXPECT_GT(m[0][2], 0.0);
    EXPECT_NEAR(m[1][1], 1.0, 1e-12);
}

TEST(ViewerArcballTest, PanMovesTheModelByTheDraggedPixels) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int i = 0; i < 100; ++i) {
        const VxMatrix r3 = VxArcballRotation(Sphere(u(rng), u(rng)), Sphere(u(rng), u(rng)));
        const double scale = 0.01 + std::abs(u(rng));
        const int w = 200 + i * 7, h = 150 + i * 3;
        const double dx = 40 * u(rng), dy = 40 * u(rng);
        const VxVector t = VxPanToModel(r3, scale, w, h, dx, dy);
        // Forward through the view's map: the change of the view position of any point.
        const VxVector moved = Apply(r3, t) * scale;
        const double unitsPerPixel = 2.0 / std::min(w, h);
        EXPECT_NEAR(moved[0], dx * unitsPerPixel, 1e-9);
        EXPECT_NEAR(moved[1], -dy * unitsPerPixel, 1e-9); // screen y grows downwards
        EXPECT_NEAR(moved[2], 0.0, 1e-9);                 // no move along the view axis
    }
    EXPECT_TRUE(VxPanToModel(VxMatrix::Identity(3), 0.0, 100, 100, 5, 5).IsZero());
}
