// VxAuxFace: coloured triangles over a mesh.
#include <aux/VxAuxFace.h>

#include <GL/glew.h>

#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTransformMatrix.h>

VxAuxFace::VxAuxFace(VxMesh* mesh) : m_mesh(mesh) {
    m_hitPriority = AuxHitPriority_Low;
}

ObjectType_e VxAuxFace::GetObjectType() const {
    return ObjectType_AuxFace;
}

bool VxAuxFace::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxFace || VxAuxObject::IsKindOf(type);
}

void VxAuxFace::Draw() {
    if (!IsVisible() || m_mesh == nullptr || m_faces.empty()) {
        return;
    }
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(m_mesh);
    if (!infos.empty()) {
        DrawCore(&infos.begin()->matrix);
    } else {
        DrawCore(nullptr);
    }
}

template <typename ColourOf> void VxAuxFace::Triangles(ColourOf colourOf) const {
    const int faceCount = m_mesh->GetFaceCount();
    const int vertexCount = m_mesh->GetVertexCount();
    glBegin(GL_TRIANGLES);
    for (int f : m_faces) {
        if (f < 0 || f >= faceCount) {
            continue;
        }
        int v[3];
        m_mesh->GetFaces()[static_cast<std::size_t>(f)].Get3VtxId(v[0], v[1], v[2]);
        if (v[0] < 0 || v[1] < 0 || v[2] < 0 || v[0] >= vertexCount || v[1] >= vertexCount ||
            v[2] >= vertexCount) {
            continue;
        }
        for (int id : v) {
            colourOf(id);
            const VxPoint& p = m_mesh->GetVertices()[static_cast<std::size_t>(id)].GetPos();
            glVertex3d(p[0], p[1], p[2]);
        }
    }
    glEnd();
}

void VxAuxFace::DrawCore(const VxMatrix* placement) {
    if (placement != nullptr) {
        double m[16];
        placement->ToArray(m);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glMultMatrixd(m);
    }
    // Hook: on the shader path (OpenGLVersion::Get_btestversion()) these triangles go to
    // RenderV1::DrawWithMaterialWithMatrixTriandColor with 18 floats a face (position and
    // colour of each vertex) and the placement as a glm matrix. Until the shader renderer
    // exists both paths draw them the fixed-function way below.
    if (m_transparent) {
        glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                     GL_COLOR_BUFFER_BIT | GL_POLYGON_BIT);
        glDisable(GL_LIGHTING);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(-1.0f, -2.0f);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        GLColor(m_faceColor, 128);
        Triangles([](int) {});
        PopPass();
    } else {
        glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                     GL_COLOR_BUFFER_BIT | GL_POLYGON_BIT);
        glDisable(GL_LIGHTING);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        // The patch lies exactly on the mesh it colours; pulled a little towards the eye it wins
        // every depth test instead of half of them (a speckle of tooth through the map).
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(-1.0f, -2.0f);
        glShadeModel(GL_SMOOTH);
        Triangles([this](int id) {
            // A vertex without a colour is the caller's slip; it gets black, not a crash.
            auto it = m_vertexColors.find(id);
            GLColor(it != m_vertexColors.end() ? it->second : VxColor(), 255);
        });
        PopPass();
    }
    if (placement != nullptr) {
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
}
