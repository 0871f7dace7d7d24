// VxCacheStuff: the process-wide holder of the clinical overlays built from the model.
// PLACEHOLDER: only the hook the tooth drawers call exists yet; building, holding and removing
// the overlays (labels, movement marks, curves, planes, IPR, collisions, images) is later work,
// and until it lands every tooth carries nothing with it.
#pragma once

#include <vector>

class VxAuxObject;
class VxTooth;

class VxCacheStuff {
public:
    static VxCacheStuff* GetInstance();
    virtual ~VxCacheStuff();

    // Appends the objects that travel with the tooth (label, Facc curve, movement mark), each
    // only if present; the vector keeps what it held. Nothing is present yet.
    void GetDisplayStuffByTooth(VxTooth* tooth, std::vector<VxAuxObject*>& stuff) const;

private:
    VxCacheStuff() = default;
    VxCacheStuff(const VxCacheStuff&) = delete;
    VxCacheStuff& operator=(const VxCacheStuff&) = delete;
};
