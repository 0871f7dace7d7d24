// CImage: a picture in a DIB section, the stand-in for the desktop framework's image class. Rows
// are padded to 32 bits and, for a positive height, stored bottom-up: GetBits points at the top
// row, which is the last one in memory, and GetPitch is negative, so GetBits() + y * GetPitch()
// addresses row y from the top exactly as on the desktop system. Pixels are B, G, R(, A) bytes;
// 8-bit pictures carry a colour table (grey by default).
// Load reads PNG, JPEG and BMP through stb_image; Save writes PNG, or BMP or JPEG by the file's
// extension. GetDC hands out a CDC drawing into the picture until the matching ReleaseDC.
// Not supported: GIF, TIFF and other formats, 1-bit files, 4- and 16-bit depths, transparent
// colour, blitting and stretching to other contexts, streams.
#pragma once

#include <interfaces/CDC.h>
#include <interfaces/VxGdi.h>

#include <cstddef>
#include <memory>

class CImage {
public:
    static constexpr DWORD createAlphaChannel = 0x01;
    enum DIBOrientation : int { DIBOR_DEFAULT, DIBOR_TOPDOWN, DIBOR_BOTTOMUP };

    CImage() = default;
    ~CImage();
    CImage(const CImage&) = delete;
    CImage& operator=(const CImage&) = delete;

    // Depths 1, 8, 24 and 32; a negative height makes a top-down picture. FALSE (and a null
    // image) for anything else. The image must be null before.
    BOOL Create(int width, int height, int bpp, DWORD flags = 0);
    void Destroy();
    bool IsNull() const { return m_bitmap == nullptr; }
    bool IsDIBSection() const { return m_bitmap != nullptr; }

    int GetWidth() const;
    int GetHeight() const;
    int GetBPP() const;
    int GetPitch() const;
    void* GetBits();
    const void* GetBits() const;
    void* GetPixelAddress(int x, int y);
    const void* GetPixelAddress(int x, int y) const;
    // Red in the low byte; CLR_INVALID outside the picture. An 8-bit picture takes the nearest
    // colour of its table.
    COLORREF GetPixel(int x, int y) const;
    void SetPixel(int x, int y, COLORREF color);
    void SetPixelRGB(int x, int y, BYTE r, BYTE g, BYTE b) { SetPixel(x, y, RGB(r, g, b)); }

    bool IsIndexed() const;
    int GetMaxColorTableEntries() const;
    void GetColorTable(UINT first, UINT count, RGBQUAD* colors) const;
    void SetColorTable(UINT first, UINT count, const RGBQUAD* colors);
    bool HasAlphaChannel() const { return m_alpha; }

    // S_OK, or E_FAIL (and a null image) for a file that is missing, not PNG, JPEG or BMP,
    // damaged, or larger than 32 M pixels. Grey files give 8-bit pictures, files with alpha
    // 32-bit pictures with an alpha channel, others 24-bit pictures.
    HRESULT Load(const wchar_t* path);
    // The same from bytes in memory; Load reads the file and comes here.
    HRESULT LoadFromMemory(const void* data, size_t size);
    HRESULT Save(const wchar_t* path) const;

    // The context stays valid until as many ReleaseDC as GetDC calls; null for a null image.
    HDC GetDC() const;
    void ReleaseDC() const;

    // Takes over a bitmap (any depth this file supports); the orientation is the bitmap's own.
    void Attach(HBITMAP bitmap, DIBOrientation orientation = DIBOR_DEFAULT);
    HBITMAP Detach();
    operator HBITMAP() const { return m_bitmap; }

private:
    void DropDC() const;

    HBITMAP m_bitmap = nullptr;
    bool m_alpha = false;
    mutable std::unique_ptr<CDC> m_dc;
    mutable int m_dcRefs = 0;
};
