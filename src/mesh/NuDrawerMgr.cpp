// NuDrawerMgr: registration, lookup and ownership of the shader-path drawers.
#include <mesh/NuDrawerMgr.h>

#include <mesh/NuAttachmentDrawer.h>
#include <mesh/NuGumDrawer.h>
#include <mesh/NuJawDrawer.h>
#include <mesh/NuToothDrawer.h>
#include <mesh/VxDrawer.h>
#include <mesh/VxMeshDrawer.h>

NuDrawerMgr* NuDrawerMgr::GetInstance() {
    static NuDrawerMgr instance;
    return &instance;
}

NuDrawerMgr::NuDrawerMgr() {
    m_drawers[ObjectType_Jaw] = new NuJawDrawer();
    m_drawers[ObjectType_Gum] = new NuGumDrawer();
    m_drawers[ObjectType_Tooth] = new NuToothDrawer();
    m_drawers[ObjectType_Mesh] = new VxMeshDrawer();
    m_drawers[ObjectType_Attachment] = new NuAttachmentDrawer();
}

NuDrawerMgr::~NuDrawerMgr() {
    for (auto& entry : m_drawers) {
        delete entry.second;
    }
}

VxDrawer* NuDrawerMgr::GetDrawer(ObjectType_e type) const {
    auto it = m_drawers.find(type);
    return it == m_drawers.end() ? nullptr : it->second;
}
