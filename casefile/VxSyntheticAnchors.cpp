// VxSyntheticAnchors: the candidate attachment points of each synthetic tooth. On each side of
// the crown (lip and tongue) a 5 x 5 grid of crown vertices around the facial centre and its
// lingual mirror, picked in the tooth's design space (u mesial, v facial, w occlusal) so that
// every point lies on the crown surface. The facial-axis (FA) points are the middles of the two
// grids; the centre columns are the lip and tongue centre grids.
#include "VxSyntheticParts.h"

#include <limits>

namespace {

constexpr int kSide = 5; // points a row and a column
constexpr int kMiddle = (kSide * kSide) / 2;

// The crown vertex nearest to the target (design space) on the lip side (facial true) or the
// tongue side; -1 when the crown has none there.
int NearestCrownVertex(const VxToothGeometry& g, const VxPoint& target, bool facial) {
    int best = -1;
    double bestD = std::numeric_limits<double>::max();
    for (int i = 0; i < static_cast<int>(g.positions.size()); ++i) {
        const VxPoint& p = g.positions[static_cast<size_t>(i)];
        if (p.z() <= g.cervixW || (facial ? p.y() <= 0.0 : p.y() >= 0.0)) {
            continue;
        }
        const double d = (p - target).SquareMagnitude();
        if (d < bestD) {
            bestD = d;
            best = i;
        }
    }
    return best;
}

} // namespace

namespace vx_synthetic {

void BuildAnchorGrids(VxSynthContext& ctx) {
    for (const VxSynthToothInfo& t : ctx.teeth) {
        const VxToothGeometry& g = t.geometry;
        if (g.facialCentre < 0) {
            continue;
        }
        const VxPoint centre = g.positions[static_cast<size_t>(g.facialCentre)];
        const double du = 0.12 * t.design.width;
        const double dw = 0.09 * t.design.crownHeight;
        std::vector<VxPoint> sides[2]; // [0] lip, [1] tongue
        std::vector<VxPoint> middles[2];
        for (int s = 0; s < 2; ++s) {
            const double v = s == 0 ? centre.y() : -centre.y();
            for (int r = 0; r < kSide; ++r) {
                for (int c = 0; c < kSide; ++c) {
                    const VxPoint target(centre.x() + (c - kSide / 2) * du, v,
                                         centre.z() + (kSide / 2 - r) * dw);
                    const int id = NearestCrownVertex(g, target, s == 0);
                    const VxPoint p = id >= 0 ? t.tooth->GetVertex(id)->GetPos() : VxPoint();
                    sides[s].push_back(p);
                    if (c == kSide / 2) {
                        middles[s].push_back(p);
                    }
                }
            }
        }
        VxAttachAnchorGrid grid;
        std::vector<VxPoint> all = sides[0];
        all.insert(all.end(), sides[1].begin(), sides[1].end());
        grid.SetGridPoints(all);
        grid.SetFAIndices(kMiddle, kSide * kSide + kMiddle);
        grid.SetSide(t.design.fdi, 0, kMiddle, sides[0]);
        grid.SetSide(t.design.fdi, 1, kMiddle, sides[1]);
        grid.SetCenterLipsGrids(middles[0]);
        grid.SetCenterTongueGrids(middles[1]);
        ctx.out.anchorGrids[t.design.fdi] = grid;
    }
}

} // namespace vx_synthetic
