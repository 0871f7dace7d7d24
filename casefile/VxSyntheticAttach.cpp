// VxSyntheticAttach: what the synthetic plan bonds to and cuts from the teeth:
// four standard attachment shapes (one of them an "SK" family shape, which the
// drawers colour by family), the attachments placed on the facial surfaces of
// canines, premolars and first molars, the IPR records between front teeth and
// two wedges. Attachments follow their tooth's placements; IPR gap positions
// are taken at the record's step; wedges sit at the final gaps and have no
// placements. It does not decide whether an attachment fits: the shapes are
// simply set on the facial surface, sunk a quarter millimetre.
#include "VxSyntheticParts.h"

#include <interfaces/VxAttachmentPart.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxIPR.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct StdShape {
    const wchar_t* identifier;
    double rx, ry, height, exponent, bevel;
    int r, g, b;
};

// A small closed dome on a flat base: superellipse outline (rx, ry) at z = 0, a
// low side wall, and a cap rising to `height`; `bevel` tilts the cap so one end
// stands higher than the other.
void BuildDome(VxMesh& mesh, const StdShape& s) {
    using vx_synthetic::F32;
    const int n = 24;
    auto outline = [&s](int i, double rho, double z) {
        const double th = 2.0 * kPi * i / n;
        const double c = std::cos(th);
        const double sn = std::sin(th);
        const double cu = std::copysign(std::pow(std::fabs(c), 2.0 / s.exponent), c);
        const double cv = std::copysign(std::pow(std::fabs(sn), 2.0 / s.exponent), sn);
        const double tilt = 1.0 + s.bevel * rho * cv;
        return F32(VxPoint(s.rx * rho * cu, s.ry * rho * cv, z * tilt));
    };
    std::vector<std::vector<int>> rings;
    const double rhos[5] = {1.0, 1.0, 0.75, 0.5, 0.25};
    for (int k = 0; k < 5; ++k) {
        const double rho = rhos[k];
        const double z =
            k == 0 ? 0.0 : (k == 1 ? 0.3 * s.height : s.height * std::sqrt(1.0 - rho * rho * 0.85));
        std::vector<int> ring;
        for (int i = 0; i < n; ++i) {
            ring.push_back(mesh.AddVertex(outline(i, rho, z)));
        }
        rings.push_back(ring);
    }
    const int pole = mesh.AddVertex(F32(VxPoint(0.0, 0.0, s.height)));
    const int base = mesh.AddVertex(VxPoint(0.0, 0.0, 0.0));
    for (int i = 0; i < n; ++i) {
        const size_t a = static_cast<size_t>(i);
        const size_t b = static_cast<size_t>((i + 1) % n);
        for (size_t k = 0; k + 1 < rings.size(); ++k) {
            mesh.AddFace(rings[k][a], rings[k][b], rings[k + 1][b]);
            mesh.AddFace(rings[k][a], rings[k + 1][b], rings[k + 1][a]);
        }
        mesh.AddFace(rings.back()[a], rings.back()[b], pole);
        mesh.AddFace(rings.front()[b], rings.front()[a], base);
    }
    mesh.Finish();
}

// A closed box from a centre and three half-axis vectors (right-handed).
void AddBox(VxMesh& mesh, const VxPoint& c, const VxVector& ax, const VxVector& ay,
            const VxVector& az) {
    using vx_synthetic::F32;
    const int first = mesh.GetVertexCount();
    for (int k = 0; k < 8; ++k) {
        const double sx = (k & 1) ? 1.0 : -1.0;
        const double sy = (k & 2) ? 1.0 : -1.0;
        const double sz = (k & 4) ? 1.0 : -1.0;
        mesh.AddVertex(F32(c + ax * sx + ay * sy + az * sz));
    }
    static const int kQuads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                     {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& q : kQuads) {
        mesh.AddFace(first + q[0], first + q[1], first + q[2]);
        mesh.AddFace(first + q[0], first + q[2], first + q[3]);
    }
}

// The contact vertex of `a` that faces `b` at a step.
VxPoint ContactToward(const VxSynthContext& ctx, const VxSynthToothInfo& a,
                      const VxSynthToothInfo& b, int step) {
    const VxPoint m = ctx.VertexAt(a, a.geometry.mesialContact, step);
    const VxPoint d = ctx.VertexAt(a, a.geometry.distalContact, step);
    const VxPoint bo = b.poses[static_cast<size_t>(step)].o;
    return m.SquareDistanceToPoint(bo) <= d.SquareDistanceToPoint(bo) ? m : d;
}

} // namespace

namespace vx_synthetic {

void BuildAttachmentsAndWedges(VxSynthContext& ctx) {
    VxCase& c = ctx.out;
    static const StdShape kShapes[4] = {
        {L"RECT-H3", 1.5, 1.0, 0.9, 6.0, 0.0, 220, 220, 90},
        {L"ELL-V2", 1.0, 1.5, 0.9, 2.0, 0.0, 120, 200, 230},
        {L"SK-ROT-R", 1.25, 1.25, 1.0, 4.0, 0.45, 230, 140, 60},
        {L"BEV-G4", 1.5, 1.0, 1.1, 4.0, 0.6, 180, 120, 220},
    };
    for (const StdShape& s : kShapes) {
        auto sa = std::make_unique<VxStdAttach>(CString(s.identifier), VxColor(s.r, s.g, s.b));
        BuildDome(*sa, s);
        c.stdAttachments.push_back(std::move(sa));
    }

    struct Placed {
        int fdi;
        int shape;
        int start;
    };
    static const Placed kPlaced[] = {{13, 2, 1}, {23, 2, 1}, {14, 0, 2}, {24, 0, 2},
                                     {16, 3, 3}, {26, 3, 3}, {33, 1, 1}, {43, 1, 1},
                                     {34, 0, 2}, {44, 0, 2}, {36, 3, 3}, {46, 3, 3}};
    const int last = ctx.steps - 1;
    for (const Placed& pl : kPlaced) {
        const VxSynthToothInfo* t = ctx.Find(pl.fdi);
        VxStdAttach* shape = c.stdAttachments[static_cast<size_t>(pl.shape)].get();
        const VxPoint p = t->tooth->GetVertex(t->geometry.facialCentre)->GetPos();
        VxVector n = t->tooth->GetVertexNormal(t->geometry.facialCentre);
        n.Normalize();
        const VxToothPose& p0 = t->poses.front();
        VxToothPose frame;
        frame.z = n;
        frame.x = p0.x - n * (p0.x % n);
        frame.x.Normalize();
        frame.y = frame.z * frame.x;
        frame.o = p - n * 0.25;

        auto att = std::make_unique<VxAttachment>(shape, t->tooth);
        std::vector<VxToothPose> parts{frame};
        if (pl.shape == 2) {
            // The rotation family comes as a pair, one above the other.
            parts.push_back(frame.Moved(frame.y * 2.4));
        }
        for (const VxToothPose& part : parts) {
            const VxMatrix m = part.Matrix();
            auto ap = std::make_shared<VxAttachmentPart>(m);
            const int base = att->GetVertexCount();
            for (const VxVertex& v : shape->GetVertices()) {
                ap->AddVertex(v.GetPos());
                att->AddVertex(F32(m.Transform(v.GetPos())));
            }
            for (const VxFace& f : shape->GetFaces()) {
                ap->AddFace(f.GetVtxId(0), f.GetVtxId(1), f.GetVtxId(2));
                att->AddFace(base + f.GetVtxId(0), base + f.GetVtxId(1), base + f.GetVtxId(2));
            }
            ap->Finish();
            att->AttachParts().push_back(ap);
        }
        att->Finish();
        att->SetCurFrame(frame.Frame());
        att->SetCurrentMatrix(t->Placement(c.currentStep));
        att->SetSteps(std::min(pl.start, last), last);
        auto& perStep = c.placements[att.get()];
        for (int k = 0; k < ctx.steps; ++k) {
            perStep[k] = {DrawInfo_s(false, t->Placement(k))};
        }
        c.attachments.push_back(std::move(att));
    }

    // IPR: enamel removed between front teeth, in steps of 0.1 mm.
    struct Ipr {
        int a, b, step, tenths;
    };
    static const Ipr kIpr[] = {{11, 21, 4, 2}, {11, 12, 5, 3}, {21, 22, 5, 3}, {12, 13, 7, 4},
                               {41, 31, 3, 2}, {41, 42, 6, 3}, {31, 32, 6, 3}, {32, 33, 8, 5}};
    for (const Ipr& r : kIpr) {
        const VxSynthToothInfo* a = ctx.Find(r.a);
        const VxSynthToothInfo* b = ctx.Find(r.b);
        const int step = std::min(r.step, last);
        const double value = r.tenths / 10.0;
        const VxPoint pa = ContactToward(ctx, *a, *b, step);
        const VxPoint pb = ContactToward(ctx, *b, *a, step);
        c.scheme.AddIPR(VxIPR(a->tooth, b->tooth, step, value, value, VxPoint::Lerp(pa, pb, 0.5)));
    }

    // Wedges at the final gaps: one between 12 and 13, one spanning 32, 31
    // and 41.
    {
        const VxSynthToothInfo* a = ctx.Find(12);
        const VxSynthToothInfo* b = ctx.Find(13);
        const VxPoint pa = ContactToward(ctx, *a, *b, last);
        const VxPoint pb = ContactToward(ctx, *b, *a, last);
        const VxToothPose& fa = a->poses.back();
        auto w = std::make_unique<VxFilledWedgeTwoTooth>(a->tooth, b->tooth);
        VxVector along = pb - pa;
        along.Normalize();
        const VxVector occ = fa.z;
        const VxVector side = occ * along;
        AddBox(*w, VxPoint::Lerp(pa, pb, 0.5) - occ * 1.5, along * 0.3, side * 1.2, occ * 1.5);
        w->Finish();
        c.wedges.push_back(std::move(w));
    }
    {
        const VxSynthToothInfo* l = ctx.Find(32);
        const VxSynthToothInfo* m = ctx.Find(31);
        const VxSynthToothInfo* r = ctx.Find(41);
        const VxPoint pl = ContactToward(ctx, *l, *m, last);
        const VxPoint pr = ContactToward(ctx, *r, *m, last);
        const VxToothPose& fm = m->poses.back();
        auto w = std::make_unique<VxFilledWedgeTriTooth>(l->tooth, m->tooth, r->tooth);
        VxVector along = pr - pl;
        const double len = along.Magnitude();
        along.Normalize();
        const VxVector occ = fm.z;
        const VxVector side = occ * along;
        AddBox(*w, VxPoint::Lerp(pl, pr, 0.5) - occ * 2.0 + side * 1.8, along * (0.5 * len),
               side * 0.4, occ * 0.8);
        w->Finish();
        c.wedges.push_back(std::move(w));
    }
}

} // namespace vx_synthetic
