// VxAuxBillBoard: the two screen frames in the active view's pixel frame.
#include <aux/VxAuxBillBoard.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

ObjectType_e VxAuxBillBoard::GetObjectType() const {
    return ObjectType_AuxBillBoard;
}

bool VxAuxBillBoard::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxBillBoard || VxAuxObject::IsKindOf(type);
}

void VxAuxBillBoard::Draw() {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    if (!IsVisible() || view == nullptr) {
        return;
    }
    const int w = view->Width();
    const int h = view->Height();
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                 GL_COLOR_BUFFER_BIT | GL_LINE_BIT);
    glDisable(GL_LIGHTING);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, w, 0, h);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    if (m_type != BillBoardType_Outline) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glColor4ub(0, 0, 255, 64);
        glBegin(GL_QUADS);
        glVertex2d(m_x, h - m_y);
        glVertex2d(m_x, h - m_y + m_height);
        glVertex2d(m_x + m_width, h - m_y + m_height);
        glVertex2d(m_x + m_width, h - m_y);
        glEnd();
    } else {
        const int x = int(w * m_x);
        const int y = int(h * m_y);
        glColor3ub(0, 0, 0);
        glLineWidth(2.0f);
        glBegin(GL_LINE_LOOP);
        glVertex2i(x, y);
        glVertex2i(x + m_width, y);
        glVertex2i(x + m_width, y + m_height);
        glVertex2i(x, y + m_height);
        glEnd();
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    PopPass();
}
