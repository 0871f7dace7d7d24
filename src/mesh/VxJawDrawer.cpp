// VxJawDrawer: one draw per placement, see-through for a limit position.
#include <mesh/VxJawDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>

#include <interfaces/VxColor.h>
#include <interfaces/VxJaw.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxVBOHandleMgr.h>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilUpperJaw = 4;
constexpr GLint kStencilLowerJaw = 5;
constexpr GLubyte kLimitedAlpha = 60;
} // namespace

VxJawDrawer::~VxJawDrawer() = default;

void VxJawDrawer::Draw(VxEntity* entity) {
    VxJaw* jaw = dynamic_cast<VxJaw*>(entity);
    if (jaw == nullptr ||
        !VxFixedDrawSteps::ShowTest(jaw, m_view, jaw->IsUp(), Display_Selec_UpperJaw,
                                    Display_Selec_LowerJaw)) {
        return;
    }
    if (jaw->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(jaw);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Jaw, m_view, false);
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(jaw, rule)) {
        DrawOne(jaw, placement);
    }
}

void VxJawDrawer::DrawOne(VxJaw* jaw, const VxPlacement& placement) {
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited) {
        keepColour.emplace();
    }
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, jaw->IsUp() ? kStencilUpperJaw : kStencilLowerJaw, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    VxFixedDrawSteps::PushPlacement(placement);
    if (placement.limited) {
        VxFixedDrawSteps::BeginLimited();
        const VxColor c = VxColor::GetLimitedColor();
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), kLimitedAlpha);
    } else if (jaw->IsSelected()) {
        VxFixedMaterial::Selected().Apply();
    } else {
        VxMaterialIni::ReadJawColorIni();
        VxFixedMaterial::Jaw().Apply();
    }

    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(jaw);
    VxFixedDrawSteps::Rasterise(handle, jaw, jaw->GetFaceCount(), nullptr);

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void VxJawDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxJaw* jaw = dynamic_cast<VxJaw*>(entity);
    VxFixedDrawSteps::DrawForSelect(jaw, jaw, point);
}
