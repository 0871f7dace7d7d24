// DrawInfo_s: one placement of an entity for a frame. A limited placement is a limit position:
// drawn as a see-through ghost in the limited colour, and never picked. Sets of placements are
// ordered by std::less<DrawInfo_s>: unlimited before limited, then the matrices by size and
// lexicographically by element, so that drawing order is stable from frame to frame.
#pragma once

#include <interfaces/VxMatrix.h>

#include <functional>

struct DrawInfo_s {
    bool limited = false;
    VxMatrix matrix;

    DrawInfo_s() { matrix.SetIdentity(); }
    DrawInfo_s(bool isLimited, const VxMatrix& m) : limited(isLimited), matrix(m) {}
};

// Strict weak order. Elements compare as numbers (so -0 and 0 are equal); a NaN is taken as
// greater than every number and equal to another NaN, which keeps the order strict and weak even
// for a broken matrix.
namespace vx_drawinfo_detail {
// -1, 0, 1 under the order above.
inline int CompareElement(double x, double y) {
    const bool nx = x != x;
    const bool ny = y != y;
    if (nx || ny) {
        return nx == ny ? 0 : (nx ? 1 : -1);
    }
    return x < y ? -1 : (y < x ? 1 : 0);
}
} // namespace vx_drawinfo_detail

inline bool DrawInfoLess(const DrawInfo_s& a, const DrawInfo_s& b) {
    if (a.limited != b.limited) {
        return !a.limited;
    }
    const VxMatrix& m = a.matrix;
    const VxMatrix& n = b.matrix;
    if (m.Rows() != n.Rows()) {
        return m.Rows() < n.Rows();
    }
    if (m.Cols() != n.Cols()) {
        return m.Cols() < n.Cols();
    }
    for (int r = 0; r < m.Rows(); ++r) {
        for (int c = 0; c < m.Cols(); ++c) {
            const int k = vx_drawinfo_detail::CompareElement(m[r][c], n[r][c]);
            if (k != 0) {
                return k < 0;
            }
        }
    }
    return false;
}
inline bool operator<(const DrawInfo_s& a, const DrawInfo_s& b) {
    return DrawInfoLess(a, b);
}

namespace std {
template <> struct less<DrawInfo_s> {
    bool operator()(const DrawInfo_s& a, const DrawInfo_s& b) const { return DrawInfoLess(a, b); }
};
} // namespace std
