// Selection without a GL context: the point-to-edge distance against a search along the segment,
// the hit-record loop on hand-made selection buffers (four-word stride, nearest depth by unsigned
// comparison, later record on a tie, name 0 and two-name records), and the candidate list (exact
// type per stencil kind, flags, limited placements, doubles).
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

// Distance from p to the segment ab by ternary search on the parameter (the distance is convex
// along the segment): independent of any projection formula.
double SearchedSegmentDistance(const VxPoint& a, const VxPoint& b, const VxPoint& p) {
    double lo = 0.0, hi = 1.0;
    for (int k = 0; k < 200; ++k) {
        const double m1 = lo + (hi - lo) / 3.0, m2 = hi - (hi - lo) / 3.0;
        if (p.DistanceToPoint(VxPoint::Lerp(a, b, m1)) <
            p.DistanceToPoint(VxPoint::Lerp(a, b, m2))) {
            hi = m2;
        } else {
            lo = m1;
        }
    }
    return p.DistanceToPoint(VxPoint::Lerp(a, b, 0.5 * (lo + hi)));
}

// The edge joining vertices i and j of a mesh.
const VxEdge* EdgeBetween(const VxMesh& mesh, int i, int j) {
    for (const VxEdge& e : mesh.GetEdges()) {
        int v0, v1;
        e.Get2VtxId(v0, v1);
        if (std::min(v0, v1) == std::min(i, j) && std::max(v0, v1) == std::max(i, j)) {
            return &e;
        }
    }
    return nullptr;
}

TEST(SelectPointToEdge, MatchesASearchOnRandomSegments) {
    VxOpenGLSelect select;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(-5.0, 5.0);
    for (int trial = 0; trial < 300; ++trial) {
        const VxPoint a(u(rng), u(rng), u(rng));
        const VxPoint b(u(rng), u(rng), u(rng));
        VxMesh mesh;
        mesh.SetMeshData({a, b, VxPoint(u(rng), u(rng), u(rng))}, {0, 1, 2});
        const VxEdge* edge = EdgeBetween(mesh, 0, 1);
        ASSERT_NE(edge, nullptr);
        // Points beside the segment, beyond each end, and on its line.
        const VxPoint ps[] = {VxPoint(u(rng), u(rng), u(rng)),
                              VxPoint::Lerp(a, b, 1.7) + VxVector(0.1, 0.0, 0.0),
                              VxPoint::Lerp(a, b, -0.4), VxPoint::Lerp(a, b, 0.3)};
        for (const VxPoint& p : ps) {
            EXPECT_NEAR(Access::PointToEdgeDis(select, &mesh, *edge, p),
                        SearchedSegmentDistance(a, b, p), 1e-6)
                << "trial " << trial;
        }
    }
}

TEST(SelectPointToEdge, EndsAndDegenerateEdges) {
    VxOpenGLSelect select;
    VxMesh mesh;
    mesh.SetMeshData({VxPoint(0, 0, 0), VxPoint(4, 0, 0), VxPoint(0, 3, 0)}, {0, 1, 2});
    const VxEdge& e01 = *EdgeBetween(mesh, 0, 1);
    // Exactly at an end and exactly above an end: the nearer end.
    EXPECT_DOUBLE_EQ(Access::PointToEdgeDis(select, &mesh, e01, VxPoint(0, 0, 0)), 0.0);
    EXPECT_NEAR(Access::PointToEdgeDis(select, &mesh, e01, VxPoint(4, 0, 2)), 2.0, 1e-12);
    // A zero-length edge is a point.
    VxMesh flat;
    flat.AddVertex(VxPoint(1, 1, 1));
    flat.AddVertex(VxPoint(1, 1, 1));
    flat.AddVertex(VxPoint(2, 1, 1));
    flat.AddFace(0, 1, 2);
    flat.Finish();
    const VxEdge* zero = EdgeBetween(flat, 0, 1);
    ASSERT_NE(zero, nullptr);
    EXPECT_NEAR(Access::PointToEdgeDis(select, &flat, *zero, VxPoint(1, 4, 5)), 5.0, 1e-12);
}

// Hand-made selection buffers; names come from the same table the drawers use. A plain record
// is four words: name count 1, min depth, max depth, name.
TEST(SelectHits, RecordLoopRules) {
    VxSelectNames::Reset();
    VxOpenGLSelect select;
    VxObject a, b, c;
    const unsigned int na = VxSelectNames::NameOf(&a);
    const unsigned int nb = VxSelectNames::NameOf(&b);
    const unsigned int nc = VxSelectNames::NameOf(&c);
    const struct {
        const char* what;
        std::vector<unsigned int> buffer;
        int count;
        VxObject* expected;
    } cases[] = {
        {"nearest min depth", {1, 5000, 5010, na, 1, 1000, 1010, nb, 1, 3000, 3010, nc}, 3, &b},
        {"only counted records are read", {1, 5000, 5010, na, 1, 1000, 1010, nb}, 1, &a},
        {"later record wins a tie", {1, 700, 710, na, 1, 700, 710, nb}, 2, &b},
        // A signed comparison would choose a.
        {"depths compare unsigned",
         {1, 0x80000000u, 0x8000000Au, na, 1, 0x7FFFFFFFu, 0x80000009u, nb},
         2,
         &b},
        {"farthest depth still hits", {1, 0xFFFFFFFFu, 0xFFFFFFFFu, nc}, 1, &c},
        {"name 0 passed over", {1, 9000, 9010, na, 1, 10, 20, 0}, 2, &a},
        {"only name 0", {1, 10, 20, 0, 1, 20, 30, 0}, 2, nullptr},
        // Base name 0 and one pushed name: the fourth word is the base name.
        {"two-name record", {2, 100, 200, 0, na}, 1, nullptr},
        // The second "record" starts on the first one's last word, so its name is the second
        // record's maximum depth; made equal to b's name it answers b, though both name a.
        {"two two-name records", {2, 100, 200, 0, na, 2, 50, nb, 0, na}, 2, &b},
        // With a real depth in that word the answer is null, not a pointer made of a depth.
        {"depth read as a name", {2, 100, 200, 0, na, 2, 50, 0x7F000000u, 0, na}, 2, nullptr},
    };
    for (const auto& k : cases) {
        std::vector<unsigned int> buffer = k.buffer;
        EXPECT_EQ(Access::ProcessHits(select, k.count, buffer.data()), k.expected) << k.what;
    }
    // Names from another pick mean nothing.
    std::vector<unsigned int> stale = {1, 10, 20, na};
    VxSelectNames::Reset();
    EXPECT_EQ(Access::ProcessHits(select, 1, stale.data()), nullptr);
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
    // The skull draws with stencil 1 but is no plain mesh; nothing answers to 0 or 7.
    const struct {
        int feedback;
        std::vector<VxEntity*> expected;
    } rows[] = {{FeedbackType_Mesh, {&mesh}},
                {FeedbackType_Tooth, {&tooth}},
                {FeedbackType_Gum, {&gum}},
                {FeedbackType_UpperJaw, {&jaw}},
                {FeedbackType_LowerJaw, {&jaw}},
                {FeedbackType_Attachment, {&attachment}},
                {0, {}},
                {7, {}}};
    for (const auto& row : rows) {
        status->SetFeedbackType(static_cast<FeedbackType_e>(row.feedback));
        EXPECT_EQ(At(0.2, 0.3), row.expected) << "feedback " << row.feedback;
    }
    // A ray that misses.
    status->SetFeedbackType(FeedbackType_Tooth);
    EXPECT_TRUE(At(3.0, 0.0).empty());
}

TEST_F(SelectCandidatesTest, HiddenDeletedAndShelteredAreSkipped) {
    status->SetFeedbackType(FeedbackType_Tooth);
    for (void (VxObject::*set)(int) : {&VxObject::SetDeleted, &VxObject::SetShelter}) {
        (tooth.*set)(1);
        EXPECT_TRUE(At(0, 0.5).empty());
        (tooth.*set)(0);
    }
    tooth.SetVisible(0);
    EXPECT_TRUE(At(0, 0.5).empty());
    tooth.SetVisible(1);
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
}

} // namespace
