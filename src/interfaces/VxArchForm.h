// VxArchForm: the planned arch line of one jaw in a treatment scheme, kept both as the points
// the host placed and as the cubic interpolating curve through them that the tooth line overlay
// draws. It does not fit an arch to teeth; the points come from the host or a case file.
#pragma once

#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxPoint.h>

#include <vector>

class VxArchForm {
public:
    VxArchForm() = default;
    explicit VxArchForm(const std::vector<VxPoint>& points, bool closed = false);

    // The arch curve, or null when none could be made (fewer than two distinct points).
    VxBSplineCurve* GetCurve() { return m_curve.IsValid() ? &m_curve : nullptr; }
    const VxBSplineCurve* GetCurve() const { return m_curve.IsValid() ? &m_curve : nullptr; }
    const std::vector<VxPoint>& GetPoints() const { return m_points; }
    bool IsClosed() const { return m_closed; }

    // Keeps the points and rebuilds the curve through them; false (curve empty) when the points
    // do not make one.
    bool SetPoints(const std::vector<VxPoint>& points, bool closed = false);
    // Takes a ready curve, for hosts that store the spline itself; the point list is emptied.
    void SetCurve(const VxBSplineCurve& curve);

private:
    std::vector<VxPoint> m_points;
    bool m_closed = false;
    VxBSplineCurve m_curve; // empty when there is no arch
};
