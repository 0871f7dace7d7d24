// VxUtility: the C locale is imbued explicitly because a host that calls setlocale (a German
// desktop, say) would otherwise turn "0.25" into "0,25" on the collision labels.
#include <interfaces/VxUtility.h>

#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

CString VxUtility::FormatCollision(double value) {
    if (!std::isfinite(value)) {
        return CString();
    }
    if (std::fabs(value) < 0.005) {
        value = 0.0; // also drops the sign of -0.0 and of values that round to zero
    }
    std::wostringstream out;
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(2) << value;
    return CString(out.str());
}
