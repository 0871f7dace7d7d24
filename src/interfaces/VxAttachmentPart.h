// VxAttachmentPart: one placed part of an attachment. `matrix` puts the standard attachment's
// shape onto the tooth; the part is itself a mesh so that the shader path can queue it as an
// entity (the host usually copies the standard shape into it).
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>

class VxAttachmentPart : public VxMesh {
public:
    // Identity placement.
    VxAttachmentPart();
    explicit VxAttachmentPart(const VxMatrix& placement) : matrix(placement) {}
    ~VxAttachmentPart() override;

    // Placement of the part, 4 x 4, read directly by the drawers.
    VxMatrix matrix;
};
