// VxVertex: type tag of a mesh vertex.
#include <interfaces/VxVertex.h>

VxVertex::~VxVertex() = default;

ObjectType_e VxVertex::GetObjectType() const {
    return ObjectType_Vertex;
}

bool VxVertex::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Vertex || VxObject::IsKindOf(type);
}
