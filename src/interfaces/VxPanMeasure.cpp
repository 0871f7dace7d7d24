// VxPanMeasure: reset to the state of a patient without a panoramic measure.
#include <interfaces/VxPanMeasure.h>

void VxPanMeasure::Clear() {
    m_bright = 0;
    m_contrast = 0;
    m_datas.clear();
}
