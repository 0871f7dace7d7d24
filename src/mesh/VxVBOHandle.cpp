// VxVBOHandle: CPU copies of a mesh as float arrays and their upload through the ARB buffer entry
// points that VxVBOHandleMgr made sure of.
#include <mesh/VxVBOHandle.h>

#include <GL/glew.h>

#include <frame/VxRenderStatus.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxDrawerFiles.h>

#include <algorithm>

namespace {

unsigned int Upload(const float* data, GLsizeiptrARB bytes, GLenum usage) {
    GLuint name = 0;
    glGenBuffersARB(1, &name);
    glBindBufferARB(GL_ARRAY_BUFFER, name);
    glBufferDataARB(GL_ARRAY_BUFFER, bytes, data, usage);
    return name;
}

void WritePoint(float* out, const VxPoint& p) {
    out[0] = static_cast<float>(p[0]);
    out[1] = static_cast<float>(p[1]);
    out[2] = static_cast<float>(p[2]);
}

} // namespace

bool VxVBOHandle::SkipToothBasicRoot() const {
    if (m_owner == nullptr || !m_owner->IsKindOf(ObjectType_Tooth) ||
        !VxRenderStatus::GetInstance()->IsShowBackupRoot()) {
        return false;
    }
    const VxTooth* tooth = dynamic_cast<const VxTooth*>(m_owner);
    return tooth != nullptr && tooth->GetBackupRoot() != nullptr;
}

std::vector<int> VxVBOHandle::BufferedFaces() const {
    const std::vector<VxFace>& faces = m_owner->GetFaces();
    const bool skip = SkipToothBasicRoot();
    std::vector<int> ids;
    ids.reserve(faces.size());
    for (size_t i = 0; i < faces.size(); ++i) {
        if (!skip || faces[i].GetFaceStyle() != FaceStyle_BasicRoot) {
            ids.push_back(static_cast<int>(i));
        }
    }
    return ids;
}

float* VxVBOHandle::GetVertexPosArray() {
    const std::vector<int> ids = BufferedFaces();
    m_faceCount = static_cast<int>(ids.size());
    const std::vector<VxFace>& faces = m_owner->GetFaces();
    const std::vector<VxVertex>& vertices = m_owner->GetVertices();
    float* out = new float[ids.size() * 9 + 1];
    float* p = out;
    for (int id : ids) {
        int v[3];
        faces[id].Get3VtxId(v[0], v[1], v[2]);
        for (int k = 0; k < 3; ++k, p += 3) {
            WritePoint(p, vertices[v[k]].GetPos());
        }
    }
    return out;
}

// The face normal three times: shading is flat on purpose, the mesh's vertex normals are not
// used. Sized for at least as many faces as the mesh has vertices (zeros past the faces): the
// tooth's texture upload takes its byte count from the vertex count and must not read past the
// array.
float* VxVBOHandle::GetVertexNormalArray() {
    const std::vector<int> ids = BufferedFaces();
    const size_t slots = std::max(ids.size(), static_cast<size_t>(m_owner->GetVertexCount()));
    float* out = new float[slots * 9 + 1]();
    float* p = out;
    const std::vector<VxFace>& faces = m_owner->GetFaces();
    for (int id : ids) {
        const VxVector& n = faces[id].GetNormal();
        for (int k = 0; k < 3; ++k, p += 3) {
            p[0] = static_cast<float>(n[0]);
            p[1] = static_cast<float>(n[1]);
            p[2] = static_cast<float>(n[2]);
        }
    }
    return out;
}

float* VxVBOHandle::GetEdgeArray() {
    const std::vector<VxEdge>& edges = m_owner->GetEdges();
    const std::vector<VxVertex>& vertices = m_owner->GetVertices();
    float* out = new float[edges.size() * 6 + 1];
    float* p = out;
    for (const VxEdge& e : edges) {
        int a, b;
        e.Get2VtxId(a, b);
        WritePoint(p, vertices[a].GetPos());
        WritePoint(p + 3, vertices[b].GetPos());
        p += 6;
    }
    return out;
}

float* VxVBOHandle::GetVertexArray() {
    const std::vector<VxVertex>& vertices = m_owner->GetVertices();
    float* out = new float[vertices.size() * 3 + 1];
    for (size_t i = 0; i < vertices.size(); ++i) {
        WritePoint(out + 3 * i, vertices[i].GetPos());
    }
    return out;
}

// Upload order: position, normal, texture (tooth with "teeth.bmp", or gum with "gum.bmp"), edge,
// vertex. The texture coordinates are the face normals read as three-component coordinates, so
// the bitmap wraps by direction. The tooth's texture buffer is sized by the vertex count, the
// gum's by the face count; that asymmetry is kept as it is.
void VxVBOHandle::Create() {
    if (m_owner == nullptr) {
        return;
    }
    // The caller's binding is put back afterwards: a build happens in the middle of a draw.
    GLint previousBinding = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &previousBinding);
    const GLsizeiptrARB floatBytes = static_cast<GLsizeiptrARB>(sizeof(float));
    float* data = GetVertexPosArray();
    const GLsizeiptrARB faceBytes = static_cast<GLsizeiptrARB>(m_faceCount) * 9 * floatBytes;
    m_pos = Upload(data, faceBytes, GL_STATIC_DRAW);
    delete[] data;

    data = GetVertexNormalArray();
    m_normal = Upload(data, faceBytes, GL_STATIC_DRAW);
    delete[] data;

    if (m_owner->IsKindOf(ObjectType_Tooth) && VxDrawerFiles::TeethBitmapExists()) {
        data = GetVertexNormalArray();
        m_texture =
            Upload(data, static_cast<GLsizeiptrARB>(m_owner->GetVertexCount()) * 9 * floatBytes,
                   GL_DYNAMIC_DRAW);
        delete[] data;
    }
    if (m_owner->IsKindOf(ObjectType_Gum) && VxDrawerFiles::GumBitmapExists()) {
        data = GetVertexNormalArray();
        m_texture = Upload(data, faceBytes, GL_DYNAMIC_DRAW);
        delete[] data;
    }

    data = GetEdgeArray();
    m_edge = Upload(data, static_cast<GLsizeiptrARB>(m_owner->GetEdgeCount()) * 6 * floatBytes,
                    GL_STATIC_DRAW);
    delete[] data;

    data = GetVertexArray();
    m_vertex = Upload(data, static_cast<GLsizeiptrARB>(m_owner->GetVertexCount()) * 3 * floatBytes,
                      GL_STATIC_DRAW);
    delete[] data;

    glBindBufferARB(GL_ARRAY_BUFFER, static_cast<GLuint>(previousBinding));
}

// The texture buffer goes only while "teeth.bmp" is there, whatever the mesh is: a gum's texture
// buffer made for "gum.bmp" alone outlives its handle. Kept as it is.
void VxVBOHandle::Destroy() {
    glDeleteBuffersARB(1, &m_pos);
    glDeleteBuffersARB(1, &m_normal);
    glDeleteBuffersARB(1, &m_edge);
    glDeleteBuffersARB(1, &m_vertex);
    if (VxDrawerFiles::TeethBitmapExists()) {
        glDeleteBuffersARB(1, &m_texture);
    }
    m_pos = m_normal = m_edge = m_vertex = m_texture = 0;
}

void VxVBOHandle::Update() {
    Destroy();
    Create();
}
