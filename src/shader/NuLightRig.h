// NuLightRig: the two sets of five directional lights of the shader path. `light` lights teeth,
// meshes and attachments: a white key light along the view with all the ambient, and four weak
// side lights. `lightgum` lights the textured gum: ambient from light 0 alone, diffuse and
// specular from four corner lights. Positions are base vectors scaled component-wise by the
// camera's light span (NuViewTransforms::LightSpan), so only their direction counts and the rig
// follows the camera.
#pragma once

#include <glm/glm.hpp>

#include <array>

struct NuLight {
    glm::vec3 position;
    glm::vec3 ambient;
    glm::vec3 diffuse;
    glm::vec3 specular;
};

class NuLightRig {
public:
    static constexpr int kLightsCount = 5;
    using Lights = std::array<NuLight, kLightsCount>;

    static Lights Light(const glm::vec3& span);
    static Lights LightGum(const glm::vec3& span);
};
