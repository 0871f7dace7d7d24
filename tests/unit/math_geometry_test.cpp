// Unit tests of lines, segments, planes, boxes and polylines: projections and intersections
// checked by substituting the result back into both objects, segment distances against dense
// sampling, and the self-intersection test on shapes whose answer is known by construction.
#include <interfaces/VxBBox.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxLineSeg.h>
#include <interfaces/VxOrientBox.h>
#include <interfaces/VxPlane.h>
#include <interfaces/VxPolyline.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

void ExpectNear(const VxPoint& a, const VxPoint& b, double tol) {
    EXPECT_NEAR(a.DistanceToPoint(b), 0.0, tol);
}

// Minimum over s of the exact point-to-segment distance from a(s): an upper bound within
// |segment a| / (2 * samples) of the true distance.
double SampledSegmentDistance(const VxLineSeg& a, const VxLineSeg& b, int samples) {
    double best = 1e300;
    for (int i = 0; i <= samples; ++i) {
        const VxPoint p = VxPoint::Lerp(a.GetStartPoint(), a.GetEndPoint(), double(i) / samples);
        best = std::min(best, b.DistanceToPoint(p));
    }
    return best;
}

bool SelfIntersects(const std::vector<VxPoint>& pts, bool closed) {
    VxPolyline pl(pts);
    if (closed) {
        pl.MakeClosed();
    }
    return pl.IsSelfIntersect();
}

} // namespace

TEST(VxLineTest, ProjectionIsTheFootOfThePerpendicular) {
    const VxLine line(VxPoint(1, 1, 0), VxPoint(4, 5, 0)); // direction (0.6, 0.8, 0)
    double t = -1.0;
    const VxPoint foot =
        line.ProjectPoint(VxPoint(1 + 0.6 * 10 - 0.8 * 2, 1 + 0.8 * 10 + 0.6 * 2, 7), &t);
    EXPECT_NEAR(t, 10.0, 1e-13);
    ExpectNear(foot, VxPoint(7, 9, 0), 1e-13);
    ExpectNear(line.ProjectPoint(VxPoint(0, 0, 0), nullptr), line.Evaluate(-1.4), 1e-14);
    EXPECT_NEAR(line.DistanceToPoint(VxPoint(7 - 1.6, 9 + 1.2, 0)), 2.0, 1e-13);
    EXPECT_NEAR(line.Direction().Magnitude(), 1.0, 1e-15);

    // Two equal points: no direction; the line behaves as its point.
    const VxLine degenerate(VxPoint(2, 2, 2), VxPoint(2, 2, 2));
    ExpectNear(degenerate.ProjectPoint(VxPoint(5, 6, 2), &t), VxPoint(2, 2, 2), 0.0);
    EXPECT_EQ(t, 0.0);
    EXPECT_NEAR(degenerate.DistanceToPoint(VxPoint(5, 6, 2)), 5.0, 1e-15);
}

TEST(VxPlaneTest, DistancesAndProjection) {
    const VxPlane p(VxPoint(0, 0, 2), VxVector(0, 0, -3));
    EXPECT_NEAR(p.Normal().Magnitude(), 1.0, 1e-15);
    EXPECT_NEAR(p.DistanceToPoint(VxPoint(5, 5, 0), true), 2.0, 1e-15); // normal points down
    EXPECT_NEAR(p.DistanceToPoint(VxPoint(5, 5, 7), true), -5.0, 1e-15);
    EXPECT_NEAR(p.DistanceToPoint(VxPoint(5, 5, 7)), 5.0, 1e-15);
    ExpectNear(p.ProjectPoint(VxPoint(3, -4, 9)), VxPoint(3, -4, 2), 1e-15);

    // Three points: normal (b - a) x (c - a), counter-clockwise seen from its tip.
    const VxPlane q(VxPoint(1, 0, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 1));
    const double s = 1.0 / std::sqrt(3.0);
    EXPECT_NEAR(q.Normal()[0], s, 1e-15);
    EXPECT_NEAR(q.Normal()[2], s, 1e-15);
    EXPECT_NEAR(q.DistanceToPoint(VxPoint(0, 0, 0), true), -s, 1e-15);
    EXPECT_NEAR(q.DistanceToPoint(q.GetArbitraryPoint(), true), 0.0, 1e-15);
}

TEST(VxPlaneTest, LineAndPlaneIntersectionsLieOnBoth) {
    std::mt19937 rng(21);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        const VxPlane plane(VxPoint(10 * u(rng), 10 * u(rng), 10 * u(rng)),
                            VxVector(u(rng), u(rng), u(rng)));
        const VxLine line(VxPoint(10 * u(rng), 10 * u(rng), 10 * u(rng)),
                          VxVector(u(rng), u(rng), u(rng)));
        if (std::fabs(plane.Normal() % line.Direction()) < 0.05) {
            continue;
        }
        VxPoint hit;
        ASSERT_TRUE(plane.Intersect(line, hit));
        EXPECT_NEAR(plane.DistanceToPoint(hit), 0.0, 1e-11);
        EXPECT_NEAR(line.DistanceToPoint(hit), 0.0, 1e-11);
    }

    // Parallel lines, in the plane or beside it, miss; the output is left alone.
    const VxPlane z0(VxPoint(0, 0, 0), VxVector(0, 0, 1));
    VxPoint hit(9, 9, 9);
    EXPECT_FALSE(z0.Intersect(VxLine(VxPoint(0, 0, 1), VxVector(1, 1, 0)), hit));
    EXPECT_FALSE(z0.Intersect(VxLine(VxPoint(0, 0, 0), VxVector(1, 0, 0)), hit));
    EXPECT_FALSE(z0.Intersect(VxLine(VxPoint(0, 0, 1), VxPoint(0, 0, 1)), hit)); // no direction
    EXPECT_EQ(hit, VxPoint(9, 9, 9));
    ASSERT_TRUE(z0.Intersect(VxLine(VxPoint(3, 4, 5), VxVector(0, 0, -1)), hit));
    ExpectNear(hit, VxPoint(3, 4, 0), 1e-15);

    rng.seed(22);
    for (int trial = 0; trial < 50; ++trial) {
        const VxPlane a(VxPoint(100 * u(rng), 100 * u(rng), 100 * u(rng)),
                        VxVector(u(rng), u(rng), u(rng)));
        const VxPlane b(VxPoint(100 * u(rng), 100 * u(rng), 100 * u(rng)),
                        VxVector(u(rng), u(rng), u(rng)));
        if ((a.Normal() * b.Normal()).Magnitude() < 0.05) {
            continue;
        }
        VxLine line;
        ASSERT_TRUE(a.Intersect(b, line));
        for (double t : {-50.0, 0.0, 80.0}) {
            EXPECT_NEAR(a.DistanceToPoint(line.Evaluate(t)), 0.0, 1e-10);
            EXPECT_NEAR(b.DistanceToPoint(line.Evaluate(t)), 0.0, 1e-10);
        }
    }
    VxLine untouched(VxPoint(1, 2, 3), VxVector(1, 0, 0));
    EXPECT_FALSE(z0.Intersect(VxPlane(VxPoint(0, 0, 5), VxVector(0, 0, -2)), untouched));
    EXPECT_FALSE(z0.Intersect(z0, untouched));
    EXPECT_EQ(untouched.Point(), VxPoint(1, 2, 3));
    // Collinear points make a plane with no normal: parallel to everything.
    const VxPlane flat(VxPoint(0, 0, 0), VxPoint(1, 1, 1), VxPoint(2, 2, 2));
    EXPECT_FALSE(z0.Intersect(flat, untouched));
}

TEST(VxLineSegTest, DistancesMatchDenseSampling) {
    std::mt19937 rng(31);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int trial = 0; trial < 200; ++trial) {
        const VxPoint a0(u(rng), u(rng), u(rng));
        VxPoint a1(u(rng), u(rng), u(rng));
        VxPoint b0(u(rng), u(rng), u(rng));
        VxPoint b1(u(rng), u(rng), u(rng));
        if (trial % 4 == 1) { // parallel pair
            b1 = b0 + (a1 - a0) * (0.5 + u(rng));
        } else if (trial % 4 == 2) { // collinear, maybe overlapping
            b0 = a0 + (a1 - a0) * (1.5 * u(rng));
            b1 = a0 + (a1 - a0) * (1.5 * u(rng));
        } else if (trial % 4 == 3) { // one segment is a point
            a1 = a0;
        }
        const VxLineSeg a(a0, a1), b(b0, b1);
        const double d = a.DistanceToSegment(b);
        const double sampled = SampledSegmentDistance(a, b, 4000);
        EXPECT_LE(d, sampled + 1e-12) << trial;
        EXPECT_GE(d, sampled - 1.0e-3) << trial;
        EXPECT_NEAR(d, b.DistanceToSegment(a), 1e-12) << trial;
    }
    // Skew segments whose lines cross but not the segments themselves.
    const VxLineSeg s(VxPoint(0, 0, 0), VxPoint(1, 0, 0));
    EXPECT_NEAR(s.DistanceToSegment(VxLineSeg(VxPoint(3, -1, 1), VxPoint(3, 1, 1))), std::sqrt(5.0),
                1e-15);
    EXPECT_NEAR(s.DistanceToPoint(VxPoint(0.5, 3, 4)), 5.0, 1e-15);
    EXPECT_NEAR(s.DistanceToPoint(VxPoint(-3, 4, 0)), 5.0, 1e-15);
}

TEST(VxBoxTest, AxisAlignedAndOrientedBoxes) {
    VxBBox box;
    EXPECT_TRUE(box.IsEmpty());
    EXPECT_EQ(box.Diagonal(), 0.0);
    EXPECT_FALSE(box.Contains(VxPoint()));
    box.Add(VxPoint(1, 2, 3));
    EXPECT_FALSE(box.IsEmpty());
    EXPECT_EQ(box.Diagonal(), 0.0);
    box.Add(VxPoint(-1, 5, 3));
    box.Add(VxBBox()); // an empty box adds nothing
    box.Add(VxBBox(VxPoint(0, 2, -1), VxPoint(0, 2, 3)));
    EXPECT_EQ(box.GetMinPnt(), VxPoint(-1, 2, -1));
    EXPECT_EQ(box.GetMaxPnt(), VxPoint(1, 5, 3));
    EXPECT_EQ(box.Center(), VxPoint(0, 3.5, 1));
    EXPECT_NEAR(box.Diagonal(), std::sqrt(4.0 + 9.0 + 16.0), 1e-15);
    EXPECT_TRUE(box.Contains(VxPoint(1, 5, 3)));
    EXPECT_FALSE(box.Contains(VxPoint(1, 5, 3.001)));

    const VxFrame f(VxPoint(10, 0, 0), VxVector(0, 1, 0), VxVector(-1, 0, 0));
    const VxOrientBox ob(f, 1, 2, 3);
    VxPoint c[8];
    ob.Get8Corners(c);
    // Bit 0 picks +X of the frame (world +Y), bit 1 +Y (world -X), bit 2 +Z (world +Z).
    ExpectNear(c[0], VxPoint(10 + 2, -1, -3), 1e-15);
    ExpectNear(c[1], VxPoint(10 + 2, 1, -3), 1e-15);
    ExpectNear(c[2], VxPoint(10 - 2, -1, -3), 1e-15);
    ExpectNear(c[7], VxPoint(10 - 2, 1, 3), 1e-15);
    ob.Get8Corners(nullptr); // quietly nothing
}

TEST(VxPolylineTest, PlanarShapesWithKnownAnswers) {
    const std::vector<VxPoint> square = {VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(1, 1, 0),
                                         VxPoint(0, 1, 0)};
    EXPECT_FALSE(SelfIntersects(square, false));
    EXPECT_FALSE(SelfIntersects(square, true));
    // The first point repeated at the end, closed or not, is the same loop.
    std::vector<VxPoint> repeated = square;
    repeated.push_back(square[0]);
    EXPECT_FALSE(SelfIntersects(repeated, true));
    EXPECT_FALSE(SelfIntersects(repeated, false));
    EXPECT_DOUBLE_EQ(VxPolyline(square).Length(), 3.0);
    VxPolyline closedSquare(square);
    closedSquare.MakeClosed();
    EXPECT_DOUBLE_EQ(closedSquare.Length(), 4.0);

    // Figure-eight: the two diagonals cross at (0.5, 0.5).
    const std::vector<VxPoint> eight = {VxPoint(0, 0, 0), VxPoint(1, 1, 0), VxPoint(1, 0, 0),
                                        VxPoint(0, 1, 0)};
    EXPECT_TRUE(SelfIntersects(eight, false));
    EXPECT_TRUE(SelfIntersects(eight, true));

    // A "Z" is simple until the closing segment cuts its diagonal.
    const std::vector<VxPoint> zed = {VxPoint(0, 0, 0), VxPoint(2, 0, 0), VxPoint(0, 2, 0),
                                      VxPoint(2, 2, 0)};
    EXPECT_FALSE(SelfIntersects(zed, false));
    EXPECT_TRUE(SelfIntersects(zed, true));

    // A vertex resting on the inside of a non-adjacent edge is a touch.
    const std::vector<VxPoint> tee = {VxPoint(0, 0, 0), VxPoint(4, 0, 0), VxPoint(4, 2, 0),
                                      VxPoint(2, 2, 0), VxPoint(2, 0, 0)};
    EXPECT_TRUE(SelfIntersects(tee, false));

    // Regular pentagon against the pentagram through the same vertices.
    std::vector<VxPoint> pentagon, pentagram;
    for (int i = 0; i < 5; ++i) {
        const double a = 2.0 * 3.14159265358979323846 * i / 5.0;
        const double b = 2.0 * 3.14159265358979323846 * ((2 * i) % 5) / 5.0;
        pentagon.emplace_back(std::cos(a), std::sin(a), 0);
        pentagram.emplace_back(std::cos(b), std::sin(b), 0);
    }
    EXPECT_FALSE(SelfIntersects(pentagon, true));
    EXPECT_TRUE(SelfIntersects(pentagram, true));
}

TEST(VxPolylineTest, CrossingsAreTestedInThreeDimensions) {
    // A zig-zag whose top view is the figure-eight, but its two crossing legs are 1 mm apart
    // in height: it never meets itself.
    const std::vector<VxPoint> lifted = {VxPoint(0, 0, 0), VxPoint(2, 2, 0), VxPoint(2, 0, 1),
                                         VxPoint(0, 2, 1)};
    EXPECT_FALSE(SelfIntersects(lifted, false));
    // The closing leg (0,2,1)->(0,0,0) stays on x = 0 and meets nothing either.
    EXPECT_FALSE(SelfIntersects(lifted, true));

    // Lower the third leg until it touches: within tolerance counts, beyond does not.
    for (const auto& [gap, expected] :
         std::vector<std::pair<double, bool>>{{0.0, true}, {5e-7, true}, {1e-5, false}}) {
        const std::vector<VxPoint> pts = {VxPoint(0, 0, 0), VxPoint(2, 2, 0), VxPoint(2, 0, gap),
                                          VxPoint(0, 2, gap)};
        EXPECT_EQ(SelfIntersects(pts, false), expected) << "gap " << gap;
    }
    VxPolyline coarse(lifted);
    EXPECT_TRUE(coarse.IsSelfIntersect(1.01));
    EXPECT_FALSE(coarse.IsSelfIntersect(0.99));

    // A helix passes over itself turn after turn without touching.
    std::vector<VxPoint> helix;
    for (int i = 0; i <= 200; ++i) {
        const double a = 0.1 * i;
        helix.emplace_back(std::cos(a), std::sin(a), 0.05 * a);
    }
    EXPECT_FALSE(SelfIntersects(helix, false));
}

TEST(VxPolylineTest, DegenerateInput) {
    const VxPoint a(0, 0, 0), b(1, 0, 0), c(1, 1, 0);
    EXPECT_FALSE(SelfIntersects({}, false));
    EXPECT_FALSE(SelfIntersects({}, true));
    EXPECT_FALSE(SelfIntersects({a}, true));
    EXPECT_FALSE(SelfIntersects({a, b}, false));
    EXPECT_FALSE(SelfIntersects({a, b}, true));
    EXPECT_FALSE(SelfIntersects({a, a, a, a}, true));
    EXPECT_FALSE(SelfIntersects({a, b, c}, true)); // triangle: all segments adjacent
    // Repeated points make zero-length segments, not crossings.
    EXPECT_FALSE(SelfIntersects({a, a, b, b, b, c, VxPoint(0, 1, 0), VxPoint(0, 1, 0)}, true));
    // Doubling back over the previous segment overlaps it.
    EXPECT_TRUE(SelfIntersects({a, b, a}, false));
    EXPECT_TRUE(SelfIntersects({a, VxPoint(2, 0, 0), b}, false));
    EXPECT_TRUE(SelfIntersects({a, b, c, VxPoint(1, 0.5, 0)}, false));
    // A sharp but real turn is fine.
    EXPECT_FALSE(SelfIntersects({a, VxPoint(10, 0, 0), VxPoint(0, 0.01, 0)}, false));
}
