// VxSyntheticPatient: the order in which a synthetic case is put together. Each
// stage lives in its own file (VxSyntheticPlan, VxSyntheticGum,
// VxSyntheticAttach, VxSyntheticCollision, VxSyntheticReference,
// VxSyntheticImages) and reads what the stages before it left in the shared
// context.
//
// Call flow of Generate:
//   1. jaws (empty), so that teeth can name their parent;
//   2. tooth designs, meshes at the start pose, poses of every step, placements
//   and scheme;
//   3. gums (from the final tooth layout) and jaw meshes; the skull on request;
//   4. attachments, IPR records and wedges (they sit on teeth at given steps);
//   5. contacts and gaps measured on the meshes at the collision step;
//   6. reference curves and planes;
//   7. pictures and measures;
//   8. the model's entity list.
#include "VxSyntheticPatient.h"

#include "VxSyntheticParts.h"
#include "VxSyntheticRandom.h"

#include <algorithm>

VxMatrix VxSynthToothInfo::Placement(int step) const {
    return poses[static_cast<size_t>(step)].Matrix() * poses.front().Inverse();
}

const VxSynthToothInfo* VxSynthContext::Find(int fdi) const {
    for (const VxSynthToothInfo& t : teeth) {
        if (t.design.fdi == fdi) {
            return &t;
        }
    }
    return nullptr;
}

VxPoint VxSynthContext::VertexAt(const VxSynthToothInfo& t, int vertexId, int step) const {
    const VxPoint& p = t.tooth->GetVertex(vertexId)->GetPos();
    return step == 0 ? p : t.Placement(step).Transform(p);
}

std::unique_ptr<VxCase> VxSyntheticPatient::Generate(uint32_t seed, const Options& options) {
    auto c = std::make_unique<VxCase>();
    VxSyntheticRandom root(seed);
    // Separate streams: a change in how one stage draws leaves the others'
    // numbers alone.
    VxSyntheticRandom teethRng = root.Fork(1);
    VxSyntheticRandom imageRng = root.Fork(2);
    VxSyntheticRandom gumRng = root.Fork(3);

    VxSynthContext ctx(*c, options);
    ctx.steps = std::max(2, options.steps);
    c->jaws.push_back(std::make_unique<VxJaw>(true));
    c->jaws.push_back(std::make_unique<VxJaw>(false));

    vx_synthetic::BuildTeethAndPlan(ctx, teethRng);
    vx_synthetic::BuildGumsAndJaws(ctx, gumRng);
    if (options.skull) {
        vx_synthetic::BuildSkull(ctx);
    }
    vx_synthetic::BuildAttachmentsAndWedges(ctx);
    if (options.collisions) {
        vx_synthetic::BuildGapInfos(ctx);
    }
    vx_synthetic::BuildReferences(ctx);
    vx_synthetic::BuildAnchorGrids(ctx);
    vx_synthetic::BuildImagesAndMeasures(ctx, imageRng);
    c->BuildModel();
    return c;
}
