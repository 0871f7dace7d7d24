// Fuzz target: the mesh importer. The first byte picks the format (STL, PLY, OBJ), the rest is
// the file. A load either fails with a message and leaves the target alone, or gives a mesh
// whose faces all point at existing vertices and whose coordinates are finite.
#include <VxMeshFile.h>

#include <interfaces/VxMesh.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) {
        return 0;
    }
    static const VxMeshFormat formats[3] = {VxMeshFormat::Stl, VxMeshFormat::Ply,
                                            VxMeshFormat::Obj};
    const VxMeshFormat format = formats[data[0] % 3];
    VxMesh mesh;
    mesh.AddVertex(VxPoint(1, 2, 3));
    std::string error;
    if (!VxMeshFile::LoadFromMemory(data + 1, size - 1, format, mesh, error)) {
        if (error.empty() || mesh.GetVertexCount() != 1) {
            __builtin_trap();
        }
        return 0;
    }
    for (const VxFace& f : mesh.GetFaces()) {
        for (int k = 0; k < 3; ++k) {
            if (f.GetVtxId(k) < 0 || f.GetVtxId(k) >= mesh.GetVertexCount()) {
                __builtin_trap();
            }
        }
    }
    for (const VxVertex& v : mesh.GetVertices()) {
        if (!std::isfinite(v.GetPos()[0] + v.GetPos()[1] + v.GetPos()[2])) {
            __builtin_trap();
        }
    }
    return 0;
}
