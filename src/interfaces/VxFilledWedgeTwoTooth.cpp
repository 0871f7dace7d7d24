// VxFilledWedgeTwoTooth: nothing beyond its type, which the mesh drawer finds by dynamic_cast.
#include <interfaces/VxFilledWedgeTwoTooth.h>

VxFilledWedgeTwoTooth::~VxFilledWedgeTwoTooth() = default;
