// VxToothDrawer: one draw per placement; the material comes from the first state that holds.
#include <mesh/VxToothDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>

#include <interfaces/VxColor.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxVBOHandleMgr.h>
#include <aux/VxAuxObject.h>
#include <overlays/VxCacheStuff.h>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilTooth = 2;
constexpr GLubyte kLimitedAlpha = 150;

// Process-wide, shared by every tooth.
VxFixedDrawSteps::Bitmap& TeethBitmap() {
    static VxFixedDrawSteps::Bitmap bitmap(L"\\teeth.bmp");
    return bitmap;
}
} // namespace

VxToothDrawer::VxToothDrawer() {
    TeethBitmap().Active();
}

VxToothDrawer::~VxToothDrawer() = default;

void VxToothDrawer::Draw(VxEntity* entity) {
    VxTooth* tooth = dynamic_cast<VxTooth*>(entity);
    if (tooth == nullptr ||
        !VxFixedDrawSteps::ShowTest(tooth, m_view, tooth->IsUp(), Display_Selec_UpperTeeth,
                                    Display_Selec_LowerTeeth)) {
        return;
    }
    if (tooth->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(tooth);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Tooth, m_view, false);
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(tooth, rule)) {
        DrawOne(tooth, placement);
    }
}

// One rasterisation of a tooth; the other drawers follow the same order.
//   1 push current + lighting, stencil 2   2 vertex, normal (+ texture) arrays
//   3 placement matrix   4 limited: enable/colour push, colour material, blending
//   5 colour: limited ghost, selected, highlight, kind 2/3/5, locked, else INI + tooth record
//   6-9 buffers by display mode   10 arrays off, pops   11 overlays of the tooth, still placed
//   12 placement popped
void VxToothDrawer::DrawOne(VxTooth* tooth, const VxPlacement& placement) {
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited) {
        keepColour.emplace();
    }
    // The file is asked after at every draw, so a bitmap dropped beside the library (or taken
    // away) shows at the next frame.
    const bool textured = TeethBitmap().Active();
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilTooth, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (textured) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    VxFixedDrawSteps::PushPlacement(placement);
    if (placement.limited) {
        VxFixedDrawSteps::BeginLimited();
    }

    if (placement.limited) {
        const VxColor c = VxColor::GetLimitedColor();
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), kLimitedAlpha);
    } else if (tooth->IsSelected()) {
        VxFixedMaterial::ToothSelected().Apply();
    } else if (tooth->IsHighLight()) {
        VxFixedMaterial::ToothHighlight().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Implant) {
        VxFixedMaterial::ToothKind2().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Pontic) {
        VxFixedMaterial::ToothKind3().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Restored) {
        VxFixedMaterial::ToothKind5().Apply();
    } else if (tooth->IsLockShown()) {
        VxFixedMaterial::ToothLocked().Apply();
    } else {
        VxMaterialIni::ReadToothColorIni();
        VxFixedMaterial::Tooth().Apply();
    }

    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(tooth);
    VxFixedDrawSteps::Rasterise(handle, tooth, handle.GetFaceCount(),
                                textured ? &TeethBitmap() : nullptr);

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glPopAttrib();

    // Inside the placement, so that labels and marks move with the tooth.
    std::vector<VxAuxObject*> stuff;
    VxCacheStuff::GetInstance()->GetDisplayStuffByTooth(tooth, stuff);
    for (VxAuxObject* object : stuff) {
        object->Draw();
    }
    VxFixedDrawSteps::PopPlacement(placement);
}

void VxToothDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxTooth* tooth = dynamic_cast<VxTooth*>(entity);
    VxFixedDrawSteps::DrawForSelect(tooth, tooth, point);
}
