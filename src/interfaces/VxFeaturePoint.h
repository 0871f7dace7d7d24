// VxFeaturePoint: one anatomical landmark on a tooth (a cusp tip, a contact point), held as the
// mesh vertex it sits on and a kind number the host assigns. The vertex belongs to the tooth's
// mesh; this class does not find landmarks.
#pragma once

class VxVertex;

class VxFeaturePoint {
public:
    VxFeaturePoint() = default;
    VxFeaturePoint(int kind, VxVertex* vertex) : m_kind(kind), m_vtx(vertex) {}

    VxVertex* GetVtx() const { return m_vtx; }
    int GetKind() const { return m_kind; }
    void SetVtx(VxVertex* vertex) { m_vtx = vertex; }
    void SetKind(int kind) { m_kind = kind; }

private:
    int m_kind = 0;
    VxVertex* m_vtx = nullptr; // not owned
};
