// NuVertexDataBuilder: the per-vertex extras of the shader path's vertex buffers, made once for
// each buffer that is built. For a tooth, the grade of every vertex (`aOrder`: 0 at the crown's
// 60 % height mark, 1 at the root tip and again at the incisal edge, deep grooves by curvature)
// that tints the cervical band; for a gum, the texture coordinates of every face of its strip
// bands. Works on copies: the mesh is only read.
#pragma once

#include <glm/glm.hpp>

#include <map>
#include <set>
#include <vector>

class VxGum;
class VxMesh;
class VxTooth;

class NuVertexDataBuilder {
public:
    // Face id -> (vertex id -> (u, v)).
    using FaceTexCoords = std::map<int, std::map<int, glm::vec2>>;

    // One grade per vertex of the tooth, in vertex order. A tooth without basic-root faces gets
    // 1.0 everywhere: it has no crown to grade. Heights are taken in the tooth's own frame (z of
    // the frame the tooth's is carried onto), from a copy of the positions, so the shared mesh
    // never moves and rebuilding gives the same grades every time.
    std::vector<float> VxToothOrderMap(const VxTooth* tooth);

    // Texture coordinates of the faces of the gum's bands. Faces outside any band have no entry
    // (drawn untextured at (0, 0)); every vertex of a band face starts at (2.5, 2.5), which the gum
    // program reads as "outside the image", and the cells of full rows then get their grid
    // coordinates. Band ranges past the face list are clipped.
    FaceTexCoords VxGumTexCoordBuilder(const VxGum* gum);

    // The plain layout, 7 floats a vertex, three vertices a face in face order: position, vertex
    // normal, grade. `order` holds one grade per vertex (a tooth's); without it a face's grade is
    // 1 - faceIndex / faceCount, which only the tooth program would show.
    static std::vector<float> PlainVertexData(const VxMesh* mesh, const std::vector<float>* order);
    // The gum layout, 17 floats a vertex: position, normal, 1.0, colour (u, v), bump (u, v * v),
    // tangent, bitangent, the last two per face. A face without coordinates gets (0, 0) and zero
    // tangents; a face whose coordinates lack one of its vertices gets (1, 1) there and zero
    // tangents, and the answer is false: the mesh cannot be textured. A face whose coordinates do
    // not span an area gets zero tangents rather than NaN.
    static bool GumVertexData(const VxMesh* mesh, const FaceTexCoords& coords,
                              std::vector<float>& out);

    int axis = 2;       // the height axis of the tooth frame: z
    int ringWidth = 38; // faces in one row of a gum band
    std::set<int> vertexIds;
    // Row counts of the first family's bands: lower half, upper half, and their sum.
    std::vector<int> firstHalfRows;
    std::vector<int> secondHalfRows;
    std::vector<int> totalRows;

private:
    // One band of faces [start, end): rows of ringWidth faces, u along the rows (mirrored when
    // asked), v = sqrt of the column share.
    void MapBand(const VxGum* gum, int start, int end, bool mirrorU, FaceTexCoords& out);
};
