// Fuzz target of the BMP reader: any bytes must give null or a record within the caps whose every
// pixel can be read. A record that comes back is written out again as a plain 24-bit BMP and read a
// second time, which must give the same pixels. Messages are silenced at the sink, so the code that
// builds them still runs.
#include <frame/VxDIBLoader.h>

#include <platform/VxMessageSink.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

void Put32(std::vector<uint8_t>& b, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) {
        b[at + size_t(i)] = uint8_t(v >> (8 * i));
    }
}

std::vector<uint8_t> Write24(const VxDIBImage& img) {
    const size_t stride = (size_t(img.width) * 3 + 3) & ~size_t(3);
    std::vector<uint8_t> b(54 + stride * size_t(img.height), 0);
    b[0] = 'B';
    b[1] = 'M';
    Put32(b, 2, uint32_t(b.size()));
    Put32(b, 10, 54);
    Put32(b, 14, 40);
    Put32(b, 18, uint32_t(img.width));
    Put32(b, 22, uint32_t(img.height));
    b[26] = 1;
    b[28] = 24;
    for (int y = 0; y < img.height; ++y) {
        const uint8_t* src = img.pixels + size_t(y) * img.width * 3;
        uint8_t* dst = b.data() + 54 + size_t(y) * stride;
        for (int x = 0; x < img.width; ++x) {
            dst[3 * x] = src[3 * x + 2];
            dst[3 * x + 1] = src[3 * x + 1];
            dst[3 * x + 2] = src[3 * x];
        }
    }
    return b;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool silenced = [] {
        VxMessageSink::SetHandler([](const std::string&, const std::string&) {});
        return true;
    }();
    (void)silenced;

    VxDIBImage* img = LoadDIBFromMemory(data, size);
    if (!img) {
        return 0;
    }
    if (img->width <= 0 || img->height <= 0 || img->width > kDIBMaxDimension ||
        img->height > kDIBMaxDimension || !img->pixels) {
        std::abort();
    }
    const size_t bytes = size_t(img->width) * size_t(img->height) * 3;
    unsigned sum = 0;
    for (size_t i = 0; i < bytes; ++i) {
        sum += img->pixels[i]; // ASan checks the whole buffer is there and written
    }
    (void)sum;
    if (bytes <= (1u << 20)) {
        const std::vector<uint8_t> again = Write24(*img);
        VxDIBImage* back = LoadDIBFromMemory(again.data(), again.size());
        if (!back || back->width != img->width || back->height != img->height ||
            std::memcmp(back->pixels, img->pixels, bytes) != 0) {
            std::abort();
        }
        FreeDIB(back);
    }
    FreeDIB(img);
    return 0;
}
