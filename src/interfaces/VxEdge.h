// VxEdge: one edge of a VxMesh, built by VxMesh::Finish from the faces so that every vertex pair
// gives exactly one edge. It keeps its two vertex ids (smaller first) and up to two faces.
#pragma once

#include <interfaces/VxObject.h>

class VxEdge : public VxObject {
public:
    VxEdge() = default;
    VxEdge(int v0, int v1, int id) : m_v{v0, v1}, m_id(id) {}
    VxEdge(const VxEdge&) = default;
    VxEdge& operator=(const VxEdge&) = default;
    ~VxEdge() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;

    void Get2VtxId(int& v0, int& v1) const {
        v0 = m_v[0];
        v1 = m_v[1];
    }
    int GetEdgeId() const { return m_id; }
    // The first two faces that use the edge (-1 where there is none) and how many use it in all:
    // 1 on a border, 2 inside a closed surface, more on a non-manifold edge.
    void Get2FaceId(int& f0, int& f1) const {
        f0 = m_f[0];
        f1 = m_f[1];
    }
    int GetFaceUseCount() const { return m_faceUses; }
    bool IsBorder() const { return m_faceUses == 1; }

    // Used by VxMesh::Finish.
    void Set(int v0, int v1, int id) {
        m_v[0] = v0;
        m_v[1] = v1;
        m_id = id;
        m_f[0] = m_f[1] = -1;
        m_faceUses = 0;
    }
    void AddFaceUse(int faceId) {
        if (m_faceUses < 2)
            m_f[m_faceUses] = faceId;
        ++m_faceUses;
    }

private:
    int m_v[2] = {-1, -1};
    int m_f[2] = {-1, -1};
    int m_id = -1;
    int m_faceUses = 0;
};
