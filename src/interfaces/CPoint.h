// CPoint: an integer window position, the stand-in for the desktop value class of that name.
#pragma once

class CPoint {
public:
    CPoint() = default;
    CPoint(int x_, int y_) : x(x_), y(y_) {}
    CPoint(const CPoint&) = default;
    CPoint& operator=(const CPoint&) = default;
    bool operator==(const CPoint& p) const { return x == p.x && y == p.y; }
    bool operator!=(const CPoint& p) const { return !(*this == p); }

    int x = 0;
    int y = 0;
};
