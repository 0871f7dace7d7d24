// VxCacheStuff: the collision faces and their labels.
#include <overlays/VxCacheStuff.h>

#include <interfaces/VxGapInfo.h>

void VxCacheStuff::ShowCollisionInfo(const std::vector<VxGapInfo*>& /*gaps*/) {}

void VxCacheStuff::ShowCollisionInfoInWorkDesignWedge(const std::vector<VxGapInfo*>& /*gaps*/,
                                                      double /*threshold*/) {}

void VxCacheStuff::RemoveCollisionStuff() {}

void VxCacheStuff::ShowCollisionFaces(VxGapInfo* /*gap*/, int /*i*/) {}

void VxCacheStuff::ShowCollisionText(VxGapInfo* /*gap*/) {}

void VxCacheStuff::ShowCollisionTextInWorkDesignWedge(VxGapInfo* /*gap*/) {}
