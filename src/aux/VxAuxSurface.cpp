// VxAuxSurface: NURBS surface.
#include <aux/VxAuxSurface.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <aux/VxAuxCurve.h>

#include <vector>

void VxAuxSurface::Draw() {
    if (!IsVisible() || !m_surface.IsValid()) {
        return;
    }
    const std::vector<double>& ku = m_surface.KnotVecU().GetKnots();
    const std::vector<double>& kv = m_surface.KnotVecV().GetKnots();
    const int numU = m_surface.CtrlPointNumU();
    const int numV = m_surface.CtrlPointNumV();
    const int orderU = m_surface.DegreeU() + 1;
    const int orderV = m_surface.DegreeV() + 1;
    if (static_cast<int>(ku.size()) != numU + orderU ||
        static_cast<int>(kv.size()) != numV + orderV) {
        return;
    }
    std::vector<float> knotsU(ku.begin(), ku.end());
    std::vector<float> knotsV(kv.begin(), kv.end());
    std::vector<float> net;
    net.reserve(m_surface.CtrlPoints().size() * 3);
    for (const VxPoint& p : m_surface.CtrlPoints()) {
        net.push_back(static_cast<float>(p[0]));
        net.push_back(static_cast<float>(p[1]));
        net.push_back(static_cast<float>(p[2]));
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT |
                 GL_ENABLE_BIT | GL_EVAL_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_AUTO_NORMAL);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    GLColor(m_color);
    GLUnurbs* nurbs = gluNewNurbsRenderer();
    if (nurbs != nullptr) {
        gluNurbsCallback(nurbs, GLU_ERROR,
                         reinterpret_cast<_GLUfuncptr>(&VxAuxCurve::NurbsErrorSink));
        gluNurbsProperty(nurbs, GLU_PARAMETRIC_TOLERANCE, 20.0f);
        // As for curves: evaluation leaves a pending black colour behind.
        GLfloat colour[4];
        glGetFloatv(GL_CURRENT_COLOR, colour);
        gluBeginSurface(nurbs);
        gluNurbsSurface(nurbs, static_cast<GLint>(knotsU.size()), knotsU.data(),
                        static_cast<GLint>(knotsV.size()), knotsV.data(), 3 * numV, 3, net.data(),
                        orderU, orderV, GL_MAP2_VERTEX_3);
        gluEndSurface(nurbs);
        gluDeleteNurbsRenderer(nurbs);
        glColor4fv(colour);
    }
    PopPass();
}
