// VxAuxBox: a dashed wire box of twelve aux lines around a bounding box or an entity. With an
// entity it follows the entity's first placement at the current treatment step, so a helper box
// stays on a tooth that the plan has moved. Hit where any of its edges is hit.
#pragma once

#include <aux/VxAuxObject.h>

class VxAuxLine;
class VxBBox;
class VxEntity;
class VxMatrix;

class VxAuxBox : public VxAuxObject {
public:
    VxAuxBox();
    // Edges are copied: each box frees its own.
    VxAuxBox(const VxAuxBox& other);
    VxAuxBox& operator=(const VxAuxBox& other);
    ~VxAuxBox() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    void SetBox(const VxBBox& box);
    // Stores the entity (not owned) and puts the edges on its own box; null keeps the edges.
    void SetEntity(VxEntity* entity);
    VxEntity* GetEntity() const { return m_entity; }
    static constexpr int kEdgeCount = 12;
    VxAuxLine* GetEdge(int i) const { return m_edges[i]; }

protected:
    // Draws the edges, under `placement` when there is one.
    void DrawCore(const VxMatrix* placement);

private:
    VxEntity* m_entity = nullptr;
    VxAuxLine* m_edges[kEdgeCount] = {};
};
