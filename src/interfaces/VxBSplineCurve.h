// VxBSplineCurve: a non-rational B-spline curve in model space, and the cubic interpolant the
// overlays build arch wires and arcs with. Control points, degree and the full knot vector are
// kept in the form gluNurbsCurve draws directly. No weights, no knot insertion, no fitting by
// least squares: the renderer only evaluates, frames and measures curves.
//
// Parameter domain: [KnotVec()[Degree()], KnotVec()[CtrlPoints().size()]]. Curves made by
// CreateInterpolateCurve always run over [0, 1], open or closed.
#pragma once

#include <interfaces/VxFrame.h>
#include <interfaces/VxKnotVec.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

#include <vector>

class VxBSplineCurve {
public:
    VxBSplineCurve() = default;
    // An invalid combination (see Set) leaves the curve empty.
    VxBSplineCurve(int degree, const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knots,
                   bool periodic = false);
    VxBSplineCurve(const VxBSplineCurve&) = default;
    VxBSplineCurve& operator=(const VxBSplineCurve&) = default;

    // Cubic curve through every point, parameterised by chord length over [0, 1].
    // Open: clamped knots, ends on the first and last point, natural ends (no curvature there).
    // Closed: periodic knots, C2 everywhere including the seam at t = 0 = 1; pass the loop
    // without repeating the first point (a repeated one is dropped).
    // Consecutive coincident points are merged first. Null for fewer than two distinct points
    // (three for a closed curve) or a non-finite coordinate. The caller owns the result.
    static VxBSplineCurve* CreateInterpolateCurve(const std::vector<VxPoint>& points, bool closed);

    // Replaces the curve. Needs degree >= 1, at least degree + 1 control points and a knot vector
    // valid for them; anything else answers false and changes nothing. A periodic curve's last
    // `degree` control points must repeat its first ones; Evaluate then wraps parameters.
    bool Set(int degree, const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knots,
             bool periodic = false);

    const std::vector<VxPoint>& CtrlPoints() const { return m_ctrl; }
    int Degree() const { return m_degree; }
    const VxKnotVec& KnotVec() const { return m_knots; }
    bool IsValid() const { return !m_ctrl.empty(); }
    bool IsClosed() const { return m_periodic; }
    // {0, 0} for an empty curve.
    void GetDomain(double& start, double& end) const;

    // Position at t (de Boor). Outside the domain t is clamped, or wrapped on a closed curve. An
    // empty curve gives the origin.
    VxPoint Evaluate(double t) const;
    // order-th derivative with respect to t; order 0 gives the position as a vector, orders
    // above the degree give zero.
    VxVector Derivative(double t, int order) const;

    // X: unit tangent, Y: principal normal (towards the centre of curvature), Z = X x Y, origin on
    // the curve. Where the curvature vanishes (a straight piece, an inflection, the natural ends
    // of an interpolant) the normal of the nearest curved neighbour is used, and on a straight
    // curve a fixed direction perpendicular to the tangent. False, frame untouched, for an empty
    // curve or a point where the curve does not move.
    bool FrenetFrame(double t, VxFrame& frame) const;

    // The point at half the arc length and its parameter. False for an empty curve.
    bool GetMiddlePoint(VxPoint& point, double& t) const;
    double Length() const;
    // Arc length between two parameters (signed: negative when t1 < t0), clamped to the domain.
    double Length(double t0, double t1) const;
    // Parameter at arc length s from the domain start, s clamped to [0, Length()].
    double ParameterAtLength(double s) const;

private:
    double Normalised(double t) const;
    double SpeedIntegral(double a, double b) const;

    int m_degree = 3;
    std::vector<VxPoint> m_ctrl;
    VxKnotVec m_knots;
    bool m_periodic = false;
};
