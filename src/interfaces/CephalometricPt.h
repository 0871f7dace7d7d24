// CephalometricPt: one landmark of the cephalometric analysis, its id and where it lies in model
// space (the X-ray has been registered to the model by the host). Plain record; it does not
// locate landmarks.
#pragma once

#include <interfaces/VxModelEnums.h>
#include <interfaces/VxPoint.h>

struct CephalometricPt {
    MEASURE_POINT id = MEASURE_POINT_Sella;
    VxPoint pos; // model space, millimetres

    CephalometricPt() = default;
    CephalometricPt(MEASURE_POINT i, const VxPoint& p) : id(i), pos(p) {}
};
