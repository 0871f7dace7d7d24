// VxAuxPipeLine: tube mesh, buffers and the exact ray hit.
#include <aux/VxAuxPipeLine.h>

#include <GL/glew.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxMesh.h>
#include <mesh/VxVBOHandleMgr.h>

#include <vector>

VxAuxPipeLine::VxAuxPipeLine(const VxBSplineCurve* curve) {
    SetBSplineCurve(curve);
}

VxAuxPipeLine::VxAuxPipeLine(const VxAuxPipeLine& other)
    : VxAuxObject(other), m_style(other.m_style), m_density(other.m_density) {
    if (other.m_mesh != nullptr) {
        m_mesh = new VxMesh(*other.m_mesh);
        m_mesh->SetUpdateVBO(true);
    }
}

VxAuxPipeLine& VxAuxPipeLine::operator=(const VxAuxPipeLine& other) {
    if (this != &other) {
        VxAuxObject::operator=(other);
        ClearMesh();
        m_style = other.m_style;
        m_density = other.m_density;
        if (other.m_mesh != nullptr) {
            m_mesh = new VxMesh(*other.m_mesh);
            m_mesh->SetUpdateVBO(true);
        }
    }
    return *this;
}

VxAuxPipeLine::~VxAuxPipeLine() {
    ClearMesh();
}

ObjectType_e VxAuxPipeLine::GetObjectType() const {
    return ObjectType_AuxPipeLine;
}

bool VxAuxPipeLine::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPipeLine || VxAuxObject::IsKindOf(type);
}

void VxAuxPipeLine::SetBSplineCurve(const VxBSplineCurve* curve) {
    ClearMesh();
    if (curve != nullptr) {
        // CreatePipeMesh hands back a finished mesh (edges, adjacency, normals, update flag).
        m_mesh = VxMesh::CreatePipeMesh(RadiusOf(m_style), *curve, StepOf(m_density));
    }
}

void VxAuxPipeLine::ClearMesh() {
    if (m_mesh != nullptr) {
        VxVBOHandleMgr::GetInstance()->RemoveMesh(m_mesh);
        delete m_mesh;
        m_mesh = nullptr;
    }
}

void VxAuxPipeLine::Draw() {
    if (m_mesh == nullptr) {
        return;
    }
    DrawPasses([this](int mode) { DrawCore(mode); });
}

void VxAuxPipeLine::DrawBuffers() const {
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    if (m_mesh->IsUpdateVBO()) {
        mgr->BuildVBO(m_mesh);
    }
    const VxVBOHandle& handle = mgr->GetVBOHandle(m_mesh);
    if (handle.GetPosHandle() == 0 || handle.GetNormalHandle() == 0) {
        return;
    }
    GLint previous = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &previous);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glBindBufferARB(GL_ARRAY_BUFFER, handle.GetPosHandle());
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    glBindBufferARB(GL_ARRAY_BUFFER, handle.GetNormalHandle());
    glNormalPointer(GL_FLOAT, 0, nullptr);
    glDrawArrays(GL_TRIANGLES, 0, 3 * m_mesh->GetFaceCount());
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glPopClientAttrib();
    glBindBufferARB(GL_ARRAY_BUFFER, static_cast<GLuint>(previous));
}

void VxAuxPipeLine::DrawCore(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    // Not dimmed behind the scene: the blend alone shows that part as hidden.
    GLColor(m_color);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    DrawBuffers();
    PopPass();
}

void VxAuxPipeLine::DrawHighlight() {
    if (m_mesh == nullptr) {
        return;
    }
    glPushAttrib(kPassAttribs);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    GLColor(Scaled(m_color, 0.8));
    DrawBuffers();
    PopPass();
}

bool VxAuxPipeLine::HitTest(int x, int y) {
    if (m_mesh == nullptr || m_render == nullptr) {
        return false;
    }
    const VxPoint nearP = m_render->MapScreenPointToModel(CPoint(x, y), 0.0);
    const VxPoint farP = m_render->MapScreenPointToModel(CPoint(x, y), 1.0);
    if (nearP == farP) {
        return false;
    }
    std::vector<VxPoint> points;
    return m_mesh->IntersectMeshWithLine(VxLine(nearP, farP), points);
}
