// VxObject: flags, type tags and the text form of the flags. The format is whitespace-separated
// tokens; derived classes append their own after the base's.
#include <interfaces/VxObject.h>

#include <interfaces/VxFStream.h>

#include <cstdint>
#include <ostream>

VxObject::~VxObject() = default;

ObjectType_e VxObject::GetObjectType() const {
    return ObjectType_Object;
}

bool VxObject::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Object;
}

void VxObject::Write(std::ostream& os, bool withTag, int /*version*/) const {
    if (withTag) {
        os << static_cast<std::uint64_t>(GetObjectType()) << '\n';
    }
    os << m_visible << ' ' << m_selected << ' ' << m_highlight << ' ' << m_deleted << ' '
       << m_sheltered << '\n';
}

bool VxObject::ReadHeader(VxFStream& in, bool withTag, int version) const {
    if (version > kFormatVersion) {
        return false;
    }
    if (withTag) {
        std::uint64_t tag = 0;
        if (!in.Get(tag) || tag != static_cast<std::uint64_t>(GetObjectType())) {
            return false;
        }
    }
    return true;
}

bool VxObject::Read(VxFStream& in, bool withTag, int version) {
    if (!ReadHeader(in, withTag, version)) {
        return false;
    }
    int f[5];
    for (int& v : f) {
        if (!in.Get(v)) {
            return false;
        }
    }
    m_visible = f[0];
    m_selected = f[1];
    m_highlight = f[2];
    m_deleted = f[3];
    m_sheltered = f[4];
    return true;
}
