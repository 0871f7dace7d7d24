// Tests of the synthetic patient: the shape of what it makes (counts, closed
// teeth, root faces, frames, gum strips), the plan (smooth steps, crowded
// start, aligned end), the measured contacts against brute-force ray parity,
// determinism by seed, and the reference data and pictures.
#include "VxSyntheticCollision.h"
#include "VxSyntheticPatient.h"

#include <interfaces/CImage.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxTreatStep.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace {

const VxCase& Case() {
    static const std::unique_ptr<VxCase> c = VxSyntheticPatient::Generate(1);
    return *c;
}

VxPoint ToLocal(const VxFrame& f, const VxPoint& p) {
    const VxVector d = p - f.GetOrigin();
    return VxPoint(d % f.DirX(), d % f.DirY(), d % f.DirZ());
}

// Directed-edge census: closed and consistently oriented when every directed
// edge occurs once and its reverse once.
bool IsClosedOriented(const VxMesh& m) {
    std::map<std::pair<int, int>, int> e;
    for (const VxFace& f : m.GetFaces()) {
        for (int k = 0; k < 3; ++k) {
            ++e[{f.GetVtxId(k), f.GetVtxId((k + 1) % 3)}];
        }
    }
    for (const auto& [key, n] : e) {
        const auto rev = e.find({key.second, key.first});
        if (n != 1 || rev == e.end() || rev->second != 1) {
            return false;
        }
    }
    return !e.empty();
}

// Brute-force ray parity over every face (Moller-Trumbore), along a direction
// of its own.
bool BruteInside(const VxMesh& m, const VxPoint& p) {
    const VxVector d(0.31, -0.79, 0.53);
    int hits = 0;
    for (const VxFace& f : m.GetFaces()) {
        const VxPoint& a = m.GetVertex(f.GetVtxId(0))->GetPos();
        const VxPoint& b = m.GetVertex(f.GetVtxId(1))->GetPos();
        const VxPoint& c = m.GetVertex(f.GetVtxId(2))->GetPos();
        const VxVector e1 = b - a;
        const VxVector e2 = c - a;
        const VxVector h = d * e2;
        const double det = e1 % h;
        if (std::fabs(det) < 1e-14) {
            continue;
        }
        const VxVector s = p - a;
        const double u = (s % h) / det;
        if (u < 0.0 || u > 1.0) {
            continue;
        }
        const VxVector q = s * e1;
        const double v = (d % q) / det;
        if (v < 0.0 || u + v > 1.0) {
            continue;
        }
        if ((e2 % q) / det > 0.0) {
            ++hits;
        }
    }
    return (hits & 1) != 0;
}

double RotationDegrees(const VxMatrix& a, const VxMatrix& b) {
    double tr = 0.0; // trace of Ra^T Rb
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            tr += a[k][i] * b[k][i];
        }
    }
    return std::acos(std::max(-1.0, std::min(1.0, 0.5 * (tr - 1.0)))) * 180.0 / M_PI;
}

// FDI numbers along the arch from the patient's right molar to the left one.
std::vector<int> ArchOrder(bool upper) {
    std::vector<int> o;
    for (int p = -7; p <= 7; ++p) {
        if (p != 0) {
            o.push_back(p < 0 ? (upper ? 10 : 40) - p : (upper ? 20 : 30) + p);
        }
    }
    return o;
}

const DrawInfo_s& MainPlacement(const VxCase& c, const VxEntity* e, int step) {
    return *c.placements.at(e).at(step).begin(); // unlimited entries sort first
}

// A point of a tooth where it stands at the end of the plan (where the gums were shaped).
VxPoint AtEnd(const VxCase& c, const VxTooth& t, const VxPoint& p) {
    return MainPlacement(c, &t, c.stepCount - 1).matrix.Transform(p);
}

// Columns 0 .. 18 of row `row` of a band: the first triangle of cell k has the cell's corner
// at (row, k) as its second corner in either winding.
std::vector<VxPoint> BandRow(const VxGum& g, int family, int row) {
    std::vector<VxPoint> v;
    const int start = g.GetBandStartFaces(family)[0] + row * VxGum::kBandRowFaces;
    for (int k = 0; k < VxGum::kBandRowFaces / 2; ++k) {
        v.push_back(g.GetVertex(g.GetFace(start + 2 * k)->GetVtxId(1))->GetPos());
    }
    return v;
}

int BandRows(const VxGum& g, int family) {
    return (g.GetBandEndFaces(family)[0] - g.GetBandStartFaces(family)[0]) / VxGum::kBandRowFaces;
}

} // namespace

TEST(SyntheticPatient, CountsFdiSetAndEntities) {
    const VxCase& c = Case();
    std::set<int> fdis;
    std::set<int> kinds;
    for (const auto& t : c.teeth) {
        fdis.insert(t->GetFDI());
        kinds.insert(t->GetToothKind());
        EXPECT_EQ(t->IsUp(), t->GetFDI() < 30);
        ASSERT_NE(t->GetParent(), nullptr);
        EXPECT_EQ(t->GetParent()->IsUp(), t->IsUp());
    }
    const std::vector<int> up = ArchOrder(true);
    const std::vector<int> low = ArchOrder(false);
    std::set<int> expected(up.begin(), up.end());
    expected.insert(low.begin(), low.end());
    EXPECT_EQ(c.teeth.size(), 28u);
    EXPECT_EQ(fdis, expected);
    ASSERT_EQ(c.gums.size(), 2u);
    EXPECT_NE(c.gums[0]->IsUp(), c.gums[1]->IsUp());
    ASSERT_EQ(c.jaws.size(), 2u);
    EXPECT_EQ(c.skull, nullptr);
    EXPECT_GE(c.model.GetEntityCount(), 28 + 2 + 2);
    EXPECT_TRUE(kinds.count(2) && kinds.count(3) && kinds.count(5)); // a restored, implant, ...
}

TEST(SyntheticPatient, TeethAreClosedWithinFaceBudget) {
    int withBackup = 0;
    for (const auto& t : Case().teeth) {
        SCOPED_TRACE(t->GetFDI());
        if (t->GetBackupRoot()) {
            ++withBackup;
            EXPECT_TRUE(IsClosedOriented(*t->GetBackupRoot()));
        }
        EXPECT_GE(t->GetFaceCount(), 5000);
        EXPECT_LE(t->GetFaceCount(), 10000);
        EXPECT_TRUE(IsClosedOriented(*t));
        // A closed surface of one piece without handles.
        EXPECT_EQ(t->GetVertexCount() - t->GetEdgeCount() + t->GetFaceCount(), 2);
        // Outward normals: the signed volume is positive.
        double vol = 0.0;
        for (const VxFace& f : t->GetFaces()) {
            const VxVector a = t->GetVertex(f.GetVtxId(0))->GetPos();
            const VxVector b = t->GetVertex(f.GetVtxId(1))->GetPos();
            const VxVector cc = t->GetVertex(f.GetVtxId(2))->GetPos();
            vol += (a % (b * cc)) / 6.0;
        }
        EXPECT_GT(vol, 100.0);
        for (const VxVertex& v : t->GetVertices()) {
            for (int k = 0; k < 3; ++k) {
                ASSERT_EQ(v.GetPos()[k], static_cast<double>(static_cast<float>(v.GetPos()[k])));
            }
        }
    }
    EXPECT_GE(withBackup, 2);
    EXPECT_EQ(static_cast<size_t>(withBackup), Case().backupRoots.size());
}

TEST(SyntheticPatient, BasicRootFacesLieBelowTheCrown) {
    for (const auto& t : Case().teeth) {
        SCOPED_TRACE(t->GetFDI());
        double crownLow = 1e9;
        double crownHigh = -1e9;
        double rootHigh = -1e9;
        double rootLow = 1e9;
        int roots = 0;
        for (const VxFace& f : t->GetFaces()) {
            for (int k = 0; k < 3; ++k) {
                const double z = ToLocal(t->GetFrame(), t->GetVertex(f.GetVtxId(k))->GetPos()).z();
                if (f.GetFaceStyle() == FaceStyle_BasicRoot) {
                    rootHigh = std::max(rootHigh, z);
                    rootLow = std::min(rootLow, z);
                } else {
                    ASSERT_EQ(f.GetFaceStyle(), FaceStyle_Crown);
                    crownLow = std::min(crownLow, z);
                    crownHigh = std::max(crownHigh, z);
                }
            }
            roots += f.GetFaceStyle() == FaceStyle_BasicRoot;
        }
        EXPECT_GT(roots, 1000);
        EXPECT_LE(rootHigh, crownLow + 1e-3);
        EXPECT_LT(rootLow, crownLow - 8.0); // a root, not a stub
        // The origin is the crown's centre along its axis.
        EXPECT_NEAR(crownLow + crownHigh, 0.0, 1e-3);
    }
}

// Crowns read as teeth from the side: incisal edges with rounded corners, blunt cusps, a
// facial face whose height of contour lies in the cervical half and that narrows towards the
// occlusal table, and molars that keep a central fossa below their cusps.
TEST(SyntheticPatient, CrownsAreBluntConvexAndKeepTheirFossae) {
    for (const auto& t : Case().teeth) {
        SCOPED_TRACE(t->GetFDI());
        const int position = t->GetFDI() % 10;
        std::vector<VxPoint> crown;
        for (const VxFace& f : t->GetFaces()) {
            if (f.GetFaceStyle() == FaceStyle_Crown) {
                for (int k = 0; k < 3; ++k) {
                    crown.push_back(ToLocal(t->GetFrame(), t->GetVertex(f.GetVtxId(k))->GetPos()));
                }
            }
        }
        ASSERT_FALSE(crown.empty());
        VxPoint top = crown[0];
        double low = 1e9;
        double wide = 0.0;
        VxPoint contour = crown[0];
        for (const VxPoint& p : crown) {
            top = p.z() > top.z() ? p : top;
            low = std::min(low, p.z());
            wide = std::max(wide, std::fabs(p.x()));
            contour = std::fabs(p.y()) > std::fabs(contour.y()) ? p : contour;
        }
        const double height = top.z() - low;
        const double contourAt = (contour.z() - low) / height;
        EXPECT_GT(contourAt, 0.05);
        EXPECT_LT(contourAt, 0.55);
        double thickHigh = 0.0; // labio-lingual extent at 85 % of the crown's height
        for (const VxPoint& p : crown) {
            if (std::fabs((p.z() - low) / height - 0.85) < 0.04) {
                thickHigh = std::max(thickHigh, std::fabs(p.y()));
            }
        }
        EXPECT_LT(thickHigh, 0.9 * std::fabs(contour.y()));
        if (position <= 2) {
            // Both incisal corners fall away from the edge.
            double corner[2] = {-1e9, -1e9};
            for (const VxPoint& p : crown) {
                if (std::fabs(p.x()) > 0.85 * wide) {
                    double& c = corner[p.x() > 0.0 ? 1 : 0];
                    c = std::max(c, p.z());
                }
            }
            EXPECT_GT(top.z() - corner[0], 0.35);
            EXPECT_GT(top.z() - corner[1], 0.35);
            EXPECT_GT(2.0 * top.z() - corner[0] - corner[1], 1.0);
        }
        if (position >= 4) {
            // Blunt: nothing within 1 mm of the highest cusp tip lies 0.7 mm below it.
            for (const VxPoint& p : crown) {
                if (std::hypot(p.x() - top.x(), p.y() - top.y()) < 1.0) {
                    EXPECT_LT(top.z() - p.z(), 0.7);
                }
            }
        }
        if (position >= 6) {
            double centre = -1e9;
            for (const VxPoint& p : crown) {
                if (std::hypot(p.x(), p.y()) < 0.6) {
                    centre = std::max(centre, p.z());
                }
            }
            EXPECT_LT(centre, top.z() - 0.8);
        }
    }
}

TEST(SyntheticPatient, MolarsHaveSeveralRootsAndIncisorsOne) {
    // Count separate apices: local minima of the root's height among root
    // vertices that are their faces' lowest corner and farther than 3 mm from
    // each other.
    auto apices = [](const VxTooth& t) {
        std::vector<VxPoint> lows;
        std::vector<int> adj;
        for (int v = 0; v < t.GetVertexCount(); ++v) {
            const VxPoint p = ToLocal(t.GetFrame(), t.GetVertex(v)->GetPos());
            t.GetAdjacentFaces(v, adj, false);
            bool lowest = adj.size() > 2;
            for (int f : adj) {
                for (int k = 0; k < 3; ++k) {
                    const int o = t.GetFace(f)->GetVtxId(k);
                    lowest =
                        lowest &&
                        (o == v || ToLocal(t.GetFrame(), t.GetVertex(o)->GetPos()).z() > p.z());
                }
            }
            if (lowest && p.z() < -8.0) {
                bool far = true;
                for (const VxPoint& q : lows) {
                    far = far && q.DistanceToPoint(p) > 3.0;
                }
                if (far) {
                    lows.push_back(p);
                }
            }
        }
        return lows.size();
    };
    EXPECT_EQ(apices(*Case().FindTooth(11)), 1u);
    EXPECT_EQ(apices(*Case().FindTooth(16)), 3u);
    EXPECT_EQ(apices(*Case().FindTooth(36)), 2u);
    EXPECT_EQ(apices(*Case().FindTooth(14)), 2u);
}

TEST(SyntheticPatient, FramesAreValidAndOrthonormal) {
    auto check = [](const VxFrame& f) {
        ASSERT_TRUE(f.IsValid());
        const VxVector ax[3] = {f.DirX(), f.DirY(), f.DirZ()};
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(ax[i].Magnitude(), 1.0, 1e-9);
            EXPECT_NEAR(ax[i] % ax[(i + 1) % 3], 0.0, 1e-9);
        }
        EXPECT_NEAR((ax[0] * ax[1]) % ax[2], 1.0, 1e-9); // right-handed
    };
    for (const auto& t : Case().teeth) {
        SCOPED_TRACE(t->GetFDI());
        check(t->GetFrame());
        // Z is occlusal; Y faces the lips on the patient's left, the tongue on the
        // right.
        EXPECT_GT(t->GetFrame().DirZ().z() * (t->IsUp() ? -1.0 : 1.0), 0.9);
        const int q = t->GetFDI() / 10;
        const VxVector toCentre = VxPoint(0, -20, 0) - t->GetFrame().GetOrigin();
        const double facing = t->GetFrame().DirY() % toCentre;
        EXPECT_EQ(facing > 0.0, q == 1 || q == 3);
        const VxBBox box = t->GetBBox();
        for (int k = 0; k < 3; ++k) {
            EXPECT_GT(t->GetFrame().GetOrigin()[k], box.GetMinPnt()[k]);
            EXPECT_LT(t->GetFrame().GetOrigin()[k], box.GetMaxPnt()[k]);
        }
    }
    for (const auto& j : Case().jaws) {
        check(j->GetFrame());
        EXPECT_TRUE(IsClosedOriented(*j));
    }
}

TEST(SyntheticPatient, ArchesHaveRealisticSize) {
    const VxCase& c = Case();
    auto at = [&c](int fdi) { return c.FindTooth(fdi)->GetFrame().GetOrigin(); };
    const double width = at(16).DistanceToPoint(at(26));
    EXPECT_GT(width, 44.0);
    EXPECT_LT(width, 58.0);
    const double depth = 0.5 * (at(11).y() + at(21).y()) - 0.5 * (at(17).y() + at(27).y());
    EXPECT_GT(depth, 33.0);
    EXPECT_LT(depth, 47.0);
    // Upper crowns above lower ones, upper incisors in front of the lower.
    EXPECT_GT(at(11).z(), at(41).z() + 5.0);
    EXPECT_GT(at(11).y(), at(41).y());
}

TEST(SyntheticPatient, GumStripsBandsAndSegments) {
    const VxCase& c = Case();
    for (const auto& gum : c.gums) {
        SCOPED_TRACE(gum->IsUp());
        int covered = 0;
        for (int fam = 0; fam < 3; ++fam) {
            const auto& s = gum->GetBandStartFaces(fam);
            const auto& e = gum->GetBandEndFaces(fam);
            ASSERT_EQ(s.size(), e.size());
            ASSERT_FALSE(s.empty());
            for (size_t i = 0; i < s.size(); ++i) {
                EXPECT_GT(e[i], s[i]);
                EXPECT_EQ((e[i] - s[i]) % VxGum::kBandRowFaces, 0);
                EXPECT_LE(e[i], gum->GetFaceCount());
                covered += e[i] - s[i];
            }
        }
        EXPECT_EQ(covered, gum->GetFaceCount());
        // Each row of the labial band: 19 cells across, consecutive rows share 20
        // vertices.
        const int start = gum->GetBandStartFaces(0)[0];
        auto rowVerts = [&](int row) {
            std::set<int> v;
            for (int f = start + row * 38; f < start + (row + 1) * 38; ++f) {
                for (int k = 0; k < 3; ++k) {
                    v.insert(gum->GetFace(f)->GetVtxId(k));
                }
            }
            return v;
        };
        const std::set<int> r0 = rowVerts(3);
        const std::set<int> r1 = rowVerts(4);
        EXPECT_EQ(r0.size(), 40u);
        int shared = 0;
        for (int v : r0) {
            shared += static_cast<int>(r1.count(v));
        }
        EXPECT_EQ(shared, 20);

        const auto& first = gum->GetSegmentFirstFaces();
        ASSERT_EQ(first.size(), 13u);
        ASSERT_EQ(gum->GetSegmentEndFaces().size(), 13u);
        const std::vector<int> order = ArchOrder(gum->IsUp());
        for (size_t g = 0; g < first.size(); ++g) {
            if (g > 0) {
                EXPECT_GT(first[g], first[g - 1]);
            }
            EXPECT_GT(gum->GetSegmentEndFaces()[g], first[g]);
            // The card point lies at the gap: its two nearest teeth (at the end of
            // the plan) are the pair the gap separates.
            const VxPoint p = gum->GetVertex(gum->GetFace(first[g])->GetVtxId(1))->GetPos();
            std::vector<std::pair<double, int>> d;
            for (int fdi : order) {
                const VxTooth* t = c.FindTooth(fdi);
                const VxPoint o = MainPlacement(c, t, c.stepCount - 1)
                                      .matrix.Transform(t->GetFrame().GetOrigin());
                d.push_back({std::hypot(o.x() - p.x(), o.y() - p.y()), fdi});
            }
            std::sort(d.begin(), d.end());
            const std::set<int> pair{d[0].second, d[1].second};
            EXPECT_EQ(pair, (std::set<int>{order[g], order[g + 1]})) << "gap " << g;
        }
    }
}

// The gap editor pins its cards on the segment anchors, so each must stand on the gum margin
// in the embrasure of its two teeth: between them along the arch, at the tip of the papilla
// (no margin point nearby stands higher), above their cervical lines and outside both crowns.
TEST(SyntheticPatient, SegmentAnchorsStandOnTheMarginBetweenTheirTeeth) {
    const VxCase& c = Case();
    for (const auto& gum : c.gums) {
        SCOPED_TRACE(gum->IsUp());
        const double occ = gum->IsUp() ? -1.0 : 1.0; // towards the crowns
        const std::vector<int> order = ArchOrder(gum->IsUp());
        std::vector<VxPoint> margin;
        for (int r = 0; r < BandRows(*gum, 0); ++r) {
            margin.push_back(BandRow(*gum, 0, r)[0]);
        }
        const auto& first = gum->GetSegmentFirstFaces();
        ASSERT_EQ(first.size() + 1, order.size());
        for (size_t g = 0; g < first.size(); ++g) {
            SCOPED_TRACE(g);
            const VxPoint p = gum->GetVertex(gum->GetFace(first[g])->GetVtxId(1))->GetPos();
            const VxTooth& a = *c.FindTooth(order[g]);
            const VxTooth& b = *c.FindTooth(order[g + 1]);
            const VxPoint oa = AtEnd(c, a, a.GetFrame().GetOrigin());
            const VxPoint ob = AtEnd(c, b, b.GetFrame().GetOrigin());
            // Between the two crowns, near the line that joins them.
            const double ex = ob.x() - oa.x();
            const double ey = ob.y() - oa.y();
            const double len2 = ex * ex + ey * ey;
            const double t = ((p.x() - oa.x()) * ex + (p.y() - oa.y()) * ey) / len2;
            EXPECT_GT(t, 0.25);
            EXPECT_LT(t, 0.75);
            const double off = std::fabs((p.x() - oa.x()) * ey - (p.y() - oa.y()) * ex);
            EXPECT_LT(off / std::sqrt(len2), 3.0);
            // Occlusal of both cervical lines, apical of both crowns' centres.
            for (const VxTooth* tooth : {&a, &b}) {
                double cervix = -1e9;
                for (const VxFace& f : tooth->GetFaces()) {
                    if (f.GetFaceStyle() != FaceStyle_Crown) {
                        continue;
                    }
                    for (int k = 0; k < 3; ++k) {
                        const VxPoint q =
                            AtEnd(c, *tooth, tooth->GetVertex(f.GetVtxId(k))->GetPos());
                        cervix = std::max(cervix, -occ * q.z());
                    }
                }
                const double h = occ * p.z();
                EXPECT_GT(h, -cervix + 1.0) << tooth->GetFDI();
                EXPECT_LT(h, occ * AtEnd(c, *tooth, tooth->GetFrame().GetOrigin()).z())
                    << tooth->GetFDI();
                VxMatrix toTooth = MainPlacement(c, tooth, c.stepCount - 1).matrix;
                ASSERT_TRUE(toTooth.Inverse());
                EXPECT_FALSE(BruteInside(*tooth, toTooth.Transform(p))) << tooth->GetFDI();
            }
            // The tip of the papilla: margin points within 3 mm stand no higher.
            int near = 0;
            for (const VxPoint& m : margin) {
                if (std::hypot(m.x() - p.x(), m.y() - p.y()) < 3.0) {
                    ++near;
                    EXPECT_LE(occ * m.z(), occ * p.z() + 1e-6);
                }
            }
            EXPECT_GE(near, 3);
        }
    }
}

// What makes the gums read as gingiva: a margin that dips between the papillae, a labial
// surface that runs down along the roots to a fold at a plausible depth and then turns back
// towards the ridge, an upper gum closed over the palate and a lower one that leaves the
// tongue's space open.
TEST(SyntheticPatient, GumsFoldRoundAndCloseOverThePalate) {
    const VxCase& c = Case();
    for (const auto& gum : c.gums) {
        SCOPED_TRACE(gum->IsUp());
        const double occ = gum->IsUp() ? -1.0 : 1.0;
        const int rows = BandRows(*gum, 0);
        ASSERT_EQ(rows, BandRows(*gum, 1));
        const std::vector<int> order = ArchOrder(gum->IsUp());
        std::vector<double> middle; // margin height in the middle of each tooth, arch order
        for (int fdi : order) {
            SCOPED_TRACE(fdi);
            const VxTooth& t = *c.FindTooth(fdi);
            const VxPoint o = AtEnd(c, t, t.GetFrame().GetOrigin());
            int best = 0;
            double bestD = 1e9;
            for (int r = 0; r < rows; ++r) {
                const VxPoint m = BandRow(*gum, 0, r)[0];
                const double d = std::hypot(m.x() - o.x(), m.y() - o.y());
                if (d < bestD) {
                    bestD = d;
                    best = r;
                }
            }
            const std::vector<VxPoint> lab = BandRow(*gum, 0, best);
            middle.push_back(occ * lab[0].z());
            // The profile in the plane of the row: across (outwards) and depth (apical).
            VxVector out = lab[0] - BandRow(*gum, 1, best)[0];
            out[2] = 0.0;
            ASSERT_TRUE(out.Normalize());
            auto angle = [&](size_t i, size_t j) {
                const VxVector d = lab[j] - lab[i];
                return std::atan2(d % out, occ * -d.z()) * 180.0 / M_PI;
            };
            // The wall over the roots keeps its direction to the fold, then turns inwards.
            const double wall = angle(6, 10);
            size_t turn = 0;
            for (size_t k = 10; k + 1 < lab.size() && turn == 0; ++k) {
                if (angle(k, k + 1) < wall - 20.0) {
                    turn = k;
                }
            }
            ASSERT_GT(turn, 0u);
            const double foldDepth = occ * (lab[0].z() - lab[turn].z());
            EXPECT_GT(foldDepth, 7.0);
            EXPECT_LT(foldDepth, 13.5);
            EXPECT_LT(angle(lab.size() - 2, lab.size() - 1), wall - 40.0); // into the base
            for (size_t k = 1; k < lab.size(); ++k) {
                EXPECT_GT(occ * (lab[k - 1].z() - lab[k].z()), 0.0) << k;
            }
        }
        // Each papilla stands at least 1.5 mm above the margin in the middle of both its teeth.
        const auto& first = gum->GetSegmentFirstFaces();
        for (size_t g = 0; g < first.size(); ++g) {
            const VxPoint tip = gum->GetVertex(gum->GetFace(first[g])->GetVtxId(1))->GetPos();
            EXPECT_GT(occ * tip.z(), std::max(middle[g], middle[g + 1]) + 1.5) << g;
        }
        // The lingual band's far edge: on the midline for the upper gum, near the teeth for
        // the lower one.
        for (int r = 0; r < rows; r += 7) {
            const VxPoint m = BandRow(*gum, 1, r)[0];
            double midline = 1e9;
            double reach = 0.0;
            const int start = gum->GetBandStartFaces(1)[0] + r * VxGum::kBandRowFaces;
            for (int f = start; f < start + VxGum::kBandRowFaces; ++f) {
                for (int k = 0; k < 3; ++k) {
                    const VxPoint& p = gum->GetVertex(gum->GetFace(f)->GetVtxId(k))->GetPos();
                    midline = std::min(midline, std::fabs(p.x()));
                    reach = std::max(reach, std::hypot(p.x() - m.x(), p.y() - m.y()));
                }
            }
            if (gum->IsUp()) {
                EXPECT_LT(midline, 1e-3) << r;
            } else {
                EXPECT_LT(reach, 7.0) << r;
            }
        }
    }
}

TEST(SyntheticPatient, TreatmentStepsAreSmoothAndConsistent) {
    const VxCase& c = Case();
    ASSERT_GE(c.stepCount, 20);
    EXPECT_EQ(c.scheme.GetStepCount(), c.stepCount);
    VxScheme scheme = c.scheme;
    int limited = 0;
    for (const auto& t : c.teeth) {
        SCOPED_TRACE(t->GetFDI());
        std::vector<VxMatrix> steps;
        scheme.GetToothAllSteps(t->GetFDI(), steps);
        ASSERT_EQ(static_cast<int>(steps.size()), c.stepCount);
        EXPECT_TRUE(MainPlacement(c, t.get(), 0).matrix.IsIdentity());
        VxMatrix inv0 = steps[0];
        ASSERT_TRUE(inv0.Inverse());
        for (int k = 0; k < c.stepCount; ++k) {
            const auto& infos = c.placements.at(t.get()).at(k);
            for (const DrawInfo_s& d : infos) {
                limited += d.limited;
            }
            // The draw matrix carries the start frame onto the step's frame.
            const VxMatrix expect = steps[static_cast<size_t>(k)] * inv0;
            const VxMatrix& got = MainPlacement(c, t.get(), k).matrix;
            for (int r = 0; r < 4; ++r) {
                for (int col = 0; col < 4; ++col) {
                    ASSERT_NEAR(got[r][col], expect[r][col], 1e-9);
                }
            }
            if (k > 0) {
                const VxMatrix& a = steps[static_cast<size_t>(k - 1)];
                const VxMatrix& b = steps[static_cast<size_t>(k)];
                const double move =
                    std::hypot(a[0][3] - b[0][3], a[1][3] - b[1][3], a[2][3] - b[2][3]);
                EXPECT_LT(move, 0.3);
                EXPECT_LT(RotationDegrees(a, b), 2.0);
            }
        }
        // The frame stored with the tooth is its start placement.
        EXPECT_NEAR(steps[0][0][3], t->GetFrame().GetOrigin().x(), 1e-9);
    }
    EXPECT_GT(limited, 0);
    // The front teeth really move: some rotate by more than 8 degrees over the
    // plan.
    int turned = 0;
    for (int fdi : {11, 21, 31, 41}) {
        std::vector<VxMatrix> steps;
        scheme.GetToothAllSteps(fdi, steps);
        turned += RotationDegrees(steps.front(), steps.back()) > 8.0;
    }
    EXPECT_GE(turned, 2);
}

TEST(SyntheticPatient, CrowdedAtStartAlignedAtEnd) {
    const VxCase& c = Case();
    int contacts = 0;
    for (const VxGapInfo& g : c.gapInfos) {
        if (g.IsGap()) {
            EXPECT_LE(g.GetValue(), 3.0);
            EXPECT_GE(g.GetValue(), 0.0);
            continue;
        }
        ++contacts;
        EXPECT_GT(g.GetValue(), 0.0);
        for (int i = 0; i < 2; ++i) {
            const VxMesh* self = g.GetMesh(i);
            const VxMesh* other = g.GetMesh(1 - i);
            ASSERT_FALSE(g.GetFaces(i).empty());
            // Sampled faces have a corner inside the other tooth, by independent ray
            // parity; every vertex given depth lies inside, and the rim's corners
            // have depth 0.
            const auto& faces = g.GetFaces(i);
            for (size_t k = 0; k < faces.size(); k += std::max<size_t>(1, faces.size() / 8)) {
                const VxFace* f = self->GetFace(faces[k]);
                bool any = false;
                for (int v = 0; v < 3; ++v) {
                    const double depth = g.GetVertexDepth(i).at(f->GetVtxId(v));
                    const bool in = BruteInside(*other, self->GetVertex(f->GetVtxId(v))->GetPos());
                    if (depth > 0.0) {
                        EXPECT_TRUE(in);
                        // The depth is the distance to the other surface (brute force).
                        double best = 1e9;
                        for (const VxFace& of : other->GetFaces()) {
                            best = std::min(best, VxSyntheticCollision::PointTriangleDistance(
                                                      self->GetVertex(f->GetVtxId(v))->GetPos(),
                                                      other->GetVertex(of.GetVtxId(0))->GetPos(),
                                                      other->GetVertex(of.GetVtxId(1))->GetPos(),
                                                      other->GetVertex(of.GetVtxId(2))->GetPos()));
                        }
                        EXPECT_NEAR(depth, best, 1e-9);
                    }
                    any = any || in;
                }
                EXPECT_TRUE(any);
            }
        }
    }
    EXPECT_GE(contacts, 3);

    // At the last step neighbours stand apart and no upper tooth meets a lower
    // one.
    const int last = c.stepCount - 1;
    for (bool upper : {true, false}) {
        const std::vector<int> order = ArchOrder(upper);
        for (size_t i = 0; i + 1 < order.size(); ++i) {
            VxTooth* a = c.FindTooth(order[i]);
            VxTooth* b = c.FindTooth(order[i + 1]);
            const VxMatrix ma = MainPlacement(c, a, last).matrix;
            const VxMatrix mb = MainPlacement(c, b, last).matrix;
            VxGapInfo g;
            ASSERT_TRUE(VxSyntheticCollision::Measure(a, ma, b, mb, 3.0, g));
            EXPECT_TRUE(g.IsGap()) << order[i] << "-" << order[i + 1];
            EXPECT_LT(g.GetValue(), 1.0);
            // Independent spot check: crown vertices of a near b are not inside b.
            VxMatrix toB = mb;
            ASSERT_TRUE(toB.Inverse());
            toB = toB * ma;
            const VxBBox bb = b->GetBBox();
            int checked = 0;
            for (int v = 0; v < a->GetVertexCount() && checked < 40; v += 5) {
                const VxPoint p = toB.Transform(a->GetVertex(v)->GetPos());
                bool inBox = true;
                for (int k = 0; k < 3; ++k) {
                    inBox = inBox && p[k] > bb.GetMinPnt()[k] && p[k] < bb.GetMaxPnt()[k];
                }
                if (inBox) {
                    ++checked;
                    EXPECT_FALSE(BruteInside(*b, p));
                }
            }
        }
    }
    for (int ua : ArchOrder(true)) {
        for (int lb : ArchOrder(false)) {
            VxTooth* a = c.FindTooth(ua);
            VxTooth* b = c.FindTooth(lb);
            VxGapInfo g;
            const bool met = VxSyntheticCollision::Measure(
                a, MainPlacement(c, a, last).matrix, b, MainPlacement(c, b, last).matrix, 0.0, g);
            EXPECT_FALSE(met && !g.IsGap()) << ua << " meets " << lb;
        }
    }
}

TEST(SyntheticPatient, PointTriangleDistanceMatchesSampling) {
    const VxPoint a(0, 0, 0), b(3, 0.5, 0), c(1, 2.5, 0.7);
    const VxPoint probes[] = {{1, 1, 2}, {-1, -1, 0}, {4, 1, -1}, {1.2, 0.9, 0.1}, {0, 5, 0}};
    for (const VxPoint& p : probes) {
        double best = 1e9;
        for (int i = 0; i <= 400; ++i) {
            for (int j = 0; i + j <= 400; ++j) {
                const double u = i / 400.0;
                const double v = j / 400.0;
                const VxPoint q = a + (b - a) * u + (c - a) * v;
                best = std::min(best, p.DistanceToPoint(q));
            }
        }
        const double d = VxSyntheticCollision::PointTriangleDistance(p, a, b, c);
        EXPECT_LE(d, best + 1e-12);
        EXPECT_GT(d, best - 0.02);
    }
}

// One generation serves both: another seed must give another case, and the options must take.
TEST(SyntheticPatient, SameSeedSameCaseOtherSeedAndOptionsOtherCase) {
    VxSyntheticPatient::Options o;
    o.collisions = false;
    o.images = false;
    const auto a = VxSyntheticPatient::Generate(7, o);
    const auto b = VxSyntheticPatient::Generate(7, o);
    o.skull = true;
    o.steps = 21;
    const auto d = VxSyntheticPatient::Generate(8, o);
    bool differs = false;
    for (size_t i = 0; i < a->teeth.size(); ++i) {
        const auto& va = a->teeth[i]->GetVertices();
        const auto& vb = b->teeth[i]->GetVertices();
        const auto& vd = d->teeth[i]->GetVertices();
        ASSERT_EQ(va.size(), vb.size());
        for (size_t k = 0; k < va.size(); ++k) {
            ASSERT_EQ(va[k].GetPos(), vb[k].GetPos());
            differs = differs || k >= vd.size() || va[k].GetPos() != vd[k].GetPos();
        }
        EXPECT_EQ(MainPlacement(*a, a->teeth[i].get(), a->stepCount - 1).matrix,
                  MainPlacement(*b, b->teeth[i].get(), b->stepCount - 1).matrix);
    }
    for (size_t g = 0; g < 2; ++g) {
        ASSERT_EQ(a->gums[g]->GetVertexCount(), b->gums[g]->GetVertexCount());
        for (int k = 0; k < a->gums[g]->GetVertexCount(); ++k) {
            ASSERT_EQ(a->gums[g]->GetVertex(k)->GetPos(), b->gums[g]->GetVertex(k)->GetPos());
        }
    }
    EXPECT_TRUE(differs);
    // The gums are shaped from each seed's teeth and draws as well.
    bool gumDiffers = false;
    const int shared = std::min(a->gums[0]->GetVertexCount(), d->gums[0]->GetVertexCount());
    for (int k = 0; k < shared && !gumDiffers; ++k) {
        gumDiffers = a->gums[0]->GetVertex(k)->GetPos() != d->gums[0]->GetVertex(k)->GetPos();
    }
    EXPECT_TRUE(gumDiffers);
    EXPECT_EQ(a->skull, nullptr);
    ASSERT_NE(d->skull, nullptr);
    EXPECT_TRUE(IsClosedOriented(*d->skull));
    EXPECT_EQ(d->stepCount, 21);
    EXPECT_EQ(d->scheme.GetStepCount(), 21);
    EXPECT_TRUE(d->gapInfos.empty());
    EXPECT_EQ(d->patientInfo.GetPanoramicImg(), nullptr);
}

TEST(SyntheticPatient, AttachmentsIprAndWedges) {
    const VxCase& c = Case();
    ASSERT_GE(c.stdAttachments.size(), 3u);
    bool sk = false;
    for (const auto& s : c.stdAttachments) {
        sk = sk || s->GetAttachIdentifier().Find(L"SK", 0) >= 0;
        EXPECT_TRUE(IsClosedOriented(*s));
    }
    EXPECT_TRUE(sk);
    ASSERT_GE(c.attachments.size(), 8u);
    std::set<const VxStdAttach*> used;
    for (const auto& a : c.attachments) {
        ASSERT_NE(a->GetTooth(), nullptr);
        used.insert(a->GetStdAttachment());
        ASSERT_FALSE(a->AttachParts().empty());
        EXPECT_LE(a->GetStartStep(), a->GetEndStep());
        EXPECT_LT(a->GetEndStep(), c.stepCount);
        // The attachment stands on its tooth's facial surface at the start.
        const VxPoint o = a->GetCurFrame().GetOrigin();
        const VxTooth& t = *a->GetTooth();
        double best = 1e9;
        for (const VxVertex& v : t.GetVertices()) {
            best = std::min(best, v.GetPos().DistanceToPoint(o));
        }
        EXPECT_LT(best, 0.8);
        EXPECT_EQ(c.placements.at(a.get()).size(), static_cast<size_t>(c.stepCount));
    }
    EXPECT_GE(used.size(), 3u);

    const auto& iprs = c.scheme.GetIPRInfo();
    ASSERT_GE(iprs.size(), 4u);
    for (const VxIPR& r : iprs) {
        const double tenths = r.GetValue() * 10.0;
        EXPECT_NEAR(tenths, std::round(tenths), 1e-9);
        EXPECT_GT(r.GetValue(), 0.0);
        EXPECT_LT(r.GetStep(), c.stepCount);
        const int fa = r.GetFirstTooth()->GetFDI();
        const int fb = r.GetSecondTooth()->GetFDI();
        EXPECT_EQ(std::abs(VxFDI(fa).GetCmpIndex() - VxFDI(fb).GetCmpIndex()), 1);
        // The gap position lies between the two teeth at that step.
        const VxPoint oa = MainPlacement(c, r.GetFirstTooth(), r.GetStep())
                               .matrix.Transform(r.GetFirstTooth()->GetFrame().GetOrigin());
        const VxPoint ob = MainPlacement(c, r.GetSecondTooth(), r.GetStep())
                               .matrix.Transform(r.GetSecondTooth()->GetFrame().GetOrigin());
        EXPECT_LT(r.GetGapPos().DistanceToPoint(VxPoint::Lerp(oa, ob, 0.5)), 4.0);
    }
    bool two = false;
    bool tri = false;
    for (const auto& w : c.wedges) {
        two = two || dynamic_cast<const VxFilledWedgeTwoTooth*>(w.get()) != nullptr;
        tri = tri || dynamic_cast<const VxFilledWedgeTriTooth*>(w.get()) != nullptr;
        EXPECT_TRUE(IsClosedOriented(*w));
        ASSERT_NE(w->GetToothLeft(), nullptr);
    }
    EXPECT_TRUE(two && tri);
}

TEST(SyntheticPatient, ReferenceData) {
    const VxCase& c = Case();
    ASSERT_NE(c.scheme.GetUpArch(), nullptr);
    ASSERT_NE(c.scheme.GetLowArch(), nullptr);
    EXPECT_NE(c.scheme.GetUpArch()->GetCurve(), nullptr);
    ASSERT_NE(c.scheme.GetUpOccPlane(), nullptr);
    ASSERT_NE(c.scheme.GetLowOccPlane(), nullptr);
    // The occlusal planes lie flat, facing each other.
    EXPECT_LT(c.scheme.GetUpOccPlane()->GetPlaneFrame().DirZ().z(), -0.95);
    EXPECT_GT(c.scheme.GetLowOccPlane()->GetPlaneFrame().DirZ().z(), 0.95);
    for (const auto* ref : {&c.upperJawRef, &c.lowerJawRef}) {
        ASSERT_TRUE(ref->has_value());
        VxFrame f;
        double len = 0.0;
        EXPECT_TRUE((*ref)->GetMiddlePlane(f, len));
        EXPECT_GT(len, 0.0);
        EXPECT_TRUE((*ref)->GetBackBoundaryPlane(f, len));
        std::vector<VxPoint> pts;
        EXPECT_TRUE((*ref)->GetBackBoundaryPlanePts(pts));
        EXPECT_GE(pts.size(), 4u);
        ASSERT_NE((*ref)->GetBeautyPlane(), nullptr);
    }
    ASSERT_EQ(c.toothRefs.size(), 28u);
    for (const VxToothRef& r : c.toothRefs) {
        SCOPED_TRACE(r.GetFDI());
        const VxTooth* t = c.FindTooth(r.GetFDI());
        ASSERT_NE(t, nullptr);
        ASSERT_NE(r.GetFacc().GetCurve(), nullptr);
        ASSERT_NE(r.GetFacc().GetToothCurve(), nullptr);
        ASSERT_NE(r.GetMidCurve().GetCurve(), nullptr);
        EXPECT_FALSE(r.GetFeaturePoint().empty());
        const VxVertex* begin = t->GetVertices().data();
        std::vector<const VxVertex*> landmarks(r.GetFacc().GetAllRefVtx().begin(),
                                               r.GetFacc().GetAllRefVtx().end());
        for (const VxFeaturePoint& fp : r.GetFeaturePoint()) {
            landmarks.push_back(fp.GetVtx());
        }
        for (const VxVertex* v : landmarks) {
            EXPECT_TRUE(v >= begin && v < begin + t->GetVertexCount()); // on this tooth
        }
        // The Facc curve runs on the facial side of the crown, above the cervix.
        VxPoint mid;
        double tm = 0.0;
        ASSERT_TRUE(r.GetFacc().GetCurve()->GetMiddlePoint(mid, tm));
        const VxPoint local = ToLocal(t->GetFrame(), mid);
        const int q = r.GetFDI() / 10;
        EXPECT_GT(local.y() * ((q == 1 || q == 3) ? -1.0 : 1.0), 1.5);
        EXPECT_GE(r.GetMidCurve().GetMidVtxId(), 0);
        EXPECT_EQ(c.movementDiffs.count(r.GetFDI()), 1u);
    }
}

TEST(SyntheticPatient, PicturesAndMeasures) {
    const VxCase& c = Case();
    const CImage* imgs[4] = {c.patientInfo.GetCephalometricImg(), c.patientInfo.GetPanoramicImg(),
                             c.patientInfo.GetFrontalSmileImg(), c.patientInfo.GetProfileImg()};
    for (const CImage* img : imgs) {
        ASSERT_NE(img, nullptr);
        EXPECT_GE(img->GetWidth(), 200);
        EXPECT_LE(img->GetWidth(), 800);
        std::set<COLORREF> colours;
        for (int y = 0; y < img->GetHeight(); y += 7) {
            for (int x = 0; x < img->GetWidth(); x += 7) {
                colours.insert(img->GetPixel(x, y));
            }
        }
        EXPECT_GE(colours.size(), 4u); // flat photographs have few colours; X-rays many
    }
    CephalometricPt pt;
    for (MEASURE_POINT id :
         {MEASURE_POINT_RefLineStart, MEASURE_POINT_RefLineEnd, MEASURE_POINT_KeyPoint}) {
        EXPECT_TRUE(c.cepMeasure.GetMeasurePt(id, pt));
    }
    EXPECT_TRUE(c.panMeasure.HasData());
    EXPECT_NE(c.panMeasure.GetBrightPos(), 0);
    EXPECT_NE(c.cepMeasure.GetContrastPos(), 0);
}
