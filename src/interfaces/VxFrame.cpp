// VxFrame: an orthonormal frame built by Gram-Schmidt from two directions, right-handed when
// built, left-handed after a mirroring Transform. It does not keep scale or shear: a frame moved
// by such a matrix is re-orthonormalised, X first.
#include <interfaces/VxFrame.h>

VxFrame::VxFrame(const VxPoint& origin, const VxVector& first, const VxVector& second)
    : m_origin(origin) {
    SetFrame(first, second);
}

void VxFrame::SetFrame(const VxVector& first, const VxVector& second) {
    if (first.IsZero() || second.IsZero() || first.IsParallelTo(second)) {
        m_valid = false;
        return;
    }
    VxVector x = first.Normalized();
    VxVector y = second - x * (second % x);
    if (!y.Normalize()) {
        m_valid = false;
        return;
    }
    m_x = x;
    m_y = y;
    m_z = x * y;
    // One more pass: X x Y of unit vectors is unit only up to round-off.
    m_z.Normalize();
    m_valid = true;
}

void VxFrame::Transform(const VxMatrix& m) {
    const bool wasValid = m_valid;
    const VxVector z = m.Transform(m_z);
    m_origin = m.Transform(m_origin);
    SetFrame(m.Transform(m_x), m.Transform(m_y));
    // A mirroring matrix turns the frame left-handed, and the frame keeps that: the view layouts
    // carry one mirrored fixed view through ViewLookAt, and rebuilding Z as X x Y there would
    // turn the mirrored view into one seen from the other side, depth order reversed.
    if (m_valid && z % m_z < 0.0) {
        m_z.Flip();
    }
    m_valid = wasValid && m_valid;
}

VxXForm VxFrame::TransformToFrame(const VxFrame& frame) const {
    VxXForm xf;
    if (!m_valid || !frame.m_valid) {
        return xf;
    }
    // R = B A^T with the axes as columns: R maps each axis of this frame onto the same axis
    // of the other; the translation then carries origin to origin.
    VxMatrix r(3, 3);
    const VxVector* a[3] = {&m_x, &m_y, &m_z};
    const VxVector* b[3] = {&frame.m_x, &frame.m_y, &frame.m_z};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double s = 0.0;
            for (int k = 0; k < 3; ++k) {
                s += (*b[k])[i] * (*a[k])[j];
            }
            r[i][j] = s;
        }
    }
    xf.SetRotation(r);
    xf.SetTranslation(static_cast<VxVector>(frame.m_origin) -
                      r.Transform(static_cast<VxVector>(m_origin)));
    return xf;
}

VxMatrix VxFrame::GetTransformToNewFrame(const VxFrame& frame) const {
    return TransformToFrame(frame).GetMatrix();
}

VxMatrix VxFrame::GetMatrix() const {
    VxMatrix m = VxMatrix::Identity(4);
    for (int r = 0; r < 3; ++r) {
        m[r][0] = m_x[r];
        m[r][1] = m_y[r];
        m[r][2] = m_z[r];
        m[r][3] = m_origin[r];
    }
    return m;
}

VxPoint VxFrame::ToLocal(const VxPoint& p) const {
    const VxVector d = p - m_origin;
    return VxPoint(d % m_x, d % m_y, d % m_z);
}

VxPoint VxFrame::ToWorld(const VxPoint& p) const {
    return m_origin + m_x * p[0] + m_y * p[1] + m_z * p[2];
}
