// VxTreatStep: relative motion between two placements of one tooth. Both movements come from
// the same relative matrix from^-1 * to, so translation and rotation are read in one frame.
#include <interfaces/VxTreatStep.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

bool Is4x4(const VxMatrix& m) {
    return m.Rows() == 4 && m.Cols() == 4;
}

// from^-1 * to; false for a wrong size or a singular `from`.
bool Relative(const VxMatrix& from, const VxMatrix& to, VxMatrix& rel) {
    if (!Is4x4(from) || !Is4x4(to))
        return false;
    VxMatrix inv = from;
    if (!inv.Inverse())
        return false;
    rel = inv * to;
    return true;
}

} // namespace

VxTreatStep::VxTreatStep() : m_placement(VxMatrix::Identity(4)) {}

VxTreatStep::VxTreatStep(int fdi, int step, const VxMatrix& placement)
    : m_fdi(fdi), m_step(step), m_placement(VxMatrix::Identity(4)) {
    SetPlacement(placement);
}

void VxTreatStep::SetPlacement(const VxMatrix& placement) {
    m_placement = Is4x4(placement) ? placement : VxMatrix::Identity(4);
}

VxVector VxTreatStep::GetTransMove(const VxMatrix& from, const VxMatrix& to) {
    VxMatrix rel;
    if (!Relative(from, to, rel))
        return VxVector();
    return VxVector(rel[0][3], rel[1][3], rel[2][3]);
}

VxVector VxTreatStep::GetTransRotate(const VxMatrix& from, const VxMatrix& to) {
    VxMatrix rel;
    if (!Relative(from, to, rel))
        return VxVector();
    // Quaternion of the rotation block by the largest-diagonal branch (Shepperd): the
    // trace-only formula loses the axis near a half turn, where tooth data does land when a
    // host flips a frame.
    const double r00 = rel[0][0], r01 = rel[0][1], r02 = rel[0][2];
    const double r10 = rel[1][0], r11 = rel[1][1], r12 = rel[1][2];
    const double r20 = rel[2][0], r21 = rel[2][1], r22 = rel[2][2];
    const double trace = r00 + r11 + r22;
    double w, x, y, z;
    if (trace > r00 && trace > r11 && trace > r22) {
        const double s = 2.0 * std::sqrt(std::max(0.0, 1.0 + trace));
        w = 0.25 * s;
        x = (r21 - r12) / s;
        y = (r02 - r20) / s;
        z = (r10 - r01) / s;
    } else if (r00 >= r11 && r00 >= r22) {
        const double s = 2.0 * std::sqrt(std::max(0.0, 1.0 + r00 - r11 - r22));
        w = (r21 - r12) / s;
        x = 0.25 * s;
        y = (r01 + r10) / s;
        z = (r02 + r20) / s;
    } else if (r11 >= r22) {
        const double s = 2.0 * std::sqrt(std::max(0.0, 1.0 + r11 - r00 - r22));
        w = (r02 - r20) / s;
        x = (r01 + r10) / s;
        y = 0.25 * s;
        z = (r12 + r21) / s;
    } else {
        const double s = 2.0 * std::sqrt(std::max(0.0, 1.0 + r22 - r00 - r11));
        w = (r10 - r01) / s;
        x = (r02 + r20) / s;
        y = (r12 + r21) / s;
        z = 0.25 * s;
    }
    if (!std::isfinite(w) || !std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z))
        return VxVector();
    // q and -q are the same rotation; take the one with w >= 0 so the angle stays in 0..180.
    if (w < 0.0) {
        w = -w;
        x = -x;
        y = -y;
        z = -z;
    }
    const double sinHalf = std::sqrt(x * x + y * y + z * z);
    if (sinHalf <= 0.0)
        return VxVector();
    const double angleDeg = 2.0 * std::atan2(sinHalf, w) * 180.0 / kPi;
    const double k = angleDeg / sinHalf;
    return VxVector(x * k, y * k, z * k);
}

VxVector VxTreatStep::GetTransMove(const VxTreatStep* from, const VxTreatStep* to) {
    if (from == nullptr || to == nullptr)
        return VxVector();
    return GetTransMove(from->m_placement, to->m_placement);
}

VxVector VxTreatStep::GetTransRotate(const VxTreatStep* from, const VxTreatStep* to) {
    if (from == nullptr || to == nullptr)
        return VxVector();
    return GetTransRotate(from->m_placement, to->m_placement);
}
