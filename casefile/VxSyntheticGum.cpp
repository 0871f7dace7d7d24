// VxSyntheticGum: gums, jaws and skull of the synthetic patient.
//
// A gum is three strips along its arch, from the patient's right end to the
// left end: the labial band (family 0), the lingual band (family 1) and the
// base band underneath that joins them (family 2); family 3 stays empty. Each
// strip is a run of rows of 38 faces: 19 cells of two triangles across, from
// the tooth line (column 0) down to the base. Strips share their base columns,
// so the gum is one connected open surface. Rows break exactly at the gaps
// between the final positions of neighbouring teeth; the segment of gap g
// starts at the labial row that begins there, and its first face has the
// tooth-line vertex of the gap as second corner, where the gap editor pins its
// card. Segment and band ends are exclusive (one past the last face).
//
// Across a row the labial surface starts at the scalloped margin, which arcs
// from the middle of each crown up to a papilla at every gap, runs down over
// the roots (leaning with them and bulging over each, most at the canines) to
// the mucosal fold some 8-11 mm below the margin, and then turns back towards
// the ridge round into the base. The lower lingual surface does the same and
// leaves the tongue's space open; the upper one climbs into the palate's vault
// and meets its other half on the midline. Behind the last teeth the rows draw
// together into a rounded pad. The jaw is a low closed plinth under the gum's
// base; the skull a coarse closed shell above. Nothing here follows the teeth
// through the steps: gums and jaws stay where they are.
#include "VxSyntheticParts.h"
#include "VxSyntheticRandom.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kRowsPerTooth = 10;
constexpr int kCells = 19;          // cells across a band
constexpr double kBandDepth = 14.0; // the base; the longest roots end in the jaw beneath it
constexpr double kFoldRadius =
    4.0; // how far the surface runs back towards the ridge below the fold
constexpr double kFoldShare = 0.68; // share of a band's columns above the fold
constexpr double kEndRun = 4.0;     // the gum closes over this run behind the last tooth

double Clamp01(double x) {
    return x < 0.0 ? 0.0 : (x > 1.0 ? 1.0 : x);
}

double Smooth(double x) {
    x = Clamp01(x);
    return x * x * (3.0 - 2.0 * x);
}

// Root prominence across the depth: none at the margin, full over the middle of
// the root, half of it left where the mucosa folds.
double BulgeProfile(double depth) {
    return Smooth(depth / 3.5) * (1.0 - 0.5 * Smooth((depth - 5.0) / 6.0));
}

// A gum row's cross-section is found from the cervix line at s: where the margin
// stands, how the roots lean and bulge there, and how far the papilla rises.
struct RowData {
    VxPoint line;       // cervix line point (z: the margin away from papillae)
    VxVector outward;   // horizontal, away from the arch's inside
    double half = 0.0;  // half thickness of the teeth at the cervix
    double tilt = 0.0;  // outward drift of the roots per millimetre of depth
    double rise = 0.0;  // margin rise towards occlusal at a papilla, mm
    double pull = 0.0;  // 0 .. 1: closeness to a papilla tip
    double close = 0.0; // 0 .. 1 behind the last tooth: how far the row has closed
    double labialBulge = 0.0;
    double lingualBulge = 0.0;
};

// Per-jaw data along the arch, interpolated between the final tooth positions.
class ArchProfile {
public:
    ArchProfile(const VxSynthContext& ctx, int jaw, VxSyntheticRandom& rng)
        : m_arch(jaw == 0 ? VxSyntheticArch::Upper() : VxSyntheticArch::Lower()),
          m_occ(jaw == 0 ? -1.0 : 1.0), m_palate(jaw == 0) {
        for (int idx : ctx.arch[jaw]) {
            const VxSynthToothInfo& t = ctx.teeth[static_cast<size_t>(idx)];
            const VxToothPose& fin = t.poses.back();
            const VxPoint cervix = fin.o + fin.z * t.geometry.cervixW;
            const VxPoint a = m_arch.At(t.s);
            const VxVector n = m_arch.Outward(t.s);
            Tooth d;
            d.s = t.s;
            d.width = t.design.width;
            d.dx = cervix.x() - a.x();
            d.dy = cervix.y() - a.y();
            d.z = cervix.z() + m_occ * 0.5; // the gum covers the crown's last 0.5 mm
            d.half = 0.5 * t.design.thickness * t.design.bCervix;
            // The root runs along -z of the pose; its lean per millimetre of depth.
            const VxVector root = -fin.z;
            const double down = std::max(0.5, std::fabs(root.z()));
            d.tilt = std::max(-0.5, std::min(0.5, (root % n) / down));
            const VxToothClass c = t.design.toothClass;
            d.molar = c == VxToothClass::FirstMolar || c == VxToothClass::SecondMolar;
            const bool canine = c == VxToothClass::Canine;
            const bool front =
                canine || c == VxToothClass::CentralIncisor || c == VxToothClass::LateralIncisor;
            d.papilla = front ? 3.4 : (d.molar ? 2.3 : 2.8);
            const double jitter = 1.0 + rng.Uniform(-0.15, 0.15);
            d.labial = jitter * (canine ? 0.8 : 0.28);
            d.lingual = jitter * (d.molar && m_palate ? 0.35 : 0.2);
            m_teeth.push_back(d);
        }
        // Arch order runs from s > 0 (right) to s < 0 (left).
        for (size_t i = 0; i + 1 < m_teeth.size(); ++i) {
            const double a = m_teeth[i].s - 0.5 * m_teeth[i].width;
            const double b = m_teeth[i + 1].s + 0.5 * m_teeth[i + 1].width;
            m_gaps.push_back(0.5 * (a + b));
        }
        m_start = m_teeth.front().s + 0.5 * m_teeth.front().width + kEndRun;
        m_end = m_teeth.back().s - 0.5 * m_teeth.back().width - kEndRun;
        // Depth of the fold below the margin, and of the palate's vault.
        m_fold = 9.5 + rng.Uniform(-1.0, 1.0);
        m_vault = 11.0 + rng.Uniform(-1.0, 1.0);
        // The palate ends in a straight edge across the distal ends of the last teeth.
        m_back = std::min(Row(m_start).line.y(), Row(m_end).line.y()) - 1.0;
    }

    double Occ() const { return m_occ; }
    bool Palate() const { return m_palate; }
    const std::vector<double>& Gaps() const { return m_gaps; }
    double Start() const { return m_start; }
    double End() const { return m_end; }

    // Row boundaries: kRowsPerTooth rows a tooth, the breaks between teeth at the
    // gaps.
    std::vector<double> RowBoundaries() const {
        std::vector<double> keys;
        keys.push_back(m_start);
        keys.insert(keys.end(), m_gaps.begin(), m_gaps.end());
        keys.push_back(m_end);
        std::vector<double> rows;
        for (size_t i = 0; i + 1 < keys.size(); ++i) {
            for (int r = 0; r < kRowsPerTooth; ++r) {
                rows.push_back(keys[i] + (keys[i + 1] - keys[i]) * r / kRowsPerTooth);
            }
        }
        rows.push_back(keys.back());
        return rows;
    }

    RowData Row(double s) const {
        // Teeth i and j = i + 1 bracket s; outside the arch both are the end tooth.
        size_t i = 0;
        while (i + 1 < m_teeth.size() && m_teeth[i + 1].s >= s) {
            ++i;
        }
        size_t j = i;
        double f = 0.0;
        if (s < m_teeth.front().s && i + 1 < m_teeth.size()) {
            j = i + 1;
            f = Clamp01((m_teeth[i].s - s) / (m_teeth[i].s - m_teeth[j].s));
        }
        const Tooth& a = m_teeth[i];
        const Tooth& b = m_teeth[j];
        auto mix = [f](double x, double y) { return x + (y - x) * f; };
        RowData r;
        const VxPoint p = m_arch.At(s);
        r.outward = m_arch.Outward(s);
        r.line = VxPoint(p.x() + mix(a.dx, b.dx), p.y() + mix(a.dy, b.dy), mix(a.z, b.z));
        r.half = mix(a.half, b.half);
        const double behind = std::max(s - (m_teeth.front().s + 0.5 * m_teeth.front().width),
                                       (m_teeth.back().s - 0.5 * m_teeth.back().width) - s);
        r.close = Smooth(behind / kEndRun);
        r.tilt = mix(a.tilt, b.tilt);
        if (j != i) {
            // The margin arcs from the middle of a crown up to the papilla at the
            // gap, steepest at the tip, like the cervical line it hugs.
            const double g = m_gaps[i];
            const double x = s >= g ? (a.s - s) / (a.s - g) : (s - b.s) / (g - b.s);
            const double xc = Clamp01(x);
            r.rise = 0.5 * (a.papilla + b.papilla) * std::pow(xc, 2.5);
            r.pull = std::pow(xc, 4.0);
        }
        for (const Tooth& t : m_teeth) {
            // One prominence a root; molars show two buccal roots side by side.
            const double lobes = t.molar ? 2.0 : 1.0;
            for (int k = 0; k < static_cast<int>(lobes); ++k) {
                const double c = t.molar ? t.s + (k == 0 ? 0.22 : -0.22) * t.width : t.s;
                const double sig = (t.molar ? 0.3 : 0.5) * t.width;
                const double e = std::exp(-(s - c) * (s - c) / (sig * sig));
                r.labialBulge += t.labial * e;
                r.lingualBulge += t.lingual * e;
            }
        }
        return r;
    }

    // Labial (side +1) or lingual (side -1) surface at column parameter u: down
    // from the margin over the roots to the fold, then back towards the ridge
    // round into the base. Offsets are outward from the cervix line, depths
    // towards the roots below the margin away from papillae.
    void Side(const RowData& r, double side, double u, double& o, double& depth) const {
        const double fold = side > 0.0 ? m_fold : m_fold - 1.0;
        const double bulge = side > 0.0 ? r.labialBulge : r.lingualBulge;
        const double margin = r.half + 0.25 - 0.5 * r.half * r.pull;
        auto wall = [&](double d) {
            // The free gingiva thickens quickly away from its edge.
            const double thick = 1.1 * (1.0 - std::exp(-(d + r.rise) / 1.8));
            return r.tilt * d + side * (margin + thick + bulge * BulgeProfile(d));
        };
        if (u <= kFoldShare) {
            depth = -r.rise + (fold + r.rise) * (u / kFoldShare);
            o = wall(depth);
            return;
        }
        const double phi = 0.5 * kPi * (u - kFoldShare) / (1.0 - kFoldShare);
        const double ov = wall(fold);
        o = ov - side * kFoldRadius * (1.0 - std::cos(phi));
        depth = fold + (kBandDepth - fold) * std::sin(phi);
    }

    // Behind the last tooth both sides of a row draw together onto the ridge and
    // sink towards the base, so that the gum ends in a rounded pad instead of an
    // open cut.
    // The palate keeps its midline edge: there only the ridge end draws in (`keep`
    // is the share of the row kept open).
    VxPoint Closed(const RowData& r, const VxPoint& p, double depth, double keep = 0.0) const {
        if (r.close <= 0.0) {
            return p;
        }
        const double d = depth + (kBandDepth - depth) * 0.55;
        const VxPoint q = At(r, r.tilt * d, d);
        return VxPoint::Lerp(p, q, r.close * r.close * (1.0 - keep) * (1.0 - keep));
    }

    VxPoint At(const RowData& r, double o, double depth) const {
        return VxPoint(r.line.x() + r.outward.x() * o, r.line.y() + r.outward.y() * o,
                       r.line.z() - m_occ * depth);
    }

    // The upper lingual band climbs from the margin into the palate's vault and
    // ends on the midline, behind the row's stretch of arch, so that the two
    // halves of the palate meet there and the rows never cross.
    VxPoint PalateAt(const RowData& r, double u) const {
        const double margin = -(r.half + 0.25 - 0.5 * r.half * r.pull);
        const VxPoint m = At(r, margin, -r.rise);
        const VxPoint t(0.0, std::max(r.line.y() - 6.0, m_back), r.line.z() - m_occ * m_vault);
        const double depth = -r.rise + (m_vault + r.rise) * (1.0 - std::pow(1.0 - u, 2.2));
        const double thick = 0.5 * (1.0 - std::exp(-u * 8.0)) * (1.0 - u);
        const VxPoint h = VxPoint::Lerp(m, t, u) - r.outward * thick;
        return VxPoint(h.x(), h.y(), r.line.z() - m_occ * depth);
    }

    // Outermost labial offset of a row and innermost lingual one, for the jaw.
    void Extent(RowData r, double& lab, double& ling) const {
        // A fixed allowance for the root bulges keeps the jaw's outline smooth.
        r.labialBulge = 1.0;
        r.lingualBulge = 0.5;
        lab = -1e9;
        ling = 1e9;
        for (int k = 0; k <= 16; ++k) {
            double o = 0.0;
            double d = 0.0;
            Side(r, 1.0, kFoldShare * k / 16.0, o, d);
            lab = std::max(lab, o);
            Side(r, -1.0, kFoldShare * k / 16.0, o, d);
            ling = std::min(ling, o);
        }
    }

private:
    struct Tooth {
        double s = 0.0, width = 0.0, dx = 0.0, dy = 0.0, z = 0.0, half = 0.0, tilt = 0.0;
        double papilla = 0.0, labial = 0.0, lingual = 0.0;
        bool molar = false;
    };
    VxSyntheticArch m_arch;
    double m_occ;
    bool m_palate;
    std::vector<Tooth> m_teeth;
    std::vector<double> m_gaps;
    double m_start = 0.0;
    double m_end = 0.0;
    double m_fold = 10.0;
    double m_vault = 11.0;
    double m_back = 0.0;
};

// Adds the two triangles of every cell of a band; A = (r, c), B = (r + 1, c), C
// = (r + 1, c + 1), D = (r, c + 1). The first triangle keeps A as its second
// corner in both windings. The winding is decided at the middle row (the
// midline), where `outside` is given.
void AddBand(VxMesh& mesh, const std::vector<std::vector<int>>& grid, const VxVector& outside) {
    const size_t m = grid.size() / 2;
    const VxPoint& a = mesh.GetVertex(grid[m][0])->GetPos();
    const VxPoint& b = mesh.GetVertex(grid[m + 1][0])->GetPos();
    const VxPoint& d = mesh.GetVertex(grid[m][1])->GetPos();
    const bool flip = (((a - b) * (d - b)) % outside) < 0.0;
    for (size_t r = 0; r + 1 < grid.size(); ++r) {
        for (size_t c = 0; c < static_cast<size_t>(kCells); ++c) {
            const int A = grid[r][c];
            const int B = grid[r + 1][c];
            const int C = grid[r + 1][c + 1];
            const int D = grid[r][c + 1];
            if (flip) {
                mesh.AddFace(D, A, B);
                mesh.AddFace(C, D, B);
            } else {
                mesh.AddFace(B, A, D);
                mesh.AddFace(B, D, C);
            }
        }
    }
}

void BuildGum(VxGum& gum, const ArchProfile& prof) {
    using vx_synthetic::F32;
    const std::vector<double> rows = prof.RowBoundaries();
    const double occ = prof.Occ();
    std::vector<std::vector<int>> lab(rows.size()), ling(rows.size()), base(rows.size());
    for (size_t r = 0; r < rows.size(); ++r) {
        const RowData row = prof.Row(rows[r]);
        // Columns crowd towards the margin, where the surface bends most.
        auto column = [](int c) {
            const double f = static_cast<double>(c) / kCells;
            return 0.75 * f + 0.25 * f * f;
        };
        for (int c = 0; c <= kCells; ++c) {
            double o = 0.0;
            double d = 0.0;
            prof.Side(row, 1.0, column(c), o, d);
            lab[r].push_back(gum.AddVertex(F32(prof.Closed(row, prof.At(row, o, d), d))));
        }
        for (int c = 0; c <= kCells; ++c) {
            double o = 0.0;
            double d = 0.0;
            prof.Side(row, -1.0, column(c), o, d);
            const VxPoint p = prof.Palate() ? prof.PalateAt(row, column(c)) : prof.At(row, o, d);
            const double keep = prof.Palate() ? column(c) : 0.0;
            ling[r].push_back(gum.AddVertex(F32(prof.Closed(row, p, d, keep))));
        }
        // The base joins the two bands' ends underneath, slightly domed.
        const VxPoint p0 = gum.GetVertex(lab[r].back())->GetPos();
        const VxPoint p1 = gum.GetVertex(ling[r].back())->GetPos();
        base[r].push_back(lab[r].back());
        for (int c = 1; c < kCells; ++c) {
            const double f = static_cast<double>(c) / kCells;
            const VxPoint q = VxPoint::Lerp(p0, p1, f);
            const double dome = (prof.Palate() ? 2.5 : 1.0) * std::sin(kPi * f);
            base[r].push_back(gum.AddVertex(F32(VxPoint(q.x(), q.y(), q.z() - occ * dome))));
        }
        base[r].push_back(ling[r].back());
    }
    const int rowsCount = static_cast<int>(rows.size()) - 1;
    const int bandFaces = rowsCount * VxGum::kBandRowFaces;
    const RowData mid = prof.Row(0.0);
    AddBand(gum, lab, mid.outward);
    AddBand(gum, ling, -mid.outward);
    AddBand(gum, base, VxVector(0.0, 0.0, -occ));
    gum.Finish();
    gum.SetBands(0, {0}, {bandFaces});
    gum.SetBands(1, {bandFaces}, {2 * bandFaces});
    gum.SetBands(2, {2 * bandFaces}, {3 * bandFaces});
    std::vector<int> first;
    std::vector<int> end;
    const int gaps = static_cast<int>(prof.Gaps().size());
    for (int g = 0; g < gaps; ++g) {
        first.push_back((g + 1) * kRowsPerTooth * VxGum::kBandRowFaces);
        end.push_back((g + 2) * kRowsPerTooth * VxGum::kBandRowFaces);
    }
    gum.SetSegments(first, end);
}

// A closed tube along the arch under the gum's base with capped ends: a low
// plinth a little wider than the gum, as a trimmed model stands on.
void BuildJaw(VxJaw& jaw, const ArchProfile& prof, bool upper) {
    using vx_synthetic::F32;
    const int samples = 72;
    const int ringSize = 20;
    std::vector<std::vector<int>> rings;
    VxPoint sum;
    for (int i = 0; i <= samples; ++i) {
        // The plinth stops under the pads where the gum has closed.
        const double s0 = prof.Start() - 0.5 * kEndRun;
        const double s1 = prof.End() + 0.5 * kEndRun;
        const double s = s0 + (s1 - s0) * i / samples;
        const RowData row = prof.Row(s);
        double lab = 0.0;
        double ling = 0.0;
        prof.Extent(row, lab, ling);
        const double o0 = lab + 0.6;
        const double o1 = (upper ? -(row.half + 4.0) : ling) - 0.6;
        const double oc = 0.5 * (o0 + o1);
        const double ow = 0.5 * (o0 - o1);
        const double d0 = kBandDepth - 0.6;
        const double dh = 2.9;
        std::vector<int> ring;
        for (int k = 0; k < ringSize; ++k) {
            // Rounded rectangle: superellipse of exponent 4 in (outward, depth).
            const double th = 2.0 * kPi * k / ringSize;
            const double c = std::cos(th);
            const double sn = std::sin(th);
            const double cu = std::copysign(std::sqrt(std::fabs(c)), c);
            const double cv = std::copysign(std::sqrt(std::fabs(sn)), sn);
            const VxPoint p = F32(prof.At(row, oc + ow * cu, d0 + dh + dh * cv));
            ring.push_back(jaw.AddVertex(p));
            sum = sum + VxVector(p.x(), p.y(), p.z());
        }
        rings.push_back(ring);
    }
    // Orientation: decided on the first ring so normals point away from the
    // tube's axis.
    const VxPoint& p0 = jaw.GetVertex(rings[0][0])->GetPos();
    const VxPoint& p1 = jaw.GetVertex(rings[0][1])->GetPos();
    const VxPoint& q0 = jaw.GetVertex(rings[1][0])->GetPos();
    VxPoint c0;
    for (int id : rings[0]) {
        const VxPoint& p = jaw.GetVertex(id)->GetPos();
        c0 = c0 + VxVector(p.x(), p.y(), p.z()) / ringSize;
    }
    const bool flip = (((p1 - p0) * (q0 - p0)) % (p0 - c0)) < 0.0;
    auto face = [&jaw, flip](int a, int b, int c) {
        if (flip) {
            jaw.AddFace(a, c, b);
        } else {
            jaw.AddFace(a, b, c);
        }
    };
    for (size_t r = 0; r + 1 < rings.size(); ++r) {
        for (int k = 0; k < ringSize; ++k) {
            const size_t a = static_cast<size_t>(k);
            const size_t b = static_cast<size_t>((k + 1) % ringSize);
            face(rings[r][a], rings[r][b], rings[r + 1][b]);
            face(rings[r][a], rings[r + 1][b], rings[r + 1][a]);
        }
    }
    for (int end = 0; end < 2; ++end) {
        const std::vector<int>& ring = end == 0 ? rings.front() : rings.back();
        VxPoint c;
        for (int id : ring) {
            const VxPoint& p = jaw.GetVertex(id)->GetPos();
            c = c + VxVector(p.x(), p.y(), p.z()) / ringSize;
        }
        const int centre = jaw.AddVertex(F32(c));
        for (int k = 0; k < ringSize; ++k) {
            const int a = ring[static_cast<size_t>(k)];
            const int b = ring[static_cast<size_t>((k + 1) % ringSize)];
            if (end == 0) {
                face(b, a, centre);
            } else {
                face(a, b, centre);
            }
        }
    }
    jaw.Finish();
    const double n = static_cast<double>(jaw.GetVertexCount() - 2);
    const VxPoint centre(sum.x() / n, sum.y() / n, sum.z() / n);
    // The layouts turn views by the jaw frame: X points forward (out of the screen in a front
    // view) and Z away from the teeth towards the jaw's base, so the upper jaw's Z is up and the
    // lower jaw's down; Y = Z x X then points to the patient's left on the upper jaw and to the
    // right on the lower one. With these, the side views, the front view and both occlusal views
    // of the layouts show the arches from the side a clinician expects.
    jaw.SetFrame(VxFrame(centre, VxVector(0, 1, 0), VxVector(upper ? -1 : 1, 0, 0)));
}

} // namespace

namespace vx_synthetic {

void BuildGumsAndJaws(VxSynthContext& ctx, VxSyntheticRandom& rng) {
    for (int jaw = 0; jaw < 2; ++jaw) {
        const bool upper = jaw == 0;
        const ArchProfile prof(ctx, jaw, rng);
        auto gum = std::make_unique<VxGum>(upper);
        BuildGum(*gum, prof);
        ctx.out.gums.push_back(std::move(gum));
        BuildJaw(*ctx.out.FindJaw(upper), prof, upper);
    }
}

void BuildSkull(VxSynthContext& ctx) {
    // A flattened ellipsoid over and behind the upper jaw, with a flat floor.
    auto skull = std::make_unique<VxSkull>();
    const int lon = 36;
    const int lat = 20;
    const VxPoint c(0.0, -38.0 + VxSyntheticArch::kForward, 78.0);
    const double rx = 68.0;
    const double ry = 88.0;
    const double rz = 58.0;
    const double floorZ = 34.0;
    auto at = [&](double th, double ph) {
        double z = c.z() + rz * std::cos(ph);
        z = std::max(z, floorZ);
        return F32(VxPoint(c.x() + rx * std::sin(ph) * std::cos(th),
                           c.y() + ry * std::sin(ph) * std::sin(th), z));
    };
    const int top = skull->AddVertex(F32(VxPoint(c.x(), c.y(), c.z() + rz)));
    std::vector<std::vector<int>> rings;
    for (int j = 1; j < lat; ++j) {
        std::vector<int> ring;
        for (int i = 0; i < lon; ++i) {
            ring.push_back(skull->AddVertex(at(2.0 * kPi * i / lon, kPi * j / lat)));
        }
        rings.push_back(ring);
    }
    const int bottom = skull->AddVertex(F32(VxPoint(c.x(), c.y(), floorZ)));
    for (int i = 0; i < lon; ++i) {
        const size_t a = static_cast<size_t>(i);
        const size_t b = static_cast<size_t>((i + 1) % lon);
        skull->AddFace(top, rings.front()[a], rings.front()[b]);
        for (size_t r = 0; r + 1 < rings.size(); ++r) {
            skull->AddFace(rings[r][a], rings[r + 1][a], rings[r + 1][b]);
            skull->AddFace(rings[r][a], rings[r + 1][b], rings[r][b]);
        }
        skull->AddFace(bottom, rings.back()[b], rings.back()[a]);
    }
    skull->Finish();
    ctx.out.skull = std::move(skull);
}

} // namespace vx_synthetic
