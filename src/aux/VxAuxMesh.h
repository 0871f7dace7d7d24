// VxAuxMesh: a whole mesh (not owned) drawn lit under a matrix of its own with one of two shared
// materials, grey or, when selected, red. Its buffers live in the shared buffer manager. Never
// hit.
#pragma once

#include <aux/VxAuxObject.h>

class VxMatrix;
class VxMesh;

class VxAuxMesh : public VxAuxObject {
public:
    VxAuxMesh() = default;
    explicit VxAuxMesh(VxMesh* mesh) : m_mesh(mesh) {}
    VxAuxMesh(const VxAuxMesh&) = default;
    VxAuxMesh& operator=(const VxAuxMesh&) = default;
    ~VxAuxMesh() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    void SetMesh(VxMesh* mesh) { m_mesh = mesh; }
    VxMesh* GetMesh() const { return m_mesh; }
    // Forgets the mesh; it is the caller's to free.
    void ClearMesh() { m_mesh = nullptr; }
    // A 4 x 4 placement acting on column vectors.
    void SetMatrix(VxMatrix& matrix);

private:
    VxMesh* m_mesh = nullptr;
    // Column order for glMultMatrixd.
    double m_matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};
