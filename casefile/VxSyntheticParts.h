// VxSyntheticParts: what the generators of the synthetic patient share while a
// case is being made: each tooth's design, its mesh landmarks and its pose at
// every step, and the teeth in arch order. Internal to the casefile library;
// nothing outside VxSynthetic*.cpp includes it.
#pragma once

#include "VxCase.h"
#include "VxSyntheticArch.h"
#include "VxSyntheticPatient.h"
#include "VxSyntheticTooth.h"

#include <vector>

class VxSyntheticRandom;

struct VxSynthToothInfo {
    VxTooth* tooth = nullptr;
    VxToothDesign design;
    VxToothGeometry geometry;       // positions in design space; ids are those of the tooth mesh
    double s = 0.0;                 // arch position at the end of the treatment
    VxVector facial;                // unit facial direction at the end (= +-Y of the pose)
    std::vector<VxToothPose> poses; // one a step; poses.front() is where the mesh stands
    VxMatrix Placement(int step) const; // poses[step] * poses[0]^-1
};

struct VxSynthContext {
    VxCase& out;
    const VxSyntheticPatientOptions& options;
    int steps = 0;
    std::vector<VxSynthToothInfo> teeth; // same order as out.teeth
    // Indices into teeth in arch order from the patient's right to left: [0]
    // upper, [1] lower.
    std::vector<int> arch[2];

    VxSynthContext(VxCase& c, const VxSyntheticPatientOptions& o) : out(c), options(o) {}
    const VxSynthToothInfo* Find(int fdi) const;
    // World position of a vertex of a tooth at a step.
    VxPoint VertexAt(const VxSynthToothInfo& t, int vertexId, int step) const;
};

// The stages of VxSyntheticPatient::Generate, in the order it calls them.
namespace vx_synthetic {
void BuildTeethAndPlan(VxSynthContext& ctx, VxSyntheticRandom& rng);
void BuildGumsAndJaws(VxSynthContext& ctx, VxSyntheticRandom& rng);
void BuildSkull(VxSynthContext& ctx);
void BuildAttachmentsAndWedges(VxSynthContext& ctx);
void BuildGapInfos(VxSynthContext& ctx);
void BuildReferences(VxSynthContext& ctx);
void BuildAnchorGrids(VxSynthContext& ctx);
void BuildImagesAndMeasures(VxSynthContext& ctx, VxSyntheticRandom& rng);
// Rounds to float precision, so a case survives a round trip through 32-bit
// mesh files.
// The volatile keeps the narrowing: GCC 12 at -O2 drops a float round trip of the packed x and
// y of a point (the SLP vectoriser folds cvtpd2ps/cvtps2pd away).
inline double F32(double v) {
    volatile float f = static_cast<float>(v);
    return static_cast<double>(f);
}
inline VxPoint F32(const VxPoint& p) {
    return VxPoint(F32(p.x()), F32(p.y()), F32(p.z()));
}
} // namespace vx_synthetic
