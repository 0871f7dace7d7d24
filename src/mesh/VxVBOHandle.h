// VxVBOHandle: the GPU buffers of one mesh on the fixed-function path: unindexed triangle corners
// with flat face normals, edge ends, vertices and, for a textured tooth or gum, direction-as-
// texture coordinates. A plain record copied by value into VxVBOHandleMgr's map; it does not own
// the mesh, does not decide when to rebuild (the manager does, from the mesh's update flag) and
// never draws.
#pragma once

#include <vector>

class VxMesh;

class VxVBOHandle {
public:
    VxVBOHandle() = default;
    explicit VxVBOHandle(VxMesh* owner) : m_owner(owner) {}

    // Uploads every buffer; needs a current context. Face count is set here.
    void Create();
    // Deletes the buffers and zeroes the five handles; the owner (and face count) stay.
    void Destroy();
    void Update();

    VxMesh* GetOwner() const { return m_owner; }
    unsigned int GetPosHandle() const { return m_pos; }
    unsigned int GetNormalHandle() const { return m_normal; }
    unsigned int GetEdgeHandle() const { return m_edge; }
    unsigned int GetVertexHandle() const { return m_vertex; }
    unsigned int GetTextureHandle() const { return m_texture; }
    // Faces in the position and normal buffers; fewer than the mesh's own count for a tooth that
    // leaves out its basic root.
    int GetFaceCount() const { return m_faceCount; }

private:
    // CPU copies for upload; new[] arrays the caller deletes.
    float* GetVertexPosArray();
    float* GetVertexNormalArray();
    float* GetVertexArray();
    float* GetEdgeArray();
    bool SkipToothBasicRoot() const;
    // Ids of the faces that go into the position and normal buffers, in face order.
    std::vector<int> BufferedFaces() const;

    VxMesh* m_owner = nullptr;
    unsigned int m_pos = 0;
    unsigned int m_normal = 0;
    unsigned int m_edge = 0;
    unsigned int m_vertex = 0;
    unsigned int m_texture = 0;
    int m_faceCount = 0;
};
