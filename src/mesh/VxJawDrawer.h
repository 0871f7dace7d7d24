// VxJawDrawer: puts a jaw on screen on the fixed-function path: jaw-mask show test, every
// placement in every display mode, the selected or the default material (fed by
// "ColorRenderJaw.ini"), stencil value 4 for the upper and 5 for the lower jaw.
#pragma once

#include <mesh/VxDrawer.h>

class VxJaw;
struct VxPlacement;

class VxJawDrawer : public VxDrawer {
public:
    VxJawDrawer() = default;
    ~VxJawDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawOne(VxJaw* jaw, const VxPlacement& placement);
};
