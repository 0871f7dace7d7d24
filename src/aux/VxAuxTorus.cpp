// VxAuxTorus: arc tube and its hit.
#include <aux/VxAuxTorus.h>

#include <GL/glew.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxPlane.h>
#include <interfaces/VxSystemOption.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <cmath>
#include <cstdlib>

namespace {

constexpr double kDegree = 0.017453292519944444;
constexpr double kTubeStep = 0.20943951023933333; // 12 degrees
constexpr double kTwoPi = 6.283185307179586;

} // namespace

VxAuxTorus::VxAuxTorus() {
    m_drawHidden = true;
}

ObjectType_e VxAuxTorus::GetObjectType() const {
    return ObjectType_AuxTorus;
}

bool VxAuxTorus::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxTorus || VxAuxObject::IsKindOf(type);
}

void VxAuxTorus::SetGeometry(double sweep, double radius, const VxPoint& centre,
                             const VxVector& start, const VxVector& second) {
    m_sweep = sweep;
    m_radius = radius;
    m_centre = centre;
    SetGeometry(start, second);
}

void VxAuxTorus::SetGeometry(const VxVector& a, const VxVector& b) {
    const VxVector n = a * b;
    m_startAxis = a.Normalized();
    m_secondAxis = (n * a).Normalized();
}

void VxAuxTorus::Tube(double r) const {
    const VxVector z = (m_startAxis * m_secondAxis).Normalized();
    const double axes[16] = {m_startAxis[0],
                             m_startAxis[1],
                             m_startAxis[2],
                             0,
                             m_secondAxis[0],
                             m_secondAxis[1],
                             m_secondAxis[2],
                             0,
                             z[0],
                             z[1],
                             z[2],
                             0,
                             0,
                             0,
                             0,
                             1};
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslated(m_centre[0], m_centre[1], m_centre[2]);
    glMultMatrixd(axes);
    const int segments = static_cast<int>(m_sweep / kDegree + 0.5);
    const double R = m_radius;
    for (int i = 0; i < segments; ++i) {
        const double a[2] = {i * kDegree, i * kDegree + kDegree};
        glBegin(GL_TRIANGLE_STRIP);
        for (int j = 0; j <= 30; ++j) {
            const double b = j * kTubeStep;
            for (double ak : a) {
                glNormal3d(std::cos(ak) * std::cos(b), std::sin(ak) * std::cos(b), std::sin(b));
                glVertex3d((R + r * std::cos(b)) * std::cos(ak),
                           (R + r * std::cos(b)) * std::sin(ak), r * std::sin(b));
            }
        }
        glEnd();
    }
    glPopMatrix();
}

void VxAuxTorus::Draw() {
    DrawPasses([this](int mode) { DrawCore(mode); });
}

void VxAuxTorus::DrawCore(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    GLColor(PassColor(mode, false));
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    Tube(m_bold ? 0.3 : 0.1);
    PopPass();
}

void VxAuxTorus::DrawHighlight() {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    const double scale = view != nullptr ? view->GetXForm().GetScale() : 0.0;
    if (!(scale > 0.0)) {
        return;
    }
    glPushAttrib(kPassAttribs);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    GLColor(m_color);
    // Thin at any zoom: the tube keeps its size on the screen.
    Tube(0.01 / scale);
    PopPass();
}

bool VxAuxTorus::HitTest(int x, int y) {
    if (m_render == nullptr) {
        return false;
    }
    const VxPoint nearP = m_render->MapScreenPointToModel(CPoint(x, y), 0.0);
    const VxPoint farP = m_render->MapScreenPointToModel(CPoint(x, y), 1.0);
    if (nearP == farP) {
        return false;
    }
    const VxVector n = m_startAxis * m_secondAxis;
    if (n.IsZero()) {
        return false;
    }
    VxPoint cut;
    if (!VxPlane(m_centre, n).Intersect(VxLine(nearP, farP), cut)) {
        return false;
    }
    const VxPoint q = m_centre + (cut - m_centre).Normalized() * m_radius;
    // The signed angle runs over (-pi, pi]; the arc is measured 0 to 2 pi from its start.
    double a = m_startAxis.AngleWith(q - m_centre, n);
    if (a < 0.0) {
        a += kTwoPi;
    }
    if (a > m_sweep) {
        return false;
    }
    const CPoint s = m_render->MapModelPointToScreen(q);
    return std::abs(s.x - x) + std::abs(s.y - y) < VxSystemOption::GetInstance()->GetHitPrecision();
}
