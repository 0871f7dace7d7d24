// VxIPR: the record's one query. GetIPRInfo copies the teeth because its callers hold teeth by
// value (the label forms take VxTooth arguments); callers that only need the pair use
// GetFirstTooth and GetSecondTooth and skip the mesh copy.
#include <interfaces/VxIPR.h>

#include <interfaces/VxTooth.h>

VxIPR::VxIPR(VxTooth* first, VxTooth* second, int step, double value, double maxGapValue,
             const VxPoint& gapPos)
    : m_first(first), m_second(second), m_step(step), m_value(value), m_maxGapValue(maxGapValue),
      m_gapPos(gapPos) {}

bool VxIPR::GetIPRInfo(VxTooth* first, VxTooth* second, int& step, double& value) const {
    if (m_first == nullptr || m_second == nullptr)
        return false;
    if (first != nullptr && first != m_first)
        *first = *m_first;
    if (second != nullptr && second != m_second)
        *second = *m_second;
    step = m_step;
    value = m_value;
    return true;
}
