// CDC: a memory device context, the stand-in for the desktop framework's class of that name. It
// draws into the bitmap selected into it: solid rectangles, filled ellipses, pixels and text in
// the selected CFont, with the text colour, background colour and background mode of the
// desktop system (OPAQUE fills each text cell with the background first). Coordinates are
// pixels, y growing downwards, right and bottom edges exclusive.
// A context starts with a 1 x 1 monochrome bitmap, the stock sans-serif font, a white brush, a
// black pen, black text on a white, opaque background.
// Not supported: window and screen contexts (only CreateCompatibleDC), mapping modes, clipping
// regions, raster operations, pens wider than one pixel, lines, paths, and BitBlt. SelectObject
// hands back a context-owned stand-in for the previous object, good for selecting it back while
// that object lives.
#pragma once

#include <interfaces/CBitmap.h>
#include <interfaces/CFont.h>
#include <interfaces/CRect.h>
#include <interfaces/CString.h>
#include <interfaces/VxGdi.h>

#include <map>
#include <memory>
#include <vector>

class CDC {
public:
    CDC() = default;
    ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // A memory context; the argument is accepted for the shape of the call (all memory contexts
    // here are alike). FALSE if this object already holds a context.
    BOOL CreateCompatibleDC(CDC* dc);
    BOOL DeleteDC();
    HDC GetSafeHdc() const { return m_hDC; }
    static CDC* FromHandle(HDC dc) { return dc; }

    // Null (and no change) for a null or empty object, or a bitmap selected elsewhere.
    CBitmap* SelectObject(CBitmap* bitmap);
    CFont* SelectObject(CFont* font);
    HGDIOBJ SelectObject(HGDIOBJ object);
    // Brushes WHITE_BRUSH, LTGRAY_BRUSH, GRAY_BRUSH, DKGRAY_BRUSH, BLACK_BRUSH, NULL_BRUSH,
    // DC_BRUSH and pens WHITE_PEN, BLACK_PEN, NULL_PEN, DC_PEN. Returns the previous stock id of
    // the same kind, -1 for an id not listed.
    int SelectStockObject(int index);
    COLORREF SetDCBrushColor(COLORREF color);
    COLORREF SetDCPenColor(COLORREF color);
    CBitmap* GetCurrentBitmap();
    HBITMAP GetCurrentBitmapHandle() const { return m_hDC ? m_bitmap : nullptr; }
    CFont* GetCurrentFont();

    // Save and restore of the selected objects, colours and modes. RestoreDC(-1) restores the
    // last save, RestoreDC(n) the state of the n-th save (1-based), dropping later ones.
    int SaveDC();
    BOOL RestoreDC(int saved);

    COLORREF SetTextColor(COLORREF color);
    COLORREF GetTextColor() const { return m_textColor; }
    COLORREF SetBkColor(COLORREF color);
    COLORREF GetBkColor() const { return m_bkColor; }
    // OPAQUE or TRANSPARENT; 0 (and no change) for anything else.
    int SetBkMode(int mode);
    int GetBkMode() const { return m_bkMode; }

    BOOL GetTextExtentPoint32W(const wchar_t* text, int length, SIZE* size) const;
    SIZE GetTextExtent(const CString& text) const;
    BOOL GetTextMetrics(TEXTMETRICW* metrics) const;
    BOOL TextOutW(int x, int y, const wchar_t* text, int length);
    BOOL TextOut(int x, int y, const wchar_t* text, int length) {
        return TextOutW(x, y, text, length);
    }
    BOOL TextOut(int x, int y, const CString& text) {
        return TextOutW(x, y, text.GetString(), text.GetLength());
    }

    // Also sets the background colour, a side effect code written for the desktop framework
    // may rely on.
    void FillSolidRect(int x, int y, int cx, int cy, COLORREF color);
    void FillSolidRect(const CRect& rect, COLORREF color) {
        FillSolidRect(rect.left, rect.top, rect.Width(), rect.Height(), color);
    }
    // Filled with the brush and outlined one pixel wide with the pen.
    BOOL Ellipse(int left, int top, int right, int bottom);
    BOOL Ellipse(const CRect& rect) {
        return Ellipse(rect.left, rect.top, rect.right, rect.bottom);
    }
    COLORREF SetPixel(int x, int y, COLORREF color);
    COLORREF GetPixel(int x, int y) const;

    HDC m_hDC = nullptr;

private:
    struct State {
        HBITMAP bitmap = nullptr;
        HFONT font = nullptr;
        COLORREF textColor = RGB(0, 0, 0);
        COLORREF bkColor = RGB(255, 255, 255);
        int bkMode = OPAQUE;
        int brush = WHITE_BRUSH;
        COLORREF dcBrushColor = RGB(255, 255, 255);
        int pen = BLACK_PEN;
        COLORREF dcPenColor = RGB(0, 0, 0);
    };

    HBITMAP SelectBitmapHandle(HBITMAP bitmap);
    HFONT SelectFontHandle(HFONT font);
    void Release(HGDIOBJ object);
    HFONT CurrentFont() const;
    CBitmap* BitmapStandIn(HBITMAP bitmap);
    CFont* FontStandIn(HFONT font);
    // Brush or pen colour; false when the brush or pen is the null one.
    bool BrushColor(COLORREF& color) const;
    bool PenColor(COLORREF& color) const;
    void FillRectClipped(int left, int top, int right, int bottom, COLORREF color);
    State Current() const;
    void Apply(const State& s);

    HBITMAP m_bitmap = nullptr;
    HBITMAP m_defaultBitmap = nullptr;
    HFONT m_font = nullptr; // null: the stock font
    COLORREF m_textColor = RGB(0, 0, 0);
    COLORREF m_bkColor = RGB(255, 255, 255);
    int m_bkMode = OPAQUE;
    int m_brush = WHITE_BRUSH;
    COLORREF m_dcBrushColor = RGB(255, 255, 255);
    int m_pen = BLACK_PEN;
    COLORREF m_dcPenColor = RGB(0, 0, 0);
    std::vector<State> m_saved;
    std::map<HBITMAP, std::unique_ptr<CBitmap>> m_bitmapStandIns;
    std::map<HFONT, std::unique_ptr<CFont>> m_fontStandIns;
};

// Free forms taking the context handle, for code written against the plain interface.
BOOL TextOutW(HDC dc, int x, int y, const wchar_t* text, int length);
BOOL GetTextExtentPoint32W(HDC dc, const wchar_t* text, int length, SIZE* size);
BOOL GetTextMetricsW(HDC dc, TEXTMETRICW* metrics);
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
COLORREF SetTextColor(HDC dc, COLORREF color);
COLORREF SetBkColor(HDC dc, COLORREF color);
int SetBkMode(HDC dc, int mode);
