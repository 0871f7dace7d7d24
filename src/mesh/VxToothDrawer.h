// VxToothDrawer: puts a tooth on screen on the fixed-function path: jaw-mask show test, the
// placements of its treatment step (limit positions as see-through ghosts), the material by the
// tooth's state (the default one fed by "ColorRenderTooth.ini"), stencil value 2, the optional
// "teeth.bmp" texture, and the overlays that travel with the tooth inside its placement. It does
// not decide which teeth are drawn: the frame hands it each visible one.
#pragma once

#include <mesh/VxDrawer.h>

class VxTooth;
struct VxPlacement;

class VxToothDrawer : public VxDrawer {
public:
    // Reads "teeth.bmp" when it is there (no GL).
    VxToothDrawer();
    ~VxToothDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawOne(VxTooth* tooth, const VxPlacement& placement);
};
