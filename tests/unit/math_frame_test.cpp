// Unit tests of frames, transforms and rotations: VxFrame construction and the transforms
// between frames (round trips, agreement of the XForm and matrix forms, mirrored frames that must
// stay left-handed), VxXForm, VxQuaternion, and the vector operations the frames rest on.
#include <interfaces/VxFrame.h>

#include <interfaces/VxQuaternion.h>
#include <interfaces/VxXForm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

void ExpectNear(const VxVector& a, const VxVector& b, double tol) {
    EXPECT_NEAR((a - b).Magnitude(), 0.0, tol)
        << "(" << a[0] << "," << a[1] << "," << a[2] << ") vs (" << b[0] << "," << b[1] << ","
        << b[2] << ")";
}

void ExpectNear(const VxPoint& a, const VxPoint& b, double tol) {
    ExpectNear(a - VxPoint(), b - VxPoint(), tol);
}

double MaxDiff(const VxMatrix& a, const VxMatrix& b) {
    double d = 0.0;
    for (int r = 0; r < a.Rows(); ++r) {
        for (int c = 0; c < a.Cols(); ++c) {
            d = std::max(d, std::fabs(a[r][c] - b[r][c]));
        }
    }
    return d;
}

VxFrame RandomFrame(std::mt19937& rng) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (;;) {
        const VxFrame f(VxPoint(50 * u(rng), 50 * u(rng), 50 * u(rng)),
                        VxVector(u(rng), u(rng), u(rng)), VxVector(u(rng), u(rng), u(rng)));
        if (f.IsValid() && (f.DirX() * f.DirY()).Magnitude() > 0.1) {
            return f;
        }
    }
}

} // namespace

TEST(VxFrameTest, ValidityFollowsTheDirections) {
    EXPECT_FALSE(VxFrame().IsValid());
    const VxVector x(1, 0, 0), y(0, 1, 0), none;
    const struct {
        VxVector a, b;
        bool valid;
    } cases[] = {{x, y, true},
                 {VxVector(1, 1, 0), VxVector(2, 2, 0), false},
                 {VxVector(1, 1, 0), VxVector(-3, -3, 0), false},
                 {none, y, false},
                 {x, none, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(VxFrame(VxPoint(1, 2, 3), c.a, c.b).IsValid(), c.valid);
    }
    VxFrame f;
    f.SetFrame(VxVector(0, 0, 2), VxVector(1, 0, 1));
    EXPECT_TRUE(f.IsValid());
    f.SetFrame(VxVector(0, 0, 2), VxVector(0, 0, -1)); // a later bad call invalidates
    EXPECT_FALSE(f.IsValid());
}

TEST(VxFrameTest, AxesAreGramSchmidtOfTheDirectionsAndRightHanded) {
    const VxFrame f(VxPoint(), VxVector(2, 0, 0), VxVector(3, 4, 0));
    ExpectNear(f.DirX(), VxVector(1, 0, 0), 1e-15);
    ExpectNear(f.DirY(), VxVector(0, 1, 0), 1e-15);
    ExpectNear(f.DirZ(), VxVector(0, 0, 1), 1e-15);

    std::mt19937 rng(5);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        const VxVector a(u(rng), u(rng), u(rng)), b(u(rng), u(rng), u(rng));
        const VxFrame g(VxPoint(), a, b);
        ASSERT_TRUE(g.IsValid());
        EXPECT_NEAR(g.DirX().AngleWith(a), 0.0, 1e-12);
        // Y lies in the plane of the two directions, on the side of the second.
        EXPECT_NEAR(g.DirY() % (a * b), 0.0, 1e-12);
        EXPECT_GT(g.DirY() % b, 0.0);
        EXPECT_NEAR(g.DirX() % g.DirY(), 0.0, 1e-14);
        EXPECT_NEAR(g.DirY().Magnitude(), 1.0, 1e-14);
        ExpectNear(g.DirZ(), g.DirX() * g.DirY(), 1e-14);
    }
}

TEST(VxFrameTest, TransformToFrameMapsOriginAndAxesExactly) {
    std::mt19937 rng(11);
    for (int trial = 0; trial < 30; ++trial) {
        const VxFrame a = RandomFrame(rng);
        const VxFrame b = RandomFrame(rng);
        const VxXForm xf = a.TransformToFrame(b);
        EXPECT_EQ(xf.GetScale(), 1.0);
        ExpectNear(xf.Apply(a.GetOrigin()), b.GetOrigin(), 1e-12);
        ExpectNear(xf.Apply(a.DirX()), b.DirX(), 1e-14);
        ExpectNear(xf.Apply(a.DirY()), b.DirY(), 1e-14);
        ExpectNear(xf.Apply(a.DirZ()), b.DirZ(), 1e-14);
        // A point keeps its local coordinates: a's (1,2,3) lands on b's (1,2,3).
        ExpectNear(xf.Apply(a.ToWorld(VxPoint(1, 2, 3))), b.ToWorld(VxPoint(1, 2, 3)), 1e-12);
        const VxPoint p(12.5, -3, 40);
        ExpectNear(a.ToWorld(a.ToLocal(p)), p, 1e-12);
        ExpectNear(a.GetMatrix().Transform(a.ToLocal(p)), p, 1e-12);

        // The 4 x 4 form is the same map, and equals B * A^-1 built from the frame matrices.
        const VxMatrix m = a.GetTransformToNewFrame(b);
        EXPECT_LT(MaxDiff(m, xf.GetMatrix()), 1e-15);
        VxMatrix aInv = a.GetMatrix();
        ASSERT_TRUE(aInv.Inverse());
        EXPECT_LT(MaxDiff(m, b.GetMatrix() * aInv), 1e-12);
        EXPECT_LT(MaxDiff(b.GetTransformToNewFrame(a) * m, VxMatrix::Identity(4)), 1e-12);
        EXPECT_TRUE(a.GetTransformToNewFrame(a).IsIdentity());
    }
    // With an invalid frame there is nothing to map: the identity comes back.
    const VxFrame valid(VxPoint(1, 1, 1), VxVector(1, 0, 0), VxVector(0, 1, 0));
    EXPECT_TRUE(VxFrame().GetTransformToNewFrame(valid).IsIdentity());
}

TEST(VxFrameTest, TransformMovesTheFrameWithThePlacement) {
    std::mt19937 rng(3);
    const VxFrame f = RandomFrame(rng);
    const VxMatrix m = VxMatrix::Translation(VxVector(4, -1, 2)) *
                       VxMatrix::s_GetRotationMatrix(VxVector(1, 2, 3), 0.77);
    VxFrame g(f);
    g.Transform(m);
    EXPECT_TRUE(g.IsValid());
    for (const VxPoint& local : {VxPoint(), VxPoint(-2, 5, 0.5), VxPoint(0, 0, 3)}) {
        ExpectNear(g.ToWorld(local), m.Transform(f.ToWorld(local)), 1e-12);
    }
    // Moving a frame by its own map onto another frame gives that frame.
    const VxFrame target = RandomFrame(rng);
    VxFrame moved(f);
    moved.Transform(f.GetTransformToNewFrame(target));
    ExpectNear(moved.GetOrigin(), target.GetOrigin(), 1e-12);
    ExpectNear(moved.DirZ(), target.DirZ(), 1e-13);

    VxFrame unset;
    unset.Transform(m);
    EXPECT_FALSE(unset.IsValid());
}

// The view layouts carry one mirrored fixed view through ViewLookAt: rebuilding Z as X x Y after
// a mirror would show that view from the other side with its depth order reversed.
TEST(VxFrameTest, MirroredFrameStaysLeftHandedAndMapsAxisForAxis) {
    std::mt19937 rng(13);
    const VxFrame right = RandomFrame(rng);
    VxMatrix mirror = VxMatrix::Translation(VxVector(3, 0, -1));
    mirror[0][0] = -1.0; // x -> -x
    VxFrame left(right);
    left.Transform(mirror);
    ASSERT_TRUE(left.IsValid());
    ExpectNear(left.DirX(), mirror.Transform(right.DirX()), 1e-14);
    ExpectNear(left.DirY(), mirror.Transform(right.DirY()), 1e-14);
    ExpectNear(left.DirZ(), mirror.Transform(right.DirZ()), 1e-14);
    EXPECT_LT((left.DirX() * left.DirY()) % left.DirZ(), -0.999) << "left-handed";
    for (const VxPoint& local : {VxPoint(1, 0, 0), VxPoint(-2, 5, 0.5), VxPoint(0, 0, 3)}) {
        ExpectNear(left.ToWorld(local), mirror.Transform(right.ToWorld(local)), 1e-12);
    }
    // Between a left- and a right-handed frame each axis still lands on its counterpart (the
    // map is then a reflection), both ways round.
    const VxFrame other = RandomFrame(rng);
    for (const auto& [from, to] : {std::make_pair(left, other), std::make_pair(other, left)}) {
        const VxXForm xf = from.TransformToFrame(to);
        ExpectNear(xf.Apply(from.GetOrigin()), to.GetOrigin(), 1e-12);
        ExpectNear(xf.Apply(from.DirX()), to.DirX(), 1e-13);
        ExpectNear(xf.Apply(from.DirY()), to.DirY(), 1e-13);
        ExpectNear(xf.Apply(from.DirZ()), to.DirZ(), 1e-13);
        EXPECT_LT(MaxDiff(from.GetTransformToNewFrame(to), xf.GetMatrix()), 1e-15);
    }
}

TEST(VxXFormTest, RotationArrayIsColumnMajorAndApplyScalesRotatesMoves) {
    EXPECT_TRUE(VxXForm().GetMatrix().IsIdentity());
    // +90 degrees about Z: GL expects column 0 (the image of X, (0,1,0)) in a[0..3].
    VxXForm xf;
    xf.SetRotation(VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), kPi / 2)); // 4 x 4 input
    xf.SetTranslation(VxVector(7, 8, 9));
    xf.SetScale(2.0);
    double a[16];
    xf.GetRotation(a);
    const double expected[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(a[i], expected[i], 1e-15) << i;
    }
    // scale * R p + t, in Apply and in the 4 x 4 matrix alike; vectors are not moved.
    const VxPoint p(1, 2, 3);
    ExpectNear(xf.Apply(p), VxPoint(-4 + 7, 2 + 8, 6 + 9), 1e-14);
    ExpectNear(xf.GetMatrix().Transform(p), xf.Apply(p), 1e-14);
    ExpectNear(xf.Apply(VxVector(1, 0, 0)), VxVector(0, 2, 0), 1e-14);
    // A matrix too small for a rotation is ignored.
    xf.SetRotation(VxMatrix(2, 2));
    EXPECT_NEAR(xf.GetRotation()[1][0], 1.0, 1e-15);
}

TEST(VxQuaternionTest, RotatesAndComposesLikeMatrices) {
    const VxQuaternion qz = VxQuaternion::FromAxisAngle(VxVector(0, 0, 5), kPi / 2);
    ExpectNear(qz * VxVector(1, 0, 0), VxVector(0, 1, 0), 1e-15);

    std::mt19937 rng(99);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 30; ++trial) {
        const VxVector ax(u(rng), u(rng), u(rng)), bx(u(rng), u(rng), u(rng));
        const double aa = 3 * u(rng), ba = 3 * u(rng);
        const VxQuaternion a = VxQuaternion::FromAxisAngle(ax, aa);
        const VxQuaternion b = VxQuaternion::FromAxisAngle(bx, ba);
        const VxVector v(u(rng), u(rng), u(rng));
        // a * b rotates by b first.
        const VxVector viaMatrices =
            (VxMatrix::s_GetRotationMatrix(ax, aa) * VxMatrix::s_GetRotationMatrix(bx, ba))
                .Transform(v);
        ExpectNear((a * b) * v, viaMatrices, 1e-14);
        ExpectNear(a * (b * v), viaMatrices, 1e-14);
        ExpectNear(a.Conjugate() * (a * v), v, 1e-14);
    }
    // Zero axis: identity. A non-unit quaternion still rotates without scaling.
    ExpectNear(VxQuaternion::FromAxisAngle(VxVector(), 1.0) * VxVector(1, 2, 3), VxVector(1, 2, 3),
               0.0);
    const VxQuaternion scaled(2 * qz.W(), 2 * qz.X(), 2 * qz.Y(), 2 * qz.Z());
    ExpectNear(scaled * VxVector(1, 0, 0), VxVector(0, 1, 0), 1e-15);
}

TEST(VxVectorTest, AnglesAreAccurateAtBothEndsAndSignedByTheAxis) {
    const VxVector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    EXPECT_NEAR(x.AngleWith(VxVector(0, 3, 0)), kPi / 2, 1e-15);
    EXPECT_NEAR(x.AngleWith(VxVector(-2, 0, 0)), kPi, 1e-15);
    // acos(dot) returns exactly 0 for this pair; the angle is 1e-9.
    const double tiny = 1e-9;
    EXPECT_NEAR(x.AngleWith(VxVector(std::cos(tiny), std::sin(tiny), 0)), tiny, 1e-18);
    EXPECT_NEAR(x.AngleWith(VxVector(-std::cos(tiny), std::sin(tiny), 0)), kPi - tiny, 1e-15);
    EXPECT_EQ(VxVector().AngleWith(x), 0.0);
    EXPECT_NEAR(x.AngleWith(y, z), kPi / 2, 1e-15);
    EXPECT_NEAR(x.AngleWith(y, -z), -kPi / 2, 1e-15);
    EXPECT_NEAR(y.AngleWith(x, z), -kPi / 2, 1e-15);

    std::mt19937 rng(17);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        const double angle = kPi * 0.999 * u(rng);
        const VxVector axis(u(rng), u(rng), u(rng));
        // Start from a vector perpendicular to the axis and turn it by a known angle.
        const VxVector start = (axis * VxVector(u(rng), u(rng), u(rng))).Normalized();
        const VxVector end = VxMatrix::s_GetRotationMatrix(axis, angle).Transform(start);
        EXPECT_NEAR(start.AngleWith(end, axis), angle, 1e-12);
        EXPECT_NEAR(start.AngleWith(end, -axis), -angle, 1e-12);
        EXPECT_NEAR(std::fabs(start.AngleWith(end, axis)), start.AngleWith(end), 1e-15);
    }
}

TEST(VxVectorTest, NormalizeParallelAndProducts) {
    VxVector v(3, 0, 4);
    EXPECT_TRUE(v.Normalize());
    ExpectNear(v, VxVector(0.6, 0, 0.8), 1e-16);
    VxVector zero, denormal(1e-310, 0, 0);
    EXPECT_FALSE(zero.Normalize());
    EXPECT_EQ(zero, VxVector());
    EXPECT_FALSE(denormal.Normalize());
    EXPECT_TRUE(VxVector(1e-7, 0, 0).IsZero());
    EXPECT_FALSE(VxVector(1e-5, 0, 0).IsZero());

    EXPECT_TRUE(VxVector(1, 2, 3).IsParallelTo(VxVector(-2, -4, -6)));
    EXPECT_TRUE(VxVector(1000, 0, 0).IsParallelTo(VxVector(0.001, 1e-13, 0)));
    EXPECT_FALSE(VxVector(1, 0, 0).IsParallelTo(VxVector(1, 1e-4, 0)));
    EXPECT_TRUE(VxVector(1, 0, 0).IsParallelTo(VxVector(1, 1e-4, 0), 1e-3));
    EXPECT_FALSE(VxVector().IsParallelTo(VxVector()));
    EXPECT_FALSE(VxVector(1, 0, 0).IsParallelTo(VxVector()));

    ExpectNear(VxVector(1, 0, 0) * VxVector(0, 1, 0), VxVector(0, 0, 1), 0.0);
    EXPECT_EQ(VxVector(1, 2, 3) % VxVector(4, -5, 6), 12.0);
    VxVector f(1, -2, 3);
    f.Flip();
    f *= 2.0;
    f /= 4.0;
    EXPECT_EQ(f, VxVector(-0.5, 1, -1.5));
}
