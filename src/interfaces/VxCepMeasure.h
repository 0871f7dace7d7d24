// VxCepMeasure: the cephalometric measure of a patient: the brightness and contrast the user set
// for the X-ray, and the landmarks placed on it, by id. It neither places landmarks nor touches
// the picture; the X-ray overlay applies the two settings to its own copy.
#pragma once

#include <interfaces/CephalometricPt.h>
#include <interfaces/VxModelEnums.h>

#include <map>

class VxCepMeasure {
public:
    VxCepMeasure() = default;

    // Brightness and contrast positions; 0 leaves the picture as it is.
    int GetBrightPos() const { return m_bright; }
    int GetContrastPos() const { return m_contrast; }
    void SetBrightPos(int pos) { m_bright = pos; }
    void SetContrastPos(int pos) { m_contrast = pos; }

    // False, `pt` untouched, when the landmark was not placed.
    bool GetMeasurePt(MEASURE_POINT id, CephalometricPt& pt) const;
    // Stores the landmark under its own id, replacing an earlier one. Ids outside
    // 0..MEASURE_POINT_Count-1 are refused (false).
    bool SetMeasurePt(const CephalometricPt& pt);
    bool RemoveMeasurePt(MEASURE_POINT id) { return m_points.erase(id) != 0; }
    const std::map<MEASURE_POINT, CephalometricPt>& GetAllMeasurePts() const { return m_points; }
    void Clear();

private:
    int m_bright = 0;
    int m_contrast = 0;
    std::map<MEASURE_POINT, CephalometricPt> m_points;
};
