// NuDrawerMgr: the process-wide map from an entity's ObjectType_e to the shader-path drawer that
// puts it on screen. The frame asks it for the drawer of each entity and skips an entity it has no
// drawer for. Registered: jaw, gum and tooth (the Nu drawers), plain mesh (the fixed-function
// VxMeshDrawer, which serves both paths) and attachment (NuAttachmentDrawer, which the frame does
// not ask for: attachments go to the fixed-function drawer on both paths).
#pragma once

#include <interfaces/VxObjectType.h>

#include <map>

class VxDrawer;

class NuDrawerMgr {
public:
    static NuDrawerMgr* GetInstance();
    virtual ~NuDrawerMgr();

    // Null for a type without a drawer.
    VxDrawer* GetDrawer(ObjectType_e type) const;

private:
    NuDrawerMgr();
    NuDrawerMgr(const NuDrawerMgr&) = delete;
    NuDrawerMgr& operator=(const NuDrawerMgr&) = delete;

    std::map<ObjectType_e, VxDrawer*> m_drawers; // owned
};
