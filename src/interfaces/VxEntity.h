// VxEntity: an object of the model that has a place in space: a bounding box, a ray test and a
// rigid transform. The plain entity has no geometry; meshes give these operations substance.
#pragma once

#include <interfaces/VxBBox.h>
#include <interfaces/VxObject.h>

class VxLine;
class VxMatrix;

class VxEntity : public VxObject {
public:
    VxEntity() = default;
    VxEntity(const VxEntity&) = default;
    VxEntity& operator=(const VxEntity&) = default;
    ~VxEntity() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;

    // The ray test selection runs on each placement of an entity. `ray` is in world terms and is
    // taken as a whole line (the cursor ray's point may lie anywhere along the view direction);
    // `placement` is the 4 x 4 matrix that puts the entity into the world. True when the line
    // meets the entity so placed. A singular placement hits nothing.
    virtual bool IsHitByRay(const VxLine& ray, const VxMatrix& placement) const;

    // Box of the entity's own geometry, without any placement; empty for an entity without any.
    virtual VxBBox GetBBox() const;

    // Moves the entity's geometry (and whatever frames go with it) by a 4 x 4 matrix in place.
    // The plain entity has nothing to move.
    virtual void Transform(const VxMatrix& m);
};
