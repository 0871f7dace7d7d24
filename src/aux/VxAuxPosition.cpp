// VxAuxPosition: placement of the arrows and arcs of each move mode, their drawing by highlight,
// the hit rules and the drag arithmetic on the position frame.
#include <aux/VxAuxPosition.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxPlane.h>
#include <interfaces/VxQuaternion.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr double kQuarter = 0.7853981633975001;
constexpr double kThreeQuarters = 2.3561944901925003;

VxVector Q(const VxVector& axis, double angle, const VxVector& v) {
    return VxQuaternion::FromAxisAngle(axis, angle) * v;
}

bool Finite(const VxPoint& p) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

void StylePipeAndArrows(VxAuxPipeLine& pipe, VxAuxArrow* arrows, int count, const VxColor& c) {
    pipe.SetColor(c);
    pipe.SetIsFront(true);
    pipe.SetHitable(true);
    pipe.SetDrawHidden(false);
    pipe.SetStyle(AuxPipeLineStyle_Thick);
    for (int i = 0; i < count; ++i) {
        arrows[i].SetColor(c);
        arrows[i].SetIsFront(true);
        arrows[i].SetHitable(true);
        arrows[i].SetDrawHidden(false);
        arrows[i].SetDualArrow(false);
    }
}

void StyleLines(VxAuxLine* lines, const VxColor& c) {
    for (int i = 0; i < 2; ++i) {
        lines[i].SetColor(c);
        lines[i].SetLineWidth(1);
        lines[i].SetDrawHidden(true);
    }
}

template <typename T> void DrawByHighlight(T& o) {
    if (o.IsHighLight()) {
        o.DrawHighlight();
    } else {
        o.Draw();
    }
}

void Place(VxAuxLine& line, const VxPoint& a, const VxPoint& b) {
    line.SetStartPoint(a);
    line.SetStopPoint(b);
}

} // namespace

VxAuxPosition::VxAuxPosition() {
    InitParts();
}

void VxAuxPosition::InitParts() {
    const VxColor moveColours[3] = {VxColor(1, 1, 1, 100), VxColor(1, 148, 1, 100),
                                    VxColor(125, 1, 1, 100)};
    for (int k = 0; k < 3; ++k) {
        m_moveArrows[k].SetColor(moveColours[k]);
        m_moveArrows[k].SetDualArrow(true);
    }
    const VxColor groupColours[3] = {VxColor(138, 138, 1, 100), VxColor(1, 148, 1, 100),
                                     VxColor(1, 1, 156, 100)};
    for (int g = 0; g < 3; ++g) {
        StylePipeAndArrows(m_groups[g].pipe, m_groups[g].arrows, 2, groupColours[g]);
    }
    StyleLines(m_groups[0].lines, VxColor(165, 1, 165, 20));
    StyleLines(m_groups[1].lines, VxColor(165, 1, 165, 20));
    StyleLines(m_groups[2].lines, VxColor(1, 148, 1, 20));
    const VxColor wide(165, 1, 165, 100);
    StylePipeAndArrows(m_wide.pipes[0], m_wide.arrows, 4, wide);
    StylePipeAndArrows(m_wide.pipes[1], m_wide.arrows, 0, wide);
    StyleLines(m_wide.lines, VxColor(1, 159, 159, 20));
}

ObjectType_e VxAuxPosition::GetObjectType() const {
    return ObjectType_AuxPosition;
}

bool VxAuxPosition::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPosition || VxAuxFrame::IsKindOf(type);
}

void VxAuxPosition::SetShown(bool shown) {
    const int v = shown ? 1 : 0;
    SetVisible(v);
    for (VxAuxArrow& a : m_moveArrows) {
        a.SetVisible(v);
    }
    for (ArcGroup& g : m_groups) {
        g.pipe.SetVisible(v);
        for (int i = 0; i < 2; ++i) {
            g.lines[i].SetVisible(v);
            g.arrows[i].SetVisible(v);
        }
    }
    for (int i = 0; i < 2; ++i) {
        m_wide.pipes[i].SetVisible(v);
        m_wide.lines[i].SetVisible(v);
    }
    for (VxAuxArrow& a : m_wide.arrows) {
        a.SetVisible(v);
    }
}

bool VxAuxPosition::BuildArc(const std::vector<VxPoint>& points, VxAuxPipeLine& pipe,
                             VxAuxArrow& first, VxAuxArrow& last) {
    // A reference distance of zero puts infinities into the angles: such an arc has no shape,
    // and is left without a mesh rather than drawn from NaNs.
    for (const VxPoint& p : points) {
        if (!Finite(p)) {
            pipe.ClearMesh();
            return false;
        }
    }
    std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(points, false));
    if (!curve) {
        pipe.ClearMesh();
        return false;
    }
    pipe.SetBSplineCurve(curve.get());
    const VxVector t0 = (curve->Evaluate(0.0) - curve->Evaluate(0.001)).Normalized();
    const VxVector t1 = (curve->Evaluate(1.0) - curve->Evaluate(0.999)).Normalized();
    first.SetPoint(points.front(), points.front() + t0);
    last.SetPoint(points.back(), points.back() + t1);
    return true;
}

void VxAuxPosition::SetGeometry(const VxFrame& frame) {
    m_positionFrame = frame;
    if (m_moveMode == HandleMov_All) {
        for (HandleMovMode_e mode :
             {HandleMov_MoveX, HandleMov_MoveY, HandleMov_MoveZ, HandleMov_TurnY, HandleMov_TurnX,
              HandleMov_TurnXLower, HandleMov_TurnZ}) {
            SetGeometry(mode, frame);
        }
    } else {
        SetGeometry(m_moveMode, frame);
    }
    VxAuxFrame::SetGeometry(frame);
}

void VxAuxPosition::SetGeometry(const HandleMovMode_e& mode, const VxFrame& frame) {
    m_positionFrame = frame;
    const VxPoint o = frame.GetOrigin();
    const VxVector x = frame.DirX();
    const VxVector y = frame.DirY();
    const VxVector z = frame.DirZ();
    const double ref = m_refDist;
    const VxPoint p = o - (ref - 2.0) * z;
    switch (mode) {
    case HandleMov_MoveX:
    case HandleMov_MoveY:
    case HandleMov_MoveZ: {
        const VxVector a = mode == HandleMov_MoveX ? x : (mode == HandleMov_MoveY ? y : z);
        m_moveArrows[mode].SetPoint(p + 1.0 * (8.0 * a), p - 1.0 * (8.0 * a));
        break;
    }
    case HandleMov_TurnZ: {
        ArcGroup& g = m_groups[2];
        const VxPoint a0 = p + 5.0 * y;
        const VxPoint a1 = p + 5.0 * Q(z, kQuarter, y);
        const VxPoint a2 = p + 5.0 * Q(z, kThreeQuarters, y);
        const VxPoint a3 = p + 5.0 * Q(z, -kQuarter, y);
        const VxPoint a4 = p + 5.0 * Q(z, -kThreeQuarters, y);
        BuildArc({a2, a1, a0, a3, a4}, g.pipe, g.arrows[0], g.arrows[1]);
        Place(g.lines[0], a1, a4);
        Place(g.lines[1], a2, a3);
        m_groupMiddle[2] = a0;
        break;
    }
    case HandleMov_TurnY: {
        const VxPoint d = m_displayPoint;
        const double r = (ref + 5.0) * 1.0;
        const double angle = 15.0 / r;
        const VxPoint b0 = d + 6.0 * x;
        const VxPoint b1 = d + 6.0 * Q(y, angle, x);
        const VxPoint b2 = d + 6.0 * Q(y, -angle, x);
        BuildArc({b1, b0, b2}, m_wide.pipes[0], m_wide.arrows[0], m_wide.arrows[1]);
        const VxPoint c0 = d - 6.0 * x;
        const VxPoint c1 = d - 6.0 * Q(y, angle, x);
        const VxPoint c2 = d - 6.0 * Q(y, -angle, x);
        BuildArc({c1, c0, c2}, m_wide.pipes[1], m_wide.arrows[2], m_wide.arrows[3]);
        Place(m_wide.lines[0], b1, c1);
        Place(m_wide.lines[1], b2, c2);
        m_wideMiddle[0] = b0;
        m_wideMiddle[1] = c0;
        break;
    }
    case HandleMov_TurnX: {
        ArcGroup& g = m_groups[0];
        const double s = ref * 1.0;
        const VxPoint e0 = o - s * z;
        const VxPoint e1 = o - s * Q(x, 5.0 / s, z);
        const VxPoint e2 = o - s * Q(x, -5.0 / s, z);
        BuildArc({e1, e0, e2}, g.pipe, g.arrows[0], g.arrows[1]);
        Place(g.lines[0], o, e1);
        Place(g.lines[1], o, e2);
        m_groupMiddle[0] = e0;
        break;
    }
    case HandleMov_TurnXLower: {
        ArcGroup& g = m_groups[1];
        const double s = ref * 1.0;
        const VxPoint l = o - ref * z;
        const VxPoint f0 = l + s * z;
        const VxPoint f1 = l + s * Q(x, 5.0 / s, z);
        const VxPoint f2 = l + s * Q(x, -5.0 / s, z);
        BuildArc({f1, f0, f2}, g.pipe, g.arrows[0], g.arrows[1]);
        Place(g.lines[0], l, f1);
        Place(g.lines[1], l, f2);
        m_groupMiddle[1] = f0;
        break;
    }
    default:
        break;
    }
}

void VxAuxPosition::DrawGroup(ArcGroup& g) {
    DrawByHighlight(g.pipe);
    DrawByHighlight(g.arrows[0]);
    DrawByHighlight(g.arrows[1]);
    g.lines[0].Draw();
    g.lines[1].Draw();
}

void VxAuxPosition::Draw() {
    if (!IsVisible() || m_moveMode >= HandleMov_Unset || m_moveMode < HandleMov_MoveX) {
        return;
    }
    switch (m_moveMode) {
    case HandleMov_MoveX:
    case HandleMov_MoveY:
    case HandleMov_MoveZ:
        DrawByHighlight(m_moveArrows[m_moveMode]);
        break;
    case HandleMov_TurnZ:
        DrawGroup(m_groups[2]);
        break;
    case HandleMov_TurnX:
        DrawGroup(m_groups[0]);
        break;
    case HandleMov_TurnXLower:
        DrawGroup(m_groups[1]);
        break;
    case HandleMov_TurnY:
        for (int i = 0; i < 2; ++i) {
            DrawByHighlight(m_wide.pipes[i]);
            m_wide.lines[i].Draw();
            DrawByHighlight(m_wide.arrows[2 * i]);
            DrawByHighlight(m_wide.arrows[2 * i + 1]);
        }
        break;
    case HandleMov_All:
        for (VxAuxArrow& a : m_moveArrows) {
            DrawByHighlight(a);
        }
        for (int i = 0; i < 2; ++i) {
            DrawByHighlight(m_wide.pipes[i]);
            DrawByHighlight(m_wide.arrows[2 * i]);
            DrawByHighlight(m_wide.arrows[2 * i + 1]);
            m_wide.lines[i].Draw();
        }
        for (ArcGroup& g : m_groups) {
            DrawGroup(g);
        }
        break;
    default:
        break;
    }
}

void VxAuxPosition::HighlightWide(int on) {
    m_wide.pipes[0].SetHighLight(on);
    m_wide.pipes[1].SetHighLight(on);
    for (VxAuxArrow& a : m_wide.arrows) {
        a.SetHighLight(on);
    }
}

bool VxAuxPosition::HitGroup(ArcGroup& g, int x, int y) {
    const bool hit = g.pipe.HitTest(x, y) || g.arrows[0].HitTest(x, y) || g.arrows[1].HitTest(x, y);
    g.pipe.SetHighLight(hit ? 1 : 0);
    g.arrows[0].SetHighLight(hit ? 1 : 0);
    g.arrows[1].SetHighLight(hit ? 1 : 0);
    return hit;
}

bool VxAuxPosition::HitTest(int x, int y) {
    if (!IsVisible() || m_moveMode > HandleMov_All || m_moveMode < HandleMov_MoveX) {
        return false;
    }
    const auto wideArc = [&]() {
        for (int i = 0; i < 2; ++i) {
            if (m_wide.pipes[i].HitTest(x, y)) {
                HighlightWide(1);
                m_actualMode = HandleMov_TurnY;
                return true;
            }
            HighlightWide(0);
            if (m_wide.arrows[2 * i].HitTest(x, y) || m_wide.arrows[2 * i + 1].HitTest(x, y)) {
                HighlightWide(1);
                m_actualMode = HandleMov_TurnY;
                return true;
            }
            m_wide.pipes[1].SetHighLight(0);
            m_wide.lines[0].SetHighLight(0);
            for (VxAuxArrow& a : m_wide.arrows) {
                a.SetHighLight(0);
            }
        }
        return false;
    };
    switch (m_moveMode) {
    case HandleMov_MoveX:
    case HandleMov_MoveY:
    case HandleMov_MoveZ: {
        VxAuxArrow& a = m_moveArrows[m_moveMode];
        const bool hit = a.HitTest(x, y);
        a.SetHighLight(hit ? 1 : 0);
        if (hit) {
            m_actualMode = m_moveMode;
        }
        return hit;
    }
    case HandleMov_TurnZ:
    case HandleMov_TurnX:
        if (HitGroup(m_groups[m_moveMode == HandleMov_TurnZ ? 2 : 0], x, y)) {
            m_actualMode = m_moveMode;
            return true;
        }
        return false;
    case HandleMov_TurnXLower: {
        ArcGroup& g = m_groups[1];
        if (g.pipe.HitTest(x, y) || g.arrows[0].HitTest(x, y) || g.arrows[1].HitTest(x, y)) {
            g.pipe.SetHighLight(1);
            g.arrows[0].SetHighLight(1);
            g.arrows[1].SetHighLight(1);
            m_actualMode = m_moveMode;
            return true;
        }
        // The miss clears this group's pipe and the Z-turn group's arrows: the system's own
        // behaviour, kept so that hosts see the highlights they always have.
        g.pipe.SetHighLight(0);
        m_groups[2].arrows[0].SetHighLight(0);
        m_groups[2].arrows[1].SetHighLight(0);
        return false;
    }
    case HandleMov_TurnY:
        return wideArc();
    case HandleMov_All: {
        for (int k = 0; k < 3; ++k) {
            if (m_moveArrows[k].HitTest(x, y)) {
                m_moveArrows[k].SetHighLight(1);
                m_actualMode = static_cast<HandleMovMode_e>(k);
                return true;
            }
            m_moveArrows[k].SetHighLight(0);
        }
        if (wideArc()) {
            return true;
        }
        const HandleMovMode_e groupModes[3] = {HandleMov_TurnX, HandleMov_TurnXLower,
                                               HandleMov_TurnZ};
        for (int g = 0; g < 3; ++g) {
            if (HitGroup(m_groups[g], x, y)) {
                m_actualMode = groupModes[g];
                return true;
            }
        }
        return false;
    }
    default:
        return false;
    }
}

VxVector VxAuxPosition::Translate(const CPoint& from, const CPoint& to, bool slow, bool planar) {
    if (m_actualMode < HandleMov_MoveX || m_actualMode > HandleMov_MoveZ || m_render == nullptr) {
        return VxVector();
    }
    const VxPoint o = m_positionFrame.GetOrigin();
    const VxVector a =
        m_actualMode == HandleMov_MoveX
            ? m_positionFrame.DirX()
            : (m_actualMode == HandleMov_MoveY ? m_positionFrame.DirY() : m_positionFrame.DirZ());
    VxPoint p[2] = {o, o};
    const CPoint pixels[2] = {from, to};
    for (int i = 0; i < 2; ++i) {
        const VxPoint nearP = m_render->MapScreenPointToModel(pixels[i], 0.0);
        if (planar) {
            // A ray along the plane leaves the point at the origin: no movement.
            const VxPoint farP = m_render->MapScreenPointToModel(pixels[i], 1.0);
            if (nearP != farP) {
                VxPlane(o, m_positionFrame.DirZ()).Intersect(VxLine(nearP, farP - nearP), p[i]);
            }
        } else {
            p[i] = o + ((nearP - o) % a) * a;
        }
    }
    VxVector d = p[1] - p[0];
    if (slow) {
        d /= 10.0;
    }
    m_positionFrame.SetOrigin(o + d);
    const VxFrame frame = m_positionFrame;
    SetGeometry(frame);
    return d;
}

VxMatrix VxAuxPosition::Rotate(const CPoint& from, const CPoint& to, bool slow) {
    VxVector axis;
    const VxVector x = m_positionFrame.DirX();
    const VxVector y = m_positionFrame.DirY();
    const VxVector z = m_positionFrame.DirZ();
    switch (m_actualMode) {
    case HandleMov_TurnZ:
        axis = z;
        break;
    case HandleMov_TurnY:
        axis = y;
        break;
    case HandleMov_TurnX:
    case HandleMov_TurnXLower:
        axis = x;
        break;
    default:
        return VxMatrix::Identity(3);
    }
    if (m_render == nullptr) {
        return VxMatrix::Identity(3);
    }
    const VxPoint o = m_positionFrame.GetOrigin();
    const VxPlane plane(o, axis);
    const VxPoint l = o - m_refDist * z;
    // The move mode, not the actual one, decides where the cursor is measured from.
    const VxPoint centre = m_moveMode == HandleMov_TurnXLower ? l : o;
    VxVector w[2];
    const CPoint pixels[2] = {from, to};
    for (int i = 0; i < 2; ++i) {
        const VxPoint nearP = m_render->MapScreenPointToModel(pixels[i], 0.0);
        const VxPoint farP = m_render->MapScreenPointToModel(pixels[i], 1.0);
        VxPoint hit;
        if (nearP == farP || !plane.Intersect(VxLine(nearP, farP - nearP), hit)) {
            return VxMatrix::Identity(3);
        }
        w[i] = (hit - centre).Normalized();
    }
    VxVector n = w[0] * w[1];
    if (n.IsZero()) {
        return VxMatrix::Identity(3);
    }
    n.Normalize();
    double angle = std::acos(std::max(-1.0, std::min(1.0, w[0] % w[1])));
    if (slow) {
        angle /= 10.0;
    }
    const VxMatrix r4 = VxMatrix::s_GetRotationMatrix(n, angle);
    VxMatrix r(3, 3);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            r[i][j] = r4[i][j];
        }
    }
    VxVector x1 = x;
    VxVector y1 = y;
    switch (m_actualMode) {
    case HandleMov_TurnZ:
        x1 = r.Transform(x).Normalized();
        y1 = r.Transform(y).Normalized();
        break;
    case HandleMov_TurnY:
        x1 = r.Transform(x).Normalized();
        y1 = (z * x1).Normalized();
        break;
    default:
        y1 = r.Transform(y).Normalized();
        break;
    }
    m_positionFrame.SetFrame(x1, y1);
    const VxFrame frame = m_positionFrame;
    SetGeometry(frame);
    return r;
}

VxMatrix VxAuxPosition::Transform(const CPoint& from, const CPoint& to, bool slow, bool planar) {
    VxMatrix m = VxMatrix::Identity(4);
    if (m_actualMode >= HandleMov_MoveX && m_actualMode <= HandleMov_MoveZ) {
        const VxVector d = Translate(from, to, slow, planar);
        for (int i = 0; i < 3; ++i) {
            m[i][3] = d[i];
        }
    } else if (m_actualMode >= HandleMov_TurnZ && m_actualMode <= HandleMov_TurnXLower) {
        const VxMatrix r = Rotate(from, to, slow);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                m[i][j] = r[i][j];
            }
        }
    }
    return m;
}
