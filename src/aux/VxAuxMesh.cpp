// VxAuxMesh: a lit mesh from the shared buffers.
#include <aux/VxAuxMesh.h>

#include <GL/glew.h>

#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxVBOHandleMgr.h>

namespace {

const VxFixedMaterial& DefaultMaterial() {
    static const VxFixedMaterial m(VxColor(153, 153, 153, 153), VxColor(178, 178, 178, 255),
                                   VxColor(38, 33, 30, 255), VxColor(0, 0, 0, 255), 10.0f);
    return m;
}

const VxFixedMaterial& SelectedMaterial() {
    static const VxFixedMaterial m(VxColor(153, 153, 153, 153), VxColor(214, 0, 0, 255),
                                   VxColor(64, 64, 64, 255), VxColor(0, 0, 0, 255), 10.0f);
    return m;
}

} // namespace

ObjectType_e VxAuxMesh::GetObjectType() const {
    return ObjectType_AuxMesh;
}

bool VxAuxMesh::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxMesh || VxAuxObject::IsKindOf(type);
}

void VxAuxMesh::SetMatrix(VxMatrix& matrix) {
    matrix.ToArray(m_matrix);
}

void VxAuxMesh::Draw() {
    if (m_mesh == nullptr || !IsVisible()) {
        return;
    }
    GLint previous = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &previous);
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glMultMatrixd(m_matrix);
    DefaultMaterial().Apply();
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    if (m_mesh->IsUpdateVBO()) {
        mgr->BuildVBO(m_mesh);
    }
    (IsSelected() ? SelectedMaterial() : DefaultMaterial()).Apply();
    const VxVBOHandle& handle = mgr->GetVBOHandle(m_mesh);
    if (handle.GetPosHandle() != 0 && handle.GetNormalHandle() != 0) {
        glBindBufferARB(GL_ARRAY_BUFFER, handle.GetPosHandle());
        glVertexPointer(3, GL_FLOAT, 0, nullptr);
        glBindBufferARB(GL_ARRAY_BUFFER, handle.GetNormalHandle());
        glNormalPointer(GL_FLOAT, 0, nullptr);
        glDrawArrays(GL_TRIANGLES, 0, 3 * m_mesh->GetFaceCount());
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopClientAttrib();
    PopPass();
    glPopMatrix();
    glBindBufferARB(GL_ARRAY_BUFFER, static_cast<GLuint>(previous));
}
