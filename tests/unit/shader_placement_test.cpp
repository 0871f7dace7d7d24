// The gap editor's placement arithmetic without a GL context: the pixel helpers, the depth tests
// that hide an element behind the dentition or behind a jaw's plane, the pull of far points into
// the view, the element size bands, and the packed glyph cell.
#include <frame/NuCameraSnapshot.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <shader/NuEditorSize.h>
#include <shader/NuGlyphCell.h>
#include <shader/RenderV1.h>
#include <views/VxViewRegion.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <gtest/gtest.h>

namespace {

// The camera every placement test reads: a projection and an eye looking at a centre.
void SetCamera(const glm::mat4& projection, glm::vec3 eye, glm::vec3 centre, glm::vec3 up) {
    NuCameraSnapshot* camera = NuCameraSnapshot::GetInstance();
    double m[16];
    const float* f = glm::value_ptr(projection);
    for (int i = 0; i < 16; ++i) {
        m[i] = f[i];
    }
    camera->SetProjection(m);
    camera->SetEye(eye.x, eye.y, eye.z);
    camera->SetCenter(centre.x, centre.y, centre.z);
    camera->SetUp(up.x, up.y, up.z);
    camera->SetViewTransform(nullptr);
}

// Clip coordinates equal model coordinates.
void SetIdentityCamera() {
    SetCamera(glm::mat4(1.0f), {0, 0, 0}, {0, 0, -1}, {0, 1, 0});
}

void ExpectPoint(const VxPoint& actual, const VxPoint& expected, const std::string& what) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(actual[i], expected[i], 1e-6) << what << " component " << i;
    }
}

TEST(ShaderPlacement, PixelHelpersTruncateTowardZero) {
    RenderV1* r = RenderV1::GetInstance();
    struct Case {
        CPoint p;
        int n;
        CPoint divided;
        CPoint multiplied;
    };
    const Case cases[] = {
        {CPoint(5, -5), 2, CPoint(2, -2), CPoint(10, -10)},
        {CPoint(-7, 7), 3, CPoint(-2, 2), CPoint(-21, 21)},
        {CPoint(0, 9), -4, CPoint(0, -2), CPoint(0, -36)},
        {CPoint(7, -3), 0, CPoint(7, -3), CPoint(0, 0)}, // no division fault
    };
    for (const Case& c : cases) {
        EXPECT_EQ(r->Divider(c.p, c.n), c.divided) << c.p.x << "," << c.p.y << " / " << c.n;
        EXPECT_EQ(r->Multiplyer(c.p, c.n), c.multiplied) << c.p.x << "," << c.p.y << " * " << c.n;
    }
}

TEST(ShaderPlacement, DisplayJudgeShowsOnlyWhatIsOnTheViewersSideOfTheDentition) {
    RenderV1* r = RenderV1::GetInstance();
    VxViewRegion region(CPoint(0, 0), 800, 600);
    EXPECT_FALSE(r->DisplayJudge(nullptr, VxPoint(0, 0, 100)));

    // Eye on +z: a larger model z is nearer, and the reference point sits at z = 2.96.
    SetCamera(glm::ortho(-10.0f, 10.0f, -10.0f, 10.0f, 1.0f, 200.0f), {0, 0, 50}, {0, 0, 0},
              {0, 1, 0});
    struct Case {
        VxPoint p;
        bool shown;
    };
    const Case cases[] = {
        {VxPoint(0, 0, 10), true},           {VxPoint(5, -5, 2.97), true},
        {VxPoint(-0.58, -3.18, 2.96), true}, // at the reference depth itself
        {VxPoint(0, 0, 2.9), false},         {VxPoint(9, 9, -20), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(r->DisplayJudge(&region, c.p), c.shown) << "z " << c.p[2];
    }
    // Turned round, the same points swap sides.
    SetCamera(glm::ortho(-10.0f, 10.0f, -10.0f, 10.0f, 1.0f, 200.0f), {0, 0, -50}, {0, 0, 0},
              {0, 1, 0});
    EXPECT_FALSE(r->DisplayJudge(&region, VxPoint(0, 0, 10)));
    EXPECT_TRUE(r->DisplayJudge(&region, VxPoint(9, 9, -20)));
}

TEST(ShaderPlacement, DisplayJudgeforgapMeasuresFromTheUpperJawShifted15) {
    RenderV1* r = RenderV1::GetInstance();
    VxViewRegion region(CPoint(0, 0), 800, 600);
    VxModel model;
    VxJaw upper(true);
    VxJaw lower(false);
    // The lower jaw's frame is far away and must never be read.
    lower.SetFrame(VxFrame(VxPoint(0, 0, -500), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    model.AddEntity(&lower);
    model.AddEntity(&upper);
    r->Setthemodel(&model);

    // Jaw axis along +z: the reference moves along z. Clip z = model z here.
    upper.SetFrame(VxFrame(VxPoint(1, 2, 3), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    SetIdentityCamera();
    EXPECT_TRUE(r->DisplayJudgeforgap(&region, VxPoint(0, 0, 17.9), true));  // below 3 + 15
    EXPECT_TRUE(r->DisplayJudgeforgap(&region, VxPoint(0, 0, 18), true));    // equal depth
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, 0, 18.1), true)); // past it
    EXPECT_TRUE(r->DisplayJudgeforgap(&region, VxPoint(0, 0, -12), false));  // 3 - 15
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, 0, -11.9), false));

    // Jaw axis along -y (x by z): the reference moves along y, which the eye on -y sees as depth.
    upper.SetFrame(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 0, 1)));
    ASSERT_NEAR(upper.GetFrame().DirZ()[1], -1.0, 1e-9);
    SetCamera(glm::mat4(1.0f), {0, -50, 0}, {0, 0, 0}, {0, 0, 1});
    // Clip z = -(y + 50): the upper reference (y = 15) has clip z -65.
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, 10, 0), true));
    EXPECT_TRUE(r->DisplayJudgeforgap(&region, VxPoint(0, 20, 0), true));
    // Lower: y = -15, clip z -35.
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, -20, 0), false));
    EXPECT_TRUE(r->DisplayJudgeforgap(&region, VxPoint(0, -10, 0), false));

    // A tilted axis that is not steep enough (z 0.8 exactly) also moves along y.
    upper.SetFrame(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 0.8, -0.6)));
    ASSERT_NEAR(upper.GetFrame().DirZ()[2], 0.8, 1e-9);
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, 10, 0), true));

    EXPECT_FALSE(r->DisplayJudgeforgap(nullptr, VxPoint(0, 20, 0), true));
    r->Setthemodel(nullptr);
    EXPECT_FALSE(r->DisplayJudgeforgap(&region, VxPoint(0, 20, 0), true)) << "no model, no jaw";
}

TEST(ShaderPlacement, ChangePointPullsFarPointsInWithCompoundingFactors) {
    RenderV1* r = RenderV1::GetInstance();
    VxViewRegion region(CPoint(0, 0), 800, 600);
    SetIdentityCamera();
    struct Case {
        const char* what;
        VxPoint base;
        VxPoint p;
        VxPoint expected;
    };
    const Case cases[] = {
        {"inside stays", VxPoint(0, 0, 0), VxPoint(0.5, -0.75, 0.3), VxPoint(0.5, -0.75, 0.3)},
        {"one extent", VxPoint(0, 0, 0), VxPoint(3, 0, 1), VxPoint(0.75, 0, 0.25)},
        // x and y each 1.5: 0.5 times 0.5, not the smaller factor alone.
        {"two extents compound", VxPoint(0, 0, 0), VxPoint(1.5, -1.5, 0),
         VxPoint(0.375, -0.375, 0)},
        {"floor of 0.2", VxPoint(0, 0, 0), VxPoint(10, 0, 0), VxPoint(2, 0, 0)},
        {"compounded to the floor", VxPoint(0, 0, 0), VxPoint(2, 2, 0), VxPoint(0.4, 0.4, 0)},
        // The base's own extent counts too.
        {"base outside", VxPoint(1.5, 0, 0), VxPoint(0.5, 0, 0), VxPoint(1.0, 0, 0)},
    };
    for (const Case& c : cases) {
        ExpectPoint(r->ChangePoint(&region, c.base, c.p), c.expected, c.what);
    }
    ExpectPoint(r->ChangePoint(nullptr, VxPoint(0, 0, 0), VxPoint(10, 10, 10)), VxPoint(10, 10, 10),
                "null region");

    // Through a real camera: 75% of a 20-unit-wide view is 7.5 units from its centre.
    SetCamera(glm::ortho(-10.0f, 10.0f, -10.0f, 10.0f, 1.0f, 200.0f), {0, 0, 50}, {0, 0, 0},
              {0, 1, 0});
    ExpectPoint(r->ChangePoint(&region, VxPoint(0, 0, 0), VxPoint(15, 0, 0)), VxPoint(7.5, 0, 0),
                "ortho camera");
}

TEST(ShaderPlacement, EditorSizeBandsAndZoomLimit) {
    struct Band {
        int height;
        int base;
    };
    // 350 belongs to the top band, between the two lower ones.
    const Band bands[] = {{100, 1000}, {349, 1000}, {350, 4000}, {351, 2000},
                          {499, 2000}, {500, 4000}, {1200, 4000}};
    for (const Band& b : bands) {
        EXPECT_EQ(NuEditorSize::Base(b.height), b.base) << "height " << b.height;
    }
    EXPECT_DOUBLE_EQ(NuEditorSize::Scale(0.01), 0.01);
    EXPECT_DOUBLE_EQ(NuEditorSize::Scale(0.5), 0.035615);

    VxViewRegion region(CPoint(0, 0), 800, 600);
    region.GetXForm().SetScale(0.02);
    const NuEditorSize button(&region, 0.1f, 0.1f);
    EXPECT_NEAR(button.halfX, 4000.0 / 800 * 0.02 * 0.1, 1e-9);
    EXPECT_NEAR(button.halfY, 4000.0 / 600 * 0.02 * 0.1, 1e-9);
    const NuEditorSize card(&region, 1.0f, 1.0f, 0.8f);
    EXPECT_NEAR(card.halfY, 4000.0 / 600 * 0.02 * 0.8, 1e-7);
    // Zoomed past the limit: no further growth.
    region.GetXForm().SetScale(1.0);
    EXPECT_NEAR(NuEditorSize(&region, 1.0f, 1.0f).halfX, 4000.0 / 800 * 0.035615, 1e-7);
    // A small window: a quarter of the relative size of a large one.
    region.Set(CPoint(0, 0), 800, 300);
    EXPECT_NEAR(NuEditorSize(&region, 1.0f, 1.0f).halfY, 1000.0 / 300 * 0.035615, 1e-7);
    EXPECT_EQ(NuEditorSize(nullptr, 1.0f, 1.0f).halfX, 0.0);
    region.Set(CPoint(0, 0), 0, 0);
    EXPECT_EQ(NuEditorSize(&region, 1.0f, 1.0f).halfY, 0.0);
}

TEST(ShaderPlacement, GlyphCellPacksTenBitFieldsThatWrap) {
    NuGlyphCell cell;
    EXPECT_TRUE(cell.IsEmpty());
    cell.SetLeft(1);
    cell.SetTop(2);
    cell.SetRight(1023);
    cell.SetBottom(4);
    cell.SetBitmapLeft(5);
    cell.SetBitmapTop(6);
    cell.SetTexture(7);
    // Each field reads back alone: no neighbour overwrote it.
    EXPECT_EQ(cell.Left(), 1u);
    EXPECT_EQ(cell.Top(), 2u);
    EXPECT_EQ(cell.Right(), 1023u);
    EXPECT_EQ(cell.Bottom(), 4u);
    EXPECT_EQ(cell.BitmapLeft(), 5u);
    EXPECT_EQ(cell.BitmapTop(), 6u);
    EXPECT_EQ(cell.Texture(), 7u);
    EXPECT_EQ(cell.words[0], 1u | (2u << 10) | (1023u << 20));
    EXPECT_EQ(cell.words[2], 7u);
    // Over 1023 and below zero wrap at 10 bits.
    cell.SetRight(1024 + 9);
    cell.SetBitmapLeft(-1);
    cell.SetTexture(2050);
    EXPECT_EQ(cell.Right(), 9u);
    EXPECT_EQ(cell.BitmapLeft(), 1023u);
    EXPECT_EQ(cell.Texture(), 2u);
    EXPECT_EQ(cell.Top(), 2u);
    // Only left, right and bottom mark a cell as made.
    NuGlyphCell topOnly;
    topOnly.SetTop(12);
    topOnly.SetTexture(3);
    EXPECT_TRUE(topOnly.IsEmpty());
    NuGlyphCell space;
    space.SetLeft(8);
    space.SetRight(8);
    EXPECT_FALSE(space.IsEmpty());
}

} // namespace
