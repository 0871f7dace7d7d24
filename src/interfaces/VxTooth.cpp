// VxTooth: type tag, persistence and transform of a tooth mesh with its frame.
#include <interfaces/VxTooth.h>

#include <interfaces/VxFStream.h>

#include <ostream>

VxTooth::~VxTooth() = default;

ObjectType_e VxTooth::GetObjectType() const {
    return ObjectType_Tooth;
}

bool VxTooth::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Tooth || VxMesh::IsKindOf(type);
}

void VxTooth::Write(std::ostream& os, bool withTag, int version) const {
    VxMesh::Write(os, withTag, version);
    os << m_fdi << ' ' << static_cast<int>(m_kind) << ' ' << (m_lockShown ? 1 : 0) << '\n';
    WriteFrame(os, m_frame);
}

bool VxTooth::Read(VxFStream& in, bool withTag, int version) {
    int fdi = 0;
    int kind = 0;
    int lock = 0;
    VxFrame frame;
    if (!VxMesh::Read(in, withTag, version) || !in.Get(fdi) || !in.Get(kind) || !in.Get(lock) ||
        !ReadFrame(in, frame)) {
        return false;
    }
    m_fdi = fdi;
    m_kind = static_cast<ToothKind_e>(kind);
    m_lockShown = lock != 0;
    m_frame = frame;
    return true;
}

void VxTooth::Transform(const VxMatrix& m) {
    VxMesh::Transform(m);
    if (m_frame.IsValid()) {
        m_frame.Transform(m);
    }
}
