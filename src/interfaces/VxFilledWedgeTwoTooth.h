// VxFilledWedgeTwoTooth: a wedge filling the space between two neighbouring teeth.
#pragma once

#include <interfaces/VxFilledWedge.h>

class VxFilledWedgeTwoTooth : public VxFilledWedge {
public:
    VxFilledWedgeTwoTooth() = default;
    VxFilledWedgeTwoTooth(VxTooth* left, VxTooth* right) : VxFilledWedge(left, right) {}
    ~VxFilledWedgeTwoTooth() override;
};
