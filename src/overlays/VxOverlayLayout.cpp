// VxOverlayLayout: label texts, leader ends, depth colours and grid cells.
#include <overlays/VxOverlayLayout.h>

#include <interfaces/VxTolerance.h>

#include <cmath>

namespace {

// The unit direction of v, or the zero vector for one without a direction.
VxVector Direction(const VxVector& v) {
    VxVector d(v);
    if (!d.Normalize()) {
        return VxVector(0.0, 0.0, 0.0);
    }
    return d;
}

int Channel(double unit) {
    return static_cast<int>(unit * 255.0);
}

} // namespace

CString VxOverlayLayout::IprText(int number, double value) {
    CString text;
    text.Format(L" %d(%.1f)", number, value);
    return text;
}

CString VxOverlayLayout::IprShortText(double value) {
    CString text;
    text.Format(L"%.1f", value);
    const int dot = text.Find(L'.');
    if (dot >= 0 && text.Left(dot) == CString(L"0")) {
        text = text.Mid(dot);
    }
    return text;
}

VxPoint VxOverlayLayout::IprLabelFlat(const VxPoint& gap, const VxPoint& ref, bool refLeftOfGap) {
    const VxVector v = Direction(gap - ref);
    return gap + v * (refLeftOfGap ? 9.0 : 14.0);
}

VxPoint VxOverlayLayout::IprLabelTilted(const VxPoint& gap, const VxPoint& ref,
                                        const VxVector& firstZ, const VxVector& secondZ) {
    const VxVector out = Direction(gap - ref);
    const VxVector mean = Direction(firstZ + secondZ);
    const VxVector v = Direction(out + mean * 0.75) * 1.5;
    return gap + v * 11.0;
}

VxColor VxOverlayLayout::CollisionDepthColor(double d) {
    double r = 1.0;
    double g = 0.0;
    double b = 0.0;
    if (std::isnan(d) || VxTolerance::IsZero(d)) {
        // No depth measured reads as touching, not as deep.
        r = 0.0;
        b = 1.0;
    } else if (d <= 0.5) {
        // A negative depth lands here too; the colour's clamp keeps it blue.
        r = 0.0;
        g = 2.0 * d;
        b = 1.0 - 2.0 * d;
    } else if (d < 1.0) {
        r = 2.0 * d - 1.0;
        g = 2.0 - 2.0 * d;
        b = 0.0;
    }
    return VxColor(Channel(r), Channel(g), Channel(b), 100);
}

VxColor VxOverlayLayout::CollisionTextColor(bool isGap, bool acrossJaws) {
    if (isGap) {
        return VxColor(64, 64, 255, 100);
    }
    return acrossJaws ? VxColor(255, 64, 64, 100) : VxColor(64, 255, 64, 100);
}

CString VxOverlayLayout::AttachText(int startStep, int endStep) {
    CString text;
    text.Format(L" %d(%d)", startStep, endStep);
    return text;
}

bool VxOverlayLayout::IsFixedDistanceAttach(const CString& identifier) {
    static const wchar_t* const kFamilies[] = {L"NH", L"CA", L"PA", L"MA", L"IT",
                                               L"RM", L"RS", L"LO", L"FS", L"AT"};
    for (const wchar_t* family : kFamilies) {
        if (identifier.Find(family) >= 0) {
            return true;
        }
    }
    return false;
}

double VxOverlayLayout::AttachLabelDistance(const CString& identifier, int fdi, double side) {
    if (IsFixedDistanceAttach(identifier)) {
        return 10.0;
    }
    const bool outward = side > 0.0;
    const bool rightUpperOrLeftLower = (fdi >= 11 && fdi <= 18) || (fdi >= 31 && fdi <= 38);
    if (rightUpperOrLeftLower) {
        return outward ? 10.0 : 5.0;
    }
    return outward ? 5.0 : 10.0;
}

VxPoint VxOverlayLayout::AttachLabelPos(const VxPoint& attach, const VxPoint& centre,
                                        double distance, bool centreLeftOfAttach) {
    const VxVector v = Direction(attach - centre);
    if (centreLeftOfAttach) {
        return attach + v * distance;
    }
    return attach + (v * distance) * 2.0;
}

int VxOverlayLayout::GridStep(double pixelsPerMm, CString* caption) {
    if (caption != nullptr) {
        *caption = CString(L"1mm");
    }
    // Past this a cell would be wider than any screen; lround would also overflow.
    if (!(pixelsPerMm > 0.0) || !(pixelsPerMm < 1e6)) {
        return 0;
    }
    long step = std::lround(pixelsPerMm);
    if (step < 10) {
        step = std::lround(10.0 * pixelsPerMm);
        if (caption != nullptr) {
            *caption = CString(L"10mm");
        }
    }
    return static_cast<int>(step);
}
