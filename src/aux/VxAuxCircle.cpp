// VxAuxCircle: 360-sided ring and disc.
#include <aux/VxAuxCircle.h>

#include <GL/glew.h>

#include <interfaces/VxPlane.h>

#include <cmath>

namespace {

constexpr double kDegree = 0.017453292519944444;

void Circle(double radius) {
    for (int i = 0; i < 360; ++i) {
        const double a = i * kDegree;
        glVertex3d(radius * std::cos(a), radius * std::sin(a), 0.0);
    }
}

} // namespace

ObjectType_e VxAuxCircle::GetObjectType() const {
    return ObjectType_AuxCircle;
}

bool VxAuxCircle::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxCircle || VxAuxObject::IsKindOf(type);
}

void VxAuxCircle::Set(const VxPoint& centre, const VxVector& normal, double radius) {
    m_centre = centre;
    m_normal = normal.Normalized();
    m_radius = radius;
}

void VxAuxCircle::Draw() {
    if (!IsVisible() || m_normal.IsZero()) {
        return;
    }
    // An in-plane axis: the plane's arbitrary point is its own origin, so a second point is
    // taken off the normal's smallest component.
    const VxPlane plane(m_centre, m_normal);
    VxVector seed(1, 0, 0);
    if (std::abs(m_normal[1]) < std::abs(m_normal[0]) &&
        std::abs(m_normal[1]) <= std::abs(m_normal[2])) {
        seed = VxVector(0, 1, 0);
    } else if (std::abs(m_normal[2]) < std::abs(m_normal[0])) {
        seed = VxVector(0, 0, 1);
    }
    VxVector u = plane.ProjectPoint(m_centre + seed) - m_centre;
    u.Normalize();
    VxVector v = m_normal * u;
    v.Normalize();

    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_LIGHTING_BIT | GL_ENABLE_BIT |
                 GL_COLOR_BUFFER_BIT | GL_POLYGON_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslated(m_centre[0], m_centre[1], m_centre[2]);
    const double axes[16] = {u[0],        u[1],        u[2],        0, v[0], v[1], v[2], 0,
                             m_normal[0], m_normal[1], m_normal[2], 0, 0,    0,    0,    1};
    glMultMatrixd(axes);
    if (m_type == AuxCircleType_Outline || m_type == AuxCircleType_Both) {
        GLColor(m_color, 128);
        glLineWidth(2.0f);
        glBegin(GL_LINE_LOOP);
        Circle(m_radius);
        glEnd();
    }
    if (m_type == AuxCircleType_Disc || m_type == AuxCircleType_Both) {
        glColor4f(0.0f, 0.0f, 1.0f, 0.25f);
        glPolygonMode(GL_FRONT, GL_FILL);
        glBegin(GL_POLYGON);
        Circle(m_radius);
        glEnd();
    }
    glPopMatrix();
    PopPass();
}
