// VxAuxBillBoard3d: a labelled pin. A leader line runs from a model point to a small diamond
// plate that carries the text in outline glyphs, facing the viewer. The plate keeps itself on the
// screen: near the edges it shrinks (to a fifth at most) and slides inward so that it stays within
// three quarters of the view. Two labels on one line can share it through their marks (2468 shows
// when the line's start lies at or above its stop, 1357 otherwise). The plate can be hit once it
// has been drawn.
#pragma once

#include <aux/VxAuxText.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxPoint.h>

#include <string>
#include <vector>

class VxViewRegion;

enum ANCHOR_POSITION : int {
    AnchorPosition_Below = 0,  // the line's end at the plate's lower tip: the plate stands on it
    AnchorPosition_Centre = 3, // half the text's width right, the plate's height down
    AnchorPosition_Side = 5,   // the text's width right, the plate stands on the end
};

class VxAuxBillBoard3d : public VxAuxText {
public:
    explicit VxAuxBillBoard3d(VxViewRegion* view = nullptr);
    ~VxAuxBillBoard3d() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void Draw(VxViewRegion* view) override;
    // Inside the plate as last drawn; false before the first drawing.
    bool HitTest(int x, int y) override;

    // The position becomes the stop; a line that falls towards its stop hangs the plate a
    // little lower.
    void SetLine(const VxPoint& start, const VxPoint& stop);
    void SetMark(int mark) { m_mark = mark; }
    int GetMark() const { return m_mark; }
    void SetRelatedView(VxViewRegion* view) { m_view = view; }
    VxViewRegion* GetRelatedView() const { return m_view; }
    void SetAnchorPosition(ANCHOR_POSITION anchor) { m_anchor = anchor; }
    ANCHOR_POSITION GetAnchor() const { return m_anchor; }
    // Leader, plate rim and plate text.
    void SetComponentsColor(VxColor leader, VxColor rim, VxColor text);
    // The lines after the first are a description, drawn under the label only when shown.
    void SetShowDescript(bool show) { m_showDescript = show; }
    bool GetShowDescript() const { return m_showDescript; }
    void SetcenterPt(const VxPoint& centre) { m_centre = centre; }
    bool IsPlateValid() const { return m_plateValid; }
    const VxPoint& GetPlateCorner(int i) const { return m_plate[i & 3]; }
    bool GetSideFlag() const { return m_side; }

private:
    // Places the plate (position, shrink) for the current matrices; false when the gate or a
    // missing renderer stops the drawing.
    bool Place(VxPoint& pos, double& scale, const double facing[16]);
    void DrawInModelCoordAllView(bool depth);
    void DrawInModelCoordAllViewOri(bool depth, const VxPoint& pos, double scale,
                                    const double facing[16]);
    // The same pieces through the shader renderer's line, quadrangle and text forms.
    void DrawOnShaderPath(bool depth, const VxPoint& pos, double scale, const double facing[16]);
    // The text's lines (at most five); the first is the label, the rest its description.
    std::vector<std::wstring> Lines() const;
    std::wstring FirstLine() const;

    VxPoint m_lineStart;
    VxPoint m_lineStop;
    VxPoint m_plate[4];
    bool m_plateValid = false;
    VxPoint m_centre;
    ANCHOR_POSITION m_anchor = AnchorPosition_Below;
    int m_spare0 = 0;
    int m_spare1 = 2;
    int m_drop = 5; // model units between the line's end and a hanging plate
    VxColor m_leaderColor{0, 0, 0};
    VxColor m_rimColor{0, 0, 0};
    VxColor m_textColor{0, 0, 0};
    VxViewRegion* m_view = nullptr;
    bool m_showDescript = false;
    float m_outline[8] = {-3, 0, 0, 3, 3, 0, 0, -3};
    int m_mark = 0;
    bool m_side = false;
    VxPoint m_second;
};
