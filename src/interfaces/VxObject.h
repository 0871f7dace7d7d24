// VxObject: root of model objects, mesh parts and auxiliary drawables. It carries the display
// flags the drawers and the selection read, the exact type tag, and the persistence hooks. It
// does not own anything and knows nothing of GL.
#pragma once

#include <interfaces/VxObjectType.h>

#include <iosfwd>

class VxFStream;

class VxObject {
public:
    VxObject() = default;
    VxObject(const VxObject&) = default;
    VxObject& operator=(const VxObject&) = default;
    virtual ~VxObject();

    // Virtual slots, in this order: destructor, GetObjectType, IsKindOf, Write, Read (and the
    // ray test that VxEntity adds).
    virtual ObjectType_e GetObjectType() const;
    // True for the object's own type and for the types of its bases (every mesh answers true to
    // ObjectType_Mesh, everything to ObjectType_Object).
    virtual bool IsKindOf(ObjectType_e type) const;
    // Text persistence. withTag writes (and Read expects) the object's type number first, so a
    // reader can check what it is reading; version is the format version (kFormatVersion is the
    // only one written; Read refuses versions above it).
    virtual void Write(std::ostream& os, bool withTag, int version) const;
    virtual bool Read(VxFStream& in, bool withTag, int version);

    static constexpr int kFormatVersion = 1;

    // Flags are ints used as bools, as the host's code sets them.
    bool IsVisible() const { return m_visible != 0; }
    void SetVisible(int visible) { m_visible = visible; }
    bool IsSelected() const { return m_selected != 0; }
    void SetSelected(int selected) { m_selected = selected; }
    bool IsHighLight() const { return m_highlight != 0; }
    void SetHighLight(int highlight) { m_highlight = highlight; }
    bool IsDeleted() const { return m_deleted != 0; }
    void SetDeleted(int deleted) { m_deleted = deleted; }
    // Sheltered: not in the jaw show of the view drawn last. Set by the drawers during a frame,
    // read by selection.
    bool IsSheltered() const { return m_sheltered != 0; }
    void SetShelter(int sheltered) { m_sheltered = sheltered; }

protected:
    // Shared by the Read overrides: the tag and version checks of VxObject::Read.
    bool ReadHeader(VxFStream& in, bool withTag, int version) const;

private:
    int m_visible = 1;
    int m_selected = 0;
    int m_highlight = 0;
    int m_deleted = 0;
    int m_sheltered = 0;
};
