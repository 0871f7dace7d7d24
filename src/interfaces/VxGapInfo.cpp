// VxGapInfo: accessors of the contact record; out-of-range mesh indices answer neutrally so a
// caller's loop over "both sides" can never read past the pair.
#include <interfaces/VxGapInfo.h>

VxGapInfo::VxGapInfo(VxMesh* first, VxMesh* second, bool isGap, double value,
                     const VxPoint& valuePos)
    : m_isGap(isGap), m_value(value), m_valuePos(valuePos), m_mesh{first, second} {}

VxMesh* VxGapInfo::GetMesh(int i) const {
    return ValidIndex(i) ? m_mesh[i] : nullptr;
}

const std::vector<int>& VxGapInfo::GetFaces(int i) const {
    static const std::vector<int> s_none;
    return ValidIndex(i) ? m_faces[i] : s_none;
}

const std::map<int, double>& VxGapInfo::GetVertexDepth(int i) const {
    static const std::map<int, double> s_none;
    return ValidIndex(i) ? m_depth[i] : s_none;
}

void VxGapInfo::SetMesh(int i, VxMesh* mesh) {
    if (ValidIndex(i))
        m_mesh[i] = mesh;
}

void VxGapInfo::SetFaces(int i, const std::vector<int>& faceIds) {
    if (ValidIndex(i))
        m_faces[i] = faceIds;
}

void VxGapInfo::SetVertexDepth(int i, const std::map<int, double>& depths) {
    if (ValidIndex(i))
        m_depth[i] = depths;
}

void VxGapInfo::AddVertexDepth(int i, int vertexId, double depth) {
    if (ValidIndex(i))
        m_depth[i][vertexId] = depth;
}
