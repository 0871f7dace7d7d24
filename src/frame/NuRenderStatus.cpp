// NuRenderStatus: insert-only per-mesh flags.
#include <frame/NuRenderStatus.h>

#include <interfaces/VxMesh.h>

NuRenderStatus* NuRenderStatus::GetInstance() {
    static NuRenderStatus instance;
    return &instance;
}

bool NuRenderStatus::Get_bIsUpdateVBO(VxMesh* mesh) const {
    auto it = m_meshFlags.find(mesh);
    return it != m_meshFlags.end() && it->second;
}

void NuRenderStatus::Set_bIsUpdateVBO(VxMesh* mesh) {
    if (mesh != nullptr && m_meshFlags.find(mesh) == m_meshFlags.end()) {
        m_meshFlags.emplace(mesh, mesh->IsUpdateVBO());
    }
}

void NuRenderStatus::Set_bIsUpdateVBO(VxMesh* mesh, bool update) {
    m_meshFlags.emplace(mesh, update); // no effect where an entry exists
}
