// VxGdi: pixel access of bitmap stores and the free bitmap functions (GetObjectW, GetDIBits ...).
// Conversions between depths pick the nearest colour of the target, as the desktop system does
// when it turns colour into monochrome; no dithering, no halftone.
#include <interfaces/VxGdi.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// Largest store we agree to make; a bigger request is a bad file or a bad call, not a picture.
constexpr size_t kMaxBitmapBytes = size_t(1) << 30;
constexpr int kMaxDimension = 1 << 16;

COLORREF QuadToColor(const RGBQUAD& q) {
    return RGB(q.rgbRed, q.rgbGreen, q.rgbBlue);
}

int ColorDistance(COLORREF a, COLORREF b) {
    const int dr = int(GetRValue(a)) - int(GetRValue(b));
    const int dg = int(GetGValue(a)) - int(GetGValue(b));
    const int db = int(GetBValue(a)) - int(GetBValue(b));
    return dr * dr + dg * dg + db * db;
}

// Nearest of black and white, the rule for a monochrome target without a table.
bool IsWhiteNearer(COLORREF c) {
    return ColorDistance(c, RGB(255, 255, 255)) < ColorDistance(c, 0);
}

int NearestIndex(const std::vector<RGBQUAD>& table, COLORREF c) {
    int best = 0;
    int bestDistance = std::numeric_limits<int>::max();
    for (size_t i = 0; i < table.size(); ++i) {
        const int d = ColorDistance(QuadToColor(table[i]), c);
        if (d < bestDistance) {
            bestDistance = d;
            best = int(i);
        }
    }
    return best;
}

} // namespace

COLORREF VxBitmapObject::GetPixel(int x, int y) const {
    if (!Contains(x, y)) {
        return CLR_INVALID;
    }
    const BYTE* row = Row(y);
    switch (bpp) {
    case 1: {
        const int index = (row[x >> 3] >> (7 - (x & 7))) & 1;
        if (colorTable.size() >= 2) {
            return QuadToColor(colorTable[size_t(index)]);
        }
        return index ? RGB(255, 255, 255) : RGB(0, 0, 0);
    }
    case 8: {
        const size_t index = row[x];
        if (index < colorTable.size()) {
            return QuadToColor(colorTable[index]);
        }
        return RGB(int(index), int(index), int(index));
    }
    case 24:
        return RGB(row[x * 3 + 2], row[x * 3 + 1], row[x * 3]);
    case 32:
        return RGB(row[x * 4 + 2], row[x * 4 + 1], row[x * 4]);
    default:
        return CLR_INVALID;
    }
}

void VxBitmapObject::SetPixel(int x, int y, COLORREF c) {
    if (!Contains(x, y)) {
        return;
    }
    BYTE* row = Row(y);
    switch (bpp) {
    case 1: {
        const bool one =
            colorTable.size() >= 2 ? NearestIndex(colorTable, c) == 1 : IsWhiteNearer(c);
        const BYTE mask = BYTE(0x80 >> (x & 7));
        if (one) {
            row[x >> 3] |= mask;
        } else {
            row[x >> 3] &= BYTE(~mask);
        }
        break;
    }
    case 8:
        row[x] = BYTE(colorTable.empty() ? (GetRValue(c) + GetGValue(c) + GetBValue(c)) / 3
                                         : NearestIndex(colorTable, c));
        break;
    case 24:
        row[x * 3] = GetBValue(c);
        row[x * 3 + 1] = GetGValue(c);
        row[x * 3 + 2] = GetRValue(c);
        break;
    case 32:
        // The fourth byte is left as it is: drawing calls of the desktop system do not write
        // alpha either, and a loaded picture keeps its own.
        row[x * 4] = GetBValue(c);
        row[x * 4 + 1] = GetGValue(c);
        row[x * 4 + 2] = GetRValue(c);
        break;
    default:
        break;
    }
}

HBITMAP VxCreateBitmapObject(int width, int height, int bpp, bool dibSection, bool topDown) {
    if (width <= 0 || height <= 0 || width > kMaxDimension || height > kMaxDimension) {
        return nullptr;
    }
    if (bpp != 1 && bpp != 8 && bpp != 24 && bpp != 32) {
        return nullptr;
    }
    const int stride =
        dibSection ? VxDwordAlignedStride(width, bpp) : VxWordAlignedStride(width, bpp);
    const size_t bytes = size_t(stride) * size_t(height);
    if (bytes > kMaxBitmapBytes) {
        return nullptr;
    }
    auto* b = new VxBitmapObject;
    b->width = width;
    b->height = height;
    b->bpp = bpp;
    b->stride = stride;
    b->topDown = topDown;
    b->dibSection = dibSection;
    b->bits.assign(bytes, 0);
    if (bpp == 8) {
        b->colorTable.resize(256);
        for (int i = 0; i < 256; ++i) {
            b->colorTable[size_t(i)] = RGBQUAD{BYTE(i), BYTE(i), BYTE(i), 0};
        }
    }
    return b;
}

int GetObjectW(HGDIOBJ object, int size, void* out) {
    if (!object || object->kind != VxGdiObject::Kind::Bitmap || size <= 0 || !out) {
        return 0;
    }
    const auto* b = static_cast<const VxBitmapObject*>(object);
    BITMAP bm{};
    bm.bmType = 0;
    bm.bmWidth = b->width;
    bm.bmHeight = b->height;
    bm.bmWidthBytes = b->dibSection ? b->stride : VxWordAlignedStride(b->width, b->bpp);
    bm.bmPlanes = 1;
    bm.bmBitsPixel = WORD(b->bpp);
    bm.bmBits = b->dibSection ? const_cast<BYTE*>(b->bits.data()) : nullptr;
    const int n = std::min<int>(size, int(sizeof(BITMAP)));
    std::memcpy(out, &bm, size_t(n));
    return n;
}

BOOL DeleteObject(HGDIOBJ object) {
    if (!object || object->stock) {
        return FALSE;
    }
    if (object->selectCount > 0) {
        object->deletePending = true;
        return TRUE;
    }
    delete object;
    return TRUE;
}

LONG GetBitmapBits(HBITMAP bitmap, LONG size, void* bits) {
    if (!bitmap || size <= 0 || !bits) {
        return 0;
    }
    const int rowBytes = VxWordAlignedStride(bitmap->width, bitmap->bpp);
    const int used = (bitmap->width * bitmap->bpp + 7) / 8;
    auto* out = static_cast<BYTE*>(bits);
    LONG copied = 0;
    for (int y = 0; y < bitmap->height && copied < size; ++y) {
        const int n = std::min<LONG>(rowBytes, size - copied);
        const int fromRow = std::min(n, used);
        std::memcpy(out + copied, bitmap->Row(y), size_t(fromRow));
        std::memset(out + copied + fromRow, 0, size_t(n - fromRow));
        copied += n;
    }
    return copied;
}

LONG SetBitmapBits(HBITMAP bitmap, DWORD size, const void* bits) {
    if (!bitmap || size == 0 || !bits) {
        return 0;
    }
    const int rowBytes = VxWordAlignedStride(bitmap->width, bitmap->bpp);
    const int used = (bitmap->width * bitmap->bpp + 7) / 8;
    const auto* in = static_cast<const BYTE*>(bits);
    const LONG limit = LONG(std::min<DWORD>(size, DWORD(std::numeric_limits<LONG>::max())));
    LONG consumed = 0;
    for (int y = 0; y < bitmap->height && consumed < limit; ++y) {
        const int n = std::min<LONG>(rowBytes, limit - consumed);
        std::memcpy(bitmap->Row(y), in + consumed, size_t(std::min(n, used)));
        consumed += n;
    }
    return consumed;
}

int GetDIBits(HDC, HBITMAP bitmap, UINT startScan, UINT lines, void* bits, BITMAPINFO* info,
              UINT usage) {
    if (!bitmap || !info || usage != DIB_RGB_COLORS ||
        info->bmiHeader.biSize < sizeof(BITMAPINFOHEADER)) {
        return 0;
    }
    BITMAPINFOHEADER& h = info->bmiHeader;
    if (h.biBitCount == 0) {
        // Query form: describe the bitmap as it stands.
        h.biWidth = bitmap->width;
        h.biHeight = bitmap->height;
        h.biPlanes = 1;
        h.biBitCount = WORD(bitmap->bpp);
        h.biCompression = BI_RGB;
        h.biSizeImage = DWORD(VxDwordAlignedStride(bitmap->width, bitmap->bpp) * bitmap->height);
        return bits ? 0 : 1;
    }
    const int bpp = h.biBitCount;
    if ((bpp != 1 && bpp != 24 && bpp != 32) || h.biCompression != BI_RGB) {
        return 0;
    }
    const int width = bitmap->width;
    const int stride = VxDwordAlignedStride(width, bpp);
    h.biSizeImage = DWORD(stride * bitmap->height);
    if (!bits) {
        return 1;
    }
    const bool bottomUp = h.biHeight >= 0;
    if (startScan >= UINT(bitmap->height)) {
        return 0;
    }
    const int count = int(std::min<UINT>(lines, UINT(bitmap->height) - startScan));
    auto* out = static_cast<BYTE*>(bits);
    for (int i = 0; i < count; ++i) {
        const int scan = int(startScan) + i;
        const int y = bottomUp ? bitmap->height - 1 - scan : scan;
        BYTE* dst = out + size_t(i) * size_t(stride);
        std::memset(dst, 0, size_t(stride));
        if (bpp == bitmap->bpp && bpp != 1) {
            std::memcpy(dst, bitmap->Row(y), size_t((width * bpp + 7) / 8));
            continue;
        }
        for (int x = 0; x < width; ++x) {
            const COLORREF c = bitmap->GetPixel(x, y);
            if (bpp == 1) {
                if (IsWhiteNearer(c)) {
                    dst[x >> 3] |= BYTE(0x80 >> (x & 7));
                }
            } else {
                BYTE* p = dst + x * (bpp / 8);
                p[0] = GetBValue(c);
                p[1] = GetGValue(c);
                p[2] = GetRValue(c);
            }
        }
    }
    return count;
}
