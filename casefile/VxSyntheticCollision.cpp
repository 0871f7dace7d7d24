// VxSyntheticCollision: contacts and gaps between placed meshes; see the
// header. Also the stage of the synthetic patient that fills VxCase::gapInfos.
#include "VxSyntheticCollision.h"

#include "VxSyntheticParts.h"

#include <interfaces/VxBBox.h>
#include <interfaces/VxLine.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

struct Box {
    double lo[3] = {kInf, kInf, kInf};
    double hi[3] = {-kInf, -kInf, -kInf};
    void Add(const VxPoint& p) {
        for (int k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    bool Empty() const { return lo[0] > hi[0] || lo[1] > hi[1] || lo[2] > hi[2]; }
    Box Grown(double d) const {
        Box b = *this;
        for (int k = 0; k < 3; ++k) {
            b.lo[k] -= d;
            b.hi[k] += d;
        }
        return b;
    }
    Box Intersect(const Box& o) const {
        Box b;
        for (int k = 0; k < 3; ++k) {
            b.lo[k] = std::max(lo[k], o.lo[k]);
            b.hi[k] = std::min(hi[k], o.hi[k]);
        }
        return b;
    }
    bool Contains(const VxPoint& p) const {
        return p[0] >= lo[0] && p[0] <= hi[0] && p[1] >= lo[1] && p[1] <= hi[1] && p[2] >= lo[2] &&
               p[2] <= hi[2];
    }
};

// The mesh's box carried by a matrix (the box of the eight moved corners).
Box PlacedBox(const VxMesh& mesh, const VxMatrix& m) {
    const VxBBox bb = mesh.GetBBox();
    Box b;
    for (int k = 0; k < 8; ++k) {
        const VxPoint& lo = bb.GetMinPnt();
        const VxPoint& hi = bb.GetMaxPnt();
        b.Add(m.Transform(VxPoint((k & 1) ? hi.x() : lo.x(), (k & 2) ? hi.y() : lo.y(),
                                  (k & 4) ? hi.z() : lo.z())));
    }
    return b;
}

// Triangles of one mesh binned in a uniform grid over a region, for
// nearest-surface queries.
class TriGrid {
public:
    TriGrid(const VxMesh& mesh, const Box& region) : m_mesh(mesh), m_region(region) {
        for (int k = 0; k < 3; ++k) {
            const double ext = std::max(region.hi[k] - region.lo[k], 1e-6);
            m_n[k] = std::max(1, std::min(64, static_cast<int>(std::ceil(ext / 0.75))));
            m_h[k] = ext / m_n[k];
        }
        m_cells.resize(static_cast<size_t>(m_n[0] * m_n[1] * m_n[2]));
        m_seen.assign(mesh.GetFaces().size(), 0u);
        const auto& faces = mesh.GetFaces();
        for (size_t f = 0; f < faces.size(); ++f) {
            Box tb;
            for (int c = 0; c < 3; ++c) {
                tb.Add(mesh.GetVertex(faces[f].GetVtxId(c))->GetPos());
            }
            const Box in = tb.Intersect(region);
            if (in.Empty()) {
                continue;
            }
            int lo[3];
            int hi[3];
            for (int k = 0; k < 3; ++k) {
                lo[k] = Cell(k, in.lo[k]);
                hi[k] = Cell(k, in.hi[k]);
            }
            for (int x = lo[0]; x <= hi[0]; ++x) {
                for (int y = lo[1]; y <= hi[1]; ++y) {
                    for (int z = lo[2]; z <= hi[2]; ++z) {
                        m_cells[Index(x, y, z)].push_back(static_cast<int>(f));
                    }
                }
            }
        }
    }

    // Nearest distance to the triangles in the grid, exact when not above `cap`;
    // infinity when no triangle lies within `cap`.
    double Nearest(const VxPoint& p, double cap, VxPoint* closest) const {
        double best = kInf;
        double r = std::min(cap, std::min(m_h[0], std::min(m_h[1], m_h[2])));
        ++m_stamp;
        for (;;) {
            int lo[3];
            int hi[3];
            for (int k = 0; k < 3; ++k) {
                lo[k] = Cell(k, p[k] - r);
                hi[k] = Cell(k, p[k] + r);
            }
            for (int x = lo[0]; x <= hi[0]; ++x) {
                for (int y = lo[1]; y <= hi[1]; ++y) {
                    for (int z = lo[2]; z <= hi[2]; ++z) {
                        for (int f : m_cells[Index(x, y, z)]) {
                            if (m_seen[static_cast<size_t>(f)] == m_stamp) {
                                continue; // a triangle spans several cells
                            }
                            m_seen[static_cast<size_t>(f)] = m_stamp;
                            const VxFace& face = m_mesh.GetFaces()[static_cast<size_t>(f)];
                            VxPoint q;
                            const double d = VxSyntheticCollision::PointTriangleDistance(
                                p, m_mesh.GetVertex(face.GetVtxId(0))->GetPos(),
                                m_mesh.GetVertex(face.GetVtxId(1))->GetPos(),
                                m_mesh.GetVertex(face.GetVtxId(2))->GetPos(), &q);
                            if (d < best) {
                                best = d;
                                if (closest) {
                                    *closest = q;
                                }
                            }
                        }
                    }
                }
            }
            if (best <= r || r >= cap) {
                return best <= cap ? best : kInf;
            }
            r = std::min(cap, 2.0 * r);
        }
    }

private:
    int Cell(int k, double v) const {
        const int c = static_cast<int>(std::floor((v - m_region.lo[k]) / m_h[k]));
        return std::max(0, std::min(m_n[k] - 1, c));
    }
    size_t Index(int x, int y, int z) const {
        return (static_cast<size_t>(x) * static_cast<size_t>(m_n[1]) + static_cast<size_t>(y)) *
                   static_cast<size_t>(m_n[2]) +
               static_cast<size_t>(z);
    }

    const VxMesh& m_mesh;
    Box m_region;
    int m_n[3] = {1, 1, 1};
    double m_h[3] = {1, 1, 1};
    std::vector<std::vector<int>> m_cells;
    mutable std::vector<unsigned> m_seen; // per face: the query that last looked at it
    mutable unsigned m_stamp = 0;
};

// Brute force over every face: the fallback for a point deeper than the grid's
// reach.
double NearestAll(const VxMesh& mesh, const VxPoint& p, VxPoint* closest) {
    double best = kInf;
    for (const VxFace& f : mesh.GetFaces()) {
        VxPoint q;
        const double d = VxSyntheticCollision::PointTriangleDistance(
            p, mesh.GetVertex(f.GetVtxId(0))->GetPos(), mesh.GetVertex(f.GetVtxId(1))->GetPos(),
            mesh.GetVertex(f.GetVtxId(2))->GetPos(), &q);
        if (d < best) {
            best = d;
            if (closest) {
                *closest = q;
            }
        }
    }
    return best;
}

struct Side {
    std::vector<int> inside;   // vertex ids of this mesh inside the other
    std::vector<VxPoint> at;   // those vertices in the other's coordinates
    std::vector<double> depth; // parallel to inside, once measured
    int deepest = -1;
};

// The vertices of `m` (carried into the coordinates of `other` by `toOther`)
// that lie in `q` and inside `other`.
Side FindInside(const VxMesh& m, const VxMatrix& toOther, const VxMesh& other, const Box& q) {
    Side s;
    const auto& verts = m.GetVertices();
    for (size_t i = 0; i < verts.size(); ++i) {
        const VxPoint p = toOther.Transform(verts[i].GetPos());
        if (q.Contains(p) && VxSyntheticCollision::IsInside(other, p)) {
            s.inside.push_back(static_cast<int>(i));
            s.at.push_back(p);
        }
    }
    return s;
}

void MeasureDepths(Side& s, const VxMesh& other, const Box& q, double cap) {
    if (s.inside.empty()) {
        return;
    }
    const TriGrid grid(other, q.Grown(cap));
    double deepest = -1.0;
    for (size_t k = 0; k < s.inside.size(); ++k) {
        double d = grid.Nearest(s.at[k], cap, nullptr);
        if (d == kInf) {
            d = NearestAll(other, s.at[k], nullptr);
        }
        s.depth.push_back(d);
        if (d > deepest) {
            deepest = d;
            s.deepest = s.inside[k];
        }
    }
}

// The closest approach of the vertices of `m` in `q` to `other`'s surface,
// below `best`.
void NearestApproach(const VxMesh& m, const VxMatrix& toOther, const VxMesh& other, const Box& q,
                     double& best, VxPoint& at, VxPoint& on) {
    const TriGrid grid(other, q.Grown(best));
    const auto& verts = m.GetVertices();
    for (size_t i = 0; i < verts.size(); ++i) {
        const VxPoint p = toOther.Transform(verts[i].GetPos());
        if (!q.Contains(p)) {
            continue;
        }
        VxPoint c;
        const double d = grid.Nearest(p, best, &c);
        if (d < best) {
            best = d;
            at = p;
            on = c;
        }
    }
}

} // namespace

double VxSyntheticCollision::PointTriangleDistance(const VxPoint& p, const VxPoint& a,
                                                   const VxPoint& b, const VxPoint& c,
                                                   VxPoint* closest) {
    // Closest point by Voronoi regions of the triangle (Ericson, Real-Time
    // Collision Detection).
    const VxVector ab = b - a;
    const VxVector ac = c - a;
    const VxVector ap = p - a;
    VxPoint q;
    const double d1 = ab % ap;
    const double d2 = ac % ap;
    const VxVector bp = p - b;
    const double d3 = ab % bp;
    const double d4 = ac % bp;
    const VxVector cp = p - c;
    const double d5 = ab % cp;
    const double d6 = ac % cp;
    const double vc = d1 * d4 - d3 * d2;
    const double vb = d5 * d2 - d1 * d6;
    const double va = d3 * d6 - d5 * d4;
    if (d1 <= 0.0 && d2 <= 0.0) {
        q = a;
    } else if (d3 >= 0.0 && d4 <= d3) {
        q = b;
    } else if (vc <= 0.0 && d1 >= 0.0 && d3 <= 0.0) {
        q = a + ab * (d1 / (d1 - d3));
    } else if (d6 >= 0.0 && d5 <= d6) {
        q = c;
    } else if (vb <= 0.0 && d2 >= 0.0 && d6 <= 0.0) {
        q = a + ac * (d2 / (d2 - d6));
    } else if (va <= 0.0 && (d4 - d3) >= 0.0 && (d5 - d6) >= 0.0) {
        q = b + (c - b) * ((d4 - d3) / ((d4 - d3) + (d5 - d6)));
    } else {
        const double den = 1.0 / (va + vb + vc);
        q = a + ab * (vb * den) + ac * (vc * den);
    }
    if (closest) {
        *closest = q;
    }
    return p.DistanceToPoint(q);
}

bool VxSyntheticCollision::IsInside(const VxMesh& mesh, const VxPoint& p) {
    // An odd direction, so that rays do not run along the axis-aligned grids of
    // generated meshes.
    static const VxVector kDir(0.5773502691896258, 0.6180339887498949, 0.5339929913860542);
    std::vector<VxPoint> hits;
    std::vector<double> ts;
    mesh.IntersectMeshWithLine(VxLine(p, kDir), hits, ts);
    int crossings = 0;
    for (double t : ts) {
        if (t > 1e-12) {
            ++crossings;
        }
    }
    return (crossings & 1) != 0;
}

bool VxSyntheticCollision::Measure(VxMesh* a, const VxMatrix& placeA, VxMesh* b,
                                   const VxMatrix& placeB, double maxGap, VxGapInfo& out) {
    if (!a || !b || a->IsEmpty() || b->IsEmpty()) {
        return false;
    }
    VxMatrix invA = placeA;
    VxMatrix invB = placeB;
    if (!invA.Inverse() || !invB.Inverse()) {
        return false;
    }
    const VxMatrix aToB = invB * placeA;
    const VxMatrix bToA = invA * placeB;
    const double cap = std::max(maxGap, 2.0) + 0.5;
    const Box qb =
        PlacedBox(*a, aToB).Intersect(PlacedBox(*b, VxMatrix::Identity(4)).Grown(maxGap));
    const Box qa =
        PlacedBox(*b, bToA).Intersect(PlacedBox(*a, VxMatrix::Identity(4)).Grown(maxGap));
    if (qb.Empty() || qa.Empty()) {
        return false;
    }
    Side sa = FindInside(*a, aToB, *b, qb); // a's vertices inside b
    Side sb = FindInside(*b, bToA, *a, qa); // b's vertices inside a

    VxGapInfo g;
    g.SetMesh(0, a);
    g.SetMesh(1, b);
    if (!sa.inside.empty() || !sb.inside.empty()) {
        MeasureDepths(sa, *b, qb, cap);
        MeasureDepths(sb, *a, qa, cap);
        double value = 0.0;
        VxPoint pos;
        const Side* sides[2] = {&sa, &sb};
        VxMesh* meshes[2] = {a, b};
        const VxMatrix* places[2] = {&placeA, &placeB};
        for (int i = 0; i < 2; ++i) {
            const Side& s = *sides[i];
            const VxMesh& m = *meshes[i];
            std::vector<char> in(static_cast<size_t>(m.GetVertexCount()), 0);
            std::map<int, double> depth;
            for (size_t k = 0; k < s.inside.size(); ++k) {
                in[static_cast<size_t>(s.inside[k])] = 1;
                depth[s.inside[k]] = s.depth[k];
            }
            std::vector<int> faces;
            for (const VxFace& f : m.GetFaces()) {
                const int* v = f.GetVtxIds();
                if (in[static_cast<size_t>(v[0])] || in[static_cast<size_t>(v[1])] ||
                    in[static_cast<size_t>(v[2])]) {
                    faces.push_back(f.GetFaceId());
                    for (int k = 0; k < 3; ++k) {
                        depth.emplace(v[k], 0.0); // the contact's rim: corners outside
                    }
                }
            }
            g.SetFaces(i, faces);
            g.SetVertexDepth(i, depth);
            if (s.deepest >= 0) {
                const double d = depth[s.deepest];
                if (d > value) {
                    value = d;
                    pos = places[i]->Transform(m.GetVertex(s.deepest)->GetPos());
                }
            }
        }
        g.SetIsGap(false);
        g.SetValue(value);
        g.SetValuePos(pos);
        out = g;
        return true;
    }
    if (maxGap <= 0.0) {
        return false;
    }
    // A gap: the closest approach of either mesh's vertices to the other's
    // surface, each search bounded by the best distance found so far.
    double best = maxGap;
    VxPoint at;
    VxPoint on;
    NearestApproach(*a, aToB, *b, qb, best, at, on);
    const double fromA = best;
    VxPoint at2;
    VxPoint on2;
    NearestApproach(*b, bToA, *a, qa, best, at2, on2);
    if (!(best < maxGap)) {
        return false;
    }
    VxPoint mid;
    if (best < fromA) {
        mid = VxPoint::Lerp(placeA.Transform(at2), placeA.Transform(on2), 0.5);
    } else {
        mid = VxPoint::Lerp(placeB.Transform(at), placeB.Transform(on), 0.5);
    }
    g.SetIsGap(true);
    g.SetValue(best);
    g.SetValuePos(mid);
    out = g;
    return true;
}

namespace vx_synthetic {

void BuildGapInfos(VxSynthContext& ctx) {
    const int step = std::max(0, std::min(ctx.options.collisionStep, ctx.steps - 1));
    // Neighbours along each arch: a contact or a gap each.
    for (int jaw = 0; jaw < 2; ++jaw) {
        const std::vector<int>& order = ctx.arch[jaw];
        for (size_t i = 0; i + 1 < order.size(); ++i) {
            const VxSynthToothInfo& a = ctx.teeth[static_cast<size_t>(order[i])];
            const VxSynthToothInfo& b = ctx.teeth[static_cast<size_t>(order[i + 1])];
            VxGapInfo g;
            if (VxSyntheticCollision::Measure(a.tooth, a.Placement(step), b.tooth,
                                              b.Placement(step), 3.0, g)) {
                ctx.out.gapInfos.push_back(g);
            }
        }
    }
    // Upper against lower teeth: contacts only.
    for (int ia : ctx.arch[0]) {
        for (int ib : ctx.arch[1]) {
            const VxSynthToothInfo& a = ctx.teeth[static_cast<size_t>(ia)];
            const VxSynthToothInfo& b = ctx.teeth[static_cast<size_t>(ib)];
            const VxMatrix pa = a.Placement(step);
            const VxMatrix pb = b.Placement(step);
            if (PlacedBox(*a.tooth, pa).Intersect(PlacedBox(*b.tooth, pb)).Empty()) {
                continue;
            }
            VxGapInfo g;
            if (VxSyntheticCollision::Measure(a.tooth, pa, b.tooth, pb, 0.0, g) && !g.IsGap()) {
                ctx.out.gapInfos.push_back(g);
            }
        }
    }
}

} // namespace vx_synthetic
