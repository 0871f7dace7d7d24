// VxMeshFile: triangle meshes of case files. Reads STL (ASCII or binary) through assimp, and PLY
// (ASCII or binary) and OBJ through small readers of its own, into a finished VxMesh; writes
// binary little-endian PLY with float coordinates. (assimp 5.2's PLY importer hangs or corrupts
// its heap on some damaged files, and its OBJ importer cannot keep the numbering below.)
//
// Vertex numbering is what vertex ids in a case manifest refer to, so it must not depend on the
// importer's whims:
// - PLY: the file's vertex order, unused vertices included; faces in file order, polygons
//   fanned from their first corner.
// - OBJ: the order of the file's "v" lines, unused vertices included; faces in file order,
//   polygons fanned from their first corner. (assimp's OBJ importer makes every face corner a
//   vertex of its own and regroups faces by material, so it cannot give this numbering.)
// - STL: no shared vertices in the format; identical positions are joined in order of first
//   appearance, and triangles that collapse to a repeated vertex are dropped.
// It deliberately keeps no normals, colours, texture coordinates or materials, and gives no
// face styles (those live in the manifest).
#pragma once

#include <cstddef>
#include <string>

class VxMesh;

enum class VxMeshFormat { Unknown, Stl, Ply, Obj };

class VxMeshFile {
public:
    // By the extension, case-insensitive: ".stl", ".ply", ".obj"; Unknown for anything else.
    static VxMeshFormat FormatFromPath(const std::string& path);

    // Replaces `out` with the file's mesh and finishes it. On failure `out` is untouched and
    // `error` says what is wrong, as "<where>: <what>" (for example "vertex 12: coordinate is not
    // finite"); the caller adds the file name.
    static bool Load(const std::string& path, VxMesh& out, std::string& error);
    // The same from bytes in memory; `format` must not be Unknown.
    static bool LoadFromMemory(const void* data, std::size_t size, VxMeshFormat format, VxMesh& out,
                               std::string& error);

    // Binary PLY: float x, y, z per vertex, one "uchar int" index list per face. Coordinates are
    // rounded to float; a non-finite coordinate is refused.
    static bool WritePly(const VxMesh& mesh, const std::string& path, std::string& error);

    // Files larger than this are refused before they are read.
    static constexpr std::size_t kMaxFileBytes = std::size_t(1) << 30;
};
