// Text and disc bitmaps the way the overlay code makes them: a memory context, a font from
// CreateFontA, a 1-bit or 32-bit bitmap, TextOutW or Ellipse, then the bits read back through
// GetDIBits or GetBitmapBits. Shapes are checked by geometry (where ink must and must not be),
// the two read-back layouts are decoded here from their definitions and must agree, and the
// ellipse is compared with a brute-force disc.
#include <interfaces/CBitmap.h>
#include <interfaces/CDC.h>
#include <interfaces/CFont.h>
#include <interfaces/CString.h>
#include <platform/VxFontResolver.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

struct Mask {
    int w = 0;
    int h = 0;
    std::vector<char> ink;
    bool At(int x, int y) const {
        return x >= 0 && y >= 0 && x < w && y < h && ink[size_t(y * w + x)];
    }
    int Count() const { return int(std::count(ink.begin(), ink.end(), 1)); }
    // Any ink within r pixels (square) of (x, y).
    bool Near(int x, int y, int r) const { return AnyIn(x - r, y - r, x + r + 1, y + r + 1); }
    bool AnyIn(int x0, int y0, int x1, int y1) const {
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                if (At(x, y)) {
                    return true;
                }
            }
        }
        return false;
    }
    // The inked box, inclusive; x1 < x0 without ink.
    void Bounds(int& x0, int& y0, int& x1, int& y1) const {
        x0 = w, y0 = h, x1 = -1, y1 = -1;
        for (int i = 0; i < w * h; ++i) {
            if (ink[size_t(i)]) {
                x0 = std::min(x0, i % w);
                y0 = std::min(y0, i / w);
                x1 = std::max(x1, i % w);
                y1 = std::max(y1, i / w);
            }
        }
    }
};

BITMAPINFO DibRequest(int w, int h, int bpp) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = w;
    info.bmiHeader.biHeight = h;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = WORD(bpp);
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// 1-bit rows, most significant bit first, rows `stride` bytes apart.
Mask DecodeMono(const std::vector<unsigned char>& bits, int stride, int w, int h, bool bottomUp) {
    Mask m{w, h, std::vector<char>(size_t(w * h), 0)};
    for (int i = 0; i < w * h; ++i) {
        const int x = i % w, row = bottomUp ? h - 1 - i / w : i / w;
        m.ink[size_t(i)] = (bits[size_t(row * stride + x / 8)] >> (7 - x % 8)) & 1;
    }
    return m;
}

// 1-bit DIB, bottom-up, rows padded to 32 bits.
Mask FromMonoDib(CDC& dc, CBitmap& bmp, int w, int h) {
    const int stride = ((w + 31) & ~31) / 8;
    std::vector<unsigned char> bits(size_t(stride * h), 0xCD);
    BITMAPINFO info = DibRequest(w, h, 1);
    EXPECT_EQ(GetDIBits(dc.GetSafeHdc(), bmp, 0, UINT(h), bits.data(), &info, DIB_RGB_COLORS), h);
    return DecodeMono(bits, stride, w, h, true);
}

// 1-bit device bitmap bits: top-down, rows padded to 16 bits.
Mask FromMonoBitmapBits(CBitmap& bmp, int w, int h) {
    const int stride = ((w + 15) & ~15) / 8;
    std::vector<unsigned char> bits(size_t(stride * h), 0xCD);
    EXPECT_EQ(bmp.GetBitmapBits(DWORD(bits.size()), bits.data()), bits.size());
    return DecodeMono(bits, stride, w, h, false);
}

// 32-bit device bitmap bits, top-down B, G, R, X; ink where the mean of the colour bytes is at
// least half (the mean is what the overlays turn into alpha).
Mask FromRgbBitmapBits(CBitmap& bmp, int w, int h) {
    std::vector<unsigned char> bits(size_t(w * h * 4));
    EXPECT_EQ(bmp.GetBitmapBits(DWORD(bits.size()), bits.data()), bits.size());
    Mask m{w, h, std::vector<char>(size_t(w * h), 0)};
    for (size_t i = 0; i < size_t(w * h); ++i) {
        m.ink[i] = (bits[i * 4] + bits[i * 4 + 1] + bits[i * 4 + 2]) / 3 >= 128;
    }
    return m;
}

bool FontFamilyInstalled(const std::string& family) {
    VxFontResolver::Match m;
    return VxFontResolver::Resolve(family, 400, false, 0, m) && m.family == family;
}

// Makes a w x h bitmap, selects it for white text on black and gives the one it replaced (null
// when the bitmap could not be made).
CBitmap* SelectWhiteOnBlack(CDC& dc, CBitmap& bmp, int w, int h, int bpp = 1) {
    if (!bmp.CreateBitmap(w, h, 1, bpp, nullptr)) {
        return nullptr;
    }
    CBitmap* old = dc.SelectObject(&bmp);
    dc.SetBkColor(0);
    dc.SetTextColor(RGB(255, 255, 255));
    return old;
}

// Checks the ink is an X inside the box it spans.
void ExpectX(const Mask& m, const SIZE& extent) {
    int x0, y0, x1, y1;
    m.Bounds(x0, y0, x1, y1);
    ASSERT_GE(x1, x0) << "no ink at all";
    EXPECT_GE(x0, 0);
    EXPECT_GE(y0, 0);
    EXPECT_LT(x1, extent.cx);
    EXPECT_LT(y1, extent.cy);
    // A capital of a 72-pixel em is about 52 pixels tall.
    EXPECT_GT(y1 - y0, 40);
    EXPECT_LT(y1 - y0, 72);
    const double w = x1 - x0;
    const double h = y1 - y0;
    auto px = [&](double u) { return int(std::lround(x0 + u * w)); };
    auto py = [&](double v) { return int(std::lround(y0 + v * h)); };
    EXPECT_TRUE(m.Near(px(0.5), py(0.5), 2)) << "centre";
    for (double t = 0.08; t < 0.95; t += 0.06) {
        EXPECT_TRUE(m.Near(px(t), py(t), 3)) << "falling diagonal at " << t;
        EXPECT_TRUE(m.Near(px(t), py(1.0 - t), 3)) << "rising diagonal at " << t;
    }
    // The four notches between the arms are empty.
    EXPECT_FALSE(m.AnyIn(px(0.4), py(0.0), px(0.6) + 1, py(0.15))) << "top middle";
    EXPECT_FALSE(m.AnyIn(px(0.4), py(0.85), px(0.6) + 1, py(1.0) + 1)) << "bottom middle";
    EXPECT_FALSE(m.AnyIn(px(0.0), py(0.4), px(0.15), py(0.6) + 1)) << "left middle";
    EXPECT_FALSE(m.AnyIn(px(0.85), py(0.4), px(1.0) + 1, py(0.6) + 1)) << "right middle";
}

class TextBitmapTest : public testing::Test {
protected:
    void SetUp() override {
        if (!FontFamilyInstalled("Liberation Sans")) {
            GTEST_SKIP() << "fonts-liberation is not installed";
        }
        ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    }
    CDC dc;
};

} // namespace

TEST(FontResolverTest, MetricCompatibleFacesAndFallback) {
    if (!FontFamilyInstalled("Liberation Sans") || !FontFamilyInstalled("Liberation Serif")) {
        GTEST_SKIP() << "fonts-liberation is not installed";
    }
    VxFontResolver::Match m;
    ASSERT_TRUE(VxFontResolver::Resolve("Arial", 400, false, 0, m));
    EXPECT_EQ(m.family, "Liberation Sans");
    EXPECT_FALSE(m.bold);
    ASSERT_TRUE(VxFontResolver::Resolve("Arial", 700, false, 0, m));
    EXPECT_EQ(m.family, "Liberation Sans");
    EXPECT_TRUE(m.bold);
    ASSERT_TRUE(VxFontResolver::Resolve("Times New Roman", 500, false, 134, m));
    EXPECT_EQ(m.family, "Liberation Serif");
    ASSERT_TRUE(VxFontResolver::Resolve("Times New Roman", 400, true, 0, m));
    EXPECT_TRUE(m.italic);
    ASSERT_TRUE(VxFontResolver::Resolve("\xE6\xA5\xB7\xE4\xBD\x93_GB2312", 900, false, 134, m));
    EXPECT_FALSE(m.path.empty());
    EXPECT_TRUE(std::ifstream(m.path).good());

    // The fallback face must draw the digits and the "?" the markers use.
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    CFont font;
    ASSERT_TRUE(font.CreateFontA(15, 0, 0, 0, 900, 0, 0, 0, 134, 0, 0, 2, 32,
                                 "\xE6\xA5\xB7\xE4\xBD\x93_GB2312"));
    dc.SelectObject(&font);
    SIZE ext;
    ASSERT_TRUE(dc.GetTextExtentPoint32W(L"12?", 3, &ext));
    EXPECT_EQ(ext.cy, 15);
    CBitmap bmp;
    ASSERT_NE(SelectWhiteOnBlack(dc, bmp, ext.cx, ext.cy), nullptr);
    dc.TextOutW(0, 0, L"12?", 3);
    const Mask m1 = FromMonoDib(dc, bmp, ext.cx, ext.cy);
    // Each glyph has ink of its own (a missing-glyph box would too, but not three different
    // ones): compare the columns of "1" and "2".
    const SIZE one = dc.GetTextExtent(CString(L"1"));
    EXPECT_TRUE(m1.AnyIn(0, 0, one.cx, ext.cy));
    EXPECT_TRUE(m1.AnyIn(one.cx, 0, ext.cx, ext.cy));
}

TEST_F(TextBitmapTest, HeightConventionAndBoldFace) {
    TEXTMETRICW tm{};
    for (int em : {10, 15, 40, 72}) {
        CFont f;
        ASSERT_TRUE(f.CreateFontA(-em, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
        dc.SelectObject(&f);
        ASSERT_TRUE(dc.GetTextMetrics(&tm));
        EXPECT_EQ(tm.tmHeight - tm.tmInternalLeading, em) << "negative height is the em";
        EXPECT_EQ(tm.tmHeight, tm.tmAscent + tm.tmDescent);
        // Liberation Sans keeps Arial's cell: 1854 + 434 units of 2048.
        EXPECT_NEAR(tm.tmHeight, em * (1854.0 + 434.0) / 2048.0, 1.0);
        dc.SelectStockObject(WHITE_BRUSH); // unrelated state must not disturb the font
        CFont cell;
        ASSERT_TRUE(cell.CreateFontA(em, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
        dc.SelectObject(&cell);
        ASSERT_TRUE(dc.GetTextMetrics(&tm));
        EXPECT_EQ(tm.tmHeight, em) << "positive height is the cell";
        SIZE ext;
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"Ag", 2, &ext));
        EXPECT_EQ(ext.cy, em);
    }
    // Weight 700 picks the bold face, whose strokes carry more ink.
    auto inkOfX = [&](int weight) {
        CFont f;
        EXPECT_TRUE(f.CreateFontA(-72, 0, 0, 0, weight, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
        CFont* old = dc.SelectObject(&f);
        CBitmap bmp;
        CBitmap* oldBmp = SelectWhiteOnBlack(dc, bmp, 96, 96);
        EXPECT_NE(oldBmp, nullptr);
        dc.TextOutW(0, 0, L"X", 1);
        const int ink = FromMonoBitmapBits(bmp, 96, 96).Count();
        dc.SelectObject(oldBmp);
        dc.SelectObject(old);
        return ink;
    };
    const int regular = inkOfX(400);
    const int bold = inkOfX(700);
    EXPECT_GT(bold, regular * 5 / 4);
    CFont b;
    ASSERT_TRUE(b.CreateFontA(-20, 0, 0, 0, 700, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
    EXPECT_NE(b.GetSafeHandle()->path.find("Bold"), std::string::npos);
    EXPECT_FALSE(b.GetSafeHandle()->syntheticBold);
}

TEST_F(TextBitmapTest, XDrawnIntoOneBitAndThirtyTwoBitBitmapsAlike) {
    CFont font;
    ASSERT_TRUE(font.CreateFontA(-72, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
    CFont* oldFont = dc.SelectObject(&font);
    ASSERT_NE(oldFont, nullptr);
    SIZE ext;
    ASSERT_TRUE(dc.GetTextExtentPoint32W(L"X", 1, &ext));
    EXPECT_GT(ext.cx, 30);
    EXPECT_LT(ext.cx, 72);

    const int s = 96;
    CBitmap mono;
    CBitmap* oldBmp = SelectWhiteOnBlack(dc, mono, s, s);
    ASSERT_NE(oldBmp, nullptr);
    dc.SetBkMode(OPAQUE);
    ASSERT_TRUE(dc.TextOutW(0, 0, L"X", 1));
    const Mask fromDib = FromMonoDib(dc, mono, s, s);
    const Mask fromDdb = FromMonoBitmapBits(mono, s, s);
    EXPECT_EQ(fromDib.ink, fromDdb.ink) << "32-bit and 16-bit padded read-backs disagree";
    ExpectX(fromDib, ext);

    CBitmap rgb;
    ASSERT_TRUE(rgb.CreateBitmap(s, s, 1, 32, nullptr));
    dc.SelectObject(&rgb);
    ASSERT_TRUE(dc.TextOut(0, 0, CString(L"X")));
    const Mask fromRgb = FromRgbBitmapBits(rgb, s, s);
    ExpectX(fromRgb, ext);
    // Coverage of at least half sets a monochrome pixel and gives a colour at least half white.
    EXPECT_EQ(fromRgb.ink, fromDib.ink);
    // Antialiased edges: some pixels are neither black nor white.
    std::vector<unsigned char> bits(size_t(s * s * 4));
    rgb.GetBitmapBits(DWORD(bits.size()), bits.data());
    EXPECT_TRUE(
        std::any_of(bits.begin(), bits.end(), [](unsigned char b) { return b > 0 && b < 255; }));

    // The same 32-bit pixels through a top-down GetDIBits request.
    BITMAPINFO info = DibRequest(s, -s, 32);
    std::vector<unsigned char> dib(size_t(s * s * 4));
    EXPECT_EQ(GetDIBits(dc.GetSafeHdc(), rgb, 0, UINT(s), dib.data(), &info, DIB_RGB_COLORS), s);
    EXPECT_EQ(dib, bits);

    dc.SelectObject(oldBmp);
    dc.SelectObject(oldFont);
}

TEST_F(TextBitmapTest, ExtentGrowsWithTextAndHeightWithoutKerning) {
    int lastHeight = 0;
    int lastWidth = 0;
    for (int em : {12, 20, 40, 72}) {
        CFont f;
        ASSERT_TRUE(f.CreateFontA(-em, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
        dc.SelectObject(&f);
        SIZE one, two, three, av, a, v;
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"123", 1, &one));
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"123", 2, &two));
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"123", 3, &three));
        EXPECT_LT(one.cx, two.cx);
        EXPECT_LT(two.cx, three.cx);
        EXPECT_EQ(one.cy, three.cy);
        EXPECT_GT(three.cy, lastHeight);
        EXPECT_GT(three.cx, lastWidth);
        lastHeight = three.cy;
        lastWidth = three.cx;
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"AV", 2, &av));
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"A", 1, &a));
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"V", 1, &v));
        EXPECT_EQ(av.cx, a.cx + v.cx);
        SIZE empty;
        ASSERT_TRUE(dc.GetTextExtentPoint32W(L"", 0, &empty));
        EXPECT_EQ(empty.cx, 0);
        EXPECT_EQ(empty.cy, three.cy);
    }
    // A width asks for a wider average character: the "?" font of the markers.
    CFont narrow, wide;
    ASSERT_TRUE(narrow.CreateFontA(15, 0, 0, 0, 700, 0, 0, 0, 134, 0, 0, 2, 32, "Arial"));
    ASSERT_TRUE(wide.CreateFontA(15, 15, 0, 0, 700, 0, 0, 0, 134, 0, 0, 2, 32, "Arial"));
    SIZE n, w;
    dc.SelectObject(&narrow);
    dc.GetTextExtentPoint32W(L"??", 2, &n);
    dc.SelectObject(&wide);
    dc.GetTextExtentPoint32W(L"??", 2, &w);
    EXPECT_GT(w.cx, n.cx);
    EXPECT_EQ(w.cy, n.cy);
    TEXTMETRICW tm;
    dc.GetTextMetrics(&tm);
    EXPECT_NEAR(tm.tmAveCharWidth, 15, 1);
}

TEST_F(TextBitmapTest, TwoLineLayoutOfALabel) {
    // The label layout of the markers and texts: H per line, half a line between lines.
    CFont font;
    ASSERT_TRUE(font.CreateFontA(-30, 0, 0, 0, 500, 0, 0, 0, 134, 0, 0, 2, 32, "Times New Roman"));
    dc.SelectObject(&font);
    const CString lines[2] = {CString(L"12"), CString(L"345")};
    SIZE e0 = dc.GetTextExtent(lines[0]);
    SIZE e1 = dc.GetTextExtent(lines[1]);
    const int H = e0.cy;
    const int W = std::max(e0.cx, e1.cx);
    EXPECT_EQ(W, e1.cx);
    const int height = 2 * H + H / 2;
    CBitmap bmp;
    ASSERT_NE(SelectWhiteOnBlack(dc, bmp, W, height), nullptr);
    dc.SetBkMode(OPAQUE);
    int y = 0;
    for (const CString& line : lines) {
        dc.TextOutW(0, y, line, line.GetLength());
        y += H + H / 2;
    }
    const Mask m = FromMonoDib(dc, bmp, W, height);
    EXPECT_TRUE(m.AnyIn(0, 0, e0.cx, H)) << "first line";
    EXPECT_FALSE(m.AnyIn(e0.cx, 0, W, H)) << "right of the shorter first line";
    EXPECT_FALSE(m.AnyIn(0, H, W, H + H / 2)) << "gap between the lines";
    EXPECT_TRUE(m.AnyIn(0, H + H / 2, W, height)) << "second line";
    // Three digits side by side: three separate runs of ink columns on the second line.
    int runs = 0;
    bool inRun = false;
    for (int x = 0; x < W; ++x) {
        const bool ink = m.AnyIn(x, H + H / 2, x + 1, height);
        runs += ink && !inRun;
        inRun = ink;
    }
    EXPECT_EQ(runs, 3);
}

TEST_F(TextBitmapTest, OpaqueFillsTheCellTransparentKeepsIt) {
    CFont font;
    ASSERT_TRUE(font.CreateFontA(-24, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 3, 16, "Arial"));
    dc.SelectObject(&font);
    CBitmap bmp;
    ASSERT_TRUE(bmp.CreateBitmap(60, 40, 1, 32, nullptr));
    dc.SelectObject(&bmp);
    SIZE ext;
    dc.GetTextExtentPoint32W(L"Hi", 2, &ext);
    const COLORREF red = RGB(255, 0, 0), blue = RGB(0, 0, 255), green = RGB(0, 255, 0);
    for (int mode : {OPAQUE, TRANSPARENT}) {
        dc.FillSolidRect(0, 0, 60, 40, red);
        EXPECT_EQ(dc.GetBkColor(), red) << "FillSolidRect leaves its colour as the background";
        dc.SetBkColor(blue);
        dc.SetTextColor(green);
        dc.SetBkMode(mode);
        dc.TextOutW(5, 5, L"Hi", 2);
        int bg = 0, text = 0, other = 0;
        for (int y = 5; y < 5 + ext.cy; ++y) {
            for (int x = 5; x < 5 + ext.cx; ++x) {
                const COLORREF c = dc.GetPixel(x, y);
                (c == green ? text : c == (mode == OPAQUE ? blue : red) ? bg : other) += 1;
            }
        }
        EXPECT_GT(text, 20);
        EXPECT_GT(bg, text);
        EXPECT_EQ(other, 0) << "quality 3 draws without antialiasing: text or background only";
        EXPECT_EQ(dc.GetPixel(4, 4), red);
        EXPECT_EQ(dc.GetPixel(5 + ext.cx, 5), red) << "the cell ends at the extent";
    }
}

TEST_F(TextBitmapTest, EllipseFillsTheDiscAndLeavesCorners) {
    const int s = 96;
    CBitmap bmp;
    ASSERT_TRUE(bmp.CreateBitmap(s, s, 1, 32, nullptr));
    dc.SelectObject(&bmp);
    ASSERT_TRUE(dc.Ellipse(0, 0, s, s));
    std::vector<unsigned char> bits(size_t(s * s * 4));
    ASSERT_EQ(bmp.GetBitmapBits(DWORD(bits.size()), bits.data()), bits.size());
    auto px = [&](int x, int y) { return bits[size_t((y * s + x) * 4)]; };
    EXPECT_EQ(px(s / 2, s / 2), 255);
    EXPECT_EQ(px(s / 2, 5), 255);
    for (int c : {0, 1, 2}) {
        EXPECT_EQ(px(c, c), 0);
        EXPECT_EQ(px(s - 1 - c, c), 0);
        EXPECT_EQ(px(c, s - 1 - c), 0);
        EXPECT_EQ(px(s - 1 - c, s - 1 - c), 0);
    }
    EXPECT_EQ(px(s / 2, 0), 0) << "the outline is drawn with the black pen";
    // White area against a brute-force disc of the inner radius.
    int white = 0, reference = 0;
    const double r = s / 2.0 - 1.0;
    for (int y = 0; y < s; ++y) {
        for (int x = 0; x < s; ++x) {
            white += px(x, y) == 255;
            const double dx = x + 0.5 - s / 2.0, dy = y + 0.5 - s / 2.0;
            reference += dx * dx + dy * dy <= r * r;
        }
    }
    EXPECT_NEAR(white, reference, reference * 0.01);

    // A coloured brush and no pen: the whole disc takes the colour.
    dc.FillSolidRect(0, 0, s, s, 0);
    dc.SetDCBrushColor(RGB(10, 200, 30));
    dc.SelectStockObject(DC_BRUSH);
    dc.SelectStockObject(NULL_PEN);
    dc.Ellipse(CRect(10, 20, 50, 40));
    EXPECT_EQ(dc.GetPixel(30, 30), RGB(10, 200, 30));
    EXPECT_EQ(dc.GetPixel(30, 20), RGB(10, 200, 30));
    EXPECT_EQ(dc.GetPixel(10, 20), RGB(0, 0, 0));
    EXPECT_EQ(dc.GetPixel(30, 41), RGB(0, 0, 0));
}

TEST(GdiBitmapTest, RowPaddingSelectionAndDeferredDelete) {
    for (int w : {1, 15, 16, 17, 20, 33, 40}) {
        CBitmap b;
        ASSERT_TRUE(b.CreateBitmap(w, 3, 1, 1, nullptr));
        BITMAP bm{};
        ASSERT_EQ(b.GetBitmap(&bm), int(sizeof(BITMAP)));
        EXPECT_EQ(bm.bmWidthBytes, ((w + 15) / 16) * 2) << w;
        EXPECT_EQ(bm.bmBitsPixel, 1);
        BITMAPINFO info = DibRequest(w, 3, 1);
        EXPECT_EQ(GetDIBits(nullptr, b, 0, 3, nullptr, &info, DIB_RGB_COLORS), 1);
        EXPECT_EQ(info.bmiHeader.biSizeImage, DWORD(((w + 31) / 32) * 4 * 3)) << w;
    }
    // Bits handed to CreateBitmap come back unchanged.
    const unsigned char pattern[] = {0xF0, 0x00, 0x0F, 0x00, 0xAA, 0x00};
    CBitmap p;
    ASSERT_TRUE(p.CreateBitmap(8, 3, 1, 1, pattern));
    unsigned char back[6] = {};
    EXPECT_EQ(p.GetBitmapBits(sizeof back, back), sizeof back);
    EXPECT_TRUE(std::equal(std::begin(pattern), std::end(pattern), back));
    EXPECT_FALSE(p.CreateBitmap(8, 3, 1, 1, nullptr)) << "already made";
    CBitmap bad;
    EXPECT_FALSE(bad.CreateBitmap(8, 3, 2, 1, nullptr));
    EXPECT_FALSE(bad.CreateBitmap(0, 3, 1, 1, nullptr));
    EXPECT_FALSE(bad.CreateBitmap(8, 3, 1, 4, nullptr));

    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    // A fresh memory context holds a monochrome bitmap, so "compatible" means monochrome.
    CBitmap compat, screen;
    ASSERT_TRUE(compat.CreateCompatibleBitmap(&dc, 10, 10));
    ASSERT_TRUE(screen.CreateCompatibleBitmap(nullptr, 10, 10));
    BITMAP bm{};
    compat.GetBitmap(&bm);
    EXPECT_EQ(bm.bmBitsPixel, 1);
    screen.GetBitmap(&bm);
    EXPECT_EQ(bm.bmBitsPixel, 32);

    // SelectObject hands back the previous bitmap, which selects back.
    CBitmap* original = dc.SelectObject(&compat);
    ASSERT_NE(original, nullptr);
    EXPECT_EQ(dc.GetCurrentBitmapHandle(), compat.GetSafeHandle());
    CBitmap* prev = dc.SelectObject(&screen);
    ASSERT_NE(prev, nullptr);
    EXPECT_EQ(prev->GetSafeHandle(), compat.GetSafeHandle());
    // A bitmap selected here cannot be selected into a second context.
    CDC other;
    ASSERT_TRUE(other.CreateCompatibleDC(nullptr));
    EXPECT_EQ(other.SelectObject(&screen), nullptr);
    {
        // Deleting a selected bitmap is deferred until it is deselected.
        CBitmap temp;
        ASSERT_TRUE(temp.CreateBitmap(4, 4, 1, 32, nullptr));
        dc.SelectObject(&temp);
    }
    dc.FillSolidRect(0, 0, 4, 4, RGB(1, 2, 3));
    EXPECT_EQ(dc.GetPixel(3, 3), RGB(1, 2, 3));
    CBitmap* back2 = dc.SelectObject(original);
    ASSERT_NE(back2, nullptr);
    EXPECT_EQ(dc.GetCurrentBitmapHandle(), original->GetSafeHandle());
    BITMAP one{};
    ::GetObjectW(dc.GetCurrentBitmapHandle(), sizeof one, &one);
    EXPECT_EQ(one.bmWidth, 1);

    // Save and restore bring back objects and colours.
    const int saved = dc.SaveDC();
    dc.SelectObject(&screen);
    dc.SetTextColor(RGB(9, 9, 9));
    CFont font;
    ASSERT_TRUE(font.CreateFontA(-12, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "Arial"));
    CFont* stock = dc.SelectObject(&font);
    ASSERT_NE(stock, nullptr);
    EXPECT_EQ(stock->GetSafeHandle(), CFont::StockFont());
    EXPECT_EQ(dc.GetCurrentFont()->GetSafeHandle(), font.GetSafeHandle());
    EXPECT_TRUE(dc.RestoreDC(saved));
    EXPECT_EQ(dc.GetCurrentFont()->GetSafeHandle(), CFont::StockFont());
    EXPECT_EQ(dc.GetCurrentBitmapHandle(), original->GetSafeHandle());
    EXPECT_EQ(dc.GetTextColor(), RGB(0, 0, 0));
    EXPECT_FALSE(dc.RestoreDC(-1));
    EXPECT_TRUE(dc.DeleteDC());
    EXPECT_FALSE(dc.DeleteDC());
    EXPECT_FALSE(dc.TextOutW(0, 0, L"x", 1));
}

TEST(GdiFontTest, BrokenFontFilesGiveNoFont) {
    const std::string dir = VxTestOutputDir();
    const std::string garbage = dir + "/text_bitmap_garbage.ttf";
    const std::string empty = dir + "/text_bitmap_empty.ttf";
    const std::string cut = dir + "/text_bitmap_cut.ttf";
    {
        std::ofstream(garbage, std::ios::binary) << std::string(4000, '\x5A');
        std::ofstream(empty, std::ios::binary);
    }
    VxFontResolver::Match real;
    const bool haveReal = VxFontResolver::Resolve("Arial", 400, false, 0, real);
    if (haveReal) {
        std::ifstream in(real.path, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::ofstream(cut, std::ios::binary) << bytes.substr(0, bytes.size() / 3);
    }
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    CBitmap bmp;
    ASSERT_TRUE(bmp.CreateBitmap(64, 64, 1, 32, nullptr));
    dc.SelectObject(&bmp);
    for (const std::string& path : {garbage, empty, dir + "/missing.ttf", cut}) {
        if (path == cut && !haveReal) {
            continue;
        }
        SCOPED_TRACE(path);
        VxFontResolver::SetFamilyFile("VxBrokenFace", path);
        CFont f;
        const BOOL made = f.CreateFontA(-20, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 2, 16, "VxBrokenFace");
        if (path != cut) {
            EXPECT_FALSE(made);
            EXPECT_EQ(f.GetSafeHandle(), nullptr);
        }
        // Whatever loaded, drawing and measuring stay quiet.
        dc.SelectObject(&f);
        SIZE ext;
        dc.GetTextExtentPoint32W(L"Broken 123", 10, &ext);
        dc.TextOutW(0, 0, L"Broken 123", 10);
    }
    VxFontResolver::SetFamilyFile("VxBrokenFace", "");
    // A null font object selects nothing and the stock font still draws.
    CFont none;
    EXPECT_EQ(dc.SelectObject(&none), nullptr);
    EXPECT_EQ(dc.SelectObject(static_cast<CFont*>(nullptr)), nullptr);
    SIZE ext;
    EXPECT_TRUE(dc.GetTextExtentPoint32W(L"ok", 2, &ext));
    EXPECT_GT(ext.cx, 0);
    EXPECT_FALSE(dc.GetTextExtentPoint32W(nullptr, 3, &ext));
    EXPECT_FALSE(dc.TextOutW(0, 0, L"x", -1));
}
