// NuViewTransforms: the matrices of one lit draw, built from the camera of the frame being drawn
// (NuCameraSnapshot): the view region's transform as `model` (rotation, then uniform scale, then
// translation, the order the fixed path multiplies them in), `view` from eye, centre and up, the
// stored projection as it is, and the eye as `viewPos`. Built anew for every draw; nothing here
// is cached, since the camera may change between any two draws.
#pragma once

#include <glm/glm.hpp>

class VxMatrix;

class NuViewTransforms {
public:
    // From NuCameraSnapshot::GetInstance(). Without a view transform, `model` is the identity.
    NuViewTransforms();

    // The near, lower, left corner of the view volume in scene coordinates (no division by w).
    // Light positions are base vectors scaled by it component-wise, so the rigs turn with the
    // camera.
    glm::vec3 LightSpan() const;

    // A 4 x 4 placement as the float matrix the programs take (both column-major).
    static glm::mat4 FromMatrix(const VxMatrix& matrix);

    glm::vec3 viewPos;
    glm::mat4 model;
    glm::mat4 view;
    glm::mat4 projection;
};
