// VxJaw: type tag, persistence and transform of a jaw mesh with its frame.
#include <interfaces/VxJaw.h>

#include <interfaces/VxFStream.h>

#include <ostream>

VxJaw::~VxJaw() = default;

ObjectType_e VxJaw::GetObjectType() const {
    return ObjectType_Jaw;
}

bool VxJaw::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Jaw || VxMesh::IsKindOf(type);
}

void VxJaw::Write(std::ostream& os, bool withTag, int version) const {
    VxMesh::Write(os, withTag, version);
    os << (m_up ? 1 : 0) << '\n';
    WriteFrame(os, m_frame);
}

bool VxJaw::Read(VxFStream& in, bool withTag, int version) {
    int up = 0;
    VxFrame frame;
    if (!VxMesh::Read(in, withTag, version) || !in.Get(up) || !ReadFrame(in, frame)) {
        return false;
    }
    m_up = up != 0;
    m_frame = frame;
    return true;
}

void VxJaw::Transform(const VxMatrix& m) {
    VxMesh::Transform(m);
    if (m_frame.IsValid()) {
        m_frame.Transform(m);
    }
}
