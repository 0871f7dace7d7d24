// NuLightRig: the two rigs' values.
#include <shader/NuLightRig.h>

NuLightRig::Lights NuLightRig::Light(const glm::vec3& span) {
    // The side lights are halved so they shape the tooth without washing out the key light.
    const float a = 0.5f;
    const glm::vec3 none(0.0f);
    Lights l;
    l[0] = {glm::vec3(0, 0, 1) * span, glm::vec3(1.0f), glm::vec3(1.0f), glm::vec3(1.0f)};
    l[1] = {glm::vec3(-1, 0, 1) * span, none, glm::vec3(a * 0.2f), glm::vec3(a * 0.1f)};
    l[2] = {glm::vec3(1, 0, 1) * span, none, glm::vec3(a * 0.2f), glm::vec3(a * 0.1f)};
    l[3] = {glm::vec3(0, -1, 0) * span, none, glm::vec3(a * 0.1f), glm::vec3(a * 0.05f)};
    l[4] = {glm::vec3(0, 1, 0) * span, none, glm::vec3(a * 0.1f), glm::vec3(a * 0.05f)};
    return l;
}

NuLightRig::Lights NuLightRig::LightGum(const glm::vec3& span) {
    const glm::vec3 none(0.0f);
    const glm::vec3 half(0.5f);
    Lights l;
    l[0] = {glm::vec3(0, 0, 1) * span, glm::vec3(1.0f), none, none};
    l[1] = {glm::vec3(-1, 1, 1) * span, none, half, half};
    l[2] = {glm::vec3(-1, -1, 1) * span, none, half, half};
    l[3] = {glm::vec3(1, -1, 1) * span, none, half, half};
    l[4] = {glm::vec3(1, 1, 1) * span, none, half, half};
    return l;
}
