// VxFacc: the facial axis of the clinical crown of one tooth (the Facc curve): the curve in model
// space that the reference overlay and the arch wire use, the same curve in the tooth's own
// coordinates that the tooth label and the Facc overlay draw with the tooth, and the mesh
// vertices it was traced through. It does not trace the curve, and the vertices belong to the
// tooth's mesh (owned by the host).
#pragma once

#include <interfaces/VxBSplineCurve.h>

#include <vector>

class VxVertex;

class VxFacc {
public:
    VxFacc() = default;

    // Null when the curve was never set (or was set empty).
    VxBSplineCurve* GetCurve() { return m_curve.IsValid() ? &m_curve : nullptr; }
    const VxBSplineCurve* GetCurve() const { return m_curve.IsValid() ? &m_curve : nullptr; }
    VxBSplineCurve* GetToothCurve() { return m_toothCurve.IsValid() ? &m_toothCurve : nullptr; }
    const VxBSplineCurve* GetToothCurve() const {
        return m_toothCurve.IsValid() ? &m_toothCurve : nullptr;
    }
    const std::vector<VxVertex*>& GetAllRefVtx() const { return m_refVtx; }

    void SetCurve(const VxBSplineCurve& curve) { m_curve = curve; }
    void SetToothCurve(const VxBSplineCurve& curve) { m_toothCurve = curve; }
    // Null entries are dropped: every reader takes the position of each vertex.
    void SetAllRefVtx(const std::vector<VxVertex*>& vertices);

private:
    VxBSplineCurve m_curve;      // model space
    VxBSplineCurve m_toothCurve; // the tooth's own coordinates
    std::vector<VxVertex*> m_refVtx;
};
