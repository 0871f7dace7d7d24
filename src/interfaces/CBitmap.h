// CBitmap: owner of a bitmap handle, the stand-in for the desktop framework's class of that name.
// CreateBitmap makes a device-dependent bitmap (top-down rows, 16-bit padding, as its bits
// argument and GetBitmapBits use them); a CImage's DIB section can be attached for the time a
// call needs it and detached again.
// Not supported: planes other than 1, depths other than 1, 8, 24 and 32, bitmap dimensions,
// loading from resources.
#pragma once

#include <interfaces/VxGdi.h>

class CDC;

class CBitmap {
public:
    CBitmap() = default;
    ~CBitmap();
    CBitmap(const CBitmap&) = delete;
    CBitmap& operator=(const CBitmap&) = delete;

    // bits, when given, holds top-down rows padded to 16 bits; otherwise the bitmap is zeroed
    // (black). FALSE for an empty size, a depth not listed above, or planes other than 1.
    BOOL CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits);
    // A bitmap of the format of the one selected into dc: a memory context starts with a 1 x 1
    // monochrome bitmap, so a bitmap "compatible" with a fresh memory context is monochrome, as
    // on the desktop system. A null dc stands for the screen: 32 bits.
    BOOL CreateCompatibleBitmap(CDC* dc, int width, int height);
    BOOL DeleteObject();
    BOOL Attach(HBITMAP bitmap);
    HBITMAP Detach();
    HBITMAP GetSafeHandle() const { return m_hObject; }
    operator HBITMAP() const { return m_hObject; }

    int GetBitmap(BITMAP* bm) const;
    int GetObject(int size, void* out) const;
    DWORD GetBitmapBits(DWORD size, void* bits) const;
    DWORD SetBitmapBits(DWORD size, const void* bits);

    HBITMAP m_hObject = nullptr;
};
