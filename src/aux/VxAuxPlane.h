// VxAuxPlane: a rectangle in model space, either a translucent fill or a millimetre ruler grid
// (grey lines every unit, green ones every five from the middle) with a green border. Drawn
// with the depth test on and never hit.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxBBox;
class VxPlane;

enum AuxPlaneStyle_e : int {
    AuxPlaneStyle_Translucent = 0,
    AuxPlaneStyle_Grid = 1, // any value but 0 draws the grid
};

class VxAuxPlane : public VxAuxObject {
public:
    VxAuxPlane() = default;
    VxAuxPlane(const VxAuxPlane&) = default;
    VxAuxPlane& operator=(const VxAuxPlane&) = default;
    ~VxAuxPlane() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    // Corners origin, origin + u, origin + u + v, origin + v.
    void Set(const VxPoint& origin, const VxVector& u, const VxVector& v);
    // A square in the plane, centred on the projection of the box's centre, with the side of
    // the box's diagonal.
    void Set(const VxBBox& box, const VxPlane& plane);
    void Get(VxPoint& origin, VxVector& u, VxVector& v) const;
    VxVector Normal() const;
    void SetPlaneStyle(AuxPlaneStyle_e style) { m_style = style; }

private:
    void Grid() const;

    VxPoint m_corners[4];
    AuxPlaneStyle_e m_style = AuxPlaneStyle_Translucent;
};
