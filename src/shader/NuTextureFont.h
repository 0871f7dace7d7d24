// NuTextureFont: the any-size glyph store of screen-space text. It keeps one FreeType face per
// pixel size and, per size, one cell per character with its own GL texture (alpha only). Faces
// are opened when a size is first asked for; cells are made when a character is first asked for
// at the current size and kept for the life of the object, so a second SetSize to a size already
// seen makes nothing new. Making the object makes no GL call; GetCell and SetString need a current
// context. A font file that could not be opened leaves a null face: its cells stay empty and the
// text does not appear.
#pragma once

#include <shader/NuGlyphCell.h>

#include <map>
#include <string>
#include <vector>

typedef struct FT_LibraryRec_* FT_Library;
typedef struct FT_FaceRec_* FT_Face;

class NuTextureFont {
public:
    NuTextureFont(const char* path, int size);
    // Closes the faces and the library. The textures are left alone: they belong to a context
    // that may already be gone.
    ~NuTextureFont();
    NuTextureFont(const NuTextureFont&) = delete;
    NuTextureFont& operator=(const NuTextureFont&) = delete;

    void SetSize(int size);
    // The cells of `text`, up to its terminating zero, into `result`.
    void SetString(const wchar_t* text);
    // The cell of `c` at the current size, made on first use.
    NuGlyphCell* GetCell(wchar_t c);

    std::vector<NuGlyphCell*> result;
    std::map<wchar_t, NuGlyphCell>* current = nullptr;
    std::map<int, FT_Face*> faces;
    std::map<int, std::map<wchar_t, NuGlyphCell>> glyphsBySize;
    FT_Library library = nullptr;
    FT_Face currentFace = nullptr;
    int penY = 0;
    int penX = 0;
    int size = 0;
    // Carried along with the store; nothing reads it.
    const int unusedFourteen = 14;
    std::string fontPath;
};
