// VxTestImage: stb-backed PNG reading and writing and the two-threshold comparison. The stb
// functions are compiled static here so they never interpose on a copy inside the library.
#include "VxTestImage.h"

#include "VxTestPaths.h"

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#include <stb_image.h>
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

VxTestImage::VxTestImage(int w, int h)
    : width(std::max(0, w)), height(std::max(0, h)),
      rgba(static_cast<size_t>(std::max(0, w)) * std::max(0, h) * 4, 0) {}

void VxTestImage::Fill(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a) {
    for (size_t i = 0; i + 3 < rgba.size(); i += 4) {
        rgba[i] = r;
        rgba[i + 1] = g;
        rgba[i + 2] = b;
        rgba[i + 3] = a;
    }
}

int VxTestImage::CountColour(std::uint8_t r, std::uint8_t g, std::uint8_t b, int tolerance) const {
    int count = 0;
    for (size_t i = 0; i + 3 < rgba.size(); i += 4) {
        if (std::abs(rgba[i] - r) <= tolerance && std::abs(rgba[i + 1] - g) <= tolerance &&
            std::abs(rgba[i + 2] - b) <= tolerance) {
            ++count;
        }
    }
    return count;
}

void VxTestImage::FlipRows() {
    const size_t stride = static_cast<size_t>(width) * 4;
    for (int top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        std::swap_ranges(rgba.begin() + static_cast<long>(top * stride),
                         rgba.begin() + static_cast<long>((top + 1) * stride),
                         rgba.begin() + static_cast<long>(bottom * stride));
    }
}

bool VxWritePng(const std::string& path, const VxTestImage& image) {
    if (image.Empty() || image.rgba.size() < static_cast<size_t>(image.width) * image.height * 4) {
        return false;
    }
    return stbi_write_png(path.c_str(), image.width, image.height, 4, image.rgba.data(),
                          image.width * 4) != 0;
}

bool VxLoadPng(const std::string& path, VxTestImage* image) {
    if (!image) {
        return false;
    }
    int w = 0;
    int h = 0;
    int channels = 0;
    stbi_uc* data = stbi_load(path.c_str(), &w, &h, &channels, 4);
    if (!data) {
        return false;
    }
    VxTestImage loaded(w, h);
    std::memcpy(loaded.rgba.data(), data, loaded.rgba.size());
    stbi_image_free(data);
    *image = std::move(loaded);
    return true;
}

VxImageDifference VxDiffImages(const VxTestImage& actual, const VxTestImage& expected) {
    VxImageDifference d;
    d.sameSize = actual.width == expected.width && actual.height == expected.height &&
                 !actual.Empty() && actual.rgba.size() == expected.rgba.size();
    if (!d.sameSize) {
        d.maxDifference = 255;
        d.meanDifference = 255.0;
        return d;
    }
    d.diff = VxTestImage(actual.width, actual.height);
    double sum = 0.0;
    const size_t pixels = static_cast<size_t>(actual.width) * actual.height;
    for (size_t p = 0; p < pixels; ++p) {
        int worst = 0;
        for (int c = 0; c < 4; ++c) {
            worst = std::max(worst, std::abs(actual.rgba[p * 4 + c] - expected.rgba[p * 4 + c]));
        }
        d.maxDifference = std::max(d.maxDifference, worst);
        sum += worst;
        // Scaled by 4 so differences of a few levels are still visible in the picture.
        const auto shown = static_cast<std::uint8_t>(std::min(255, worst * 4));
        d.diff.rgba[p * 4] = shown;
        d.diff.rgba[p * 4 + 1] = shown;
        d.diff.rgba[p * 4 + 2] = shown;
        d.diff.rgba[p * 4 + 3] = 255;
    }
    d.meanDifference = sum / static_cast<double>(pixels);
    return d;
}

::testing::AssertionResult VxCompareImages(const VxTestImage& actual, const VxTestImage& expected,
                                           int maxThreshold, double meanThreshold,
                                           const std::string& name) {
    const VxImageDifference d = VxDiffImages(actual, expected);
    if (d.sameSize && d.maxDifference <= maxThreshold && d.meanDifference <= meanThreshold) {
        return ::testing::AssertionSuccess();
    }
    const std::string base = VxTestOutputDir() + "/" + name;
    VxWritePng(base + ".actual.png", actual);
    VxWritePng(base + ".expected.png", expected);
    if (d.sameSize) {
        VxWritePng(base + ".diff.png", d.diff);
    }
    ::testing::AssertionResult failure = ::testing::AssertionFailure();
    if (!d.sameSize) {
        failure << "image " << name << " is " << actual.width << "x" << actual.height
                << ", expected " << expected.width << "x" << expected.height;
    } else {
        failure << "image " << name << " differs: max " << d.maxDifference << " (allowed "
                << maxThreshold << "), mean " << d.meanDifference << " (allowed " << meanThreshold
                << ")";
    }
    failure << "; written to " << base << ".{actual,expected,diff}.png";
    return failure;
}

::testing::AssertionResult VxCompareImageToFile(const VxTestImage& actual,
                                                const std::string& goldenPath, int maxThreshold,
                                                double meanThreshold) {
    const char* update = std::getenv("VX_UPDATE_GOLDEN");
    if (update && std::strcmp(update, "1") == 0) {
        if (VxWritePng(goldenPath, actual)) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << "could not write golden " << goldenPath;
    }
    VxTestImage expected;
    std::string name = goldenPath.substr(goldenPath.find_last_of('/') + 1);
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".png") == 0) {
        name.resize(name.size() - 4);
    }
    if (!VxLoadPng(goldenPath, &expected)) {
        VxWritePng(VxTestOutputDir() + "/" + name + ".actual.png", actual);
        return ::testing::AssertionFailure()
               << "golden " << goldenPath << " is missing or unreadable; actual written to "
               << VxTestOutputDir() << "/" << name
               << ".actual.png (run with VX_UPDATE_GOLDEN=1 to make it)";
    }
    return VxCompareImages(actual, expected, maxThreshold, meanThreshold, name);
}

void VxExpectMatchesGolden(const VxTestImage& actual, const std::string& name) {
    ASSERT_FALSE(actual.Empty()) << "no GL context";
    const std::string written = VxTestOutputDir() + "/golden_" + name;
    VxWritePng(written, actual);
    const std::string golden = VxTestSourceDir() + "/golden/" + name;
    const char* update = std::getenv("VX_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        ASSERT_TRUE(VxWritePng(golden, actual));
        return;
    }
    VxTestImage expected;
    ASSERT_TRUE(VxLoadPng(golden, &expected)) << golden << " is missing";
    ASSERT_EQ(expected.width, actual.width);
    ASSERT_EQ(expected.height, actual.height);
    int clearlyDifferent = 0;
    double sum = 0.0;
    for (int y = 0; y < actual.height; ++y) {
        for (int x = 0; x < actual.width; ++x) {
            int d = 0;
            for (int k = 0; k < 3; ++k) {
                d = std::max(d, std::abs(actual.Pixel(x, y)[k] - expected.Pixel(x, y)[k]));
            }
            sum += d;
            clearlyDifferent += d > 40 ? 1 : 0;
        }
    }
    const double pixels = static_cast<double>(actual.width) * actual.height;
    EXPECT_LE(clearlyDifferent / pixels, 0.005) << "see " << written;
    EXPECT_LE(sum / pixels, 1.0) << "see " << written;
}
