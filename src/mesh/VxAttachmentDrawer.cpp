// VxAttachmentDrawer: attachments over the shared buffers of their standard shape.
#include <mesh/VxAttachmentDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>

#include <interfaces/VxAttachment.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxVBOHandleMgr.h>

namespace {
// Current, lighting, enable, colour buffer: the blend set-up of a limit position needs no push
// of its own.
constexpr GLbitfield kAttribs = 0x6041;
constexpr GLint kStencilAttachment = 6;
constexpr GLubyte kLimitedAlpha = 60;

bool ToothShown(const VxAttachment* attachment) {
    return attachment->GetTooth() != nullptr && attachment->GetTooth()->IsVisible();
}
} // namespace

VxAttachmentDrawer::~VxAttachmentDrawer() = default;

void VxAttachmentDrawer::AttachmentColour(const VxAttachment* attachment, unsigned char rgb[3]) {
    const VxStdAttach* std = attachment->GetStdAttachment();
    const CString id = std != nullptr ? std->GetAttachIdentifier() : CString();
    if (id.Find(L"SK") >= 0 || id.Find(L"SN") >= 0 || id.Find(L"QY") >= 0 || id.Find(L"NQ") >= 0) {
        rgb[0] = 0;
        rgb[1] = 173;
        rgb[2] = 239;
        return;
    }
    const VxColor c = std != nullptr ? std->GetColor() : VxColor();
    rgb[0] = static_cast<unsigned char>(c.GetR());
    rgb[1] = static_cast<unsigned char>(c.GetG());
    rgb[2] = static_cast<unsigned char>(c.GetB());
}

void VxAttachmentDrawer::Draw(VxEntity* entity) {
    VxAttachment* attachment = dynamic_cast<VxAttachment*>(entity);
    // A hidden tooth hides its attachments without sheltering them.
    if (attachment == nullptr || !ToothShown(attachment) ||
        !VxFixedDrawSteps::ShowTest(attachment, m_view, attachment->GetTooth()->IsUp(),
                                    Display_Selec_UpperTeeth, Display_Selec_LowerTeeth)) {
        return;
    }
    VxStdAttach* std = attachment->GetStdAttachment();
    if (std == nullptr) {
        return;
    }
    if (std->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(std);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Attachment, m_view, attachment->IsCmp());
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(attachment, rule)) {
        DrawOne(attachment, placement);
    }
}

void VxAttachmentDrawer::DrawOne(VxAttachment* attachment, const VxPlacement& placement) {
    VxFixedDrawSteps::CurrentColourKeeper keepColour;
    VxStdAttach* std = attachment->GetStdAttachment();
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilAttachment, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    VxFixedDrawSteps::PushPlacement(placement);
    if (placement.limited) {
        glEnable(GL_COLOR_MATERIAL);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glEnable(GL_BLEND);
        const VxColor c = VxColor::GetLimitedColor();
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), kLimitedAlpha);
    } else if (attachment->IsSelected()) {
        VxFixedMaterial::Selected().Apply();
    } else {
        VxFixedMaterial::Attachment().Apply();
        glEnable(GL_COLOR_MATERIAL);
        unsigned char rgb[3];
        AttachmentColour(attachment, rgb);
        glColor3ub(rgb[0], rgb[1], rgb[2]);
    }

    std::vector<VxMatrix> parts;
    for (const std::shared_ptr<VxAttachmentPart>& part : attachment->AttachParts()) {
        if (part) {
            parts.push_back(part->matrix);
        }
    }
    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(std);
    VxFixedDrawSteps::RasteriseParts(handle, std, parts);

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void VxAttachmentDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxAttachment* attachment = dynamic_cast<VxAttachment*>(entity);
    if (attachment == nullptr || !ToothShown(attachment)) {
        return;
    }
    VxFixedDrawSteps::DrawForSelect(attachment, attachment, point);
}
