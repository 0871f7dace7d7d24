#include "VxTestBmp.h"

#include <fstream>
#include <vector>

bool VxWriteBmp24(const std::string& path, int width, int height,
                  const std::function<VxTestRgb(int x, int y)>& pixel) {
    const int row = (width * 3 + 3) & ~3;
    const int dataSize = row * height;
    std::vector<unsigned char> file(54 + static_cast<size_t>(dataSize), 0);
    auto put = [&](int at, int value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            file[static_cast<size_t>(at + i)] =
                static_cast<unsigned char>((value >> (8 * i)) & 0xFF);
        }
    };
    file[0] = 'B';
    file[1] = 'M';
    put(2, 54 + dataSize, 4);
    put(10, 54, 4);
    put(14, 40, 4);
    put(18, width, 4);
    put(22, height, 4);
    put(26, 1, 2);
    put(28, 24, 2);
    put(34, dataSize, 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const VxTestRgb c = pixel(x, y);
            unsigned char* p =
                &file[54 + static_cast<size_t>(y) * row + static_cast<size_t>(x) * 3];
            p[0] = c.b;
            p[1] = c.g;
            p[2] = c.r;
        }
    }
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()),
              static_cast<std::streamsize>(file.size()));
    return static_cast<bool>(out);
}

bool VxWriteBmp24(const std::string& path, int width, int height, VxTestRgb colour) {
    return VxWriteBmp24(path, width, height, [colour](int, int) { return colour; });
}
