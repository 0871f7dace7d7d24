// Unit tests of VxMesh and VxCurvature: topology against brute-force recounts, normals on spheres,
// line and ray queries against a brute-force triangle test of a different construction
// (plane intersection plus same-side tests), curvature against 1/r, pipe meshes against their
// curve, and persistence round trips with corrupt input.
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxCurvature.h>
#include <interfaces/VxFStream.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

namespace {

const double kPi = std::acos(-1.0);

VxMesh MakeCube(double h) {
    VxMesh m;
    for (int i = 0; i < 8; ++i) {
        m.AddVertex(VxPoint(i & 1 ? h : -h, i & 2 ? h : -h, i & 4 ? h : -h));
    }
    // Two triangles a side, counter-clockwise seen from outside.
    const int quads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                             {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& q : quads) {
        m.AddFace(q[0], q[1], q[2]);
        m.AddFace(q[0], q[2], q[3]);
    }
    m.Finish();
    return m;
}

// Icosahedron subdivided `level` times, projected onto the sphere of radius r.
VxMesh MakeIcosphere(int level, double r) {
    const double t = (1.0 + std::sqrt(5.0)) / 2.0;
    std::vector<VxPoint> p = {{-1, t, 0}, {1, t, 0}, {-1, -t, 0}, {1, -t, 0},
                              {0, -1, t}, {0, 1, t}, {0, -1, -t}, {0, 1, -t},
                              {t, 0, -1}, {t, 0, 1}, {-t, 0, -1}, {-t, 0, 1}};
    std::vector<int> f = {0, 11, 5,  0, 5,  1, 0, 1, 7, 0, 7,  10, 0, 10, 11, 1, 5, 9, 5, 11,
                          4, 11, 10, 2, 10, 7, 6, 7, 1, 8, 3,  9,  4, 3,  4,  2, 3, 2, 6, 3,
                          6, 8,  3,  8, 9,  4, 9, 5, 2, 4, 11, 6,  2, 10, 8,  6, 7, 9, 8, 1};
    for (int l = 0; l < level; ++l) {
        std::map<std::pair<int, int>, int> mid;
        auto midpoint = [&](int a, int b) {
            const auto key = std::make_pair(std::min(a, b), std::max(a, b));
            auto it = mid.find(key);
            if (it != mid.end()) {
                return it->second;
            }
            p.push_back(VxPoint::Lerp(p[static_cast<size_t>(a)], p[static_cast<size_t>(b)], 0.5));
            mid[key] = static_cast<int>(p.size()) - 1;
            return static_cast<int>(p.size()) - 1;
        };
        std::vector<int> nf;
        for (size_t i = 0; i < f.size(); i += 3) {
            const int a = f[i], b = f[i + 1], c = f[i + 2];
            const int ab = midpoint(a, b), bc = midpoint(b, c), ca = midpoint(c, a);
            nf.insert(nf.end(), {a, ab, ca, b, bc, ab, c, ca, bc, ab, bc, ca});
        }
        f.swap(nf);
    }
    for (VxPoint& q : p) {
        const double len = VxVector(q).Magnitude();
        q = VxPoint(q[0] * r / len, q[1] * r / len, q[2] * r / len);
    }
    VxMesh m;
    m.SetMeshData(p, f);
    return m;
}

// Latitude-longitude sphere with single pole vertices.
VxMesh MakeUVSphere(int stacks, int slices, double r) {
    std::vector<VxPoint> p;
    std::vector<int> f;
    p.push_back(VxPoint(0, 0, r));
    for (int i = 1; i < stacks; ++i) {
        const double th = kPi * i / stacks;
        for (int j = 0; j < slices; ++j) {
            const double ph = 2 * kPi * j / slices;
            p.push_back(VxPoint(r * std::sin(th) * std::cos(ph), r * std::sin(th) * std::sin(ph),
                                r * std::cos(th)));
        }
    }
    p.push_back(VxPoint(0, 0, -r));
    const int south = static_cast<int>(p.size()) - 1;
    auto idx = [&](int ring, int j) { return 1 + (ring - 1) * slices + (j % slices); };
    for (int j = 0; j < slices; ++j) {
        f.insert(f.end(), {0, idx(1, j), idx(1, j + 1)});
        f.insert(f.end(), {south, idx(stacks - 1, j + 1), idx(stacks - 1, j)});
    }
    for (int i = 1; i + 1 < stacks; ++i) {
        for (int j = 0; j < slices; ++j) {
            f.insert(f.end(), {idx(i, j), idx(i + 1, j), idx(i + 1, j + 1)});
            f.insert(f.end(), {idx(i, j), idx(i + 1, j + 1), idx(i, j + 1)});
        }
    }
    VxMesh m;
    m.SetMeshData(p, f);
    return m;
}

struct Hit {
    double t;
    VxPoint p;
};

// Brute force of a different construction from the library's: intersect the triangle's plane,
// then keep the point if it lies on the inner side of all three edges.
bool BruteLineTriangle(const VxPoint& o, const VxVector& d, const VxPoint& a, const VxPoint& b,
                       const VxPoint& c, double& t) {
    const VxVector n = (b - a) * (c - a);
    const double denom = n % d;
    if (std::fabs(denom) < 1e-14 * n.Magnitude() * d.Magnitude()) {
        return false;
    }
    t = (n % (a - o)) / denom;
    const VxPoint x = o + d * t;
    const VxPoint v[3] = {a, b, c};
    for (int k = 0; k < 3; ++k) {
        if ((((v[(k + 1) % 3] - v[k]) * (x - v[k])) % n) < 0.0) {
            return false;
        }
    }
    return true;
}

std::vector<Hit> BruteHits(const std::vector<VxPoint>& pos, const std::vector<VxFace>& faces,
                           const VxPoint& o, const VxVector& d) {
    std::vector<Hit> hits;
    for (const VxFace& f : faces) {
        int a = 0, b = 0, c = 0;
        f.Get3VtxId(a, b, c);
        double t = 0;
        if (BruteLineTriangle(o, d, pos[static_cast<size_t>(a)], pos[static_cast<size_t>(b)],
                              pos[static_cast<size_t>(c)], t)) {
            hits.push_back({t, o + d * t});
        }
    }
    std::sort(hits.begin(), hits.end(), [](const Hit& x, const Hit& y) { return x.t < y.t; });
    return hits;
}

std::vector<VxPoint> Positions(const VxMesh& m, const VxMatrix& placement = VxMatrix::Identity(4)) {
    std::vector<VxPoint> out;
    for (const VxVertex& v : m.GetVertices()) {
        out.push_back(placement.Transform(v.GetPos()));
    }
    return out;
}

VxVector RandomUnit(std::mt19937& rng) {
    std::normal_distribution<double> g(0.0, 1.0);
    VxVector v(g(rng), g(rng), g(rng));
    v.Normalize();
    return v;
}

// Checks edges, face edge ids and adjacency against recounts from the face list alone.
void ExpectConsistentTopology(const VxMesh& m, bool closed) {
    std::map<std::pair<int, int>, int> uses;
    for (const VxFace& f : m.GetFaces()) {
        for (int k = 0; k < 3; ++k) {
            const int a = f.GetVtxId(k), b = f.GetVtxId((k + 1) % 3);
            ++uses[{std::min(a, b), std::max(a, b)}];
            const VxEdge* e = m.GetEdge(f.GetEdgeId(k));
            ASSERT_NE(e, nullptr);
            int e0 = 0, e1 = 0;
            e->Get2VtxId(e0, e1);
            EXPECT_EQ(std::make_pair(e0, e1), std::make_pair(std::min(a, b), std::max(a, b)));
        }
    }
    ASSERT_EQ(static_cast<size_t>(m.GetEdgeCount()), uses.size()) << "edges are not unique";
    std::set<std::pair<int, int>> seen;
    for (int i = 0; i < m.GetEdgeCount(); ++i) {
        const VxEdge* e = m.GetEdge(i);
        int a = 0, b = 0;
        e->Get2VtxId(a, b);
        EXPECT_EQ(e->GetEdgeId(), i);
        EXPECT_TRUE(seen.insert({a, b}).second);
        EXPECT_EQ(e->GetFaceUseCount(), (uses[std::make_pair(a, b)]));
        if (closed) {
            EXPECT_EQ(e->GetFaceUseCount(), 2) << "edge " << a << "-" << b;
        }
    }
    std::vector<std::vector<int>> expected(static_cast<size_t>(m.GetVertexCount()));
    for (const VxFace& f : m.GetFaces()) {
        for (int k = 0; k < 3; ++k) {
            expected[static_cast<size_t>(f.GetVtxId(k))].push_back(f.GetFaceId());
        }
    }
    for (int v = 0; v < m.GetVertexCount(); ++v) {
        std::vector<int> got = {-7};
        EXPECT_TRUE(m.GetAdjacentFaces(v, got, false));
        EXPECT_EQ(got, expected[static_cast<size_t>(v)]);
    }
}

// Smallest distance from p to a densely sampled curve.
double DistanceToSamples(const VxPoint& p, const std::vector<VxPoint>& samples) {
    double best = 1e300;
    for (size_t i = 0; i + 1 < samples.size(); ++i) {
        const VxVector ab = samples[i + 1] - samples[i];
        const double t = std::clamp(((p - samples[i]) % ab) / (ab % ab), 0.0, 1.0);
        best = std::min(best, p.DistanceToPoint(samples[i] + ab * t));
    }
    return best;
}

double SignedVolume(const VxMesh& m) {
    double v = 0.0;
    for (const VxFace& f : m.GetFaces()) {
        const VxVector a = m.GetVertex(f.GetVtxId(0))->GetPos();
        const VxVector b = m.GetVertex(f.GetVtxId(1))->GetPos();
        const VxVector c = m.GetVertex(f.GetVtxId(2))->GetPos();
        v += (a % (b * c)) / 6.0;
    }
    return v;
}

} // namespace

TEST(VxMeshTopology, CubeAndIcosphereHaveUniqueEdgesAndSphereEuler) {
    const VxMesh cube = MakeCube(1.0);
    EXPECT_EQ(cube.GetEdgeCount(), 18);
    ExpectConsistentTopology(cube, true);

    for (int level = 0; level <= 2; ++level) {
        const VxMesh ico = MakeIcosphere(level, 3.0);
        EXPECT_EQ(ico.GetVertexCount() - ico.GetEdgeCount() + ico.GetFaceCount(), 2);
        EXPECT_EQ(ico.GetFaceCount(), 20 << (2 * level));
        ExpectConsistentTopology(ico, true);
    }
}

TEST(VxMeshTopology, AdjacencyAppendAndBadIds) {
    const VxMesh cube = MakeCube(1.0);
    std::vector<int> list;
    ASSERT_TRUE(cube.GetAdjacentFaces(0, list, false));
    const size_t n0 = list.size();
    ASSERT_TRUE(cube.GetAdjacentFaces(7, list, true));
    std::vector<int> only7;
    cube.GetAdjacentFaces(7, only7, false);
    EXPECT_EQ(list.size(), n0 + only7.size());
    EXPECT_TRUE(std::equal(only7.begin(), only7.end(), list.begin() + static_cast<long>(n0)));

    EXPECT_FALSE(cube.GetAdjacentFaces(8, list, false));
    EXPECT_TRUE(list.empty());
    list = {1, 2};
    EXPECT_FALSE(cube.GetAdjacentFaces(-1, list, true));
    EXPECT_EQ(list.size(), 2u);
    // One past the end and -1 are out of range for every kind of id.
    EXPECT_TRUE(cube.GetVertex(8) == nullptr && cube.GetVertex(-1) == nullptr &&
                cube.GetEdge(18) == nullptr && cube.GetFace(12) == nullptr);
    EXPECT_TRUE(cube.GetVertexNormal(99).IsZero());
}

TEST(VxMeshTopology, BadFacesAreRefusedAndFinishIsRepeatable) {
    VxMesh m;
    for (const VxPoint& p : {VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(0, 1, 0)}) {
        m.AddVertex(p);
    }
    for (const auto& [a, b, c] : {std::tuple{0, 1, 3}, {0, 0, 1}, {-1, 0, 1}}) {
        EXPECT_EQ(m.AddFace(a, b, c), -1) << a << " " << b << " " << c;
    }
    EXPECT_EQ(m.AddFace(0, 1, 2), 0);
    m.Finish();
    m.Finish();
    EXPECT_EQ(m.GetEdgeCount(), 3);
    ExpectConsistentTopology(m, false);
    for (const VxEdge& e : m.GetEdges()) {
        EXPECT_TRUE(e.IsBorder());
    }
    // A face broken through the non-const accessor is dropped by the next Finish.
    m.GetFaces()[0].Set3VtxId(0, 1, 9);
    m.Finish();
    EXPECT_EQ(m.GetFaceCount(), 0);
    EXPECT_TRUE(m.IsEmpty());
}

TEST(VxMeshNormals, PointOutwardOnSpheresAndFollowTransforms) {
    for (const VxMesh& s : {MakeIcosphere(3, 2.0), MakeUVSphere(16, 24, 2.0)}) {
        for (const VxFace& f : s.GetFaces()) {
            const VxPoint& a = s.GetVertex(f.GetVtxId(0))->GetPos();
            EXPECT_GT(f.GetNormal() % VxVector(a), 0.0);
            EXPECT_NEAR(f.GetNormal().Magnitude(), 1.0, 1e-12);
        }
        for (int v = 0; v < s.GetVertexCount(); ++v) {
            VxVector radial = s.GetVertex(v)->GetPos();
            radial.Normalize();
            EXPECT_GT(s.GetVertexNormal(v) % radial, 0.995) << v;
        }
    }
    // The cached vertex normals are dropped by a transform: they must turn with the mesh.
    VxMesh s = MakeIcosphere(2, 1.0);
    const VxVector before = s.GetVertexNormal(5);
    s.SetUpdateVBO(false);
    const VxMatrix rot = VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), kPi / 2);
    s.Transform(rot);
    EXPECT_TRUE(s.IsUpdateVBO());
    const VxVector expected = rot.Transform(before);
    EXPECT_NEAR((s.GetVertexNormal(5) - expected).Magnitude(), 0.0, 1e-12);
}

TEST(VxMeshUpdateFlag, StartsSetAndIsSetByEveryGeometryEdit) {
    VxMesh m = MakeCube(1.0);
    EXPECT_TRUE(m.IsUpdateVBO());
    // Each edit after a clear must set the flag again and drop the cached box.
    const double maxZ[] = {1.0, 3.0};
    const std::function<void()> edits[] = {[&] { m.SetVertexPos(0, VxPoint(-2, -2, -2)); },
                                           [&] {
                                               m.GetVertices()[7].SetPos(VxPoint(3, 3, 3));
                                               m.NotifyGeometryChanged();
                                           },
                                           [&] { m.AddVertex(VxPoint(9, 9, 9)); }};
    for (size_t i = 0; i < 3; ++i) {
        m.SetUpdateVBO(false);
        edits[i]();
        EXPECT_TRUE(m.IsUpdateVBO()) << i;
        if (i < 2) {
            EXPECT_DOUBLE_EQ(m.GetBBox().GetMaxPnt()[2], maxZ[i]) << i;
        }
    }
    EXPECT_DOUBLE_EQ(m.GetBBox().GetMinPnt()[0], -2.0);
    m.SetUpdateVBO(false);
    VxMesh copy(m);
    EXPECT_TRUE(copy.IsUpdateVBO());
    EXPECT_EQ(copy.GetEdgeCount(), m.GetEdgeCount());
}

TEST(VxMeshLine, IntersectionsMatchBruteForceOnRandomLines) {
    const VxMesh sphere = MakeIcosphere(3, 5.0);
    const auto pos = Positions(sphere);
    std::mt19937 rng(1234);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    int hitLines = 0;
    for (int i = 0; i < 300; ++i) {
        // Through a random point of the sphere's box, most lines meet the sphere twice, some miss.
        const VxPoint o(6 * u(rng), 6 * u(rng), 6 * u(rng));
        const VxVector d = RandomUnit(rng);
        const VxLine line(o, d);
        std::vector<VxPoint> pts;
        std::vector<double> ts;
        const bool any = sphere.IntersectMeshWithLine(line, pts, ts);
        const auto brute = BruteHits(pos, sphere.GetFaces(), line.Point(), line.Direction());
        ASSERT_EQ(pts.size(), brute.size()) << "line " << i;
        EXPECT_EQ(any, !brute.empty());
        hitLines += any ? 1 : 0;
        for (size_t k = 0; k < pts.size(); ++k) {
            EXPECT_NEAR(ts[k], brute[k].t, 1e-9);
            EXPECT_NEAR(pts[k].DistanceToPoint(brute[k].p), 0.0, 1e-9);
            if (k > 0) {
                EXPECT_LT(ts[k - 1], ts[k]);
            }
        }
        // A closed surface is crossed an even number of times.
        EXPECT_EQ(pts.size() % 2, 0u);
    }
    EXPECT_GT(hitLines, 100);
    EXPECT_LT(hitLines, 300);

    std::vector<VxPoint> pts = {VxPoint()};
    EXPECT_FALSE(sphere.IntersectMeshWithLine(VxLine(VxPoint(0, 0, 9), VxVector(1, 0, 0)), pts));
    EXPECT_TRUE(pts.empty());
}

TEST(VxMeshLine, LineThroughSharedVertexIsReportedOnce) {
    const VxMesh cube = MakeCube(1.0);
    std::vector<VxPoint> pts;
    // Along the diagonal through two corners: each corner is shared by several faces.
    ASSERT_TRUE(cube.IntersectMeshWithLine(VxLine(VxPoint(-1, -1, -1), VxPoint(1, 1, 1)), pts));
    ASSERT_EQ(pts.size(), 2u);
    EXPECT_NEAR(pts[0].DistanceToPoint(VxPoint(-1, -1, -1)), 0.0, 1e-12);
    EXPECT_NEAR(pts[1].DistanceToPoint(VxPoint(1, 1, 1)), 0.0, 1e-12);
    // Through the middle of a face's diagonal edge.
    ASSERT_TRUE(cube.IntersectMeshWithLine(VxLine(VxPoint(0, 0, -5), VxVector(0, 0, 1)), pts));
    EXPECT_EQ(pts.size(), 2u);
}

TEST(VxMeshRay, HitTestMatchesBruteForceUnderPlacements) {
    const VxMesh sphere = MakeIcosphere(2, 2.0);
    std::mt19937 rng(77);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    int hits = 0;
    for (int i = 0; i < 400; ++i) {
        VxMatrix placement = VxMatrix::s_GetRotationMatrix(RandomUnit(rng), kPi * u(rng)) *
                             VxMatrix::Translation(VxVector(10 * u(rng), 10 * u(rng), 10 * u(rng)));
        // Lines pass the placed centre at up to 3 units, so about half graze past the sphere.
        const VxPoint centre = placement.Transform(VxPoint(0, 0, 0));
        const VxVector d = RandomUnit(rng);
        VxVector side = d * RandomUnit(rng);
        side.Normalize();
        const VxPoint o = centre + side * (3.0 * std::fabs(u(rng))) + d * (20 * u(rng));
        const VxLine ray(o, d);

        const bool brute =
            !BruteHits(Positions(sphere, placement), sphere.GetFaces(), o, d).empty();
        EXPECT_EQ(sphere.IsHitByRay(ray, placement), brute) << "ray " << i;
        hits += brute ? 1 : 0;
    }
    EXPECT_GT(hits, 80);
    EXPECT_LT(hits, 320);

    VxMatrix singular(4, 4);
    EXPECT_FALSE(sphere.IsHitByRay(VxLine(VxPoint(0, 0, -9), VxVector(0, 0, 1)), singular));
    EXPECT_TRUE(
        sphere.IsHitByRay(VxLine(VxPoint(0, 0, -9), VxVector(0, 0, 1)), VxMatrix::Identity(4)));
    // The ray is a whole line: a point beyond the sphere still hits.
    EXPECT_TRUE(
        sphere.IsHitByRay(VxLine(VxPoint(0, 0, 9), VxVector(0, 0, 1)), VxMatrix::Identity(4)));
    EXPECT_FALSE(VxMesh().IsHitByRay(VxLine(VxPoint(), VxVector(0, 0, 1)), VxMatrix::Identity(4)));
}

TEST(VxCurvatureTest, SphereGivesOneOverRadius) {
    const double r = 2.5;
    {
        VxMesh ico = MakeIcosphere(4, r);
        VxCurvature curv(&ico);
        const auto& h = curv.GetMeanCurvature();
        ASSERT_EQ(h.size(), static_cast<size_t>(ico.GetVertexCount()));
        double area = 0.0;
        for (size_t v = 0; v < h.size(); ++v) {
            EXPECT_NEAR(h[v], 1.0 / r, 0.03 / r) << v;
            area += curv.GetVertexAreas()[v];
        }
        // Mixed areas tile the surface: their sum is the mesh area, just under 4 pi r^2.
        EXPECT_NEAR(area, 4 * kPi * r * r, 0.01 * 4 * kPi * r * r);
    }
    {
        VxMesh uv = MakeUVSphere(30, 40, r);
        VxCurvature curv(&uv);
        const auto& h = curv.GetMeanCurvature();
        for (int v = 0; v < uv.GetVertexCount(); ++v) {
            const double z = uv.GetVertex(v)->GetPos()[2];
            if (std::fabs(z) < 0.8 * r) {
                EXPECT_NEAR(h[static_cast<size_t>(v)], 1.0 / r, 0.03 / r) << v;
            }
        }
    }
    // Turned inside out, the sign turns.
    VxMesh flipped = MakeIcosphere(3, r);
    for (VxFace& f : flipped.GetFaces()) {
        f.Set3VtxId(f.GetVtxId(0), f.GetVtxId(2), f.GetVtxId(1));
    }
    flipped.Finish();
    VxCurvature c2(&flipped);
    EXPECT_NEAR(c2.GetMeanCurvature()[0], -1.0 / r, 0.05 / r);

    VxCurvature none(nullptr);
    EXPECT_TRUE(none.GetMeanCurvature().empty());
}

TEST(VxCurvatureTest, FlatAndBorderVerticesGiveZero) {
    // A 5 x 5 grid in the plane: inner vertices are flat, border vertices are set to 0.
    std::vector<VxPoint> p;
    std::vector<int> f;
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            p.push_back(VxPoint(i, j * 1.3, 0));
        }
    }
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            const int a = i * 5 + j;
            f.insert(f.end(), {a, a + 5, a + 6, a, a + 6, a + 1});
        }
    }
    VxMesh grid;
    grid.SetMeshData(p, f);
    VxCurvature c(&grid);
    for (double h : c.GetMeanCurvature()) {
        EXPECT_NEAR(h, 0.0, 1e-12);
    }
}

TEST(VxMeshPipe, HelixTubeIsClosedAtRadiusAndOutward) {
    const double radius = 0.4;
    auto helix = [](double t) { return VxPoint(3 * std::cos(4 * t), 3 * std::sin(4 * t), 2 * t); };
    std::unique_ptr<VxMesh> pipe(VxMesh::CreatePipeMesh(radius, helix, 0.0, 3.0, 0.01, false));
    ASSERT_TRUE(pipe);
    ASSERT_FALSE(pipe->IsEmpty());
    ExpectConsistentTopology(*pipe, true);
    EXPECT_EQ(pipe->GetVertexCount() - pipe->GetEdgeCount() + pipe->GetFaceCount(), 2);

    std::vector<VxPoint> dense;
    for (int i = 0; i <= 6000; ++i) {
        dense.push_back(helix(3.0 * i / 6000));
    }
    // Every vertex, caps included, lies on the tube's surface.
    for (int v = 0; v < pipe->GetVertexCount(); v += 7) {
        EXPECT_NEAR(DistanceToSamples(pipe->GetVertex(v)->GetPos(), dense), radius, 2e-3) << v;
    }
    // Outward winding gives a positive volume close to that of a 16-gon prism along the curve.
    const double length = 3.0 * std::sqrt(16.0 * 9.0 + 4.0);
    const int n = VxMesh::kPipeSides;
    const double prism = 0.5 * n * radius * radius * std::sin(2 * kPi / n) * length;
    EXPECT_NEAR(SignedVolume(*pipe), prism, 0.01 * prism);
}

TEST(VxMeshPipe, BSplineCurvesOpenAndClosed) {
    std::vector<VxPoint> pts = {{0, 0, 0}, {10, 2, 0}, {20, 0, 3}, {30, -4, 1}, {40, 0, 0}};
    std::unique_ptr<VxBSplineCurve> open(VxBSplineCurve::CreateInterpolateCurve(pts, false));
    ASSERT_TRUE(open);
    std::unique_ptr<VxMesh> tube(VxMesh::CreatePipeMesh(0.5, *open, 0.002));
    ASSERT_TRUE(tube);
    ExpectConsistentTopology(*tube, true);
    std::vector<VxPoint> dense;
    for (int i = 0; i <= 5000; ++i) {
        dense.push_back(open->Evaluate(i / 5000.0));
    }
    for (int v = 0; v < tube->GetVertexCount(); v += 11) {
        EXPECT_NEAR(DistanceToSamples(tube->GetVertex(v)->GetPos(), dense), 0.5, 2e-3);
    }
    EXPECT_GT(SignedVolume(*tube), 0.0);

    // A closed loop gives a torus: every edge twice, Euler characteristic 0, no seam twist.
    std::vector<VxPoint> loop;
    for (int i = 0; i < 12; ++i) {
        loop.push_back(VxPoint(8 * std::cos(2 * kPi * i / 12), 5 * std::sin(2 * kPi * i / 12),
                               4 * std::sin(4 * kPi * i / 12)));
    }
    std::unique_ptr<VxBSplineCurve> closed(VxBSplineCurve::CreateInterpolateCurve(loop, true));
    ASSERT_TRUE(closed);
    std::unique_ptr<VxMesh> torus(VxMesh::CreatePipeMesh(0.3, *closed, 0.01));
    ASSERT_TRUE(torus);
    ExpectConsistentTopology(*torus, true);
    EXPECT_EQ(torus->GetVertexCount() - torus->GetEdgeCount() + torus->GetFaceCount(), 0);
    EXPECT_GT(SignedVolume(*torus), 0.0);
    // Without a seam twist, the first vertex of each ring turns no further from one ring to the
    // next across the seam than anywhere else round the loop.
    const int sides = VxMesh::kPipeSides;
    const int rings = torus->GetVertexCount() / sides;
    auto radial = [&](int ring, VxVector& axis) {
        VxVector centre(0, 0, 0);
        for (int j = 0; j < sides; ++j) {
            centre += VxVector(torus->GetVertex(ring * sides + j)->GetPos());
        }
        centre /= sides;
        const VxVector a = VxVector(torus->GetVertex(ring * sides)->GetPos()) - centre;
        const VxVector b = VxVector(torus->GetVertex(ring * sides + sides / 4)->GetPos()) - centre;
        axis = a * b;
        axis.Normalize();
        return a;
    };
    auto turn = [&](int from, int to) {
        VxVector axis;
        VxVector u = radial(from, axis);
        const VxVector w = radial(to, axis);
        u = u - axis * (u % axis); // into the plane of the later ring
        return u.AngleWith(w);
    };
    double inner = 0.0;
    for (int i = 0; i + 1 < rings; ++i) {
        inner = std::max(inner, turn(i, i + 1));
    }
    EXPECT_LT(turn(rings - 1, 0), 2.0 * inner + 1e-9);
    EXPECT_LT(inner, 0.2);
}

TEST(VxMeshPipe, BadInputGivesAnEmptyMesh) {
    std::vector<VxPoint> pts = {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}};
    std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(pts, false));
    ASSERT_TRUE(curve);
    for (auto [r, s] : {std::pair<double, double>{0.0, 0.01},
                        {-1.0, 0.01},
                        {0.5, 0.0},
                        {0.5, -0.1},
                        {NAN, 0.01},
                        {0.5, INFINITY}}) {
        std::unique_ptr<VxMesh> m(VxMesh::CreatePipeMesh(r, *curve, s));
        ASSERT_TRUE(m);
        EXPECT_TRUE(m->IsEmpty());
    }
    std::unique_ptr<VxMesh> none(VxMesh::CreatePipeMesh(0.5, VxBSplineCurve(), 0.01));
    ASSERT_TRUE(none);
    EXPECT_TRUE(none->IsEmpty());
    // A curve that does not move has no tube.
    std::unique_ptr<VxMesh> still(VxMesh::CreatePipeMesh(
        0.5, [](double) { return VxPoint(1, 2, 3); }, 0.0, 1.0, 0.1, false));
    EXPECT_TRUE(still->IsEmpty());
    // A step far below the ceiling still gives a bounded mesh.
    std::unique_ptr<VxMesh> fine(VxMesh::CreatePipeMesh(0.5, *curve, 1e-9));
    EXPECT_LE(fine->GetVertexCount(), 20001 * VxMesh::kPipeSides);
}

TEST(VxMeshPersistence, RoundTripAndCorruptInput) {
    VxMesh m = MakeIcosphere(1, 1.7);
    m.GetFaces()[3].SetFaceStyle(FaceStyle_BasicRoot);
    m.SetSelected(1);
    std::ostringstream os;
    m.Write(os, true, VxObject::kFormatVersion);

    VxMesh back;
    VxFStream in(os.str());
    ASSERT_TRUE(back.Read(in, true, VxObject::kFormatVersion));
    ASSERT_EQ(back.GetVertexCount(), m.GetVertexCount());
    ASSERT_EQ(back.GetFaceCount(), m.GetFaceCount());
    EXPECT_EQ(back.GetEdgeCount(), m.GetEdgeCount());
    EXPECT_TRUE(back.IsSelected());
    for (int v = 0; v < m.GetVertexCount(); ++v) {
        EXPECT_EQ(back.GetVertex(v)->GetPos(), m.GetVertex(v)->GetPos()); // exact, 17 digits
    }
    EXPECT_EQ(back.GetFace(3)->GetFaceStyle(), FaceStyle_BasicRoot);

    // Truncated text, a wrong type tag, a too-new version and a bad face all fail and leave the
    // target as it was.
    const std::string text = os.str();
    const VxMesh cube = MakeCube(1.0);
    for (const std::string& bad :
         {text.substr(0, text.size() / 2), std::string("128\n") + text.substr(text.find('\n') + 1),
          std::string("4\n1 0 0 0 0\n3 1\n0 0 0\n1 0 0\n0 1 0\n0 1 5 0\n"), std::string("")}) {
        VxMesh target = cube;
        VxFStream s(bad);
        EXPECT_FALSE(target.Read(s, true, VxObject::kFormatVersion));
        EXPECT_EQ(target.GetFaceCount(), 12);
    }
    VxFStream again(text);
    EXPECT_FALSE(back.Read(again, true, VxObject::kFormatVersion + 1));
}
