// VxAuxBillBoard3d: placement in clip space, the leader, plate and text, and the plate hit.
#include <aux/VxAuxBillBoard3d.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <shader/NuViewTransforms.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <glm/glm.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {

constexpr double kLimit = 0.75;    // the plate stays within this share of the view
constexpr double kMinShrink = 0.2; // near the edges it shrinks to a fifth at most
constexpr double kMaxScale = 0.035615;
// Size class of an 800-pixel view at the largest scale: labels there are drawn at full size.
constexpr double kFullSize = 4000.0 / 800.0 * kMaxScale;

struct Clip {
    double m[16];
    double p[16];
    GLint vp[4];
    void Read() {
        glGetDoublev(GL_MODELVIEW_MATRIX, m);
        glGetDoublev(GL_PROJECTION_MATRIX, p);
        glGetIntegerv(GL_VIEWPORT, vp);
    }
    // Normalised device coordinates of a model point.
    void Ndc(const VxPoint& q, double out[3]) const {
        double e[4];
        for (int r = 0; r < 4; ++r) {
            e[r] = m[r] * q[0] + m[4 + r] * q[1] + m[8 + r] * q[2] + m[12 + r];
        }
        double c[4];
        for (int r = 0; r < 4; ++r) {
            c[r] = p[r] * e[0] + p[4 + r] * e[1] + p[8 + r] * e[2] + p[12 + r] * e[3];
        }
        const double w = std::abs(c[3]) > 1e-12 ? c[3] : 1e-12;
        out[0] = c[0] / w;
        out[1] = c[1] / w;
        out[2] = c[2] / w;
    }
    double EyeY(const VxPoint& q) const { return m[1] * q[0] + m[5] * q[1] + m[9] * q[2] + m[13]; }
    double EyeZ(const VxPoint& q) const { return m[2] * q[0] + m[6] * q[1] + m[10] * q[2] + m[14]; }
    // Window pixels (y up) of an NDC point, and back.
    double PxX(double ndcX) const { return vp[0] + (ndcX + 1.0) / 2.0 * vp[2]; }
    double PxY(double ndcY) const { return vp[1] + (ndcY + 1.0) / 2.0 * vp[3]; }
    double NdcX(double px) const { return vp[2] > 0 ? (px - vp[0]) * 2.0 / vp[2] - 1.0 : 0.0; }
    double NdcY(double py) const { return vp[3] > 0 ? (py - vp[1]) * 2.0 / vp[3] - 1.0 : 0.0; }
    VxPoint FromNdc(double x, double y, double z) const {
        double ox = 0, oy = 0, oz = 0;
        gluUnProject(vp[0] + (x + 1.0) / 2.0 * vp[2], vp[1] + (y + 1.0) / 2.0 * vp[3],
                     (z + 1.0) / 2.0, m, p, vp, &ox, &oy, &oz);
        return VxPoint(ox, oy, oz);
    }
};

// Model point `ox`, `oy` glyph units right and up of `pos` on the screen, at `k` units each.
VxPoint Corner(const VxPoint& pos, const double facing[16], double k, double ox, double oy) {
    const double x = ox * k;
    const double y = oy * k;
    return VxPoint(pos[0] + facing[0] * x + facing[4] * y, pos[1] + facing[1] * x + facing[5] * y,
                   pos[2] + facing[2] * x + facing[6] * y);
}

} // namespace

VxAuxBillBoard3d::VxAuxBillBoard3d(VxViewRegion* view)
    : m_view(view != nullptr ? view : VxViewManager::GetInstance()->GetActiveView()) {
    m_textType = Text_ModelDepth;
}

ObjectType_e VxAuxBillBoard3d::GetObjectType() const {
    return ObjectType_AuxBillBoard3d;
}

bool VxAuxBillBoard3d::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxBillBoard3d || VxAuxText::IsKindOf(type);
}

void VxAuxBillBoard3d::SetComponentsColor(VxColor leader, VxColor rim, VxColor text) {
    m_leaderColor = leader;
    m_rimColor = rim;
    m_textColor = text;
}

void VxAuxBillBoard3d::SetLine(const VxPoint& start, const VxPoint& stop) {
    m_lineStart = start;
    m_lineStop = stop;
    SetTextPos(stop);
    if (start[1] > stop[1]) {
        m_pos[1] = stop[1] - m_drop;
        m_anchor = AnchorPosition_Side;
    } else {
        m_anchor = AnchorPosition_Below;
    }
}

void VxAuxBillBoard3d::Draw(VxViewRegion* view) {
    if (view != nullptr) {
        m_view = view;
    }
    Draw();
}

void VxAuxBillBoard3d::Draw() {
    if (!IsVisible() || m_text.GetLength() == 0) {
        return;
    }
    switch (m_textType) {
    case Text_OnScreen:
        DrawOnScreen();
        break;
    case Text_ModelDepth:
        DrawInModelCoordAllView(true);
        break;
    case Text_ModelNoDepth:
        DrawInModelCoordAllView(false);
        break;
    default:
        break;
    }
}

bool VxAuxBillBoard3d::Place(VxPoint& pos, double& scale, const double facing[16]) {
    VxViewRegion* view = m_view;
    if (view == nullptr || view->Height() <= 0 || view->Width() <= 0) {
        return false;
    }
    Clip clip;
    clip.Read();

    // Size class by the view's height: small views get smaller labels.
    const double H = view->Height();
    const double base = H < 350.0 ? 1000.0 : (H < 500.0 ? 2000.0 : 4000.0);
    const double s = std::min(view->GetXForm().GetScale(), kMaxScale);
    const double sy = base / H * s;
    const double sizeClass = std::clamp(sy / kFullSize, kMinShrink, 1.0);

    // A leader seen nearly end-on marks the label as standing to the side.
    const VxVector line = m_lineStop - m_lineStart;
    const VxVector axis(clip.m[2], clip.m[6], clip.m[10]);
    m_side = false;
    if (!line.IsZero()) {
        double angle = std::acos(std::clamp(line.Normalized() % axis.Normalized(), -1.0, 1.0));
        if (angle >= 3.1415926) {
            angle -= 3.1415926;
        }
        m_side = std::abs(angle) > 0.45;
    }

    // Two labels on one line share it: which shows depends on how the line falls on screen.
    const bool startAbove = clip.EyeY(m_lineStart) >= clip.EyeY(m_lineStop);
    const bool gate = m_mark == 0 || (m_mark == 2468 && startAbove) ||
                      (m_mark == 1357 && !startAbove) || (m_mark != 2468 && m_mark != 1357);
    pos = GetTextPos();
    // The anchor: the plate is shifted off the line's end so that the leader meets its tip, by
    // its own size on the screen, shrunk as near the edges.
    double shrink = 1.0;
    for (int i = 0; i < 4; ++i) {
        double n[3];
        clip.Ndc(Corner(pos, facing, sizeClass, m_outline[2 * i], m_outline[2 * i + 1]), n);
        for (int a = 0; a < 2; ++a) {
            if (std::abs(n[a]) > kLimit) {
                shrink = std::min(shrink, kLimit / std::abs(n[a]));
            }
        }
    }
    shrink = std::max(shrink, kMinShrink);
    if (shrink < 1.0) {
        m_anchor = m_lineStart[1] > m_lineStop[1] ? AnchorPosition_Side : AnchorPosition_Below;
    }
    {
        double c0[3];
        double c1[3];
        clip.Ndc(pos, c0);
        clip.Ndc(Corner(pos, facing, 1.0, 1.0, 0.0), c1);
        const double pxPerUnit =
            std::hypot(clip.PxX(c1[0]) - clip.PxX(c0[0]), clip.PxY(c1[1]) - clip.PxY(c0[1]));
        const double halfPlate = 3.0 * sizeClass * pxPerUnit; // pixels from centre to tip
        const double ratio = 0.6 * sizeClass * pxPerUnit;     // pixels a character
        const double c = FirstLine().size() * ratio * shrink * 2.5;
        const double d = halfPlate * shrink;
        // Screen pixels, y from the top: a rising leader carries the plate above its end.
        double dx = 0.0;
        double dy = 0.0;
        switch (m_anchor) {
        case AnchorPosition_Below:
            dy = -d;
            break;
        case AnchorPosition_Centre:
            dx = c / 2.0;
            dy = d;
            break;
        case AnchorPosition_Side:
            dx = c;
            dy = -d;
            break;
        }
        if (dx != 0.0 || dy != 0.0) {
            pos = clip.FromNdc(clip.NdcX(clip.PxX(c0[0]) + dx), clip.NdcY(clip.PxY(c0[1]) - dy),
                               c0[2]);
        }
    }

    // In front: the plate does not lie behind the pinned point (a millimetre of slack for
    // lines across the view); a label seen from behind the arch stays hidden.
    const double eyeUnit = std::max(std::hypot(clip.m[2], clip.m[6], clip.m[10]), 1e-12);
    const bool front = (clip.EyeZ(pos) - clip.EyeZ(m_lineStart)) / eyeUnit >= -1.0;
    SetIsFront(front);
    if (!gate || !front) {
        return false;
    }

    // Shrink for the corner furthest past the limit, then slide the plate inwards so that all
    // of it lies within the limit.
    shrink = 1.0;
    for (int i = 0; i < 4; ++i) {
        double n[3];
        clip.Ndc(Corner(pos, facing, sizeClass, m_outline[2 * i], m_outline[2 * i + 1]), n);
        for (int a = 0; a < 2; ++a) {
            if (std::abs(n[a]) > kLimit) {
                shrink = std::min(shrink, kLimit / std::abs(n[a]));
            }
        }
    }
    shrink = std::max(shrink, kMinShrink);
    scale = sizeClass * shrink;
    double c[3];
    clip.Ndc(pos, c);
    double half[2] = {0.0, 0.0};
    for (int i = 0; i < 4; ++i) {
        double n[3];
        clip.Ndc(Corner(pos, facing, scale, m_outline[2 * i], m_outline[2 * i + 1]), n);
        half[0] = std::max(half[0], std::abs(n[0] - c[0]));
        half[1] = std::max(half[1], std::abs(n[1] - c[1]));
    }
    double moved[2] = {c[0], c[1]};
    for (int a = 0; a < 2; ++a) {
        const double room = std::max(kLimit - half[a], 0.0);
        moved[a] = std::clamp(c[a], -room, room);
    }
    if (moved[0] != c[0] || moved[1] != c[1]) {
        pos = clip.FromNdc(moved[0], moved[1], c[2]);
    }
    for (int i = 0; i < 4; ++i) {
        m_plate[i] = Corner(pos, facing, scale, m_outline[2 * i], m_outline[2 * i + 1]);
    }
    m_second = pos;
    m_plateValid = true;
    return true;
}

std::vector<std::wstring> VxAuxBillBoard3d::Lines() const {
    std::vector<std::wstring> lines(1);
    for (wchar_t c : m_text.Str()) {
        if (c == L'\n') {
            if (lines.size() >= static_cast<std::size_t>(kMaxLines)) {
                break;
            }
            lines.emplace_back();
        } else if (c != L'\r') {
            lines.back().push_back(c);
        }
    }
    return lines;
}

std::wstring VxAuxBillBoard3d::FirstLine() const {
    return Lines().front();
}

void VxAuxBillBoard3d::DrawInModelCoordAllView(bool depth) {
    // The fixed path replays the glyph lists SetText built; the shader path writes the text
    // itself and needs only the text.
    const bool shaderPath = OpenGLVersion::GetInstance()->Get_btestversion();
    if (!shaderPath && m_listBase == kNoList) {
        return;
    }
    double facing[16];
    if (!ScreenFacingMatrix(m_view, facing)) {
        return;
    }
    VxPoint pos;
    double scale = 1.0;
    if (!Place(pos, scale, facing)) {
        return;
    }
    if (shaderPath) {
        DrawOnShaderPath(depth, pos, scale, facing);
    } else {
        DrawInModelCoordAllViewOri(depth, pos, scale, facing);
    }
}

void VxAuxBillBoard3d::DrawInModelCoordAllViewOri(bool depth, const VxPoint& pos, double scale,
                                                  const double facing[16]) {
    // Saved: every group the drawing below changes, and no more. A label is drawn in every view
    // of every frame, and restoring all attribute groups each time makes the driver check all of
    // its state again at the next draw, for no visible difference.
    glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT |
                 GL_LINE_BIT | GL_CURRENT_BIT | GL_LIST_BIT);
    glDisable(GL_LIGHTING);
    if (depth) {
        glEnable(GL_DEPTH_TEST);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glMatrixMode(GL_MODELVIEW);

    // Leader.
    glLineWidth(2.0f);
    GLColor(m_leaderColor);
    glBegin(GL_LINES);
    glVertex3d(m_lineStart[0], m_lineStart[1], m_lineStart[2]);
    glVertex3d(pos[0], pos[1], pos[2]);
    glEnd();

    // Plate and rim.
    glPushMatrix();
    glTranslated(pos[0], pos[1], pos[2]);
    glScaled(scale, scale, scale);
    glMultMatrixd(facing);
    glDepthMask(GL_FALSE);
    glColor4ub(255, 255, 255, 255);
    glBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i) {
        glVertex2f(m_outline[2 * i], m_outline[2 * i + 1]);
    }
    glEnd();
    glLineWidth(1.0f);
    GLColor(m_rimColor);
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i <= 4; ++i) {
        glVertex2f(m_outline[2 * (i % 4)], m_outline[2 * (i % 4) + 1]);
    }
    glEnd();
    glPopMatrix();

    // Text on the plate; the lines after the first are its description, shown on request.
    glListBase(m_listBase);
    GLColor(m_textColor);
    const int lines = m_showDescript ? m_lineCount : std::min(m_lineCount, 1);
    for (int i = 0; i < lines; ++i) {
        glPushMatrix();
        glTranslated(pos[0], pos[1], pos[2]);
        glScaled(1.8 * scale, 1.8 * scale, 1.8 * scale);
        glMultMatrixd(facing);
        glTranslated(0.0, -i, 0.0);
        glTranslated(-1.5, -0.25, 0.0);
        glCallLists(m_lineLengths[i], GL_UNSIGNED_BYTE, m_lineGlyphs[i]);
        glPopMatrix();
    }
    PopPass();
}

namespace {

glm::vec3 Unit(const VxColor& c) {
    return glm::vec3(c.GetR() / 255.0f, c.GetG() / 255.0f, c.GetB() / 255.0f);
}

// The shader renderer's matrices come from the frame's camera record, which holds the last view
// drawn; the registry draws each view under its own fixed-function matrices. A point is carried
// through the fixed matrices in force and back through the inverse of the renderer's, so both
// paths put it on the same pixel in every view.
class ShaderSpace {
public:
    ShaderSpace() {
        double m[16];
        double p[16];
        glGetDoublev(GL_MODELVIEW_MATRIX, m);
        glGetDoublev(GL_PROJECTION_MATRIX, p);
        glm::dmat4 gm(1.0);
        glm::dmat4 gp(1.0);
        for (int c = 0; c < 4; ++c) {
            for (int r = 0; r < 4; ++r) {
                gm[c][r] = m[c * 4 + r];
                gp[c][r] = p[c * 4 + r];
            }
        }
        const NuViewTransforms t;
        const glm::dmat4 shader =
            glm::dmat4(t.projection) * glm::dmat4(t.view) * glm::dmat4(t.model);
        m_map = glm::inverse(shader) * gp * gm;
    }
    VxPoint operator()(const VxPoint& q) const {
        const glm::dvec4 r = m_map * glm::dvec4(q[0], q[1], q[2], 1.0);
        const double w = std::abs(r.w) > 1e-12 ? r.w : 1e-12;
        return VxPoint(r.x / w, r.y / w, r.z / w);
    }

private:
    glm::dmat4 m_map;
};

} // namespace

void VxAuxBillBoard3d::DrawOnShaderPath(bool depth, const VxPoint& pos, double scale,
                                        const double facing[16]) {
    RenderV1* renderer = RenderV1::GetInstance();
    const ShaderSpace to;
    // Only what the pieces change, as on the fixed path.
    glPushAttrib(GL_ENABLE_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT | GL_LINE_BIT |
                 GL_TEXTURE_BIT);
    if (depth) {
        glEnable(GL_DEPTH_TEST);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    // The line and quadrangle forms draw in whatever colour the billboard program holds; the
    // program is made by its first draw (a point-long line, which lights nothing). Each form
    // binds the program again and unbinds it when done, so the colour is set without unbinding.
    const auto colour = [renderer](const VxColor& c) {
        if (renderer->billboardShader == nullptr) {
            renderer->DrawLine(VxPoint(0, 0, 0), VxPoint(0, 0, 0));
        }
        if (Shader* shader = renderer->billboardShader) {
            shader->use();
            shader->setVec3("backgroundColor", Unit(c));
        }
    };

    glLineWidth(2.0f);
    colour(m_leaderColor);
    renderer->DrawLine(to(m_lineStart), to(pos));

    glDepthMask(GL_FALSE);
    colour(VxColor(255, 255, 255));
    renderer->DrawQuadrangle(to(m_plate[0]), to(m_plate[1]), to(m_plate[2]), to(m_plate[3]));
    glLineWidth(1.0f);
    colour(m_rimColor);
    for (int i = 0; i < 4; ++i) {
        renderer->DrawLine(to(m_plate[i]), to(m_plate[(i + 1) % 4]));
    }

    // The font's em is 48 pixels; the text is 1.8 plate units to the em, as on the fixed path.
    const double em = 1.8 * scale;
    const float glyphScale = static_cast<float>(1.0 / 48.0);
    const std::vector<std::wstring> lines = Lines();
    const std::size_t shown = m_showDescript ? lines.size() : 1;
    for (std::size_t i = 0; i < shown && i < lines.size(); ++i) {
        const VxPoint origin = Corner(pos, facing, em, -1.5, -0.25 - static_cast<double>(i));
        const VxPoint right = Corner(origin, facing, em, 1.0, 0.0);
        const VxPoint up = Corner(origin, facing, em, 0.0, 1.0);
        if (i == 0) {
            renderer->RenderText2(to(origin), to(right), to(up), to(origin), lines[i].c_str(), 0.0f,
                                  0.0f, glyphScale, Unit(m_textColor));
        } else {
            // Descriptions are plain ASCII notes; anything else shows as a question mark.
            std::string narrow;
            for (wchar_t c : lines[i]) {
                narrow.push_back(c > 0 && c < 128 ? static_cast<char>(c) : '?');
            }
            renderer->RenderText(to(origin), to(right), to(up), to(origin), narrow, 0.0f, 0.0f,
                                 glyphScale, Unit(m_textColor));
        }
    }
    glPopAttrib();
}

bool VxAuxBillBoard3d::HitTest(int x, int y) {
    if (!m_plateValid || m_render == nullptr) {
        return false;
    }
    CPoint p[4];
    for (int i = 0; i < 4; ++i) {
        p[i] = m_render->MapModelPointToScreen(m_view, m_plate[i], nullptr);
    }
    const auto side = [x, y](const CPoint& a, const CPoint& b) {
        const double c = double(b.x - a.x) * (y - a.y) - double(b.y - a.y) * (x - a.x);
        return c > 0 ? 1 : (c < 0 ? -1 : 0);
    };
    return side(p[0], p[1]) * side(p[2], p[3]) >= 0 && side(p[1], p[2]) * side(p[3], p[0]) >= 0;
}
