// VxBBox: an axis-aligned box. A default box is empty (min above max) until a point is added.
#pragma once

#include <interfaces/VxPoint.h>

class VxBBox {
public:
    VxBBox();
    VxBBox(const VxPoint& minPnt, const VxPoint& maxPnt) : m_min(minPnt), m_max(maxPnt) {}

    bool IsEmpty() const {
        return m_min[0] > m_max[0] || m_min[1] > m_max[1] || m_min[2] > m_max[2];
    }
    void Add(const VxPoint& p);
    void Add(const VxBBox& box);
    VxPoint Center() const;
    // Length of the diagonal; 0 for an empty box.
    double Diagonal() const;
    const VxPoint& GetMinPnt() const { return m_min; }
    const VxPoint& GetMaxPnt() const { return m_max; }
    bool Contains(const VxPoint& p) const;

private:
    VxPoint m_min;
    VxPoint m_max;
};
