#include <shader/NuGapCardLayout.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {
int Round(double v) {
    return static_cast<int>(std::lround(v));
}
std::array<CPoint, 4> Box(int left, int top, int right, int bottom) {
    return {CPoint(left, top), CPoint(right, top), CPoint(right, bottom), CPoint(left, bottom)};
}
} // namespace

NuGapCardLayout::NuGapCardLayout(CPoint c, double halfX, double halfY, bool wide) : centre(c) {
    const int hx = std::max(4, Round(wide ? 2.0 * halfX : halfX));
    const int hy = std::max(4, Round(halfY));
    card = Box(c.x - hx, c.y - hy, c.x + hx, c.y + hy);

    // Triangles in a column right of the card, one over the other, 8 pixels off its edge.
    const int half = std::max(4, Round(0.4 * hy));
    const int left = c.x + hx + kTriangleGap;
    const int upMid = c.y - hy / 2;
    const int downMid = c.y + hy / 2;
    upTriangle = {CPoint(left, upMid + half / 2), CPoint(left + 2 * half, upMid + half / 2),
                  CPoint(left + half, upMid - half)};
    downTriangle = {CPoint(left, downMid - half / 2), CPoint(left + 2 * half, downMid - half / 2),
                    CPoint(left + half, downMid + half)};

    // The lock sits above the card.
    const int side = std::max(6, Round(0.8 * hy));
    lock = Box(c.x - side / 2, c.y - hy - 4 - side, c.x - side / 2 + side, c.y - hy - 4);

    textOrigin = CPoint(c.x - 8, c.y + 4);
    m_rowLeft = c.x - hx;
    m_rowTop = c.y + hy + 4;
}

std::array<CPoint, 4> NuGapCardLayout::Row(int row) const {
    const int top = m_rowTop + row * kRowHeight;
    return Box(m_rowLeft, top, m_rowLeft + kRowWidth, top + kRowHeight);
}

std::wstring NuGapCardLayout::ValueText(float value) {
    if (std::isnan(value) || std::isinf(value)) {
        return std::wstring();
    }
    const double rounded = std::round(static_cast<double>(value) * 10.0) / 10.0;
    char text[64];
    std::snprintf(text, sizeof(text), "%f", rounded);
    const std::string s(text);
    std::string cut;
    if (value > 0.05f && value < 1.0f) {
        cut = s.substr(1, 2);
    } else if (value >= 1.0f) {
        cut = s.substr(0, 3);
    } else if (value < -0.05f && value > -1.0f) {
        cut = s.substr(2, 2);
    } else if (value <= -1.0f) {
        cut = s.substr(1, 3);
    }
    return std::wstring(cut.begin(), cut.end());
}
