// VxDrawer: the shared bodies of the base.
#include <mesh/VxDrawer.h>

VxDrawer::~VxDrawer() = default;

void VxDrawer::SetViewRegion(VxViewRegion* view) {
    m_view = view;
}
