// CRect: an integer rectangle (left, top, right, bottom), right and bottom exclusive.
#pragma once

#include <interfaces/CPoint.h>

class CRect {
public:
    CRect() = default;
    CRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
    CRect(const CRect&) = default;
    CRect& operator=(const CRect&) = default;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    // Empty when it has no area (zero or negative width or height).
    bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    void SetRect(int l, int t, int r, int b) {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }
    void SetRectEmpty() { left = top = right = bottom = 0; }
    bool PtInRect(const CPoint& p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }
    bool operator==(const CRect& r) const {
        return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
    }
    bool operator!=(const CRect& r) const { return !(*this == r); }

    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
