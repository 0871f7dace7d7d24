// VxXForm: a similarity transform p' = scale * R p + t, held as a 3 x 3 rotation, a translation
// and a uniform scale. A default transform is the identity with scale 1.
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxXForm {
public:
    VxXForm();
    VxXForm(const VxXForm&) = default;
    VxXForm& operator=(const VxXForm&) = default;

    // The 3 x 3 rotation.
    VxMatrix GetRotation() const;
    // The rotation as 16 numbers for glMultMatrixd (no translation, no scale).
    void GetRotation(double* out16) const;
    VxVector GetTranslation() const { return m_translation; }
    double GetScale() const { return m_scale; }
    // Takes a 3 x 3 matrix, or the upper-left 3 x 3 block of a 4 x 4 one.
    void SetRotation(const VxMatrix& rotation);
    void SetTranslation(const VxVector& t) { m_translation = t; }
    void SetScale(double s) { m_scale = s; }

    // The whole transform as a 4 x 4 matrix.
    VxMatrix GetMatrix() const;
    VxPoint Apply(const VxPoint& p) const;
    VxVector Apply(const VxVector& v) const;

private:
    VxMatrix m_rotation;
    VxVector m_translation;
    double m_scale = 1.0;
};
