// VxJaw: the mesh of one jaw (upper or lower arch) with its frame. The frame is the jaw's own
// coordinate system; a jaw whose frame was never set answers IsValid false on it.
#pragma once

#include <interfaces/VxFrame.h>
#include <interfaces/VxMesh.h>

class VxJaw : public VxMesh {
public:
    VxJaw() = default;
    explicit VxJaw(bool up) : m_up(up) {}
    ~VxJaw() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Write(std::ostream& os, bool withTag, int version) const override;
    bool Read(VxFStream& in, bool withTag, int version) override;
    // The frame moves with the mesh.
    void Transform(const VxMatrix& m) override;

    bool IsUp() const { return m_up; }
    void SetUp(bool up) { m_up = up; }
    const VxFrame& GetFrame() const { return m_frame; }
    void SetFrame(const VxFrame& frame) { m_frame = frame; }

private:
    bool m_up = true;
    VxFrame m_frame;
};
