// VxMeshDrawer: puts a plain mesh or a filled wedge on screen on the fixed-function path, with
// stencil value 1. A wedge (two- or three-tooth) follows the show test of its left tooth and is
// drawn see-through in the wedge colour without writing depth; any other mesh is drawn in the
// selected or the jaw material, with no show test.
#pragma once

#include <mesh/VxDrawer.h>

class VxMesh;
struct VxPlacement;

class VxMeshDrawer : public VxDrawer {
public:
    VxMeshDrawer() = default;
    ~VxMeshDrawer() override;

    void Draw(VxEntity* entity) override;
    // Shared with VxSkullDrawer.
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawOne(VxMesh* mesh, const VxPlacement& placement, bool wedge);
};
