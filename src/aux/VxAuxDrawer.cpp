// VxAuxDrawer: the diagnostic drawings.
#include <aux/VxAuxDrawer.h>

#include <GL/glew.h>

#include <interfaces/VxBBox.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxLineSeg.h>
#include <interfaces/VxOrientBox.h>
#include <interfaces/VxPoint.h>

namespace {

void Vertex(const VxPoint& p) {
    glVertex3d(p[0], p[1], p[2]);
}

// Two opposite faces as loops (corners 0-3 and 4-7) and the four edges between them.
void TwelveEdges(const VxPoint* c) {
    glBegin(GL_LINE_LOOP);
    for (int i = 0; i < 4; ++i) {
        Vertex(c[i]);
    }
    glEnd();
    glBegin(GL_LINE_LOOP);
    for (int i = 4; i < 8; ++i) {
        Vertex(c[i]);
    }
    glEnd();
    glBegin(GL_LINES);
    for (int i = 0; i < 4; ++i) {
        Vertex(c[i]);
        Vertex(c[i + 4]);
    }
    glEnd();
}

void BoxCorners(const VxBBox& box, VxPoint* c) {
    const VxPoint& a = box.GetMinPnt();
    const VxPoint& b = box.GetMaxPnt();
    c[0] = VxPoint(a[0], a[1], a[2]);
    c[1] = VxPoint(b[0], a[1], a[2]);
    c[2] = VxPoint(b[0], b[1], a[2]);
    c[3] = VxPoint(a[0], b[1], a[2]);
    c[4] = VxPoint(a[0], a[1], b[2]);
    c[5] = VxPoint(b[0], a[1], b[2]);
    c[6] = VxPoint(b[0], b[1], b[2]);
    c[7] = VxPoint(a[0], b[1], b[2]);
}

void BoxStyle() {
    glDisable(GL_LIGHTING);
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(1, 0x00FF);
    glColor3ub(150, 100, 150);
    glLineWidth(2.0f);
}

} // namespace

void VxAuxDrawer::DrawBox(const VxBBox& box) {
    VxPoint c[8];
    BoxCorners(box, c);
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    BoxStyle();
    TwelveEdges(c);
    glPopAttrib();
    DrawBoxDepth(box);
}

void VxAuxDrawer::DrawBoxDepth(const VxBBox& box) {
    VxPoint c[8];
    BoxCorners(box, c);
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT |
                 GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT);
    glDepthFunc(GL_GREATER);
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    BoxStyle();
    glEnable(GL_BLEND);
    glBlendFunc(GL_DST_ALPHA, GL_DST_COLOR);
    TwelveEdges(c);
    glPopAttrib();
}

void VxAuxDrawer::DrawFrame(const VxFrame& frame, double length) {
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glLineWidth(2.0f);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_DEPTH_TEST);
    const VxPoint& o = frame.GetOrigin();
    glBegin(GL_LINES);
    glColor3d(1, 0, 0);
    Vertex(o);
    Vertex(o + frame.DirX() * length);
    glColor3d(0, 1, 0);
    Vertex(o);
    Vertex(o + frame.DirY() * length);
    glColor3d(0, 0, 1);
    Vertex(o);
    Vertex(o + frame.DirZ() * length);
    glEnd();
    // Kept unbalanced: callers of this helper pair it with a push of their own.
    glPopAttrib();
    glPopAttrib();
}

void VxAuxDrawer::DrawLsg(const VxLineSeg& segment) {
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glColor3d(1, 0, 0);
    glLineWidth(5.0f);
    glBegin(GL_LINES);
    Vertex(segment.GetStartPoint());
    Vertex(segment.GetEndPoint());
    glEnd();
    glPopAttrib();
}

void VxAuxDrawer::DrawOrientBox(const VxOrientBox& box) {
    VxPoint bits[8];
    box.Get8Corners(bits);
    // The box numbers its corners by sign bits; the loops want them around each face.
    const int order[8] = {0, 1, 3, 2, 4, 5, 7, 6};
    VxPoint c[8];
    for (int i = 0; i < 8; ++i) {
        c[i] = bits[order[i]];
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glColor3d(0.25, 0, 0.5);
    glLineWidth(2.0f);
    TwelveEdges(c);
    glPopAttrib();
}

void VxAuxDrawer::DrawPoint(const VxPoint& point) {
    glPushAttrib(GL_CURRENT_BIT | GL_POINT_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glColor3d(1, 0, 1);
    glPointSize(5.0f);
    glBegin(GL_POINTS);
    Vertex(point);
    glEnd();
    glPopAttrib();
}
