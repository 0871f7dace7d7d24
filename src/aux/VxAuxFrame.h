// VxAuxFrame: the on-screen handle with which the user moves and turns whatever the host ties to
// a frame of axes. A small centre ball, three axis lines with their letters and balls on the
// axes: the ball under the cursor chooses the action, and each step of a drag comes back as a
// translation or a rotation that the caller applies to what the handle controls. The object
// knows nothing of what it moves.
//
// Only the Z axis' negative move ball is drawn; the other five move balls are invisible grips
// that HitTest still finds. The X and Y turn balls both turn about Z and the Z turn balls about X
// (or Y when X looks at the viewer), and a mouse turn rotates about the cross product of the two
// cursor directions, whose sign carries the direction of the turn.
#pragma once

#include <aux/VxAuxCircle.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxObject.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxText.h>
#include <interfaces/CPoint.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxPlane.h>
#include <interfaces/VxVector.h>

enum HandleOperMode_e : int {
    HandleOper_Translate = 0,
    HandleOper_Rotate = 1,
    HandleOper_None = 2,
};

// The action of a handle in one value.
enum ClickObject : int {
    Click_MoveX = 0,
    Click_MoveY = 1,
    Click_MoveZ = 2,
    Click_TurnX = 3,
    Click_TurnY = 4, // no ball gives it: only the numeric Rotate reaches it
    Click_TurnZ = 5,
    Click_Center = 6,
    Click_None = 7,
};

class VxAuxFrame : public VxAuxObject {
public:
    VxAuxFrame();
    VxAuxFrame(const VxAuxFrame& other);
    VxAuxFrame& operator=(const VxAuxFrame& other);
    ~VxAuxFrame() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override {}
    // Records the hit index and the oper mode and recolours the balls: yellow for the hit, the
    // rest tested before it back to their own colour.
    bool HitTest(int x, int y) override;

    // Stores the frame and places every part about it; the first call also fixes the ring's frame.
    void SetGeometry(const VxFrame& frame);
    // Radius of the geometry in model units; takes effect at the next SetGeometry. Sizes do not
    // follow the zoom: a caller wanting a constant screen size sets both again.
    void SetRefDist(double dist) { m_refDist = dist; }
    double GetRefDist() const { return m_refDist; }
    // Visibility of the object, its twelve balls and three lines (not the centre ball, the ring
    // or the letters).
    void SetShown(int shown);
    ClickObject GetClickObject() const;

    // Mouse forms: from and to are window pixels, y from the top. slow takes a tenth of the step.
    VxMatrix Rotate(const CPoint& from, const CPoint& to, bool slow);
    VxMatrix Rotate(ClickObject click, double degrees);
    VxVector Translate(const CPoint& from, const CPoint& to, bool slow, bool planar);
    VxVector Translate(ClickObject click, double distance);
    // 4 x 4: a translation in the last column or a rotation about the coordinate origin (the
    // frame has turned about its own origin; the caller composes the pivot).
    VxMatrix Transform(const CPoint& from, const CPoint& to, bool slow, bool planar);
    VxMatrix Transform(ClickObject click, double value);
    // True: the ring's frame becomes the current frame.
    void UpdateCircle(bool update);

    VxFrame& GetFrame() { return m_frame; }
    const VxFrame& GetFrame() const { return m_frame; }
    const VxFrame& GetCircleFrame() const { return m_circleFrame; }
    int GetHitIndex() const { return m_hitIndex; }
    void SetHitIndex(int index) { m_hitIndex = index; }
    HandleOperMode_e GetOperMode() const { return m_operMode; }
    void SetShowText(bool show) { m_showText = show; }
    void SetSupportInput(bool support) { m_supportInput = support; }
    bool IsSupportInput() const { return m_supportInput; }
    void SetSupportTranslate(bool support) { m_supportTranslate = support; }
    double GetViewAngleLimit() const { return m_viewAngleLimit; }

    // The parts, for hosts and tests that look at where things are.
    const VxAuxPoint& MoveBall(int i) const { return m_moveBalls[i]; }
    const VxAuxPoint& TurnBall(int i) const { return m_turnBalls[i]; }
    const VxAuxPoint& CenterBall() const { return m_centerBall; }
    const VxAuxLine& AxisLine(int i) const { return m_axisLines[i]; }
    const VxAuxText& AxisLetter(int i) const { return m_letters[i]; }
    const VxAuxCircle& Ring() const { return m_ring; }
    const VxAuxLine& RingTick(int i) const { return m_ticks[i]; }

    static constexpr int kTickCount = 360;

protected:
    // Degrees between the vector and the viewing direction, folded into [0, 90]: 0 looks along
    // the view, 90 lies in the screen plane.
    double GetAngleWithViewZ(const VxVector& v) const;
    // The axis a turn of hit index `hit` rotates about, taken from `frame`'s axes.
    VxVector TurnAxis(const VxFrame& frame, int hit) const;
    void DrawRoationCicle();
    void HideRoationCicle();
    void DrawAll() {}

private:
    void InitParts();
    void CopyFrom(const VxAuxFrame& other);
    // Line from the near to the far point of a window pixel, cut with a plane.
    bool CursorOnPlane(const CPoint& p, const VxPlane& plane, VxPoint& hit) const;

    VxFrame m_frame;
    VxFrame m_circleFrame;
    double m_refDist = 0.0;
    VxAuxPoint m_moveBalls[6];
    VxAuxPoint m_turnBalls[6];
    VxAuxLine m_axisLines[3];
    VxAuxPoint m_centerBall;
    VxAuxCircle m_ring;
    // Prebuilt so that a turning drag allocates nothing.
    VxAuxLine m_ticks[kTickCount];
    VxAuxText m_letters[3];
    bool m_lettersBuilt = false;
    int m_hitIndex = -1;
    HandleOperMode_e m_operMode = HandleOper_None;
    bool m_supportTranslate = true;
    bool m_showText = true;
    bool m_supportInput = true;
    double m_viewAngleLimit = 60.0;
    bool m_frameSet = false;
};
