// VxFDI: a tooth number in the two-digit FDI notation (ISO 3950) and its conversions: a 0-based
// position index, the position along the arch, and text in FDI, Universal or Palmer-style
// notation. Permanent teeth are quadrants 1-4, positions 1-8; deciduous teeth quadrants 5-8,
// positions 1-5. Any other number is invalid and converts to -1 or an empty text.
#pragma once

#include <interfaces/CString.h>
#include <interfaces/VxModelEnums.h>

class VxFDI {
public:
    VxFDI() = default;
    explicit VxFDI(int fdi) : m_fdi(fdi) {}

    int GetFDI() const { return m_fdi; }
    void SetFDI(int fdi) { m_fdi = fdi; }
    bool IsValid() const;
    bool IsDeciduous() const;
    // Quadrant 1 to 8 (0 when invalid) and position in the quadrant.
    int GetQuadrant() const { return IsValid() ? m_fdi / 10 : 0; }
    int GetPosition() const { return IsValid() ? m_fdi % 10 : 0; }
    // Upper jaw: quadrants 1, 2, 5, 6.
    bool IsUpper() const;

    // 0-based index over the 32 permanent positions, quadrant by quadrant:
    // (quadrant - 1) * 8 + position - 1, so 11 -> 0, 18 -> 7, 21 -> 8, 48 -> 31. A deciduous
    // tooth takes the index of the permanent tooth at its place (51 -> 0). -1 when invalid.
    int GetID() const;
    // Position along the arch, the order in which neighbours compare: 0 at the upper right third
    // molar, over the upper arch to 15 at the upper left third molar, then 16 at the lower left
    // third molar to 31 at the lower right one (the Universal number minus one). Deciduous teeth
    // take the index of their place. -1 when invalid.
    int GetCmpIndex() const;
    // Builds from a GetID index (0..31); an invalid VxFDI for anything else.
    static VxFDI FromID(int id);

    // FDI: "11"; Universal: "8" (deciduous "E"); Palmer: quadrant letters and position, "UR1"
    // (deciduous "URA"). Empty for an invalid number or an unknown notation.
    CString toString(FDIShowType_e type) const;
    // Callers pass the notation as a plain number as well (0 = FDI).
    CString toString(int type) const { return toString(static_cast<FDIShowType_e>(type)); }

    bool operator==(const VxFDI& o) const { return m_fdi == o.m_fdi; }
    bool operator!=(const VxFDI& o) const { return m_fdi != o.m_fdi; }
    bool operator<(const VxFDI& o) const { return m_fdi < o.m_fdi; }

private:
    int m_fdi = 0;
};
