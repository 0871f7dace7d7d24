// VxSyntheticReference: the reference data of the synthetic patient, computed
// from its teeth. Plan references (arch lines through the crown centres,
// occlusal planes fitted to the cusp tips) are taken at the final step, the
// arrangement the plan aims at. Landmarks tied to mesh vertices (Facc and
// middle curves, feature points, the beauty and boundary planes of the jaw
// references) are in the meshes' own coordinates, which are model space at step
// 0; a tooth's Facc curve and its tooth curve are therefore the same. Movement
// limits are clinical rules of thumb, the same for every tooth. Nothing here is
// measured again when the plan changes.
#include "VxSyntheticParts.h"

#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxTreatStep.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

// A square plane of side `length` centred on `centre`: origin at a corner, Z
// the normal.
VxFrame SquareFrame(const VxPoint& centre, const VxVector& normal, const VxVector& xHint,
                    double length) {
    VxVector z = normal;
    z.Normalize();
    VxVector x = xHint - z * (xHint % z);
    x.Normalize();
    const VxVector y = z * x;
    return VxFrame(centre - x * (0.5 * length) - y * (0.5 * length), x, y);
}

// Least-squares plane z = a x + b y + c through the points; its upward unit
// normal.
VxVector FitNormal(const std::vector<VxPoint>& pts, VxPoint& centroid) {
    double sx = 0, sy = 0, sz = 0, sxx = 0, sxy = 0, syy = 0, sxz = 0, syz = 0;
    const double n = static_cast<double>(pts.size());
    for (const VxPoint& p : pts) {
        sx += p.x();
        sy += p.y();
        sz += p.z();
    }
    centroid = VxPoint(sx / n, sy / n, sz / n);
    for (const VxPoint& p : pts) {
        const double x = p.x() - centroid.x();
        const double y = p.y() - centroid.y();
        const double z = p.z() - centroid.z();
        sxx += x * x;
        sxy += x * y;
        syy += y * y;
        sxz += x * z;
        syz += y * z;
    }
    const double det = sxx * syy - sxy * sxy;
    double a = 0.0;
    double b = 0.0;
    if (std::fabs(det) > 1e-12) {
        a = (sxz * syy - syz * sxy) / det;
        b = (syz * sxx - sxz * sxy) / det;
    }
    VxVector nrm(-a, -b, 1.0);
    nrm.Normalize();
    return nrm;
}

VxBSplineCurve CurveThrough(const std::vector<VxPoint>& pts) {
    std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(pts, false));
    return c ? *c : VxBSplineCurve();
}

} // namespace

namespace vx_synthetic {

void BuildReferences(VxSynthContext& ctx) {
    VxCase& c = ctx.out;
    const int last = ctx.steps - 1;

    for (int jaw = 0; jaw < 2; ++jaw) {
        const bool upper = jaw == 0;
        std::vector<VxPoint> centres;
        std::vector<VxPoint> tips;
        for (int idx : ctx.arch[jaw]) {
            const VxSynthToothInfo& t = ctx.teeth[static_cast<size_t>(idx)];
            centres.push_back(t.poses.back().o);
            for (int v : t.geometry.cuspTips) {
                tips.push_back(ctx.VertexAt(t, v, last));
            }
        }
        VxPoint centroid;
        const VxVector up = FitNormal(tips, centroid);
        const VxOcclusalPlane occ(SquareFrame(centroid, upper ? -up : up, VxVector(1, 0, 0), 70.0),
                                  70.0);
        if (upper) {
            c.scheme.SetUpArch(VxArchForm(centres));
            c.scheme.SetUpOccPlane(occ);
        } else {
            c.scheme.SetLowArch(VxArchForm(centres));
            c.scheme.SetLowOccPlane(occ);
        }

        // Jaw references, on the meshes as they stand.
        VxJawRef ref(upper);
        const int front[4] = {upper ? 13 : 43, upper ? 11 : 41, upper ? 21 : 31, upper ? 23 : 33};
        std::vector<VxPoint> beauty;
        double yFront = -1e9;
        double zSum = 0.0;
        for (int fdi : front) {
            const VxSynthToothInfo* t = ctx.Find(fdi);
            const VxPoint p = t->tooth->GetVertex(t->geometry.facialCentre)->GetPos();
            beauty.push_back(p);
            yFront = std::max(yFront, p.y());
            zSum += p.z();
        }
        const double zMid = zSum / 4.0;
        ref.SetBeautyPlane(VxBeautyPlane(
            SquareFrame(VxPoint(0.0, yFront, zMid), VxVector(0, 1, 0), VxVector(1, 0, 0), 50.0),
            50.0, beauty));
        double yMean = 0.0;
        for (const VxPoint& p : centres) {
            yMean += p.y();
        }
        yMean /= static_cast<double>(centres.size());
        ref.SetMiddlePlane(
            SquareFrame(VxPoint(0.0, yMean, zMid), VxVector(1, 0, 0), VxVector(0, 1, 0), 60.0),
            60.0);
        const VxSynthToothInfo& rightEnd = ctx.teeth[static_cast<size_t>(ctx.arch[jaw].front())];
        const VxSynthToothInfo& leftEnd = ctx.teeth[static_cast<size_t>(ctx.arch[jaw].back())];
        double yBack = 1e9;
        for (const VxSynthToothInfo* t : {&rightEnd, &leftEnd}) {
            yBack = std::min(yBack, t->tooth->GetBBox().GetMinPnt().y());
        }
        yBack -= 0.5;
        ref.SetBackBoundaryPlane(
            SquareFrame(VxPoint(0.0, yBack, zMid), VxVector(0, -1, 0), VxVector(1, 0, 0), 70.0),
            70.0);
        const double xr = rightEnd.poses.front().o.x();
        const double xl = leftEnd.poses.front().o.x();
        ref.SetBackBoundaryPlanePts({VxPoint(xr, yBack, zMid + 5.0), VxPoint(xr, yBack, zMid - 5.0),
                                     VxPoint(xl, yBack, zMid + 5.0),
                                     VxPoint(xl, yBack, zMid - 5.0)});
        if (upper) {
            c.upperJawRef = ref;
        } else {
            c.lowerJawRef = ref;
        }
    }

    for (const VxSynthToothInfo& t : ctx.teeth) {
        VxTooth* tooth = t.tooth;
        VxToothRef ref(t.design.fdi, tooth->GetToothKind(), tooth->GetParent());
        const VxToothGeometry& g = t.geometry;
        std::vector<VxPoint> pts;
        std::vector<VxVertex*> vtx;
        for (size_t i = 0; i < g.facialAxis.size(); i += 3) {
            vtx.push_back(tooth->GetVertex(g.facialAxis[i]));
        }
        if ((g.facialAxis.size() - 1) % 3 != 0) {
            vtx.push_back(tooth->GetVertex(g.facialAxis.back()));
        }
        // The Facc curve runs from the incisal edge towards the gum: the tooth number's card reads
        // up along it.
        std::reverse(vtx.begin(), vtx.end());
        for (VxVertex* v : vtx) {
            pts.push_back(v->GetPos());
        }
        VxFacc facc;
        const VxBSplineCurve fc = CurveThrough(pts);
        facc.SetCurve(fc);
        facc.SetToothCurve(fc);
        facc.SetAllRefVtx(vtx);
        ref.SetFacc(facc);

        pts.clear();
        vtx.clear();
        for (int id : g.midRidge) {
            vtx.push_back(tooth->GetVertex(id));
            pts.push_back(vtx.back()->GetPos());
        }
        VxMidCurve mid;
        mid.SetCurve(CurveThrough(pts));
        mid.SetAllRefVtx(vtx);
        mid.SetMidVtxId(g.midVertex);
        ref.SetMidCurve(mid);

        int kind = 1;
        for (int id : g.cuspTips) {
            ref.AddFeaturePoint(VxFeaturePoint(kind++, tooth->GetVertex(id)));
        }
        ref.AddFeaturePoint(VxFeaturePoint(10, tooth->GetVertex(g.mesialContact)));
        ref.AddFeaturePoint(VxFeaturePoint(11, tooth->GetVertex(g.distalContact)));
        c.toothRefs.push_back(ref);

        // Limits: below the minimum a movement does not count; past the maximum it
        // is flagged.
        ThreeMovementDiff_s lim;
        lim.moveXMin = lim.moveYMin = lim.moveZMin = 0.2;
        lim.rotateXMin = lim.rotateYMin = lim.rotateZMin = 1.0;
        lim.moveXMax = lim.moveYMax = 2.0;
        lim.moveZMax = 1.0;
        lim.rotateXMax = lim.rotateYMax = 8.0;
        lim.rotateZMax = 18.0;
        c.movementDiffs[t.design.fdi] = lim;
    }
}

} // namespace vx_synthetic
