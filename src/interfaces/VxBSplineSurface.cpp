// VxBSplineSurface: validation and tensor-product evaluation. Derivatives and normals are left to
// GLU (GL_AUTO_NORMAL) when the surface is drawn; nothing else in the renderer asks for them.
#include <interfaces/VxBSplineSurface.h>

#include <algorithm>
#include <cmath>

VxBSplineSurface::VxBSplineSurface(int degreeU, int degreeV, int numU, int numV,
                                   const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knotsU,
                                   const VxKnotVec& knotsV) {
    Set(degreeU, degreeV, numU, numV, ctrlPoints, knotsU, knotsV);
}

bool VxBSplineSurface::Set(int degreeU, int degreeV, int numU, int numV,
                           const std::vector<VxPoint>& ctrlPoints, const VxKnotVec& knotsU,
                           const VxKnotVec& knotsV) {
    if (numU < 1 || numV < 1 ||
        ctrlPoints.size() != static_cast<std::size_t>(numU) * static_cast<std::size_t>(numV)) {
        return false;
    }
    if (!knotsU.IsValidFor(degreeU, numU) || !knotsV.IsValidFor(degreeV, numV)) {
        return false;
    }
    for (const VxPoint& p : ctrlPoints) {
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) {
            return false;
        }
    }
    m_degreeU = degreeU;
    m_degreeV = degreeV;
    m_numU = numU;
    m_numV = numV;
    m_ctrl = ctrlPoints;
    m_knotsU = knotsU;
    m_knotsV = knotsV;
    return true;
}

void VxBSplineSurface::GetDomainU(double& start, double& end) const {
    start = m_ctrl.empty() ? 0.0 : m_knotsU.DomainStart(m_degreeU);
    end = m_ctrl.empty() ? 0.0 : m_knotsU.DomainEnd(m_numU);
}

void VxBSplineSurface::GetDomainV(double& start, double& end) const {
    start = m_ctrl.empty() ? 0.0 : m_knotsV.DomainStart(m_degreeV);
    end = m_ctrl.empty() ? 0.0 : m_knotsV.DomainEnd(m_numV);
}

VxPoint VxBSplineSurface::Evaluate(double u, double v) const {
    if (m_ctrl.empty()) {
        return VxPoint();
    }
    double a = 0.0;
    double b = 0.0;
    GetDomainU(a, b);
    u = std::isfinite(u) ? std::clamp(u, a, b) : a;
    GetDomainV(a, b);
    v = std::isfinite(v) ? std::clamp(v, a, b) : a;

    const int su = m_knotsU.FindSpan(m_degreeU, m_numU, u);
    const int sv = m_knotsV.FindSpan(m_degreeV, m_numV, v);
    std::vector<double> nu(static_cast<std::size_t>(m_degreeU) + 1);
    std::vector<double> nv(static_cast<std::size_t>(m_degreeV) + 1);
    m_knotsU.BasisFuns(su, u, m_degreeU, nu.data());
    m_knotsV.BasisFuns(sv, v, m_degreeV, nv.data());
    VxPoint r;
    for (int i = 0; i <= m_degreeU; ++i) {
        for (int j = 0; j <= m_degreeV; ++j) {
            const VxPoint& c = CtrlPoint(su - m_degreeU + i, sv - m_degreeV + j);
            const double w = nu[i] * nv[j];
            for (int k = 0; k < 3; ++k) {
                r[k] += w * c[k];
            }
        }
    }
    return r;
}
