// CFont: a font made by CreateFontA with the desktop system's conventions, rasterised with
// FreeType from a face found by VxFontResolver. Height: negative is the character (em) height in
// pixels, positive the cell height (ascent + descent), 0 a default cell of 16 pixels. A width
// other than 0 asks for that average character width and stretches the glyphs to it. A weight of
// 600 or more picks the family's bold face, or emboldens the regular one where there is none;
// italic picks the italic face, or slants the upright one.
// It also carries the text engine CDC draws with: metrics, text extents and glyph coverage.
// Not supported: escapement and orientation (text is always horizontal), underline and strike-out
// (stored, not drawn), kerning (the desktop system's text output does not kern either), glyph
// fallback to other faces, bidirectional text and shaping (one glyph per wchar_t).
#pragma once

#include <interfaces/VxGdi.h>

#include <functional>
#include <string>

struct FT_FaceRec_;

struct VxFontObject : VxGdiObject {
    VxFontObject() : VxGdiObject(Kind::Font) {}
    ~VxFontObject() override;

    FT_FaceRec_* face = nullptr;
    int ascent = 0; // pixels above the baseline in the cell
    int descent = 0;
    int internalLeading = 0;
    int aveCharWidth = 0;
    int maxCharWidth = 0;
    int weight = FW_NORMAL;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    bool syntheticBold = false;
    bool syntheticItalic = false;
    bool antialias = true;
    BYTE charset = DEFAULT_CHARSET;
    BYTE pitchAndFamily = 0;
    std::string faceName; // as asked for
    std::string path;     // file it was loaded from
};

// Free form of font creation; null when no face can be found or the file does not load.
HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strikeOut, DWORD charset, DWORD outPrecision,
                  DWORD clipPrecision, DWORD quality, DWORD pitchAndFamily, const char* faceName);
// The face name as UTF-32; converted to UTF-8 for the look-up.
HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strikeOut, DWORD charset, DWORD outPrecision,
                  DWORD clipPrecision, DWORD quality, DWORD pitchAndFamily,
                  const wchar_t* faceName);

class CFont {
public:
    CFont() = default;
    ~CFont();
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;

    // faceName is UTF-8 (the library's sources are UTF-8, so "楷体_GB2312" arrives as such).
    BOOL CreateFontA(int height, int width, int escapement, int orientation, int weight,
                     BYTE italic, BYTE underline, BYTE strikeOut, BYTE charset, BYTE outPrecision,
                     BYTE clipPrecision, BYTE quality, BYTE pitchAndFamily, const char* faceName);
    BOOL CreateFontW(int height, int width, int escapement, int orientation, int weight,
                     BYTE italic, BYTE underline, BYTE strikeOut, BYTE charset, BYTE outPrecision,
                     BYTE clipPrecision, BYTE quality, BYTE pitchAndFamily,
                     const wchar_t* faceName);
    BOOL DeleteObject();
    BOOL Attach(HFONT font);
    HFONT Detach();
    HFONT GetSafeHandle() const { return m_hObject; }
    operator HFONT() const { return m_hObject; }

    // --- Text engine used by CDC ---------------------------------------------------------
    // The font a context starts with: a 16-pixel sans-serif cell. Never freed; null when no font
    // is installed at all.
    static HFONT StockFont();
    static bool GetMetrics(HFONT font, TEXTMETRICW* metrics);
    // Width is the sum of the glyph advances, height the cell height; false for a null font.
    static bool MeasureText(HFONT font, const wchar_t* text, int length, SIZE* size);
    // Rasterises the text with the cell's top-left corner at (x, y), y growing downwards, and
    // calls plot(px, py, coverage 1..255) for every inked pixel (255 only for a font without
    // antialiasing). Pixels of neighbouring glyphs may be reported twice.
    static void RenderText(HFONT font, const wchar_t* text, int length, int x, int y,
                           const std::function<void(int, int, int)>& plot);

    HFONT m_hObject = nullptr;
};
