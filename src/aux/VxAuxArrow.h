// VxAuxArrow: a lit shaft with a cone head (or a head at both ends), oriented from start to stop.
// Its size is in model units; the bold style is three times as thick. Hit like a screen segment,
// or on its head alone.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxAuxArrow : public VxAuxObject {
public:
    // Draws its hidden part too: an arrow behind a tooth still shows its direction.
    VxAuxArrow();
    VxAuxArrow(const VxAuxArrow&) = default;
    VxAuxArrow& operator=(const VxAuxArrow&) = default;
    ~VxAuxArrow() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    void SetPoint(const VxPoint& start, const VxPoint& stop) {
        m_start = start;
        m_stop = stop;
    }
    const VxPoint& StartPoint() const { return m_start; }
    const VxPoint& StopPoint() const { return m_stop; }
    VxVector Direction() const { return (m_stop - m_start).Normalized(); }
    double Length() const { return m_start.DistanceToPoint(m_stop); }
    void SetBoldStyle(bool bold) { m_bold = bold; }
    void SetHitTestOnlyArrow(bool onlyArrow) { m_hitOnlyArrow = onlyArrow; }
    void SetDualArrow(bool dual) { m_dual = dual; }

    // Shaft radius (0.1, bold 0.3) and head length (ten radii).
    double ShaftRadius() const { return m_bold ? 0.3 : 0.1; }
    double HeadLength() const { return 10.0 * ShaftRadius(); }
    // The two rotation angles (radians) that turn the local z axis onto the direction: first
    // about x by -a0, then about y by -a1.
    static void OrientationAngles(const VxVector& direction, double& a0, double& a1);

private:
    void DrawCore(int mode);
    // Shaft and heads with the transform of the arrow; the colour is already set.
    void Geometry(double headLength) const;

    VxPoint m_start;
    VxPoint m_stop;
    bool m_bold = false;
    bool m_hitOnlyArrow = false;
    bool m_dual = false;
};
