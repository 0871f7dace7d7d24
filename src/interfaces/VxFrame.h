// VxFrame: an orthonormal right-handed frame, an origin and three unit axes. The constructor's
// first direction becomes X; the second, made orthogonal to X, becomes Y; Z = X x Y.
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>
#include <interfaces/VxXForm.h>

class VxFrame {
public:
    VxFrame() = default; // not valid until set
    VxFrame(const VxPoint& origin, const VxVector& first, const VxVector& second);
    VxFrame(const VxFrame&) = default;
    VxFrame& operator=(const VxFrame&) = default;

    const VxPoint& GetOrigin() const { return m_origin; }
    void SetOrigin(const VxPoint& origin) { m_origin = origin; }
    // Sets the axes from two directions as the constructor does. Parallel or zero directions
    // leave the frame invalid.
    void SetFrame(const VxVector& first, const VxVector& second);
    const VxVector& DirX() const { return m_x; }
    const VxVector& DirY() const { return m_y; }
    const VxVector& DirZ() const { return m_z; }
    bool IsValid() const { return m_valid; }

    // Moves the frame by a 4 x 4 matrix; the axes are re-orthonormalised, and a mirroring matrix
    // leaves the frame left-handed (Z is the image of Z, not X x Y).
    void Transform(const VxMatrix& m);
    // The rigid transform that carries this frame onto `frame`: origin to origin, axis to axis.
    VxXForm TransformToFrame(const VxFrame& frame) const;
    // The same transform as a 4 x 4 matrix.
    VxMatrix GetTransformToNewFrame(const VxFrame& frame) const;
    // Local-to-world matrix: columns are the axes, the last column the origin.
    VxMatrix GetMatrix() const;
    // Coordinates of a world point in this frame, and back.
    VxPoint ToLocal(const VxPoint& p) const;
    VxPoint ToWorld(const VxPoint& p) const;

private:
    VxPoint m_origin;
    VxVector m_x{1, 0, 0};
    VxVector m_y{0, 1, 0};
    VxVector m_z{0, 0, 1};
    bool m_valid = false;
};
