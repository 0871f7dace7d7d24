// VxTolerance: the one zero test that geometry, selection and views share. Model units are
// millimetres; 1e-6 mm is far below anything a scan resolves and far above double round-off
// of the coordinates we handle (|x| < 1e4).
#pragma once

class VxTolerance {
public:
    static constexpr double kZero = 1e-6;
    static bool IsZero(double value) { return value < kZero && value > -kZero; }
    static bool IsZero(double value, double tolerance) {
        return value < tolerance && value > -tolerance;
    }
};
