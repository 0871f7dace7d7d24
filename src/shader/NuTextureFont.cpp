#include <shader/NuTextureFont.h>

#include <GL/glew.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H

NuTextureFont::NuTextureFont(const char* path, int size_) : fontPath(path ? path : "") {
    if (FT_Init_FreeType(&library)) {
        library = nullptr;
    }
    SetSize(size_);
}

NuTextureFont::~NuTextureFont() {
    for (auto& entry : faces) {
        if (*entry.second) {
            FT_Done_Face(*entry.second);
        }
        delete entry.second;
    }
    if (library) {
        FT_Done_FreeType(library);
    }
}

void NuTextureFont::SetSize(int size_) {
    size = size_;
    auto face = faces.find(size);
    if (face == faces.end()) {
        FT_Face* handle = new FT_Face(nullptr);
        if (FT_New_Face(library, fontPath.c_str(), 0, handle)) {
            *handle = nullptr;
        }
        // FreeType answers a null face with an error code, so a missing font stops here.
        FT_Set_Char_Size(*handle, size << 6, size << 6, 72, 72);
        face = faces.emplace(size, handle).first;
    }
    currentFace = *face->second;
    current = &glyphsBySize[size];
}

void NuTextureFont::SetString(const wchar_t* text) {
    result.clear();
    if (!text) {
        return;
    }
    for (const wchar_t* c = text; *c; ++c) {
        result.push_back(GetCell(*c));
    }
}

NuGlyphCell* NuTextureFont::GetCell(wchar_t c) {
    NuGlyphCell* cell = &(*current)[c];
    if (!cell->IsEmpty() || !currentFace) {
        return cell;
    }
    const FT_UInt index = FT_Get_Char_Index(currentFace, static_cast<FT_ULong>(c));
    FT_Load_Glyph(currentFace, index, FT_LOAD_DEFAULT);
    FT_Glyph glyph = nullptr;
    if (FT_Get_Glyph(currentFace->glyph, &glyph)) {
        return cell;
    }
    if (FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1)) {
        FT_Done_Glyph(glyph);
        return cell;
    }
    const FT_BitmapGlyph bitmapGlyph = reinterpret_cast<FT_BitmapGlyph>(glyph);
    const FT_Bitmap& bitmap = bitmapGlyph->bitmap;
    const int width = static_cast<int>(bitmap.width);
    const int rows = static_cast<int>(bitmap.rows);
    if (width == 0 || rows == 0) {
        // A space: it moves the creation pen, which is all that marks the cell as made.
        penX += size / 2;
        cell->SetLeft(penX);
        cell->SetTop(penY);
        cell->SetRight(penX + width);
        cell->SetBottom(penY + rows);
        cell->SetBitmapLeft(0);
        cell->SetBitmapTop(0);
        cell->SetTexture(0);
        FT_Done_Glyph(glyph);
        return cell;
    }
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    cell->SetLeft(penX);
    cell->SetTop(penY);
    cell->SetRight(penX + width);
    cell->SetBottom(penY + rows);
    cell->SetBitmapLeft(bitmapGlyph->left);
    cell->SetBitmapTop(bitmapGlyph->top);
    cell->SetTexture(texture);
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // Rows are read at FreeType's pitch, which may pad beyond the width.
    const bool padded = bitmap.pitch != width;
    if (padded) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, bitmap.pitch);
    }
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, width, rows, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                 bitmap.buffer);
    if (padded) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    glBindTexture(GL_TEXTURE_2D, 0);
    // penX stays where it is: only spaces move it.
    FT_Done_Glyph(glyph);
    return cell;
}
