// VxSyntheticArch: the dental arch curves of the synthetic patient and the
// rigid poses of its teeth. An arch is the quartic y = y0 - (a x^2 + b x^4) in
// the occlusal plane (x to the patient's right, y forwards, z up), walked by
// signed arc length s from the midline (s > 0 on the patient's right). A pose
// is a tooth frame (origin at the crown centre, X distal, Z occlusal, Y = Z x
// X) with helpers to interpolate poses and turn them into placement matrices.
// It does not decide where teeth go; VxSyntheticPlan does.
#pragma once

#include <interfaces/VxFrame.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

#include <vector>

class VxSyntheticArch {
public:
    // How far forwards (+y) both arches stand. The renderer's gap editor hides what lies
    // behind a fixed point (-0.58, -3.18, 2.96) held at the centre of a dentition, as
    // scanned models are placed; with this shift the synthetic teeth's centre lies at that
    // depth (y about -3.2), so the editor shows the front half of each arch.
    static constexpr double kForward = 20.5;

    VxSyntheticArch(double y0, double a, double b);
    // Standard arches of the synthetic patient: the lower one sits behind and
    // inside the upper.
    static VxSyntheticArch Upper();
    static VxSyntheticArch Lower();

    VxPoint At(double s) const;       // z = 0
    VxVector Tangent(double s) const; // unit, towards growing s
    VxVector Outward(double s) const; // unit, horizontal, away from the arch's inside

private:
    double XAt(double s) const;
    double m_y0;
    double m_a;
    double m_b;
    double m_step;
    std::vector<double> m_len; // arc length from x = 0 at x = i * m_step
};

// A rigid tooth pose: orthonormal right-handed axes and an origin.
struct VxToothPose {
    VxVector x{1, 0, 0};
    VxVector y{0, 1, 0};
    VxVector z{0, 0, 1};
    VxPoint o;

    VxFrame Frame() const { return VxFrame(o, x, y); }
    // Local-to-world 4 x 4.
    VxMatrix Matrix() const;
    VxMatrix Inverse() const;
    VxPoint ToWorld(const VxPoint& local) const;
    // Rotation about the unit axis through the origin, then a translation.
    VxToothPose Rotated(const VxVector& axis, double angle) const;
    VxToothPose Moved(const VxVector& t) const;
    // Linear in the origin, uniform in the rotation angle between the two
    // orientations.
    static VxToothPose Interpolate(const VxToothPose& a, const VxToothPose& b, double t);
};

VxVector VxRotateVector(const VxVector& v, const VxVector& unitAxis, double angle);
