// VxAuxPolyline2D: line strips in the active view's pixel frame, at the front of the depth range.
#include <aux/VxAuxPolyline2D.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

ObjectType_e VxAuxPolyline2D::GetObjectType() const {
    return ObjectType_AuxPolyline2D;
}

bool VxAuxPolyline2D::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPolyline2D || VxAuxObject::IsKindOf(type);
}

void VxAuxPolyline2D::Draw() {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    if (!IsVisible() || view == nullptr) {
        return;
    }
    const double w = view->Width();
    const double h = view->Height();
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_LINE_BIT |
                 GL_ENABLE_BIT);
    GLdouble range[2] = {0.0, 1.0};
    glGetDoublev(GL_DEPTH_RANGE, range);
    // Depth 0 everywhere: the outline lies in front of the scene but still takes part in the
    // depth test, so two outlines do not fight.
    glDepthRange(0.0, 0.0);
    glDisable(GL_LIGHTING);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, w, 0, h);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    GLColor(m_color);
    glLineWidth(1.0f);
    for (const std::vector<VxPoint>& line : m_polylines) {
        glBegin(GL_LINE_STRIP);
        for (const VxPoint& p : line) {
            glVertex2d(w * m_x + p[0], h * m_y + p[1]);
        }
        glEnd();
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glDepthRange(range[0], range[1]);
    PopPass();
}
