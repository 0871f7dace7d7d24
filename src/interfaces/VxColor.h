// VxColor: a colour of four ints, 0 to 255, and the few fixed colours the drawers share. Values
// outside 0..255 are clamped on construction so that a later glColor4ub cannot wrap.
#pragma once

class VxColor {
public:
    // Opaque black.
    VxColor() = default;
    VxColor(int r, int g, int b, int a = 255);

    int GetR() const { return m_r; }
    int GetG() const { return m_g; }
    int GetB() const { return m_b; }
    int GetA() const { return m_a; }
    void SetR(int r);
    void SetG(int g);
    void SetB(int b);
    void SetA(int a);
    bool operator==(const VxColor& c) const {
        return m_r == c.m_r && m_g == c.m_g && m_b == c.m_b && m_a == c.m_a;
    }
    bool operator!=(const VxColor& c) const { return !(*this == c); }

    // Selected auxiliary objects: the amber of the selected-mesh material (214, 164, 76).
    static VxColor GetAuxSelectColor();
    // The hit object's highlight: the blue of the tooth highlight material (76, 102, 204).
    static VxColor GetHighlightColor();
    // Limit positions (ghost placements): a clear red (230, 60, 60); the drawers set the alpha.
    static VxColor GetLimitedColor();
    // Filled wedges between teeth: a light sky blue (120, 190, 255); drawn with alpha 90.
    static VxColor GetWedgeColor();

private:
    int m_r = 0;
    int m_g = 0;
    int m_b = 0;
    int m_a = 255;
};
