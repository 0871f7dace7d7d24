// VxAuxPoint: spheres and dots.
#include <aux/VxAuxPoint.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxSystemOption.h>

#include <cstdlib>

ObjectType_e VxAuxPoint::GetObjectType() const {
    return ObjectType_AuxPoint;
}

bool VxAuxPoint::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPoint || VxAuxObject::IsKindOf(type);
}

double VxAuxPoint::DrawRadius(int style) {
    switch (style) {
    case 1:
        return 0.05;
    case 2:
        return 0.4;
    case 3:
        return 0.6;
    case 4:
        return 0.0;
    case 5:
        return 0.3;
    default:
        return 0.2;
    }
}

double VxAuxPoint::HighlightRadius(int style) {
    switch (style) {
    case 2:
        return 0.5;
    case 4:
        return 0.0;
    case 5:
        return 0.3;
    default:
        return 0.2;
    }
}

void VxAuxPoint::Draw() {
    DrawPasses([this](int mode) { DrawPoint(mode); });
}

void VxAuxPoint::Shape(double radius, float dotSize) const {
    if (m_style == AuxPointStyle_Dot) {
        glDisable(GL_LIGHTING);
        glPointSize(dotSize);
        glBegin(GL_POINTS);
        glVertex3d(m_pos[0], m_pos[1], m_pos[2]);
        glEnd();
        return;
    }
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    // Lit spheres take the current colour as their material.
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslated(m_pos[0], m_pos[1], m_pos[2]);
    GLUquadric* q = gluNewQuadric();
    if (q != nullptr) {
        gluSphere(q, radius, 32, 32);
        gluDeleteQuadric(q);
    }
    glPopMatrix();
}

void VxAuxPoint::DrawPoint(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    GLColor(PassColor(mode, true));
    Shape(DrawRadius(m_style), 6.0f);
    PopPass();
}

void VxAuxPoint::DrawHighlight() {
    if (!IsVisible()) {
        return;
    }
    glPushAttrib(kPassAttribs);
    if (m_front) {
        glDisable(GL_DEPTH_TEST);
    } else {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    }
    GLColor(VxColor::GetHighlightColor());
    Shape(HighlightRadius(m_style), 8.0f);
    PopPass();
}

bool VxAuxPoint::HitTest(int x, int y) {
    if (m_render == nullptr) {
        return false;
    }
    const CPoint s = m_render->MapModelPointToScreen(m_pos);
    return std::abs(s.x - x) + std::abs(s.y - y) < VxSystemOption::GetInstance()->GetHitPrecision();
}
