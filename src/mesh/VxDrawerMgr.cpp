// VxDrawerMgr: registration of the six fixed-function drawers.
#include <mesh/VxDrawerMgr.h>

#include <mesh/VxAttachmentDrawer.h>
#include <mesh/VxGumDrawer.h>
#include <mesh/VxJawDrawer.h>
#include <mesh/VxMeshDrawer.h>
#include <mesh/VxSkullDrawer.h>
#include <mesh/VxToothDrawer.h>

VxDrawerMgr* VxDrawerMgr::GetInstance() {
    static VxDrawerMgr instance;
    return &instance;
}

VxDrawerMgr::VxDrawerMgr() {
    m_drawers[ObjectType_Jaw] = new VxJawDrawer();
    m_drawers[ObjectType_Gum] = new VxGumDrawer();
    m_drawers[ObjectType_Tooth] = new VxToothDrawer();
    m_drawers[ObjectType_Mesh] = new VxMeshDrawer();
    m_drawers[ObjectType_Attachment] = new VxAttachmentDrawer();
    m_drawers[ObjectType_Skull] = new VxSkullDrawer();
}

VxDrawerMgr::~VxDrawerMgr() {
    for (auto& entry : m_drawers) {
        delete entry.second;
    }
}

VxDrawer* VxDrawerMgr::GetDrawer(ObjectType_e type) const {
    auto it = m_drawers.find(type);
    return it == m_drawers.end() ? nullptr : it->second;
}
