// VxAuxArrow: quadric shaft and heads.
#include <aux/VxAuxArrow.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <aux/VxAuxLine.h>

namespace {

constexpr double kRadToDeg = 180.0 / 3.14159265359;

} // namespace

VxAuxArrow::VxAuxArrow() {
    m_drawHidden = true;
}

ObjectType_e VxAuxArrow::GetObjectType() const {
    return ObjectType_AuxArrow;
}

bool VxAuxArrow::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxArrow || VxAuxObject::IsKindOf(type);
}

void VxAuxArrow::OrientationAngles(const VxVector& d, double& a0, double& a1) {
    const VxVector v(0.0, d[1], d[2]);
    if (!v.IsZero()) {
        a0 = v.AngleWith(VxVector(0, 0, 1), VxVector(1, 0, 0));
        a1 = v.AngleWith(d);
    } else {
        a0 = 0.0;
        a1 = 1.570796326795;
    }
    if (d[0] > 0.0) {
        a1 = -a1;
    }
}

void VxAuxArrow::Geometry(double h) const {
    const double r = ShaftRadius();
    const double length = Length();
    double a0 = 0.0;
    double a1 = 0.0;
    OrientationAngles(Direction(), a0, a1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslated(m_start[0], m_start[1], m_start[2]);
    glRotated(-a0 * kRadToDeg, 1, 0, 0);
    glRotated(-a1 * kRadToDeg, 0, 1, 0);
    GLUquadric* q = gluNewQuadric();
    if (q != nullptr) {
        gluQuadricOrientation(q, GLU_OUTSIDE);
        gluQuadricDrawStyle(q, GLU_FILL);
        if (!m_dual) {
            gluCylinder(q, r, r, length - h, 32, 32);
            glTranslated(0, 0, length - h);
            gluCylinder(q, 2 * r, 0, h, 32, 32);
        } else {
            // A dual arrow shorter than two heads gets a negative shaft; GLU draws it as it will.
            glTranslated(0, 0, h);
            gluCylinder(q, r, r, length - 2 * h, 32, 32);
            glTranslated(0, 0, length - 2 * h);
            gluCylinder(q, 2 * r, 0, h, 32, 32);
            glTranslated(0, 0, -(length - 2 * h));
            glRotated(180.0, 0, 1, 0);
            gluCylinder(q, 2 * r, 0, h, 32, 32);
        }
        gluDeleteQuadric(q);
    }
    glPopMatrix();
}

void VxAuxArrow::Draw() {
    DrawPasses([this](int mode) { DrawCore(mode); });
}

void VxAuxArrow::DrawCore(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    // The arrow keeps its colour when selected: its colour carries the meaning.
    GLColor(PassColor(mode, false));
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    Geometry(HeadLength());
    PopPass();
}

void VxAuxArrow::DrawHighlight() {
    glPushAttrib(kPassAttribs);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    GLColor(Scaled(m_color, 0.8));
    Geometry(HeadLength() * 1.1);
    PopPass();
}

bool VxAuxArrow::HitTest(int x, int y) {
    if (m_render == nullptr) {
        return false;
    }
    VxPoint start = m_start;
    if (m_hitOnlyArrow) {
        start = m_stop + (m_start - m_stop).Normalized() * HeadLength();
    }
    return VxAuxLine::ScreenSegmentDistance(m_render, start, m_stop, x, y) <
           VxAuxLine::kHitTolerance;
}
