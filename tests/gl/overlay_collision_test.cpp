// Collision faces and value labels over a real context, on both render paths. A test tooth is a
// row of six flat squares facing the viewer, each with its own corners; the contact gives every
// square one depth, so each square must come out in one flat colour of the depth scale, with no
// tooth showing through it. Then the rules of the labels: which contacts get faces, the three
// label colours, the labels dropped for teeth nobody can see, and the wedge threshold.
#include "VxAuxTestScene.h"
#include "VxTestRenderPath.h"

#include <GL/glew.h>

#include <aux/VxAuxFace.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 320;
constexpr int kH = 200;
constexpr double kDepths[6] = {0.0, 0.25, 0.5, 0.75, 1.0, 1.5};
// The depth scale, truncated: what each square must show.
constexpr int kColours[6][3] = {{0, 0, 255},   {0, 127, 127}, {0, 255, 0},
                                {127, 127, 0}, {255, 0, 0},   {255, 0, 0}};

VxCacheStuff* Cache() {
    return VxCacheStuff::GetInstance();
}

// Six 6 mm squares in a row along x from x0, at height z, facing +z; square k has corners
// 4k .. 4k + 3 and faces 2k, 2k + 1.
void Squares(VxTooth& tooth, int fdi, double x0, double z) {
    tooth.SetFDI(fdi);
    std::vector<VxPoint> p;
    std::vector<int> t;
    for (int k = 0; k < 6; ++k) {
        const double a = x0 + 7.0 * k;
        p.insert(p.end(), {VxPoint(a, -3, z), VxPoint(a + 6, -3, z), VxPoint(a + 6, 3, z),
                           VxPoint(a, 3, z)});
        const int b = 4 * k;
        t.insert(t.end(), {b, b + 1, b + 2, b, b + 2, b + 3});
    }
    tooth.SetMeshData(p, t);
    tooth.Finish();
}

// A contact on `a` (mesh 0) with square k at depth kDepths[k]; `b` takes no faces.
VxGapInfo Contact(VxTooth* a, VxTooth* b, bool withDepths = true) {
    VxGapInfo g(a, b, false, 1.5, VxPoint(0, 8, 0));
    std::vector<int> faces;
    for (int f = 0; f < 12; ++f) {
        faces.push_back(f);
    }
    g.SetFaces(0, faces);
    if (withDepths) {
        for (int k = 0; k < 6; ++k) {
            for (int c = 0; c < 4; ++c) {
                g.AddVertexDepth(0, 4 * k + c, kDepths[k]);
            }
        }
    }
    return g;
}

// The overlay as the registry holds it: faces in its ordered set, labels in its text list.
std::vector<VxAuxFace*> Faces() {
    std::vector<VxAuxFace*> out;
    for (VxAuxObject* o : VxAuxTestScene::Aux()->GetAuxObjects()) {
        if (auto* f = dynamic_cast<VxAuxFace*>(o)) {
            out.push_back(f);
        }
    }
    return out;
}

std::vector<VxAuxText*> Texts() {
    std::vector<VxAuxText*> out;
    for (VxAuxObject* o : VxAuxTestScene::Aux()->GetTexts()) {
        if (auto* t = dynamic_cast<VxAuxText*>(o)) {
            out.push_back(t);
        }
    }
    return out;
}

size_t Objects() {
    return Faces().size() + Texts().size();
}

class OverlayCollisionTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH, false); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
        scene = std::make_unique<VxAuxTestScene>(6.0, false);
        Squares(upper, 11, -20, 0.0);
        Squares(lower, 41, -20, -5.0);
        Squares(neighbour, 12, -20, -10.0);
    }
    void TearDown() override {
        if (!open) {
            return;
        }
        Cache()->RemoveCollisionStuff();
        scene.reset();
        VxApplyRenderPath(VxTestRenderPath::Fixed);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
    VxTooth upper;
    VxTooth lower;
    VxTooth neighbour;
};

TEST_P(OverlayCollisionTest, EachSquareShowsItsDepthColourWithNoToothThrough) {
    // The tooth is drawn by the scene as well, so the patch lies exactly on its triangles.
    scene->model.AddEntity(&upper);
    VxGapInfo contact = Contact(&upper, &lower);
    Cache()->ShowCollisionInfo({&contact});
    ASSERT_EQ(Faces().size(), 2u) << "a contact across the jaws shows both teeth's faces";
    const VxTestImage img = scene->FrameWithAux();
    VxAuxTestScene::Save(img, "overlay_collision_squares_" + std::to_string(int(GetParam())));
    for (int k = 0; k < 6; ++k) {
        const CPoint lo = scene->ToScreen(VxPoint(-20 + 7.0 * k, 3, 0));
        const CPoint hi = scene->ToScreen(VxPoint(-20 + 7.0 * k + 6, -3, 0));
        int total = 0;
        int right = 0;
        // Two pixels in from the edges: every pixel of the square, not a sample.
        for (int y = lo.y + 2; y <= hi.y - 2; ++y) {
            for (int x = lo.x + 2; x <= hi.x - 2; ++x) {
                const std::uint8_t* p = img.Pixel(x, y);
                ++total;
                bool same = true;
                for (int c = 0; c < 3; ++c) {
                    same = same && std::abs(p[c] - kColours[k][c]) <= 2;
                }
                right += same ? 1 : 0;
            }
        }
        ASSERT_GT(total, 500) << "square " << k;
        EXPECT_EQ(right, total) << "square " << k << " at depth " << kDepths[k];
    }
    // The face pass gives back what it changed.
    EXPECT_FALSE(glIsEnabled(GL_POLYGON_OFFSET_FILL));
    GLint func = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &func);
    scene->Frame();
    GLint before = 0;
    glGetIntegerv(GL_DEPTH_FUNC, &before);
    VxAuxTestScene::Aux()->Render();
    glGetIntegerv(GL_DEPTH_FUNC, &func);
    EXPECT_EQ(func, before);
    scene->model.RemoveEntity(&upper);
}

TEST_P(OverlayCollisionTest, CornersWithoutADepthReadAsTouching) {
    VxGapInfo contact = Contact(&upper, &lower, false);
    contact.AddVertexDepth(0, 0, 1.0); // one red corner, the rest unmeasured
    Cache()->ShowCollisionInfo({&contact});
    const VxTestImage img = scene->FrameWithAux();
    const CPoint c = scene->ToScreen(VxPoint(-20 + 7.0 * 3 + 3, 0, 0));
    const std::uint8_t* p = img.Pixel(c.x, c.y);
    EXPECT_LT(p[0], 10);
    EXPECT_LT(p[1], 10);
    EXPECT_GT(p[2], 245) << "blue, not black";
}

TEST_P(OverlayCollisionTest, WhichContactsGetFacesAndLabels) {
    VxGapInfo across = Contact(&upper, &lower);
    VxGapInfo within = Contact(&upper, &neighbour);
    VxGapInfo gap(&upper, &neighbour, true, 0.3, VxPoint(0, 10, 0));
    VxMesh notATooth;
    VxGapInfo odd(&notATooth, &lower, false, 0.2, VxPoint());
    VxGapInfo empty;
    Cache()->ShowCollisionInfo({&across, nullptr, &within, &gap, &odd, &empty});
    EXPECT_EQ(Faces().size(), 2u) << "only the contact across the jaws has faces";
    const std::vector<VxAuxText*> texts = Texts();
    // The record without meshes has no tooth anyone sees: no label.
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[0]->GetColor(), VxColor(255, 64, 64, 100)) << "contact across the jaws";
    EXPECT_EQ(texts[1]->GetColor(), VxColor(64, 255, 64, 100)) << "contact within a jaw";
    EXPECT_EQ(texts[2]->GetColor(), VxColor(64, 64, 255, 100)) << "gap";
    EXPECT_EQ(texts[3]->GetColor(), VxColor(64, 255, 64, 100)) << "no jaw: not across";
    EXPECT_EQ(texts[2]->GetText().Str(), L"0.30");
    EXPECT_EQ(texts[0]->GetTextType(), Text_ModelNoDepth);
    EXPECT_EQ(texts[0]->GetSize(), 8);
    EXPECT_EQ(texts[2]->GetTextPos()[1], 10.0);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetTexts().size(), 4u);
    scene->FrameWithAux();

    // Hidden and sheltered teeth: a label needs one tooth on screen and one not sheltered.
    lower.SetVisible(0);
    upper.SetVisible(0);
    Cache()->ShowCollisionInfo({&across});
    EXPECT_EQ(Objects(), 0u) << "two hidden teeth: no faces, no label";
    upper.SetVisible(1);
    Cache()->ShowCollisionInfo({&across});
    EXPECT_EQ(Faces().size(), 1u) << "only the visible tooth's faces";
    EXPECT_EQ(Texts().size(), 1u);
    lower.SetVisible(1);
    upper.SetShelter(1);
    Cache()->ShowCollisionInfo({&across});
    EXPECT_EQ(Texts().size(), 1u) << "one sheltered tooth keeps the label";
    lower.SetShelter(1);
    Cache()->ShowCollisionInfo({&across});
    EXPECT_EQ(Texts().size(), 0u) << "both sheltered: no label";
    EXPECT_EQ(Faces().size(), 2u);

    // An empty list takes the earlier overlay away.
    Cache()->ShowCollisionInfo({});
    EXPECT_TRUE(VxAuxTestScene::Aux()->GetTexts().empty());
    EXPECT_TRUE(VxAuxTestScene::Aux()->GetAuxObjects().empty());
}

TEST_P(OverlayCollisionTest, WedgeDesignLabelsOnlyGapsAtTheThreshold) {
    VxGapInfo at(&upper, &lower, true, 0.3, VxPoint(0, 1, 0));
    VxGapInfo below(&upper, &lower, true, 0.29, VxPoint(0, 2, 0));
    VxGapInfo wide(&upper, &neighbour, true, 2.0, VxPoint(0, 3, 0));
    VxGapInfo contact = Contact(&upper, &lower);
    Cache()->ShowCollisionInfoInWorkDesignWedge({&at, &below, &wide, &contact}, 0.3);
    const std::vector<VxAuxText*> texts = Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0]->GetText().Str(), L"0.30");
    EXPECT_EQ(texts[1]->GetText().Str(), L"2.00");
    // Faces go with every record across the jaws, labelled or not: three records, two teeth.
    EXPECT_EQ(Faces().size(), 6u) << "the contact is not labelled but its faces show";
    scene->FrameWithAux();
}

VX_BOTH_RENDER_PATHS(OverlayCollisionTest);

} // namespace
