// NuRenderStatus: the shader path's record of which vertex data must be sent again: one global
// flag and one flag per mesh. A per-mesh flag, once registered, is never changed through this
// class. It holds no GL object and owns no mesh.
#pragma once

#include <map>

class VxMesh;

class NuRenderStatus {
public:
    static NuRenderStatus* GetInstance();

    bool Get_bIsUpdateVBO() const { return m_bIsUpdateVBO; }
    void Set_bIsUpdateVBO(bool update) { m_bIsUpdateVBO = update; }
    // The mesh's flag. An unregistered mesh answers false (registering is the caller's duty).
    bool Get_bIsUpdateVBO(VxMesh* mesh) const;
    // Registers the mesh with its own IsUpdateVBO if it has no entry yet.
    void Set_bIsUpdateVBO(VxMesh* mesh);
    // Registers the mesh with the value if it has no entry yet; an existing entry stays as it is,
    // on purpose, so this cannot change a flag once set.
    void Set_bIsUpdateVBO(VxMesh* mesh, bool update);
    bool IsRegistered(VxMesh* mesh) const { return m_meshFlags.count(mesh) != 0; }

private:
    NuRenderStatus() = default;
    NuRenderStatus(const NuRenderStatus&) = delete;
    NuRenderStatus& operator=(const NuRenderStatus&) = delete;

    bool m_bIsUpdateVBO = true;
    std::map<VxMesh*, bool> m_meshFlags;
};
