// VxSkull: type tag of the skull mesh.
#include <interfaces/VxSkull.h>

VxSkull::~VxSkull() = default;

ObjectType_e VxSkull::GetObjectType() const {
    return ObjectType_Skull;
}

bool VxSkull::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Skull || VxMesh::IsKindOf(type);
}
