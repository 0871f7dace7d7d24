// CBitmap: creation and the thin member forms of the free bitmap functions.
#include <interfaces/CBitmap.h>

#include <interfaces/CDC.h>

CBitmap::~CBitmap() {
    DeleteObject();
}

BOOL CBitmap::CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel,
                           const void* bits) {
    if (m_hObject || planes != 1) {
        return FALSE;
    }
    HBITMAP b = VxCreateBitmapObject(width, height, int(bitsPerPixel), false, true);
    if (!b) {
        return FALSE;
    }
    if (bits) {
        ::SetBitmapBits(b, DWORD(b->stride) * DWORD(b->height), bits);
    }
    m_hObject = b;
    return TRUE;
}

BOOL CBitmap::CreateCompatibleBitmap(CDC* dc, int width, int height) {
    if (m_hObject) {
        return FALSE;
    }
    int bpp = 32;
    if (dc) {
        HBITMAP current = dc->GetCurrentBitmapHandle();
        if (!current) {
            return FALSE;
        }
        bpp = current->bpp;
    }
    // An 8-bit bitmap would need the context's palette; the desktop system's screen has none
    // either, so such contexts give 32-bit bitmaps.
    if (bpp == 8) {
        bpp = 32;
    }
    return CreateBitmap(width, height, 1, UINT(bpp), nullptr);
}

BOOL CBitmap::DeleteObject() {
    if (!m_hObject) {
        return FALSE;
    }
    const BOOL ok = ::DeleteObject(m_hObject);
    m_hObject = nullptr;
    return ok;
}

BOOL CBitmap::Attach(HBITMAP bitmap) {
    if (m_hObject || !bitmap) {
        return FALSE;
    }
    m_hObject = bitmap;
    return TRUE;
}

HBITMAP CBitmap::Detach() {
    HBITMAP b = m_hObject;
    m_hObject = nullptr;
    return b;
}

int CBitmap::GetBitmap(BITMAP* bm) const {
    return ::GetObjectW(m_hObject, sizeof(BITMAP), bm);
}

int CBitmap::GetObject(int size, void* out) const {
    return ::GetObjectW(m_hObject, size, out);
}

DWORD CBitmap::GetBitmapBits(DWORD size, void* bits) const {
    return DWORD(::GetBitmapBits(m_hObject, LONG(size > 0x7FFFFFFFu ? 0x7FFFFFFFu : size), bits));
}

DWORD CBitmap::SetBitmapBits(DWORD size, const void* bits) {
    return DWORD(::SetBitmapBits(m_hObject, size, bits));
}
