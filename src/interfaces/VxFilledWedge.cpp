// VxFilledWedge: a wedge is a plain mesh to everything but the mesh drawer.
#include <interfaces/VxFilledWedge.h>

VxFilledWedge::~VxFilledWedge() = default;
