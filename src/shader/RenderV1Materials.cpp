// RenderV1: materials, transforms and lights into a program. Every uniform is set by name at
// every draw: the programs are shared between objects of different materials, so nothing set
// for one object may be trusted for the next.
#include <shader/RenderV1.h>

#include <shader/NuLightRig.h>
#include <shader/NuViewTransforms.h>
#include <shader/Shader.h>

#include <memory>
#include <string>

namespace {

void SetRig(Shader* shader, const char* name, const NuLightRig::Lights& lights) {
    for (int i = 0; i < NuLightRig::kLightsCount; ++i) {
        const std::string base = std::string(name) + "[" + std::to_string(i) + "].";
        shader->setVec3(base + "position", lights[i].position);
        shader->setVec3(base + "ambient", lights[i].ambient);
        shader->setVec3(base + "diffuse", lights[i].diffuse);
        shader->setVec3(base + "specular", lights[i].specular);
    }
}

void SetTransforms(Shader* shader, const NuViewTransforms& t, const glm::mat4& matrix) {
    shader->setVec3("viewPos", t.viewPos);
    shader->setMat4("projection", t.projection);
    shader->setMat4("model", t.model * matrix);
    shader->setMat4("view", t.view);
}

void SetMaterial(Shader* shader, const NuRenderMaterial& m) {
    shader->setVec3("material.ambient", m.ambient[0], m.ambient[1], m.ambient[2]);
    shader->setVec3("material.diffuse", m.diffuse[0], m.diffuse[1], m.diffuse[2]);
    shader->setVec3("material.specular", m.specular[0], m.specular[1], m.specular[2]);
    shader->setFloat("material.shininess", m.shininess);
    shader->setFloat("alphaforblimited", m.ambient[3]);
}

} // namespace

void RenderV1::PreparingDataForShader(Shader* shader, NuRenderMaterial material, glm::mat4 matrix) {
    if (!shader) {
        return;
    }
    const auto transforms = std::make_unique<NuViewTransforms>();
    SetTransforms(shader, *transforms, matrix);
    const glm::vec3 span = transforms->LightSpan();
    SetRig(shader, "light", NuLightRig::Light(span));
    SetRig(shader, "lightgum", NuLightRig::LightGum(span));
    SetMaterial(shader, material);
}

void RenderV1::PreparingDataForShader(NuRenderMaterial material, glm::mat4 matrix) {
    BindTransformAndLightUniformToShader(matrix);
    BindMaterialUniformToShader(material);
}

void RenderV1::BindTransformAndLightUniformToShader(glm::mat4 matrix) {
    if (!currentMeshShader) {
        return;
    }
    const auto transforms = std::make_unique<NuViewTransforms>();
    SetTransforms(currentMeshShader, *transforms, matrix);
    SetRig(currentMeshShader, "light", NuLightRig::Light(transforms->LightSpan()));
}

void RenderV1::BindMaterialUniformToShader(NuRenderMaterial material) {
    if (currentMeshShader) {
        SetMaterial(currentMeshShader, material);
    }
}
