// VxPanMeasure: the panoramic film's measure: the brightness and contrast the user set for it
// and the landmarks placed on it, in the order they were placed. It does not place landmarks or
// touch the picture; the panoramic overlay turns the landmarks into markers.
#pragma once

#include <interfaces/PanAttribute.h>

#include <vector>

class VxPanMeasure {
public:
    VxPanMeasure() = default;

    // Brightness and contrast positions; 0 leaves the picture as it is.
    int GetBrightPos() const { return m_bright; }
    int GetContrastPos() const { return m_contrast; }
    void SetBrightPos(int pos) { m_bright = pos; }
    void SetContrastPos(int pos) { m_contrast = pos; }

    // True when at least one landmark has been placed.
    bool HasData() const { return !m_datas.empty(); }
    const std::vector<PanAttribute>& GetDatas() const { return m_datas; }
    void SetDatas(const std::vector<PanAttribute>& datas) { m_datas = datas; }
    void AddData(const PanAttribute& data) { m_datas.push_back(data); }
    void Clear();

private:
    int m_bright = 0;
    int m_contrast = 0;
    std::vector<PanAttribute> m_datas;
};
