// VxVBOHandleMgr: the buffer map, and the ARB buffer entry points written into GLEW's slots.
#include <mesh/VxVBOHandleMgr.h>

#include <GL/glew.h>

#include <EGL/egl.h>

#include <interfaces/VxMesh.h>

namespace {

// GLEW fills the ARB slots only when the driver lists GL_ARB_vertex_buffer_object; the core
// functions behave the same, so either source will do. Asked of EGL first, as the desktop asked
// its own loader.
template <typename Fn> void Resolve(Fn& slot, const char* arbName, Fn core) {
    if (slot != nullptr) {
        return;
    }
    slot = reinterpret_cast<Fn>(eglGetProcAddress(arbName));
    if (slot == nullptr) {
        slot = core;
    }
}

} // namespace

VxVBOHandleMgr::VxVBOHandleMgr() {
    Resolve(__glewGenBuffersARB, "glGenBuffersARB", __glewGenBuffers);
    Resolve(__glewBindBufferARB, "glBindBufferARB", __glewBindBuffer);
    Resolve(__glewBufferDataARB, "glBufferDataARB", __glewBufferData);
    Resolve(__glewDeleteBuffersARB, "glDeleteBuffersARB", __glewDeleteBuffers);
}

VxVBOHandleMgr::~VxVBOHandleMgr() {
    Clear();
}

VxVBOHandleMgr* VxVBOHandleMgr::GetInstance() {
    static VxVBOHandleMgr instance;
    return &instance;
}

void VxVBOHandleMgr::BuildVBO(VxMesh* mesh) {
    if (mesh == nullptr || !mesh->IsUpdateVBO()) {
        return;
    }
    auto it = m_handles.find(mesh);
    if (it == m_handles.end()) {
        VxVBOHandle handle(mesh);
        handle.Create();
        m_handles[mesh] = handle;
    } else {
        it->second.Update();
    }
    mesh->SetUpdateVBO(false);
}

const VxVBOHandle& VxVBOHandleMgr::GetVBOHandle(VxMesh* mesh) const {
    static const VxVBOHandle empty;
    auto it = m_handles.find(mesh);
    return it == m_handles.end() ? empty : it->second;
}

void VxVBOHandleMgr::RemoveMesh(VxMesh* mesh) {
    auto it = m_handles.find(mesh);
    if (it == m_handles.end()) {
        return;
    }
    it->second.Destroy();
    m_handles.erase(it);
}

void VxVBOHandleMgr::Clear() {
    for (auto& entry : m_handles) {
        entry.second.Destroy();
    }
    m_handles.clear();
}
