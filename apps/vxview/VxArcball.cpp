// VxArcball: rotation between two arcball points, and the pan of a drag in model units.
#include "VxArcball.h"

#include <algorithm>
#include <cmath>

VxMatrix VxArcballRotation(const VxPoint& from, const VxPoint& to) {
    const VxVector a(from[0], from[1], from[2]);
    const VxVector b(to[0], to[1], to[2]);
    const VxVector axis = a * b;
    const double sine = axis.Magnitude();
    const double cosine = a % b;
    VxMatrix m = VxMatrix::Identity(3);
    // Below this the drag is a jitter of the hand, and the axis is noise.
    if (sine < 1e-9) {
        return m;
    }
    const VxMatrix r = VxMatrix::s_GetRotationMatrix(axis, std::atan2(sine, cosine));
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m[i][j] = r[i][j];
        }
    }
    return m;
}

VxVector VxPanToModel(const VxMatrix& rotation, double scale, int viewWidth, int viewHeight,
                      double dx, double dy) {
    const int shorter = std::max(1, std::min(viewWidth, viewHeight));
    if (scale == 0.0) {
        return VxVector(0, 0, 0);
    }
    const double k = 2.0 / shorter / scale;
    // Screen y grows downwards, view y upwards.
    const double v[3] = {dx * k, -dy * k, 0.0};
    // The inverse of a rotation is its transpose.
    double out[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            out[i] += rotation[j][i] * v[j];
        }
    }
    return VxVector(out[0], out[1], out[2]);
}
