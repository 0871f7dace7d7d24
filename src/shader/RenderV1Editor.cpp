// RenderV1: the in-view gap editor, drawn and picked.
#include <shader/RenderV1.h>

#include <gapeditor/GumGapGraphicsObject.h>
#include <gapeditor/ModelCreateModify.h>
#include <shader/NuEditorSize.h>
#include <shader/NuGapCardLayout.h>
#include <shader/NuTextureFont.h>
#include <shader/NuViewTransforms.h>
#include <shader/Shader.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

// The editor's line green, and the state colours of arrows and list rows.
const VxColor kLeaderGreen(2, 187, 112, 100);
const glm::vec3 kArrowNormal(64 / 255.0f, 120 / 255.0f, 187 / 255.0f);
const glm::vec3 kArrowHover(2 / 255.0f, 187 / 255.0f, 112 / 255.0f);
const glm::vec3 kArrowDisabled(187 / 255.0f, 187 / 255.0f, 187 / 255.0f);
const glm::vec3 kWhite(1.0f, 1.0f, 1.0f);
const glm::vec3 kBlack(0.0f, 0.0f, 0.0f);
const glm::vec3 kGapCard(220 / 255.0f, 232 / 255.0f, 248 / 255.0f);
const glm::vec3 kGapBorder(64 / 255.0f, 120 / 255.0f, 187 / 255.0f);
const glm::vec3 kRowNormal(240 / 255.0f, 240 / 255.0f, 240 / 255.0f);
const glm::vec3 kRowHover(120 / 255.0f, 187 / 255.0f, 240 / 255.0f);

glm::vec3 Code(int element, int id, int row) {
    return glm::vec3(element / 255.0f, id / 255.0f, row / 255.0f);
}

// The box the screen forms draw in: the whole window's pixels, z midway in the frustum.
struct ScreenBox {
    float width = 1.0f;
    float height = 1.0f;
    float nearPlane = 0.1f;
    float farPlane = 1000.0f;
    float z = 0.0f;
};

ScreenBox MakeScreenBox(VxViewRegion* region) {
    ScreenBox box;
    int w = 0, h = 0;
    VxViewManager::GetInstance()->GetTotalViewSize(w, h);
    box.width = static_cast<float>(w > 0 ? w : region->Width());
    box.height = static_cast<float>(h > 0 ? h : region->Height());
    if (const VxCamera* camera = region->GetCamera()) {
        double l, r, b, t, n, f;
        camera->GetFrustum(l, r, b, t, n, f);
        box.nearPlane = static_cast<float>(n);
        box.farPlane = static_cast<float>(f);
    }
    box.z = -(box.nearPlane + box.farPlane) / 2.0f;
    return box;
}

glm::vec4 Clip(const NuViewTransforms& t, const VxPoint& p) {
    return t.projection * t.view * t.model *
           glm::vec4(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]),
                     1.0f);
}

// A model point in window pixels, y down.
CPoint ToPixel(const VxPoint& p, const ScreenBox& box) {
    const NuViewTransforms t;
    glm::vec4 c = Clip(t, p);
    if (c.w != 0.0f) {
        c /= c.w;
    }
    return CPoint(static_cast<int>(std::lround((c.x + 1.0f) * 0.5f * box.width)),
                  static_cast<int>(std::lround((1.0f - c.y) * 0.5f * box.height)));
}

NuGapCardLayout MakeLayout(const VxPoint& changed, VxViewRegion* region, const ScreenBox& box,
                           bool wide) {
    const NuEditorSize size(region, 1.0f, 1.0f, 0.8f);
    return NuGapCardLayout(ToPixel(changed, box), size.halfX * region->Width() / 2.0,
                           size.halfY * region->Height() / 2.0, wide);
}

glm::vec3 ArrowColour(Enumerationofpng element) {
    switch (element) {
    case PngBtnUpHover:
    case PngBtnDownHover:
        return kArrowHover;
    case PngBtnUpDisabled:
    case PngBtnDownDisabled:
        return kArrowDisabled;
    default:
        return kArrowNormal;
    }
}

// The rows of a list: (text, hovered) for each.
std::vector<std::pair<std::wstring, bool>> ListRows(Enumerationofpng element, int first,
                                                    int second) {
    const std::wstring a = std::to_wstring(first);
    const std::wstring b = std::to_wstring(second);
    switch (element) {
    case PngListAdd:
    case PngListAddRow1:
    case PngListAddRow2:
        return {{L"在" + a + L"与" + b + L"之间增加片切", element == PngListAddRow1},
                {L"增加" + a + L"与" + b + L"之间的间隙", element == PngListAddRow2}};
    case PngListReduction:
    case PngListReductionRow:
        return {{L"去除" + a + L"和" + b + L"之间的片切", element == PngListReductionRow}};
    case PngListGap:
    case PngListGapRow:
        return {{L"去除" + a + L"和" + b + L"之间的间隙", element == PngListGapRow}};
    default:
        return {};
    }
}

// Buffers and state a pass changes, put back at its end.
class EditorStateGuard {
public:
    EditorStateGuard() {
        depth = glIsEnabled(GL_DEPTH_TEST);
        cull = glIsEnabled(GL_CULL_FACE);
        blend = glIsEnabled(GL_BLEND);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_ACTIVE_TEXTURE, &activeTexture);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_CULL_FACE);
    }
    ~EditorStateGuard() {
        Set(GL_DEPTH_TEST, depth);
        Set(GL_CULL_FACE, cull);
        Set(GL_BLEND, blend);
        glUseProgram(static_cast<GLuint>(program));
        glActiveTexture(static_cast<GLenum>(activeTexture));
    }

private:
    static void Set(GLenum cap, GLboolean on) {
        if (on) {
            glEnable(cap);
        } else {
            glDisable(cap);
        }
    }
    GLboolean depth = GL_FALSE;
    GLboolean cull = GL_FALSE;
    GLboolean blend = GL_FALSE;
    GLint program = 0;
    GLint activeTexture = GL_TEXTURE0;
};

void DrawQuadBuffer(const float* data, int vertices, int floatsPerVertex, bool textured) {
    GLuint vao = 0;
    GLuint vbo = 0;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &vbo);
    glBindVertexArray(vao);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, vertices * floatsPerVertex * sizeof(float), data, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, floatsPerVertex * sizeof(float), nullptr);
    if (textured) {
        glEnableVertexAttribArray(1);
        glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, floatsPerVertex * sizeof(float),
                              reinterpret_cast<void*>(3 * sizeof(float)));
    }
    glDrawArrays(GL_TRIANGLES, 0, vertices);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &vbo);
    glDeleteVertexArrays(1, &vao);
}

} // namespace

void RenderV1::EditorQuad(VxPoint anchor, VxViewRegion* region, Enumerationofpng element,
                          float sizeX, float sizeY, bool lift, VxPoint corners[4]) {
    const NuViewTransforms t;
    const glm::mat4 T = t.projection * t.view * t.model;
    const glm::mat4 Tinv = glm::inverse(T);
    const NuEditorSize size(region, sizeX, sizeY);
    const float hx = static_cast<float>(size.halfX);
    const float hy = static_cast<float>(size.halfY);
    glm::vec4 c = T * glm::vec4(static_cast<float>(anchor[0]), static_cast<float>(anchor[1]),
                                static_cast<float>(anchor[2]), 1.0f);
    switch (element) {
    case PngBtnUpNormal:
    case PngBtnUpHover:
        c.x += lift ? 0.0f : 6.0f * hx;
        c.y += 3.0f * hy;
        c.z -= 0.001f;
        break;
    case PngBtnDownNormal:
    case PngBtnDownHover:
        c.x += lift ? 0.0f : 6.0f * hx;
        c.y -= 3.0f * hy;
        c.z -= 0.001f;
        break;
    case PngBtnLockNormal:
    case PngBtnLockHover:
    case PngBtnUnlockNormal:
    case PngBtnUnlockHover:
        c.y += 4.5f * hy;
        break;
    case PngBtnAddNormal:
    case PngBtnAddHover:
    case PngBtnDelNormal:
    case PngBtnDelHover:
        c.z -= 0.2f;
        break;
    case PngListBackground:
        c.y -= 1.5f * hy;
        c.z += 0.001f;
        break;
    default:
        break;
    }
    // Top-left, top-right, bottom-right, bottom-left in clip space, back to the model.
    const float dx[4] = {-hx, hx, hx, -hx};
    const float dy[4] = {hy, hy, -hy, -hy};
    for (int i = 0; i < 4; ++i) {
        glm::vec4 m = Tinv * glm::vec4(c.x + dx[i] * c.w, c.y + dy[i] * c.w, c.z, c.w);
        if (m.w != 0.0f) {
            m /= m.w;
        }
        corners[i] = VxPoint(m.x, m.y, m.z);
    }
}

void RenderV1::Drawcreatemodify(VxPoint anchor, VxViewRegion* region, Enumerationofpng element,
                                float sizeX, float sizeY, bool centred, bool lift) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    PrepareDrawcreatemodify();
    Shader* shader = KeptProgram(Kept_QuadrTexture);
    shader->use();
    const NuViewTransforms t;
    shader->setMat4("projection", t.projection);
    shader->setMat4("model", t.model);
    shader->setMat4("view", t.view);
    const auto found = editorImages.find(element);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, found != editorImages.end() ? found->second.texture : 0);
    glUniform1i(glGetUniformLocation(shader->program, "atexture"), 0);

    VxPoint q[4];
    EditorQuad(anchor, region, element, sizeX, sizeY, lift, q);
    float u0 = 0.0f, u1 = 1.0f, v0 = 0.0f, v1 = 1.0f;
    if (centred) {
        // The middles of the sides, over half the image.
        const VxPoint m[4] = {q[0] + (q[1] - q[0]) * 0.5, q[1] + (q[2] - q[1]) * 0.5,
                              q[2] + (q[3] - q[2]) * 0.5, q[3] + (q[0] - q[3]) * 0.5};
        for (int i = 0; i < 4; ++i) {
            q[i] = m[i];
        }
        u1 = 0.5f;
        v1 = 0.5f;
    }
    const auto v = [&](int i, float u, float w) {
        return std::array<float, 5>{static_cast<float>(q[i][0]), static_cast<float>(q[i][1]),
                                    static_cast<float>(q[i][2]), u, w};
    };
    // The image's top row along the top edge (the program flips v).
    const std::array<float, 5> data[6] = {v(0, u0, v1), v(1, u1, v1), v(2, u1, v0),
                                          v(0, u0, v1), v(2, u1, v0), v(3, u0, v0)};
    DrawQuadBuffer(data[0].data(), 6, 5, true);
    glUseProgram(0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void RenderV1::DrawSelectioncreatemodify(VxPoint anchor, VxViewRegion* region, int id,
                                         Enumerationofpng element, float sizeX, float sizeY,
                                         bool lift) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    Shader* shader = KeptProgram(Kept_QuadrSelection);
    shader->use();
    const NuViewTransforms t;
    shader->setMat4("projection", t.projection);
    shader->setMat4("model", t.model);
    shader->setMat4("view", t.view);
    shader->setVec3("codecolor", Code(element, id, 0));
    VxPoint q[4];
    EditorQuad(anchor, region, element, sizeX, sizeY, lift, q);
    float data[18];
    const int order[6] = {0, 1, 2, 0, 2, 3};
    for (int i = 0; i < 6; ++i) {
        for (int k = 0; k < 3; ++k) {
            data[i * 3 + k] = static_cast<float>(q[order[i]][k]);
        }
    }
    DrawQuadBuffer(data, 6, 3, false);
    glUseProgram(0);
}

void RenderV1::DrawcreatemodifyforDisplay(VxPoint anchor, VxPoint changed, VxViewRegion* region,
                                          Enumerationofpng element, float sizeX, float, bool first,
                                          bool, float value) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    if (!textureFont) {
        GenTextureFont();
    }
    const ScreenBox box = MakeScreenBox(region);
    DrawLineNew(anchor, changed, kLeaderGreen);
    if (element != PngStepNormal && element != PngGapCard) {
        return;
    }
    const bool reduction = element == PngStepNormal;
    const NuGapCardLayout layout = MakeLayout(changed, region, box, sizeX > 1.5f || !first);
    const auto& c = layout.card;
    DrawQuadrangle3(c[0], c[1], c[2], c[3], box.z, reduction ? kWhite : kGapCard, box.width,
                    box.height, box.nearPlane, box.farPlane);
    const glm::vec3 border =
        reduction ? glm::vec3(kLeaderGreen.GetR() / 255.0f, kLeaderGreen.GetG() / 255.0f,
                              kLeaderGreen.GetB() / 255.0f)
                  : kGapBorder;
    for (int i = 0; i < 4; ++i) {
        DrawLine3(c[i], c[(i + 1) % 4], box.z, border, box.width, box.height, box.nearPlane,
                  box.farPlane);
    }
    // The value goes last, over everything of the card.
    const std::wstring text = NuGapCardLayout::ValueText(value);
    RenderText3(layout.textOrigin, box.z, text.c_str(), kBlack, box.width, box.height,
                box.nearPlane, box.farPlane, 24, 14);
}

void RenderV1::DrawEditorCardPart(VxPoint changed, VxViewRegion* region, int id,
                                  Enumerationofpng element, bool wide, bool pick) {
    const ScreenBox box = MakeScreenBox(region);
    const NuGapCardLayout layout = MakeLayout(changed, region, box, wide);
    switch (element) {
    case PngBtnUpNormal:
    case PngBtnUpHover:
    case PngBtnUpDisabled:
    case PngBtnDownNormal:
    case PngBtnDownHover:
    case PngBtnDownDisabled: {
        const bool up =
            element == PngBtnUpNormal || element == PngBtnUpHover || element == PngBtnUpDisabled;
        const auto& t = up ? layout.upTriangle : layout.downTriangle;
        DrawTriangle3(t[0], t[1], t[2], box.z, pick ? Code(element, id, 0) : ArrowColour(element),
                      box.width, box.height, box.nearPlane, box.farPlane);
        break;
    }
    case PngBtnLockNormal:
    case PngBtnLockHover:
    case PngBtnUnlockNormal:
    case PngBtnUnlockHover: {
        const auto& l = layout.lock;
        if (pick) {
            DrawQuadrangle3(l[0], l[1], l[2], l[3], box.z, Code(element, id, 0), box.width,
                            box.height, box.nearPlane, box.farPlane);
        } else {
            DrawQuadrangle3forPng(element, l[0], l[1], l[2], l[3], box.z, kWhite, box.width,
                                  box.height, box.nearPlane, box.farPlane);
        }
        break;
    }
    default:
        break;
    }
}

void RenderV1::DrawEditorList(VxPoint changed, VxViewRegion* region, int id,
                              Enumerationofpng element, bool wide, int firstTooth, int secondTooth,
                              bool pick) {
    const std::vector<std::pair<std::wstring, bool>> rows =
        ListRows(element, firstTooth, secondTooth);
    if (rows.empty()) {
        return;
    }
    if (!pick && !textureFont) {
        GenTextureFont();
    }
    const ScreenBox box = MakeScreenBox(region);
    const NuGapCardLayout layout = MakeLayout(changed, region, box, wide);
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto r = layout.Row(static_cast<int>(i));
        if (pick) {
            DrawQuadrangle3(r[0], r[1], r[2], r[3], box.z,
                            Code(element, id, i == 0 ? PngRowFirst : PngRowSecond), box.width,
                            box.height, box.nearPlane, box.farPlane);
            continue;
        }
        DrawQuadrangle3(r[0], r[1], r[2], r[3], box.z, rows[i].second ? kRowHover : kRowNormal,
                        box.width, box.height, box.nearPlane, box.farPlane);
        DrawLine3(r[3], r[2], box.z, kArrowDisabled, box.width, box.height, box.nearPlane,
                  box.farPlane);
        RenderText3(CPoint(r[0].x + 6, r[0].y + 18), box.z, rows[i].first.c_str(), kBlack,
                    box.width, box.height, box.nearPlane, box.farPlane,
                    NuGapCardLayout::kRowPixelSize, NuGapCardLayout::kRowCharsPerLine);
    }
}

void RenderV1::DrawcreatemodifyforDisplayforPng(VxPoint, VxPoint changed, VxViewRegion* region,
                                                Enumerationofpng element, float, float, bool,
                                                bool second, float, int firstTooth,
                                                int secondTooth) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    if (element >= PngListAdd && element <= PngListGapRow) {
        DrawEditorList(changed, region, 0, element, !second, firstTooth, secondTooth, false);
    } else {
        DrawEditorCardPart(changed, region, 0, element, !second, false);
    }
}

void RenderV1::DrawSelectioncreatemodifyforDisplayforPng(VxPoint, VxPoint changed,
                                                         VxViewRegion* region, int id,
                                                         Enumerationofpng element, float, float,
                                                         bool, bool second, float, int firstTooth,
                                                         int secondTooth) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    if (element >= PngListAdd && element <= PngListGapRow) {
        DrawEditorList(changed, region, id, element, !second, firstTooth, secondTooth, true);
    } else {
        DrawEditorCardPart(changed, region, id, element, !second, true);
    }
}

void RenderV1::WalkEditor(VxViewRegion* region, bool pick) {
    ModelCreateModify* model = ModelCreateModify::getInstance();
    struct OpenList {
        VxPoint anchor;
        VxPoint changed;
        int id;
        Enumerationofpng element;
        bool first;
        float value;
        int firstId;
        int secondId;
    };
    std::vector<OpenList> lists;
    const auto walk = [&](const std::vector<GumGapGraphicsObject>& records, int idBase,
                          bool upper) {
        const int count =
            std::min(static_cast<int>(records.size()), ModelCreateModify::kMaxRecordsPerJaw);
        for (int i = 0; i < count; ++i) {
            const GumGapGraphicsObject& r = records[i];
            if (r.points.size() < 4) {
                continue;
            }
            const int id = idBase + i;
            if (!DisplayJudge(region, r.points[2])) {
                continue;
            }
            const bool near = DisplayJudgeforgap(region, r.points[0], upper);
            const VxPoint changed = ChangePoint(region, r.points[0], r.points[3]);
            if (near && r.buttonState >= 1 && r.buttonState <= 4) {
                const auto element = static_cast<Enumerationofpng>(10 + r.buttonState);
                if (pick) {
                    DrawSelectioncreatemodify(r.points[0], region, id, element, 0.1f, 0.1f, false);
                } else {
                    Drawcreatemodify(r.points[0], region, element, 0.1f, 0.1f, false, false);
                }
            }
            bool first = false;
            if (r.cardState == 1 || r.cardState == 2) {
                first = r.cardState == 1;
                const Enumerationofpng card = first ? PngStepNormal : PngGapCard;
                if (pick) {
                    const ScreenBox box = MakeScreenBox(region);
                    const auto c = MakeLayout(changed, region, box, !first).card;
                    DrawQuadrangle3(c[0], c[1], c[2], c[3], box.z, Code(card, id, 0), box.width,
                                    box.height, box.nearPlane, box.farPlane);
                } else {
                    DrawcreatemodifyforDisplay(r.points[1], changed, region, card,
                                               first ? 1.0f : 2.0f, 1.0f, first, false, r.value);
                }
            } else {
                // No card and no arrows; an add list opened from the button is still shown,
                // where the card would stand.
                if (r.listState >= 2 && r.listState <= 4) {
                    lists.push_back({r.points[1], changed, id,
                                     static_cast<Enumerationofpng>(50 + r.listState), true, r.value,
                                     r.firstId, r.secondId});
                }
                continue;
            }
            const auto part = [&](int state, int base, int states) {
                if (state < 1 || state > states) {
                    return;
                }
                const auto element = static_cast<Enumerationofpng>(base + state - 1);
                if (pick) {
                    DrawSelectioncreatemodifyforDisplayforPng(r.points[1], changed, region, id,
                                                              element, 1.0f, 1.0f, false, first,
                                                              r.value, r.firstId, r.secondId);
                } else {
                    DrawcreatemodifyforDisplayforPng(r.points[1], changed, region, element, 1.0f,
                                                     1.0f, false, first, r.value, r.firstId,
                                                     r.secondId);
                }
            };
            // Up: 31, 32, 35; down: 33, 34, 36.
            if (r.upState == 3) {
                part(1, PngBtnUpDisabled, 1);
            } else {
                part(r.upState, PngBtnUpNormal, 2);
            }
            if (r.downState == 3) {
                part(1, PngBtnDownDisabled, 1);
            } else {
                part(r.downState, PngBtnDownNormal, 2);
            }
            part(r.lockState, PngBtnLockNormal, 4);
            if (r.listState >= 2 && r.listState <= 8) {
                lists.push_back({r.points[1], changed, id,
                                 static_cast<Enumerationofpng>(50 + r.listState), first, r.value,
                                 r.firstId, r.secondId});
            }
        }
    };
    if (model->GetupGumIsVisible()) {
        walk(model->GetUpGumGapGraphicsObjects(), 0, true);
    }
    if (model->GetdownGumIsVisible()) {
        walk(model->GetDownGumGapGraphicsObjects(), ModelCreateModify::kMaxRecordsPerJaw, false);
    }
    // Open lists over every card, in both passes.
    for (const OpenList& l : lists) {
        if (pick) {
            DrawSelectioncreatemodifyforDisplayforPng(l.anchor, l.changed, region, l.id, l.element,
                                                      1.0f, 1.0f, true, l.first, l.value, l.firstId,
                                                      l.secondId);
        } else {
            DrawcreatemodifyforDisplayforPng(l.anchor, l.changed, region, l.element, 1.0f, 1.0f,
                                             true, l.first, l.value, l.firstId, l.secondId);
        }
    }
}

void RenderV1::Drawcreatemodify(VxViewRegion* region) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    if (!ModelCreateModify::getInstance()->GetIsShowIPR()) {
        return;
    }
    PrepareDrawcreatemodify();
    const EditorStateGuard guard;
    WalkEditor(region, false);
}

unsigned char* RenderV1::ObjectSelected(VxViewRegion* region, int x, int y) {
    if (!region) {
        return nullptr;
    }
    pickResult[0] = pickResult[1] = pickResult[2] = pickResult[3] = 0;
    const int width = region->Width();
    const int height = region->Height();
    if (width <= 0 || height <= 0) {
        return pickResult;
    }
    GLint oldFramebuffer = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &oldFramebuffer);
    GLuint framebuffer = 0;
    GLuint renderbuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);

    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
        GLfloat clear[4];
        glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
        glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glClearColor(clear[0], clear[1], clear[2], clear[3]);
        GLint viewport[4] = {0, 0, width, height};
        glGetIntegerv(GL_VIEWPORT, viewport);
        // The last thing a frame draws may have left a small viewport (the axis cross's); the
        // codes are laid over the whole region, as the visible pass laid the elements.
        glViewport(0, 0, width, height);
        // Codes must reach the buffer untouched.
        const GLboolean dither = glIsEnabled(GL_DITHER);
        glDisable(GL_DITHER);
        {
            const EditorStateGuard guard;
            glDisable(GL_BLEND);
            if (ModelCreateModify::getInstance()->GetIsOnCreateModified()) {
                WalkEditor(region, true);
            }
        }
        if (dither) {
            glEnable(GL_DITHER);
        }
        GLint packAlignment = 4;
        glGetIntegerv(GL_PACK_ALIGNMENT, &packAlignment);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        const int readY = height - y;
        if (x >= 0 && x < width && readY >= 0 && readY < height) {
            glReadPixels(x, readY, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pickResult);
        }
        glPixelStorei(GL_PACK_ALIGNMENT, packAlignment);
        glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(oldFramebuffer));
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteRenderbuffers(1, &renderbuffer);
    glDisable(GL_DEPTH_TEST);
    return pickResult;
}
