// VxEdge: type tag of a mesh edge.
#include <interfaces/VxEdge.h>

VxEdge::~VxEdge() = default;

ObjectType_e VxEdge::GetObjectType() const {
    return ObjectType_Edge;
}

bool VxEdge::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Edge || VxObject::IsKindOf(type);
}
