// VxToothRef: the feature-point rule (no point without a vertex).
#include <interfaces/VxToothRef.h>

void VxToothRef::SetFeaturePoint(const std::vector<VxFeaturePoint>& points) {
    m_featurePoints.clear();
    for (const VxFeaturePoint& p : points)
        AddFeaturePoint(p);
}

void VxToothRef::AddFeaturePoint(const VxFeaturePoint& point) {
    if (point.GetVtx() != nullptr)
        m_featurePoints.push_back(point);
}
