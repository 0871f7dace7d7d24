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
// card. Segment and band ends are exclusive (one past the last face). The jaw
// is a closed horseshoe under the gum's base; the skull a coarse closed shell
// above. Nothing here follows the teeth through the steps: gums and jaws stay
// where they are.
#include "VxSyntheticParts.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kRowsPerTooth = 6;
constexpr int kCells = 19;          // cells across a band
constexpr double kBandDepth = 17.0; // deeper than the longest root below the cervix

// Per-jaw data along the arch, interpolated between the final tooth positions.
class ArchProfile {
public:
    ArchProfile(const VxSynthContext& ctx, int jaw)
        : m_arch(jaw == 0 ? VxSyntheticArch::Upper() : VxSyntheticArch::Lower()),
          m_occ(jaw == 0 ? -1.0 : 1.0) {
        for (int idx : ctx.arch[jaw]) {
            const VxSynthToothInfo& t = ctx.teeth[static_cast<size_t>(idx)];
            const VxToothPose& fin = t.poses.back();
            const VxPoint cervix = fin.o + fin.z * t.geometry.cervixW;
            const VxPoint a = m_arch.At(t.s);
            m_s.push_back(t.s);
            m_dx.push_back(cervix.x() - a.x());
            m_dy.push_back(cervix.y() - a.y());
            m_z.push_back(cervix.z() + m_occ * 0.5); // the gum covers the crown's last 0.5 mm
            m_half.push_back(0.5 * t.design.thickness * t.design.bCervix);
            m_width.push_back(t.design.width);
        }
        // Arch order runs from s > 0 (right) to s < 0 (left).
        for (size_t i = 0; i + 1 < m_s.size(); ++i) {
            const double a = m_s[i] - 0.5 * m_width[i];
            const double b = m_s[i + 1] + 0.5 * m_width[i + 1];
            m_gaps.push_back(0.5 * (a + b));
        }
        m_start = m_s.front() + 0.5 * m_width.front() + 1.5;
        m_end = m_s.back() - 0.5 * m_width.back() - 1.5;
    }

    double Occ() const { return m_occ; }
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

    // Tooth-line data at s: offset of the cervix centres from the arch, half
    // thickness, height.
    void At(double s, double& dx, double& dy, double& half, double& z) const {
        size_t i = 0;
        while (i + 1 < m_s.size() && m_s[i + 1] >= s) {
            ++i;
        }
        double f = 0.0;
        size_t j = i;
        if (s < m_s.front() && i + 1 < m_s.size()) {
            j = i + 1;
            f = (m_s[i] - s) / (m_s[i] - m_s[j]);
            f = std::max(0.0, std::min(1.0, f));
        }
        dx = m_dx[i] + (m_dx[j] - m_dx[i]) * f;
        dy = m_dy[i] + (m_dy[j] - m_dy[i]) * f;
        half = m_half[i] + (m_half[j] - m_half[i]) * f;
        z = m_z[i] + (m_z[j] - m_z[i]) * f;
    }

    // Position of the band surface at s: offset `o` outwards from the cervix
    // line, `depth` towards the roots. The papillae rise between the teeth when
    // `papilla` is set.
    VxPoint Point(double s, double o, double depth, bool papilla) const {
        double dx = 0.0;
        double dy = 0.0;
        double half = 0.0;
        double z = 0.0;
        At(s, dx, dy, half, z);
        if (papilla) {
            double nearest = 1e9;
            for (double g : m_gaps) {
                nearest = std::min(nearest, std::fabs(s - g));
            }
            z += m_occ * 2.5 * std::exp(-nearest * nearest / 2.5);
        }
        const VxPoint a = m_arch.At(s);
        const VxVector n = m_arch.Outward(s);
        return VxPoint(a.x() + dx + n.x() * o, a.y() + dy + n.y() * o, z - m_occ * depth);
    }
    double Half(double s) const {
        double dx = 0.0;
        double dy = 0.0;
        double half = 0.0;
        double z = 0.0;
        At(s, dx, dy, half, z);
        return half;
    }

private:
    VxSyntheticArch m_arch;
    double m_occ;
    std::vector<double> m_s, m_dx, m_dy, m_z, m_half, m_width, m_gaps;
    double m_start = 0.0;
    double m_end = 0.0;
};

double LabialOffset(double half, double f) {
    return half + 0.25 + 2.5 * f + 1.2 * std::sin(kPi * f);
}

double LingualOffset(double half, double f) {
    return -(half + 0.25 + 2.0 * f + 1.0 * std::sin(kPi * f));
}

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
        const double s = rows[r];
        const double half = prof.Half(s);
        for (int c = 0; c <= kCells; ++c) {
            const double f = static_cast<double>(c) / kCells;
            lab[r].push_back(
                gum.AddVertex(F32(prof.Point(s, LabialOffset(half, f), kBandDepth * f, c == 0))));
        }
        for (int c = 0; c <= kCells; ++c) {
            const double f = static_cast<double>(c) / kCells;
            ling[r].push_back(
                gum.AddVertex(F32(prof.Point(s, LingualOffset(half, f), kBandDepth * f, c == 0))));
        }
        const double o0 = LabialOffset(half, 1.0);
        const double o1 = LingualOffset(half, 1.0);
        base[r].push_back(lab[r].back());
        for (int c = 1; c < kCells; ++c) {
            const double f = static_cast<double>(c) / kCells;
            base[r].push_back(gum.AddVertex(F32(
                prof.Point(s, o0 + (o1 - o0) * f, kBandDepth + 2.5 * std::sin(kPi * f), false))));
        }
        base[r].push_back(ling[r].back());
    }
    const int rowsCount = static_cast<int>(rows.size()) - 1;
    const int bandFaces = rowsCount * VxGum::kBandRowFaces;
    const VxPoint mid = prof.Point(0.0, 0.0, 0.0, false);
    const VxPoint labMid = prof.Point(0.0, 5.0, 0.0, false);
    VxVector outward = labMid - mid;
    outward.Normalize();
    AddBand(gum, lab, outward);
    AddBand(gum, ling, -outward);
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

// A closed tube along the arch under the gum's base with capped ends.
void BuildJaw(VxJaw& jaw, const ArchProfile& prof, bool upper) {
    using vx_synthetic::F32;
    const int samples = 72;
    const int ringSize = 20;
    std::vector<std::vector<int>> rings;
    VxPoint sum;
    for (int i = 0; i <= samples; ++i) {
        const double s = prof.Start() + (prof.End() - prof.Start()) * i / samples;
        const double half = prof.Half(s);
        const double o0 = LabialOffset(half, 1.0) + 0.6;
        const double o1 = LingualOffset(half, 1.0) - 0.6;
        const double oc = 0.5 * (o0 + o1);
        const double ow = 0.5 * (o0 - o1);
        const double d0 = kBandDepth - 0.5;
        const double dh = 5.0;
        std::vector<int> ring;
        for (int k = 0; k < ringSize; ++k) {
            // Rounded rectangle: superellipse of exponent 4 in (outward, depth).
            const double th = 2.0 * kPi * k / ringSize;
            const double c = std::cos(th);
            const double sn = std::sin(th);
            const double cu = std::copysign(std::sqrt(std::fabs(c)), c);
            const double cv = std::copysign(std::sqrt(std::fabs(sn)), sn);
            const VxPoint p = F32(prof.Point(s, oc + ow * cu, d0 + dh + dh * cv, false));
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

void BuildGumsAndJaws(VxSynthContext& ctx) {
    for (int jaw = 0; jaw < 2; ++jaw) {
        const bool upper = jaw == 0;
        const ArchProfile prof(ctx, jaw);
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
    const VxPoint c(0.0, -38.0, 78.0);
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
