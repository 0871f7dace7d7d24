// VxSyntheticPlan: where the synthetic teeth stand. The final layout puts every
// tooth on its arch with a small contact clearance, incisors proclined; the
// start pose crowds the front teeth (pushed together, rotated about their long
// axes, displaced in and out, tipped) and jiggles the back teeth slightly. The
// steps between ease from start to final, so every tooth moves smoothly and the
// last step is the aligned arch. It also builds the tooth meshes at the start
// pose and records placements and the scheme. It does not check for collisions:
// VxSyntheticCollision measures what comes out.
#include "VxSyntheticParts.h"

#include "VxSyntheticRandom.h"

#include <interfaces/VxTreatStep.h>

#include <cmath>

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
// Clearance between neighbouring crowns at the end of the treatment, along the
// arch (mm).
constexpr double kContactGap = 0.25;

double Ease(double t) {
    return t * t * (3.0 - 2.0 * t);
}

// Level of the crown tips at the end of the treatment: the upper incisors
// overlap the lower ones by 2 mm, back teeth keep a small occlusal clearance.
double TipZ(bool upper, int position) {
    const double z = position <= 2 ? 1.0 : (position == 3 ? 0.2 : -0.3);
    return upper ? -z : z;
}

// Labial crown inclination (tangent of the angle) by position.
double Proclination(bool upper, int position) {
    static const double kUpper[7] = {0.28, 0.22, 0.1, 0, 0, 0, 0};
    static const double kLower[7] = {0.15, 0.12, 0.05, 0, 0, 0, 0};
    // Through a pointer: the subscript of a conditional between the arrays themselves was
    // miscompiled by GCC 12 under AddressSanitizer.
    const double* table = upper ? kUpper : kLower;
    return table[position - 1];
}

VxVector Unit(const VxVector& v) {
    VxVector u = v;
    u.Normalize();
    return u;
}

} // namespace

namespace vx_synthetic {

void BuildTeethAndPlan(VxSynthContext& ctx, VxSyntheticRandom& rng) {
    VxSyntheticRandom designRng = rng.Fork(11);
    VxSyntheticRandom crowdRng = rng.Fork(12);
    VxCase& c = ctx.out;

    for (int q = 1; q <= 4; ++q) {
        for (int p = 1; p <= 7; ++p) {
            VxSynthToothInfo info;
            info.design = VxSyntheticTooth::Design(q * 10 + p, designRng);
            info.geometry = VxSyntheticTooth::Build(info.design);
            ctx.teeth.push_back(std::move(info));
        }
    }
    auto index = [&ctx](int fdi) {
        for (size_t i = 0; i < ctx.teeth.size(); ++i) {
            if (ctx.teeth[i].design.fdi == fdi) {
                return static_cast<int>(i);
            }
        }
        return -1;
    };
    for (int jaw = 0; jaw < 2; ++jaw) {
        const int right = jaw == 0 ? 1 : 4;
        const int left = jaw == 0 ? 2 : 3;
        for (int p = 7; p >= 1; --p) {
            ctx.arch[jaw].push_back(index(right * 10 + p));
        }
        for (int p = 1; p <= 7; ++p) {
            ctx.arch[jaw].push_back(index(left * 10 + p));
        }
    }

    // Final layout.
    for (int jaw = 0; jaw < 2; ++jaw) {
        const bool upper = jaw == 0;
        const VxSyntheticArch arch = upper ? VxSyntheticArch::Upper() : VxSyntheticArch::Lower();
        for (int side = 0; side < 2; ++side) {
            const int quadrant = upper ? (side == 0 ? 1 : 2) : (side == 0 ? 4 : 3);
            const double sign = side == 0 ? 1.0 : -1.0;
            double s = 0.5 * kContactGap;
            for (int p = 1; p <= 7; ++p) {
                VxSynthToothInfo& t = ctx.teeth[static_cast<size_t>(index(quadrant * 10 + p))];
                s += 0.5 * t.design.width;
                t.s = sign * s;
                s += 0.5 * t.design.width + kContactGap;

                const VxPoint a = arch.At(t.s);
                const VxVector n = arch.Outward(t.s);
                const VxVector distal = arch.Tangent(t.s) * sign;
                const VxVector occ(0.0, 0.0, upper ? -1.0 : 1.0);
                VxToothPose pose;
                pose.z = Unit(occ + n * Proclination(upper, p));
                pose.x = Unit(distal - pose.z * (distal % pose.z));
                pose.y = pose.z * pose.x;
                const VxPoint tip(a.x(), a.y(), TipZ(upper, p));
                pose.o = tip - pose.z * t.geometry.topW;
                t.facial = (pose.y % n) > 0.0 ? pose.y : -pose.y;
                t.poses.assign(static_cast<size_t>(ctx.steps), pose);
            }
        }
    }

    // Start poses and the steps between. A positive torque tips the crown
    // lingually.
    for (VxSynthToothInfo& t : ctx.teeth) {
        const VxToothPose fin = t.poses.back();
        const int p = t.design.fdi % 10;
        const VxVector mesial = -fin.x;
        double along = 0.0;
        double out = 0.0;
        double turn = 0.0;
        double tip = 0.0;
        double torque = 0.0;
        double vertical = 0.0;
        if (p <= 3) {
            // The front segment stands inside the arch, where the perimeter is
            // shorter, so the teeth overlap; laterals further in, canines less,
            // everything turned and tipped.
            static const double kIn[3] = {1.1, 1.6, 0.7};
            along = crowdRng.Uniform(-0.2, 0.2);
            out = -kIn[p - 1] + crowdRng.Uniform(-0.3, 0.3);
            const double mag =
                p == 1 ? crowdRng.Uniform(10.0, 20.0)
                       : (p == 2 ? crowdRng.Uniform(8.0, 15.0) : crowdRng.Uniform(4.0, 10.0));
            turn = crowdRng.Below(2) == 0 ? mag : -mag;
            tip = crowdRng.Uniform(-3.0, 3.0);
            torque = 4.0 + crowdRng.Uniform(-2.0, 2.0);
            vertical = crowdRng.Uniform(-0.3, 0.3);
        } else {
            // The buccal segments have drifted forwards a little.
            static const double kDrift[4] = {0.6, 0.5, 0.4, 0.3};
            along = kDrift[p - 4] + crowdRng.Uniform(-0.1, 0.1);
            out = crowdRng.Uniform(-0.2, 0.2);
            turn = crowdRng.Uniform(-2.5, 2.5);
            tip = crowdRng.Uniform(-1.0, 1.0);
            torque = crowdRng.Uniform(-1.0, 1.0);
            vertical = crowdRng.Uniform(-0.1, 0.1);
        }
        VxToothPose start = fin.Rotated(fin.z, turn * kDeg);
        start = start.Rotated(start.y, tip * kDeg);
        start = start.Rotated(t.facial * fin.z, torque * kDeg);
        start = start.Moved(mesial * along + t.facial * out + fin.z * vertical);
        for (int k = 0; k < ctx.steps; ++k) {
            t.poses[static_cast<size_t>(k)] = VxToothPose::Interpolate(
                start, fin, Ease(static_cast<double>(k) / (ctx.steps - 1)));
        }
    }

    // Meshes at the start pose. Design space is (mesial, facial, occlusal); the
    // frame's X is distal and its Y facial on one side of the midline and lingual
    // on the other, so half the teeth come out mirrored and their triangles are
    // turned to keep normals outside.
    VxJaw* upperJaw = c.FindJaw(true);
    VxJaw* lowerJaw = c.FindJaw(false);
    for (VxSynthToothInfo& t : ctx.teeth) {
        const VxToothPose& p0 = t.poses.front();
        const double fs = (t.facial % p0.y) > 0.0 ? 1.0 : -1.0;
        const bool mirrored = fs > 0.0; // det(-X, Y, Z) < 0
        auto tooth = std::make_unique<VxTooth>(t.design.fdi, t.design.upper ? upperJaw : lowerJaw);
        const VxToothGeometry& g = t.geometry;
        tooth->Reserve(static_cast<int>(g.positions.size()), static_cast<int>(g.styles.size()));
        for (const VxPoint& d : g.positions) {
            tooth->AddVertex(F32(p0.ToWorld(VxPoint(-d.x(), fs * d.y(), d.z()))));
        }
        for (size_t f = 0; f < g.styles.size(); ++f) {
            const int a = g.triangles[3 * f];
            const int b = g.triangles[3 * f + 1];
            const int cc = g.triangles[3 * f + 2];
            if (mirrored) {
                tooth->AddFace(a, cc, b, g.styles[f]);
            } else {
                tooth->AddFace(a, b, cc, g.styles[f]);
            }
        }
        tooth->Finish();
        tooth->SetFrame(p0.Frame());
        const int fdi = t.design.fdi;
        if (fdi == 36) {
            tooth->SetToothKind(ToothKind_Implant);
        } else if (fdi == 15) {
            tooth->SetToothKind(ToothKind_Pontic);
        } else if (fdi == 26) {
            tooth->SetToothKind(ToothKind_Restored);
        }
        if (fdi == 11 || fdi == 21 || fdi == 33 || fdi == 46) {
            const VxToothGeometry r = VxSyntheticTooth::BuildBackupRoot(t.design, g.cervixW);
            auto root = std::make_unique<VxMesh>();
            for (const VxPoint& d : r.positions) {
                root->AddVertex(F32(p0.ToWorld(VxPoint(-d.x(), fs * d.y(), d.z()))));
            }
            for (size_t f = 0; f < r.styles.size(); ++f) {
                const int a = r.triangles[3 * f];
                const int b = r.triangles[3 * f + 1];
                const int cc = r.triangles[3 * f + 2];
                root->AddFace(a, mirrored ? cc : b, mirrored ? b : cc, r.styles[f]);
            }
            root->Finish();
            tooth->SetBackupRoot(root.get());
            c.backupRoots.push_back(std::move(root));
        }
        t.tooth = tooth.get();
        c.teeth.push_back(std::move(tooth));
    }

    // Placements and scheme. Canines carry a limit position over the last steps:
    // a ghost turned a little further than planned.
    c.stepCount = ctx.steps;
    c.currentStep = 0;
    c.scheme.SetStepCount(ctx.steps);
    for (const VxSynthToothInfo& t : ctx.teeth) {
        const VxMatrix inv0 = t.poses.front().Inverse();
        auto& perStep = c.placements[t.tooth];
        const bool canine = t.design.fdi % 10 == 3;
        for (int k = 0; k < ctx.steps; ++k) {
            const VxToothPose& pk = t.poses[static_cast<size_t>(k)];
            std::set<DrawInfo_s> infos;
            infos.insert(DrawInfo_s(false, pk.Matrix() * inv0));
            if (canine && k >= ctx.steps - 4) {
                const VxToothPose limit = pk.Rotated(pk.z, 5.0 * kDeg).Moved(t.facial * 0.4);
                infos.insert(DrawInfo_s(true, limit.Matrix() * inv0));
            }
            perStep[k] = infos;
            c.scheme.AddTreatStep(VxTreatStep(t.design.fdi, k, pk.Matrix()));
        }
    }
}

} // namespace vx_synthetic
