// NuMeshBuffer: one cached vertex buffer of the shader path: the GL buffer, the entity it was
// built from and that entity's face count when it was built.
#pragma once

class VxEntity;

struct NuMeshBuffer {
    unsigned int buffer = 0;
    VxEntity* entity = nullptr;
    int faceCount = 0;
};
