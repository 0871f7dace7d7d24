// NuGumDrawer: one draw per placement.
#include <mesh/NuGumDrawer.h>

#include <GL/glew.h>

#include <frame/NuRenderStatus.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxRenderEnums.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxGum.h>
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
constexpr GLint kStencilGum = 3;
constexpr float kLimitedAlpha = 60.0f;
} // namespace

NuGumDrawer::~NuGumDrawer() = default;

void NuGumDrawer::Draw(VxEntity* entity) {
    VxGum* gum = dynamic_cast<VxGum*>(entity);
    if (gum == nullptr ||
        !VxFixedDrawSteps::ShowTest(gum, m_view, gum->IsUp(), Display_Selec_UpperGum,
                                    Display_Selec_LowerGum)) {
        return;
    }
    NuRenderStatus::GetInstance()->Set_bIsUpdateVBO(gum->IsUpdateVBO());
    if (gum->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(gum);
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Gum, m_view, gum->IsCmp());
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(gum, rule)) {
        DrawObject(gum, placement);
    }
}

void NuGumDrawer::DrawObject(VxGum* gum, const VxPlacement& placement) {
    RenderV1* renderer = RenderV1::GetInstance();
    NuRenderMaterial material;
    material.SetGumDefault();
    const glm::mat4 matrix =
        placement.hasMatrix ? NuViewTransforms::FromMatrix(placement.matrix) : glm::mat4(1.0f);
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited) {
        keepColour.emplace();
    }
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilGum, 0xFF);
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
    } else if (gum->IsSelected()) {
        material.SetSelected();
        VxFixedMaterial::Selected().Apply();
    } else {
        VxMaterialIni::ReadGumColorIni();
        VxFixedMaterial::Gum().Apply();
    }

    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Solid) {
        const int host = OpenGLVersion::GetInstance()->Getmy_exe_type();
        if (gum->IsSelected()) {
            renderer->DrawGumSelectedWithMaterialWithMatrix(gum, material, matrix);
        } else if (host == 1 || host == 3) {
            if (!placement.limited) {
                material.SetGumPlain();
            }
            renderer->DrawGumSelectedWithMaterialWithMatrix(gum, material, matrix);
        } else {
            renderer->DrawGumWithMaterialWithMatrix(gum, material, matrix);
        }
    }
    VxFixedDrawSteps::RasteriseLines(VxVBOHandleMgr::GetInstance()->GetVBOHandle(gum), gum);

    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void NuGumDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxGum* gum = dynamic_cast<VxGum*>(entity);
    VxFixedDrawSteps::DrawForSelect(gum, gum, point);
}
