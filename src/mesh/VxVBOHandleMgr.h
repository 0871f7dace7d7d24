// VxVBOHandleMgr: the process-wide map from mesh to its VxVBOHandle. Owns the GPU buffers of
// every mesh it has built; builds or rebuilds only when the mesh's update flag asks for it, so a
// drawer may call BuildVBO for every mesh in every frame. It never frees a mesh and never
// notices a deleted one: the host removes it.
#pragma once

#include <mesh/VxVBOHandle.h>

#include <map>

class VxVBOHandleMgr {
public:
    // First reached with a context current: the constructor makes sure of the buffer entry
    // points.
    static VxVBOHandleMgr* GetInstance();
    virtual ~VxVBOHandleMgr();

    // Creates or refreshes the mesh's buffers when IsUpdateVBO holds, then clears the flag.
    void BuildVBO(VxMesh* mesh);
    // The mesh's handle. A mesh that was never built gets an empty handle (all names 0, no
    // faces), which draws nothing.
    const VxVBOHandle& GetVBOHandle(VxMesh* mesh) const;
    bool HasVBOHandle(VxMesh* mesh) const { return m_handles.count(mesh) != 0; }
    // Destroys the mesh's buffers and forgets it; an unknown mesh is left alone.
    void RemoveMesh(VxMesh* mesh);
    // Destroys every buffer; needed after a new context, whose names these are not.
    void Clear();

private:
    VxVBOHandleMgr();
    VxVBOHandleMgr(const VxVBOHandleMgr&) = delete;
    VxVBOHandleMgr& operator=(const VxVBOHandleMgr&) = delete;

    std::map<VxMesh*, VxVBOHandle> m_handles;
};
