// NuDrawerMgr: the process-wide map from an entity's ObjectType_e to the shader-path drawer that
// puts it on screen. The frame asks it for the drawer of each entity and skips an entity it has no
// drawer for.
// PLACEHOLDER: the drawers themselves come with the mesh-drawing work, which registers them in
// the constructor; until then the map is empty and GetDrawer answers null for every type.
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
    NuDrawerMgr() = default;
    NuDrawerMgr(const NuDrawerMgr&) = delete;
    NuDrawerMgr& operator=(const NuDrawerMgr&) = delete;

    std::map<ObjectType_e, VxDrawer*> m_drawers; // owned
};
