// VxAuxPolyline2D: open outlines in pixels of the view they are drawn in, placed at a fraction of
// the view's width and height, in front of everything (depth range 0). Drawn in every view.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxPoint.h>

#include <vector>

class VxAuxPolyline2D : public VxAuxObject {
public:
    VxAuxPolyline2D() = default;
    VxAuxPolyline2D(const VxAuxPolyline2D&) = default;
    VxAuxPolyline2D& operator=(const VxAuxPolyline2D&) = default;
    ~VxAuxPolyline2D() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    // Adds one outline; its points are pixels from the placement, x right and y up.
    void AddPoint(const std::vector<VxPoint>& polyline) { m_polylines.push_back(polyline); }
    void Clear() { m_polylines.clear(); }
    // Placement as fractions of the view's width and height from its lower-left corner.
    void SetPos(double x, double y) {
        m_x = x;
        m_y = y;
    }
    const std::vector<std::vector<VxPoint>>& GetPolylines() const { return m_polylines; }

private:
    std::vector<std::vector<VxPoint>> m_polylines;
    double m_x = 0.0;
    double m_y = 0.0;
};
