// VxAuxPoint: a marked position in model space, a lit sphere whose radius (model units) depends
// on the style, or a plain screen-sized dot for style 4. Hit within the pick tolerance of its
// screen position.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>

// Style values: sphere radius in Draw / in DrawHighlight.
enum AuxPointStyle_e : int {
    AuxPointStyle_Normal = 0, // 0.2 / 0.2
    AuxPointStyle_Tiny = 1,   // 0.05 / 0.2
    AuxPointStyle_Large = 2,  // 0.4 / 0.5
    AuxPointStyle_Huge = 3,   // 0.6 / 0.2
    AuxPointStyle_Dot = 4,    // unlit point of 6 / 8 pixels
    AuxPointStyle_Medium = 5, // 0.3 / 0.3
};

class VxAuxPoint : public VxAuxObject {
public:
    VxAuxPoint() = default;
    VxAuxPoint(const VxAuxPoint&) = default;
    VxAuxPoint& operator=(const VxAuxPoint&) = default;
    ~VxAuxPoint() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    const VxPoint& GetPos() const { return m_pos; }
    void SetPos(const VxPoint& pos) { m_pos = pos; }
    AuxPointStyle_e GetStyle() const { return m_style; }
    void SetStyle(AuxPointStyle_e style) { m_style = style; }

    // A lit sphere of 32 slices and 32 stacks about the origin, from one cached array of
    // triangles per radius: one draw call rather than two thousand immediate-mode vertices, so
    // a few hundred marks stay cheap in a frame.
    static void DrawSphere(double radius);

    // Radius of a style's sphere (0 for the dot style).
    static double DrawRadius(int style);
    static double HighlightRadius(int style);

private:
    void DrawPoint(int mode);
    // The geometry in the colour already set: a dot or a sphere of `radius`.
    void Shape(double radius, float dotSize) const;

    VxPoint m_pos;
    AuxPointStyle_e m_style = AuxPointStyle_Normal;
};
