// CDC: a memory context's state, object selection and its few drawing calls.
// Objects are reference counted by selection (and by saved states) so that DeleteObject on a
// selected object only marks it, and the object goes when the last context lets go of it.
#include <interfaces/CDC.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

COLORREF StockBrushColor(int brush) {
    switch (brush) {
    case LTGRAY_BRUSH:
        return RGB(192, 192, 192);
    case GRAY_BRUSH:
        return RGB(128, 128, 128);
    case DKGRAY_BRUSH:
        return RGB(64, 64, 64);
    case BLACK_BRUSH:
        return RGB(0, 0, 0);
    default:
        return RGB(255, 255, 255);
    }
}

COLORREF Blend(COLORREF under, COLORREF over, int coverage) {
    auto mix = [coverage](int a, int b) {
        return (a * (255 - coverage) + b * coverage + 127) / 255;
    };
    return RGB(mix(GetRValue(under), GetRValue(over)), mix(GetGValue(under), GetGValue(over)),
               mix(GetBValue(under), GetBValue(over)));
}

} // namespace

CDC::~CDC() {
    DeleteDC();
}

BOOL CDC::CreateCompatibleDC(CDC*) {
    if (m_hDC) {
        return FALSE;
    }
    m_defaultBitmap = VxCreateBitmapObject(1, 1, 1, false, true);
    if (!m_defaultBitmap) {
        return FALSE;
    }
    m_defaultBitmap->stock = true;
    m_hDC = this;
    Apply(State{});
    m_bitmap = nullptr;
    SelectBitmapHandle(m_defaultBitmap);
    // The stock font is found only when text is first measured or drawn, so contexts that only
    // fill and read pixels never start fontconfig.
    m_font = nullptr;
    return TRUE;
}

BOOL CDC::DeleteDC() {
    if (!m_hDC) {
        return FALSE;
    }
    for (const State& s : m_saved) {
        Release(s.bitmap);
        Release(s.font);
    }
    m_saved.clear();
    if (m_bitmap) {
        m_bitmap->selectedInto = nullptr;
        Release(m_bitmap);
        m_bitmap = nullptr;
    }
    Release(m_font);
    m_font = nullptr;
    for (auto& entry : m_bitmapStandIns) {
        entry.second->Detach();
    }
    for (auto& entry : m_fontStandIns) {
        entry.second->Detach();
    }
    m_bitmapStandIns.clear();
    m_fontStandIns.clear();
    if (m_defaultBitmap->selectCount > 0) {
        // Our default bitmap went on to another context through a stand-in; it goes from there.
        m_defaultBitmap->stock = false;
        m_defaultBitmap->deletePending = true;
    } else {
        delete m_defaultBitmap;
    }
    m_defaultBitmap = nullptr;
    m_hDC = nullptr;
    return TRUE;
}

void CDC::Release(HGDIOBJ object) {
    if (!object) {
        return;
    }
    if (--object->selectCount > 0 || !object->deletePending) {
        return;
    }
    // The stand-ins for this object must not keep its address: a new object may be given the
    // same one.
    if (object->kind == VxGdiObject::Kind::Bitmap) {
        auto it = m_bitmapStandIns.find(static_cast<HBITMAP>(object));
        if (it != m_bitmapStandIns.end()) {
            it->second->Detach();
        }
    } else {
        auto it = m_fontStandIns.find(static_cast<HFONT>(object));
        if (it != m_fontStandIns.end()) {
            it->second->Detach();
        }
    }
    delete object;
}

HBITMAP CDC::SelectBitmapHandle(HBITMAP bitmap) {
    if (!m_hDC || !bitmap) {
        return nullptr;
    }
    if (bitmap == m_bitmap) {
        return m_bitmap;
    }
    if (bitmap->selectedInto && bitmap->selectedInto != this) {
        return nullptr;
    }
    HBITMAP old = m_bitmap;
    ++bitmap->selectCount;
    bitmap->selectedInto = this;
    m_bitmap = bitmap;
    if (old) {
        old->selectedInto = nullptr;
        // A deselected object may go right here; hand back the context's own bitmap instead,
        // which is always valid to select again.
        const bool goes = old->selectCount == 1 && old->deletePending;
        Release(old);
        if (goes) {
            old = m_defaultBitmap;
        }
    }
    return old;
}

HFONT CDC::SelectFontHandle(HFONT font) {
    if (!m_hDC || !font) {
        return nullptr;
    }
    if (font == m_font) {
        return m_font;
    }
    HFONT old = m_font;
    ++font->selectCount;
    m_font = font;
    if (old) {
        const bool goes = old->selectCount == 1 && old->deletePending;
        Release(old);
        if (goes) {
            old = nullptr;
        }
    }
    return old ? old : CFont::StockFont();
}

CBitmap* CDC::BitmapStandIn(HBITMAP bitmap) {
    if (!bitmap) {
        return nullptr;
    }
    auto& slot = m_bitmapStandIns[bitmap];
    if (!slot) {
        slot = std::make_unique<CBitmap>();
    }
    if (slot->m_hObject != bitmap) {
        slot->Detach();
        slot->Attach(bitmap);
    }
    return slot.get();
}

CFont* CDC::FontStandIn(HFONT font) {
    if (!font) {
        return nullptr;
    }
    auto& slot = m_fontStandIns[font];
    if (!slot) {
        slot = std::make_unique<CFont>();
    }
    if (slot->m_hObject != font) {
        slot->Detach();
        slot->Attach(font);
    }
    return slot.get();
}

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    if (!bitmap) {
        return nullptr;
    }
    return BitmapStandIn(SelectBitmapHandle(bitmap->m_hObject));
}

CFont* CDC::SelectObject(CFont* font) {
    if (!font) {
        return nullptr;
    }
    return FontStandIn(SelectFontHandle(font->m_hObject));
}

HGDIOBJ CDC::SelectObject(HGDIOBJ object) {
    if (!object) {
        return nullptr;
    }
    if (object->kind == VxGdiObject::Kind::Bitmap) {
        return SelectBitmapHandle(static_cast<HBITMAP>(object));
    }
    return SelectFontHandle(static_cast<HFONT>(object));
}

int CDC::SelectStockObject(int index) {
    switch (index) {
    case WHITE_BRUSH:
    case LTGRAY_BRUSH:
    case GRAY_BRUSH:
    case DKGRAY_BRUSH:
    case BLACK_BRUSH:
    case NULL_BRUSH:
    case DC_BRUSH:
        return std::exchange(m_brush, index);
    case WHITE_PEN:
    case BLACK_PEN:
    case NULL_PEN:
    case DC_PEN:
        return std::exchange(m_pen, index);
    default:
        return -1;
    }
}

COLORREF CDC::SetDCBrushColor(COLORREF color) {
    return std::exchange(m_dcBrushColor, color);
}

COLORREF CDC::SetDCPenColor(COLORREF color) {
    return std::exchange(m_dcPenColor, color);
}

CBitmap* CDC::GetCurrentBitmap() {
    return m_hDC ? BitmapStandIn(m_bitmap) : nullptr;
}

CFont* CDC::GetCurrentFont() {
    return m_hDC ? FontStandIn(CurrentFont()) : nullptr;
}

CDC::State CDC::Current() const {
    State s;
    s.bitmap = m_bitmap;
    s.font = m_font;
    s.textColor = m_textColor;
    s.bkColor = m_bkColor;
    s.bkMode = m_bkMode;
    s.brush = m_brush;
    s.dcBrushColor = m_dcBrushColor;
    s.pen = m_pen;
    s.dcPenColor = m_dcPenColor;
    return s;
}

void CDC::Apply(const State& s) {
    if (s.bitmap) {
        SelectBitmapHandle(s.bitmap);
    }
    if (s.font) {
        SelectFontHandle(s.font);
    } else if (m_font) {
        Release(m_font);
        m_font = nullptr;
    }
    m_textColor = s.textColor;
    m_bkColor = s.bkColor;
    m_bkMode = s.bkMode;
    m_brush = s.brush;
    m_dcBrushColor = s.dcBrushColor;
    m_pen = s.pen;
    m_dcPenColor = s.dcPenColor;
}

int CDC::SaveDC() {
    if (!m_hDC) {
        return 0;
    }
    State s = Current();
    if (s.bitmap) {
        ++s.bitmap->selectCount;
    }
    if (s.font) {
        ++s.font->selectCount;
    }
    m_saved.push_back(s);
    return int(m_saved.size());
}

BOOL CDC::RestoreDC(int saved) {
    const int count = int(m_saved.size());
    const int index = saved < 0 ? count + saved : saved - 1;
    if (!m_hDC || index < 0 || index >= count) {
        return FALSE;
    }
    std::vector<State> dropped(m_saved.begin() + index, m_saved.end());
    m_saved.resize(size_t(index));
    Apply(dropped.front());
    for (const State& s : dropped) {
        Release(s.bitmap);
        Release(s.font);
    }
    return TRUE;
}

COLORREF CDC::SetTextColor(COLORREF color) {
    return std::exchange(m_textColor, color);
}

COLORREF CDC::SetBkColor(COLORREF color) {
    return std::exchange(m_bkColor, color);
}

int CDC::SetBkMode(int mode) {
    if (mode != OPAQUE && mode != TRANSPARENT) {
        return 0;
    }
    return std::exchange(m_bkMode, mode);
}

HFONT CDC::CurrentFont() const {
    return m_font ? m_font : CFont::StockFont();
}

BOOL CDC::GetTextExtentPoint32W(const wchar_t* text, int length, SIZE* size) const {
    if (!m_hDC || !size || length < 0 || (!text && length > 0)) {
        return FALSE;
    }
    return CFont::MeasureText(CurrentFont(), text, length, size) ? TRUE : FALSE;
}

SIZE CDC::GetTextExtent(const CString& text) const {
    SIZE size;
    GetTextExtentPoint32W(text.GetString(), text.GetLength(), &size);
    return size;
}

BOOL CDC::GetTextMetrics(TEXTMETRICW* metrics) const {
    return m_hDC && CFont::GetMetrics(CurrentFont(), metrics) ? TRUE : FALSE;
}

BOOL CDC::TextOutW(int x, int y, const wchar_t* text, int length) {
    if (!m_hDC || length < 0 || (!text && length > 0)) {
        return FALSE;
    }
    HFONT font = CurrentFont();
    SIZE extent;
    if (!CFont::MeasureText(font, text, length, &extent)) {
        return FALSE;
    }
    if (m_bkMode == OPAQUE) {
        FillRectClipped(x, y, x + extent.cx, y + extent.cy, m_bkColor);
    }
    HBITMAP target = m_bitmap;
    const COLORREF ink = m_textColor;
    // A monochrome target takes a pixel when at least half of it is covered, as the desktop
    // system's text output into a monochrome bitmap does not antialias.
    const bool mono = target->bpp == 1;
    CFont::RenderText(font, text, length, x, y, [&](int px, int py, int coverage) {
        if (!target->Contains(px, py)) {
            return;
        }
        if (mono) {
            if (coverage >= 128) {
                target->SetPixel(px, py, ink);
            }
        } else if (coverage >= 255) {
            target->SetPixel(px, py, ink);
        } else {
            target->SetPixel(px, py, Blend(target->GetPixel(px, py), ink, coverage));
        }
    });
    return TRUE;
}

void CDC::FillRectClipped(int left, int top, int right, int bottom, COLORREF color) {
    HBITMAP b = m_bitmap;
    if (!b) {
        return;
    }
    left = std::max(left, 0);
    top = std::max(top, 0);
    right = std::min(right, b->width);
    bottom = std::min(bottom, b->height);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            b->SetPixel(x, y, color);
        }
    }
}

void CDC::FillSolidRect(int x, int y, int cx, int cy, COLORREF color) {
    if (!m_hDC) {
        return;
    }
    m_bkColor = color;
    FillRectClipped(x, y, x + cx, y + cy, color);
}

bool CDC::BrushColor(COLORREF& color) const {
    if (m_brush == NULL_BRUSH) {
        return false;
    }
    color = m_brush == DC_BRUSH ? m_dcBrushColor : StockBrushColor(m_brush);
    return true;
}

bool CDC::PenColor(COLORREF& color) const {
    if (m_pen == NULL_PEN) {
        return false;
    }
    color = m_pen == DC_PEN ? m_dcPenColor : m_pen == WHITE_PEN ? RGB(255, 255, 255) : RGB(0, 0, 0);
    return true;
}

BOOL CDC::Ellipse(int left, int top, int right, int bottom) {
    if (!m_hDC) {
        return FALSE;
    }
    if (left > right) {
        std::swap(left, right);
    }
    if (top > bottom) {
        std::swap(top, bottom);
    }
    COLORREF fill = 0;
    COLORREF outline = 0;
    const bool hasFill = BrushColor(fill);
    const bool hasOutline = PenColor(outline);
    HBITMAP b = m_bitmap;
    if (right - left < 1 || bottom - top < 1 || (!hasFill && !hasOutline)) {
        return TRUE;
    }
    const double cx = 0.5 * (left + right);
    const double cy = 0.5 * (top + bottom);
    const double ax = 0.5 * (right - left);
    const double ay = 0.5 * (bottom - top);
    const double ix = ax - 1.0;
    const double iy = ay - 1.0;
    const int x0 = std::max(left, 0);
    const int x1 = std::min(right, b->width);
    const int y0 = std::max(top, 0);
    const int y1 = std::min(bottom, b->height);
    for (int y = y0; y < y1; ++y) {
        const double dy = y + 0.5 - cy;
        for (int x = x0; x < x1; ++x) {
            const double dx = x + 0.5 - cx;
            if ((dx / ax) * (dx / ax) + (dy / ay) * (dy / ay) > 1.0) {
                continue;
            }
            const bool edge =
                ix <= 0.0 || iy <= 0.0 || (dx / ix) * (dx / ix) + (dy / iy) * (dy / iy) > 1.0;
            if (edge && hasOutline) {
                b->SetPixel(x, y, outline);
            } else if (hasFill) {
                b->SetPixel(x, y, fill);
            }
        }
    }
    return TRUE;
}

COLORREF CDC::SetPixel(int x, int y, COLORREF color) {
    if (!m_hDC || !m_bitmap->Contains(x, y)) {
        return CLR_INVALID;
    }
    m_bitmap->SetPixel(x, y, color);
    return m_bitmap->GetPixel(x, y);
}

COLORREF CDC::GetPixel(int x, int y) const {
    if (!m_hDC) {
        return CLR_INVALID;
    }
    return m_bitmap->GetPixel(x, y);
}

BOOL TextOutW(HDC dc, int x, int y, const wchar_t* text, int length) {
    return dc ? dc->TextOutW(x, y, text, length) : FALSE;
}

BOOL GetTextExtentPoint32W(HDC dc, const wchar_t* text, int length, SIZE* size) {
    return dc ? dc->GetTextExtentPoint32W(text, length, size) : FALSE;
}

BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics) {
    return dc ? dc->GetTextMetrics(metrics) : FALSE;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    return dc ? dc->SelectObject(object) : nullptr;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    return dc ? dc->SetTextColor(color) : CLR_INVALID;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    return dc ? dc->SetBkColor(color) : CLR_INVALID;
}

int SetBkMode(HDC dc, int mode) {
    return dc ? dc->SetBkMode(mode) : 0;
}
