#include "VxCliEditorSample.h"

#include <GL/glew.h>

#include <shader/RenderV1.h>

namespace {

// The editor's box: z midway between near and far, as its cards are drawn.
constexpr float kNear = 0.1f;
constexpr float kFar = 100.0f;
constexpr float kZ = -(kNear + kFar) / 2.0f;

} // namespace

void VxCliDrawEditorSample(int width, int height) {
    RenderV1* r = RenderV1::GetInstance();
    const float w = static_cast<float>(width);
    const float h = static_cast<float>(height);
    // Over the whole picture, on top of the model.
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const GLboolean depth = glIsEnabled(GL_DEPTH_TEST);
    glViewport(0, 0, width, height);
    glDisable(GL_DEPTH_TEST);

    const glm::vec3 white(1.0f, 1.0f, 1.0f);
    const glm::vec3 black(0.0f, 0.0f, 0.0f);
    // The editor's line green and a light hover blue.
    const glm::vec3 green(2 / 255.0f, 187 / 255.0f, 112 / 255.0f);
    const glm::vec3 hover(187 / 255.0f, 215 / 255.0f, 245 / 255.0f);

    const auto card = [&](CPoint c, const wchar_t* value) {
        const CPoint a(c.x - 24, c.y - 16), b(c.x + 24, c.y - 16), d(c.x + 24, c.y + 16),
            e(c.x - 24, c.y + 16);
        r->DrawQuadrangle3(a, b, d, e, kZ, white, w, h, kNear, kFar);
        r->DrawLine3(a, b, kZ, green, w, h, kNear, kFar);
        r->DrawLine3(b, d, kZ, green, w, h, kNear, kFar);
        r->DrawLine3(d, e, kZ, green, w, h, kNear, kFar);
        r->DrawLine3(e, a, kZ, green, w, h, kNear, kFar);
        // The value 8 pixels left of and 4 below the centre, at 24 pixels.
        r->RenderText3(CPoint(c.x - 8, c.y + 4), kZ, value, black, w, h, kNear, kFar, 24, 14);
    };
    const auto row = [&](int top, const wchar_t* text, const glm::vec3& background) {
        r->DrawQuadrangle3(CPoint(16, top), CPoint(226, top), CPoint(226, top + 24),
                           CPoint(16, top + 24), kZ, background, w, h, kNear, kFar);
        r->RenderText3(CPoint(22, top + 18), kZ, text, black, w, h, kNear, kFar, 16, 12);
    };
    card(CPoint(44, height - 96), L".3");
    card(CPoint(104, height - 96), L"1.2");
    // Rows A and B of the list for the gap between teeth 11 and 21.
    row(height - 68, L"在11与21之间增加片切", white);
    row(height - 44, L"增加11与21之间的间隙", hover);

    if (depth) {
        glEnable(GL_DEPTH_TEST);
    }
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
}
