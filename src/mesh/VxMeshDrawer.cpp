// VxMeshDrawer: plain meshes and wedges.
#include <mesh/VxMeshDrawer.h>

#include <GL/glew.h>

#include <frame/VxRenderEnums.h>

#include <interfaces/VxColor.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxVBOHandleMgr.h>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilMesh = 1;
constexpr GLubyte kWedgeAlpha = 90;
} // namespace

VxMeshDrawer::~VxMeshDrawer() = default;

void VxMeshDrawer::Draw(VxEntity* entity) {
    VxMesh* mesh = dynamic_cast<VxMesh*>(entity);
    if (mesh == nullptr) {
        return;
    }
    VxFilledWedge* wedge = dynamic_cast<VxFilledWedgeTwoTooth*>(entity);
    if (wedge == nullptr) {
        wedge = dynamic_cast<VxFilledWedgeTriTooth*>(entity);
    }
    // A wedge without a left tooth belongs to no jaw and is always shown.
    if (wedge != nullptr && wedge->GetToothLeft() != nullptr &&
        !VxFixedDrawSteps::ShowTest(wedge, m_view, wedge->GetToothLeft()->IsUp(),
                                    Display_Selec_UpperTeeth, Display_Selec_LowerTeeth)) {
        return;
    }
    if (mesh->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(mesh);
    }
    for (const VxPlacement& placement :
         VxFixedDrawSteps::Placements(mesh, VxFixedDrawSteps::Placement_All)) {
        DrawOne(mesh, placement, wedge != nullptr);
    }
}

void VxMeshDrawer::DrawOne(VxMesh* mesh, const VxPlacement& placement, bool wedge) {
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited || wedge) {
        keepColour.emplace();
    }
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilMesh, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    VxFixedDrawSteps::PushPlacement(placement);
    const bool blended = placement.limited || wedge;
    if (blended) {
        VxFixedDrawSteps::BeginLimited();
    }
    if (wedge) {
        // The depth mask belongs to the depth group, which neither push covers; the blend push's
        // own enable group does not either, so the mask is put back by hand.
        GLboolean depthMask = GL_TRUE;
        glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
        glDepthMask(GL_FALSE);
        glDisable(GL_LIGHTING);
        const VxColor c = VxColor::GetWedgeColor();
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), kWedgeAlpha);
        const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(mesh);
        VxFixedDrawSteps::Rasterise(handle, mesh, mesh->GetFaceCount(), nullptr);
        glDepthMask(depthMask);
    } else {
        // Meshes have no limited colour: a limit position gets the blend set-up and the opaque
        // material all the same.
        if (mesh->IsSelected()) {
            VxFixedMaterial::Selected().Apply();
        } else {
            VxFixedMaterial::Jaw().Apply();
        }
        const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(mesh);
        VxFixedDrawSteps::Rasterise(handle, mesh, mesh->GetFaceCount(), nullptr);
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    if (blended) {
        VxFixedDrawSteps::EndLimited();
    }
    glPopAttrib();
    VxFixedDrawSteps::PopPlacement(placement);
}

void VxMeshDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxMesh* mesh = dynamic_cast<VxMesh*>(entity);
    VxFixedDrawSteps::DrawForSelect(mesh, mesh, point);
}
