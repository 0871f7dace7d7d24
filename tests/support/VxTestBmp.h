// VxTestBmp: writes the plain 24-bit bottom-up BMP files that GL tests feed to the library
// (backgrounds, corner icons, "teeth.bmp" and "gum.bmp"). The BMP reader's own tests keep an
// independent writer for every depth and header; this one is the common case only.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

struct VxTestRgb {
    std::uint8_t r = 0, g = 0, b = 0;
};

// y counts from the bottom, as rows are stored in the file. False when the file cannot be written.
bool VxWriteBmp24(const std::string& path, int width, int height,
                  const std::function<VxTestRgb(int x, int y)>& pixel);
// One colour everywhere.
bool VxWriteBmp24(const std::string& path, int width, int height, VxTestRgb colour);
