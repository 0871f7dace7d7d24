// VxStdAttach: a catalogue attachment shape; to the drawers a plain mesh.
#include <interfaces/VxStdAttach.h>

VxStdAttach::~VxStdAttach() = default;

ObjectType_e VxStdAttach::GetObjectType() const {
    return ObjectType_Mesh;
}

bool VxStdAttach::IsKindOf(ObjectType_e type) const {
    return VxMesh::IsKindOf(type);
}
