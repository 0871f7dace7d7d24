// VxTooth: the mesh of one tooth, its FDI number, frame, kind and display state, and the
// pointers the host gives it (its jaw, an optional backup root). Upper or lower follows from the
// FDI quadrant. The tooth owns none of the pointed-to objects.
#pragma once

#include <interfaces/VxFDI.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModelEnums.h>

class VxJaw;

class VxTooth : public VxMesh {
public:
    VxTooth() = default;
    explicit VxTooth(int fdi, VxJaw* parent = nullptr) : m_fdi(fdi), m_parent(parent) {}
    ~VxTooth() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    // Adds FDI number, kind, lock flag and frame to the mesh data; the pointers are not written.
    void Write(std::ostream& os, bool withTag, int version) const override;
    bool Read(VxFStream& in, bool withTag, int version) override;
    // The frame moves with the mesh.
    void Transform(const VxMatrix& m) override;

    // Quadrants 1, 2 (and deciduous 5, 6) are upper; 3, 4 (7, 8) lower. An invalid number counts
    // as lower.
    bool IsUp() const { return VxFDI(m_fdi).IsUpper(); }
    int GetFDI() const { return m_fdi; }
    VxFDI GetFDIEx() const { return VxFDI(m_fdi); }
    void SetFDI(int fdi) { m_fdi = fdi; }
    const VxFrame& GetFrame() const { return m_frame; }
    void SetFrame(const VxFrame& frame) { m_frame = frame; }
    VxJaw* GetParent() const { return m_parent; }
    void SetParent(VxJaw* jaw) { m_parent = jaw; }
    ToothKind_e GetToothKind() const { return m_kind; }
    void SetToothKind(ToothKind_e kind) { m_kind = kind; }
    // Locked teeth are drawn in the locked colour while this is set.
    bool IsLockShown() const { return m_lockShown; }
    void SetLockShown(bool shown) { m_lockShown = shown; }
    // The backup root mesh shown in place of the faces of style FaceStyle_BasicRoot; null when the
    // tooth has none. Not owned.
    VxMesh* GetBackupRoot() const { return m_backupRoot; }
    void SetBackupRoot(VxMesh* root) { m_backupRoot = root; }

private:
    int m_fdi = 0;
    VxJaw* m_parent = nullptr;
    VxFrame m_frame;
    ToothKind_e m_kind = ToothKind_Normal;
    bool m_lockShown = false;
    VxMesh* m_backupRoot = nullptr;
};
