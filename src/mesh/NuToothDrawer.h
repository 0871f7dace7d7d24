// NuToothDrawer: puts a tooth on screen on the shader path. The show test, placements and line
// styles are the fixed path's (VxFixedDrawSteps); the faces go to RenderV1: queued for the one
// batch of the frame's teeth, or drawn at once when the tooth is selected, so a selected tooth
// lies under the others' batch. Material by state: limited ghost, selected, highlight, kind 2, 3
// and 5, locked, else the default ivory; stencil value 2 for the feedback.
#pragma once

#include <mesh/VxDrawer.h>

#include <interfaces/VxMatrix.h>

#include <deque>

class VxTooth;
struct VxPlacement;

class NuToothDrawer : public VxDrawer {
public:
    NuToothDrawer() = default;
    ~NuToothDrawer() override;

    void Draw(VxEntity* entity) override;
    // The fixed path's selection drawing.
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

private:
    void DrawObject(VxTooth* tooth, const VxPlacement& placement);

    // Placement matrices of the teeth queued since the batch was last emptied: the queue keeps
    // pointers to them until the batch is drawn.
    std::deque<VxMatrix> m_queuedPlacements;
};
