// VxGapInfo: one contact or gap between two meshes at a treatment step, as the model library
// measured it: the two meshes, the faces of each that take part, the depth at each contact
// vertex, the measured value and where its label goes. A plain record; it does not measure,
// and it holds the meshes without owning them.
#pragma once

#include <interfaces/VxPoint.h>

#include <map>
#include <vector>

class VxMesh;

class VxGapInfo {
public:
    VxGapInfo() = default;
    VxGapInfo(VxMesh* first, VxMesh* second, bool isGap, double value, const VxPoint& valuePos);
    VxGapInfo(const VxGapInfo&) = default;
    VxGapInfo& operator=(const VxGapInfo&) = default;

    // True for a gap, false for a contact (collision).
    bool IsGap() const { return m_isGap; }
    // Millimetres: the width of a gap or the depth of a contact.
    double GetValue() const { return m_value; }
    VxPoint GetValuePos() const { return m_valuePos; }

    // i is 0 or 1; any other index gives null or an empty list.
    VxMesh* GetMesh(int i) const;
    // Face ids (VxFace::GetFaceId) of mesh i that take part in the contact, in the order given.
    const std::vector<int>& GetFaces(int i) const;
    // Depth at each contact vertex of mesh i, keyed by vertex id (VxVertex::GetVtxId). Keyed by
    // id rather than by vertex pointer so the order of a walk is the same on every run.
    const std::map<int, double>& GetVertexDepth(int i) const;

    void SetIsGap(bool isGap) { m_isGap = isGap; }
    void SetValue(double value) { m_value = value; }
    void SetValuePos(const VxPoint& pos) { m_valuePos = pos; }
    void SetMesh(int i, VxMesh* mesh);
    void SetFaces(int i, const std::vector<int>& faceIds);
    void SetVertexDepth(int i, const std::map<int, double>& depths);
    void AddVertexDepth(int i, int vertexId, double depth);

private:
    static bool ValidIndex(int i) { return i == 0 || i == 1; }

    bool m_isGap = false;
    double m_value = 0.0;
    VxPoint m_valuePos;
    VxMesh* m_mesh[2] = {nullptr, nullptr}; // not owned
    std::vector<int> m_faces[2];
    std::map<int, double> m_depth[2];
};
