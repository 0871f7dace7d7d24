// VxSkullDrawer: one draw inside all placements at once.
#include <mesh/VxSkullDrawer.h>

#include <GL/glew.h>

#include <interfaces/VxMesh.h>
#include <interfaces/VxTransformMatrix.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxVBOHandleMgr.h>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilSkull = 1;
} // namespace

VxSkullDrawer::~VxSkullDrawer() = default;

void VxSkullDrawer::Draw(VxEntity* entity) {
    VxMesh* skull = dynamic_cast<VxMesh*>(entity);
    if (skull == nullptr) {
        return;
    }
    if (skull->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(skull);
    }
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilSkull, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    // Flagged or not, every placement is multiplied in.
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(skull);
    glMatrixMode(GL_MODELVIEW);
    for (const DrawInfo_s& info : infos) {
        double m[16];
        info.matrix.ToArray(m);
        glPushMatrix();
        glMultMatrixd(m);
    }
    if (skull->IsSelected()) {
        VxFixedMaterial::Selected().Apply();
    } else {
        VxFixedMaterial::Jaw().Apply();
    }
    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(skull);
    VxFixedDrawSteps::Rasterise(handle, skull, skull->GetFaceCount(), nullptr);
    glMatrixMode(GL_MODELVIEW);
    for (size_t i = 0; i < infos.size(); ++i) {
        glPopMatrix();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopAttrib();
}

void VxSkullDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxMesh* mesh = dynamic_cast<VxMesh*>(entity);
    VxFixedDrawSteps::DrawForSelect(mesh, mesh, point);
}
