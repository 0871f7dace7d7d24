// VxBBox: an axis-aligned box grown point by point. An empty box has min above max, so adding
// the first point sets both; the empty box reports a zero centre and a zero diagonal.
#include <interfaces/VxBBox.h>

#include <algorithm>
#include <limits>

VxBBox::VxBBox()
    : m_min(std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
            std::numeric_limits<double>::max()),
      m_max(-std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
            -std::numeric_limits<double>::max()) {}

void VxBBox::Add(const VxPoint& p) {
    for (int i = 0; i < 3; ++i) {
        m_min[i] = std::min(m_min[i], p[i]);
        m_max[i] = std::max(m_max[i], p[i]);
    }
}

void VxBBox::Add(const VxBBox& box) {
    if (box.IsEmpty()) {
        return;
    }
    Add(box.m_min);
    Add(box.m_max);
}

VxPoint VxBBox::Center() const {
    if (IsEmpty()) {
        return VxPoint();
    }
    return VxPoint::Lerp(m_min, m_max, 0.5);
}

double VxBBox::Diagonal() const {
    return IsEmpty() ? 0.0 : m_min.DistanceToPoint(m_max);
}

bool VxBBox::Contains(const VxPoint& p) const {
    for (int i = 0; i < 3; ++i) {
        if (p[i] < m_min[i] || p[i] > m_max[i]) {
            return false;
        }
    }
    return true;
}
