// VxDrawerMgr: the process-wide map from an entity's ObjectType_e to the fixed-function drawer that
// puts it on screen: jaw, gum, tooth, mesh, attachment and skull. The frame asks it for the
// drawer of each entity and skips an entity it has no drawer for; selection asks it whatever the
// render path. It owns its drawers and draws nothing itself.
#pragma once

#include <interfaces/VxObjectType.h>

#include <map>

class VxDrawer;

class VxDrawerMgr {
public:
    static VxDrawerMgr* GetInstance();
    virtual ~VxDrawerMgr();

    // Null for a type without a drawer. Types are exact: a wedge reaches the mesh drawer through
    // its own type, ObjectType_Mesh.
    VxDrawer* GetDrawer(ObjectType_e type) const;

private:
    VxDrawerMgr();
    VxDrawerMgr(const VxDrawerMgr&) = delete;
    VxDrawerMgr& operator=(const VxDrawerMgr&) = delete;

    std::map<ObjectType_e, VxDrawer*> m_drawers; // owned
};
