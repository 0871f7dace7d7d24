// RenderV1: the gap editor's image textures and the keyed image quad.
#include <shader/RenderV1.h>

#include <shader/Shader.h>

#include <GL/glew.h>

#include <glm/gtc/matrix_transform.hpp>

#include <array>
#include <iostream>

void RenderV1::PrepareDrawcreatemodify() {
    if (editorTexturesMade) {
        return;
    }
    editorTexturesMade = true;
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (auto& entry : editorImages) {
        NuPngImage& image = entry.second;
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        if (!image.pixels) {
            // The texture stays without an image, and the element draws black.
            std::cout << "Failed to load texture" << std::endl;
        } else {
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, image.width, image.height, 0, GL_RGB,
                         GL_UNSIGNED_BYTE, image.pixels);
            glGenerateMipmap(GL_TEXTURE_2D);
        }
        image.texture = texture;
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

void RenderV1::DrawQuadrangle3forPng(Enumerationofpng image, CPoint a, CPoint b, CPoint c, CPoint d,
                                     float z, glm::vec3 color, float width, float height,
                                     float nearPlane, float farPlane) {
    PrepareDrawcreatemodify();
    Shader* shader = KeptProgram(Kept_QuadrTextureForPng);
    shader->use();
    shader->setMat4("projection", glm::ortho(0.0f, width, height, 0.0f, nearPlane, farPlane));
    shader->setMat4("view", glm::mat4(1.0f));
    shader->setMat4("model", glm::mat4(1.0f));
    // Declared by the program and not read: the keyed white shows what is behind instead.
    shader->setVec3("backgroundColor", color);
    const auto found = editorImages.find(image);
    const GLuint texture = found != editorImages.end() ? found->second.texture : 0;
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glUniform1i(glGetUniformLocation(shader->program, "atexture"), 0);

    // The program flips v, so the image's top row lies along a-b.
    const auto vertex = [z](const CPoint& p, float u, float v) {
        return std::array<float, 5>{static_cast<float>(p.x), static_cast<float>(p.y), z, u, v};
    };
    const std::array<float, 5> corners[6] = {vertex(a, 0, 1), vertex(b, 1, 1), vertex(c, 1, 0),
                                             vertex(a, 0, 1), vertex(c, 1, 0), vertex(d, 0, 0)};
    // The key works through alpha, so blending is on for this draw alone: text drawn before
    // leaves it off.
    const GLboolean blendWasOn = glIsEnabled(GL_BLEND);
    GLint src = GL_ONE, dst = GL_ZERO, srcAlpha = GL_ONE, dstAlpha = GL_ZERO;
    glGetIntegerv(GL_BLEND_SRC_RGB, &src);
    glGetIntegerv(GL_BLEND_DST_RGB, &dst);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &srcAlpha);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &dstAlpha);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    GLuint vao = 0;
    GLuint vbo = 0;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &vbo);
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, sizeof(corners), corners, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 5 * sizeof(float), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 5 * sizeof(float),
                          reinterpret_cast<void*>(3 * sizeof(float)));
    glDrawArrays(GL_TRIANGLES, 0, 6);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &vbo);
    glDeleteVertexArrays(1, &vao);
    glUseProgram(0);
    glBindTexture(GL_TEXTURE_2D, 0);

    glBlendFuncSeparate(src, dst, srcAlpha, dstAlpha);
    if (!blendWasOn) {
        glDisable(GL_BLEND);
    }
}
