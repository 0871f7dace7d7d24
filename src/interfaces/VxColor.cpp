// VxColor: clamping and the shared fixed colours.
#include <interfaces/VxColor.h>

#include <algorithm>

namespace {
int Clamp255(int v) {
    return std::min(255, std::max(0, v));
}
} // namespace

VxColor::VxColor(int r, int g, int b, int a)
    : m_r(Clamp255(r)), m_g(Clamp255(g)), m_b(Clamp255(b)), m_a(Clamp255(a)) {}

void VxColor::SetR(int r) {
    m_r = Clamp255(r);
}
void VxColor::SetG(int g) {
    m_g = Clamp255(g);
}
void VxColor::SetB(int b) {
    m_b = Clamp255(b);
}
void VxColor::SetA(int a) {
    m_a = Clamp255(a);
}

// The selection and highlight colours repeat the diffuse colours of the selected and highlighted
// tooth materials, so that an aux object and a mesh in the same state read as the same state.
VxColor VxColor::GetAuxSelectColor() {
    return VxColor(214, 164, 76, 255);
}
VxColor VxColor::GetHighlightColor() {
    return VxColor(76, 102, 204, 255);
}
VxColor VxColor::GetLimitedColor() {
    return VxColor(230, 60, 60, 255);
}
VxColor VxColor::GetWedgeColor() {
    return VxColor(120, 190, 255, 255);
}
