// VxFDI: conversions between FDI numbers, position indices and the three notations.
#include <interfaces/VxFDI.h>

#include <string>

namespace {
// Quadrant of the permanent tooth at the same place (5 -> 1, ..., 8 -> 4).
int PlaceQuadrant(int q) {
    return q > 4 ? q - 4 : q;
}
} // namespace

bool VxFDI::IsValid() const {
    const int q = m_fdi / 10;
    const int p = m_fdi % 10;
    if (m_fdi < 11 || m_fdi > 88) {
        return false;
    }
    if (q >= 1 && q <= 4) {
        return p >= 1 && p <= 8;
    }
    return q >= 5 && q <= 8 && p >= 1 && p <= 5;
}

bool VxFDI::IsDeciduous() const {
    return IsValid() && m_fdi / 10 >= 5;
}

bool VxFDI::IsUpper() const {
    if (!IsValid()) {
        return false;
    }
    const int q = PlaceQuadrant(m_fdi / 10);
    return q == 1 || q == 2;
}

int VxFDI::GetID() const {
    if (!IsValid()) {
        return -1;
    }
    return (PlaceQuadrant(m_fdi / 10) - 1) * 8 + (m_fdi % 10) - 1;
}

int VxFDI::GetCmpIndex() const {
    if (!IsValid()) {
        return -1;
    }
    const int p = m_fdi % 10;
    switch (PlaceQuadrant(m_fdi / 10)) {
    case 1:
        return 8 - p; // 18 -> 0 ... 11 -> 7
    case 2:
        return 7 + p; // 21 -> 8 ... 28 -> 15
    case 3:
        return 24 - p; // 38 -> 16 ... 31 -> 23
    default:
        return 23 + p; // 41 -> 24 ... 48 -> 31
    }
}

VxFDI VxFDI::FromID(int id) {
    if (id < 0 || id > 31) {
        return VxFDI();
    }
    return VxFDI((id / 8 + 1) * 10 + id % 8 + 1);
}

CString VxFDI::toString(FDIShowType_e type) const {
    if (!IsValid()) {
        return CString();
    }
    const int q = m_fdi / 10;
    const int p = m_fdi % 10;
    switch (type) {
    case FDIShowType_FDI:
        return CString(std::to_wstring(m_fdi));
    case FDIShowType_Universal: {
        if (!IsDeciduous()) {
            return CString(std::to_wstring(GetCmpIndex() + 1));
        }
        // Deciduous letters run A (upper right second molar) to T (lower right second molar).
        wchar_t letter = L'?';
        switch (q) {
        case 5:
            letter = static_cast<wchar_t>(L'A' + (5 - p));
            break;
        case 6:
            letter = static_cast<wchar_t>(L'E' + p);
            break;
        case 7:
            letter = static_cast<wchar_t>(L'J' + (6 - p));
            break;
        default:
            letter = static_cast<wchar_t>(L'O' + p);
            break;
        }
        return CString(std::wstring(1, letter));
    }
    case FDIShowType_Palmer: {
        static const wchar_t* const kQuadrant[4] = {L"UR", L"UL", L"LL", L"LR"};
        std::wstring s = kQuadrant[PlaceQuadrant(q) - 1];
        if (IsDeciduous()) {
            s += static_cast<wchar_t>(L'A' + p - 1);
        } else {
            s += std::to_wstring(p);
        }
        return CString(s);
    }
    }
    return CString();
}
