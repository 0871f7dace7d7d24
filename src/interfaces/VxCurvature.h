// VxCurvature: discrete mean curvature of a triangle mesh, one value a vertex, from the
// cotangent Laplacian with mixed Voronoi areas (Meyer, Desbrun, Schroeder and Barr). The sign
// follows the vertex normals: convex is positive, so a sphere of radius r with outward-facing
// triangles gives about 1/r, and grooves of a tooth are negative. Border vertices, isolated
// vertices and vertices with no area get 0. The mesh is read once, at the first request.
#pragma once

#include <vector>

class VxMesh;

class VxCurvature {
public:
    explicit VxCurvature(VxMesh* mesh) : m_mesh(mesh) {}

    // One value per vertex, in vertex order; empty for a null mesh.
    const std::vector<double>& GetMeanCurvature();
    // Mixed Voronoi area of each vertex, computed with the curvature.
    const std::vector<double>& GetVertexAreas();

private:
    void Compute();

    VxMesh* m_mesh = nullptr;
    bool m_done = false;
    std::vector<double> m_mean;
    std::vector<double> m_area;
};
