// VxAuxCircle: a ring, a disc or both, about a centre with a normal. Always drawn over the scene
// (no depth test), as a guide the user must see; the disc is a fixed translucent blue. Never hit.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

enum AuxCircleType_e : int {
    AuxCircleType_Outline = 0,
    AuxCircleType_Disc = 1,
    AuxCircleType_Both = 2,
};

class VxAuxCircle : public VxAuxObject {
public:
    VxAuxCircle() = default;
    VxAuxCircle(const VxAuxCircle&) = default;
    VxAuxCircle& operator=(const VxAuxCircle&) = default;
    ~VxAuxCircle() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    // The normal is stored normalised.
    void Set(const VxPoint& centre, const VxVector& normal, double radius);
    double GetRadius() const { return m_radius; }
    const VxPoint& GetCenter() const { return m_centre; }
    const VxVector& GetNormal() const { return m_normal; }
    void SetType(AuxCircleType_e type) { m_type = type; }

private:
    VxPoint m_centre;
    VxVector m_normal{0, 0, 1};
    double m_radius = 0.0;
    AuxCircleType_e m_type = AuxCircleType_Outline;
};
