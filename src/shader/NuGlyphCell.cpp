#include <shader/NuGlyphCell.h>

namespace {
constexpr std::uint32_t kMask = 0x3FFu;
}

unsigned int NuGlyphCell::Field(int word, int shift) const {
    return (words[word] >> shift) & kMask;
}

void NuGlyphCell::SetField(int word, int shift, int value) {
    // Two's complement bits of a negative value wrap the same way a too-large one does.
    const std::uint32_t bits = static_cast<std::uint32_t>(value) & kMask;
    words[word] = (words[word] & ~(kMask << shift)) | (bits << shift);
}
