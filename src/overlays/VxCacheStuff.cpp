// VxCacheStuff: the singleton and its (so far empty) per-tooth hook.
#include <overlays/VxCacheStuff.h>

VxCacheStuff* VxCacheStuff::GetInstance() {
    static VxCacheStuff instance;
    return &instance;
}

VxCacheStuff::~VxCacheStuff() = default;

void VxCacheStuff::GetDisplayStuffByTooth(VxTooth* /*tooth*/,
                                          std::vector<VxAuxObject*>& /*stuff*/) const {}
