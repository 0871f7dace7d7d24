#include <shader/NuEditorSize.h>

#include <views/VxViewRegion.h>

#include <algorithm>

int NuEditorSize::Base(int regionHeight) {
    if (regionHeight >= 500 || regionHeight == 350) {
        return 4000;
    }
    return regionHeight < 350 ? 1000 : 2000;
}

double NuEditorSize::Scale(double xformScale) {
    return std::min(xformScale, kMaxScale);
}

NuEditorSize::NuEditorSize(const VxViewRegion* region, float sizeX, float sizeY, float factor) {
    if (!region || region->Width() <= 0 || region->Height() <= 0) {
        return;
    }
    const double base = Base(region->Height());
    const double s = Scale(region->GetXForm().GetScale());
    halfY = base / region->Height() * s * sizeY * factor;
    halfX = base / region->Width() * s * sizeX * factor;
}
