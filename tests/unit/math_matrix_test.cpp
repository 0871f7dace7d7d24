// Unit tests of VxMatrix: construction, inversion against identity products, the column-major
// array GL takes, and rotations checked against the Rodrigues formula and quaternions.
#include <interfaces/VxMatrix.h>

#include <interfaces/VxQuaternion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

VxMatrix RandomMatrix(std::mt19937& rng, int n) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    VxMatrix m(n, n);
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            m[r][c] = u(rng);
        }
        // Diagonal dominance keeps the condition number small, so 1e-10 is a fair bound.
        m[r][r] += (u(rng) < 0.0 ? -1.0 : 1.0) * n;
    }
    return m;
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

// v cos + (k x v) sin + k (k . v)(1 - cos), written out by hand.
VxVector Rodrigues(VxVector k, double angle, const VxVector& v) {
    k.Normalize();
    const VxVector kxv(k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                       k[0] * v[1] - k[1] * v[0]);
    const double kv = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    const double c = std::cos(angle), s = std::sin(angle);
    return VxVector(v[0] * c + kxv[0] * s + k[0] * kv * (1 - c),
                    v[1] * c + kxv[1] * s + k[1] * kv * (1 - c),
                    v[2] * c + kxv[2] * s + k[2] * kv * (1 - c));
}

void ExpectNear(const VxVector& a, const VxVector& b, double tol) {
    EXPECT_NEAR(a[0], b[0], tol);
    EXPECT_NEAR(a[1], b[1], tol);
    EXPECT_NEAR(a[2], b[2], tol);
}

} // namespace

TEST(VxMatrixTest, NewMatricesAreZeroAndSized) {
    VxMatrix d;
    EXPECT_EQ(d.Rows(), 4);
    EXPECT_EQ(d.Cols(), 4);
    VxMatrix r(2, 5);
    EXPECT_EQ(r.Rows(), 2);
    EXPECT_EQ(r.Cols(), 5);
    for (const VxMatrix* m : {&d, &r}) {
        for (int i = 0; i < m->Rows(); ++i) {
            for (int j = 0; j < m->Cols(); ++j) {
                EXPECT_EQ((*m)[i][j], 0.0);
            }
        }
    }
    EXPECT_FALSE(d.IsIdentity());
    d.SetIdentity();
    EXPECT_TRUE(d.IsIdentity());

    // Rows are contiguous and GetRow/GetCol read the same storage; out of range gives nothing.
    r[1][3] = 7.0;
    EXPECT_EQ(r.GetRow(1)[3], 7.0);
    EXPECT_EQ(r.GetCol(3)[1], 7.0);
    EXPECT_EQ(r.GetCol(3).size(), 2u);
    EXPECT_TRUE(r.GetRow(2).empty());
    EXPECT_TRUE(r.GetCol(-1).empty());
    VxMatrix bad(-3, 2); // quietly empty, not a crash
    EXPECT_EQ(bad.Rows(), 0);
}

TEST(VxMatrixTest, InverseGivesIdentityBothWaysPivotingAndAtAnyScale) {
    std::mt19937 rng(1234);
    for (int n = 1; n <= 6; ++n) {
        for (int trial = 0; trial < 20; ++trial) {
            const VxMatrix a = RandomMatrix(rng, n);
            VxMatrix inv(a);
            ASSERT_TRUE(inv.Inverse());
            EXPECT_LT(MaxDiff(a * inv, VxMatrix::Identity(n)), 1e-12) << "n=" << n;
            EXPECT_LT(MaxDiff(inv * a, VxMatrix::Identity(n)), 1e-12) << "n=" << n;
        }
    }

    // A zero in the first pivot position: without row exchanges this fails.
    VxMatrix swap(3, 3);
    swap[0][1] = 1.0;
    swap[1][0] = 1.0;
    swap[2][2] = 2.0;
    VxMatrix swapInv(swap);
    ASSERT_TRUE(swapInv.Inverse());
    EXPECT_LT(MaxDiff(swap * swapInv, VxMatrix::Identity(3)), 1e-15);

    // The tolerance is relative: a well-conditioned matrix of tiny entries still inverts.
    rng.seed(7);
    VxMatrix tiny = RandomMatrix(rng, 4);
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            tiny[r][c] *= 1e-9;
        }
    }
    VxMatrix tinyInv(tiny);
    ASSERT_TRUE(tinyInv.Inverse());
    EXPECT_LT(MaxDiff(tiny * tinyInv, VxMatrix::Identity(4)), 1e-12);

    // A rigid placement inverts to its transposed rotation.
    const VxMatrix rot = VxMatrix::s_GetRotationMatrix(VxVector(1, -2, 0.5), 0.83);
    const VxMatrix m = VxMatrix::Translation(VxVector(10, -4, 3)) * rot;
    VxMatrix rigidInv(m);
    ASSERT_TRUE(rigidInv.Inverse());
    const VxPoint p(3, 1, -2);
    const VxPoint back = rigidInv.Transform(m.Transform(p));
    EXPECT_NEAR(back.DistanceToPoint(p), 0.0, 1e-12);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(rigidInv[i][j], m[j][i], 1e-14);
        }
    }
}

TEST(VxMatrixTest, SingularAndNonSquareMatricesAreRefusedAndUntouched) {
    std::vector<VxMatrix> refused;
    refused.emplace_back(4, 4); // all zero

    VxMatrix rankDeficient(3, 3); // third row = first + second
    const double rows[2][3] = {{1, 2, 3}, {-4, 0.5, 2}};
    for (int c = 0; c < 3; ++c) {
        rankDeficient[0][c] = rows[0][c];
        rankDeficient[1][c] = rows[1][c];
        rankDeficient[2][c] = rows[0][c] + rows[1][c];
    }
    refused.push_back(rankDeficient);

    VxMatrix nearSingular(rankDeficient); // off by a relative 1e-15: numerically singular
    nearSingular[2][2] += 3e-15;
    refused.push_back(nearSingular);

    VxMatrix flat = VxMatrix::Identity(4); // projection onto a plane
    flat[2][2] = 0.0;
    refused.push_back(flat);

    VxMatrix notANumber = VxMatrix::Identity(3);
    notANumber[1][1] = std::nan("");
    refused.push_back(notANumber);

    VxMatrix wide(3, 4);
    wide.SetIdentity();
    refused.push_back(wide);
    refused.emplace_back(0, 0);

    for (std::size_t i = 0; i < refused.size(); ++i) {
        VxMatrix m(refused[i]);
        EXPECT_FALSE(m.Inverse()) << "case " << i;
        // NaN never compares equal, so compare the case with a NaN element by element.
        for (int r = 0; r < m.Rows(); ++r) {
            for (int c = 0; c < m.Cols(); ++c) {
                const double before = refused[i][r][c];
                if (std::isnan(before)) {
                    EXPECT_TRUE(std::isnan(m[r][c]));
                } else {
                    EXPECT_EQ(m[r][c], before) << "case " << i;
                }
            }
        }
    }
}

TEST(VxMatrixTest, ToArrayIsTheColumnMajorOrderOfGlMultMatrixd) {
    // What glTranslated(tx, ty, tz) multiplies by, as GL documents it: translation in 12..14.
    const double glTranslate[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, -6, 7, 1};
    double a[16];
    VxMatrix::Translation(VxVector(5, -6, 7)).ToArray(a);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(a[i], glTranslate[i]) << i;
    }

    // GL computes out[r] = sum_c a[c * 4 + r] * in[c]; that must match Transform for a full
    // affine placement.
    const VxMatrix m = VxMatrix::Translation(VxVector(1, 2, 3)) *
                       VxMatrix::s_GetRotationMatrix(VxVector(0.3, 1, -0.2), 1.1);
    m.ToArray(a);
    const double in[4] = {0.5, -2, 4, 1};
    double out[4] = {0, 0, 0, 0};
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            out[r] += a[c * 4 + r] * in[c];
        }
    }
    const VxPoint p = m.Transform(VxPoint(in[0], in[1], in[2]));
    EXPECT_NEAR(out[0], p[0], 1e-14);
    EXPECT_NEAR(out[1], p[1], 1e-14);
    EXPECT_NEAR(out[2], p[2], 1e-14);
    EXPECT_NEAR(out[3], 1.0, 1e-15);

    EXPECT_EQ(VxMatrix::FromArray(a), m);

    // A 3 x 3 lands in the upper-left block of an identity: still 16 numbers.
    VxMatrix r3(3, 3);
    r3[0][1] = 2.0;
    r3[2][0] = 3.0;
    double b[16];
    r3.ToArray(b);
    EXPECT_EQ(b[4], 2.0);  // row 0, column 1
    EXPECT_EQ(b[2], 3.0);  // row 2, column 0
    EXPECT_EQ(b[15], 1.0); // homogeneous corner
    EXPECT_EQ(b[12], 0.0);
}

TEST(VxMatrixTest, RotationIsRightHandedComposesAndAgreesWithRodriguesAndQuaternion) {
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        // Unnormalised axes on purpose: the rotation must normalise them.
        const VxVector axis(3 * u(rng), 3 * u(rng), 3 * u(rng));
        const double angle = kPi * 1.5 * u(rng);
        const VxVector v(u(rng), u(rng), u(rng));
        const VxMatrix r = VxMatrix::s_GetRotationMatrix(axis, angle);
        const VxVector expected = Rodrigues(axis, angle, v);
        ExpectNear(r.Transform(v), expected, 1e-14);
        ExpectNear(VxQuaternion::FromAxisAngle(axis, angle) * v, expected, 1e-14);
        EXPECT_LT(MaxDiff(VxQuaternion::FromAxisAngle(axis, angle).ToMatrix(), r), 1e-14);

        // Orthonormal with determinant +1, and a pure rotation (no translation, w row).
        EXPECT_LT(MaxDiff(r * r.Transposed(), VxMatrix::Identity(4)), 1e-14);
        const double det = r[0][0] * (r[1][1] * r[2][2] - r[1][2] * r[2][1]) -
                           r[0][1] * (r[1][0] * r[2][2] - r[1][2] * r[2][0]) +
                           r[0][2] * (r[1][0] * r[2][1] - r[1][1] * r[2][0]);
        EXPECT_NEAR(det, 1.0, 1e-14);
        EXPECT_EQ(r[3][3], 1.0);
        EXPECT_EQ(r[0][3], 0.0);
    }

    // +90 degrees about Z takes X to Y, about X takes Y to Z, about Y takes Z to X.
    const VxVector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    ExpectNear(VxMatrix::s_GetRotationMatrix(z, kPi / 2).Transform(x), y, 1e-15);
    ExpectNear(VxMatrix::s_GetRotationMatrix(x, kPi / 2).Transform(y), z, 1e-15);
    ExpectNear(VxMatrix::s_GetRotationMatrix(y, kPi / 2).Transform(z), x, 1e-15);

    const VxVector axis(1, 2, 2);
    const VxMatrix sum = VxMatrix::s_GetRotationMatrix(axis, 0.9);
    const VxMatrix product =
        VxMatrix::s_GetRotationMatrix(axis, 0.4) * VxMatrix::s_GetRotationMatrix(axis, 0.5);
    EXPECT_LT(MaxDiff(sum, product), 1e-15);

    // A zero axis is no rotation rather than NaNs.
    EXPECT_TRUE(VxMatrix::s_GetRotationMatrix(VxVector(), 1.0).IsIdentity());
}

TEST(VxMatrixTest, TransformAppliesTranslationToPointsOnly) {
    const VxMatrix m = VxMatrix::Translation(VxVector(1, 2, 3)) *
                       VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), kPi / 2);
    const VxPoint p = m.Transform(VxPoint(1, 0, 0)); // rotate to (0,1,0), then move
    EXPECT_NEAR(p.DistanceToPoint(VxPoint(1, 3, 3)), 0.0, 1e-15);
    ExpectNear(m.Transform(VxVector(1, 0, 0)), VxVector(0, 1, 0), 1e-15);

    // A projective bottom row divides by w.
    VxMatrix h = VxMatrix::Identity(4);
    h[3][3] = 2.0;
    const VxPoint q = h.Transform(VxPoint(2, 4, 6));
    EXPECT_EQ(q, VxPoint(1, 2, 3));

    // Product order: (A * B) p = A (B p).
    const VxMatrix a = VxMatrix::s_GetRotationMatrix(VxVector(1, 1, 0), 0.7);
    const VxMatrix b = VxMatrix::Translation(VxVector(-2, 5, 1));
    const VxPoint r = VxPoint(0.3, -0.2, 9);
    EXPECT_NEAR((a * b).Transform(r).DistanceToPoint(a.Transform(b.Transform(r))), 0.0, 1e-14);

    // Sizes that do not chain give a zero matrix of the outer sizes.
    const VxMatrix bad = VxMatrix(2, 3) * VxMatrix(2, 3);
    EXPECT_EQ(bad.Rows(), 2);
    EXPECT_EQ(bad.Cols(), 3);
}
