// The overlay cache's picture tools without GL: brightness and contrast walk the bytes straight
// on as three a pixel but never past the buffer (row-padded and 8-bit pictures), contrast clamps
// its argument, a copy keeps depth, colour table and bytes, a loaded file turns upside down into
// R, G, B order and loses an odd last row and column, and the label bitmaps carry their drawing
// as alpha over one colour.
#include "VxCacheStuffProbe.h"
#include "VxTestPaths.h"

#include <interfaces/CBitmap.h>
#include <interfaces/CImage.h>
#include <interfaces/CString.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

VxCacheStuff* Cache() {
    return VxCacheStuff::GetInstance();
}

// The picture's whole buffer from its lowest address, padding included.
std::vector<unsigned char> Buffer(CImage& img) {
    const int pitch = img.GetPitch();
    auto* bits = static_cast<unsigned char*>(img.GetBits());
    unsigned char* low = pitch < 0 ? bits + ptrdiff_t(img.GetHeight() - 1) * pitch : bits;
    return std::vector<unsigned char>(low, low + size_t(std::abs(pitch)) * img.GetHeight());
}

void Fill(CImage& img, unsigned char v) {
    const int pitch = img.GetPitch();
    auto* bits = static_cast<unsigned char*>(img.GetBits());
    unsigned char* low = pitch < 0 ? bits + ptrdiff_t(img.GetHeight() - 1) * pitch : bits;
    std::memset(low, v, size_t(std::abs(pitch)) * img.GetHeight());
}

TEST(OverlayImageToolsTest, BrightnessWalksStraightOnAndStopsAtTheBuffer) {
    // 3 x 2 at 24 bits: rows of 9 bytes padded to 12. The walk covers 18 bytes from the low
    // end: the bottom row with its padding and half of the top row.
    CImage img;
    ASSERT_TRUE(img.Create(3, 2, 24));
    Fill(img, 100);
    Cache()->AdjustImageBrightness(20, img);
    std::vector<unsigned char> b = Buffer(img);
    ASSERT_EQ(b.size(), 24u);
    for (size_t i = 0; i < b.size(); ++i) {
        EXPECT_EQ(b[i], i < 18 ? 120 : 100) << i;
    }
    Cache()->AdjustImageBrightness(200, img);
    EXPECT_EQ(Buffer(img)[0], 255);
    EXPECT_EQ(Buffer(img)[17], 255);
    EXPECT_EQ(Buffer(img)[20], 100) << "past the walk";
    Cache()->AdjustImageBrightness(-300, img);
    EXPECT_EQ(Buffer(img)[0], 0);

    // 8 bits a pixel: three bytes a pixel would run far past the end; it stops there (a
    // sanitizer build checks the bytes after it).
    CImage grey;
    ASSERT_TRUE(grey.Create(5, 4, 8));
    Fill(grey, 10);
    Cache()->AdjustImageBrightness(5, grey);
    Cache()->AdjustImageContrast(-50, grey);
    for (unsigned char v : Buffer(grey)) {
        EXPECT_NE(v, 10);
    }
    CImage empty;
    Cache()->AdjustImageBrightness(5, empty); // a null picture: nothing
    Cache()->AdjustImageContrast(5, empty);
    EXPECT_TRUE(empty.IsNull());
}

TEST(OverlayImageToolsTest, ContrastClampsItsArgumentAndMapsBytes) {
    CImage img;
    ASSERT_TRUE(img.Create(4, 1, 24));
    const auto run = [&](int c, unsigned char v) {
        Fill(img, v);
        Cache()->AdjustImageContrast(c, img);
        return int(Buffer(img)[0]);
    };
    // 200: u = 55 is below c, so c becomes 120 and u 127; d = 240.
    EXPECT_EQ(run(200, 100), 0);
    EXPECT_EQ(run(200, 120), 0);
    EXPECT_EQ(run(200, 125), (125 - 120) * 255 / (255 - 240));
    EXPECT_EQ(run(200, 127), (127 - 120) * 255 / (255 - 240));
    EXPECT_EQ(run(200, 128), 255);
    // -200 becomes -120: byte * 15 / 255 + 120.
    EXPECT_EQ(run(-200, 255), 255 * 15 / 255 + 120);
    EXPECT_EQ(run(-200, 0), 120);
    // 0 leaves every byte as it was.
    for (unsigned char v : {0, 1, 77, 254, 255}) {
        EXPECT_EQ(run(0, v), v);
    }
    // 30: bytes up to 30 black, to 225 stretched, above white.
    EXPECT_EQ(run(30, 30), 0);
    EXPECT_EQ(run(30, 100), (100 - 30) * 255 / (255 - 60));
    EXPECT_EQ(run(30, 226), 255);
}

TEST(OverlayImageToolsTest, CopyKeepsDepthTableAndBytes) {
    CImage none, target;
    EXPECT_EQ(Cache()->ImageCopy(none, target), 0);
    for (int bpp : {8, 24, 32}) {
        SCOPED_TRACE(bpp);
        CImage src;
        ASSERT_TRUE(src.Create(7, 5, bpp, bpp == 32 ? CImage::createAlphaChannel : 0));
        const int pitch = src.GetPitch();
        auto* bits = static_cast<unsigned char*>(src.GetBits());
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < std::abs(pitch); ++x) {
                bits[ptrdiff_t(y) * pitch + x] = static_cast<unsigned char>(x * 7 + y * 31);
            }
        }
        if (bpp == 8) {
            RGBQUAD table[256];
            for (int i = 0; i < 256; ++i) {
                table[i] = RGBQUAD{BYTE(i), BYTE(255 - i), BYTE(i / 2), 0};
            }
            src.SetColorTable(0, 256, table);
        }
        CImage copy;
        ASSERT_TRUE(copy.Create(2, 2, 24)); // an earlier picture is replaced
        EXPECT_EQ(Cache()->ImageCopy(src, copy), 1);
        EXPECT_EQ(copy.GetWidth(), 7);
        EXPECT_EQ(copy.GetHeight(), 5);
        EXPECT_EQ(copy.GetBPP(), bpp);
        EXPECT_EQ(Buffer(copy), Buffer(src));
        if (bpp == 8) {
            RGBQUAD a[256], b[256];
            src.GetColorTable(0, 256, a);
            copy.GetColorTable(0, 256, b);
            EXPECT_EQ(std::memcmp(a, b, sizeof a), 0);
        }
    }
}

TEST(OverlayImageToolsTest, LoadedPictureTurnsUpsideDownInRgbOrderAndLosesOddEdges) {
    CImage src;
    ASSERT_TRUE(src.Create(5, 3, 24));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) {
            src.SetPixelRGB(x, y, BYTE(40 * x), BYTE(80 * y), BYTE(7));
        }
    }
    const std::string path = VxTestOutputDir() + "/overlay_cimage_5x3.png";
    ASSERT_EQ(src.Save(CString::FromUtf8(path)), S_OK);
    CImage out;
    ASSERT_TRUE(Cache()->CreateCimage(CString::FromUtf8(path), out));
    EXPECT_EQ(out.GetWidth(), 4);
    EXPECT_EQ(out.GetHeight(), 2);
    EXPECT_EQ(out.GetBPP(), 24);
    for (int j = 0; j < 2; ++j) {
        for (int i = 0; i < 4; ++i) {
            const auto* t = static_cast<const unsigned char*>(out.GetPixelAddress(i, 1 - j));
            EXPECT_EQ(t[0], 40 * i) << i << "," << j; // red first
            EXPECT_EQ(t[1], 80 * j);
            EXPECT_EQ(t[2], 7);
        }
    }
    EXPECT_FALSE(Cache()->CreateCimage(CString::FromUtf8(path + ".missing"), out));
}

TEST(OverlayImageToolsTest, LabelBitmapsCarryTheirDrawingAsAlpha) {
    const BYTE src[8] = {30, 60, 90, 0, 255, 255, 255, 0};
    std::unique_ptr<BYTE[]> out(VxCacheStuffProbe::MakeTransparent(2, 1, src, VxColor(1, 2, 3)));
    const BYTE want[8] = {1, 2, 3, 60, 1, 2, 3, 255};
    EXPECT_EQ(std::memcmp(out.get(), want, 8), 0);

    for (bool small : {true, false}) {
        const int s = small ? 96 : 175;
        std::unique_ptr<CBitmap> disc(VxCacheStuffProbe::CircleBitmap(VxColor(0, 0, 0), small));
        ASSERT_NE(disc, nullptr);
        BITMAP bm{};
        disc->GetBitmap(&bm);
        EXPECT_EQ(bm.bmWidth, s);
        EXPECT_EQ(bm.bmHeight, s);
        std::vector<BYTE> bits(size_t(s) * s * 4);
        disc->GetBitmapBits(DWORD(bits.size()), bits.data());
        const auto alpha = [&](int x, int y) { return bits[(size_t(y) * s + x) * 4 + 3]; };
        EXPECT_EQ(alpha(s / 2, s / 2), 255);
        EXPECT_EQ(alpha(1, 1), 0);
        EXPECT_EQ(alpha(s - 2, s - 2), 0);
        EXPECT_EQ(bits[(size_t(s / 2) * s + s / 2) * 4], 0);
    }
    std::unique_ptr<CBitmap> text(VxCacheStuffProbe::TextBitmap(L"11", true));
    ASSERT_NE(text, nullptr);
    std::vector<BYTE> bits(96 * 96 * 4);
    text->GetBitmapBits(DWORD(bits.size()), bits.data());
    int top = 0, bottom = 0;
    for (int y = 0; y < 96; ++y) {
        for (int x = 0; x < 96; ++x) {
            const BYTE* p = &bits[(size_t(y) * 96 + x) * 4];
            EXPECT_EQ(p[2], 255) << "blue everywhere, the drawing in the alpha";
            (y < 48 ? top : bottom) += p[3] > 128;
        }
    }
    EXPECT_GT(top, 200);
    EXPECT_GT(top, bottom) << "drawn from the top-left corner";
}

} // namespace
