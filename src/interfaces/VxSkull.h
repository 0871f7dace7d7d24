// VxSkull: the skull (or face scan) mesh shown behind the dentition. It is a plain mesh with its
// own type tag, so it gets its own drawer and is no pick candidate of plain-mesh feedback.
#pragma once

#include <interfaces/VxMesh.h>

class VxSkull : public VxMesh {
public:
    VxSkull() = default;
    ~VxSkull() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
};
