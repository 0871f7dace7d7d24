// NuViewTransforms: the fixed path's glMultMatrixd / glScaled / glTranslated rebuilt as glm
// matrices, so both paths put a vertex at the same place.
#include <shader/NuViewTransforms.h>

#include <interfaces/VxMatrix.h>

#include <frame/NuCameraSnapshot.h>
#include <interfaces/VxXForm.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

NuViewTransforms::NuViewTransforms() {
    const NuCameraSnapshot* camera = NuCameraSnapshot::GetInstance();
    const float* ecu = camera->GetEyeCenterUp();
    const glm::vec3 eye(ecu[0], ecu[1], ecu[2]);
    const glm::vec3 centre(ecu[3], ecu[4], ecu[5]);
    const glm::vec3 up(ecu[6], ecu[7], ecu[8]);

    model = glm::mat4(1.0f);
    if (const VxXForm* xform = camera->GetViewTransform()) {
        double r16[16];
        xform->GetRotation(r16);
        float f16[16];
        for (int i = 0; i < 16; ++i) {
            f16[i] = static_cast<float>(r16[i]);
        }
        const float s = static_cast<float>(xform->GetScale());
        const VxVector t = xform->GetTranslation();
        model = glm::make_mat4(f16);
        model = glm::scale(model, glm::vec3(s, s, s));
        model = glm::translate(model, glm::vec3(static_cast<float>(t[0]), static_cast<float>(t[1]),
                                                static_cast<float>(t[2])));
    }
    view = glm::lookAt(eye, centre, up);
    projection = glm::make_mat4(camera->GetProjection());
    viewPos = eye;
}

glm::vec3 NuViewTransforms::LightSpan() const {
    const glm::vec4 corner =
        glm::inverse(view) * glm::inverse(projection) * glm::vec4(-1.0f, -1.0f, -1.0f, 1.0f);
    return glm::vec3(corner);
}

glm::mat4 NuViewTransforms::FromMatrix(const VxMatrix& matrix) {
    double a[16];
    matrix.ToArray(a);
    glm::mat4 out(1.0f);
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r) {
            out[c][r] = static_cast<float>(a[c * 4 + r]);
        }
    }
    return out;
}
