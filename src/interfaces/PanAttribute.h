// PanAttribute: one landmark of the panoramic film's measure: what kind of landmark it is, its
// number, and where it lies on the film. Plain record; it knows nothing about markers or screens.
#pragma once

#include <interfaces/VxPoint.h>

struct PanAttribute {
    int kind = 0;
    int number = 0;
    // x and y are shares (0 to 1) of the picture's width and height; z is unused and stays 0.
    VxPoint point;

    PanAttribute() = default;
    PanAttribute(int k, int n, const VxPoint& p) : kind(k), number(n), point(p) {}
};
