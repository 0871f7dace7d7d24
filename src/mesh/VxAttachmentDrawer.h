// VxAttachmentDrawer: puts an attachment on screen on the fixed-function path, on both render
// paths: only while its tooth is visible, with the tooth's jaw-mask show test, placements by
// display mode and step (a comparison attachment only in the final step), stencil value 6, and
// the standard shape's buffers drawn once per part matrix. Colour: selected, or the attachment
// record with the catalogue colour on top, a fixed blue for the SK, SN, QY and NQ families.
#pragma once

#include <mesh/VxDrawer.h>

class VxAttachment;
struct VxPlacement;

class VxAttachmentDrawer : public VxDrawer {
public:
    VxAttachmentDrawer() = default;
    ~VxAttachmentDrawer() override;

    void Draw(VxEntity* entity) override;
    void DrawForSelect(VxEntity* entity, const CPoint& point) override;
    void SetViewRegion(VxViewRegion* view) override { VxDrawer::SetViewRegion(view); }

    // The colour of an unselected attachment: (0, 173, 239) when the identifier contains "SK",
    // "SN", "QY" or "NQ", otherwise the catalogue colour's RGB.
    static void AttachmentColour(const VxAttachment* attachment, unsigned char rgb[3]);

private:
    void DrawOne(VxAttachment* attachment, const VxPlacement& placement);
};
