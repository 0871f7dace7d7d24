// VxSkullDrawer: puts the skull mesh on screen on the fixed-function path with stencil value 1,
// in the selected or the jaw material, with no show test. Its placements are multiplied one
// after another into a single draw: a skull has one placement in practice, and with more the
// matrices add up, which is what is wanted. Selection shares VxMeshDrawer's body.
#pragma once

#include <mesh/VxDrawer.h>

class VxSkullDrawer : public VxDrawer {
public:
    VxSkullDrawer() = default;
    ~VxSkullDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }
};
