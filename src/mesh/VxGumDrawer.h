// VxGumDrawer: puts a gum on screen on the fixed-function path: jaw-mask show test, placements by
// display mode and step (a comparison gum only in the final step), the selected or the default
// material (fed by "ColorRenderGum.ini"), stencil value 3 and the optional "gum.bmp" texture.
// It knows nothing of the band and segment lists, which are the shader path's.
#pragma once

#include <mesh/VxDrawer.h>

class VxGum;
struct VxPlacement;

class VxGumDrawer : public VxDrawer {
public:
    // Reads "gum.bmp" when it is there (no GL).
    VxGumDrawer();
    ~VxGumDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawOne(VxGum* gum, const VxPlacement& placement);
};
