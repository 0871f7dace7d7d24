// IPR and attachment labels as the cache builds them over a real context: the text each show form
// writes, where each leader ends (worked out here from the geometry, not by the library's own
// helpers), the jaw toggles, hiding and clearing, and that a frame with the labels leaves no GL
// error. The view looks down -z with x right and y up at 4 pixels a millimetre.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 320;
constexpr int kH = 240;

VxCacheStuff* Cache() {
    return VxCacheStuff::GetInstance();
}

// A tooth with a unit-cube crown around `centre`, so that its box centre is `centre`, and the
// given z axis.
std::unique_ptr<VxTooth> Tooth(int fdi, const VxPoint& centre = VxPoint(),
                               const VxVector& z = VxVector(0, 1, 0)) {
    auto t = std::make_unique<VxTooth>();
    t->SetFDI(fdi);
    std::vector<VxPoint> p;
    for (int i = 0; i < 8; ++i) {
        p.emplace_back(centre[0] + (i & 1 ? 0.5 : -0.5), centre[1] + (i & 2 ? 0.5 : -0.5),
                       centre[2] + (i & 4 ? 0.5 : -0.5));
    }
    t->SetMeshData(p, {0, 1, 3, 0, 3, 2});
    // x across z, y = z x x: the frame's own z is then z.
    VxVector x = VxVector(1, 0, 0);
    if (std::fabs(x % z) > 0.9) {
        x = VxVector(0, 0, 1);
    }
    x = x - z * (x % z);
    x.Normalize();
    t->SetFrame(VxFrame(centre, x, z * x));
    return t;
}

void ExpectAt(const VxPoint& actual, double x, double y, double z, const char* what) {
    EXPECT_NEAR(actual[0], x, 1e-6) << what;
    EXPECT_NEAR(actual[1], y, 1e-6) << what;
    EXPECT_NEAR(actual[2], z, 1e-6) << what;
}

// The labels as a host sees them: the registry's pin labels, in the order they were shown.
std::vector<VxAuxBillBoard3d*> Labels() {
    std::vector<VxAuxBillBoard3d*> out;
    for (VxAuxObject* o : VxAuxTestScene::Aux()->GetBillBoards()) {
        out.push_back(static_cast<VxAuxBillBoard3d*>(o));
    }
    return out;
}

std::wstring TextOf(const VxAuxBillBoard3d* label) {
    return label->GetText().Str();
}

class OverlayLabelsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        scene = std::make_unique<VxAuxTestScene>(4.0, false);
    }
    void TearDown() override {
        if (!open) {
            return;
        }
        // The cache's labels point into the registry the scene clears: they go first.
        Cache()->ClearRemoveGlazeInfo();
        Cache()->RemoveAttachmentHelper();
        scene.reset();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
};

TEST_F(OverlayLabelsTest, IprTextsOfTheShowForms) {
    auto a = Tooth(11);
    auto b = Tooth(21);
    const VxIPR ipr(a.get(), b.get(), 5, 0.2, 0.3, VxPoint(0, 0, 0));
    // Showing builds glyph lists and maps points to the screen; it leaves the GL state alone.
    GLint attribs = -1;
    GLint matrices = -1;
    GLint list = -1;
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &attribs);
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &matrices);
    glGetIntegerv(GL_LIST_INDEX, &list);
    Cache()->ShowRemoveGlaze(ipr, VxPoint(0, -5, 0));
    Cache()->NuRenderShowRemoveGlazeWithStartPoint(*a, *b, 7, 0.3, VxPoint(), ipr,
                                                   VxPoint(0, -5, 0));
    Cache()->NuRenderShowRemoveGlazeWithStartPoint(*a, *b, 7, 1.2, VxPoint(), ipr,
                                                   VxPoint(0, -5, 0));
    Cache()->NuRenderShowRemoveGlazeWithStartPoint(*a, *b, 7, -0.3, VxPoint(), ipr,
                                                   VxPoint(0, -5, 0));
    Cache()->NuRenderShowRemoveGlazeWithStartPointwithMark(*a, *b, 7, 0.3, 2468, VxPoint(), ipr,
                                                           VxPoint(0, -5, 0));
    Cache()->ShowRemoveGlazeWithStartPoint(*a, *b, 9, 1.25, VxPoint(), ipr, VxPoint(0, -5, 0));
    Cache()->ShowRemoveGlazeWithStartPointwithMark(1357, VxPoint(), ipr, VxPoint(0, -5, 0));
    GLint value = -1;
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &value);
    EXPECT_EQ(value, attribs);
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &value);
    EXPECT_EQ(value, matrices);
    glGetIntegerv(GL_LIST_INDEX, &value);
    EXPECT_EQ(value, list) << "no display list left open";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    std::vector<VxAuxBillBoard3d*> labels = Labels();
    ASSERT_EQ(labels.size(), 7u);
    // The record's own form shows its step and its widest gap, not the amount removed.
    EXPECT_EQ(TextOf(labels[0]), L" 5(0.3)");
    EXPECT_EQ(TextOf(labels[1]), L".3");
    EXPECT_EQ(TextOf(labels[2]), L"1.2");
    EXPECT_EQ(TextOf(labels[3]), L"-0.3");
    EXPECT_EQ(TextOf(labels[4]), L" 7(0.3)");
    EXPECT_EQ(TextOf(labels[5]), L" 9(1.2)");
    EXPECT_EQ(TextOf(labels[6]), L" 5(0.3)");
    EXPECT_EQ(labels[4]->GetMark(), 2468);
    EXPECT_EQ(labels[6]->GetMark(), 1357);
    EXPECT_EQ(labels[1]->GetMark(), 0);
    // Every label is drawn in the label green.
    for (const VxAuxBillBoard3d* l : labels) {
        EXPECT_EQ(l->GetColor(), VxColor(2, 187, 112, 255));
    }

    // A record without its pair has nothing to label.
    Cache()->ShowRemoveGlaze(VxIPR(), VxPoint(0, -5, 0));
    Cache()->ShowRemoveGlazeWithStartPoint(
        VxPoint(), VxIPR(a.get(), nullptr, 1, 0.1, 0.1, VxPoint()), VxPoint(0, -5, 0));
    EXPECT_EQ(Labels().size(), 7u);
}

TEST_F(OverlayLabelsTest, IprLeadersEndWhereTheGeometrySays) {
    // The record's own form: out from the reference through the gap, 9 units when the reference
    // stands left of the gap on the screen, 14 when right.
    auto a = Tooth(11);
    auto b = Tooth(12);
    const VxPoint gap(2, 1, 0);
    Cache()->ShowRemoveGlaze(VxIPR(a.get(), b.get(), 5, 0.3, 0.3, gap), VxPoint(-1, -3, 0));
    Cache()->ShowRemoveGlaze(VxIPR(a.get(), b.get(), 5, 0.3, 0.3, gap), VxPoint(5, -3, 0));
    // The other forms: the way out leans towards the teeth's axes by 0.75 of their mean and
    // reaches 16.5. Axes x and y: mean (1, 1, 0)/sqrt(2).
    auto c = Tooth(11, VxPoint(), VxVector(1, 0, 0));
    auto d = Tooth(21, VxPoint(), VxVector(0, 1, 0));
    Cache()->ShowRemoveGlazeWithStartPoint(*c, *d, 3, 0.2, gap, VxIPR(), VxPoint(2, -7, 0));
    const std::vector<VxAuxBillBoard3d*> labels = Labels();
    ASSERT_EQ(labels.size(), 3u);
    // (3, 4)/5 out of the left reference: 9 * (0.6, 0.8).
    ExpectAt(labels[0]->GetTextPos(), 2 + 5.4, 1 + 7.2, 0, "reference left");
    // (-3, 4)/5 out of the right one: 14 * (-0.6, 0.8).
    ExpectAt(labels[1]->GetTextPos(), 2 - 8.4, 1 + 11.2, 0, "reference right");
    const double m = std::sqrt(0.5);
    double vx = 0.75 * m;
    double vy = 1.0 + 0.75 * m;
    const double len = std::hypot(vx, vy);
    vx *= 16.5 / len;
    vy *= 16.5 / len;
    ExpectAt(labels[2]->GetTextPos(), 2 + vx, 1 + vy, 0, "tilted");
    // A label left of its gap on the screen grows away from it to the left.
    EXPECT_EQ(labels[1]->GetAnchor(), AnchorPosition_Side);
    EXPECT_EQ(labels[0]->GetAnchor(), AnchorPosition_Below);

    // A frame with the labels puts green leaders and white plates on the screen.
    const VxTestImage img = scene->FrameWithAux();
    VxAuxTestScene::Save(img, "overlay_ipr_leaders");
    // The plate stands off the label point by its anchor, and the leader runs to the plate:
    // probe halfway between the gap and the drawn plate's centre.
    VxPoint plate;
    for (int i = 0; i < 4; ++i) {
        const VxPoint& c = labels[0]->GetPlateCorner(i);
        plate = VxPoint(plate[0] + c[0] / 4, plate[1] + c[1] / 4, plate[2] + c[2] / 4);
    }
    const CPoint mid = scene->ToScreen(
        VxPoint((gap[0] + plate[0]) / 2, (gap[1] + plate[1]) / 2, (gap[2] + plate[2]) / 2));
    int green = 0;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const std::uint8_t* p = img.Pixel(mid.x + dx, mid.y + dy);
            green += (p[1] > 120 && p[0] < 80 && p[2] < 160) ? 1 : 0;
        }
    }
    EXPECT_GT(green, 0) << "no green leader between the gap and its label";
}

TEST_F(OverlayLabelsTest, IprJawTogglesHidingAndClearing) {
    auto u1 = Tooth(11);
    auto u2 = Tooth(21);
    auto l1 = Tooth(31);
    auto l2 = Tooth(41);
    auto hidden = Tooth(22);
    hidden->SetVisible(0);
    const VxPoint ref(0, -5, 0);
    Cache()->ShowRemoveGlaze(VxIPR(u1.get(), u2.get(), 1, 0.1, 0.1, VxPoint()), ref);
    Cache()->ShowRemoveGlaze(VxIPR(l1.get(), l2.get(), 1, 0.1, 0.1, VxPoint()), ref);
    Cache()->ShowRemoveGlaze(VxIPR(u1.get(), u2.get(), 1, 0.1, 0.1, VxPoint()), ref); // again
    Cache()->ShowRemoveGlaze(VxIPR(u2.get(), hidden.get(), 1, 0.1, 0.1, VxPoint()), ref);
    const std::vector<VxAuxBillBoard3d*> labels = Labels();
    ASSERT_EQ(labels.size(), 4u) << "a second show of one pair is a second label";
    EXPECT_FALSE(labels[3]->IsVisible()) << "a hidden tooth's label starts hidden";

    Cache()->UpdateRemoveGlazeInfo(true, 0);
    EXPECT_FALSE(labels[0]->IsVisible());
    EXPECT_FALSE(labels[2]->IsVisible());
    EXPECT_TRUE(labels[1]->IsVisible()) << "the lower jaw's label stays";
    Cache()->UpdateRemoveGlazeInfo(true, 1);
    EXPECT_TRUE(labels[0]->IsVisible());
    EXPECT_TRUE(labels[3]->IsVisible()) << "the toggle shows it like the others";

    // The shader path's names do nothing at all.
    Cache()->NuRenderUpdateRemoveGlazeInfo(true, 0);
    Cache()->NuRenderHideRemoveGlazeInfo();
    Cache()->NuRenderClearRemoveGlazeInfo();
    EXPECT_EQ(Labels(), labels);
    EXPECT_TRUE(labels[0]->IsVisible());

    scene->FrameWithAux();
    Cache()->HideRemoveGlazeInfo();
    EXPECT_TRUE(Labels().empty());
    Cache()->UpdateRemoveGlazeInfo(true, 1); // nothing left to reach
    Cache()->ShowRemoveGlaze(VxIPR(u1.get(), u2.get(), 1, 0.1, 0.1, VxPoint()), ref);
    EXPECT_EQ(Labels().size(), 1u) << "a hide does not come back";
    Cache()->ClearRemoveGlazeInfo();
    EXPECT_TRUE(Labels().empty());
    Cache()->ClearRemoveGlazeInfo(); // twice is harmless
}

TEST_F(OverlayLabelsTest, AttachmentLabelDistancesBySideFamilyAndScreen) {
    // Teeth centred on the origin with their y axis along +y: an attachment at +y is outward.
    auto t11 = Tooth(11, VxPoint(), VxVector(0, 0, 1));
    auto t21 = Tooth(21, VxPoint(), VxVector(0, 0, 1));
    ASSERT_NEAR(t11->GetFrame().DirY()[1], 1.0, 1e-9);
    VxStdAttach plain(L"RECT-H3", VxColor(200, 200, 90));
    VxStdAttach rm(L"X-RM-1", VxColor(200, 200, 90));
    const auto attach = [](VxStdAttach* shape, VxTooth* tooth, double y) {
        auto a = std::make_unique<VxAttachment>(shape, tooth);
        a->SetCurFrame(VxFrame(VxPoint(0, y, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
        a->SetSteps(2, 9);
        return a;
    };
    // Moved by the current matrix: the label stands at the moved origin.
    std::vector<std::unique_ptr<VxAttachment>> owned;
    owned.push_back(attach(&plain, t11.get(), 2));  // 11 outward: 10
    owned.push_back(attach(&plain, t11.get(), -2)); // 11 inward: 5
    owned.push_back(attach(&plain, t21.get(), 2));  // 21 outward: 5
    owned.push_back(attach(&plain, t21.get(), -2)); // 21 inward: 10
    owned.push_back(attach(&rm, t21.get(), 2));     // the family rule: 10
    std::vector<VxAttachment*> list;
    for (auto& a : owned) {
        list.push_back(a.get());
    }
    // The centre stands left of every attachment on the screen: distances as they are.
    VxPoint centre(-20, 0, 0);
    Cache()->ShowAttachmentInfo(list, centre);
    std::vector<VxAuxBillBoard3d*> labels = Labels();
    ASSERT_EQ(labels.size(), 5u);
    const double expected[] = {10, 5, 5, 10, 10};
    for (size_t i = 0; i < labels.size(); ++i) {
        const VxPoint p(0, i % 2 == 0 || i == 4 ? 2.0 : -2.0, 0);
        VxVector v = p - centre;
        v.Normalize();
        const VxPoint want = p + v * expected[i];
        VxPoint got = labels[i]->GetTextPos();
        if (p[1] > want[1]) {
            got[1] += 5.0; // a leader that falls hangs its plate 5 lower
        }
        ExpectAt(got, want[0], want[1], want[2], "centre left");
        EXPECT_EQ(TextOf(labels[i]), L" 2(9)");
    }
    // The centre right of them doubles every distance; a second show replaces the first.
    centre = VxPoint(20, 0, 0);
    Cache()->ShowAttachmentInfo(list, centre);
    labels = Labels();
    ASSERT_EQ(labels.size(), 5u) << "the second show replaces the first";
    for (size_t i = 0; i < labels.size(); ++i) {
        const VxPoint p(0, i % 2 == 0 || i == 4 ? 2.0 : -2.0, 0);
        VxVector v = p - centre;
        v.Normalize();
        const VxPoint want = p + v * (2.0 * expected[i]);
        VxPoint got = labels[i]->GetTextPos();
        if (p[1] > want[1]) {
            got[1] += 5.0;
        }
        ExpectAt(got, want[0], want[1], want[2], "centre right");
    }

    // The jaw toggle, a hidden tooth, and labels with nothing to stand on.
    Cache()->UpdateAttachmentInfo(false, 0);
    EXPECT_TRUE(labels[0]->IsVisible()) << "upper labels are not lower ones";
    Cache()->UpdateAttachmentInfo(true, 0);
    EXPECT_FALSE(labels[0]->IsVisible());
    t21->SetVisible(0);
    VxAttachment orphan(nullptr, nullptr);
    VxAttachment shapeless(nullptr, t21.get());
    list = {&orphan, &shapeless, nullptr};
    Cache()->ShowAttachmentInfo(list, centre);
    labels = Labels();
    ASSERT_EQ(labels.size(), 1u);
    EXPECT_FALSE(labels[0]->IsVisible());
    scene->FrameWithAux();
    Cache()->HideAttachmentInfo();
    EXPECT_TRUE(Labels().empty());
}

} // namespace
