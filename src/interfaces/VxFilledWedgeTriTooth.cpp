// VxFilledWedgeTriTooth: nothing beyond its type and middle tooth.
#include <interfaces/VxFilledWedgeTriTooth.h>

VxFilledWedgeTriTooth::~VxFilledWedgeTriTooth() = default;
