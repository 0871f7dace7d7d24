// VxTestImage: an 8-bit RGBA image in memory for tests, PNG in and out, and the comparison used
// by golden-image tests: a maximum and a mean per-pixel difference, each with its own threshold.
// On a failed comparison the actual, expected and difference images go to VxTestOutputDir().
// It does no colour management, no resampling, and no formats other than PNG.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

struct VxTestImage {
    int width = 0;
    int height = 0;
    // Rows top-down, 4 bytes a pixel.
    std::vector<std::uint8_t> rgba;

    VxTestImage() = default;
    VxTestImage(int w, int h);
    bool Empty() const { return width <= 0 || height <= 0; }
    std::uint8_t* Pixel(int x, int y) { return &rgba[(static_cast<size_t>(y) * width + x) * 4]; }
    const std::uint8_t* Pixel(int x, int y) const {
        return &rgba[(static_cast<size_t>(y) * width + x) * 4];
    }
    void Fill(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a = 255);
    // Pixels whose R, G, B each lie within tolerance of the colour (alpha is not looked at).
    int CountColour(std::uint8_t r, std::uint8_t g, std::uint8_t b, int tolerance = 0) const;
    // Reverses the row order (GL reads bottom-up).
    void FlipRows();
};

bool VxWritePng(const std::string& path, const VxTestImage& image);
// False (image untouched) when the file is missing or not a readable PNG.
bool VxLoadPng(const std::string& path, VxTestImage* image);

struct VxImageDifference {
    bool sameSize = false;
    // Per pixel the largest absolute channel difference (0..255); its maximum and its mean.
    int maxDifference = 0;
    double meanDifference = 0.0;
    VxTestImage diff; // per-pixel difference as grey, scaled so small errors show
};

VxImageDifference VxDiffImages(const VxTestImage& actual, const VxTestImage& expected);

// Passes when sizes agree, the largest per-pixel difference is at most maxThreshold and the mean
// at most meanThreshold. On failure writes <name>.actual.png, <name>.expected.png and
// <name>.diff.png to VxTestOutputDir() and says where.
::testing::AssertionResult VxCompareImages(const VxTestImage& actual, const VxTestImage& expected,
                                           int maxThreshold, double meanThreshold,
                                           const std::string& name);

// The same against a PNG file. With VX_UPDATE_GOLDEN=1 in the environment the actual image is
// written to goldenPath instead and the check passes: that is how a golden is made or promoted.
::testing::AssertionResult VxCompareImageToFile(const VxTestImage& actual,
                                                const std::string& goldenPath, int maxThreshold,
                                                double meanThreshold);

// The check of the whole-scene goldens: the picture is written to VxTestOutputDir() as
// "golden_<name>" and compared with tests/golden/<name> (VX_UPDATE_GOLDEN=1 writes it there
// instead). At most 0.5 % of pixels may differ by more than 40 in a channel, and the mean
// difference may be at most 1 of 255: an edge that a compiler's rounding moves by a pixel passes,
// a wrong colour, a moved tooth or a missing view does not.
void VxExpectMatchesGolden(const VxTestImage& actual, const std::string& name);
