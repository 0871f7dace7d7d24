// NuJawDrawer: one immediate draw per placement.
#include <mesh/NuJawDrawer.h>

#include <GL/glew.h>

#include <frame/NuRenderStatus.h>
#include <frame/VxRenderEnums.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxJaw.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxVBOHandleMgr.h>
#include <shader/NuRenderMaterial.h>
#include <shader/NuViewTransforms.h>
#include <shader/RenderV1.h>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilUpperJaw = 4;
constexpr GLint kStencilLowerJaw = 5;
constexpr float kLimitedAlpha = 60.0f;
} // namespace

NuJawDrawer::~NuJawDrawer() = default;

void NuJawDrawer::Draw(VxEntity* entity) {
    VxJaw* jaw = dynamic_cast<VxJaw*>(entity);
    if (jaw == nullptr ||
        !VxFixedDrawSteps::ShowTest(jaw, m_view, jaw->IsUp(), Display_Selec_UpperJaw,
                                    Display_Selec_LowerJaw)) {
        return;
    }
    NuRenderStatus::GetInstance()->Set_bIsUpdateVBO(jaw->IsUpdateVBO());
    if (jaw->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(jaw);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Jaw, m_view, false);
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(jaw, rule)) {
        DrawObject(jaw, placement);
    }
}

void NuJawDrawer::DrawObject(VxJaw* jaw, const VxPlacement& placement) {
    NuRenderMaterial material;
    material.SetJawDefault();
    const glm::mat4 matrix =
        placement.hasMatrix ? NuViewTransforms::FromMatrix(placement.matrix) : glm::mat4(1.0f);
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
        material.SetLimited(static_cast<float>(c.GetR()), static_cast<float>(c.GetG()),
                            static_cast<float>(c.GetB()), kLimitedAlpha);
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), static_cast<GLubyte>(kLimitedAlpha));
    } else if (jaw->IsSelected()) {
        material.SetSelected();
        VxFixedMaterial::Selected().Apply();
    } else {
        VxMaterialIni::ReadJawColorIni();
        VxFixedMaterial::Jaw().Apply();
    }
    // Every jaw material: the shell is open, its inside must not show black.
    material.SetBackAndFront(true);

    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Solid) {
        RenderV1::GetInstance()->DrawWithMaterialWithMatrix(jaw, material, matrix);
    }
    VxFixedDrawSteps::RasteriseLines(VxVBOHandleMgr::GetInstance()->GetVBOHandle(jaw), jaw);

    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void NuJawDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxJaw* jaw = dynamic_cast<VxJaw*>(entity);
    VxFixedDrawSteps::DrawForSelect(jaw, jaw, point);
}
