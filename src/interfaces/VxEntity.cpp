// VxEntity: the neutral answers of an entity without geometry.
#include <interfaces/VxEntity.h>

#include <interfaces/VxLine.h>
#include <interfaces/VxMatrix.h>

VxEntity::~VxEntity() = default;

ObjectType_e VxEntity::GetObjectType() const {
    return ObjectType_Entity;
}

bool VxEntity::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Entity || VxObject::IsKindOf(type);
}

bool VxEntity::IsHitByRay(const VxLine& /*ray*/, const VxMatrix& /*placement*/) const {
    return false;
}

VxBBox VxEntity::GetBBox() const {
    return VxBBox();
}

void VxEntity::Transform(const VxMatrix& /*m*/) {}
