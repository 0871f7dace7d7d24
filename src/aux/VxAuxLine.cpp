// VxAuxLine: segments and the screen-segment distance the arrow shares.
#include <aux/VxAuxLine.h>

#include <GL/glew.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxLine.h>

#include <algorithm>
#include <cmath>

ObjectType_e VxAuxLine::GetObjectType() const {
    return ObjectType_AuxLine;
}

bool VxAuxLine::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxLine || VxAuxObject::IsKindOf(type);
}

void VxAuxLine::Draw() {
    DrawPasses([this](int mode) { DrawLine(mode); });
}

void VxAuxLine::DrawLine(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    GLColor(PassColor(mode, true));
    glDisable(GL_LIGHTING);
    glLineWidth(static_cast<GLfloat>(m_width));
    if (m_type == AuxLineType_Dashed) {
        // 16 pixels on, 16 off.
        glEnable(GL_LINE_STIPPLE);
        glLineStipple(2, 0x00FF);
    }
    glBegin(GL_LINES);
    glVertex3d(m_start[0], m_start[1], m_start[2]);
    glVertex3d(m_stop[0], m_stop[1], m_stop[2]);
    glEnd();
    PopPass();
}

void VxAuxLine::DrawHighlight() {
    if (!IsVisible()) {
        return;
    }
    glPushAttrib(kPassAttribs);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glLineWidth(4.0f);
    glColor4ub(255, 0, 0, 255);
    glBegin(GL_LINES);
    glVertex3d(m_start[0], m_start[1], m_start[2]);
    glVertex3d(m_stop[0], m_stop[1], m_stop[2]);
    glEnd();
    PopPass();
}

namespace {

double Manhattan(const VxPoint& a, const VxPoint& b) {
    return std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]);
}

} // namespace

double VxAuxLine::ScreenSegmentDistance(VxOpenGLRender* render, const VxPoint& start,
                                        const VxPoint& stop, int x, int y) {
    const CPoint sa = render->MapModelPointToScreen(start);
    const CPoint sb = render->MapModelPointToScreen(stop);
    const VxPoint a(sa.x, sa.y, 0.0);
    const VxPoint b(sb.x, sb.y, 0.0);
    const VxPoint c(x, y, 0.0);
    if (a == b) {
        return Manhattan(c, b);
    }
    const VxPoint q = VxLine(a, b).ProjectPoint(c, nullptr);
    if (q == a || q == b) {
        return Manhattan(c, q);
    }
    const double d = (q - a) % (q - b);
    if (d <= 0.0) {
        return Manhattan(c, q);
    }
    return std::min(Manhattan(c, a), Manhattan(c, b));
}

bool VxAuxLine::HitTest(int x, int y) {
    if (m_render == nullptr) {
        return false;
    }
    return ScreenSegmentDistance(m_render, m_start, m_stop, x, y) < kHitTolerance;
}
