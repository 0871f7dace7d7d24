// VxMesh: topology building, normals, the bounding-volume hierarchy behind the line queries, text
// persistence, and the pipe-mesh generator.
//
// Finish builds everything in linear time: half-edges are bucketed by their smaller vertex
// (counting sort), and duplicates are found within each small bucket, so a 10,000-face mesh
// finishes in about a millisecond with no hashing or global sort.
#include <interfaces/VxMesh.h>

#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxFStream.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxMatrix.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>

// ---------------------------------------------------------------------------------------------
// Bounding-volume hierarchy over the faces: binary, median split on the longest axis of the
// centroid box, up to kLeafSize faces a leaf. Built at the first line query after a change.
struct VxMeshBvh {
    static constexpr int kLeafSize = 4;
    struct Node {
        double lo[3];
        double hi[3];
        int first; // leaf: first index into order; inner: index of the left child
        int count; // leaf: face count; inner: 0 (the right child is at first + 1)
    };
    std::vector<Node> nodes;
    std::vector<int> order;
};

namespace {

struct Tri {
    VxPoint a, b, c;
};

Tri TriOf(const std::vector<VxVertex>& v, const VxFace& f) {
    const int* id = f.GetVtxIds();
    return {v[static_cast<size_t>(id[0])].GetPos(), v[static_cast<size_t>(id[1])].GetPos(),
            v[static_cast<size_t>(id[2])].GetPos()};
}

// Line (o + t d, t unbounded) against a box: the parameter interval inside it, if any.
bool LineBox(const VxPoint& o, const VxVector& d, const double* lo, const double* hi) {
    double tmin = -std::numeric_limits<double>::infinity();
    double tmax = std::numeric_limits<double>::infinity();
    for (int k = 0; k < 3; ++k) {
        // Boxes are padded a little so that a hit on a box face is not lost to round-off.
        const double pad = 1e-9 * (std::fabs(lo[k]) + std::fabs(hi[k]) + 1.0);
        const double l = lo[k] - pad;
        const double h = hi[k] + pad;
        if (d[k] == 0.0) {
            if (o[k] < l || o[k] > h) {
                return false;
            }
            continue;
        }
        double t1 = (l - o[k]) / d[k];
        double t2 = (h - o[k]) / d[k];
        if (t1 > t2) {
            std::swap(t1, t2);
        }
        tmin = std::max(tmin, t1);
        tmax = std::min(tmax, t2);
        if (tmin > tmax) {
            return false;
        }
    }
    return true;
}

// Möller-Trumbore without the sign test on t: the line is unbounded. Edges and corners count as
// inside (with a small relative slack) so that a line through a shared edge is never lost; the
// caller merges the duplicate. A line in the triangle's plane does not hit it.
bool LineTriangle(const VxPoint& o, const VxVector& d, const Tri& t, double& param) {
    const VxVector e1 = t.b - t.a;
    const VxVector e2 = t.c - t.a;
    const VxVector p = d * e2;
    const double det = e1 % p;
    const double scale = e1.Magnitude() * e2.Magnitude() * d.Magnitude();
    if (!(std::fabs(det) > 1e-14 * scale)) {
        return false;
    }
    const double inv = 1.0 / det;
    const VxVector s = o - t.a;
    const double u = (s % p) * inv;
    constexpr double kSlack = 1e-12;
    if (u < -kSlack || u > 1.0 + kSlack) {
        return false;
    }
    const VxVector q = s * e1;
    const double v = (d % q) * inv;
    if (v < -kSlack || u + v > 1.0 + kSlack) {
        return false;
    }
    param = (e2 % q) * inv;
    return std::isfinite(param);
}

void BuildBvh(const std::vector<VxVertex>& verts, const std::vector<VxFace>& faces,
              VxMeshBvh& bvh) {
    const int n = static_cast<int>(faces.size());
    bvh.nodes.clear();
    bvh.order.resize(static_cast<size_t>(n));
    if (n == 0) {
        return;
    }
    std::vector<VxPoint> centroid(static_cast<size_t>(n));
    std::vector<VxMeshBvh::Node> leafBoxes(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        bvh.order[static_cast<size_t>(i)] = i;
        const Tri t = TriOf(verts, faces[static_cast<size_t>(i)]);
        auto& b = leafBoxes[static_cast<size_t>(i)];
        for (int k = 0; k < 3; ++k) {
            b.lo[k] = std::min({t.a[k], t.b[k], t.c[k]});
            b.hi[k] = std::max({t.a[k], t.b[k], t.c[k]});
            centroid[static_cast<size_t>(i)][k] = (t.a[k] + t.b[k] + t.c[k]) / 3.0;
        }
    }
    bvh.nodes.reserve(static_cast<size_t>(2 * n / VxMeshBvh::kLeafSize + 2));
    struct Job {
        int node, first, count;
    };
    std::vector<Job> stack;
    bvh.nodes.push_back({});
    stack.push_back({0, 0, n});
    while (!stack.empty()) {
        const Job job = stack.back();
        stack.pop_back();
        VxMeshBvh::Node node;
        double clo[3];
        double chi[3];
        for (int k = 0; k < 3; ++k) {
            node.lo[k] = clo[k] = std::numeric_limits<double>::infinity();
            node.hi[k] = chi[k] = -std::numeric_limits<double>::infinity();
        }
        for (int i = job.first; i < job.first + job.count; ++i) {
            const int f = bvh.order[static_cast<size_t>(i)];
            const auto& b = leafBoxes[static_cast<size_t>(f)];
            for (int k = 0; k < 3; ++k) {
                node.lo[k] = std::min(node.lo[k], b.lo[k]);
                node.hi[k] = std::max(node.hi[k], b.hi[k]);
                clo[k] = std::min(clo[k], centroid[static_cast<size_t>(f)][k]);
                chi[k] = std::max(chi[k], centroid[static_cast<size_t>(f)][k]);
            }
        }
        if (job.count <= VxMeshBvh::kLeafSize) {
            node.first = job.first;
            node.count = job.count;
            bvh.nodes[static_cast<size_t>(job.node)] = node;
            continue;
        }
        int axis = 0;
        for (int k = 1; k < 3; ++k) {
            if (chi[k] - clo[k] > chi[axis] - clo[axis]) {
                axis = k;
            }
        }
        const int half = job.count / 2;
        auto begin = bvh.order.begin() + job.first;
        std::nth_element(begin, begin + half, begin + job.count, [&](int x, int y) {
            return centroid[static_cast<size_t>(x)][axis] < centroid[static_cast<size_t>(y)][axis];
        });
        const int left = static_cast<int>(bvh.nodes.size());
        bvh.nodes.push_back({});
        bvh.nodes.push_back({});
        node.first = left;
        node.count = 0;
        bvh.nodes[static_cast<size_t>(job.node)] = node;
        stack.push_back({left, job.first, half});
        stack.push_back({left + 1, job.first + half, job.count - half});
    }
}

// Visits every face whose leaf box the line crosses; the visitor returns false to stop.
template <class Visit>
void QueryBvh(const VxMeshBvh& bvh, const VxPoint& o, const VxVector& d, Visit visit) {
    if (bvh.nodes.empty()) {
        return;
    }
    int stack[128];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
        const auto& node = bvh.nodes[static_cast<size_t>(stack[--top])];
        if (!LineBox(o, d, node.lo, node.hi)) {
            continue;
        }
        if (node.count > 0) {
            for (int i = node.first; i < node.first + node.count; ++i) {
                if (!visit(bvh.order[static_cast<size_t>(i)])) {
                    return;
                }
            }
        } else if (top + 2 <= 128) {
            stack[top++] = node.first;
            stack[top++] = node.first + 1;
        }
    }
}

class PrecisionGuard {
public:
    explicit PrecisionGuard(std::ostream& os) : m_os(os), m_old(os.precision(17)) {}
    ~PrecisionGuard() { m_os.precision(m_old); }
    PrecisionGuard(const PrecisionGuard&) = delete;
    PrecisionGuard& operator=(const PrecisionGuard&) = delete;

private:
    std::ostream& m_os;
    std::streamsize m_old;
};

} // namespace

// ---------------------------------------------------------------------------------------------

VxMesh::VxMesh() = default;

VxMesh::VxMesh(const VxMesh& other)
    : VxEntity(other), m_vertices(other.m_vertices), m_faces(other.m_faces), m_edges(other.m_edges),
      m_adjStart(other.m_adjStart), m_adjFaces(other.m_adjFaces), m_updateVBO(true) {}

VxMesh& VxMesh::operator=(const VxMesh& other) {
    if (this != &other) {
        VxEntity::operator=(other);
        m_vertices = other.m_vertices;
        m_faces = other.m_faces;
        m_edges = other.m_edges;
        m_adjStart = other.m_adjStart;
        m_adjFaces = other.m_adjFaces;
        InvalidateCaches();
        m_updateVBO = true;
    }
    return *this;
}

VxMesh::~VxMesh() = default;

ObjectType_e VxMesh::GetObjectType() const {
    return ObjectType_Mesh;
}

bool VxMesh::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Mesh || VxEntity::IsKindOf(type);
}

void VxMesh::InvalidateCaches() {
    m_vertexNormalsValid = false;
    m_bboxValid = false;
    m_bvh.reset();
}

void VxMesh::Clear() {
    m_vertices.clear();
    m_faces.clear();
    m_edges.clear();
    m_adjStart.clear();
    m_adjFaces.clear();
    InvalidateCaches();
    m_updateVBO = true;
}

void VxMesh::Reserve(int vertexCount, int faceCount) {
    m_vertices.reserve(static_cast<size_t>(std::max(0, vertexCount)));
    m_faces.reserve(static_cast<size_t>(std::max(0, faceCount)));
}

int VxMesh::AddVertex(const VxPoint& pos) {
    const int id = static_cast<int>(m_vertices.size());
    m_vertices.emplace_back(pos, id);
    InvalidateCaches();
    m_updateVBO = true;
    return id;
}

int VxMesh::AddFace(int v0, int v1, int v2, FaceStyle_e style) {
    const int nv = static_cast<int>(m_vertices.size());
    if (v0 < 0 || v1 < 0 || v2 < 0 || v0 >= nv || v1 >= nv || v2 >= nv || v0 == v1 || v1 == v2 ||
        v0 == v2) {
        return -1;
    }
    const int id = static_cast<int>(m_faces.size());
    m_faces.emplace_back(v0, v1, v2, id, style);
    InvalidateCaches();
    m_updateVBO = true;
    return id;
}

void VxMesh::SetMeshData(const std::vector<VxPoint>& positions, const std::vector<int>& triangles) {
    Clear();
    Reserve(static_cast<int>(positions.size()), static_cast<int>(triangles.size() / 3));
    for (const VxPoint& p : positions) {
        AddVertex(p);
    }
    for (size_t i = 0; i + 2 < triangles.size(); i += 3) {
        AddFace(triangles[i], triangles[i + 1], triangles[i + 2]);
    }
    Finish();
}

void VxMesh::ComputeFaceNormal(VxFace& f) const {
    const Tri t = TriOf(m_vertices, f);
    VxVector n = (t.b - t.a) * (t.c - t.a);
    if (!n.Normalize()) {
        n = VxVector();
    }
    f.SetNormal(n);
}

void VxMesh::Finish() {
    const size_t nv = m_vertices.size();
    const size_t nf = m_faces.size();
    // Faces with ids out of range (written through the non-const accessor) are dropped here so
    // that nothing below indexes outside the vertex array.
    size_t kept = 0;
    for (size_t i = 0; i < nf; ++i) {
        const int* id = m_faces[i].GetVtxIds();
        bool ok = true;
        for (int k = 0; k < 3; ++k) {
            ok = ok && id[k] >= 0 && static_cast<size_t>(id[k]) < nv;
        }
        ok = ok && id[0] != id[1] && id[1] != id[2] && id[0] != id[2];
        if (ok) {
            if (kept != i) {
                m_faces[kept] = m_faces[i];
            }
            ++kept;
        }
    }
    m_faces.resize(kept);
    for (size_t v = 0; v < nv; ++v) {
        m_vertices[v].SetVtxId(static_cast<int>(v));
    }

    // Half-edges bucketed by smaller vertex: bucket v holds (larger vertex, face * 3 + corner).
    const size_t nh = 3 * kept;
    std::vector<int> start(nv + 1, 0);
    for (size_t i = 0; i < kept; ++i) {
        const int* id = m_faces[i].GetVtxIds();
        for (int k = 0; k < 3; ++k) {
            ++start[static_cast<size_t>(std::min(id[k], id[(k + 1) % 3])) + 1];
        }
    }
    for (size_t v = 0; v < nv; ++v) {
        start[v + 1] += start[v];
    }
    std::vector<int> fill(start.begin(), start.end() - 1);
    std::vector<std::pair<int, int>> half(nh);
    for (size_t i = 0; i < kept; ++i) {
        m_faces[i].SetFaceId(static_cast<int>(i));
        const int* id = m_faces[i].GetVtxIds();
        for (int k = 0; k < 3; ++k) {
            const int a = std::min(id[k], id[(k + 1) % 3]);
            const int b = std::max(id[k], id[(k + 1) % 3]);
            half[static_cast<size_t>(fill[static_cast<size_t>(a)]++)] = {
                b, static_cast<int>(3 * i) + k};
        }
    }
    m_edges.clear();
    m_edges.reserve(nh / 2 + 1);
    for (size_t v = 0; v < nv; ++v) {
        const int firstEdge = static_cast<int>(m_edges.size());
        for (int h = start[v]; h < start[v + 1]; ++h) {
            const int other = half[static_cast<size_t>(h)].first;
            const int code = half[static_cast<size_t>(h)].second;
            int e = -1;
            for (int c = firstEdge; c < static_cast<int>(m_edges.size()); ++c) {
                int a = 0;
                int b = 0;
                m_edges[static_cast<size_t>(c)].Get2VtxId(a, b);
                if (b == other) {
                    e = c;
                    break;
                }
            }
            if (e < 0) {
                e = static_cast<int>(m_edges.size());
                m_edges.emplace_back();
                m_edges.back().Set(static_cast<int>(v), other, e);
            }
            m_edges[static_cast<size_t>(e)].AddFaceUse(code / 3);
            m_faces[static_cast<size_t>(code / 3)].SetEdgeId(code % 3, e);
        }
    }

    // Vertex-to-face adjacency, faces in ascending order.
    m_adjStart.assign(nv + 1, 0);
    for (size_t i = 0; i < kept; ++i) {
        for (int k = 0; k < 3; ++k) {
            ++m_adjStart[static_cast<size_t>(m_faces[i].GetVtxId(k)) + 1];
        }
    }
    for (size_t v = 0; v < nv; ++v) {
        m_adjStart[v + 1] += m_adjStart[v];
    }
    m_adjFaces.assign(nh, 0);
    fill.assign(m_adjStart.begin(), m_adjStart.end() - 1);
    for (size_t i = 0; i < kept; ++i) {
        for (int k = 0; k < 3; ++k) {
            const size_t v = static_cast<size_t>(m_faces[i].GetVtxId(k));
            m_adjFaces[static_cast<size_t>(fill[v]++)] = static_cast<int>(i);
        }
    }
    for (VxFace& f : m_faces) {
        ComputeFaceNormal(f);
    }
    InvalidateCaches();
    m_updateVBO = true;
}

void VxMesh::NotifyGeometryChanged() {
    const size_t nv = m_vertices.size();
    for (VxFace& f : m_faces) {
        const int* id = f.GetVtxIds();
        if (id[0] >= 0 && id[1] >= 0 && id[2] >= 0 && static_cast<size_t>(id[0]) < nv &&
            static_cast<size_t>(id[1]) < nv && static_cast<size_t>(id[2]) < nv) {
            ComputeFaceNormal(f);
        }
    }
    InvalidateCaches();
    m_updateVBO = true;
}

void VxMesh::SetVertexPos(int vertexId, const VxPoint& pos) {
    VxVertex* v = GetVertex(vertexId);
    if (v == nullptr) {
        return;
    }
    v->SetPos(pos);
    // Only the faces around the vertex change their normal.
    if (vertexId + 1 < static_cast<int>(m_adjStart.size())) {
        for (int i = m_adjStart[static_cast<size_t>(vertexId)];
             i < m_adjStart[static_cast<size_t>(vertexId) + 1]; ++i) {
            ComputeFaceNormal(m_faces[static_cast<size_t>(m_adjFaces[static_cast<size_t>(i)])]);
        }
    }
    InvalidateCaches();
    m_updateVBO = true;
}

void VxMesh::Transform(const VxMatrix& m) {
    if (m.Rows() != 4 || m.Cols() != 4) {
        return;
    }
    for (VxVertex& v : m_vertices) {
        v.SetPos(m.Transform(v.GetPos()));
    }
    NotifyGeometryChanged();
}

// ---- access ----

VxVertex* VxMesh::GetVertex(int id) {
    return id >= 0 && id < GetVertexCount() ? &m_vertices[static_cast<size_t>(id)] : nullptr;
}
const VxVertex* VxMesh::GetVertex(int id) const {
    return id >= 0 && id < GetVertexCount() ? &m_vertices[static_cast<size_t>(id)] : nullptr;
}
VxEdge* VxMesh::GetEdge(int id) {
    return id >= 0 && id < GetEdgeCount() ? &m_edges[static_cast<size_t>(id)] : nullptr;
}
const VxEdge* VxMesh::GetEdge(int id) const {
    return id >= 0 && id < GetEdgeCount() ? &m_edges[static_cast<size_t>(id)] : nullptr;
}
VxFace* VxMesh::GetFace(int id) {
    return id >= 0 && id < GetFaceCount() ? &m_faces[static_cast<size_t>(id)] : nullptr;
}
const VxFace* VxMesh::GetFace(int id) const {
    return id >= 0 && id < GetFaceCount() ? &m_faces[static_cast<size_t>(id)] : nullptr;
}

void VxMesh::EnsureVertexNormals() const {
    if (m_vertexNormalsValid && m_vertexNormals.size() == m_vertices.size()) {
        return;
    }
    const size_t nv = m_vertices.size();
    m_vertexNormals.assign(nv, VxVector());
    for (const VxFace& f : m_faces) {
        const int* id = f.GetVtxIds();
        if (id[0] < 0 || id[1] < 0 || id[2] < 0 || static_cast<size_t>(id[0]) >= nv ||
            static_cast<size_t>(id[1]) >= nv || static_cast<size_t>(id[2]) >= nv) {
            continue;
        }
        const Tri t = TriOf(m_vertices, f);
        // The unnormalised cross product is twice the area times the unit normal: the weight.
        const VxVector n = (t.b - t.a) * (t.c - t.a);
        for (int k = 0; k < 3; ++k) {
            m_vertexNormals[static_cast<size_t>(id[k])] += n;
        }
    }
    for (VxVector& n : m_vertexNormals) {
        if (!n.Normalize()) {
            n = VxVector();
        }
    }
    m_vertexNormalsValid = true;
}

VxVector VxMesh::GetVertexNormal(int vertexId) const {
    if (vertexId < 0 || vertexId >= GetVertexCount()) {
        return VxVector();
    }
    EnsureVertexNormals();
    return m_vertexNormals[static_cast<size_t>(vertexId)];
}

bool VxMesh::GetAdjacentFaces(int vertexId, std::vector<int>& faces, bool append) const {
    if (!append) {
        faces.clear();
    }
    if (vertexId < 0 || vertexId + 1 >= static_cast<int>(m_adjStart.size())) {
        return false;
    }
    faces.insert(faces.end(), m_adjFaces.begin() + m_adjStart[static_cast<size_t>(vertexId)],
                 m_adjFaces.begin() + m_adjStart[static_cast<size_t>(vertexId) + 1]);
    return true;
}

VxBBox VxMesh::GetBBox() const {
    if (!m_bboxValid) {
        m_bbox = VxBBox();
        for (const VxVertex& v : m_vertices) {
            m_bbox.Add(v.GetPos());
        }
        m_bboxValid = true;
    }
    return m_bbox;
}

const VxMeshBvh& VxMesh::Bvh() const {
    if (!m_bvh) {
        m_bvh = std::make_unique<VxMeshBvh>();
        BuildBvh(m_vertices, m_faces, *m_bvh);
    }
    return *m_bvh;
}

// ---- line queries ----

bool VxMesh::IntersectMeshWithLine(const VxLine& line, std::vector<VxPoint>& points) const {
    std::vector<double> params;
    return IntersectMeshWithLine(line, points, params);
}

bool VxMesh::IntersectMeshWithLine(const VxLine& line, std::vector<VxPoint>& points,
                                   std::vector<double>& parameters) const {
    points.clear();
    parameters.clear();
    const VxPoint& o = line.Point();
    const VxVector& d = line.Direction();
    if (m_faces.empty() || d.IsZero()) {
        return false;
    }
    std::vector<double> ts;
    QueryBvh(Bvh(), o, d, [&](int f) {
        double t = 0.0;
        if (LineTriangle(o, d, TriOf(m_vertices, m_faces[static_cast<size_t>(f)]), t)) {
            ts.push_back(t);
        }
        return true;
    });
    std::sort(ts.begin(), ts.end());
    // A line through a shared edge or vertex meets every face there: report the point once.
    const double dmag = d.Magnitude();
    const double merge = 1e-9 * (GetBBox().Diagonal() + 1.0) / dmag;
    for (double t : ts) {
        if (!parameters.empty() && t - parameters.back() <= merge) {
            continue;
        }
        parameters.push_back(t);
        points.push_back(line.Evaluate(t));
    }
    return !points.empty();
}

bool VxMesh::IsHitByRay(const VxLine& ray, const VxMatrix& placement) const {
    if (m_faces.empty() || placement.Rows() != 4 || placement.Cols() != 4) {
        return false;
    }
    VxMatrix inv = placement;
    if (!inv.Inverse()) {
        return false;
    }
    const VxPoint o = inv.Transform(ray.Point());
    const VxVector d = inv.Transform(ray.Direction());
    if (d.IsZero()) {
        return false;
    }
    const VxBBox box = GetBBox();
    const double lo[3] = {box.GetMinPnt()[0], box.GetMinPnt()[1], box.GetMinPnt()[2]};
    const double hi[3] = {box.GetMaxPnt()[0], box.GetMaxPnt()[1], box.GetMaxPnt()[2]};
    if (!LineBox(o, d, lo, hi)) {
        return false;
    }
    bool hit = false;
    QueryBvh(Bvh(), o, d, [&](int f) {
        double t = 0.0;
        hit = LineTriangle(o, d, TriOf(m_vertices, m_faces[static_cast<size_t>(f)]), t);
        return !hit;
    });
    return hit;
}

// ---- persistence ----

void VxMesh::WriteFrame(std::ostream& os, const VxFrame& frame) {
    PrecisionGuard guard(os);
    const VxPoint& o = frame.GetOrigin();
    const VxVector& x = frame.DirX();
    const VxVector& y = frame.DirY();
    os << (frame.IsValid() ? 1 : 0) << ' ' << o[0] << ' ' << o[1] << ' ' << o[2] << ' ' << x[0]
       << ' ' << x[1] << ' ' << x[2] << ' ' << y[0] << ' ' << y[1] << ' ' << y[2] << '\n';
}

bool VxMesh::ReadFrame(VxFStream& in, VxFrame& frame) {
    int valid = 0;
    double v[9];
    if (!in.Get(valid)) {
        return false;
    }
    for (double& x : v) {
        if (!in.Get(x)) {
            return false;
        }
    }
    frame = VxFrame();
    if (valid != 0) {
        frame = VxFrame(VxPoint(v[0], v[1], v[2]), VxVector(v[3], v[4], v[5]),
                        VxVector(v[6], v[7], v[8]));
    } else {
        frame.SetOrigin(VxPoint(v[0], v[1], v[2]));
    }
    return true;
}

void VxMesh::Write(std::ostream& os, bool withTag, int version) const {
    VxEntity::Write(os, withTag, version);
    PrecisionGuard guard(os);
    os << m_vertices.size() << ' ' << m_faces.size() << '\n';
    for (const VxVertex& v : m_vertices) {
        const VxPoint& p = v.GetPos();
        os << p[0] << ' ' << p[1] << ' ' << p[2] << '\n';
    }
    for (const VxFace& f : m_faces) {
        const int* id = f.GetVtxIds();
        os << id[0] << ' ' << id[1] << ' ' << id[2] << ' ' << static_cast<int>(f.GetFaceStyle())
           << '\n';
    }
}

bool VxMesh::Read(VxFStream& in, bool withTag, int version) {
    if (!VxEntity::Read(in, withTag, version)) {
        return false;
    }
    long long nv = -1;
    long long nf = -1;
    if (!in.Get(nv) || !in.Get(nf) || nv < 0 || nf < 0 || nv > INT32_MAX || nf > INT32_MAX) {
        return false;
    }
    // Counts are not trusted for allocation: a corrupt header fails at the first missing value.
    VxMesh tmp;
    for (long long i = 0; i < nv; ++i) {
        double x = 0;
        double y = 0;
        double z = 0;
        if (!in.Get(x) || !in.Get(y) || !in.Get(z)) {
            return false;
        }
        tmp.AddVertex(VxPoint(x, y, z));
    }
    for (long long i = 0; i < nf; ++i) {
        int a = 0;
        int b = 0;
        int c = 0;
        int style = 0;
        if (!in.Get(a) || !in.Get(b) || !in.Get(c) || !in.Get(style) ||
            tmp.AddFace(a, b, c, static_cast<FaceStyle_e>(style)) < 0) {
            return false;
        }
    }
    tmp.Finish();
    m_vertices = std::move(tmp.m_vertices);
    m_faces = std::move(tmp.m_faces);
    m_edges = std::move(tmp.m_edges);
    m_adjStart = std::move(tmp.m_adjStart);
    m_adjFaces = std::move(tmp.m_adjFaces);
    InvalidateCaches();
    m_updateVBO = true;
    return true;
}

// ---- pipe mesh ----

VxMesh* VxMesh::CreatePipeMesh(double radius, const VxBSplineCurve& curve, double step) {
    if (!curve.IsValid()) {
        return new VxMesh();
    }
    double t0 = 0.0;
    double t1 = 0.0;
    curve.GetDomain(t0, t1);
    return CreatePipeMesh(
        radius, [&curve](double t) { return curve.Evaluate(t); }, t0, t1, step, curve.IsClosed());
}

VxMesh* VxMesh::CreatePipeMesh(double radius, const std::function<VxPoint(double)>& curve,
                               double t0, double t1, double step, bool closed, int sides) {
    auto* mesh = new VxMesh();
    if (!curve || !(radius > 0.0) || !(step > 0.0) || !std::isfinite(radius) ||
        !std::isfinite(step) || !std::isfinite(t0) || !std::isfinite(t1) || !(t1 > t0)) {
        return mesh;
    }
    sides = std::max(3, std::min(sides, 256));
    // Enough rings for the finest step the overlays ask for, with a ceiling against a step that
    // would make a mesh of millions of rings.
    constexpr double kMaxRings = 20000.0;
    step = std::max(step, (t1 - t0) / kMaxRings);
    const int n = static_cast<int>(std::floor((t1 - t0) / step + 1e-9));

    std::vector<VxPoint> pts;
    pts.reserve(static_cast<size_t>(n) + 2);
    const double tiny = 1e-12 * (std::fabs(t0) + std::fabs(t1) + 1.0);
    for (int i = 0; i <= n; ++i) {
        pts.push_back(curve(t0 + i * step));
    }
    if (t0 + n * step < t1 - tiny) {
        pts.push_back(curve(t1));
    }
    // Coincident samples would give a zero tangent: drop them, and on a closed curve drop the
    // samples that repeat the start at the seam.
    double extent = 0.0;
    for (const VxPoint& p : pts) {
        for (int k = 0; k < 3; ++k) {
            if (!std::isfinite(p[k])) {
                return mesh;
            }
            extent = std::max(extent, std::fabs(p[k]));
        }
    }
    const double eps2 = std::pow(1e-10 * (extent + radius + 1.0), 2);
    std::vector<VxPoint> c;
    for (const VxPoint& p : pts) {
        if (c.empty() || c.back().SquareDistanceToPoint(p) > eps2) {
            c.push_back(p);
        }
    }
    if (closed) {
        while (c.size() > 1 && c.back().SquareDistanceToPoint(c.front()) <= eps2) {
            c.pop_back();
        }
    }
    const int rings = static_cast<int>(c.size());
    if (rings < (closed ? 3 : 2)) {
        return mesh;
    }

    // Tangents by central differences (one-sided at the ends of an open curve).
    std::vector<VxVector> tan(static_cast<size_t>(rings));
    for (int i = 0; i < rings; ++i) {
        const int prev = closed ? (i + rings - 1) % rings : std::max(0, i - 1);
        const int next = closed ? (i + 1) % rings : std::min(rings - 1, i + 1);
        VxVector t = c[static_cast<size_t>(next)] - c[static_cast<size_t>(prev)];
        if (!t.Normalize()) {
            t = VxVector(1, 0, 0);
        }
        tan[static_cast<size_t>(i)] = t;
    }
    // Rotation-minimising frame by double reflection (Wang, Jüttler, Zheng and Liu).
    auto perpendicular = [](const VxVector& t) {
        const VxVector axis = std::fabs(t[0]) < 0.9 ? VxVector(1, 0, 0) : VxVector(0, 1, 0);
        VxVector r = t * axis;
        r.Normalize();
        return r;
    };
    auto propagate = [](const VxPoint& x0, const VxPoint& x1, const VxVector& t0v,
                        const VxVector& t1v, const VxVector& r0) {
        const VxVector v1 = x1 - x0;
        const double c1 = v1 % v1;
        VxVector rL = r0;
        VxVector tL = t0v;
        if (c1 > 0.0) {
            rL = r0 - v1 * (2.0 / c1 * (v1 % r0));
            tL = t0v - v1 * (2.0 / c1 * (v1 % t0v));
        }
        const VxVector v2 = t1v - tL;
        const double c2 = v2 % v2;
        VxVector r1 = c2 > 1e-300 ? rL - v2 * (2.0 / c2 * (v2 % rL)) : rL;
        r1 = r1 - t1v * (r1 % t1v);
        if (!r1.Normalize()) {
            VxVector axis = std::fabs(t1v[0]) < 0.9 ? VxVector(1, 0, 0) : VxVector(0, 1, 0);
            r1 = t1v * axis;
            r1.Normalize();
        }
        return r1;
    };
    std::vector<VxVector> ref(static_cast<size_t>(rings));
    ref[0] = perpendicular(tan[0]);
    for (int i = 1; i < rings; ++i) {
        ref[static_cast<size_t>(i)] =
            propagate(c[static_cast<size_t>(i - 1)], c[static_cast<size_t>(i)],
                      tan[static_cast<size_t>(i - 1)], tan[static_cast<size_t>(i)],
                      ref[static_cast<size_t>(i - 1)]);
    }
    // On a closed curve the frame carried once round does not meet itself: spread the twist
    // over the rings so that the last ring joins the first without a seam.
    double twist = 0.0;
    if (closed) {
        const VxVector back =
            propagate(c[static_cast<size_t>(rings - 1)], c[0], tan[static_cast<size_t>(rings - 1)],
                      tan[0], ref[static_cast<size_t>(rings - 1)]);
        twist = ref[0].AngleWith(back, tan[0]); // rotation carrying ref[0] onto the returned frame
    }

    const double twoPi = 2.0 * std::acos(-1.0);
    mesh->Reserve(rings * sides, 2 * rings * sides);
    for (int i = 0; i < rings; ++i) {
        const VxVector& t = tan[static_cast<size_t>(i)];
        const VxVector& r = ref[static_cast<size_t>(i)];
        const VxVector s = t * r;
        const double shift = closed ? -twist * i / rings : 0.0;
        for (int j = 0; j < sides; ++j) {
            const double a = twoPi * j / sides + shift;
            mesh->AddVertex(c[static_cast<size_t>(i)] +
                            (r * std::cos(a) + s * std::sin(a)) * radius);
        }
    }
    // Faces wind so that their normals point away from the curve: with s = t x r the angle runs
    // counter-clockwise seen from ahead, and (ring i, j), (i, j+1), (i+1, j+1) faces outward.
    const int segs = closed ? rings : rings - 1;
    for (int i = 0; i < segs; ++i) {
        const int i1 = (i + 1) % rings;
        for (int j = 0; j < sides; ++j) {
            const int j1 = (j + 1) % sides;
            const int a = i * sides + j;
            const int b = i * sides + j1;
            const int cc = i1 * sides + j1;
            const int d = i1 * sides + j;
            mesh->AddFace(a, b, cc);
            mesh->AddFace(a, cc, d);
        }
    }
    if (!closed) {
        // Flat caps fanned from the ring's first vertex: no centre vertex, so every vertex of
        // the tube stays at the radius.
        const int last = (rings - 1) * sides;
        for (int j = 1; j + 1 < sides; ++j) {
            mesh->AddFace(0, j + 1, j);
            mesh->AddFace(last, last + j, last + j + 1);
        }
    }
    mesh->Finish();
    return mesh;
}
