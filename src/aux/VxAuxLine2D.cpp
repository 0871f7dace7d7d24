// VxAuxLine2D: one blended GL_LINES segment in the window-pixel frame.
#include <aux/VxAuxLine2D.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/VxRenderStatus.h>
#include <views/VxViewManager.h>

ObjectType_e VxAuxLine2D::GetObjectType() const {
    return ObjectType_AuxLine2D;
}

bool VxAuxLine2D::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxLine2D || VxAuxObject::IsKindOf(type);
}

void VxAuxLine2D::Draw() {
    Draw(nullptr);
}

void VxAuxLine2D::Draw(VxViewRegion*) {
    if (!IsVisible()) {
        return;
    }
    int w = 0;
    int h = 0;
    VxFrameBufferObj* fbo = VxRenderStatus::GetInstance()->GetFrameBufObj();
    if (fbo->GetIsOffScreenRendering()) {
        w = fbo->GetFrameImgWidth();
        h = fbo->GetFrameImgHeight();
    } else {
        VxViewManager::GetInstance()->GetTotalViewSize(w, h);
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT |
                 GL_LINE_BIT | GL_VIEWPORT_BIT);
    glViewport(0, 0, w, h);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, w, 0, h);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    // A light veil rather than a solid stroke: the picture under a guide stays readable.
    GLColor(m_color, 80);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(m_width);
    glBegin(GL_LINES);
    glVertex2d(m_start.x, h - m_start.y);
    glVertex2d(m_stop.x, h - m_stop.y);
    glEnd();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    PopPass();
}
