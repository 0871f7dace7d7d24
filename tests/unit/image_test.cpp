// CImage: DIB addressing checked against the layout a DIB has by definition (bottom-up rows
// padded to 32 bits, B, G, R order), file round trips through PNG, and loading of PNG, JPEG and
// BMP files made here by other writers (stb's, and a BMP written byte by byte). Damaged and
// hostile files must give a null image, never a crash.
#include <interfaces/CBitmap.h>
#include <interfaces/CImage.h>
#include <interfaces/CString.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <stb/stb_image_write.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

std::string OutPath(const std::string& name) {
    return VxTestOutputDir() + "/image_test_" + name;
}

CString Wide(const std::string& s) {
    return CString::FromUtf8(s);
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

std::vector<unsigned char> ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<unsigned char>((std::istreambuf_iterator<char>(in)),
                                      std::istreambuf_iterator<char>());
}

void Put16(std::vector<unsigned char>& v, unsigned x) {
    v.push_back(x & 0xFF);
    v.push_back((x >> 8) & 0xFF);
}
void Put32(std::vector<unsigned char>& v, uint32_t x) {
    Put16(v, x & 0xFFFF);
    Put16(v, x >> 16);
}

// A 24-bit BMP written from the file format itself: rows padded to 4 bytes, bottom-up unless
// topDown, B, G, R bytes. rgb holds top-down R, G, B triples.
std::vector<unsigned char> MakeBmp24(int w, int h, const std::vector<unsigned char>& rgb,
                                     bool topDown) {
    const int stride = (w * 3 + 3) & ~3;
    std::vector<unsigned char> f;
    f.push_back('B');
    f.push_back('M');
    Put32(f, uint32_t(54 + stride * h));
    Put32(f, 0);
    Put32(f, 54);
    Put32(f, 40);
    Put32(f, uint32_t(w));
    Put32(f, uint32_t(topDown ? -h : h));
    Put16(f, 1);
    Put16(f, 24);
    Put32(f, 0);
    Put32(f, uint32_t(stride * h));
    Put32(f, 2835);
    Put32(f, 2835);
    Put32(f, 0);
    Put32(f, 0);
    for (int r = 0; r < h; ++r) {
        const int y = topDown ? r : h - 1 - r;
        for (int x = 0; x < w; ++x) {
            const unsigned char* p = &rgb[size_t((y * w + x) * 3)];
            f.push_back(p[2]);
            f.push_back(p[1]);
            f.push_back(p[0]);
        }
        for (int pad = w * 3; pad < stride; ++pad) {
            f.push_back(0);
        }
    }
    return f;
}

std::vector<unsigned char> RandomBytes(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<unsigned char> v(n);
    for (auto& b : v) {
        b = static_cast<unsigned char>(rng() & 0xFF);
    }
    return v;
}

} // namespace

TEST(ImageDibTest, BottomUpAddressingMatchesDibLayout) {
    for (int bpp : {8, 24, 32}) {
        for (int w : {1, 5, 8, 13}) {
            SCOPED_TRACE(testing::Message() << "bpp " << bpp << " width " << w);
            const int h = 4;
            CImage img;
            ASSERT_TRUE(img.Create(w, h, bpp));
            EXPECT_FALSE(img.IsNull());
            EXPECT_EQ(img.GetWidth(), w);
            EXPECT_EQ(img.GetHeight(), h);
            EXPECT_EQ(img.GetBPP(), bpp);
            const int stride = ((w * bpp + 31) / 32) * 4;
            EXPECT_EQ(img.GetPitch(), -stride);
            // The lowest address of a bottom-up DIB holds the bottom row.
            auto* top = static_cast<unsigned char*>(img.GetBits());
            unsigned char* memoryStart = top + (h - 1) * img.GetPitch();
            const int bytesPerPixel = bpp / 8;
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    const unsigned char* expected =
                        memoryStart + (h - 1 - y) * stride + x * bytesPerPixel;
                    EXPECT_EQ(img.GetPixelAddress(x, y), expected);
                    EXPECT_EQ(top + y * img.GetPitch() + x * bytesPerPixel, expected);
                }
            }
            // SetPixel lands where the DIB arithmetic says, in B, G, R order.
            const COLORREF c = bpp == 8 ? RGB(77, 77, 77) : RGB(10, 20, 30);
            img.SetPixel(w - 1, 1, c);
            const unsigned char* p = top + 1 * img.GetPitch() + (w - 1) * bytesPerPixel;
            if (bpp == 8) {
                EXPECT_EQ(p[0], 77); // grey table: index equals the level
            } else {
                EXPECT_EQ(p[0], 30);
                EXPECT_EQ(p[1], 20);
                EXPECT_EQ(p[2], 10);
            }
            EXPECT_EQ(img.GetPixel(w - 1, 1), c);
            EXPECT_EQ(img.GetPixel(w, 0), CLR_INVALID);
        }
    }
}

TEST(ImageDibTest, TopDownAndRejectedCreates) {
    CImage img;
    ASSERT_TRUE(img.Create(3, -2, 24));
    EXPECT_EQ(img.GetHeight(), 2);
    EXPECT_EQ(img.GetPitch(), 12);
    img.SetPixel(0, 1, RGB(1, 2, 3));
    EXPECT_EQ(static_cast<unsigned char*>(img.GetBits())[12], 3);
    EXPECT_FALSE(img.Create(3, 3, 24)) << "an image must be destroyed before it is made again";
    img.Destroy();
    EXPECT_TRUE(img.IsNull());
    EXPECT_FALSE(img.Create(0, 5, 24));
    EXPECT_FALSE(img.Create(5, 0, 24));
    EXPECT_FALSE(img.Create(5, 5, 16));
    EXPECT_FALSE(img.Create(5, 5, 24, CImage::createAlphaChannel));
    EXPECT_FALSE(img.Create(100000, 100000, 32));
    EXPECT_TRUE(img.IsNull());
    EXPECT_EQ(img.GetBits(), nullptr);
    EXPECT_EQ(img.GetPixel(0, 0), CLR_INVALID);
}

TEST(ImageDibTest, GetDIBitsAndBitmapBitsOfAnAttachedImage) {
    const int w = 5;
    const int h = 3;
    CImage img;
    ASSERT_TRUE(img.Create(w, h, 24));
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            img.SetPixel(x, y, RGB(x * 40, y * 80, 7));
        }
    }
    CBitmap bmp;
    ASSERT_TRUE(bmp.Attach(img));
    BITMAP bm{};
    ASSERT_EQ(bmp.GetBitmap(&bm), int(sizeof(BITMAP)));
    EXPECT_EQ(bm.bmWidth, w);
    EXPECT_EQ(bm.bmHeight, h);
    EXPECT_EQ(bm.bmBitsPixel, 24);
    EXPECT_EQ(bm.bmPlanes, 1);
    EXPECT_EQ(bm.bmWidthBytes, 16);

    // GetBitmapBits: top-down rows padded to 16 bits (5 * 3 = 15 -> 16).
    std::vector<unsigned char> ddb(16 * h, 0xAA);
    EXPECT_EQ(bmp.GetBitmapBits(DWORD(ddb.size()), ddb.data()), ddb.size());
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            EXPECT_EQ(ddb[size_t(y * 16 + x * 3 + 2)], x * 40);
            EXPECT_EQ(ddb[size_t(y * 16 + x * 3 + 1)], y * 80);
        }
    }
    // GetDIBits, bottom-up 32-bit request: scan line 0 is the bottom row.
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = w;
    info.bmiHeader.biHeight = h;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    std::vector<unsigned char> dib(size_t(w * 4 * h));
    EXPECT_EQ(GetDIBits(nullptr, bmp, 0, UINT(h), dib.data(), &info, DIB_RGB_COLORS), h);
    EXPECT_EQ(info.bmiHeader.biSizeImage, DWORD(w * 4 * h));
    for (int scan = 0; scan < h; ++scan) {
        const int y = h - 1 - scan;
        EXPECT_EQ(dib[size_t(scan * w * 4 + 4 * 2 + 2)], 2 * 40);
        EXPECT_EQ(dib[size_t(scan * w * 4 + 4 * 2 + 1)], y * 80);
    }
    EXPECT_EQ(bmp.Detach(), static_cast<HBITMAP>(img));
    EXPECT_FALSE(img.IsNull());
}

TEST(ImageDibTest, ContextDrawsIntoTheImage) {
    CImage img;
    ASSERT_TRUE(img.Create(10, 8, 32));
    HDC dc = img.GetDC();
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(img.GetDC(), dc) << "nested GetDC shares the context";
    CDC::FromHandle(dc)->FillSolidRect(2, 3, 4, 2, RGB(200, 100, 50));
    img.ReleaseDC();
    img.ReleaseDC();
    EXPECT_EQ(img.GetPixel(2, 3), RGB(200, 100, 50));
    EXPECT_EQ(img.GetPixel(5, 4), RGB(200, 100, 50));
    EXPECT_EQ(img.GetPixel(6, 4), RGB(0, 0, 0));
    EXPECT_EQ(img.GetPixel(2, 5), RGB(0, 0, 0));
    CImage empty;
    EXPECT_EQ(empty.GetDC(), nullptr);
}

TEST(ImageFileTest, SaveThenLoadKeepsEveryPixel) {
    const int w = 7;
    const int h = 5;
    const std::vector<unsigned char> noise = RandomBytes(size_t(w * h * 4), 11);
    struct Case {
        int bpp;
        DWORD flags;
    } cases[] = {{24, 0}, {32, CImage::createAlphaChannel}, {8, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bpp);
        CImage img;
        ASSERT_TRUE(img.Create(w, h, c.bpp, c.flags));
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const unsigned char* n = &noise[size_t((y * w + x) * 4)];
                auto* p = static_cast<unsigned char*>(img.GetPixelAddress(x, y));
                for (int k = 0; k < c.bpp / 8; ++k) {
                    p[k] = n[k];
                }
            }
        }
        const std::string path = OutPath("roundtrip" + std::to_string(c.bpp) + ".png");
        ASSERT_EQ(img.Save(Wide(path)), S_OK);
        CImage back;
        ASSERT_EQ(back.Load(Wide(path)), S_OK);
        EXPECT_EQ(back.GetWidth(), w);
        EXPECT_EQ(back.GetHeight(), h);
        EXPECT_EQ(back.GetBPP(), c.bpp);
        EXPECT_EQ(back.GetPitch(), img.GetPitch());
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const auto* a = static_cast<const unsigned char*>(img.GetPixelAddress(x, y));
                const auto* b = static_cast<const unsigned char*>(back.GetPixelAddress(x, y));
                for (int k = 0; k < c.bpp / 8; ++k) {
                    ASSERT_EQ(a[k], b[k]) << x << "," << y << " byte " << k;
                }
            }
        }
    }
}

TEST(ImageFileTest, LoadsPngJpegAndBmpFromOtherWriters) {
    const int w = 6;
    const int h = 4;
    std::vector<unsigned char> rgb(size_t(w * h * 3));
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            unsigned char* p = &rgb[size_t((y * w + x) * 3)];
            p[0] = static_cast<unsigned char>(x * 40);
            p[1] = static_cast<unsigned char>(y * 60);
            p[2] = static_cast<unsigned char>(200 - x * 10 - y * 10);
        }
    }
    auto expectPixels = [&](const CImage& img, int tolerance) {
        ASSERT_EQ(img.GetWidth(), w);
        ASSERT_EQ(img.GetHeight(), h);
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const unsigned char* p = &rgb[size_t((y * w + x) * 3)];
                const COLORREF c = img.GetPixel(x, y);
                EXPECT_NEAR(GetRValue(c), p[0], tolerance) << x << "," << y;
                EXPECT_NEAR(GetGValue(c), p[1], tolerance) << x << "," << y;
                EXPECT_NEAR(GetBValue(c), p[2], tolerance) << x << "," << y;
            }
        }
    };
    const std::string png = OutPath("stb.png");
    ASSERT_TRUE(stbi_write_png(png.c_str(), w, h, 3, rgb.data(), w * 3));
    CImage a;
    ASSERT_EQ(a.Load(Wide(png)), S_OK);
    EXPECT_EQ(a.GetBPP(), 24);
    expectPixels(a, 0);

    // JPEG is lossy; a smooth picture at top quality stays within a few levels.
    const std::string jpg = OutPath("stb.jpg");
    ASSERT_TRUE(stbi_write_jpg(jpg.c_str(), w, h, 3, rgb.data(), 100));
    CImage b;
    ASSERT_EQ(b.Load(Wide(jpg)), S_OK);
    expectPixels(b, 24);

    for (bool topDown : {false, true}) {
        const std::string bmp = OutPath(topDown ? "topdown.bmp" : "bottomup.bmp");
        WriteFile(bmp, MakeBmp24(w, h, rgb, topDown));
        CImage c;
        ASSERT_EQ(c.Load(Wide(bmp)), S_OK) << bmp;
        EXPECT_EQ(c.GetBPP(), 24);
        EXPECT_LT(c.GetPitch(), 0) << "loaded pictures are bottom-up DIBs whatever the file";
        expectPixels(c, 0);
    }

    // A grey PNG gives an 8-bit picture whose colours are the grey levels.
    std::vector<unsigned char> grey = {0, 50, 100, 150, 200, 250};
    const std::string greyPng = OutPath("grey.png");
    ASSERT_TRUE(stbi_write_png(greyPng.c_str(), 3, 2, 1, grey.data(), 3));
    CImage g;
    ASSERT_EQ(g.Load(Wide(greyPng)), S_OK);
    EXPECT_EQ(g.GetBPP(), 8);
    EXPECT_TRUE(g.IsIndexed());
    EXPECT_EQ(g.GetPixel(2, 1), RGB(250, 250, 250));
    EXPECT_EQ(*static_cast<unsigned char*>(g.GetPixelAddress(1, 1)), 200);
}

TEST(ImageFileTest, DamagedFilesGiveANullImage) {
    CImage img;
    EXPECT_EQ(img.Load(Wide(OutPath("does-not-exist.png"))), E_FAIL);
    EXPECT_TRUE(img.IsNull());
    EXPECT_LT(img.Load(nullptr), 0);
    EXPECT_EQ(img.LoadFromMemory(nullptr, 10), E_FAIL);

    std::vector<unsigned char> rgb(size_t(16 * 16 * 3), 128);
    const std::string png = OutPath("whole.png");
    ASSERT_TRUE(stbi_write_png(png.c_str(), 16, 16, 3, rgb.data(), 16 * 3));
    const std::vector<unsigned char> whole = ReadFile(png);
    const std::vector<unsigned char> bmp = MakeBmp24(16, 16, rgb, false);
    const std::string jpgPath = OutPath("whole.jpg");
    ASSERT_TRUE(stbi_write_jpg(jpgPath.c_str(), 16, 16, 3, rgb.data(), 80));
    const std::vector<unsigned char> jpg = ReadFile(jpgPath);

    // Every truncation of each file: a null image or a picture of the right size, nothing else.
    for (const auto* file : {&whole, &bmp, &jpg}) {
        for (size_t n = 0; n < file->size(); n += 3) {
            CImage t;
            const HRESULT hr = t.LoadFromMemory(file->data(), n);
            if (hr == S_OK) {
                EXPECT_EQ(t.GetWidth(), 16);
                EXPECT_EQ(t.GetHeight(), 16);
            } else {
                EXPECT_LT(hr, 0);
                EXPECT_TRUE(t.IsNull());
            }
        }
    }
    // Header-only truncations are failures outright.
    EXPECT_EQ(img.LoadFromMemory(whole.data(), 40), E_FAIL);
    EXPECT_EQ(img.LoadFromMemory(bmp.data(), 54), E_FAIL);

    // A BMP header that claims a picture far too big to be real.
    std::vector<unsigned char> huge = MakeBmp24(2, 2, std::vector<unsigned char>(12, 0), false);
    huge[18] = 0x00;
    huge[19] = 0x00;
    huge[20] = 0x01; // width 65536
    huge[22] = 0x00;
    huge[23] = 0x00;
    huge[24] = 0x01; // height 65536
    EXPECT_EQ(img.LoadFromMemory(huge.data(), huge.size()), E_FAIL);
    EXPECT_TRUE(img.IsNull());

    // Formats outside PNG, JPEG and BMP are refused before any decoder sees them.
    const unsigned char gif[] = "GIF89a\x01\x00\x01\x00\x00\x00\x00;";
    EXPECT_EQ(img.LoadFromMemory(gif, sizeof gif), E_FAIL);

    // Random bytes behind each signature.
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::vector<unsigned char> junk = RandomBytes(64 + seed * 7, seed);
        const auto& sig = seed % 3 == 0 ? whole : seed % 3 == 1 ? bmp : jpg;
        std::copy(sig.begin(), sig.begin() + 16, junk.begin());
        CImage t;
        const HRESULT hr = t.LoadFromMemory(junk.data(), junk.size());
        EXPECT_EQ(hr == S_OK, !t.IsNull());
    }
    // A failed load leaves a previously loaded picture destroyed, not half-replaced.
    ASSERT_EQ(img.LoadFromMemory(whole.data(), whole.size()), S_OK);
    EXPECT_EQ(img.LoadFromMemory(whole.data(), 20), E_FAIL);
    EXPECT_TRUE(img.IsNull());
}

// Declared sizes are checked before any decoder runs: a header that promises more than the data
// can hold, or a picture beyond the size caps, is refused quietly like a corrupt file.
TEST(ImageFileTest, DeclaredSizesBeyondTheDataAreRefused) {
    std::vector<unsigned char> grey(size_t(16 * 16), 90);
    const std::string pngPath = OutPath("bounds.png");
    ASSERT_TRUE(stbi_write_png(pngPath.c_str(), 16, 16, 1, grey.data(), 16));
    const std::vector<unsigned char> png = ReadFile(pngPath);
    // The JPEG is noise, so that its scan is long enough to be cut in the middle.
    const std::vector<unsigned char> noise = RandomBytes(size_t(32 * 32), 7);
    const std::string jpgPath = OutPath("bounds.jpg");
    ASSERT_TRUE(stbi_write_jpg(jpgPath.c_str(), 32, 32, 1, noise.data(), 90));
    const std::vector<unsigned char> jpg = ReadFile(jpgPath);
    CImage img;
    ASSERT_EQ(img.LoadFromMemory(png.data(), png.size()), S_OK);
    ASSERT_EQ(img.LoadFromMemory(jpg.data(), jpg.size()), S_OK);

    auto refused = [](const std::vector<unsigned char>& bytes) {
        CImage t;
        return t.LoadFromMemory(bytes.data(), bytes.size()) == E_FAIL && t.IsNull();
    };
    auto put32be = [](std::vector<unsigned char>& v, size_t at, uint32_t x) {
        for (int i = 0; i < 4; ++i) {
            v[at + size_t(i)] = static_cast<unsigned char>(x >> (24 - 8 * i));
        }
    };
    // PNG: IHDR's width and height sit at 16 and 20, the first chunk after it at 33.
    std::vector<unsigned char> wide = png;
    put32be(wide, 16, 16385);
    EXPECT_TRUE(refused(wide));
    // 16 x 4000 grey is 196,000 bytes of rows; a few dozen compressed bytes cannot hold them.
    std::vector<unsigned char> tall = png;
    put32be(tall, 20, 4000);
    EXPECT_TRUE(refused(tall));
    std::vector<unsigned char> longChunk = png;
    put32be(longChunk, 33, 0x50000000);
    EXPECT_TRUE(refused(longChunk));
    // A 156-byte file whose second data chunk declares 1.3 GB once made the decoder ask for 2 GiB.
    const std::vector<unsigned char> repro = ReadFile(
        VxTestSourceDir() + "/fuzz/corpus/fuzz_image_load/oom-png-idat-declares-1.3gb.png");
    ASSERT_EQ(repro.size(), 156u);
    EXPECT_TRUE(refused(repro));

    // JPEG: the frame header (FF C0, length, precision, height, width).
    size_t sof = 0;
    for (size_t i = 2; i + 9 < jpg.size(); ++i) {
        if (jpg[i] == 0xFF && jpg[i + 1] == 0xC0) {
            sof = i;
            break;
        }
    }
    ASSERT_GT(sof, 0u);
    auto withSize = [&](unsigned w, unsigned h) {
        std::vector<unsigned char> v = jpg;
        v[sof + 5] = static_cast<unsigned char>(h >> 8);
        v[sof + 6] = static_cast<unsigned char>(h);
        v[sof + 7] = static_cast<unsigned char>(w >> 8);
        v[sof + 8] = static_cast<unsigned char>(w);
        return v;
    };
    EXPECT_TRUE(refused(withSize(20000, 16)));
    EXPECT_TRUE(refused(withSize(16, 0)));
    // 4000 x 4000 is inside the caps, but far more than a few thousand bytes can describe: it
    // would decode to 16 million grey pixels.
    ASSERT_LT(jpg.size(), 4000u * 4000u / 8192);
    EXPECT_TRUE(refused(withSize(4000, 4000)));
    // A segment running past the end of the file.
    std::vector<unsigned char> longSegment = jpg;
    longSegment[sof + 2] = 0xFF;
    EXPECT_TRUE(refused(longSegment));
    // A Huffman table of 300 codes, where the decoder has room for 256: put first, the rest of
    // the file intact.
    std::vector<unsigned char> bigTable = {0xFF, 0xD8, 0xFF, 0xC4, 0x01, 0x3F, 0x00};
    for (int i = 0; i < 16; ++i) {
        bigTable.push_back(i == 7 ? 255 : i == 8 ? 45 : 0);
    }
    bigTable.resize(bigTable.size() + 300, 0x01);
    bigTable.insert(bigTable.end(), jpg.begin() + 2, jpg.end());
    EXPECT_TRUE(refused(bigTable));
}
