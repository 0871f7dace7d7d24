// VxAuxPolyline: strips, marked points and the two-round hit.
#include <aux/VxAuxPolyline.h>

#include <GL/glew.h>

#include <aux/VxAuxPoint.h>
#include <frame/VxOpenGLRender.h>
#include <interfaces/VxPolyline.h>
#include <interfaces/VxSystemOption.h>

#include <cstdlib>

ObjectType_e VxAuxPolyline::GetObjectType() const {
    return ObjectType_AuxPolyline;
}

bool VxAuxPolyline::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPolyline || VxAuxObject::IsKindOf(type);
}

void VxAuxPolyline::SetPoints(const std::vector<VxPoint>& points) {
    m_points = points;
    m_types.assign(points.size(), VxPointType_Plain);
}

void VxAuxPolyline::SetPointsType(const std::vector<VxPointType_e>& types) {
    for (std::size_t i = 0; i < types.size() && i < m_types.size(); ++i) {
        m_types[i] = types[i];
    }
}

void VxAuxPolyline::RemovePoint(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= m_points.size()) {
        return;
    }
    m_points.erase(m_points.begin() + index);
    if (static_cast<std::size_t>(index) < m_types.size()) {
        m_types.erase(m_types.begin() + index);
    }
}

VxPointType_e VxAuxPolyline::TypeAt(std::size_t i) const {
    return i < m_types.size() ? m_types[i] : VxPointType_Plain;
}

void VxAuxPolyline::Draw() {
    DrawPasses([this](int mode) { DrawPolyLine(mode); });
}

void VxAuxPolyline::Strip(std::size_t from, std::size_t to) const {
    glBegin(GL_LINE_STRIP);
    for (std::size_t i = from; i < to; ++i) {
        glVertex3d(m_points[i][0], m_points[i][1], m_points[i][2]);
    }
    glEnd();
}

void VxAuxPolyline::Spheres(VxPointType_e type, std::size_t from, std::size_t to) const {
    glMatrixMode(GL_MODELVIEW);
    for (std::size_t i = from; i < to; ++i) {
        if (TypeAt(i) != type) {
            continue;
        }
        glPushMatrix();
        glTranslated(m_points[i][0], m_points[i][1], m_points[i][2]);
        VxAuxPoint::DrawSphere(kSphereRadius);
        glPopMatrix();
    }
}

namespace {

bool HalfCrossesItself(const std::vector<VxPoint>& points, std::size_t from, std::size_t to) {
    VxPolyline half(std::vector<VxPoint>(points.begin() + static_cast<long>(from),
                                         points.begin() + static_cast<long>(to)));
    half.MakeClosed();
    return half.IsSelfIntersect();
}

} // namespace

void VxAuxPolyline::DrawPolyLine(int mode) {
    const std::size_t n = m_points.size();
    if (n == 0) {
        return;
    }
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    const VxColor passColor = PassColor(mode, true);
    GLColor(passColor);
    const std::size_t half = n / 2;
    const bool twoHalves = m_style == AuxPolylineStyle_TwoHalves;

    if (m_style == AuxPolylineStyle_Line || m_style == AuxPolylineStyle_LineAndPoints ||
        twoHalves) {
        glDisable(GL_LIGHTING);
        glLineWidth(IsSelected() ? 8.0f : 2.0f);
        std::size_t next = 0;
        if (twoHalves) {
            if (HalfCrossesItself(m_points, 0, half)) {
                glColor4ub(255, 0, 0, 255);
            } else {
                glColor4ub(0, 255, 0, 255);
            }
            Strip(0, half);
            GLColor(passColor);
            if (HalfCrossesItself(m_points, half, n)) {
                glColor4ub(255, 0, 0, 255);
            }
            next = half;
        }
        Strip(next, n);
    }

    if (m_style == AuxPolylineStyle_Points || m_style == AuxPolylineStyle_LineAndPoints ||
        twoHalves) {
        glEnable(GL_LIGHTING);
        glEnable(GL_LIGHT0);
        glEnable(GL_COLOR_MATERIAL);
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
        // Green and cyan marks keep their meaning behind the scene too: not dimmed.
        glColor4ub(0, 255, 0, 255);
        Spheres(VxPointType_Green, 0, n);
        glColor4ub(0, 255, 255, 255);
        Spheres(VxPointType_Cyan, 0, n);
        std::size_t from = 0;
        if (twoHalves) {
            // The first outline's points are green unless the object is selected.
            const bool selectedColour = mode != kModeHidden && IsSelected();
            const VxColor firstHalf = selectedColour        ? VxColor::GetAuxSelectColor()
                                      : mode == kModeHidden ? Scaled(VxColor(0, 250, 0), 0.3)
                                                            : VxColor(0, 250, 0);
            GLColor(firstHalf);
            Spheres(VxPointType_Marked, 0, half);
            from = half;
        }
        GLColor(passColor);
        Spheres(VxPointType_Marked, from, n);
    }
    PopPass();
}

void VxAuxPolyline::DrawHighlight() {
    glPushAttrib(kPassAttribs);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    GLColor(VxColor::GetHighlightColor());
    if (m_style == AuxPolylineStyle_Line) {
        glDisable(GL_LIGHTING);
        glLineWidth(4.0f);
        Strip(0, m_points.size());
    } else if (m_hitPoint >= 0 && static_cast<std::size_t>(m_hitPoint) < m_points.size() &&
               TypeAt(static_cast<std::size_t>(m_hitPoint)) != VxPointType_Plain) {
        glEnable(GL_LIGHTING);
        glEnable(GL_LIGHT0);
        glEnable(GL_COLOR_MATERIAL);
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
        const std::size_t i = static_cast<std::size_t>(m_hitPoint);
        Spheres(TypeAt(i), i, i + 1);
    }
    PopPass();
}

bool VxAuxPolyline::HitTest(int x, int y) {
    m_hitPoint = -1;
    if (m_render == nullptr) {
        return false;
    }
    const int precision = VxSystemOption::GetInstance()->GetHitPrecision();
    // First round: marked points, and only where the depth buffer shows them.
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        const VxPointType_e t = TypeAt(i);
        if (t == VxPointType_Plain || t == VxPointType_Cyan) {
            continue;
        }
        bool visible = false;
        const CPoint s = m_render->MapModelPointToScreen(m_points[i], &visible);
        if (visible && std::abs(s.x - x) + std::abs(s.y - y) < precision) {
            m_hitPoint = static_cast<int>(i);
            return true;
        }
    }
    // Second round: plain vertices, hidden or not.
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        if (TypeAt(i) != VxPointType_Plain) {
            continue;
        }
        const CPoint s = m_render->MapModelPointToScreen(m_points[i]);
        if (std::abs(s.x - x) + std::abs(s.y - y) < precision) {
            m_hitPoint = static_cast<int>(i);
            return true;
        }
    }
    return false;
}

bool VxAuxPolyline::StopHit() {
    if (m_hitPoint < 0) {
        return false;
    }
    return TypeAt(static_cast<std::size_t>(m_hitPoint)) != VxPointType_Plain;
}
