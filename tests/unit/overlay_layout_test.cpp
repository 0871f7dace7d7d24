// The edges of the overlays' arithmetic that the GL tests do not reach: rounding and cutting of
// label texts, degenerate leader directions, depth colours outside 0 to 1 and of no number, the
// identifier families, and ratios on the cell boundaries or of no use. The usual cases are
// checked on screen in tests/gl/overlay_*_test.cpp.
#include <overlays/VxOverlayLayout.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

void ExpectNear(const VxPoint& actual, const VxPoint& expected, const char* what) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(actual[i], expected[i], 1e-9) << what << " coordinate " << i;
    }
}

void ExpectColour(const VxColor& c, int r, int g, int b, const char* what) {
    EXPECT_EQ(c.GetR(), r) << what;
    EXPECT_EQ(c.GetG(), g) << what;
    EXPECT_EQ(c.GetB(), b) << what;
    EXPECT_EQ(c.GetA(), 100) << what;
}

} // namespace

TEST(VxOverlayLayoutIprTest, TextsKeepTheirBlankAndCutOnlyALoneZero) {
    EXPECT_EQ(VxOverlayLayout::IprText(5, 0.3).Str(), L" 5(0.3)");
    EXPECT_EQ(VxOverlayLayout::IprText(12, 1.25).Str(), L" 12(1.2)"); // printf rounds to even here
    EXPECT_EQ(VxOverlayLayout::IprText(-1, -0.3).Str(), L" -1(-0.3)");

    EXPECT_EQ(VxOverlayLayout::IprShortText(0.3).Str(), L".3");
    EXPECT_EQ(VxOverlayLayout::IprShortText(1.2).Str(), L"1.2");
    EXPECT_EQ(VxOverlayLayout::IprShortText(-0.3).Str(), L"-0.3"); // "-0" is not "0"
    EXPECT_EQ(VxOverlayLayout::IprShortText(10.04).Str(), L"10.0");
    EXPECT_EQ(VxOverlayLayout::IprShortText(0.04).Str(), L".0");
    // No dot at all: nothing to cut, and no read past the end.
    EXPECT_EQ(VxOverlayLayout::IprShortText(std::numeric_limits<double>::infinity()).Str(), L"inf");
}

TEST(VxOverlayLayoutIprTest, TiltedLabelLeansTowardsTheTeethAxes) {
    const VxPoint gap(0.0, 10.0, 0.0);
    const VxPoint ref(0.0, 0.0, 0.0);
    // Both teeth point up: out = +y, mean = +z; v = norm(y + 0.75 z) = (0, 0.8, 0.6).
    const VxPoint label =
        VxOverlayLayout::IprLabelTilted(gap, ref, VxVector(0, 0, 1), VxVector(0, 0, 1));
    ExpectNear(label, VxPoint(0.0, 10.0 + 16.5 * 0.8, 16.5 * 0.6), "tilted");
    EXPECT_NEAR((label - gap).Magnitude(), 16.5, 1e-9);

    // Opposed axes cancel: no tilt, straight out.
    ExpectNear(VxOverlayLayout::IprLabelTilted(gap, ref, VxVector(0, 0, 1), VxVector(0, 0, -1)),
               VxPoint(0.0, 26.5, 0.0), "cancelled axes");
    // Teeth without axes give no tilt; a reference on the gap and no axes give no direction at
    // all, and the label stays on the gap rather than flying to a NaN.
    ExpectNear(VxOverlayLayout::IprLabelTilted(gap, ref, VxVector(0, 0, 0), VxVector(0, 0, 0)),
               VxPoint(0.0, 26.5, 0.0), "no axes");
    ExpectNear(VxOverlayLayout::IprLabelTilted(gap, gap, VxVector(0, 0, 0), VxVector(0, 0, 0)), gap,
               "no direction at all");
}

TEST(VxOverlayLayoutCollisionTest, DepthRunsBlueGreenRedAndIsTruncated) {
    ExpectColour(VxOverlayLayout::CollisionDepthColor(0.0), 0, 0, 255, "0");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(1e-9), 0, 0, 255, "near 0");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(0.25), 0, 127, 127, "0.25");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(0.5), 0, 255, 0, "0.5");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(0.75), 127, 127, 0, "0.75");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(0.999), 254, 0, 0, "0.999");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(1.0), 255, 0, 0, "1");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(7.5), 255, 0, 0, "beyond 1");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(-0.25), 0, 0, 255, "negative");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(std::nan("")), 0, 0, 255, "no number");
    ExpectColour(VxOverlayLayout::CollisionDepthColor(std::numeric_limits<double>::infinity()), 255,
                 0, 0, "infinite");
}

TEST(VxOverlayLayoutAttachTest, DistanceByFamilyToothAndSide) {
    EXPECT_EQ(VxOverlayLayout::AttachText(3, 23).Str(), L" 3(23)");
    // A fixed family wins on every tooth and side, anywhere in the identifier.
    for (double side : {-1.0, 1.0}) {
        EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RM", 21, side), 10.0);
        EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"X-RM-2", 11, side), 10.0);
        EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"ATx", 44, side), 10.0);
    }
    EXPECT_FALSE(VxOverlayLayout::IsFixedDistanceAttach(L"rm")); // case matters
    EXPECT_FALSE(VxOverlayLayout::IsFixedDistanceAttach(L"R-M"));
    EXPECT_FALSE(VxOverlayLayout::IsFixedDistanceAttach(L""));
    // Upper right and lower left quadrants: out is 10; the other two mirror it.
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 11, 0.5), 10.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 11, -0.5), 5.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 38, 0.5), 10.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 21, 0.5), 5.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 21, -0.5), 10.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 41, 0.5), 5.0);
    // Exactly on the centre counts as inward; an unknown tooth takes the second rule.
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 11, 0.0), 5.0);
    EXPECT_EQ(VxOverlayLayout::AttachLabelDistance(L"RECT", 0, 0.5), 5.0);
}

TEST(VxOverlayLayoutGridTest, StepAndCaptionFollowTheZoom) {
    CString caption;
    EXPECT_EQ(VxOverlayLayout::GridStep(4.4, &caption), 44);
    EXPECT_EQ(caption.Str(), L"10mm");
    EXPECT_EQ(VxOverlayLayout::GridStep(12.4, &caption), 12);
    EXPECT_EQ(caption.Str(), L"1mm");
    EXPECT_EQ(VxOverlayLayout::GridStep(9.5, &caption), 10); // rounds up to a whole cell
    EXPECT_EQ(caption.Str(), L"1mm");
    EXPECT_EQ(VxOverlayLayout::GridStep(9.49, &caption), 95);
    EXPECT_EQ(caption.Str(), L"10mm");
    EXPECT_EQ(VxOverlayLayout::GridStep(0.04, &caption), 0);
    EXPECT_EQ(VxOverlayLayout::GridStep(0.05, nullptr), 1);
    for (double bad : {0.0, -3.0, std::nan(""), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(VxOverlayLayout::GridStep(bad, &caption), 0) << bad;
    }
}
