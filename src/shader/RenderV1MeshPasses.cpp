// RenderV1: the mesh passes. Vertex buffers are this file's own (not the VxVBOHandle buffers of
// the fixed path, which edges and points still use): one interleaved, unindexed buffer per mesh,
// three vertices a face, kept in the caches until a rebuild or ClearMapofVBOID.
//
// Kept on purpose, as the renderer has always behaved: the immediate draw compiles its program
// at every call (and, for a gum, leaks the first program it made); the textured gum uploads both
// images at every draw; coloured triangles are cached by their first float only; ClearMapofVBOID
// leaves the gum buffers alone.
#include <shader/RenderV1.h>

#include <GL/glew.h>

#include <frame/NuRenderStatus.h>
#include <frame/OpenGLVersion.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTooth.h>
#include <aux/VxAuxObject.h>
#include <overlays/VxCacheStuff.h>
#include <shader/NuVertexDataBuilder.h>
#include <shader/NuViewTransforms.h>
#include <shader/Shader.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

constexpr GLbitfield kLimitedAttribs = 0x6000; // enable, colour buffer
constexpr int kPlainFloats = 7;
constexpr int kGumFloats = 17;
constexpr int kTriColorFloats = 6;

VxMesh* MeshOf(VxEntity* entity) {
    return dynamic_cast<VxMesh*>(entity);
}

// Attribute `location` of `size` floats at `offset` floats into a vertex of `stride` floats.
void Attribute(GLuint location, int size, int stride, int offset) {
    glVertexAttribPointer(location, size, GL_FLOAT, GL_FALSE,
                          static_cast<GLsizei>(stride * sizeof(float)),
                          reinterpret_cast<void*>(static_cast<size_t>(offset) * sizeof(float)));
    glEnableVertexAttribArray(location);
}

// Position, normal and grade; the gum buffer read with its own stride through the same three.
void PlainLayout(int stride) {
    Attribute(0, 3, stride, 0);
    Attribute(1, 3, stride, 3);
    Attribute(2, 1, stride, 6);
}

void GumLayout() {
    PlainLayout(kGumFloats);
    Attribute(3, 2, kGumFloats, 7);
    Attribute(4, 2, kGumFloats, 9);
    Attribute(5, 3, kGumFloats, 11);
    Attribute(6, 3, kGumFloats, 14);
}

GLuint Upload(const std::vector<float>& data) {
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(float)), data.data(),
                 GL_STATIC_DRAW);
    return buffer;
}

// Plain layout of any mesh; a tooth's grades from its own shape.
std::vector<float> PlainData(VxMesh* mesh) {
    if (auto* tooth = dynamic_cast<VxTooth*>(mesh)) {
        NuVertexDataBuilder builder;
        const std::vector<float> order = builder.VxToothOrderMap(tooth);
        return NuVertexDataBuilder::PlainVertexData(mesh, &order);
    }
    return NuVertexDataBuilder::PlainVertexData(mesh, nullptr);
}

// A gum's buffer in the gum layout; any other mesh's too, untextured.
std::vector<float> GumData(VxMesh* mesh) {
    NuVertexDataBuilder builder;
    NuVertexDataBuilder::FaceTexCoords coords;
    if (auto* gum = dynamic_cast<VxGum*>(mesh)) {
        coords = builder.VxGumTexCoordBuilder(gum);
    }
    std::vector<float> data;
    if (!NuVertexDataBuilder::GumVertexData(mesh, coords, data)) {
        // For good: from now on every gum takes the untextured branch.
        OpenGLVersion::GetInstance()->Set_textured(false);
    }
    return data;
}

// Sum over the first two families' bands of x + y + z of the middle face's second vertex: two gums
// of one face count but another shape (an edited gum) get different keys.
double ShapeChecksum(const VxGum* gum) {
    double sum = 0.0;
    for (int family = 0; family < 2; ++family) {
        const std::vector<int>& starts = gum->GetBandStartFaces(family);
        const std::vector<int>& ends = gum->GetBandEndFaces(family);
        for (size_t i = 0; i < starts.size() && i < ends.size(); ++i) {
            const VxFace* face = gum->GetFace((starts[i] + ends[i]) / 2);
            const VxVertex* v = face != nullptr ? gum->GetVertex(face->GetVtxId(1)) : nullptr;
            if (v != nullptr) {
                sum += v->GetPos()[0] + v->GetPos()[1] + v->GetPos()[2];
            }
        }
    }
    return sum;
}

// A new texture from an RGB image, mip-mapped, left unbound; a missing image prints `message`
// and leaves the texture empty.
GLuint GumTexture(const unsigned char* pixels, int width, int height, const char* message) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (pixels != nullptr) {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, pixels);
        glGenerateMipmap(GL_TEXTURE_2D);
    } else {
        std::cout << message << std::endl;
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

} // namespace

void RenderV1::PreparingVertexData(VxEntity* entity) {
    VxMesh* mesh = MeshOf(entity);
    faceCount = mesh != nullptr ? mesh->GetFaceCount() : 0;
    const std::pair<VxEntity*, int> key(entity, faceCount);
    NuRenderStatus* status = NuRenderStatus::GetInstance();
    auto it = mapOfVBOID.find(key);
    if (it != mapOfVBOID.end() && !status->Get_bIsUpdateVBO()) {
        glBindBuffer(GL_ARRAY_BUFFER, it->second.buffer);
        return;
    }
    if (it != mapOfVBOID.end()) {
        glDeleteBuffers(1, &it->second.buffer);
    }
    // A gum gets the gum layout here as well, so the one-colour gum draw reads it with the gum
    // stride; everything else the plain layout.
    const GLuint buffer =
        Upload(entity != nullptr && entity->GetObjectType() == ObjectType_Gum ? GumData(mesh)
                                                                              : PlainData(mesh));
    mapOfVBOID[key] = NuMeshBuffer{buffer, entity, faceCount};
    if (entity != nullptr && (entity->GetObjectType() == ObjectType_Gum ||
                              entity->GetObjectType() == ObjectType_Tooth)) {
        status->Set_bIsUpdateVBO(false);
    }
}

void RenderV1::PreparingVertexDataforGum(VxEntity* entity) {
    VxMesh* mesh = MeshOf(entity);
    faceCount = mesh != nullptr ? mesh->GetFaceCount() : 0;
    const VxGum* gum = dynamic_cast<const VxGum*>(mesh);
    const auto key = std::make_tuple(entity, faceCount, gum != nullptr ? ShapeChecksum(gum) : 0.0);
    NuRenderStatus* status = NuRenderStatus::GetInstance();
    auto it = mapOfGumVBO.find(key);
    if (it != mapOfGumVBO.end() &&
        (OpenGLVersion::GetInstance()->Getmy_exe_type() == 4 || !status->Get_bIsUpdateVBO())) {
        glBindBuffer(GL_ARRAY_BUFFER, it->second.buffer);
        return;
    }
    if (it != mapOfGumVBO.end()) {
        glDeleteBuffers(1, &it->second.buffer);
    }
    const GLuint buffer = Upload(GumData(mesh));
    mapOfGumVBO[key] = NuMeshBuffer{buffer, entity, faceCount};
    if (entity != nullptr && (entity->GetObjectType() == ObjectType_Gum ||
                              entity->GetObjectType() == ObjectType_Tooth)) {
        status->Set_bIsUpdateVBO(false);
    }
}

void RenderV1::DrawWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material,
                                          glm::mat4 matrix) {
    if (MeshOf(entity) == nullptr) {
        return;
    }
    PreparingVertexData(entity);
    Shader* shader =
        CompileCurrentMeshShader(material.backAndFront, entity->GetObjectType() == ObjectType_Gum);
    shader->use();
    PreparingDataForShader(material, matrix);
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    PlainLayout(kPlainFloats);
    glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
    glUseProgram(0);
    shader->deleteProgram();
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vao);
}

void RenderV1::DrawGumWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material,
                                             glm::mat4 matrix) {
    if (MeshOf(entity) == nullptr) {
        return;
    }
    PreparingVertexDataforGum(entity);
    if (!OpenGLVersion::GetInstance()->Get_textured()) {
        Shader* shader = KeptProgram(Kept_Mesh);
        shader->use();
        PreparingDataForShader(shader, material, matrix);
        GLuint vao = 0;
        glGenVertexArrays(1, &vao);
        glBindVertexArray(vao);
        PlainLayout(kGumFloats);
        glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
        glUseProgram(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindVertexArray(0);
        glDeleteVertexArrays(1, &vao);
        return;
    }
    Shader* shader = KeptProgram(Kept_Gum);
    shader->use();
    // Uploaded for this draw only: the images are small and stay in memory.
    GLuint textures[2] = {
        GumTexture(gumImagePixels, gumImageWidth, gumImageHeight, "Failed to load texture"),
        GumTexture(gumBumpPixels, gumBumpWidth, gumBumpHeight, "Failed to load texture2")};
    PreparingDataForShader(shader, material, matrix);
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    GumLayout();
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, textures[0]);
    glUniform1i(glGetUniformLocation(shader->program, "ourTexture"), 0);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, textures[1]);
    glUniform1i(glGetUniformLocation(shader->program, "bumpTexture"), 1);
    glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vao);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(2, textures);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void RenderV1::DrawGumSelectedWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material,
                                                     glm::mat4 matrix) {
    if (MeshOf(entity) == nullptr) {
        return;
    }
    // A gum's buffer in this cache has the gum layout too (see PreparingVertexData).
    PreparingVertexData(entity);
    Shader* shader = KeptProgram(Kept_Mesh);
    shader->use();
    PreparingDataForShader(shader, material, matrix);
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    PlainLayout(kGumFloats);
    glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vao);
}

void RenderV1::SendMaterialMatrix(VxEntity* entity, NuRenderMaterial material, glm::mat4 matrix,
                                  bool limited, const VxMatrix* xform) {
    if (MeshOf(entity) == nullptr) {
        return;
    }
    objectQueue.push_back(NuDrawItem{entity, xform, material, matrix, limited});
    PreparingVertexData(entity);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void RenderV1::SendAttachMaterialMatrix(VxEntity* entity, NuRenderMaterial material,
                                        glm::mat4 matrix, bool limited, const VxMatrix* xform) {
    if (MeshOf(entity) == nullptr) {
        return;
    }
    attachQueue.push_back(NuDrawItem{entity, xform, material, matrix, limited});
    PreparingVertexData(entity);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void RenderV1::SendWithMaterialWithMatrixTriandColor(float* data, int triangles, glm::mat4 matrix) {
    triColorQueue.push_back(NuTriColorItem{data, triangles, matrix});
}

void RenderV1::DrawWithMaterialWithMatrixTriandColor(float* data, int triangles, glm::mat4 matrix) {
    if (data == nullptr || triangles <= 0) {
        return;
    }
    faceCount = triangles;
    const std::vector<float> copy(data,
                                  data + static_cast<size_t>(triangles) * 3 * kTriColorFloats);
    auto it = mapOfTriColorVBO.find(data[0]);
    int drawable = triangles;
    if (it == mapOfTriColorVBO.end()) {
        const GLuint buffer = Upload(copy);
        mapOfTriColorVBO[data[0]] = NuMeshBuffer{buffer, nullptr, triangles};
    } else {
        // The first float is the whole key: a block that shares it draws the cached data, never
        // more triangles than that buffer holds.
        glBindBuffer(GL_ARRAY_BUFFER, it->second.buffer);
        drawable = std::min(triangles, it->second.faceCount);
    }
    Shader* shader = KeptProgram(Kept_TriAndColor);
    shader->use();
    const NuViewTransforms transforms;
    shader->setMat4("projection", transforms.projection);
    shader->setMat4("model", transforms.model * matrix);
    shader->setMat4("view", transforms.view);
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    Attribute(0, 3, kTriColorFloats, 0);
    Attribute(1, 3, kTriColorFloats, 3);
    glDrawArrays(GL_TRIANGLES, 0, drawable * 3);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    glDeleteVertexArrays(1, &vao);
}

void RenderV1::DrawQueue(const std::vector<NuDrawItem>& queue, Shader* shader, int stencil) {
    // The stencil value is set here rather than trusted from whichever drawer ran last, so the
    // feedback read finds the batch's kind. The solids go a little back in depth so the edges the
    // drawers drew before the batch (solid-with-edges) stay on top of their own faces.
    // Saved and put back by hand: Mesa (seen on llvmpipe) does not restore the stencil function
    // of an attribute push when a nested push (the limited items') was popped in between.
    GLint stencilFunc = GL_ALWAYS, stencilRef = 0, stencilMask = 0xFF;
    glGetIntegerv(GL_STENCIL_FUNC, &stencilFunc);
    glGetIntegerv(GL_STENCIL_REF, &stencilRef);
    glGetIntegerv(GL_STENCIL_VALUE_MASK, &stencilMask);
    const GLboolean offset = glIsEnabled(GL_POLYGON_OFFSET_FILL);
    glStencilFunc(GL_ALWAYS, stencil, 0xFF);
    glEnable(GL_POLYGON_OFFSET_FILL);
    shader->use();
    GLuint vao = 0;
    glGenVertexArrays(1, &vao);
    for (const NuDrawItem& item : queue) {
        if (item.limited) {
            glPushAttrib(kLimitedAttribs);
            glEnable(GL_COLOR_MATERIAL);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
            glEnable(GL_BLEND);
        }
        PreparingDataForShader(shader, item.material, item.matrix);
        VxMesh* mesh = MeshOf(item.entity);
        faceCount = mesh != nullptr ? mesh->GetFaceCount() : 0;
        // Sending built the buffer; a missing one is a programming error and throws.
        const NuMeshBuffer& buffer = mapOfVBOID.at(std::make_pair(item.entity, faceCount));
        glBindBuffer(GL_ARRAY_BUFFER, buffer.buffer);
        glBindVertexArray(vao);
        PlainLayout(kPlainFloats);
        glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
        glBindVertexArray(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        if (item.limited) {
            glPopAttrib();
        }
    }
    glUseProgram(0);
    glDeleteVertexArrays(1, &vao);
    if (!offset) {
        glDisable(GL_POLYGON_OFFSET_FILL);
    }
    glStencilFunc(static_cast<GLenum>(stencilFunc), stencilRef, static_cast<GLuint>(stencilMask));
}

void RenderV1::DrawGraphicObjects() {
    DrawQueue(objectQueue, KeptProgram(Kept_Tooth), 2);
    // Each tooth's own overlay objects (label, Facc curve, movement mark), inside its placement so
    // they move with it.
    for (const NuDrawItem& item : objectQueue) {
        if (item.xform != nullptr) {
            double m[16];
            item.xform->ToArray(m);
            glMatrixMode(GL_MODELVIEW);
            glPushMatrix();
            glMultMatrixd(m);
        }
        if (item.limited) {
            glPushAttrib(kLimitedAttribs);
            glEnable(GL_COLOR_MATERIAL);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
            glEnable(GL_BLEND);
            glPopAttrib();
        }
        std::vector<VxAuxObject*> stuff;
        if (auto* tooth = dynamic_cast<VxTooth*>(item.entity)) {
            VxCacheStuff::GetInstance()->GetDisplayStuffByTooth(tooth, stuff);
        }
        for (VxAuxObject* object : stuff) {
            object->Draw();
        }
        if (item.xform != nullptr) {
            glMatrixMode(GL_MODELVIEW);
            glPopMatrix();
        }
    }
}

void RenderV1::DrawGraphicAttachObjects() {
    DrawQueue(attachQueue, KeptProgram(Kept_Attach), 6);
}
