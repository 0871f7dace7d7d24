// VxAuxLine: a segment in model space, solid or dashed, of a width in pixels. Hit within a fixed
// 10 pixels of its screen segment, measured in Manhattan distance; past either end the nearer
// end counts.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>

class VxOpenGLRender;

enum AuxLineType_e : int {
    AuxLineType_Dashed = 0,
    AuxLineType_Solid = 1, // any value but 0 draws solid
};

class VxAuxLine : public VxAuxObject {
public:
    VxAuxLine() = default;
    VxAuxLine(const VxAuxLine&) = default;
    VxAuxLine& operator=(const VxAuxLine&) = default;
    ~VxAuxLine() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    const VxPoint& StartPoint() const { return m_start; }
    void SetStartPoint(const VxPoint& p) { m_start = p; }
    const VxPoint& StopPoint() const { return m_stop; }
    void SetStopPoint(const VxPoint& p) { m_stop = p; }
    AuxLineType_e GetType() const { return m_type; }
    void SetType(AuxLineType_e type) { m_type = type; }
    int GetLineWidth() const { return m_width; }
    void SetLineWidth(int width) { m_width = width; }

    // Manhattan distance in pixels from (x, y) to the screen image of the segment start-stop:
    // to the foot of the perpendicular when it falls between the ends, else to the nearer end.
    static double ScreenSegmentDistance(VxOpenGLRender* render, const VxPoint& start,
                                        const VxPoint& stop, int x, int y);
    static constexpr double kHitTolerance = 10.0;

private:
    void DrawLine(int mode);

    VxPoint m_start;
    VxPoint m_stop;
    AuxLineType_e m_type = AuxLineType_Solid;
    int m_width = 2;
};
