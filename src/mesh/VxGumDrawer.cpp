// VxGumDrawer: one draw per placement, see-through for a limit position.
#include <mesh/VxGumDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>

#include <interfaces/VxColor.h>
#include <interfaces/VxGum.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxVBOHandleMgr.h>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilGum = 3;
constexpr GLubyte kLimitedAlpha = 60;

VxFixedDrawSteps::Bitmap& GumBitmap() {
    static VxFixedDrawSteps::Bitmap bitmap(L"\\gum.bmp");
    return bitmap;
}
} // namespace

VxGumDrawer::VxGumDrawer() {
    GumBitmap().Active();
}

VxGumDrawer::~VxGumDrawer() = default;

void VxGumDrawer::Draw(VxEntity* entity) {
    VxGum* gum = dynamic_cast<VxGum*>(entity);
    if (gum == nullptr ||
        !VxFixedDrawSteps::ShowTest(gum, m_view, gum->IsUp(), Display_Selec_UpperGum,
                                    Display_Selec_LowerGum)) {
        return;
    }
    if (gum->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(gum);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Gum, m_view, gum->IsCmp());
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(gum, rule)) {
        DrawOne(gum, placement);
    }
}

void VxGumDrawer::DrawOne(VxGum* gum, const VxPlacement& placement) {
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited) {
        keepColour.emplace();
    }
    const bool textured = GumBitmap().Active();
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilGum, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (textured) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    VxFixedDrawSteps::PushPlacement(placement);
    if (placement.limited) {
        VxFixedDrawSteps::BeginLimited();
        const VxColor c = VxColor::GetLimitedColor();
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), kLimitedAlpha);
    } else if (gum->IsSelected()) {
        VxFixedMaterial::Selected().Apply();
    } else {
        VxMaterialIni::ReadGumColorIni();
        VxFixedMaterial::Gum().Apply();
    }

    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(gum);
    VxFixedDrawSteps::Rasterise(handle, gum, handle.GetFaceCount(),
                                textured ? &GumBitmap() : nullptr);

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void VxGumDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxGum* gum = dynamic_cast<VxGum*>(entity);
    VxFixedDrawSteps::DrawForSelect(gum, gum, point);
}
