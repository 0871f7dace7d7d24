// VxGum: type tag, band and segment lists, persistence.
#include <interfaces/VxGum.h>

#include <interfaces/VxFStream.h>

#include <ostream>

namespace {
const std::vector<int>& EmptyList() {
    static const std::vector<int> empty;
    return empty;
}

void WriteList(std::ostream& os, const std::vector<int>& list) {
    os << list.size();
    for (int v : list) {
        os << ' ' << v;
    }
    os << '\n';
}

// A corrupt count must not turn into a huge allocation: values are read one by one.
bool ReadList(VxFStream& in, std::vector<int>& list) {
    long long n = -1;
    if (!in.Get(n) || n < 0) {
        return false;
    }
    list.clear();
    for (long long i = 0; i < n; ++i) {
        int v = 0;
        if (!in.Get(v)) {
            return false;
        }
        list.push_back(v);
    }
    return true;
}
} // namespace

VxGum::~VxGum() = default;

ObjectType_e VxGum::GetObjectType() const {
    return ObjectType_Gum;
}

bool VxGum::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Gum || VxMesh::IsKindOf(type);
}

const std::vector<int>& VxGum::GetBandStartFaces(int family) const {
    return family >= 0 && family < kBandFamilies ? m_bandStart[family] : EmptyList();
}

const std::vector<int>& VxGum::GetBandEndFaces(int family) const {
    return family >= 0 && family < kBandFamilies ? m_bandEnd[family] : EmptyList();
}

bool VxGum::SetBands(int family, const std::vector<int>& starts, const std::vector<int>& ends) {
    if (family < 0 || family >= kBandFamilies || starts.size() != ends.size()) {
        return false;
    }
    m_bandStart[family] = starts;
    m_bandEnd[family] = ends;
    return true;
}

bool VxGum::SetSegments(const std::vector<int>& firstFaces, const std::vector<int>& endFaces) {
    if (firstFaces.size() != endFaces.size()) {
        return false;
    }
    m_segmentFirst = firstFaces;
    m_segmentEnd = endFaces;
    return true;
}

void VxGum::Write(std::ostream& os, bool withTag, int version) const {
    VxMesh::Write(os, withTag, version);
    os << (m_up ? 1 : 0) << ' ' << (m_cmp ? 1 : 0) << '\n';
    for (int f = 0; f < kBandFamilies; ++f) {
        WriteList(os, m_bandStart[f]);
        WriteList(os, m_bandEnd[f]);
    }
    WriteList(os, m_segmentFirst);
    WriteList(os, m_segmentEnd);
}

bool VxGum::Read(VxFStream& in, bool withTag, int version) {
    int up = 0;
    int cmp = 0;
    if (!VxMesh::Read(in, withTag, version) || !in.Get(up) || !in.Get(cmp)) {
        return false;
    }
    std::vector<int> lists[2 * kBandFamilies + 2];
    for (auto& l : lists) {
        if (!ReadList(in, l)) {
            return false;
        }
    }
    for (int f = 0; f < kBandFamilies; ++f) {
        if (lists[2 * f].size() != lists[2 * f + 1].size()) {
            return false;
        }
    }
    if (lists[2 * kBandFamilies].size() != lists[2 * kBandFamilies + 1].size()) {
        return false;
    }
    m_up = up != 0;
    m_cmp = cmp != 0;
    for (int f = 0; f < kBandFamilies; ++f) {
        m_bandStart[f] = std::move(lists[2 * f]);
        m_bandEnd[f] = std::move(lists[2 * f + 1]);
    }
    m_segmentFirst = std::move(lists[2 * kBandFamilies]);
    m_segmentEnd = std::move(lists[2 * kBandFamilies + 1]);
    return true;
}
