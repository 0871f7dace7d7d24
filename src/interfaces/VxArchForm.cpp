// VxArchForm: rebuilding the arch curve from its points. The curve is held by value so a scheme
// copies its arches without any ownership bookkeeping.
#include <interfaces/VxArchForm.h>

#include <memory>

VxArchForm::VxArchForm(const std::vector<VxPoint>& points, bool closed) {
    SetPoints(points, closed);
}

bool VxArchForm::SetPoints(const std::vector<VxPoint>& points, bool closed) {
    m_points = points;
    m_closed = closed;
    std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(points, closed));
    m_curve = curve ? *curve : VxBSplineCurve();
    return m_curve.IsValid();
}

void VxArchForm::SetCurve(const VxBSplineCurve& curve) {
    m_points.clear();
    m_closed = curve.IsClosed();
    m_curve = curve;
}
