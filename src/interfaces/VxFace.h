// VxFace: one triangle of a VxMesh: three vertex ids (counter-clockwise seen from outside), the
// three edge ids (edge k joins corners k and k+1), its id, its unit normal and its style.
#pragma once

#include <interfaces/VxModelEnums.h>
#include <interfaces/VxObject.h>
#include <interfaces/VxVector.h>

class VxFace : public VxObject {
public:
    VxFace() = default;
    VxFace(int v0, int v1, int v2, int id, FaceStyle_e style = FaceStyle_Normal)
        : m_v{v0, v1, v2}, m_id(id), m_style(style) {}
    VxFace(const VxFace&) = default;
    VxFace& operator=(const VxFace&) = default;
    ~VxFace() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;

    void Get3VtxId(int& v0, int& v1, int& v2) const {
        v0 = m_v[0];
        v1 = m_v[1];
        v2 = m_v[2];
    }
    // Corner k's vertex id, k in 0..2.
    int GetVtxId(int k) const { return m_v[k]; }
    const int* GetVtxIds() const { return m_v; }
    void Get3EdgeId(int& e0, int& e1, int& e2) const {
        e0 = m_e[0];
        e1 = m_e[1];
        e2 = m_e[2];
    }
    int GetEdgeId(int k) const { return m_e[k]; }
    int GetFaceId() const { return m_id; }
    // Unit normal by the right-hand rule over the corners; zero for a degenerate triangle.
    const VxVector& GetNormal() const { return m_normal; }
    FaceStyle_e GetFaceStyle() const { return m_style; }
    void SetFaceStyle(FaceStyle_e style) { m_style = style; }

    // Used by VxMesh when it builds or edits the topology.
    void Set3VtxId(int v0, int v1, int v2) {
        m_v[0] = v0;
        m_v[1] = v1;
        m_v[2] = v2;
    }
    void SetEdgeId(int k, int edgeId) { m_e[k] = edgeId; }
    void SetFaceId(int id) { m_id = id; }
    void SetNormal(const VxVector& n) { m_normal = n; }

private:
    int m_v[3] = {-1, -1, -1};
    int m_e[3] = {-1, -1, -1};
    int m_id = -1;
    VxVector m_normal;
    FaceStyle_e m_style = FaceStyle_Normal;
};
