// NuGlyphCell: one glyph of the any-size text store, packed into three 32-bit words of 10-bit
// fields: the pen position the glyph was made at, its bitmap box, the bitmap's bearing and its
// GL texture. Every field keeps only its low 10 bits, so values wrap above 1023 (a negative
// bearing reads back as a large one). A cell whose left, right and bottom are all 0 has not been
// made yet.
#pragma once

#include <cstdint>

class NuGlyphCell {
public:
    unsigned int Left() const { return Field(0, 0); }
    unsigned int Top() const { return Field(0, 10); }
    unsigned int Right() const { return Field(0, 20); }
    unsigned int Bottom() const { return Field(1, 0); }
    unsigned int BitmapLeft() const { return Field(1, 10); }
    unsigned int BitmapTop() const { return Field(1, 20); }
    unsigned int Texture() const { return Field(2, 0); }

    void SetLeft(int v) { SetField(0, 0, v); }
    void SetTop(int v) { SetField(0, 10, v); }
    void SetRight(int v) { SetField(0, 20, v); }
    void SetBottom(int v) { SetField(1, 0, v); }
    void SetBitmapLeft(int v) { SetField(1, 10, v); }
    void SetBitmapTop(int v) { SetField(1, 20, v); }
    void SetTexture(unsigned int v) { SetField(2, 0, static_cast<int>(v)); }

    bool IsEmpty() const { return Left() == 0 && Right() == 0 && Bottom() == 0; }

    std::uint32_t words[3] = {0, 0, 0};

private:
    unsigned int Field(int word, int shift) const;
    void SetField(int word, int shift, int value);
};
