// VxMidCurve: the middle (occlusal ridge) curve of one tooth in model space, the mesh vertices it
// runs through, and which of them is the middle vertex the reference overlay marks. It does not
// trace the curve; the vertices belong to the tooth's mesh (owned by the host).
#pragma once

#include <interfaces/VxBSplineCurve.h>

#include <vector>

class VxVertex;

class VxMidCurve {
public:
    VxMidCurve() = default;

    // Null when the curve was never set (or was set empty).
    VxBSplineCurve* GetCurve() { return m_curve.IsValid() ? &m_curve : nullptr; }
    const VxBSplineCurve* GetCurve() const { return m_curve.IsValid() ? &m_curve : nullptr; }
    // Vertex id (VxVertex::GetVtxId) of the middle vertex, -1 for none.
    int GetMidVtxId() const { return m_midVtxId; }
    const std::vector<VxVertex*>& GetAllRefVtx() const { return m_refVtx; }

    void SetCurve(const VxBSplineCurve& curve) { m_curve = curve; }
    void SetMidVtxId(int id) { m_midVtxId = id < 0 ? -1 : id; }
    // Null entries are dropped: every reader takes the position of each vertex.
    void SetAllRefVtx(const std::vector<VxVertex*>& vertices);

private:
    VxBSplineCurve m_curve;
    int m_midVtxId = -1;
    std::vector<VxVertex*> m_refVtx;
};
