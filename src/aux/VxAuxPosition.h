// VxAuxPosition: the second manipulator. Dual arrows for the moves and curved pipes with cone
// tips for the turns, placed about a frame; the move mode chooses one movement or all of them.
// A hit sets the highlight flags of the pieces it finds, which is how the next Draw shows them,
// and records the actual move mode, which the drag steps read.
//
// It derives from the frame handle and keeps the base's parts placed, but never draws them; the
// base's numeric Rotate and Translate act on the base's frame, not on the position frame.
// In mode 6 a miss clears the pipe of the mode's own group but the arrows of the Z-turn group,
// so the mode's arrows keep a highlight until a hit in another mode changes them.
#pragma once

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxFrame.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxPipeLine.h>
#include <interfaces/VxPoint.h>

#include <vector>

enum HandleMovMode_e : int {
    HandleMov_MoveX = 0,
    HandleMov_MoveY = 1,
    HandleMov_MoveZ = 2,
    HandleMov_TurnZ = 3,
    HandleMov_TurnY = 4,      // the wide arc about the display point
    HandleMov_TurnX = 5,      // cursor measured from the origin
    HandleMov_TurnXLower = 6, // cursor measured from the lower point L = O - ref Z
    HandleMov_All = 7,
    HandleMov_Unset = 8, // no hit yet
};

class VxAuxPosition : public VxAuxFrame {
public:
    // A turn handle: a pipe, the two lines of its spokes and the two cone tips.
    struct ArcGroup {
        VxAuxPipeLine pipe;
        VxAuxLine lines[2];
        VxAuxArrow arrows[2];
    };
    struct WideArc {
        VxAuxPipeLine pipes[2];
        VxAuxLine lines[2];
        VxAuxArrow arrows[4];
    };

    VxAuxPosition();
    VxAuxPosition(const VxAuxPosition&) = default;
    VxAuxPosition& operator=(const VxAuxPosition&) = default;
    ~VxAuxPosition() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override {}
    bool HitTest(int x, int y) override;

    // Places the parts of the move mode (all of them for mode 7) and the base's parts.
    void SetGeometry(const VxFrame& frame);
    void SetRefDist(double dist) { m_refDist = dist; }
    double GetRefDist() const { return m_refDist; }
    void SetMoveMode(HandleMovMode_e mode) { m_moveMode = mode; }
    HandleMovMode_e GetMovMode() const { return m_moveMode; }
    HandleMovMode_e GetActualMovMode() const { return m_actualMode; }
    void SetDisplayPoint(const VxPoint& p) { m_displayPoint = p; }
    void SetShown(bool shown);
    void SetShowText(bool show) { m_showText = show; }
    void SetSupportInput(bool support) {
        m_supportInput = support;
        VxAuxFrame::SetSupportInput(support);
    }
    bool IsSupportInput() const { return m_supportInput; }

    VxMatrix Rotate(const CPoint& from, const CPoint& to, bool slow);
    VxVector Translate(const CPoint& from, const CPoint& to, bool slow, bool planar);
    VxMatrix Transform(const CPoint& from, const CPoint& to, bool slow, bool planar);

    const VxFrame& GetPositionFrame() const { return m_positionFrame; }
    const VxAuxArrow& MoveArrow(int i) const { return m_moveArrows[i]; }
    // Group 0 serves mode 5, group 1 mode 6, group 2 mode 3.
    const ArcGroup& Group(int i) const { return m_groups[i]; }
    const WideArc& GetWideArc() const { return m_wide; }
    // The point each pipe's curve runs through halfway (the middle of the points it was built
    // through); the origin for a pipe not built.
    VxPoint PipeMiddle(int group) const { return m_groupMiddle[group]; }
    VxPoint WidePipeMiddle(int i) const { return m_wideMiddle[i]; }

protected:
    void SetGeometry(const HandleMovMode_e& mode, const VxFrame& frame);

private:
    void InitParts();
    // Interpolates the points into the pipe and puts cone tips at both ends; false, pipe
    // cleared, when the points are not finite or too few.
    static bool BuildArc(const std::vector<VxPoint>& points, VxAuxPipeLine& pipe, VxAuxArrow& first,
                         VxAuxArrow& last);
    void DrawGroup(ArcGroup& g);
    bool HitGroup(ArcGroup& g, int x, int y);
    void HighlightWide(int on);

    VxFrame m_positionFrame;
    VxFrame m_secondFrame;
    VxPoint m_displayPoint;
    double m_refDist = 0.0;
    HandleMovMode_e m_moveMode = HandleMov_MoveX;
    HandleMovMode_e m_actualMode = HandleMov_Unset;
    bool m_flag = false;
    bool m_showText = true;
    bool m_supportInput = true;
    VxAuxArrow m_moveArrows[3];
    ArcGroup m_groups[3];
    WideArc m_wide;
    VxPoint m_groupMiddle[3];
    VxPoint m_wideMiddle[2];
};
