// VxFontOutlines: glyphs as filled outlines in GL display lists, for text that lives in model
// space and must scale, turn and hide behind teeth like any other geometry. Each character's
// FreeType outline is flattened, tessellated with the GLU tessellator and compiled into one
// display list that ends by moving the pen to the next character, so a string is drawn by
// glCallLists alone. The em square is 1.0: a 1-unit scale gives letters about one model unit high.
// The face comes from a font made through VxFontResolver (CFont's face); its pixel size does not
// matter, outlines are read in font units.
#pragma once

#include <interfaces/VxGdi.h>

struct FT_FaceRec_;

struct POINTFLOAT {
    float x = 0.0f;
    float y = 0.0f;
};

// Glyph measures in em units: ink box, ink origin (left, top) and pen advance.
struct GLYPHMETRICSFLOAT {
    float gmfBlackBoxX = 0.0f;
    float gmfBlackBoxY = 0.0f;
    POINTFLOAT gmfptGlyphOrigin;
    float gmfCellIncX = 0.0f;
    float gmfCellIncY = 0.0f;
};

constexpr int WGL_FONT_LINES = 0;
constexpr int WGL_FONT_POLYGONS = 1;

class VxFontOutlines {
public:
    // Compiles `count` characters from `first` into lists listBase, listBase + 1, ... (the lists
    // must exist, from glGenLists). deviation is the largest chord error of curve flattening in em
    // units (0 or less: a fine default); extrusion is not supported and ignored (flat glyphs);
    // format WGL_FONT_POLYGONS fills, WGL_FONT_LINES draws the outline loops. metrics, when not
    // null, gets `count` entries. A missing glyph still gets a list with its advance (the face's
    // missing-glyph box). False, with nothing compiled, for a null face or one without outlines
    // (bitmap fonts).
    static bool UseFontOutlines(FT_FaceRec_* face, unsigned long first, unsigned long count,
                                unsigned listBase, float deviation, float extrusion, int format,
                                GLYPHMETRICSFLOAT* metrics, bool embolden = false);
};
