// Fuzz target: bytes go through CImage::LoadFromMemory, the path every picture file takes, and a
// loaded picture is then read back through the same accessors the overlays use (pixel
// addressing, colour table, GetDIBits through an attached bitmap). Any crash, overflow or leak is
// a finding; a null image is the expected answer to most inputs.
#include <interfaces/CBitmap.h>
#include <interfaces/CImage.h>

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CImage img;
    if (img.LoadFromMemory(data, size) != S_OK) {
        return 0;
    }
    const int w = img.GetWidth();
    const int h = img.GetHeight();
    const int bytesPerPixel = img.GetBPP() / 8;
    // Touch the first and last byte of the first and last rows through the DIB arithmetic.
    volatile unsigned sum = 0;
    const auto* top = static_cast<const unsigned char*>(img.GetBits());
    for (int y : {0, h - 1}) {
        const unsigned char* row = top + std::ptrdiff_t(y) * img.GetPitch();
        sum = sum + row[0] + row[std::ptrdiff_t(w) * bytesPerPixel - 1];
    }
    sum = sum + img.GetPixel(w - 1, h - 1) + img.GetPixel(w / 2, h / 2);
    if (img.IsIndexed()) {
        RGBQUAD table[256];
        img.GetColorTable(0, UINT(img.GetMaxColorTableEntries()), table);
    }
    // A small picture is also read back whole through GetDIBits, as a texture upload would.
    if (std::int64_t(w) * h <= 4096) {
        CBitmap bmp;
        bmp.Attach(img);
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = w;
        info.bmiHeader.biHeight = h;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        std::vector<unsigned char> bits(size_t(w) * size_t(h) * 4);
        GetDIBits(nullptr, bmp, 0, UINT(h), bits.data(), &info, DIB_RGB_COLORS);
        bmp.Detach();
    }
    return 0;
}
