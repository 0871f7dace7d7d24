// VxAuxBillBoard3d: placement in clip space, the leader, plate and text, and the plate hit.
#include <aux/VxAuxBillBoard3d.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/VxOpenGLRender.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>

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
    VxPoint FromNdc(double x, double y, double z) const {
        double ox = 0, oy = 0, oz = 0;
        gluUnProject(vp[0] + (x + 1.0) / 2.0 * vp[2], vp[1] + (y + 1.0) / 2.0 * vp[3],
                     (z + 1.0) / 2.0, m, p, vp, &ox, &oy, &oz);
        return VxPoint(ox, oy, oz);
    }
};

VxPoint Corner(const VxPoint& pos, const double facing[16], double k, float ox, float oy) {
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
    if ((m_mark == 2468 && !startAbove) || (m_mark == 1357 && startAbove)) {
        return false;
    }

    pos = GetTextPos();
    // Shrink for the corner furthest past the limit, then slide the plate inwards so that all
    // of it lies within the limit.
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

void VxAuxBillBoard3d::DrawInModelCoordAllView(bool depth) {
    if (m_listBase == kNoList) {
        return;
    }
    double facing[16];
    if (!ScreenFacingMatrix(m_view, facing)) {
        return;
    }
    VxPoint pos;
    double scale = 1.0;
    if (Place(pos, scale, facing)) {
        DrawInModelCoordAllViewOri(depth, pos, scale, facing);
    }
}

void VxAuxBillBoard3d::DrawInModelCoordAllViewOri(bool depth, const VxPoint& pos, double scale,
                                                  const double facing[16]) {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
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

    // Text, on the plate.
    glListBase(m_listBase);
    GLColor(m_textColor);
    for (int i = 0; i < m_lineCount; ++i) {
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
