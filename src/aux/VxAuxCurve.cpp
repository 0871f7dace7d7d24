// VxAuxCurve: NURBS outline of a B-spline.
#include <aux/VxAuxCurve.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <vector>

void VxAuxCurve::NurbsErrorSink(unsigned int) {}

bool VxAuxCurve::ToFloats(std::vector<float>& knots, std::vector<float>& points) const {
    const std::vector<double>& k = m_curve.KnotVec().GetKnots();
    const std::vector<VxPoint>& c = m_curve.CtrlPoints();
    const int order = m_curve.Degree() + 1;
    if (c.empty() || order < 2 || k.size() != c.size() + static_cast<std::size_t>(order)) {
        return false;
    }
    knots.assign(k.begin(), k.end());
    points.clear();
    points.reserve(c.size() * 3);
    for (const VxPoint& p : c) {
        points.push_back(static_cast<float>(p[0]));
        points.push_back(static_cast<float>(p[1]));
        points.push_back(static_cast<float>(p[2]));
    }
    return true;
}

void VxAuxCurve::Draw() {
    if (!IsVisible()) {
        return;
    }
    // Converted at each frame: curves here are few and short.
    std::vector<float> knots;
    std::vector<float> points;
    if (!ToFloats(knots, points)) {
        return;
    }
    const int count = static_cast<int>(knots.size());
    DrawPasses([&](int mode) { DrawCurve(count, knots.data(), points.data(), mode); });
}

void VxAuxCurve::Outline(int knotCount, float* knots, float* points) const {
    GLUnurbs* nurbs = gluNewNurbsRenderer();
    if (nurbs == nullptr) {
        return;
    }
    gluNurbsCallback(nurbs, GLU_ERROR, reinterpret_cast<_GLUfuncptr>(&NurbsErrorSink));
    gluNurbsProperty(nurbs, GLU_SAMPLING_TOLERANCE, 20.0f);
    gluNurbsProperty(nurbs, GLU_DISPLAY_MODE, GLU_OUTLINE_POLYGON);
    // Evaluating the curve leaves Mesa's pending colour at black; set it again so that the
    // attribute pop restores the caller's colour rather than black.
    GLfloat colour[4];
    glGetFloatv(GL_CURRENT_COLOR, colour);
    gluBeginCurve(nurbs);
    gluNurbsCurve(nurbs, knotCount, knots, 3, points, m_curve.Degree() + 1, GL_MAP1_VERTEX_3);
    gluEndCurve(nurbs);
    gluDeleteNurbsRenderer(nurbs);
    glColor4fv(colour);
}

void VxAuxCurve::DrawCurve(int knotCount, float* knots, float* points, int mode) {
    glPushAttrib(kPassAttribs | GL_EVAL_BIT);
    ApplyDepthMode(mode);
    GLColor(PassColor(mode, false));
    glDisable(GL_LIGHTING);
    glLineWidth(2.0f);
    Outline(knotCount, knots, points);
    PopPass();
}

void VxAuxCurve::DrawHighlight() {
    std::vector<float> knots;
    std::vector<float> points;
    if (!ToFloats(knots, points)) {
        return;
    }
    glPushAttrib(kPassAttribs | GL_EVAL_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_LIGHTING);
    glLineWidth(4.0f);
    GLColor(m_color);
    Outline(static_cast<int>(knots.size()), knots.data(), points.data());
    PopPass();
}
