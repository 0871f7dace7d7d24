// NuJawDrawer: puts a jaw on screen on the shader path: the fixed path's show test, placements
// and line styles, stencil value 4 (upper) or 5 (lower), and the faces through RenderV1's
// immediate draw with the back-and-front program, so the inside of an open jaw shell shows grey
// rather than black.
#pragma once

#include <mesh/VxDrawer.h>

class VxJaw;
struct VxPlacement;

class NuJawDrawer : public VxDrawer {
public:
    NuJawDrawer() = default;
    ~NuJawDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawObject(VxJaw* jaw, const VxPlacement& placement);
};
