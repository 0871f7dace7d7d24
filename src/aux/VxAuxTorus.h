// VxAuxTorus: a lit tube along a circular arc (a rotation guide). Draws its hidden part too.
// Hit where the cursor ray's cut with the arc's plane, pulled onto the arc, lands within the
// pick tolerance of the cursor.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxAuxTorus : public VxAuxObject {
public:
    VxAuxTorus();
    VxAuxTorus(const VxAuxTorus&) = default;
    VxAuxTorus& operator=(const VxAuxTorus&) = default;
    ~VxAuxTorus() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    // sweep in radians, from `start` turning towards `second` about their cross product.
    void SetGeometry(double sweep, double radius, const VxPoint& centre, const VxVector& start,
                     const VxVector& second);
    // Axes only: the start axis is a, the second axis is at a right angle in the plane of a, b.
    void SetGeometry(const VxVector& a, const VxVector& b);
    void SetBoldStyle(bool bold) { m_bold = bold; }
    double GetSweep() const { return m_sweep; }
    const VxVector& GetStartAxis() const { return m_startAxis; }
    const VxVector& GetSecondAxis() const { return m_secondAxis; }

private:
    void DrawCore(int mode);
    void Tube(double tubeRadius) const;

    double m_sweep = 0.0;
    double m_radius = 0.0;
    VxPoint m_centre;
    VxVector m_startAxis{1, 0, 0};
    VxVector m_secondAxis{0, 1, 0};
    bool m_bold = false;
};
