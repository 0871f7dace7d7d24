// RenderV1: screen-space and model-space primitives, and the placement tests of the gap editor.
// Every primitive makes its own array object and buffer, draws once and deletes them; the editor
// draws a few dozen a frame, so nothing is cached.
#include <shader/RenderV1.h>

#include <interfaces/VxFrame.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <shader/NuViewTransforms.h>
#include <shader/Shader.h>
#include <views/VxViewRegion.h>

#include <GL/glew.h>

#include <glm/gtc/matrix_transform.hpp>

#include <cmath>
#include <initializer_list>
#include <vector>

namespace {

// A point held at the centre of the dentition: editor elements behind it are hidden.
const VxPoint kReferencePoint(-0.58, -3.18, 2.96);

glm::vec3 ToVec3(const VxPoint& p) {
    return glm::vec3(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]));
}

glm::vec3 ToVec3(const CPoint& p, float z) {
    return glm::vec3(static_cast<float>(p.x), static_cast<float>(p.y), z);
}

// Clip coordinates of a model point under the current view.
glm::vec4 Clip(const NuViewTransforms& t, const VxPoint& p) {
    return t.projection * t.view * t.model * glm::vec4(ToVec3(p), 1.0f);
}

// Window pixels with y down in a width x height box, the screen family's projection.
void SetScreenMatrices(Shader* shader, float width, float height, float nearPlane, float farPlane) {
    shader->setMat4("projection", glm::ortho(0.0f, width, height, 0.0f, nearPlane, farPlane));
    shader->setMat4("view", glm::mat4(1.0f));
    shader->setMat4("model", glm::mat4(1.0f));
}

void SetViewMatrices(Shader* shader) {
    const NuViewTransforms t;
    shader->setMat4("projection", t.projection);
    shader->setMat4("model", t.model);
    shader->setMat4("view", t.view);
}

// Uploads `floats` and draws them with `components` floats of position at attribute 0 and, when
// `colourComponents` is 3, a colour after it at attribute 1; then deletes everything.
void DrawOnce(const float* floats, int vertexCount, int colourComponents, GLenum mode) {
    const int stride = 3 + colourComponents;
    GLuint vao = 0;
    GLuint vbo = 0;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &vbo);
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, vertexCount * stride * sizeof(float), floats, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride * sizeof(float), nullptr);
    if (colourComponents) {
        glEnableVertexAttribArray(1);
        glVertexAttribPointer(1, colourComponents, GL_FLOAT, GL_FALSE, stride * sizeof(float),
                              reinterpret_cast<void*>(3 * sizeof(float)));
    }
    glDrawArrays(mode, 0, vertexCount);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &vbo);
    glDeleteVertexArrays(1, &vao);
    glUseProgram(0);
}

void DrawColouredLine(const glm::vec3& a, const glm::vec3& b, const glm::vec3& colour) {
    const float vertices[12] = {a.x, a.y, a.z, colour.r, colour.g, colour.b,
                                b.x, b.y, b.z, colour.r, colour.g, colour.b};
    DrawOnce(vertices, 2, 3, GL_LINES);
}

void DrawPositions(const std::initializer_list<glm::vec3>& points, GLenum mode) {
    std::vector<float> floats;
    floats.reserve(points.size() * 3);
    for (const glm::vec3& p : points) {
        floats.insert(floats.end(), {p.x, p.y, p.z});
    }
    DrawOnce(floats.data(), static_cast<int>(points.size()), 0, mode);
}

} // namespace

void RenderV1::DrawLine(VxPoint a, VxPoint b) {
    Shader* shader = KeptProgram(Kept_Billboard);
    shader->use();
    SetViewMatrices(shader);
    // The colour is whatever the billboard program last drew with.
    DrawPositions({ToVec3(a), ToVec3(b)}, GL_LINES);
}

void RenderV1::DrawLineNew(VxPoint a, VxPoint b, VxColor color) {
    Shader* shader = KeptProgram(Kept_Line);
    shader->use();
    SetViewMatrices(shader);
    const glm::vec3 colour(color.GetR() / 255.0f, color.GetG() / 255.0f, color.GetB() / 255.0f);
    DrawColouredLine(ToVec3(a), ToVec3(b), colour);
}

void RenderV1::DrawQuadrangle(VxPoint a, VxPoint b, VxPoint c, VxPoint d) {
    Shader* shader = KeptProgram(Kept_Billboard);
    shader->use();
    SetViewMatrices(shader);
    DrawPositions({ToVec3(a), ToVec3(b), ToVec3(c), ToVec3(a), ToVec3(c), ToVec3(d)}, GL_TRIANGLES);
}

void RenderV1::DrawLine3(CPoint a, CPoint b, float z, glm::vec3 color, float width, float height,
                         float nearPlane, float farPlane) {
    Shader* shader = KeptProgram(Kept_Line);
    shader->use();
    SetScreenMatrices(shader, width, height, nearPlane, farPlane);
    DrawColouredLine(ToVec3(a, z), ToVec3(b, z), color);
}

void RenderV1::DrawTriangle3(CPoint a, CPoint b, CPoint c, float z, glm::vec3 color, float width,
                             float height, float nearPlane, float farPlane) {
    Shader* shader = KeptProgram(Kept_Billboard);
    shader->use();
    SetScreenMatrices(shader, width, height, nearPlane, farPlane);
    shader->setVec3("backgroundColor", color);
    DrawPositions({ToVec3(a, z), ToVec3(b, z), ToVec3(c, z)}, GL_TRIANGLES);
}

void RenderV1::DrawQuadrangle3(CPoint a, CPoint b, CPoint c, CPoint d, float z, glm::vec3 color,
                               float width, float height, float nearPlane, float farPlane) {
    Shader* shader = KeptProgram(Kept_Billboard);
    shader->use();
    SetScreenMatrices(shader, width, height, nearPlane, farPlane);
    shader->setVec3("backgroundColor", color);
    DrawPositions(
        {ToVec3(a, z), ToVec3(b, z), ToVec3(c, z), ToVec3(a, z), ToVec3(c, z), ToVec3(d, z)},
        GL_TRIANGLES);
}

void RenderV1::SendBillBoard(VxPoint a, VxPoint b, CString text) {
    billboardQueue.push_back(NuBillboardItem{a, b, text});
}

void RenderV1::DrawBillBoard(VxPoint, VxPoint, CString) {
    // Left to the host: the 3D billboard draws itself through the primitives and text forms.
}

void RenderV1::DrawGraphicBillBoard3d() {
    Shader* shader = KeptProgram(Kept_Billboard);
    shader->use();
    const NuViewTransforms t;
    shader->setMat4("projection", t.projection);
    shader->setMat4("model", t.model);
    shader->setMat4("view", t.view);
    // The queued labels are placed, and drawn by the billboard objects themselves; the queue
    // only records what was sent.
    for (const NuBillboardItem& item : billboardQueue) {
        (void)Clip(t, item.first);
        (void)Clip(t, item.second);
    }
    glUseProgram(0);
}

CPoint RenderV1::Divider(CPoint p, int n) {
    // Callers never divide by zero; should one, the point comes back as it was rather than the
    // process ending on an integer division fault.
    if (n == 0) {
        return p;
    }
    return CPoint(p.x / n, p.y / n);
}

CPoint RenderV1::Multiplyer(CPoint p, int n) {
    return CPoint(p.x * n, p.y * n);
}

bool RenderV1::DisplayJudge(VxViewRegion* region, VxPoint p) {
    if (!region) {
        return false;
    }
    const NuViewTransforms t;
    return !(Clip(t, kReferencePoint).z < Clip(t, p).z);
}

bool RenderV1::DisplayJudgeforgap(VxViewRegion* region, VxPoint p, bool upper) {
    if (!region) {
        return false;
    }
    // Both jaws' gaps are measured against the upper jaw's frame; without it there is no plane
    // to hide behind, and nothing shows.
    const VxJaw* jaw = theModel ? theModel->GetJaw(true) : nullptr;
    if (!jaw) {
        return false;
    }
    const VxFrame& frame = jaw->GetFrame();
    const VxVector& d = frame.DirZ();
    VxPoint reference = frame.GetOrigin();
    const double shift = upper ? 15.0 : -15.0;
    if (d[2] > 0.8 && d[1] < 0.5) {
        reference[2] += shift;
    } else {
        reference[1] += shift;
    }
    const NuViewTransforms t;
    return !(Clip(t, reference).z < Clip(t, p).z);
}

VxPoint RenderV1::ChangePoint(VxViewRegion* region, VxPoint base, VxPoint p) {
    if (!region) {
        return p;
    }
    // Measured in clip coordinates, before any perspective division: in the orthographic views
    // the editor works in, that is the view's -1..1 box.
    const NuViewTransforms t;
    const glm::vec4 cb = Clip(t, base);
    const glm::vec4 cp = Clip(t, p);
    const float extents[4] = {std::fabs(cb.x), std::fabs(cb.y), std::fabs(cp.x), std::fabs(cp.y)};
    double factor = 1.0;
    bool changed = false;
    // Each extent beyond 75% of the view pulls in on its own, and the pulls multiply.
    for (float e : extents) {
        if (e > 0.75f) {
            factor = factor * 0.75 / e;
            changed = true;
        }
    }
    if (!changed) {
        return p;
    }
    if (factor < 0.2) {
        factor = 0.2;
    }
    return base + (p - base) * factor;
}
