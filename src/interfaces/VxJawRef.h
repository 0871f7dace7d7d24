// VxJawRef: the reference planes of one jaw: the beauty plane, the middle (sagittal) plane, the
// back boundary plane and the points that bound it. Each plane may be missing; the getters say
// so with their result and leave their arguments alone then. The host computes the planes; this
// class only keeps them.
#pragma once

#include <interfaces/VxBeautyPlane.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxPoint.h>

#include <optional>
#include <vector>

class VxJawRef {
public:
    VxJawRef() = default;
    explicit VxJawRef(bool isUp) : m_isUp(isUp) {}

    bool IsUp() const { return m_isUp; }
    void SetIsUp(bool isUp) { m_isUp = isUp; }

    // Null when the jaw has no beauty plane.
    VxBeautyPlane* GetBeautyPlane() { return m_beauty ? &*m_beauty : nullptr; }
    const VxBeautyPlane* GetBeautyPlane() const { return m_beauty ? &*m_beauty : nullptr; }
    void SetBeautyPlane(const VxBeautyPlane& plane) { m_beauty = plane; }
    void ClearBeautyPlane() { m_beauty.reset(); }

    // Frame (origin at a corner, X and Y spanning the plane) and side length; false when the
    // plane does not exist.
    bool GetMiddlePlane(VxFrame& frame, double& length) const;
    bool GetBackBoundaryPlane(VxFrame& frame, double& length) const;
    // The points that bound the back boundary plane, in the host's order; false when there are
    // none.
    bool GetBackBoundaryPlanePts(std::vector<VxPoint>& points) const;

    // A frame that was never set (VxFrame::IsValid false) does not make a plane: false, and the
    // earlier plane stays.
    bool SetMiddlePlane(const VxFrame& frame, double length);
    bool SetBackBoundaryPlane(const VxFrame& frame, double length);
    void SetBackBoundaryPlanePts(const std::vector<VxPoint>& points) { m_backPts = points; }
    void ClearMiddlePlane() { m_hasMiddle = false; }
    void ClearBackBoundaryPlane() { m_hasBack = false; }

private:
    bool m_isUp = true;
    std::optional<VxBeautyPlane> m_beauty;
    bool m_hasMiddle = false;
    VxFrame m_middleFrame;
    double m_middleLength = 0.0;
    bool m_hasBack = false;
    VxFrame m_backFrame;
    double m_backLength = 0.0;
    std::vector<VxPoint> m_backPts;
};
