// NuGumDrawer: puts a gum on screen on the shader path: the fixed path's show test, placements
// and line styles, stencil value 3, and the faces through RenderV1: textured and bump-lit when
// unselected, in one colour when selected. Hosts of kind 1 and 3 never show the textured gum: an
// unselected gum is drawn plain pink there.
#pragma once

#include <mesh/VxDrawer.h>

class VxGum;
struct VxPlacement;

class NuGumDrawer : public VxDrawer {
public:
    NuGumDrawer() = default;
    ~NuGumDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawObject(VxGum* gum, const VxPlacement& placement);
};
