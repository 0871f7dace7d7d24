// NuGapCardLayout: where the parts of one gap card lie, in window pixels with y down: the card,
// the up and down triangles to its right, the lock above it and the rows of its pop-up list
// below it. The visible pass and the pick pass both lay a card out through this class, so a
// pick at any drawn pixel finds the element drawn there.
#pragma once

#include <interfaces/CPoint.h>

#include <array>
#include <string>

class NuGapCardLayout {
public:
    static constexpr int kTriangleGap = 8; // pixels between the card and its triangles
    static constexpr int kRowHeight = 24;
    static constexpr int kRowWidth = 208; // twelve characters of 16 pixels and a margin
    static constexpr int kRowPixelSize = 16;
    static constexpr int kRowCharsPerLine = 12;

    // centre: the card's centre; halfX, halfY: the half extents of a card of size 1 x 1 in
    // pixels; wide: the gap card, twice as wide.
    NuGapCardLayout(CPoint centre, double halfX, double halfY, bool wide);

    // Corners run top-left, top-right, bottom-right, bottom-left.
    std::array<CPoint, 4> card;
    std::array<CPoint, 3> upTriangle;
    std::array<CPoint, 3> downTriangle;
    std::array<CPoint, 4> lock;
    std::array<CPoint, 4> Row(int row) const;
    // Where the value text starts: (-8, 4) from the centre, as the card has always written it.
    CPoint textOrigin;
    CPoint centre;

    // The card's text: the value rounded to a tenth, without its sign (the card's kind tells
    // it) and without a leading zero below 1: 0.34 -> ".3", 1.26 -> "1.3", -0.34 -> ".3";
    // empty between -0.05 and 0.05.
    static std::wstring ValueText(float value);

private:
    int m_rowLeft = 0;
    int m_rowTop = 0;
};
