// VxCepMeasure: landmark storage by id; ids come from files and hosts, so they are range-checked
// before they become map keys.
#include <interfaces/VxCepMeasure.h>

bool VxCepMeasure::GetMeasurePt(MEASURE_POINT id, CephalometricPt& pt) const {
    auto it = m_points.find(id);
    if (it == m_points.end())
        return false;
    pt = it->second;
    return true;
}

bool VxCepMeasure::SetMeasurePt(const CephalometricPt& pt) {
    const int id = static_cast<int>(pt.id);
    if (id < 0 || id >= static_cast<int>(MEASURE_POINT_Count))
        return false;
    m_points[pt.id] = pt;
    return true;
}

void VxCepMeasure::Clear() {
    m_bright = 0;
    m_contrast = 0;
    m_points.clear();
}
