// VxStdAttach: a standard attachment shape from the catalogue: its identifier, its colour and its
// mesh (the mesh of this object). One standard attachment is shared by every attachment of its
// type, so its GPU buffers are built once.
#pragma once

#include <interfaces/CString.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxMesh.h>

class VxStdAttach : public VxMesh {
public:
    VxStdAttach() = default;
    VxStdAttach(const CString& identifier, const VxColor& color)
        : m_identifier(identifier), m_color(color) {}
    ~VxStdAttach() override;

    // A catalogue shape is a plain mesh to the drawers.
    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;

    // Catalogue identifier; some families are recognised by sub-strings such as "SK" or "NQ".
    const CString& GetAttachIdentifier() const { return m_identifier; }
    void SetAttachIdentifier(const CString& identifier) { m_identifier = identifier; }
    const VxColor& GetColor() const { return m_color; }
    void SetColor(const VxColor& color) { m_color = color; }
    // The shape's mesh is this object.
    VxMesh* GetMesh() { return this; }
    const VxMesh* GetMesh() const { return this; }

private:
    CString m_identifier;
    VxColor m_color;
};
