// VxAuxFrame: geometry, drawing, hit rules and the drag arithmetic of the frame handle.
#include <aux/VxAuxFrame.h>

#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <interfaces/VxLine.h>

#include <algorithm>
#include <cmath>

namespace {

const VxColor kGreen(0, 255, 0, 100);
const VxColor kRed(255, 0, 0, 100);
const VxColor kYellow(255, 255, 0, 100);
const VxColor kTan(205, 165, 87, 100);
const VxColor kRingGrey(192, 191, 194, 100);

// The upper-left 3 x 3 of a 4 x 4 rotation.
VxMatrix Linear3(const VxMatrix& m) {
    VxMatrix r(3, 3);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            r[i][j] = m[i][j];
        }
    }
    return r;
}

VxVector Axis(const VxFrame& f, int k) {
    return k == 0 ? f.DirX() : (k == 1 ? f.DirY() : f.DirZ());
}

} // namespace

VxAuxFrame::VxAuxFrame() {
    InitParts();
}

VxAuxFrame::VxAuxFrame(const VxAuxFrame& other) : VxAuxObject(other) {
    InitParts();
    CopyFrom(other);
}

VxAuxFrame& VxAuxFrame::operator=(const VxAuxFrame& other) {
    if (this != &other) {
        VxAuxObject::operator=(other);
        CopyFrom(other);
    }
    return *this;
}

VxAuxFrame::~VxAuxFrame() = default;

void VxAuxFrame::InitParts() {
    m_centerBall.SetColor(kGreen);
    m_centerBall.SetStyle(AuxPointStyle_Huge);
    m_centerBall.SetDrawHidden(true);
    for (int i = 0; i < 6; ++i) {
        m_moveBalls[i].SetColor(kGreen);
        m_moveBalls[i].SetStyle(AuxPointStyle_Huge);
        m_moveBalls[i].SetDrawHidden(true);
        m_turnBalls[i].SetColor(kRed);
        m_turnBalls[i].SetStyle(AuxPointStyle_Huge);
        m_turnBalls[i].SetDrawHidden(true);
    }
    for (VxAuxLine& line : m_axisLines) {
        line.SetColor(kTan);
        line.SetType(AuxLineType_Solid);
        line.SetDrawHidden(true);
    }
    m_ring.SetVisible(0);
    const VxColor letterColours[3] = {VxColor(255, 0, 0, 100), VxColor(0, 255, 0, 100),
                                      VxColor(0, 0, 255, 100)};
    for (int k = 0; k < 3; ++k) {
        m_letters[k].SetTextType(Text_ModelNoDepth);
        m_letters[k].SetSize(25);
        m_letters[k].SetColor(letterColours[k]);
    }
}

void VxAuxFrame::CopyFrom(const VxAuxFrame& other) {
    m_frame = other.m_frame;
    m_circleFrame = other.m_circleFrame;
    m_refDist = other.m_refDist;
    for (int i = 0; i < 6; ++i) {
        m_moveBalls[i] = other.m_moveBalls[i];
        m_turnBalls[i] = other.m_turnBalls[i];
    }
    for (int k = 0; k < 3; ++k) {
        m_axisLines[k] = other.m_axisLines[k];
        // Glyph lists cannot be shared: the copy builds its own at its first draw.
        m_letters[k].SetColor(other.m_letters[k].GetColor());
        m_letters[k].SetTextPos(other.m_letters[k].GetTextPos());
        m_letters[k].SetVisible(other.m_letters[k].IsVisible() ? 1 : 0);
    }
    m_centerBall = other.m_centerBall;
    m_ring = other.m_ring;
    for (int i = 0; i < kTickCount; ++i) {
        m_ticks[i] = other.m_ticks[i];
    }
    m_hitIndex = other.m_hitIndex;
    m_operMode = other.m_operMode;
    m_supportTranslate = other.m_supportTranslate;
    m_showText = other.m_showText;
    m_supportInput = other.m_supportInput;
    m_viewAngleLimit = other.m_viewAngleLimit;
    m_frameSet = other.m_frameSet;
}

ObjectType_e VxAuxFrame::GetObjectType() const {
    return ObjectType_AuxFrame;
}

bool VxAuxFrame::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxFrame || VxAuxObject::IsKindOf(type);
}

void VxAuxFrame::SetGeometry(const VxFrame& frame) {
    m_frame = frame;
    if (!m_frameSet) {
        m_circleFrame = frame;
    }
    m_frameSet = true;
    const VxPoint o = frame.GetOrigin();
    const double r = m_refDist;
    for (int k = 0; k < 3; ++k) {
        const VxVector a = Axis(frame, k);
        m_moveBalls[k].SetPos(o + r * a);
        m_moveBalls[k + 3].SetPos(o - r * a);
        m_turnBalls[k].SetPos(o + 1.2 * (r * a));
        m_turnBalls[k + 3].SetPos(o - 1.2 * (r * a));
        m_axisLines[k].SetStartPoint(o + 1.2 * (r * a));
        m_axisLines[k].SetStopPoint(o - 1.2 * (r * a));
        m_letters[k].SetTextPos(o + 1.2 * (1.05 * r * a));
    }
    m_centerBall.SetPos(o);
}

void VxAuxFrame::SetShown(int shown) {
    SetVisible(shown);
    for (int i = 0; i < 6; ++i) {
        m_moveBalls[i].SetVisible(shown);
        m_turnBalls[i].SetVisible(shown);
    }
    for (VxAuxLine& line : m_axisLines) {
        line.SetVisible(shown);
    }
}

void VxAuxFrame::UpdateCircle(bool update) {
    if (update) {
        m_circleFrame = m_frame;
    }
}

double VxAuxFrame::GetAngleWithViewZ(const VxVector& v) const {
    if (m_render == nullptr) {
        return 90.0;
    }
    const VxVector direction = m_render->GetCursorRay(CPoint(0, 0)).Direction();
    double angle = std::abs(v.AngleWith(direction) * 180.0 / 3.141592653589793);
    if (angle > 90.0) {
        angle = 180.0 - angle;
    }
    return angle;
}

VxVector VxAuxFrame::TurnAxis(const VxFrame& frame, int hit) const {
    if (hit == 2 || hit == 5) {
        if (GetAngleWithViewZ(frame.DirY()) > m_viewAngleLimit) {
            return frame.DirX();
        }
        if (GetAngleWithViewZ(frame.DirX()) > m_viewAngleLimit) {
            return frame.DirY();
        }
        return frame.DirX();
    }
    return frame.DirZ();
}

void VxAuxFrame::Draw() {
    if (!IsVisible()) {
        return;
    }
    if (!m_lettersBuilt) {
        // Glyph lists need the context, which a draw always has.
        m_lettersBuilt = true;
        const wchar_t* names[3] = {L"X", L"Y", L"Z"};
        for (int k = 0; k < 3; ++k) {
            m_letters[k].SetText(CString(names[k]));
        }
    }
    m_centerBall.Draw();
    if (m_operMode == HandleOper_Rotate) {
        DrawRoationCicle();
    } else {
        HideRoationCicle();
    }
    bool shown[3];
    const bool all = OpenGLVersion::GetInstance()->Getmy_exe_type() == 4;
    for (int k = 0; k < 3; ++k) {
        shown[k] = all || GetAngleWithViewZ(Axis(m_frame, k)) > m_viewAngleLimit;
    }
    if (shown[0]) {
        m_turnBalls[0].Draw();
        m_turnBalls[3].Draw();
        m_axisLines[0].Draw();
        m_letters[0].Draw();
    }
    if (shown[1]) {
        m_turnBalls[1].Draw();
        m_turnBalls[4].Draw();
        m_axisLines[1].Draw();
        m_letters[1].Draw();
    }
    if (shown[2]) {
        // The negative Z move ball is the only move ball that shows; the others are grips.
        m_moveBalls[5].Draw();
        m_turnBalls[2].Draw();
        m_turnBalls[5].Draw();
        m_axisLines[2].Draw();
        m_letters[2].Draw();
    }
}

bool VxAuxFrame::HitTest(int x, int y) {
    m_hitIndex = -1;
    if (!IsVisible()) {
        return false;
    }
    if (m_supportTranslate) {
        if (m_centerBall.HitTest(x, y)) {
            m_centerBall.SetColor(kYellow);
            m_hitIndex = 6;
            m_operMode = HandleOper_Translate;
            return true;
        }
        m_centerBall.SetColor(kGreen);
        for (int i = 0; i < 6; ++i) {
            if (m_moveBalls[i].HitTest(x, y)) {
                m_moveBalls[i].SetColor(kYellow);
                m_hitIndex = i;
                m_operMode = HandleOper_Translate;
                return true;
            }
            m_moveBalls[i].SetColor(kGreen);
        }
    }
    for (int i = 0; i < 6; ++i) {
        if (m_turnBalls[i].HitTest(x, y)) {
            m_turnBalls[i].SetColor(kYellow);
            m_hitIndex = i;
            m_operMode = HandleOper_Rotate;
            m_circleFrame = m_frame;
            return true;
        }
        m_turnBalls[i].SetColor(kRed);
    }
    m_operMode = HandleOper_None;
    return false;
}

ClickObject VxAuxFrame::GetClickObject() const {
    if (m_operMode == HandleOper_Translate) {
        switch (m_hitIndex) {
        case 0:
        case 3:
            return Click_MoveX;
        case 1:
        case 4:
            return Click_MoveY;
        case 2:
        case 5:
            return Click_MoveZ;
        case 6:
            return Click_Center;
        default:
            return Click_None;
        }
    }
    if (m_operMode == HandleOper_Rotate) {
        switch (m_hitIndex) {
        case 0:
        case 1:
        case 3:
        case 4:
            return Click_TurnZ;
        case 2:
        case 5:
            return Click_TurnX;
        default:
            return Click_None;
        }
    }
    return Click_None;
}

bool VxAuxFrame::CursorOnPlane(const CPoint& p, const VxPlane& plane, VxPoint& hit) const {
    if (m_render == nullptr) {
        return false;
    }
    const VxPoint nearP = m_render->MapScreenPointToModel(p, 0.0);
    const VxPoint farP = m_render->MapScreenPointToModel(p, 1.0);
    if (nearP == farP) {
        return false;
    }
    return plane.Intersect(VxLine(nearP, farP - nearP), hit);
}

VxMatrix VxAuxFrame::Rotate(const CPoint& from, const CPoint& to, bool slow) {
    if (m_hitIndex < 0 || m_hitIndex > 5) {
        return VxMatrix::Identity(3);
    }
    const VxVector axis = TurnAxis(m_frame, m_hitIndex);
    const VxPoint o = m_frame.GetOrigin();
    const VxPlane plane(o, axis);
    VxPoint h0;
    VxPoint h1;
    if (!CursorOnPlane(from, plane, h0) || !CursorOnPlane(to, plane, h1)) {
        return VxMatrix::Identity(3);
    }
    const VxVector w0 = (h0 - o).Normalized();
    const VxVector w1 = (h1 - o).Normalized();
    VxVector n = w0 * w1;
    if (n.IsZero()) {
        return VxMatrix::Identity(3);
    }
    n.Normalize();
    double angle = std::acos(std::max(-1.0, std::min(1.0, w0 % w1)));
    if (slow) {
        angle /= 10.0;
    }
    const VxMatrix r = Linear3(VxMatrix::s_GetRotationMatrix(n, angle));
    const VxVector x = m_frame.DirX();
    const VxVector y = m_frame.DirY();
    const VxVector z = m_frame.DirZ();
    if (m_hitIndex == 2 || m_hitIndex == 5) {
        if (axis.IsParallelTo(x)) {
            m_frame.SetFrame(x, r.Transform(y));
        } else if (axis.IsParallelTo(y)) {
            m_frame.SetFrame(r.Transform(x), y);
        }
    } else {
        const VxVector x1 = r.Transform(x).Normalized();
        m_frame.SetFrame(x1, (z * x1).Normalized());
    }
    SetGeometry(m_frame);
    return r;
}

VxMatrix VxAuxFrame::Rotate(ClickObject click, double degrees) {
    if (click != Click_TurnX && click != Click_TurnY && click != Click_TurnZ) {
        return VxMatrix::Identity(3);
    }
    const VxVector x = m_frame.DirX();
    const VxVector y = m_frame.DirY();
    const VxVector z = m_frame.DirZ();
    const VxVector axis = click == Click_TurnX ? x : (click == Click_TurnY ? y : z);
    const double angle = degrees * 3.14159265359 / 180.0;
    const VxMatrix r = Linear3(VxMatrix::s_GetRotationMatrix(axis, angle));
    if (click == Click_TurnX) {
        m_frame.SetFrame(x, r.Transform(y));
    } else if (click == Click_TurnY) {
        m_frame.SetFrame(r.Transform(x), y);
    } else {
        const VxVector x1 = r.Transform(x).Normalized();
        m_frame.SetFrame(x1, (z * x1).Normalized());
    }
    SetGeometry(m_frame);
    return r;
}

VxVector VxAuxFrame::Translate(const CPoint& from, const CPoint& to, bool slow, bool planar) {
    VxVector a;
    switch (m_hitIndex) {
    case 0:
    case 3:
    case 6:
        a = m_frame.DirX();
        break;
    case 1:
    case 4:
        a = m_frame.DirY();
        break;
    case 2:
    case 5:
        a = m_frame.DirZ();
        break;
    default:
        return VxVector();
    }
    if (m_render == nullptr) {
        return VxVector();
    }
    const VxPoint o = m_frame.GetOrigin();
    VxPoint p[2] = {o, o};
    const CPoint pixels[2] = {from, to};
    if ((m_hitIndex == 0 || m_hitIndex == 1 || m_hitIndex == 6) && planar) {
        // A cursor ray along the plane leaves its point at the origin: no movement.
        const VxPlane plane(o, m_frame.DirZ());
        for (int i = 0; i < 2; ++i) {
            CursorOnPlane(pixels[i], plane, p[i]);
        }
    } else {
        for (int i = 0; i < 2; ++i) {
            const VxPoint q = m_render->MapScreenPointToModel(pixels[i], 0.0);
            p[i] = o + ((q - o) % a) * a;
        }
    }
    VxVector d = p[1] - p[0];
    if (slow) {
        d /= 10.0;
    }
    m_frame.SetOrigin(o + d);
    SetGeometry(m_frame);
    return d;
}

VxVector VxAuxFrame::Translate(ClickObject click, double distance) {
    if (click != Click_MoveX && click != Click_MoveY && click != Click_MoveZ) {
        return VxVector();
    }
    const VxVector d = distance * Axis(m_frame, static_cast<int>(click));
    m_frame.SetOrigin(m_frame.GetOrigin() + d);
    SetGeometry(m_frame);
    return d;
}

VxMatrix VxAuxFrame::Transform(const CPoint& from, const CPoint& to, bool slow, bool planar) {
    VxMatrix m = VxMatrix::Identity(4);
    if (m_operMode == HandleOper_Translate) {
        // The centre ball moves in the frame's XY plane whatever the caller asks.
        const VxVector d = Translate(from, to, slow, m_hitIndex == 6 ? true : planar);
        for (int i = 0; i < 3; ++i) {
            m[i][3] = d[i];
        }
    } else if (m_operMode == HandleOper_Rotate) {
        const VxMatrix r = Rotate(from, to, slow);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                m[i][j] = r[i][j];
            }
        }
    }
    return m;
}

VxMatrix VxAuxFrame::Transform(ClickObject click, double value) {
    VxMatrix m = VxMatrix::Identity(4);
    if (click == Click_MoveX || click == Click_MoveY || click == Click_MoveZ ||
        click == Click_Center) {
        const VxVector d = Translate(click, value);
        for (int i = 0; i < 3; ++i) {
            m[i][3] = d[i];
        }
    } else if (click == Click_TurnX || click == Click_TurnY || click == Click_TurnZ) {
        const VxMatrix r = Rotate(click, value);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                m[i][j] = r[i][j];
            }
        }
    }
    return m;
}

void VxAuxFrame::DrawRoationCicle() {
    const VxVector n = TurnAxis(m_circleFrame, m_hitIndex);
    const VxPoint c = m_circleFrame.GetOrigin();
    const double r = m_refDist;
    m_ring.Set(c, n, 1.2 * r);
    m_ring.SetColor(kRingGrey);
    m_ring.Draw();
    m_ring.SetIsFront(true);
    m_ring.SetVisible(1);
    VxVector b = m_circleFrame.DirY();
    if (n.IsParallelTo(m_circleFrame.DirY())) {
        b = m_circleFrame.DirX();
    }
    for (int i = 0; i < kTickCount; ++i) {
        const VxMatrix rot = VxMatrix::s_GetRotationMatrix(n, i * 1.0 * 3.14159265359 / 180.0);
        const VxVector v = rot.Transform(b).Normalized();
        const double m = i % 5 == 0 ? 1.3 : 1.25;
        VxAuxLine& tick = m_ticks[i];
        tick.SetStartPoint(c + 1.2 * (r * v));
        tick.SetStopPoint(c + m * (r * v));
        tick.SetType(AuxLineType_Solid);
        tick.SetColor(kRingGrey);
        tick.SetDrawHidden(true);
        tick.Draw();
    }
}

void VxAuxFrame::HideRoationCicle() {
    m_ring.SetVisible(0);
}
