// RenderV1: glyph text. Three stores side by side: the ASCII store (narrow forms), the wide
// store (quads laid in model space) and the any-size NuTextureFont (screen-space labels). Every
// glyph is its own texture and its own draw call; labels are short, so no atlas is kept.
#include <shader/RenderV1.h>

#include <mesh/VxDrawerFiles.h>
#include <platform/VxFileSystem.h>
#include <shader/NuTextureFont.h>
#include <shader/NuViewTransforms.h>
#include <shader/Shader.h>

#include <GL/glew.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H

#include <glm/gtc/matrix_transform.hpp>

#include <iostream>

namespace {

// Blending as a text draw found it, put back when the draw ends: text is laid over whatever the
// frame drew and must not change how later draws blend.
class BlendGuard {
public:
    BlendGuard() {
        enabled = glIsEnabled(GL_BLEND);
        glGetIntegerv(GL_BLEND_SRC_RGB, &srcRgb);
        glGetIntegerv(GL_BLEND_DST_RGB, &dstRgb);
        glGetIntegerv(GL_BLEND_SRC_ALPHA, &srcAlpha);
        glGetIntegerv(GL_BLEND_DST_ALPHA, &dstAlpha);
    }
    ~BlendGuard() {
        glBlendFuncSeparate(srcRgb, dstRgb, srcAlpha, dstAlpha);
        if (!enabled) {
            glDisable(GL_BLEND);
        }
    }
    BlendGuard(const BlendGuard&) = delete;
    BlendGuard& operator=(const BlendGuard&) = delete;

private:
    GLboolean enabled = GL_FALSE;
    GLint srcRgb = GL_ONE, dstRgb = GL_ZERO, srcAlpha = GL_ONE, dstAlpha = GL_ZERO;
};

// A single-channel (red) glyph texture from a FreeType bitmap, clamped and linearly filtered.
GLuint RedTexture(const FT_Bitmap& bitmap) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    const int width = static_cast<int>(bitmap.width);
    const bool padded = bitmap.pitch != width && bitmap.rows > 0;
    if (padded) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, bitmap.pitch);
    }
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RED, width, static_cast<int>(bitmap.rows), 0, GL_RED,
                 GL_UNSIGNED_BYTE, bitmap.buffer);
    if (padded) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

// One quad's array object and dynamic buffer: position (three floats) and texture coordinate
// (two), or four floats at attribute 0 alone for the flat form.
struct QuadBuffer {
    GLuint vao = 0;
    GLuint vbo = 0;
    QuadBuffer(GLsizeiptr bytes, bool positionAndCoordinate) {
        glGenVertexArrays(1, &vao);
        glGenBuffers(1, &vbo);
        glBindVertexArray(vao);
        glBindBuffer(GL_ARRAY_BUFFER, vbo);
        glBufferData(GL_ARRAY_BUFFER, bytes, nullptr, GL_DYNAMIC_DRAW);
        if (positionAndCoordinate) {
            glEnableVertexAttribArray(0);
            glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 5 * sizeof(float), nullptr);
            glEnableVertexAttribArray(1);
            glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 5 * sizeof(float),
                                  reinterpret_cast<void*>(3 * sizeof(float)));
        } else {
            glEnableVertexAttribArray(0);
            glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 4 * sizeof(float), nullptr);
        }
    }
    ~QuadBuffer() {
        glBindVertexArray(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glDeleteBuffers(1, &vbo);
        glDeleteVertexArrays(1, &vao);
    }
    QuadBuffer(const QuadBuffer&) = delete;
    QuadBuffer& operator=(const QuadBuffer&) = delete;
};

glm::vec3 ToVec3(const VxVector& v) {
    return glm::vec3(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]));
}

glm::vec3 ToVec3(const VxPoint& p) {
    return glm::vec3(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]));
}

// The six vertices of one glyph quad laid from corner p along `along` (width w) and `up`
// (height h): two triangles with the bitmap's top row at the top.
void UploadModelQuad(const glm::vec3& p, const glm::vec3& along, const glm::vec3& up, float w,
                     float h) {
    const glm::vec3 top = p + h * up;
    const glm::vec3 right = p + w * along;
    const glm::vec3 topRight = right + h * up;
    const float vertices[6][5] = {
        {top.x, top.y, top.z, 0.0f, 0.0f},       {p.x, p.y, p.z, 0.0f, 1.0f},
        {right.x, right.y, right.z, 1.0f, 1.0f}, {top.x, top.y, top.z, 0.0f, 0.0f},
        {right.x, right.y, right.z, 1.0f, 1.0f}, {topRight.x, topRight.y, topRight.z, 1.0f, 0.0f},
    };
    glBufferSubData(GL_ARRAY_BUFFER, 0, sizeof(vertices), vertices);
    glDrawArrays(GL_TRIANGLES, 0, 6);
}

} // namespace

void RenderV1::GenTextureFont() {
    const std::string path =
        VxFileSystem::ToNativePath(VxDrawerFiles::Path(L"\\default.ttf").Str().c_str());
    // A second window set-up replaces the store; the old one's faces go with it (its textures
    // belong to the old context and are left there).
    delete textureFont;
    textureFont = new NuTextureFont(path.c_str(), 16);
}

namespace {

// The ASCII store is completed on every narrow draw: characters that failed before are tried
// again, and each failure is reported again.
void FillAsciiStore(FT_Face face, std::map<char, Character>& store) {
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (int c = 0; c < 128; ++c) {
        if (store.count(static_cast<char>(c))) {
            continue;
        }
        if (FT_Load_Char(face, static_cast<FT_ULong>(c), FT_LOAD_RENDER)) {
            std::cout << "ERROR::FREETYTPE: Failed to load Glyph" << std::endl;
            continue;
        }
        const FT_GlyphSlot slot = face->glyph;
        Character ch;
        ch.textureID = RedTexture(slot->bitmap);
        ch.sizeX = static_cast<int>(slot->bitmap.width);
        ch.sizeY = static_cast<int>(slot->bitmap.rows);
        ch.bearingX = slot->bitmap_left;
        ch.bearingY = slot->bitmap_top;
        ch.advance = static_cast<unsigned int>(slot->advance.x);
        store[static_cast<char>(c)] = ch;
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

// Wide characters are keyed by their low 16 bits, the width of the host's wide character.
void FillWideStore(FT_Face face, const wchar_t* text, std::map<char16_t, Character>& store) {
    if (!face || !text) {
        return;
    }
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (const wchar_t* p = text; *p; ++p) {
        const char16_t key = static_cast<char16_t>(*p);
        if (store.count(key)) {
            continue;
        }
        const FT_UInt index = FT_Get_Char_Index(face, key);
        FT_Load_Glyph(face, index, FT_LOAD_DEFAULT);
        FT_Glyph glyph = nullptr;
        if (FT_Get_Glyph(face->glyph, &glyph)) {
            continue;
        }
        if (FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1)) {
            FT_Done_Glyph(glyph);
            continue;
        }
        const FT_BitmapGlyph bitmapGlyph = reinterpret_cast<FT_BitmapGlyph>(glyph);
        Character ch;
        ch.textureID = RedTexture(bitmapGlyph->bitmap);
        // Read and dropped: a failed upload leaves an empty texture, which draws nothing.
        (void)glGetError();
        ch.sizeX = static_cast<int>(bitmapGlyph->bitmap.width);
        ch.sizeY = static_cast<int>(bitmapGlyph->bitmap.rows);
        ch.bearingX = bitmapGlyph->left;
        ch.bearingY = bitmapGlyph->top;
        ch.advance = static_cast<unsigned int>(face->glyph->advance.x);
        store[key] = ch;
        FT_Done_Glyph(glyph);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

// The common start of the model-space forms: the narrow program with the view's matrices, and
// text colour and texture unit 0. (The 800 x 600 orthographic box these forms once drew in is
// no longer what their quads go through.)
void StartModelText(Shader* shader, const glm::vec3& color) {
    shader->use();
    const NuViewTransforms transforms;
    shader->setMat4("projection", transforms.projection);
    shader->setMat4("model", transforms.model);
    shader->setMat4("view", transforms.view);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    shader->setVec3("textColor", color);
    glActiveTexture(GL_TEXTURE0);
}

void EndText() {
    glUseProgram(0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

} // namespace

void RenderV1::RenderText(std::string text, float x, float y, float scale, glm::vec3 color) {
    FillAsciiStore(ftFace, asciiCharacters);
    BlendGuard blend;
    StartModelText(KeptProgram(Kept_Text), color);
    {
        QuadBuffer quad(6 * 4 * sizeof(float), false);
        for (char c : text) {
            const auto found = asciiCharacters.find(c);
            const Character ch = found != asciiCharacters.end() ? found->second : Character();
            const float xpos = x + ch.bearingX * scale;
            const float ypos = y - (ch.sizeY - ch.bearingY) * scale;
            const float w = ch.sizeX * scale;
            const float h = ch.sizeY * scale;
            const float vertices[6][4] = {
                {xpos, ypos + h, 0.0f, 0.0f}, {xpos, ypos, 0.0f, 1.0f},
                {xpos + w, ypos, 1.0f, 1.0f}, {xpos, ypos + h, 0.0f, 0.0f},
                {xpos + w, ypos, 1.0f, 1.0f}, {xpos + w, ypos + h, 1.0f, 0.0f},
            };
            glBindTexture(GL_TEXTURE_2D, ch.textureID);
            glBufferSubData(GL_ARRAY_BUFFER, 0, sizeof(vertices), vertices);
            glDrawArrays(GL_TRIANGLES, 0, 6);
            x += (ch.advance >> 6) * scale;
        }
    }
    EndText();
}

void RenderV1::RenderText(VxPoint origin, VxPoint alongEnd, VxPoint upEnd, VxPoint upStart,
                          std::string text, float /*a*/, float /*b*/, float scale,
                          glm::vec3 color) {
    FillAsciiStore(ftFace, asciiCharacters);
    BlendGuard blend;
    StartModelText(KeptProgram(Kept_Text), color);
    const glm::vec3 along = ToVec3(alongEnd - origin);
    const glm::vec3 up = ToVec3(upEnd - upStart);
    glm::vec3 pen = ToVec3(origin);
    {
        QuadBuffer quad(6 * 5 * sizeof(float), true);
        for (char c : text) {
            const auto found = asciiCharacters.find(c);
            const Character ch = found != asciiCharacters.end() ? found->second : Character();
            const glm::vec3 p(ch.bearingX * scale + pen.x, pen.y - (ch.sizeY - ch.bearingY) * scale,
                              pen.z);
            glBindTexture(GL_TEXTURE_2D, ch.textureID);
            UploadModelQuad(p, along, up, ch.sizeX * scale, ch.sizeY * scale);
            pen += static_cast<float>(ch.advance >> 6) * scale * along;
        }
    }
    EndText();
}

void RenderV1::RenderText2(VxPoint origin, VxPoint alongEnd, VxPoint upEnd, VxPoint upStart,
                           const wchar_t* text, float /*a*/, float /*b*/, float scale,
                           glm::vec3 color) {
    if (!text) {
        return;
    }
    FillWideStore(ftFace, text, wideCharacters);
    BlendGuard blend;
    StartModelText(KeptProgram(Kept_Text), color);
    const glm::vec3 along = ToVec3(alongEnd - origin);
    const glm::vec3 up = ToVec3(upEnd - upStart);
    glm::vec3 pen = ToVec3(origin);
    {
        QuadBuffer quad(6 * 5 * sizeof(float), true);
        for (const wchar_t* c = text; *c; ++c) {
            const auto found = wideCharacters.find(static_cast<char16_t>(*c));
            const Character ch = found != wideCharacters.end() ? found->second : Character();
            const glm::vec3 p(ch.bearingX * scale + pen.x, pen.y - (ch.sizeY - ch.bearingY) * scale,
                              pen.z);
            glBindTexture(GL_TEXTURE_2D, ch.textureID);
            UploadModelQuad(p, along, up, ch.sizeX * scale, ch.sizeY * scale);
            pen += static_cast<float>(ch.advance >> 6) * scale * along;
        }
    }
    EndText();
}

void RenderV1::RenderText2New(VxPoint origin, VxVector alongIn, VxVector upIn, const wchar_t* text,
                              float scale, glm::vec3 color, bool positiveUp, float widthFactor,
                              float vectorFactor, float /*unused*/, float distanceDivisor) {
    if (!text) {
        return;
    }
    FillWideStore(ftFace, text, wideCharacters);
    BlendGuard blend;
    StartModelText(KeptProgram(Kept_Text), color);
    const glm::vec3 along = ToVec3(alongIn * vectorFactor);
    const glm::vec3 up = ToVec3(upIn * vectorFactor);
    const float sign = positiveUp ? 1.0f : -1.0f;
    const glm::vec3 v = glm::normalize(up * sign) / vectorFactor / distanceDivisor;
    // Three lines, each from its own anchor: characters 0-6 above the origin, 7-12 just below,
    // the rest further down. A line starts at its anchor whatever the line before it did.
    const glm::vec3 o = ToVec3(origin);
    glm::vec3 pens[3] = {o + v, o + v * -0.5f, o + v * -2.0f};
    {
        QuadBuffer quad(6 * 5 * sizeof(float), true);
        int i = 0;
        for (const wchar_t* c = text; *c; ++c, ++i) {
            glm::vec3& pen = pens[i < 7 ? 0 : (i <= 12 ? 1 : 2)];
            const auto found = wideCharacters.find(static_cast<char16_t>(*c));
            const Character ch = found != wideCharacters.end() ? found->second : Character();
            // Lifted a little off the plane the label lies on, so the plane does not hide it.
            const glm::vec3 p(ch.bearingX * scale + pen.x, pen.y - (ch.sizeY - ch.bearingY) * scale,
                              pen.z + 0.001f);
            glBindTexture(GL_TEXTURE_2D, ch.textureID);
            UploadModelQuad(p, along, sign * up, ch.sizeX * scale * widthFactor, ch.sizeY * scale);
            pen += static_cast<float>(ch.advance >> 6) * scale * along;
        }
    }
    EndText();
}

void RenderV1::RenderText3(CPoint position, float z, const wchar_t* text, glm::vec3 color,
                           float orthoWidth, float orthoHeight, float orthoNear, float orthoFar,
                           int pixelSize, int charsPerLine) {
    // No background loaded yet means no store: the label is simply not drawn.
    if (!textureFont || !text) {
        return;
    }
    Shader* shader = KeptProgram(Kept_TextChinese);
    shader->use();
    // Window pixels, y down.
    const glm::mat4 projection =
        glm::ortho(0.0f, orthoWidth, orthoHeight, 0.0f, orthoNear, orthoFar);
    shader->setMat4("projection", projection);
    shader->setMat4("view", glm::mat4(1.0f));
    shader->setMat4("model", glm::mat4(1.0f));
    textureFont->SetSize(pixelSize);
    textureFont->SetString(text);

    // Blending ends switched off, whatever it was before: the editor draws its image quads
    // after the labels and switches it on for itself. The blend factors are put back.
    GLint src = GL_ONE, dst = GL_ZERO, srcAlpha = GL_ONE, dstAlpha = GL_ZERO;
    glGetIntegerv(GL_BLEND_SRC_RGB, &src);
    glGetIntegerv(GL_BLEND_DST_RGB, &dst);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &srcAlpha);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &dstAlpha);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    {
        QuadBuffer quad(4 * 5 * sizeof(float), true);
        shader->setVec3("textColor", color);
        glUniform1i(glGetUniformLocation(shader->program, "text"), 0);
        glActiveTexture(GL_TEXTURE0);

        float x = static_cast<float>(position.x);
        float y = static_cast<float>(position.y);
        const std::vector<NuGlyphCell*>& cells = textureFont->result;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const int index = static_cast<int>(i);
            if (charsPerLine > 0 && index >= charsPerLine && index % charsPerLine == 0) {
                x = static_cast<float>(position.x);
                y += static_cast<float>(pixelSize + 3);
            }
            const NuGlyphCell& cell = *cells[i];
            const float h =
                static_cast<float>(static_cast<int>(cell.Bottom()) - static_cast<int>(cell.Top()));
            const float w =
                static_cast<float>(static_cast<int>(cell.Right()) - static_cast<int>(cell.Left()));
            const float yo = h - static_cast<float>(cell.BitmapTop());
            const float vertices[4][5] = {
                {x, y - h + yo, z, 0.0f, 0.0f},
                {x + w, y - h + yo, z, 1.0f, 0.0f},
                {x + w, y + yo, z, 1.0f, 1.0f},
                {x, y + yo, z, 0.0f, 1.0f},
            };
            glBindTexture(GL_TEXTURE_2D, cell.Texture());
            glBufferSubData(GL_ARRAY_BUFFER, 0, sizeof(vertices), vertices);
            glDrawArrays(GL_QUADS, 0, 4);
            // A glyph moves the pen by its bearing and width only, so a space adds nothing:
            // the editor's labels are written without spaces.
            x += static_cast<float>(cell.BitmapLeft()) + w;
        }
        glUseProgram(0);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glBlendFuncSeparate(src, dst, srcAlpha, dstAlpha);
    glDisable(GL_BLEND);
}
