// VxBSplineSurface: a non-rational tensor-product B-spline surface, held in the form
// gluNurbsSurface draws: a control net in U-major order (point (i, j) at i * CtrlPointNumV() + j,
// so the U stride is 3 * CtrlPointNumV() doubles), one degree and one full knot vector per
// direction. No fitting, trimming or weights: surfaces come ready-made from the model.
#pragma once

#include <interfaces/VxKnotVec.h>
#include <interfaces/VxPoint.h>

#include <cstddef>
#include <vector>

class VxBSplineSurface {
public:
    VxBSplineSurface() = default;
    // An invalid combination (see Set) leaves the surface empty.
    VxBSplineSurface(int degreeU, int degreeV, int numU, int numV,
                     const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knotsU,
                     const VxKnotVec& knotsV);
    VxBSplineSurface(const VxBSplineSurface&) = default;
    VxBSplineSurface& operator=(const VxBSplineSurface&) = default;

    // Replaces the surface. Needs numU * numV finite control points and knot vectors valid for
    // each direction (count = points in that direction + degree + 1, non-decreasing, non-empty
    // domain); anything else answers false and changes nothing.
    bool Set(int degreeU, int degreeV, int numU, int numV, const std::vector<VxPoint>& ctrlPoints,
             const VxKnotVec& knotsU, const VxKnotVec& knotsV);

    const std::vector<VxPoint>& CtrlPoints() const { return m_ctrl; }
    const VxPoint& CtrlPoint(int i, int j) const {
        return m_ctrl[static_cast<std::size_t>(i) * m_numV + j];
    }
    int CtrlPointNumU() const { return m_numU; }
    int CtrlPointNumV() const { return m_numV; }
    int DegreeU() const { return m_degreeU; }
    int DegreeV() const { return m_degreeV; }
    const VxKnotVec& KnotVecU() const { return m_knotsU; }
    const VxKnotVec& KnotVecV() const { return m_knotsV; }
    bool IsValid() const { return !m_ctrl.empty(); }
    // {0, 0} for an empty surface.
    void GetDomainU(double& start, double& end) const;
    void GetDomainV(double& start, double& end) const;

    // Position at (u, v), each clamped to its domain. An empty surface gives the origin.
    VxPoint Evaluate(double u, double v) const;

private:
    int m_degreeU = 3;
    int m_degreeV = 3;
    int m_numU = 0;
    int m_numV = 0;
    std::vector<VxPoint> m_ctrl;
    VxKnotVec m_knotsU;
    VxKnotVec m_knotsV;
};
