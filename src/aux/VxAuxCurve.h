// VxAuxCurve: a B-spline curve drawn by the GLU NURBS renderer as a two-pixel line. It is never
// hit and answers the base kind. A curve GLU refuses (bad knots, too few points) draws nothing.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxBSplineCurve.h>

class VxAuxCurve : public VxAuxObject {
public:
    VxAuxCurve() = default;
    VxAuxCurve(const VxAuxCurve&) = default;
    VxAuxCurve& operator=(const VxAuxCurve&) = default;
    ~VxAuxCurve() override = default;

    void Draw() override;
    void DrawHighlight() override;

    void SetCurve(const VxBSplineCurve& curve) { m_curve = curve; }
    const VxBSplineCurve& GetCurve() const { return m_curve; }

    // Swallows GLU NURBS errors: a degenerate curve or surface must not print or stop a frame.
    static void NurbsErrorSink(unsigned int error);

private:
    void DrawCurve(int knotCount, float* knots, float* points, int mode);
    // Knots and control points as GLU wants them; false when the curve cannot be drawn.
    bool ToFloats(std::vector<float>& knots, std::vector<float>& points) const;
    void Outline(int knotCount, float* knots, float* points) const;

    VxBSplineCurve m_curve;
};
