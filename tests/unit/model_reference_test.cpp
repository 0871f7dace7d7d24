// Treatment-plan and reference records of the model layer: movement between treatment steps
// against rotations built by VxMatrix and translations worked out by hand (and random rigid
// motions), scheme and reference lookups by FDI number and step, plane-existence flags, the
// movement-limit table and IPR queries. Setters are exercised only through the lookups that depend
// on them.
#include <interfaces/CImage.h>
#include <interfaces/CephalometricPt.h>
#include <interfaces/ThreeMovementDiff_s.h>
#include <interfaces/VxCepMeasure.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxMoveDiffDataMgr.h>
#include <interfaces/VxPanMeasure.h>
#include <interfaces/VxPatientInfo.h>
#include <interfaces/VxReferenceMgr.h>
#include <interfaces/VxScheme.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTreatStep.h>
#include <interfaces/VxVertex.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kEps = 1e-9;

double Rad(double deg) {
    return deg * kPi / 180.0;
}

VxMatrix Rot(const VxVector& axis, double deg) {
    return VxMatrix::s_GetRotationMatrix(axis, Rad(deg));
}

VxMatrix Place(const VxMatrix& rotation, const VxVector& t) {
    return VxMatrix::Translation(t) * rotation;
}

void ExpectVec(const VxVector& v, double x, double y, double z, double eps = kEps) {
    EXPECT_NEAR(v[0], x, eps);
    EXPECT_NEAR(v[1], y, eps);
    EXPECT_NEAR(v[2], z, eps);
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Movement between two steps.

// Hand-worked cases; the base is turned a quarter about z so that its x axis is world y and its
// y axis world -x: a movement read in world axes, or about world axes, shows up as a swap.
TEST(TreatStepMovement, HandWorkedMovesAndTurnsInTheEarlierStepsAxes) {
    const VxMatrix r = Rot(VxVector(0, 0, 1), 90);
    const VxMatrix base = Place(r, VxVector(5, 0, 0));
    struct Case {
        const char* name;
        VxMatrix from, to;
        VxVector move, turn;
    };
    const Case cases[] = {
        {"moved by world (1, 2, 3)", base, Place(r, VxVector(6, 2, 3)), {2, -1, 3}, {0, 0, 0}},
        {"and back", Place(r, VxVector(6, 2, 3)), base, {-2, 1, -3}, {0, 0, 0}},
        {"tip about own x", base, base * Rot(VxVector(1, 0, 0), 10), {0, 0, 0}, {10, 0, 0}},
        {"about own y", base, base * Rot(VxVector(0, 1, 0), -25), {0, 0, 0}, {0, -25, 0}},
        {"about own z", base, base * Rot(VxVector(0, 0, 1), 90), {0, 0, 0}, {0, 0, 90}},
        // A turn beyond a half reads as the shorter turn the other way.
        {"270 degrees", base, base * Rot(VxVector(0, 0, 1), 270), {0, 0, 0}, {0, 0, -90}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const VxTreatStep a(11, 0, c.from);
        const VxTreatStep b(11, 1, c.to);
        const VxVector m = VxTreatStep::GetTransMove(&a, &b);
        const VxVector t = VxTreatStep::GetTransRotate(&a, &b);
        ExpectVec(m, c.move[0], c.move[1], c.move[2], 1e-7);
        ExpectVec(t, c.turn[0], c.turn[1], c.turn[2], 1e-7);
    }
    // A half turn about (0, 1, 1)/sqrt2: length 180 along that axis (either sign is the same
    // rotation).
    const VxVector half =
        VxTreatStep::GetTransRotate(VxMatrix::Identity(4), Rot(VxVector(0, 1, 1), 180));
    EXPECT_NEAR(std::fabs(half[1]), 180.0 / std::sqrt(2.0), 1e-7);
    EXPECT_NEAR(half[1], half[2], 1e-7);
    EXPECT_NEAR(half[0], 0.0, 1e-7);
}

TEST(TreatStepMovement, RandomRigidPairsRecoverTheirRelativeMotion) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (int i = 0; i < 200; ++i) {
        VxVector a0(u(rng), u(rng), u(rng));
        VxVector axis(u(rng), u(rng), u(rng));
        if (a0.Magnitude() < 0.1 || axis.Magnitude() < 0.1)
            continue;
        a0.Normalize();
        axis.Normalize();
        const double deg = 1.0 + 178.0 * (u(rng) + 1.0) / 2.0;
        const VxVector t(10 * u(rng), 10 * u(rng), 10 * u(rng));
        const VxMatrix from = Place(Rot(a0, 360 * u(rng)), VxVector(u(rng), u(rng), u(rng)));
        // `to` is `from` followed by a motion given in from's own axes.
        const VxMatrix to = from * Place(Rot(axis, deg), t);
        const VxVector m = VxTreatStep::GetTransMove(from, to);
        const VxVector r = VxTreatStep::GetTransRotate(from, to);
        ExpectVec(m, t[0], t[1], t[2], 1e-8);
        ExpectVec(r, axis[0] * deg, axis[1] * deg, axis[2] * deg, 1e-6);
    }
}

TEST(TreatStepMovement, MissingOrBrokenPlacementsGiveZero) {
    const VxTreatStep a(11, 0, VxMatrix::Translation(VxVector(1, 0, 0)));
    const VxMatrix singular(4, 4); // all zero
    for (const VxVector& v :
         {VxTreatStep::GetTransMove(nullptr, &a), VxTreatStep::GetTransRotate(&a, nullptr),
          VxTreatStep::GetTransMove(singular, a.GetPlacement()),
          VxTreatStep::GetTransRotate(singular, a.GetPlacement())}) {
        ExpectVec(v, 0, 0, 0);
    }
    // A placement of the wrong size is not kept.
    const VxTreatStep bad(11, 1, VxMatrix(3, 3));
    EXPECT_TRUE(bad.GetPlacement().IsIdentity());
    ExpectVec(VxTreatStep::GetTransMove(&bad, &a), 1, 0, 0);
}

// ---------------------------------------------------------------------------------------------
// Scheme: per-tooth steps, arches, planes, IPRs.

TEST(Scheme, ToothStepsComeInStepOrderPerTooth) {
    VxScheme s;
    for (int step : {3, 0, 7, 1})
        s.AddTreatStep(VxTreatStep(11, step, VxMatrix::Translation(VxVector(step * 0.1, 0, 0))));
    s.AddTreatStep(VxTreatStep(21, 2, VxMatrix::Identity(4)));
    EXPECT_EQ(s.GetStepCount(), 8);

    std::vector<VxTreatStep*> steps{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    s.GetToothAllSteps(11, steps);
    std::vector<int> order;
    for (VxTreatStep* st : steps)
        order.push_back(st->GetFDI() * 100 + st->GetStep());
    EXPECT_EQ(order, (std::vector<int>{1100, 1101, 1103, 1107}));
    // What the movement mark computes: first to last step.
    ExpectVec(VxTreatStep::GetTransMove(steps.front(), steps.back()), 0.7, 0, 0, 1e-12);

    std::vector<VxMatrix> placements;
    s.GetToothAllSteps(11, placements);
    ASSERT_EQ(placements.size(), 4u);
    EXPECT_EQ(placements[2], steps[2]->GetPlacement());

    s.GetToothAllSteps(48, steps);
    EXPECT_TRUE(steps.empty());
}

TEST(Scheme, StepsAreReplacedNotDuplicatedAndPointersSurviveInsertions) {
    VxScheme s;
    VxTreatStep* first = s.AddTreatStep(VxTreatStep(11, 1, VxMatrix::Identity(4)));
    ASSERT_NE(first, nullptr);
    for (int fdi = 12; fdi < 48; ++fdi)
        for (int step = 0; step < 5; ++step)
            s.AddTreatStep(VxTreatStep(fdi, step, VxMatrix::Identity(4)));
    EXPECT_EQ(s.GetTreatStep(11, 1), first);

    s.AddTreatStep(VxTreatStep(11, 1, VxMatrix::Translation(VxVector(0, 0, 2))));
    std::vector<VxTreatStep*> steps;
    s.GetToothAllSteps(11, steps);
    ASSERT_EQ(steps.size(), 1u);
    ExpectVec(VxTreatStep::GetTransMove(VxMatrix::Identity(4), steps[0]->GetPlacement()), 0, 0, 2);

    EXPECT_EQ(s.AddTreatStep(VxTreatStep(11, -1, VxMatrix::Identity(4))), nullptr);
    EXPECT_EQ(s.GetTreatStep(11, 2), nullptr);
    EXPECT_TRUE(s.RemoveTreatStep(11, 1));
    EXPECT_FALSE(s.RemoveTreatStep(11, 1));
    EXPECT_EQ(s.GetTreatStep(11, 1), nullptr);

    std::vector<VxTreatStep*> all;
    s.GetAllTreatSteps(all);
    ASSERT_EQ(all.size(), 36u * 5u);
    EXPECT_EQ(all.front()->GetFDI(), 12);
    EXPECT_EQ(all.back()->GetFDI(), 47);
    EXPECT_EQ(all.back()->GetStep(), 4);
}

TEST(Scheme, StepCountNeverFallsBelowTheStoredSteps) {
    VxScheme s;
    s.SetStepCount(20);
    EXPECT_EQ(s.GetStepCount(), 20);
    s.AddTreatStep(VxTreatStep(11, 24, VxMatrix::Identity(4)));
    EXPECT_EQ(s.GetStepCount(), 25);
    s.SetStepCount(3);
    EXPECT_EQ(s.GetStepCount(), 25);
}

TEST(Scheme, ArchesAndOcclusalPlanesAreNullUntilSet) {
    VxScheme s;
    const std::vector<VxPoint> pts{{-20, 0, 0}, {-10, 15, 0}, {0, 20, 0}, {10, 15, 0}, {20, 0, 0}};
    s.SetUpArch(VxArchForm(pts));
    s.SetLowOccPlane(
        VxOcclusalPlane(VxFrame(VxPoint(0, 0, -5), VxVector(1, 0, 0), VxVector(0, 1, 0)), 40.0));
    ASSERT_NE(s.GetUpArch(), nullptr);
    EXPECT_EQ(s.GetLowArch(), nullptr);
    const VxBSplineCurve* c = s.GetUpArch()->GetCurve();
    ASSERT_NE(c, nullptr);
    // The arch interpolates the points the host placed: its ends are the first and last one.
    EXPECT_NEAR(c->Evaluate(0.0).DistanceToPoint(pts.front()), 0.0, 1e-9);
    EXPECT_NEAR(c->Evaluate(1.0).DistanceToPoint(pts.back()), 0.0, 1e-9);
    ASSERT_NE(s.GetLowOccPlane(), nullptr);
    EXPECT_DOUBLE_EQ(s.GetLowOccPlane()->GetLength(), 40.0);
    EXPECT_DOUBLE_EQ(s.GetLowOccPlane()->GetPlaneFrame().GetOrigin()[2], -5.0);
    EXPECT_EQ(s.GetUpOccPlane(), nullptr);

    // One point makes no curve: the arch exists but has nothing to draw.
    VxArchForm single;
    EXPECT_FALSE(single.SetPoints({VxPoint(1, 2, 3)}));
    EXPECT_EQ(single.GetCurve(), nullptr);
    // Copies carry their own curve.
    VxArchForm copy = *s.GetUpArch();
    s.ClearArches();
    ASSERT_NE(copy.GetCurve(), nullptr);
    EXPECT_NEAR(copy.GetCurve()->Evaluate(0.0).DistanceToPoint(pts.front()), 0.0, 1e-9);
}

TEST(Scheme, IPRsByStepAndByTooth) {
    VxTooth t11(11), t21(21), t12(12), t31(31);
    VxScheme s;
    s.AddIPR(VxIPR(&t11, &t21, 3, 0.2, 0.25, VxPoint(0, 1, 0)));
    s.AddIPR(VxIPR(&t11, &t12, 5, 0.3, 0.3, VxPoint(1, 1, 0)));
    s.AddIPR(VxIPR(&t31, nullptr, 3, 0.1, 0.1, VxPoint()));
    ASSERT_EQ(s.GetIPRInfo().size(), 3u);

    std::vector<VxIPR> out{VxIPR()};
    s.GetIPRInfo(3, out);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[0].GetSecondTooth(), &t21);
    EXPECT_EQ(out[1].GetFirstTooth(), &t31);
    s.GetIPRInfo(4, out);
    EXPECT_TRUE(out.empty());

    s.GetToothIPRInfo(&t11, out);
    ASSERT_EQ(out.size(), 2u);
    EXPECT_EQ(out[1].GetStep(), 5);
    s.GetToothIPRInfo(&t12, out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_DOUBLE_EQ(out[0].GetValue(), 0.3);
    s.GetToothIPRInfo(nullptr, out);
    EXPECT_TRUE(out.empty());
}

TEST(SchemeMgr, CurrentSchemeIsOneItHolds) {
    VxSchemeMgr* mgr = VxSchemeMgr::GetInstance();
    mgr->Clear();
    EXPECT_EQ(mgr->GetCurScheme(), nullptr);

    VxScheme* a = mgr->AddScheme(std::make_unique<VxScheme>());
    VxScheme* b = mgr->AddScheme(std::make_unique<VxScheme>());
    EXPECT_EQ(mgr->AddScheme(nullptr), nullptr);
    EXPECT_EQ(mgr->GetSchemeCount(), 2);
    EXPECT_EQ(mgr->GetCurScheme(), a); // the first one added
    EXPECT_TRUE(mgr->SetCurScheme(b));
    EXPECT_EQ(mgr->GetCurScheme(), b);

    VxScheme foreign;
    EXPECT_FALSE(mgr->SetCurScheme(&foreign));
    EXPECT_EQ(mgr->GetCurScheme(), b);
    EXPECT_FALSE(mgr->RemoveScheme(&foreign));

    EXPECT_TRUE(mgr->RemoveScheme(b));
    EXPECT_EQ(mgr->GetCurScheme(), nullptr);
    EXPECT_EQ(mgr->GetScheme(0), a);
    EXPECT_EQ(mgr->GetScheme(1), nullptr);
    EXPECT_EQ(mgr->GetScheme(-1), nullptr);
    EXPECT_TRUE(mgr->SetCurScheme(nullptr));

    mgr->Clear();
    EXPECT_EQ(mgr->GetSchemeCount(), 0);
}

// ---------------------------------------------------------------------------------------------
// References of teeth and jaws.

TEST(ReferenceMgr, ToothReferencesByFDI) {
    VxReferenceMgr* mgr = VxReferenceMgr::GetInstance();
    mgr->Clear();
    VxJaw upper(true), lower(false);

    for (int fdi : {21, 11, 46})
        mgr->Add(VxToothRef(fdi, ToothKind_Normal, fdi < 30 ? &upper : &lower));
    mgr->Add(VxToothRef(36, ToothKind_Missing, &lower));
    EXPECT_EQ(mgr->Get(12), nullptr);
    ASSERT_NE(mgr->Get(46), nullptr);
    EXPECT_EQ(mgr->Get(46)->GetFDIEx().GetFDI(), 46);
    EXPECT_FALSE(mgr->Get(46)->GetOwnJaw()->IsUp());

    // GetAll walks in FDI order and hands out the same objects as Get.
    const std::map<int, VxToothRef*>& all = mgr->GetAll();
    std::vector<int> keys;
    for (const auto& kv : all) {
        keys.push_back(kv.first);
        EXPECT_EQ(kv.second, mgr->Get(kv.first));
        EXPECT_EQ(kv.second->GetFDI(), kv.first);
    }
    EXPECT_EQ(keys, (std::vector<int>{11, 21, 36, 46}));

    // Replacing keeps one entry; removing drops it from both views.
    mgr->Add(VxToothRef(11, ToothKind_Implant, &upper));
    EXPECT_EQ(mgr->GetAll().size(), 4u);
    EXPECT_EQ(mgr->Get(11)->GetToothKind(), ToothKind_Implant);
    EXPECT_TRUE(mgr->Remove(21));
    EXPECT_FALSE(mgr->Remove(21));
    EXPECT_EQ(mgr->Get(21), nullptr);
    EXPECT_EQ(mgr->GetAll().count(21), 0u);

    mgr->Clear();
    EXPECT_TRUE(mgr->GetAll().empty());
}

TEST(ReferenceMgr, JawReferencesByJaw) {
    VxReferenceMgr* mgr = VxReferenceMgr::GetInstance();
    mgr->Clear();
    EXPECT_EQ(mgr->GetJawRef(true), nullptr);
    EXPECT_EQ(mgr->GetJawRef(false), nullptr);

    VxJawRef low(false);
    low.SetBackBoundaryPlanePts({VxPoint(1, 0, 0), VxPoint(2, 0, 0)});
    mgr->SetJawRef(low);
    EXPECT_EQ(mgr->GetJawRef(true), nullptr);
    ASSERT_NE(mgr->GetJawRef(false), nullptr);
    EXPECT_FALSE(mgr->GetJawRef(false)->IsUp());

    mgr->SetJawRef(VxJawRef(true));
    ASSERT_NE(mgr->GetJawRef(), nullptr); // the key-point overlay asks without an argument
    EXPECT_EQ(mgr->GetJawRef(), mgr->GetJawRef(true));
    EXPECT_TRUE(mgr->GetJawRef()->IsUp());

    std::vector<VxPoint> pts;
    EXPECT_FALSE(mgr->GetJawRef(true)->GetBackBoundaryPlanePts(pts));
    EXPECT_TRUE(mgr->GetJawRef(false)->GetBackBoundaryPlanePts(pts));
    EXPECT_EQ(pts.size(), 2u);

    mgr->RemoveJawRef(false);
    EXPECT_EQ(mgr->GetJawRef(false), nullptr);
    mgr->Clear();
    EXPECT_EQ(mgr->GetJawRef(true), nullptr);
}

TEST(JawRef, PlaneExistenceFlagsAndUntouchedOutputs) {
    VxJawRef j(true);
    const VxFrame sentinel(VxPoint(9, 9, 9), VxVector(0, 1, 0), VxVector(0, 0, 1));
    VxFrame f = sentinel;
    double len = -1.0;
    std::vector<VxPoint> pts{VxPoint(7, 7, 7)};
    EXPECT_FALSE(j.GetMiddlePlane(f, len));
    EXPECT_FALSE(j.GetBackBoundaryPlane(f, len));
    EXPECT_FALSE(j.GetBackBoundaryPlanePts(pts));
    EXPECT_EQ(j.GetBeautyPlane(), nullptr);
    EXPECT_EQ(f.GetOrigin(), sentinel.GetOrigin());
    EXPECT_EQ(len, -1.0);
    ASSERT_EQ(pts.size(), 1u);

    // A frame that was never set is no plane.
    EXPECT_FALSE(j.SetMiddlePlane(VxFrame(), 10.0));
    EXPECT_FALSE(j.GetMiddlePlane(f, len));

    const VxFrame mid(VxPoint(0, -30, 0), VxVector(0, 1, 0), VxVector(0, 0, 1));
    EXPECT_TRUE(j.SetMiddlePlane(mid, 60.0));
    EXPECT_TRUE(j.GetMiddlePlane(f, len));
    EXPECT_EQ(f.GetOrigin(), mid.GetOrigin());
    EXPECT_NEAR(f.DirZ()[0], 1.0, 1e-12); // y x z = x
    EXPECT_DOUBLE_EQ(len, 60.0);
    EXPECT_FALSE(j.GetBackBoundaryPlane(f, len)); // independent of the middle plane

    // An invalid frame later does not erase the plane that exists.
    EXPECT_FALSE(j.SetMiddlePlane(VxFrame(), 1.0));
    EXPECT_TRUE(j.GetMiddlePlane(f, len));
    EXPECT_DOUBLE_EQ(len, 60.0);
    j.ClearMiddlePlane();
    EXPECT_FALSE(j.GetMiddlePlane(f, len));

    const std::vector<VxPoint> beau{VxPoint(1, 2, 3), VxPoint(4, 5, 6)};
    j.SetBeautyPlane(VxBeautyPlane(mid, 25.0, beau));
    ASSERT_NE(j.GetBeautyPlane(), nullptr);
    EXPECT_DOUBLE_EQ(j.GetBeautyPlane()->GetLength(), 25.0);
    std::vector<VxPoint> got{VxPoint(), VxPoint(), VxPoint()};
    j.GetBeautyPlane()->GetBeauPt(got);
    EXPECT_EQ(got, beau);

    // Copies are deep: clearing the original leaves the copy's beauty plane.
    VxJawRef copy = j;
    j.ClearBeautyPlane();
    EXPECT_EQ(j.GetBeautyPlane(), nullptr);
    ASSERT_NE(copy.GetBeautyPlane(), nullptr);
}

TEST(ToothRef, LandmarksKeepVerticesAndCurves) {
    VxVertex v0(VxPoint(0, 0, 0), 0), v1(VxPoint(1, 0, 0), 1), v2(VxPoint(2, 0, 0), 2);
    VxToothRef r(24);

    std::unique_ptr<VxBSplineCurve> c(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(0, 0, 0), VxPoint(0, 0, 4), VxPoint(0, 1, 8)}, false));
    ASSERT_TRUE(c);
    VxFacc facc;
    facc.SetToothCurve(*c);
    facc.SetAllRefVtx({&v0, nullptr, &v2});
    r.SetFacc(facc);
    ASSERT_NE(r.GetFacc().GetToothCurve(), nullptr);
    EXPECT_EQ(r.GetFacc().GetCurve(), nullptr); // the model-space curve is separate
    EXPECT_EQ(r.GetFacc().GetAllRefVtx(), (std::vector<VxVertex*>{&v0, &v2}));

    VxMidCurve mid;
    mid.SetMidVtxId(-7);
    EXPECT_EQ(mid.GetMidVtxId(), -1);
    mid.SetMidVtxId(1);
    mid.SetAllRefVtx({&v0, &v1, &v2});
    r.SetMidCurve(mid);
    EXPECT_EQ(r.GetMidCurve().GetMidVtxId(), 1);
    EXPECT_EQ(r.GetMidCurve().GetAllRefVtx()[1]->GetVtxId(), 1);

    r.SetFeaturePoint({VxFeaturePoint(1, &v1), VxFeaturePoint(2, nullptr), VxFeaturePoint(3, &v2)});
    ASSERT_EQ(r.GetFeaturePoint().size(), 2u);
    EXPECT_EQ(r.GetFeaturePoint()[1].GetVtx()->GetPos(), VxPoint(2, 0, 0));
    EXPECT_EQ(r.GetFeaturePoint()[1].GetKind(), 3);
}

// ---------------------------------------------------------------------------------------------
// Movement limits, IPR and contact records, measures.

TEST(MoveDiffDataMgr, LimitsByFDIInRecordOrder) {
    // The twelve doubles in the host's record order: x move, x rotation, y move, y rotation,
    // z move, z rotation, each min then max.
    const ThreeMovementDiff_s d{0.1, 1.0, 2.0, 20.0, 0.2, 2.0, 3.0, 30.0, 0.3, 3.0, 4.0, 40.0};
    const double mins[6] = {0.1, 2.0, 0.2, 3.0, 0.3, 4.0};
    const double maxs[6] = {1.0, 20.0, 2.0, 30.0, 3.0, 40.0};
    for (int k = 0; k < 6; ++k) {
        EXPECT_DOUBLE_EQ(d.Min(k), mins[k]) << k;
        EXPECT_DOUBLE_EQ(d.Max(k), maxs[k]) << k;
    }
    EXPECT_DOUBLE_EQ(d.Min(6), 0.0);
    EXPECT_DOUBLE_EQ(d.Max(-1), 0.0);

    VxMoveDiffDataMgr* mgr = VxMoveDiffDataMgr::GetInstance();
    mgr->Clear();
    EXPECT_EQ(mgr->GetMovementDiff(11), nullptr);
    mgr->SetMovementDiff(21, d);
    ThreeMovementDiff_s e = d;
    e.rotateZMax = 45.0;
    mgr->SetMovementDiff(11, e);
    mgr->SetMovementDiff(21, d); // replaces, one entry per tooth
    ASSERT_EQ(mgr->GetMovementDiff().size(), 2u);
    EXPECT_EQ(mgr->GetMovementDiff().begin()->first, 11);
    ASSERT_NE(mgr->GetMovementDiff(11), nullptr);
    EXPECT_DOUBLE_EQ(mgr->GetMovementDiff(11)->Max(5), 45.0);
    EXPECT_DOUBLE_EQ(mgr->GetMovementDiff(21)->Max(5), 40.0);
    mgr->RemoveMovementDiff(11);
    EXPECT_EQ(mgr->GetMovementDiff(11), nullptr);
    mgr->Clear();
    EXPECT_TRUE(mgr->GetMovementDiff().empty());
}

TEST(IPR, InfoCopiesThePairAndKeepsValueApartFromMaxGap) {
    VxTooth a(13), b(14);
    a.SetToothKind(ToothKind_Restored);
    const VxIPR ipr(&a, &b, 6, 0.2, 0.35, VxPoint(3, 4, 5));
    VxIPR copy;
    copy = ipr;

    VxTooth outA, outB;
    int step = -1;
    double value = -1.0;
    ASSERT_TRUE(copy.GetIPRInfo(&outA, &outB, step, value));
    EXPECT_EQ(outA.GetFDI(), 13);
    EXPECT_EQ(outA.GetToothKind(), ToothKind_Restored);
    EXPECT_EQ(outB.GetFDI(), 14);
    EXPECT_EQ(step, 6);
    EXPECT_DOUBLE_EQ(value, 0.2);
    EXPECT_DOUBLE_EQ(copy.GetmaxGapValue(), 0.35);
    EXPECT_EQ(copy.GetGapPos(), VxPoint(3, 4, 5));
    EXPECT_TRUE(copy.Involves(&b));
    EXPECT_FALSE(copy.Involves(&outB));

    // Null outputs are skipped; a record without its pair answers false and writes nothing.
    step = -1;
    EXPECT_TRUE(copy.GetIPRInfo(nullptr, nullptr, step, value));
    EXPECT_EQ(step, 6);
    const VxIPR empty;
    step = -1;
    EXPECT_FALSE(empty.GetIPRInfo(&outA, &outB, step, value));
    EXPECT_EQ(step, -1);
    EXPECT_EQ(outA.GetFDI(), 13);
}

TEST(GapInfo, SidesAreZeroAndOneOnly) {
    VxTooth up(16), low(46);
    VxGapInfo g(&up, &low, false, 0.4, VxPoint(0, 0, 1));
    g.SetFaces(0, {5, 2, 9});
    g.AddVertexDepth(1, 30, 0.75);
    g.AddVertexDepth(1, 4, 0.25);
    g.AddVertexDepth(1, 30, 0.5); // a vertex has one depth
    g.AddVertexDepth(2, 1, 1.0);  // no third side
    g.SetMesh(-1, &up);

    EXPECT_EQ(g.GetMesh(0), &up);
    EXPECT_EQ(g.GetMesh(1), &low);
    EXPECT_EQ(g.GetMesh(2), nullptr);
    EXPECT_EQ(g.GetFaces(0), (std::vector<int>{5, 2, 9}));
    EXPECT_TRUE(g.GetFaces(1).empty());
    EXPECT_TRUE(g.GetFaces(7).empty());
    const std::map<int, double>& d = g.GetVertexDepth(1);
    ASSERT_EQ(d.size(), 2u);
    EXPECT_EQ(d.begin()->first, 4); // walked by vertex id
    EXPECT_DOUBLE_EQ(d.at(30), 0.5);
    EXPECT_TRUE(g.GetVertexDepth(-1).empty());
    EXPECT_FALSE(g.IsGap());
}

TEST(Measures, CephalometricPointsByIdAndPanoramicData) {
    VxCepMeasure cep;
    CephalometricPt pt(MEASURE_POINT_Sella, VxPoint(-1, -1, -1));
    EXPECT_FALSE(cep.GetMeasurePt(MEASURE_POINT_RefLineStart, pt));
    EXPECT_EQ(pt.pos, VxPoint(-1, -1, -1));
    EXPECT_TRUE(cep.SetMeasurePt(CephalometricPt(MEASURE_POINT_RefLineStart, VxPoint(1, 2, 3))));
    EXPECT_TRUE(cep.SetMeasurePt(CephalometricPt(MEASURE_POINT_KeyPoint, VxPoint(4, 5, 6))));
    EXPECT_FALSE(cep.SetMeasurePt(CephalometricPt(static_cast<MEASURE_POINT>(64), VxPoint())));
    EXPECT_FALSE(cep.SetMeasurePt(CephalometricPt(static_cast<MEASURE_POINT>(-3), VxPoint())));
    // The key-point overlay asks by plain number.
    ASSERT_TRUE(cep.GetMeasurePt(static_cast<MEASURE_POINT>(26), pt));
    EXPECT_EQ(pt.pos, VxPoint(4, 5, 6));
    EXPECT_FALSE(cep.GetMeasurePt(static_cast<MEASURE_POINT>(23), pt));
    EXPECT_EQ(cep.GetAllMeasurePts().size(), 2u);

    VxPanMeasure pan;
    EXPECT_FALSE(pan.HasData());
    pan.AddData(PanAttribute(2, 14, VxPoint(0.25, 0.5, 0)));
    pan.AddData(PanAttribute(7, 0, VxPoint(0.75, 0.5, 0)));
    EXPECT_TRUE(pan.HasData());
    ASSERT_EQ(pan.GetDatas().size(), 2u);
    EXPECT_EQ(pan.GetDatas()[0].number, 14);
    EXPECT_EQ(pan.GetDatas()[1].kind, 7);
}

TEST(PatientInfo, PicturesAreOwnedPerSlotAndMoveWithTheRecord) {
    auto picture = [](int w) {
        auto img = std::make_unique<CImage>();
        img->Create(w, 4, 24);
        return img;
    };
    VxPatientInfo info;
    info.SetPanoramicImg(picture(8));
    info.SetCephalometricImg(picture(6));
    ASSERT_NE(info.GetPanoramicImg(), nullptr);
    EXPECT_EQ(info.GetPanoramicImg()->GetWidth(), 8);
    EXPECT_EQ(info.GetCephalometricImg()->GetWidth(), 6);
    EXPECT_EQ(info.GetProfileImg(), nullptr);

    info.SetPanoramicImg(picture(10)); // replaces (and frees) the earlier picture
    EXPECT_EQ(info.GetPanoramicImg()->GetWidth(), 10);
    info.SetCephalometricImg(nullptr);
    EXPECT_EQ(info.GetCephalometricImg(), nullptr);

    CImage* pan = info.GetPanoramicImg();
    VxPatientInfo moved(std::move(info));
    EXPECT_EQ(moved.GetPanoramicImg(), pan);
    moved.Clear();
    EXPECT_EQ(moved.GetPanoramicImg(), nullptr);
}
