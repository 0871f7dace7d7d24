// ThreeMovementDiff_s: the clinical limits of one tooth's planned movement, per axis of the
// tooth's own frame: a minimum and a maximum for the move along the axis (millimetres) and for
// the rotation about it (degrees). The movement mark compares the planned totals against these.
// It is a plain record; it does not decide what "within limits" means.
#pragma once

struct ThreeMovementDiff_s {
    // The field order is the record's layout as hosts store it and must stay: x move, x
    // rotation, y move, y rotation, z move, z rotation, each as minimum then maximum.
    double moveXMin = 0.0;
    double moveXMax = 0.0;
    double rotateXMin = 0.0;
    double rotateXMax = 0.0;
    double moveYMin = 0.0;
    double moveYMax = 0.0;
    double rotateYMin = 0.0;
    double rotateYMax = 0.0;
    double moveZMin = 0.0;
    double moveZMax = 0.0;
    double rotateZMin = 0.0;
    double rotateZMax = 0.0;

    // The six limits in comparison order (0: x move, 1: x rotation, 2: y move, 3: y rotation,
    // 4: z move, 5: z rotation). An index outside 0..5 gives 0.
    double Min(int k) const {
        switch (k) {
        case 0:
            return moveXMin;
        case 1:
            return rotateXMin;
        case 2:
            return moveYMin;
        case 3:
            return rotateYMin;
        case 4:
            return moveZMin;
        case 5:
            return rotateZMin;
        default:
            return 0.0;
        }
    }
    double Max(int k) const {
        switch (k) {
        case 0:
            return moveXMax;
        case 1:
            return rotateXMax;
        case 2:
            return moveYMax;
        case 3:
            return rotateYMax;
        case 4:
            return moveZMax;
        case 5:
            return rotateZMax;
        default:
            return 0.0;
        }
    }
};
