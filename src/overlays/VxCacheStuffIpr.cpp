// VxCacheStuff: the interproximal reduction labels.
#include <overlays/VxCacheStuff.h>

#include <interfaces/VxIPR.h>
#include <interfaces/VxTooth.h>

void VxCacheStuff::ShowRemoveGlaze(VxIPR /*ipr*/, VxPoint /*ref*/) {}

void VxCacheStuff::ShowRemoveGlazeWithStartPoint(VxPoint /*start*/, VxIPR /*ipr*/,
                                                 VxPoint /*ref*/) {}

void VxCacheStuff::ShowRemoveGlazeWithStartPoint(VxTooth /*first*/, VxTooth /*second*/,
                                                 int /*number*/, double /*value*/,
                                                 VxPoint /*start*/, VxIPR /*ipr*/,
                                                 VxPoint /*ref*/) {}

void VxCacheStuff::ShowRemoveGlazeWithStartPointwithMark(int /*mark*/, VxPoint /*start*/,
                                                         VxIPR /*ipr*/, VxPoint /*ref*/) {}

void VxCacheStuff::ShowRemoveGlazeWithStartPointwithMark(VxTooth /*first*/, VxTooth /*second*/,
                                                         int /*number*/, double /*value*/,
                                                         int /*mark*/, VxPoint /*start*/,
                                                         VxIPR /*ipr*/, VxPoint /*ref*/) {}

void VxCacheStuff::NuRenderShowRemoveGlazeWithStartPoint(const VxTooth& /*first*/,
                                                         const VxTooth& /*second*/, int /*number*/,
                                                         double /*value*/, VxPoint /*start*/,
                                                         const VxIPR& /*ipr*/, VxPoint /*ref*/) {}

void VxCacheStuff::NuRenderShowRemoveGlazeWithStartPointwithMark(
    const VxTooth& /*first*/, const VxTooth& /*second*/, int /*number*/, double /*value*/,
    int /*mark*/, VxPoint /*start*/, const VxIPR& /*ipr*/, VxPoint /*ref*/) {}

void VxCacheStuff::UpdateRemoveGlazeInfo(bool /*isUp*/, int /*show*/) {}

void VxCacheStuff::HideRemoveGlazeInfo() {}

void VxCacheStuff::ClearRemoveGlazeInfo() {}

void VxCacheStuff::NuRenderUpdateRemoveGlazeInfo(bool /*isUp*/, int /*show*/) {}

void VxCacheStuff::NuRenderHideRemoveGlazeInfo() {}

void VxCacheStuff::NuRenderClearRemoveGlazeInfo() {}
