// NuAttachmentDrawer: one queued draw per part and placement.
#include <mesh/NuAttachmentDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxVBOHandleMgr.h>
#include <shader/NuRenderMaterial.h>
#include <shader/NuViewTransforms.h>
#include <shader/RenderV1.h>

namespace {
// Current, lighting, enable, colour buffer: the blend set-up of a limit position needs no push
// of its own.
constexpr GLbitfield kAttribs = 0x6041;
constexpr GLint kStencilAttachment = 6;
constexpr float kLimitedAlpha = 60.0f;

bool ToothShown(const VxAttachment* attachment) {
    return attachment->GetTooth() != nullptr && attachment->GetTooth()->IsVisible();
}
} // namespace

NuAttachmentDrawer::~NuAttachmentDrawer() = default;

bool NuAttachmentDrawer::IsBlueFamily(const VxAttachment* attachment) {
    const VxStdAttach* std = attachment != nullptr ? attachment->GetStdAttachment() : nullptr;
    if (std == nullptr) {
        return false;
    }
    const CString& id = std->GetAttachIdentifier();
    for (const wchar_t* family : {L"SK", L"SN", L"QY", L"LJ", L"NQ"}) {
        if (id.Find(family) >= 0) {
            return true;
        }
    }
    return false;
}

void NuAttachmentDrawer::Draw(VxEntity* entity) {
    VxAttachment* attachment = dynamic_cast<VxAttachment*>(entity);
    if (attachment == nullptr || !ToothShown(attachment) ||
        !VxFixedDrawSteps::ShowTest(attachment, m_view, attachment->GetTooth()->IsUp(),
                                    Display_Selec_UpperTeeth, Display_Selec_LowerTeeth)) {
        return;
    }
    if (RenderV1::GetInstance()->attachQueue.empty()) {
        m_queuedPlacements.clear();
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Attachment, m_view, attachment->IsCmp());
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(attachment, rule)) {
        DrawObject(attachment, placement);
    }
}

void NuAttachmentDrawer::DrawObject(VxAttachment* attachment, const VxPlacement& placement) {
    RenderV1* renderer = RenderV1::GetInstance();
    VxFixedDrawSteps::CurrentColourKeeper keepColour;
    NuRenderMaterial material;
    material.SetAttachmentDefault();
    glm::mat4 matrix(1.0f);
    const VxMatrix* xform = nullptr;
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilAttachment, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (placement.hasMatrix) {
        matrix = NuViewTransforms::FromMatrix(placement.matrix);
        m_queuedPlacements.push_back(placement.matrix);
        xform = &m_queuedPlacements.back();
    }
    VxFixedDrawSteps::PushPlacement(placement);
    const bool selected = attachment->IsSelected() != 0;
    if (placement.limited) {
        glEnable(GL_COLOR_MATERIAL);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glEnable(GL_BLEND);
        const VxColor c = VxColor::GetLimitedColor();
        material.SetLimited(static_cast<float>(c.GetR()), static_cast<float>(c.GetG()),
                            static_cast<float>(c.GetB()), kLimitedAlpha);
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), static_cast<GLubyte>(kLimitedAlpha));
    } else if (selected) {
        material.SetSelected();
        VxFixedMaterial::Selected().Apply();
    } else if (IsBlueFamily(attachment)) {
        glColor3ub(0, 173, 239);
        material.SetFromColor(0, 173, 239);
    } else {
        const VxStdAttach* std = attachment->GetStdAttachment();
        const VxColor c = std != nullptr ? std->GetColor() : VxColor();
        glColor3ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()));
        material.SetFromColor(static_cast<float>(c.GetR()), static_cast<float>(c.GetG()),
                              static_cast<float>(c.GetB()));
        material.SetAttachmentFromColor(static_cast<float>(c.GetR()), static_cast<float>(c.GetG()),
                                        static_cast<float>(c.GetB()));
    }

    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    const bool solid = mode == DisplayMode_SolidEdges || mode == DisplayMode_Solid;
    VxStdAttach* std = attachment->GetStdAttachment();
    for (const std::shared_ptr<VxAttachmentPart>& part : attachment->AttachParts()) {
        if (!part) {
            continue;
        }
        double m[16];
        part->matrix.ToArray(m);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glMultMatrixd(m);
        const glm::mat4 partMatrix = matrix * NuViewTransforms::FromMatrix(part->matrix);
        if (solid) {
            if (selected) {
                renderer->DrawWithMaterialWithMatrix(part.get(), material, partMatrix);
            } else {
                renderer->SendAttachMaterialMatrix(part.get(), material, partMatrix,
                                                   placement.limited, xform);
            }
        }
        if (std != nullptr) {
            VxFixedDrawSteps::RasteriseLines(VxVBOHandleMgr::GetInstance()->GetVBOHandle(std), std);
        }
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void NuAttachmentDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxAttachment* attachment = dynamic_cast<VxAttachment*>(entity);
    if (attachment == nullptr || !ToothShown(attachment)) {
        return;
    }
    VxFixedDrawSteps::DrawForSelect(attachment, attachment, point);
}
