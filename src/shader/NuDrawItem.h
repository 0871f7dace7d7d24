// NuDrawItem: one queued lit draw, sent first and drawn later in one batch under one program: the
// entity, its per-step display transform (may be null), its material and matrix, and whether it
// shows translucent.
#pragma once

#include <shader/NuRenderMaterial.h>

#include <glm/glm.hpp>

class VxEntity;
class VxMatrix;

struct NuDrawItem {
    VxEntity* entity = nullptr;
    const VxMatrix* xform = nullptr;
    NuRenderMaterial material;
    glm::mat4 matrix = glm::mat4(1.0f);
    bool limited = false;
};
