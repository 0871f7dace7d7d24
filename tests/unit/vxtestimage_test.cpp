// The golden-image helpers the GL tests lean on: a PNG round trip is lossless, row flipping is its
// own inverse, and each of the two thresholds fails a comparison on its own, leaving the actual,
// expected and difference images behind.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <cstdio>

namespace {

VxTestImage Gradient(int w, int h) {
    VxTestImage image(w, h);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            std::uint8_t* p = image.Pixel(x, y);
            p[0] = static_cast<std::uint8_t>(x * 17);
            p[1] = static_cast<std::uint8_t>(y * 29);
            p[2] = static_cast<std::uint8_t>((x + y) * 7);
            p[3] = static_cast<std::uint8_t>(255 - x);
        }
    }
    return image;
}

bool FileExists(const std::string& path) {
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f) {
        std::fclose(f);
    }
    return f != nullptr;
}

} // namespace

TEST(VxTestImageTest, PngRoundTripIsExact) {
    const VxTestImage image = Gradient(13, 7);
    const std::string path = VxTestOutputDir() + "/vxtestimage_roundtrip.png";
    ASSERT_TRUE(VxWritePng(path, image));
    VxTestImage loaded;
    ASSERT_TRUE(VxLoadPng(path, &loaded));
    EXPECT_EQ(loaded.width, 13);
    EXPECT_EQ(loaded.height, 7);
    EXPECT_EQ(loaded.rgba, image.rgba);
    EXPECT_FALSE(VxLoadPng(VxTestOutputDir() + "/no_such.png", &loaded));
    EXPECT_EQ(loaded.width, 13) << "a failed load must leave the image alone";
    EXPECT_FALSE(VxWritePng(path, VxTestImage()));
}

TEST(VxTestImageTest, FlipRowsTwiceRestoresAndCountsColours) {
    VxTestImage image = Gradient(4, 5);
    const VxTestImage original = image;
    image.FlipRows();
    EXPECT_EQ(image.Pixel(1, 0)[1], original.Pixel(1, 4)[1]);
    image.FlipRows();
    EXPECT_EQ(image.rgba, original.rgba);

    VxTestImage flat(6, 3);
    flat.Fill(10, 20, 30);
    flat.Pixel(2, 1)[0] = 13;
    EXPECT_EQ(flat.CountColour(10, 20, 30), 17);
    EXPECT_EQ(flat.CountColour(10, 20, 30, 3), 18);
}

TEST(VxTestImageTest, EachThresholdFailsOnItsOwn) {
    const VxTestImage expected = Gradient(10, 10);
    VxTestImage actual = expected;
    EXPECT_TRUE(VxCompareImages(actual, expected, 0, 0.0, "same"));

    // One pixel off by 40 in one channel: max 40, mean 0.4.
    actual.Pixel(3, 3)[2] = static_cast<std::uint8_t>(actual.Pixel(3, 3)[2] + 40);
    const VxImageDifference d = VxDiffImages(actual, expected);
    EXPECT_EQ(d.maxDifference, 40);
    EXPECT_NEAR(d.meanDifference, 0.4, 1e-9);
    EXPECT_TRUE(VxCompareImages(actual, expected, 40, 0.4, "one_pixel"));
    EXPECT_FALSE(VxCompareImages(actual, expected, 39, 10.0, "one_pixel_max"));
    EXPECT_FALSE(VxCompareImages(actual, expected, 255, 0.3, "one_pixel_mean"));
    EXPECT_TRUE(FileExists(VxTestOutputDir() + "/one_pixel_max.diff.png"));
    EXPECT_TRUE(FileExists(VxTestOutputDir() + "/one_pixel_mean.actual.png"));

    VxTestImage diff;
    ASSERT_TRUE(VxLoadPng(VxTestOutputDir() + "/one_pixel_max.diff.png", &diff));
    EXPECT_EQ(diff.Pixel(3, 3)[0], 160); // 40, scaled by 4 to be seen
    EXPECT_EQ(diff.Pixel(4, 3)[0], 0);

    const ::testing::AssertionResult sized =
        VxCompareImages(Gradient(10, 9), expected, 255, 255.0, "wrong_size");
    EXPECT_FALSE(sized);
    EXPECT_NE(std::string(sized.message()).find("10x9"), std::string::npos) << sized.message();
}

TEST(VxTestImageTest, MissingGoldenFailsAndSaysHowToMakeIt) {
    const ::testing::AssertionResult r =
        VxCompareImageToFile(Gradient(4, 4), VxTestOutputDir() + "/absent_golden.png", 0, 0.0);
    EXPECT_FALSE(r);
    EXPECT_NE(std::string(r.message()).find("VX_UPDATE_GOLDEN=1"), std::string::npos);
    EXPECT_TRUE(FileExists(VxTestOutputDir() + "/absent_golden.actual.png"));
}
