// VxAuxPlane: fill, ruler grid and border.
#include <aux/VxAuxPlane.h>

#include <GL/glew.h>

#include <interfaces/VxBBox.h>
#include <interfaces/VxPlane.h>

#include <cmath>

ObjectType_e VxAuxPlane::GetObjectType() const {
    return ObjectType_AuxPlane;
}

bool VxAuxPlane::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPlane || VxAuxObject::IsKindOf(type);
}

void VxAuxPlane::Set(const VxPoint& origin, const VxVector& u, const VxVector& v) {
    m_corners[0] = origin;
    m_corners[1] = origin + u;
    m_corners[3] = origin + v;
    m_corners[2] = m_corners[1] + v;
}

void VxAuxPlane::Set(const VxBBox& box, const VxPlane& plane) {
    const VxPoint c = plane.ProjectPoint(box.Center());
    VxVector a = plane.GetArbitraryPoint() - c;
    if (!a.Normalize()) {
        // The plane's own point is the centre: any in-plane direction will do.
        const VxVector& n = plane.Normal();
        a = n * (std::abs(n[0]) < 0.9 ? VxVector(1, 0, 0) : VxVector(0, 1, 0));
        a.Normalize();
    }
    VxVector b = plane.Normal() * a;
    b.Normalize();
    const double d = box.Diagonal();
    const VxPoint origin = c + a * (d / 2) + b * (d / 2);
    Set(origin, a * -d, b * -d);
}

void VxAuxPlane::Get(VxPoint& origin, VxVector& u, VxVector& v) const {
    origin = m_corners[0];
    u = m_corners[1] - m_corners[0];
    v = m_corners[3] - m_corners[0];
}

VxVector VxAuxPlane::Normal() const {
    return ((m_corners[1] - m_corners[0]) * (m_corners[2] - m_corners[0])).Normalized();
}

namespace {

void Segment(const VxPoint& a, const VxPoint& b) {
    glVertex3d(a[0], a[1], a[2]);
    glVertex3d(b[0], b[1], b[2]);
}

} // namespace

void VxAuxPlane::Grid() const {
    VxVector u = m_corners[1] - m_corners[0];
    VxVector v = m_corners[3] - m_corners[0];
    const VxPoint m0 = VxPoint::Lerp(m_corners[0], m_corners[1], 0.5);
    const VxPoint m1 = VxPoint::Lerp(m_corners[3], m_corners[2], 0.5);
    const double lu = u.Magnitude();
    const double lv = v.Magnitude();
    u.Normalize();
    v.Normalize();

    // Unit lines, mirrored about the middle across u, from the first edge along v.
    glLineWidth(1.0f);
    glColor4ub(150, 150, 150, 200);
    glBegin(GL_LINES);
    for (int i = 1; i < lu / 2; ++i) {
        Segment(m0 + u * i, m1 + u * i);
        Segment(m0 - u * i, m1 - u * i);
    }
    for (int j = 1; j < lv; ++j) {
        Segment(m_corners[0] + v * j, m_corners[1] + v * j);
    }
    glEnd();

    // Every fifth unit in green.
    glLineWidth(2.0f);
    glColor4ub(0, 250, 0, 150);
    glBegin(GL_LINES);
    for (int i = 1; i <= static_cast<int>(lu) / 10; ++i) {
        const double s = 5.0 * i;
        Segment(m0 + u * s, m1 + u * s);
        Segment(m0 - u * s, m1 - u * s);
    }
    for (int j = 1; j <= static_cast<int>(lv) / 5; ++j) {
        Segment(m_corners[0] + v * (5.0 * j), m_corners[1] + v * (5.0 * j));
    }
    glEnd();
}

void VxAuxPlane::Draw() {
    if (!IsVisible()) {
        return;
    }
    glPushAttrib(GL_CURRENT_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT |
                 GL_LINE_BIT | GL_LIGHTING_BIT);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (m_style == AuxPlaneStyle_Translucent) {
        GLColor(m_color, 60);
        glDepthMask(GL_FALSE);
        glBegin(GL_QUADS);
        for (const VxPoint& c : m_corners) {
            glVertex3d(c[0], c[1], c[2]);
        }
        glEnd();
    } else {
        glEnable(GL_LINE_SMOOTH);
        Grid();
    }
    glEnable(GL_LINE_SMOOTH);
    glLineWidth(2.0f);
    glColor3ub(0, 250, 0);
    glBegin(GL_LINE_LOOP);
    for (const VxPoint& c : m_corners) {
        glVertex3d(c[0], c[1], c[2]);
    }
    glEnd();
    PopPass();
}
