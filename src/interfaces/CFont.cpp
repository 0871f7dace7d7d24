// CFont: font creation, metrics and glyph rasterising with FreeType.
// Glyphs are loaded with the normal hinting target for measuring and for drawing alike, so the
// extent GetTextExtentPoint32W reports is exactly where TextOutW puts the pen; monochrome targets
// threshold the same coverage instead of using FreeType's monochrome hinting, which would move
// the advances.
#include <interfaces/CFont.h>

#include <interfaces/CString.h>
#include <platform/VxFontResolver.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>

namespace {

// The FreeType library is made once and never released: fonts may be freed by other process-wide
// objects' destructors at exit, in an order nothing here controls.
FT_Library Library() {
    static FT_Library library = [] {
        FT_Library lib = nullptr;
        if (FT_Init_FreeType(&lib) != 0) {
            lib = nullptr;
        }
        return lib;
    }();
    return library;
}

constexpr int kDefaultCellHeight = 16;

// Loads one glyph, applies synthetic styles, and renders it when asked. False when the face
// cannot give the glyph (a broken file may fail glyph by glyph).
bool LoadGlyph(const VxFontObject& f, wchar_t ch, bool render) {
    FT_Face face = f.face;
    const bool synthetic = f.syntheticBold || f.syntheticItalic;
    FT_Int32 flags = FT_LOAD_DEFAULT | FT_LOAD_TARGET_NORMAL;
    if (render && !synthetic) {
        flags |= FT_LOAD_RENDER;
    }
    if (FT_Load_Char(face, FT_ULong(ch), flags) != 0) {
        return false;
    }
    if (synthetic) {
        if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
            return !render || FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) == 0;
        }
        if (f.syntheticItalic) {
            FT_GlyphSlot_Oblique(face->glyph);
        }
        if (f.syntheticBold) {
            FT_GlyphSlot_Embolden(face->glyph);
        }
        if (render && FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) != 0) {
            return false;
        }
    }
    return true;
}

int Advance(const FT_GlyphSlot slot) {
    return int((slot->advance.x + 32) >> 6);
}

} // namespace

VxFontObject::~VxFontObject() {
    if (face) {
        FT_Done_Face(face);
    }
}

HFONT CreateFontA(int height, int width, int /*escapement*/, int /*orientation*/, int weight,
                  DWORD italic, DWORD underline, DWORD strikeOut, DWORD charset,
                  DWORD /*outPrecision*/, DWORD /*clipPrecision*/, DWORD quality,
                  DWORD pitchAndFamily, const char* faceName) {
    FT_Library lib = Library();
    if (!lib) {
        return nullptr;
    }
    std::string family = faceName ? faceName : "";
    if (family.empty()) {
        // No name: the family byte decides, as it does for the desktop system's mapper.
        family = (pitchAndFamily & 0xF0) == FF_ROMAN ? "serif"
                 : (pitchAndFamily & 0xF0) == FF_MODERN || (pitchAndFamily & 3) == FIXED_PITCH
                     ? "monospace"
                     : "sans-serif";
    }
    if (weight <= 0) {
        weight = FW_NORMAL;
    }
    VxFontResolver::Match match;
    if (!VxFontResolver::Resolve(family, weight, italic != 0, int(charset & 0xFF), match)) {
        return nullptr;
    }
    FT_Face face = nullptr;
    if (FT_New_Face(lib, match.path.c_str(), match.index, &face) != 0 || !face) {
        return nullptr;
    }
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    const double units = face->units_per_EM;
    double cellAscent = face->ascender;
    double cellDescent = -double(face->descender);
    double avgWidth = 0.0;
    if (auto* os2 = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2))) {
        // The cell of the desktop system is the font's Windows ascent and descent.
        if (os2->usWinAscent + os2->usWinDescent > 0) {
            cellAscent = os2->usWinAscent;
            cellDescent = os2->usWinDescent;
        }
        avgWidth = os2->xAvgCharWidth;
    }
    if (cellAscent + cellDescent <= 0.0) {
        cellAscent = units * 0.8;
        cellDescent = units * 0.2;
    }
    if (avgWidth <= 0.0) {
        avgWidth = units * 0.5;
    }
    const int cellRequest = height > 0 ? height : height == 0 ? kDefaultCellHeight : 0;
    const double ppemY =
        height < 0 ? double(-height) : cellRequest * units / (cellAscent + cellDescent);
    const double ppemX = width > 0 ? width * units / avgWidth : ppemY;
    if (ppemY <= 0.0 || ppemY > 4096.0 || ppemX > 4096.0 ||
        FT_Set_Char_Size(face, FT_F26Dot6(std::lround(ppemX * 64.0)),
                         FT_F26Dot6(std::lround(ppemY * 64.0)), 72, 72) != 0) {
        FT_Done_Face(face);
        return nullptr;
    }

    auto* f = new VxFontObject;
    f->face = face;
    f->ascent = int(std::lround(cellAscent * ppemY / units));
    if (cellRequest > 0) {
        // A cell height asked for is the cell height given, whatever the rounding of its parts.
        f->descent = std::max(0, cellRequest - f->ascent);
    } else {
        f->descent = int(std::lround(cellDescent * ppemY / units));
    }
    f->internalLeading = std::max(0, f->ascent + f->descent - int(std::lround(ppemY)));
    f->aveCharWidth = std::max(1, int(std::lround(avgWidth * ppemX / units)));
    f->maxCharWidth = std::max(
        f->aveCharWidth, int(std::lround((face->bbox.xMax - face->bbox.xMin) * ppemX / units)));
    f->weight = weight;
    f->italic = italic != 0;
    f->underline = underline != 0;
    f->strikeOut = strikeOut != 0;
    const bool faceBold = match.bold || (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    const bool faceItalic = match.italic || (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
    f->syntheticBold = weight >= FW_SEMIBOLD && !faceBold;
    f->syntheticItalic = f->italic && !faceItalic;
    f->antialias = (quality & 0xFF) != NONANTIALIASED_QUALITY;
    f->charset = BYTE(charset);
    f->pitchAndFamily = BYTE(pitchAndFamily);
    f->faceName = faceName ? faceName : "";
    f->path = match.path;
    return f;
}

HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strikeOut, DWORD charset, DWORD outPrecision,
                  DWORD clipPrecision, DWORD quality, DWORD pitchAndFamily,
                  const wchar_t* faceName) {
    const std::string name = CString(faceName).ToUtf8();
    return CreateFontA(height, width, escapement, orientation, weight, italic, underline, strikeOut,
                       charset, outPrecision, clipPrecision, quality, pitchAndFamily,
                       faceName ? name.c_str() : nullptr);
}

CFont::~CFont() {
    DeleteObject();
}

BOOL CFont::CreateFontA(int height, int width, int escapement, int orientation, int weight,
                        BYTE italic, BYTE underline, BYTE strikeOut, BYTE charset,
                        BYTE outPrecision, BYTE clipPrecision, BYTE quality, BYTE pitchAndFamily,
                        const char* faceName) {
    if (m_hObject) {
        return FALSE;
    }
    m_hObject =
        ::CreateFontA(height, width, escapement, orientation, weight, italic, underline, strikeOut,
                      charset, outPrecision, clipPrecision, quality, pitchAndFamily, faceName);
    return m_hObject ? TRUE : FALSE;
}

BOOL CFont::CreateFontW(int height, int width, int escapement, int orientation, int weight,
                        BYTE italic, BYTE underline, BYTE strikeOut, BYTE charset,
                        BYTE outPrecision, BYTE clipPrecision, BYTE quality, BYTE pitchAndFamily,
                        const wchar_t* faceName) {
    if (m_hObject) {
        return FALSE;
    }
    m_hObject =
        ::CreateFontW(height, width, escapement, orientation, weight, italic, underline, strikeOut,
                      charset, outPrecision, clipPrecision, quality, pitchAndFamily, faceName);
    return m_hObject ? TRUE : FALSE;
}

BOOL CFont::DeleteObject() {
    if (!m_hObject) {
        return FALSE;
    }
    const BOOL ok = ::DeleteObject(m_hObject);
    m_hObject = nullptr;
    return ok;
}

BOOL CFont::Attach(HFONT font) {
    if (m_hObject || !font) {
        return FALSE;
    }
    m_hObject = font;
    return TRUE;
}

HFONT CFont::Detach() {
    HFONT f = m_hObject;
    m_hObject = nullptr;
    return f;
}

HFONT CFont::StockFont() {
    static HFONT stock = [] {
        HFONT f = ::CreateFontA(kDefaultCellHeight, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0,
                                0, DEFAULT_QUALITY, VARIABLE_PITCH | FF_SWISS, "sans-serif");
        if (f) {
            f->stock = true;
        }
        return f;
    }();
    return stock;
}

bool CFont::GetMetrics(HFONT font, TEXTMETRICW* tm) {
    if (!font || !tm) {
        return false;
    }
    *tm = TEXTMETRICW{};
    tm->tmAscent = font->ascent;
    tm->tmDescent = font->descent;
    tm->tmHeight = font->ascent + font->descent;
    tm->tmInternalLeading = font->internalLeading;
    tm->tmAveCharWidth = font->aveCharWidth;
    tm->tmMaxCharWidth = font->maxCharWidth;
    tm->tmWeight = font->weight;
    tm->tmDigitizedAspectX = 96;
    tm->tmDigitizedAspectY = 96;
    tm->tmFirstChar = L' ';
    tm->tmLastChar = wchar_t(0xFFFF);
    tm->tmDefaultChar = L'?';
    tm->tmBreakChar = L' ';
    tm->tmItalic = font->italic ? 1 : 0;
    tm->tmUnderlined = font->underline ? 1 : 0;
    tm->tmStruckOut = font->strikeOut ? 1 : 0;
    tm->tmPitchAndFamily = font->pitchAndFamily;
    tm->tmCharSet = font->charset;
    return true;
}

bool CFont::MeasureText(HFONT font, const wchar_t* text, int length, SIZE* size) {
    if (!font || !size) {
        return false;
    }
    size->cx = 0;
    size->cy = font->ascent + font->descent;
    if (!text) {
        return length <= 0;
    }
    for (int i = 0; i < length; ++i) {
        if (LoadGlyph(*font, text[i], false)) {
            size->cx += Advance(font->face->glyph);
        }
    }
    return true;
}

void CFont::RenderText(HFONT font, const wchar_t* text, int length, int x, int y,
                       const std::function<void(int, int, int)>& plot) {
    if (!font || !text || length <= 0) {
        return;
    }
    const int baseline = y + font->ascent;
    int pen = x;
    for (int i = 0; i < length; ++i) {
        if (!LoadGlyph(*font, text[i], true)) {
            continue;
        }
        const FT_GlyphSlot slot = font->face->glyph;
        const FT_Bitmap& bm = slot->bitmap;
        const bool mono = bm.pixel_mode == FT_PIXEL_MODE_MONO;
        if ((bm.pixel_mode == FT_PIXEL_MODE_GRAY || mono) && bm.buffer) {
            const int left = pen + slot->bitmap_left;
            const int top = baseline - slot->bitmap_top;
            const int absPitch = bm.pitch < 0 ? -bm.pitch : bm.pitch;
            for (unsigned r = 0; r < bm.rows; ++r) {
                const unsigned char* row =
                    bm.buffer + size_t(bm.pitch >= 0 ? r : bm.rows - 1 - r) * size_t(absPitch);
                for (unsigned c = 0; c < bm.width; ++c) {
                    int coverage = mono ? ((row[c >> 3] >> (7 - (c & 7))) & 1) * 255 : row[c];
                    if (!font->antialias) {
                        coverage = coverage >= 128 ? 255 : 0;
                    }
                    if (coverage > 0) {
                        plot(left + int(c), top + int(r), coverage);
                    }
                }
            }
        }
        pen += Advance(slot);
    }
}
