// VxUtility: small formatting helpers for overlay texts. Formatting only: no units, no
// localisation, no rounding of the values that the overlays compute with.
#pragma once

#include <interfaces/CString.h>

class VxUtility {
public:
    // Text of a collision or gap depth in millimetres: two decimals with a '.' whatever the
    // process locale ("0.25", "1.50", "-0.30"), rounded half away from zero by printf rules.
    // A negative value keeps its sign, except one that rounds to zero, which reads "0.00" rather
    // than "-0.00". A non-finite value gives an empty text: no label is better than "nan".
    static CString FormatCollision(double value);
};
