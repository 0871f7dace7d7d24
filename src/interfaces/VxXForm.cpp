// VxXForm: a similarity transform kept as rotation, translation and uniform scale. The rotation
// is stored as given; nothing re-orthonormalises it or checks that it is a rotation.
#include <interfaces/VxXForm.h>

VxXForm::VxXForm() : m_rotation(VxMatrix::Identity(3)) {}

VxMatrix VxXForm::GetRotation() const {
    return m_rotation;
}

void VxXForm::GetRotation(double* out16) const {
    // ToArray puts a 3 x 3 into the upper-left block of an identity, column by column.
    m_rotation.ToArray(out16);
}

void VxXForm::SetRotation(const VxMatrix& rotation) {
    if (rotation.Rows() < 3 || rotation.Cols() < 3) {
        return;
    }
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            m_rotation[r][c] = rotation[r][c];
        }
    }
}

VxMatrix VxXForm::GetMatrix() const {
    VxMatrix m = VxMatrix::Identity(4);
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            m[r][c] = m_scale * m_rotation[r][c];
        }
        m[r][3] = m_translation[r];
    }
    return m;
}

VxPoint VxXForm::Apply(const VxPoint& p) const {
    return VxPoint(Apply(static_cast<VxVector>(p)) + m_translation);
}

VxVector VxXForm::Apply(const VxVector& v) const {
    return m_rotation.Transform(v) * m_scale;
}
