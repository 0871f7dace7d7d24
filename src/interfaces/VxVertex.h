// VxVertex: one vertex of a VxMesh, a position and its index in the mesh. Vertices are objects so
// that selection can hand one back; they do not know their mesh (VxModel::GetParentMesh does).
#pragma once

#include <interfaces/VxObject.h>
#include <interfaces/VxPoint.h>

class VxVertex : public VxObject {
public:
    VxVertex() = default;
    VxVertex(const VxPoint& pos, int id) : m_pos(pos), m_id(id) {}
    VxVertex(const VxVertex&) = default;
    VxVertex& operator=(const VxVertex&) = default;
    ~VxVertex() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;

    const VxPoint& GetPos() const { return m_pos; }
    // Changing a position through here bypasses the mesh's caches: call
    // VxMesh::NotifyGeometryChanged afterwards (VxMesh::SetVertexPos does both).
    void SetPos(const VxPoint& pos) { m_pos = pos; }
    int GetVtxId() const { return m_id; }
    void SetVtxId(int id) { m_id = id; }

private:
    VxPoint m_pos;
    int m_id = -1;
};
