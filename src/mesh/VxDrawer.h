// VxDrawer: the abstract drawer of one kind of entity. The frame calls SetViewRegion and then
// Draw; selection calls DrawForSelect, which needs no view. The base holds only the view; the
// fixed-function drawers (VxToothDrawer and its five siblings) and the shader-path drawers
// derive from it directly.
#pragma once

#include <interfaces/CPoint.h>

class VxEntity;
class VxViewRegion;

class VxDrawer {
public:
    VxDrawer() = default;
    VxDrawer(const VxDrawer&) = delete;
    VxDrawer& operator=(const VxDrawer&) = delete;
    virtual ~VxDrawer();

    // Slots in this order: destructor, Draw, DrawForSelect, SetViewRegion.
    virtual void Draw(VxEntity* entity) = 0;
    // Draws the entity with object addresses as GL selection names (see VxSelectNames).
    virtual void DrawForSelect(VxEntity* entity, const CPoint& point) = 0;
    // Pure, with the one body every drawer shares (call VxDrawer::SetViewRegion).
    virtual void SetViewRegion(VxViewRegion* view) = 0;

    VxViewRegion* GetViewRegion() const { return m_view; }

protected:
    VxViewRegion* m_view = nullptr;
};
