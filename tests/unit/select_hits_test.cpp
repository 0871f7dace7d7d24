// Selection without a GL context: the point-to-edge distance against a brute-force search along
// the segment, the hit-record loop on hand-made selection buffers (four-word stride, nearest
// depth by unsigned comparison, later record on a tie, name 0 and two-name records), and the
// candidate list (exact type per stencil kind, flags, limited placements, doubles).
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <mesh/VxSelectNames.h>
#include <select/VxOpenGLSelect.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

class VxOpenGLSelectTestAccess {
public:
    static double PointToEdgeDis(VxOpenGLSelect& s, VxMesh* mesh, const VxEdge& e, VxPoint p) {
        return s.PointToEdgeDis(mesh, e, p);
    }
    static VxObject* ProcessHits(VxOpenGLSelect& s, int count, unsigned int* buffer) {
        return s.ProcessHits(count, buffer);
    }
    static std::vector<VxEntity*> Candidates(VxOpenGLSelect& s, const VxLine& ray) {
        s.m_cursorRay = ray;
        std::vector<VxEntity*> out;
        s.PickCandidates(out);
        return out;
    }
};

namespace {

using Access = VxOpenGLSelectTestAccess;

// Distance from p to the segment ab by sampling, refined around the best sample: independent of
// any projection formula.
double BruteSegmentDistance(const VxPoint& a, const VxPoint& b, const VxPoint& p) {
    const int n = 2000;
    int bestI = 0;
    double best = 1e300;
    for (int i = 0; i <= n; ++i) {
        const double d = p.DistanceToPoint(VxPoint::Lerp(a, b, static_cast<double>(i) / n));
        if (d < best) {
            best = d;
            bestI = i;
        }
    }
    double lo = std::max(0.0, (bestI - 1.0) / n);
    double hi = std::min(1.0, (bestI + 1.0) / n);
    for (int k = 0; k < 100; ++k) {
        const double m1 = lo + (hi - lo) / 3.0;
        const double m2 = hi - (hi - lo) / 3.0;
        if (p.DistanceToPoint(VxPoint::Lerp(a, b, m1)) <
            p.DistanceToPoint(VxPoint::Lerp(a, b, m2))) {
            hi = m2;
        } else {
            lo = m1;
        }
    }
    return std::min(best, p.DistanceToPoint(VxPoint::Lerp(a, b, 0.5 * (lo + hi))));
}

// One triangle, so the mesh has three edges.
std::unique_ptr<VxMesh> Triangle(const VxPoint& a, const VxPoint& b, const VxPoint& c) {
    auto m = std::make_unique<VxMesh>();
    m->SetMeshData({a, b, c}, {0, 1, 2});
    return m;
}

TEST(SelectPointToEdge, MatchesBruteForceOnRandomSegments) {
    VxOpenGLSelect select;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-5.0, 5.0);
    for (int trial = 0; trial < 300; ++trial) {
        const VxPoint a(u(rng), u(rng), u(rng));
        const VxPoint b(u(rng), u(rng), u(rng));
        auto mesh = Triangle(a, b, VxPoint(u(rng), u(rng), u(rng)));
        // The edge joining vertices 0 and 1.
        const VxEdge* edge = nullptr;
        for (const VxEdge& e : mesh->GetEdges()) {
            int v0, v1;
            e.Get2VtxId(v0, v1);
            if ((v0 == 0 && v1 == 1) || (v0 == 1 && v1 == 0)) {
                edge = &e;
            }
        }
        ASSERT_NE(edge, nullptr);
        // Points beside the segment, beyond each end, and on its line.
        const VxPoint ps[] = {VxPoint(u(rng), u(rng), u(rng)),
                              VxPoint::Lerp(a, b, 1.7) + VxVector(0.1, 0.0, 0.0),
                              VxPoint::Lerp(a, b, -0.4), VxPoint::Lerp(a, b, 0.3)};
        for (const VxPoint& p : ps) {
            const double got = Access::PointToEdgeDis(select, mesh.get(), *edge, p);
            EXPECT_NEAR(got, BruteSegmentDistance(a, b, p), 1e-6) << "trial " << trial;
        }
    }
}

TEST(SelectPointToEdge, EndsAndDegenerateEdges) {
    VxOpenGLSelect select;
    auto mesh = Triangle(VxPoint(0, 0, 0), VxPoint(4, 0, 0), VxPoint(0, 3, 0));
    const VxEdge& e01 = *mesh->GetEdge(0);
    int v0, v1;
    e01.Get2VtxId(v0, v1);
    const VxPoint a = mesh->GetVertex(v0)->GetPos();
    const VxPoint b = mesh->GetVertex(v1)->GetPos();
    // Exactly at an end and exactly above an end: the nearer end.
    EXPECT_DOUBLE_EQ(Access::PointToEdgeDis(select, mesh.get(), e01, a), 0.0);
    EXPECT_NEAR(Access::PointToEdgeDis(select, mesh.get(), e01, b + VxVector(0, 0, 2)), 2.0, 1e-12);
    // A zero-length edge is a point.
    auto flat = std::make_unique<VxMesh>();
    flat->AddVertex(VxPoint(1, 1, 1));
    flat->AddVertex(VxPoint(1, 1, 1));
    flat->AddVertex(VxPoint(2, 1, 1));
    flat->AddFace(0, 1, 2);
    flat->Finish();
    const VxEdge* zero = nullptr;
    for (const VxEdge& e : flat->GetEdges()) {
        int x, y;
        e.Get2VtxId(x, y);
        if (std::min(x, y) == 0 && std::max(x, y) == 1) {
            zero = &e;
        }
    }
    ASSERT_NE(zero, nullptr);
    EXPECT_NEAR(Access::PointToEdgeDis(select, flat.get(), *zero, VxPoint(1, 4, 5)), 5.0, 1e-12);
}

// Hand-made selection buffers. Names come from the same table the drawers use.
class SelectHitsTest : public ::testing::Test {
protected:
    void SetUp() override { VxSelectNames::Reset(); }
    void TearDown() override { VxSelectNames::Reset(); }

    // One four-word record: name count 1, min depth, max depth, name.
    static void Record(std::vector<unsigned int>& b, unsigned int minZ, unsigned int name) {
        b.insert(b.end(), {1u, minZ, minZ + 10u, name});
    }
    VxObject* Hits(std::vector<unsigned int>& b, int count) {
        return Access::ProcessHits(select, count, b.data());
    }

    VxOpenGLSelect select;
    VxObject a, b, c;
};

TEST_F(SelectHitsTest, NearestMinimumDepthWins) {
    std::vector<unsigned int> buf;
    Record(buf, 5000, VxSelectNames::NameOf(&a));
    Record(buf, 1000, VxSelectNames::NameOf(&b));
    Record(buf, 3000, VxSelectNames::NameOf(&c));
    EXPECT_EQ(Hits(buf, 3), &b);
    // Only the records counted are read.
    EXPECT_EQ(Hits(buf, 1), &a);
}

TEST_F(SelectHitsTest, LaterRecordWinsATieAndDepthsCompareUnsigned) {
    std::vector<unsigned int> buf;
    Record(buf, 700, VxSelectNames::NameOf(&a));
    Record(buf, 700, VxSelectNames::NameOf(&b));
    EXPECT_EQ(Hits(buf, 2), &b);

    // 0x80000000 is above 0x7FFFFFFF as unsigned; a signed comparison would choose a.
    std::vector<unsigned int> wide;
    Record(wide, 0x80000000u, VxSelectNames::NameOf(&a));
    Record(wide, 0x7FFFFFFFu, VxSelectNames::NameOf(&b));
    EXPECT_EQ(Hits(wide, 2), &b);
    // The farthest possible depth still counts as a hit.
    std::vector<unsigned int> far;
    far.insert(far.end(), {1u, 0xFFFFFFFFu, 0xFFFFFFFFu, VxSelectNames::NameOf(&c)});
    EXPECT_EQ(Hits(far, 1), &c);
}

TEST_F(SelectHitsTest, NameZeroIsPassedOver) {
    std::vector<unsigned int> buf;
    Record(buf, 9000, VxSelectNames::NameOf(&a));
    Record(buf, 10, 0u);
    EXPECT_EQ(Hits(buf, 2), &a);
    std::vector<unsigned int> zeros;
    Record(zeros, 10, 0u);
    Record(zeros, 20, 0u);
    EXPECT_EQ(Hits(zeros, 2), nullptr);
}

TEST_F(SelectHitsTest, TwoNameRecordsAreReadOutOfStep) {
    const unsigned int na = VxSelectNames::NameOf(&a);
    const unsigned int nb = VxSelectNames::NameOf(&b);
    // One record of base name 0 and one pushed name: its fourth word is the base name, so the
    // single hit gives nothing.
    std::vector<unsigned int> one = {2u, 100u, 200u, 0u, na};
    EXPECT_EQ(Hits(one, 1), nullptr);

    // Two such records. The second "record" starts on the first one's last word, so its name is
    // the second record's maximum depth; made equal to b's name here, it answers b, though the
    // records name a and a.
    std::vector<unsigned int> two = {2u, 100u, 200u, 0u, na, 2u, 50u, nb, 0u, na};
    EXPECT_EQ(Hits(two, 2), &b);
    // With a real depth in that word the name means nothing, and the answer is null, not a
    // pointer made of a depth.
    std::vector<unsigned int> real = {2u, 100u, 200u, 0u, na, 2u, 50u, 0x7F000000u, 0u, na};
    EXPECT_EQ(Hits(real, 2), nullptr);
}

TEST_F(SelectHitsTest, NamesFromAnotherPickMeanNothing) {
    std::vector<unsigned int> buf;
    Record(buf, 10, VxSelectNames::NameOf(&a));
    VxSelectNames::Reset();
    EXPECT_EQ(Hits(buf, 1), nullptr);
}

// Candidates: the stencil kind picks the exact type; flags and placements narrow further.
class SelectCandidatesTest : public ::testing::Test {
protected:
    void SetUp() override {
        status->SetFeedbackType(FeedbackType_None);
        for (VxMesh* m :
             std::initializer_list<VxMesh*>{&mesh, &tooth, &gum, &jaw, &skull, &attachment}) {
            // A unit square at z = 0 around the origin.
            m->SetMeshData(
                {VxPoint(-1, -1, 0), VxPoint(1, -1, 0), VxPoint(1, 1, 0), VxPoint(-1, 1, 0)},
                {0, 1, 2, 0, 2, 3});
            model.AddEntity(m);
        }
        select.SetModel(&model);
    }
    void TearDown() override {
        VxTransformMatrix::GetInstance()->Clear();
        status->SetFeedbackType(FeedbackType_None);
    }
    std::vector<VxEntity*> At(double x, double y) {
        return Access::Candidates(select, VxLine(VxPoint(x, y, 10.0), VxVector(0, 0, -1)));
    }
    void Place(VxEntity* e, std::initializer_list<DrawInfo_s> infos) {
        VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
        tm->SetDrawInfos(e, tm->GetCurrentStep(), std::set<DrawInfo_s>(infos));
    }

    VxRenderStatus* status = VxRenderStatus::GetInstance();
    VxOpenGLSelect select;
    VxModel model;
    VxMesh mesh;
    VxTooth tooth{11};
    VxGum gum{true};
    VxJaw jaw{true};
    VxSkull skull;
    VxAttachment attachment;
};

TEST_F(SelectCandidatesTest, FeedbackKindSelectsTheExactType) {
    const struct {
        FeedbackType_e feedback;
        VxEntity* expected;
    } rows[] = {{FeedbackType_Mesh, &mesh},    {FeedbackType_Tooth, &tooth},
                {FeedbackType_Gum, &gum},      {FeedbackType_UpperJaw, &jaw},
                {FeedbackType_LowerJaw, &jaw}, {FeedbackType_Attachment, &attachment}};
    for (const auto& row : rows) {
        status->SetFeedbackType(row.feedback);
        const std::vector<VxEntity*> c = At(0.2, 0.3);
        ASSERT_EQ(c.size(), 1u) << "feedback " << row.feedback;
        EXPECT_EQ(c[0], row.expected);
    }
    // The skull draws with stencil 1 but is no plain mesh; nothing answers to 0 or 7.
    status->SetFeedbackType(FeedbackType_Mesh);
    EXPECT_EQ(At(0.2, 0.3), std::vector<VxEntity*>{&mesh});
    for (int f : {0, 7}) {
        status->SetFeedbackType(static_cast<FeedbackType_e>(f));
        EXPECT_TRUE(At(0.2, 0.3).empty());
    }
    // A ray that misses.
    status->SetFeedbackType(FeedbackType_Tooth);
    EXPECT_TRUE(At(3.0, 0.0).empty());
}

TEST_F(SelectCandidatesTest, HiddenDeletedAndShelteredAreSkipped) {
    status->SetFeedbackType(FeedbackType_Tooth);
    tooth.SetVisible(0);
    EXPECT_TRUE(At(0, 0.5).empty());
    tooth.SetVisible(1);
    tooth.SetDeleted(1);
    EXPECT_TRUE(At(0, 0.5).empty());
    tooth.SetDeleted(0);
    tooth.SetShelter(1);
    EXPECT_TRUE(At(0, 0.5).empty());
    tooth.SetShelter(0);
    EXPECT_EQ(At(0, 0.5).size(), 1u);
}

TEST_F(SelectCandidatesTest, PlacementsDecideAndLimitedOnesAreGhosts) {
    status->SetFeedbackType(FeedbackType_Tooth);
    const VxMatrix right = VxMatrix::Translation(VxVector(5, 0, 0));
    const VxMatrix up = VxMatrix::Translation(VxVector(0, 0, 3));
    // Moved away: the original spot no longer hits, the placed one does.
    Place(&tooth, {DrawInfo_s(false, right)});
    EXPECT_TRUE(At(0.2, 0.2).empty());
    EXPECT_EQ(At(5.2, 0.2).size(), 1u);
    // Two placements on the ray: the tooth stands twice.
    Place(&tooth, {DrawInfo_s(false, VxMatrix::Identity(4)), DrawInfo_s(false, up)});
    EXPECT_EQ(At(0.2, 0.2), (std::vector<VxEntity*>{&tooth, &tooth}));
    // A limited placement is never picked, even where it is the only one on the ray.
    Place(&tooth, {DrawInfo_s(false, right), DrawInfo_s(true, VxMatrix::Identity(4))});
    EXPECT_TRUE(At(0.2, 0.2).empty());
    EXPECT_EQ(At(5.2, 0.2).size(), 1u);
    // Only limited placements: nothing at all, not even the identity.
    Place(&tooth, {DrawInfo_s(true, VxMatrix::Identity(4))});
    EXPECT_TRUE(At(0.2, 0.2).empty());
}

TEST(SelectWithoutModel, PicksNothing) {
    VxOpenGLSelect select;
    VxRenderStatus::GetInstance()->SetFeedbackType(FeedbackType_Tooth);
    EXPECT_TRUE(Access::Candidates(select, VxLine(VxPoint(0, 0, 1), VxVector(0, 0, -1))).empty());
    VxRenderStatus::GetInstance()->SetFeedbackType(FeedbackType_None);
    // The selecter of the render state exists from the start.
    EXPECT_NE(VxRenderStatus::GetInstance()->GetSelecter(), nullptr);
    EXPECT_NE(VxRenderStatus::GetInstance()->GetFrameBufObj(), nullptr);
}

} // namespace
