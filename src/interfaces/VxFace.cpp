// VxFace: type tag of a mesh face.
#include <interfaces/VxFace.h>

VxFace::~VxFace() = default;

ObjectType_e VxFace::GetObjectType() const {
    return ObjectType_Face;
}

bool VxFace::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Face || VxObject::IsKindOf(type);
}
