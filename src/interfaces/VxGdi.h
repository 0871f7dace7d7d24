// VxGdi: the plain types, constants and free functions of the desktop 2D drawing interface that
// the library's bitmap and text code is written against (BYTE, COLORREF, BITMAP, BITMAPINFO,
// GetObjectW, GetDIBits ...), with the same names, layouts and conventions, so that code reading
// bitmaps row by row keeps its arithmetic.
//
// A handle is a pointer to a small object of this file (HBITMAP) or of CFont.h (HFONT); a device
// context handle (HDC) is the CDC itself. Bitmap pixel stores know two layouts, as the desktop
// system does: device-dependent bitmaps (CreateBitmap) keep top-down rows padded to 16 bits, and
// DIB sections (CImage) keep bottom-up or top-down rows padded to 32 bits. Pixels are B, G, R(, X)
// bytes; 1-bit pixels are most significant bit first with 1 meaning white.
// Not here: palettes beyond a plain colour table, 4- and 16-bit pixels, compression, printing,
// regions, mapping modes, and any thread safety (like the rest of the library).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned int;
using BOOL = int;
using COLORREF = DWORD;
using HRESULT = std::int32_t;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline bool SUCCEEDED(HRESULT hr) {
    return hr >= 0;
}
inline bool FAILED(HRESULT hr) {
    return hr < 0;
}

// Red in the low byte, as the desktop system packs a colour.
constexpr COLORREF RGB(int r, int g, int b) {
    return static_cast<COLORREF>((r & 0xFF) | ((g & 0xFF) << 8) | ((b & 0xFF) << 16));
}
constexpr BYTE GetRValue(COLORREF c) {
    return static_cast<BYTE>(c & 0xFF);
}
constexpr BYTE GetGValue(COLORREF c) {
    return static_cast<BYTE>((c >> 8) & 0xFF);
}
constexpr BYTE GetBValue(COLORREF c) {
    return static_cast<BYTE>((c >> 16) & 0xFF);
}
constexpr COLORREF CLR_INVALID = 0xFFFFFFFFu;

// Background modes.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

// DIB constants.
constexpr UINT DIB_RGB_COLORS = 0;
constexpr DWORD BI_RGB = 0;

// Font weights, character sets, qualities, pitch and family.
constexpr int FW_DONTCARE = 0;
constexpr int FW_THIN = 100;
constexpr int FW_LIGHT = 300;
constexpr int FW_NORMAL = 400;
constexpr int FW_MEDIUM = 500;
constexpr int FW_SEMIBOLD = 600;
constexpr int FW_BOLD = 700;
constexpr int FW_HEAVY = 900;
constexpr BYTE ANSI_CHARSET = 0;
constexpr BYTE DEFAULT_CHARSET = 1;
constexpr BYTE GB2312_CHARSET = 134;
constexpr BYTE DEFAULT_QUALITY = 0;
constexpr BYTE DRAFT_QUALITY = 1;
constexpr BYTE PROOF_QUALITY = 2;
constexpr BYTE NONANTIALIASED_QUALITY = 3;
constexpr BYTE ANTIALIASED_QUALITY = 4;
constexpr BYTE CLEARTYPE_QUALITY = 5;
constexpr BYTE DEFAULT_PITCH = 0;
constexpr BYTE FIXED_PITCH = 1;
constexpr BYTE VARIABLE_PITCH = 2;
constexpr BYTE FF_DONTCARE = 0x00;
constexpr BYTE FF_ROMAN = 0x10;
constexpr BYTE FF_SWISS = 0x20;
constexpr BYTE FF_MODERN = 0x30;

// Stock objects that CDC::SelectStockObject knows.
constexpr int WHITE_BRUSH = 0;
constexpr int LTGRAY_BRUSH = 1;
constexpr int GRAY_BRUSH = 2;
constexpr int DKGRAY_BRUSH = 3;
constexpr int BLACK_BRUSH = 4;
constexpr int NULL_BRUSH = 5;
constexpr int WHITE_PEN = 6;
constexpr int BLACK_PEN = 7;
constexpr int NULL_PEN = 8;
constexpr int DC_BRUSH = 18;
constexpr int DC_PEN = 19;

struct SIZE {
    LONG cx = 0;
    LONG cy = 0;
};

struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits;
};

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40, "the header's size field is checked against 40");

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

#pragma pack(push, 2)
struct BITMAPFILEHEADER {
    WORD bfType;
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14, "file header is packed as on disk");

struct TEXTMETRICW {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    wchar_t tmFirstChar;
    wchar_t tmLastChar;
    wchar_t tmDefaultChar;
    wchar_t tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};

// ---------------------------------------------------------------------------------------------
// Handles.

class CDC;
using HDC = CDC*;

// Common part of everything a handle may point to. A selected object is not freed by
// DeleteObject: it is marked and goes when the last context lets it go, so a context never holds
// a dangling handle.
struct VxGdiObject {
    enum class Kind { Bitmap, Font };
    explicit VxGdiObject(Kind k) : kind(k) {}
    virtual ~VxGdiObject() = default;
    VxGdiObject(const VxGdiObject&) = delete;
    VxGdiObject& operator=(const VxGdiObject&) = delete;

    Kind kind;
    int selectCount = 0; // selections and saved context states holding it
    bool deletePending = false;
    bool stock = false; // never freed (a context's default bitmap)
};
using HGDIOBJ = VxGdiObject*;

// A bitmap's pixel store.
struct VxBitmapObject : VxGdiObject {
    VxBitmapObject() : VxGdiObject(Kind::Bitmap) {}

    // Row y counted from the top, whatever the memory order.
    BYTE* Row(int y) {
        return bits.data() + static_cast<std::size_t>(topDown ? y : height - 1 - y) * stride;
    }
    const BYTE* Row(int y) const {
        return bits.data() + static_cast<std::size_t>(topDown ? y : height - 1 - y) * stride;
    }
    bool Contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    COLORREF GetPixel(int x, int y) const; // CLR_INVALID outside
    void SetPixel(int x, int y, COLORREF c);

    int width = 0;
    int height = 0;
    int bpp = 0;    // 1, 8, 24 or 32
    int stride = 0; // bytes from one row to the next in memory
    bool topDown = true;
    bool dibSection = false;            // 32-bit row padding, made by CImage
    const void* selectedInto = nullptr; // the one context it is selected into
    std::vector<RGBQUAD> colorTable;    // for 1 and 8 bits; empty means black/white (1 bit)
    std::vector<BYTE> bits;
};
using HBITMAP = VxBitmapObject*;

struct VxFontObject; // CFont.h
using HFONT = VxFontObject*;

// Makes a bitmap store; null for sizes or depths it cannot hold (depths 1, 8, 24, 32).
HBITMAP VxCreateBitmapObject(int width, int height, int bpp, bool dibSection, bool topDown);

// Bytes of one row with 16-bit padding, the layout of GetBitmapBits and CreateBitmap's bits.
inline int VxWordAlignedStride(int width, int bpp) {
    return ((width * bpp + 15) / 16) * 2;
}
// Bytes of one row with 32-bit padding, the layout of DIBs.
inline int VxDwordAlignedStride(int width, int bpp) {
    return ((width * bpp + 31) / 32) * 4;
}

// Fills a BITMAP record (sizeof(BITMAP) bytes at most); returns the bytes written, 0 for a null
// handle or a font. DIB sections report their 32-bit row size and their lowest-addressed bits.
int GetObjectW(HGDIOBJ object, int size, void* out);
// Frees a handle's object; FALSE for null or stock. A selected object is freed when deselected.
BOOL DeleteObject(HGDIOBJ object);
// Copies up to size bytes of the bitmap as top-down rows padded to 16 bits; returns bytes copied.
LONG GetBitmapBits(HBITMAP bitmap, LONG size, void* bits);
// Sets the bitmap from top-down rows padded to 16 bits; returns bytes used.
LONG SetBitmapBits(HBITMAP bitmap, DWORD size, const void* bits);
// Reads scan lines into a DIB layout chosen by the header in info: 1, 24 or 32 bits, BI_RGB,
// bottom-up for a positive biHeight, top-down for a negative one, rows padded to 32 bits.
// Scan line 0 is the bottom row of a bottom-up request. With bits null only the header's
// biSizeImage is filled in. Returns the number of lines copied, 0 on failure. The colour table
// behind the header is not written: 1-bit results always mean 0 black, 1 white.
int GetDIBits(HDC dc, HBITMAP bitmap, UINT startScan, UINT lines, void* bits, BITMAPINFO* info,
              UINT usage);
