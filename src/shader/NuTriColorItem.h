// NuTriColorItem: one queued block of coloured triangles: the caller's data (18 floats a
// triangle, not owned), the triangle count and the matrix.
#pragma once

#include <glm/glm.hpp>

struct NuTriColorItem {
    float* data = nullptr;
    int triangles = 0;
    glm::mat4 matrix = glm::mat4(1.0f);
};
