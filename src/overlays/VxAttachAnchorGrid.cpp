// VxAttachAnchorGrid: out-of-line destructor so the class has one home for its vtable.
#include <overlays/VxAttachAnchorGrid.h>

VxAttachAnchorGrid::~VxAttachAnchorGrid() = default;
