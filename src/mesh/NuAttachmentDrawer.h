// NuAttachmentDrawer: the shader-path drawer of an attachment: only while its tooth is visible,
// the tooth's jaw-mask show test, placements by display mode and step, stencil value 6, and each
// part queued for the attachment batch (drawn at once when selected). Colour: the catalogue colour
// as the attachment look, a fixed blue for the SK, SN, QY, LJ and NQ families. Frames never reach
// it: attachments go to the fixed-function drawer on both paths; it is here for hosts that call
// it and for the attachment batch (DrawGraphicAttachObjects), which they draw themselves.
#pragma once

#include <mesh/VxDrawer.h>

#include <interfaces/VxMatrix.h>

#include <deque>

class VxAttachment;
struct VxPlacement;

class NuAttachmentDrawer : public VxDrawer {
public:
    NuAttachmentDrawer() = default;
    ~NuAttachmentDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

    // True for the identifiers drawn in the fixed blue (0, 173, 239).
    static bool IsBlueFamily(const VxAttachment* attachment);

private:
    void DrawObject(VxAttachment* attachment, const VxPlacement& placement);

    // Placement matrices of the parts queued since the attachment batch was last emptied.
    std::deque<VxMatrix> m_queuedPlacements;
};
