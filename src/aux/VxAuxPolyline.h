// VxAuxPolyline: a line through points in model space with optional marked points (spheres).
// Style 4 draws the points as two closed halves and colours each red where it crosses itself,
// the check a host uses while the user draws two outlines. A hit on a marked point ends the
// registry's search; a hit on a plain vertex lets later objects have a try.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>

#include <vector>

enum AuxPolylineStyle_e : int {
    AuxPolylineStyle_Points = 0, // marked points only
    AuxPolylineStyle_Line = 1,   // the line only
    AuxPolylineStyle_LineAndPoints = 2,
    AuxPolylineStyle_None = 3,      // nothing drawn, still hit
    AuxPolylineStyle_TwoHalves = 4, // two self-checked halves and the marked points
};

// Per point of a polyline.
enum VxPointType_e : int {
    VxPointType_Plain = 0,  // no sphere; hit in the second round only
    VxPointType_Marked = 1, // sphere in the object's colour; hit in the first round
    VxPointType_Green = 2,  // green sphere; hit in the first round
    VxPointType_Cyan = 3,   // cyan sphere; never hit
};

class VxAuxPolyline : public VxAuxObject {
public:
    VxAuxPolyline() = default;
    VxAuxPolyline(const VxAuxPolyline&) = default;
    VxAuxPolyline& operator=(const VxAuxPolyline&) = default;
    ~VxAuxPolyline() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;
    bool StopHit() override;

    // Writing through this must not change the length: the types follow the points.
    std::vector<VxPoint>& GetPoints() { return m_points; }
    const std::vector<VxPoint>& GetPoints() const { return m_points; }
    // Replaces the points; every type becomes plain.
    void SetPoints(const std::vector<VxPoint>& points);
    // Copies over the front of the types; never changes their count.
    void SetPointsType(const std::vector<VxPointType_e>& types);
    const std::vector<VxPointType_e>& GetPointsType() const { return m_types; }
    void RemovePoint(int index);
    AuxPolylineStyle_e GetType() const { return m_style; }
    void SetType(AuxPolylineStyle_e style) { m_style = style; }
    // The point the last HitTest found, -1 for none.
    int GetHitPointIdx() const { return m_hitPoint; }

    static constexpr double kSphereRadius = 0.2;

private:
    void DrawPolyLine(int mode);
    void Strip(std::size_t from, std::size_t to) const;
    void Spheres(VxPointType_e type, std::size_t from, std::size_t to) const;
    // Plain where a type is missing (points added through GetPoints).
    VxPointType_e TypeAt(std::size_t i) const;

    std::vector<VxPoint> m_points;
    AuxPolylineStyle_e m_style = AuxPolylineStyle_LineAndPoints;
    int m_hitPoint = -1;
    std::vector<VxPointType_e> m_types;
};
