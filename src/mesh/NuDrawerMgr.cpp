// NuDrawerMgr: lookup and ownership of the registered drawers (none registered yet).
#include <mesh/NuDrawerMgr.h>

#include <mesh/VxDrawer.h>

NuDrawerMgr* NuDrawerMgr::GetInstance() {
    static NuDrawerMgr instance;
    return &instance;
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
