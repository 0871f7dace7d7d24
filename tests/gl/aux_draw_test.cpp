// What the aux objects put on screen, read back from real pixels after a frame: the depth modes
// of the contract on a half-buried sphere, the dash pattern of a dashed line, sphere sizes by
// style, the arrow's tip, the self-crossing check of a two-outline polyline, the circle's disc
// over nearer geometry, the plane grid's line counts, a box following its tooth's placement, and
// a face's per-vertex colours. The view looks down -z with x right; the grey slab covers x < 0.
#include "VxAuxTestScene.h"
#include "VxTestRenderPath.h"

#include <GL/glew.h>

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxBox.h>
#include <aux/VxAuxCircle.h>
#include <aux/VxAuxCurve.h>
#include <aux/VxAuxMesh.h>
#include <aux/VxAuxSurface.h>
#include <aux/VxAuxFace.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxPlane.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxPolyline.h>
#include <aux/VxAuxRender.h>
#include <frame/NuCameraSnapshot.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <views/VxViewRegion.h>
#include <views/VxViewManager.h>
#include <interfaces/VxXForm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 240;
constexpr int kH = 200;

class AuxDrawTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }
    static inline bool open = false;
};

// Runs of pixels along a row for which `on` holds, as (start, length).
template <typename On>
std::vector<std::pair<int, int>> Runs(const VxTestImage& img, int y, int x0, int x1, On on) {
    std::vector<std::pair<int, int>> runs;
    int start = -1;
    for (int x = x0; x <= x1; ++x) {
        const bool lit = x < x1 && on(img.Pixel(x, y));
        if (lit && start < 0) {
            start = x;
        } else if (!lit && start >= 0) {
            runs.emplace_back(start, x - start);
            start = -1;
        }
    }
    return runs;
}

bool Same(const std::uint8_t* a, const std::uint8_t* b, int tol = 6) {
    for (int k = 0; k < 3; ++k) {
        if (std::abs(a[k] - b[k]) > tol) {
            return false;
        }
    }
    return true;
}

TEST_F(AuxDrawTest, HalfBuriedSphereShowsItsHiddenHalfOnlyWhenAsked) {
    // 10 px/mm: a style-3 sphere of radius 0.6 is 12 px across; its centre on the slab's edge,
    // below the slab's top, so its left half lies inside the slab.
    VxAuxTestScene scene(10.0);
    auto* sphere = new VxAuxPoint();
    sphere->SetStyle(AuxPointStyle_Huge);
    sphere->SetPos(VxPoint(0, 0, 0));
    sphere->SetColor(VxColor(255, 0, 0));
    VxAuxTestScene::Aux()->AddAuxObject(sphere);
    const CPoint c = scene.ToScreen(VxPoint(0, 0, 0));
    const CPoint left(c.x - 3, c.y);
    const CPoint right(c.x + 3, c.y);
    const CPoint slabOnly(c.x - 30, c.y);

    VxTestImage plain = scene.FrameWithAux();
    VxAuxTestScene::Save(plain, "aux_sphere_plain");
    EXPECT_TRUE(IsRedDominant(plain.Pixel(right.x, right.y)));
    EXPECT_TRUE(Same(plain.Pixel(left.x, left.y), plain.Pixel(slabOnly.x, slabOnly.y)))
        << "the buried half is hidden by default";

    sphere->SetDrawHidden(true);
    VxTestImage hidden = scene.FrameWithAux();
    VxAuxTestScene::Save(hidden, "aux_sphere_hidden");
    const std::uint8_t* h = hidden.Pixel(left.x, left.y);
    const std::uint8_t* s = hidden.Pixel(slabOnly.x, slabOnly.y);
    EXPECT_FALSE(Same(h, s)) << "the buried half shows through";
    EXPECT_GT(h[0] - h[1], s[0] - s[1] + 20) << "and it is reddish";
    EXPECT_GT(h[1], 80) << "dimmed: the slab shows through it";

    // Front: one pass without depth test, whatever draw hidden says.
    sphere->SetIsFront(true);
    VxTestImage front = scene.FrameWithAux();
    EXPECT_TRUE(IsRedDominant(front.Pixel(left.x, left.y)));
    EXPECT_TRUE(Same(front.Pixel(left.x, left.y), front.Pixel(right.x, right.y), 40));

    // Selected: the selection amber replaces the colour.
    sphere->SetIsFront(false);
    sphere->SetSelected(1);
    VxTestImage selected = scene.FrameWithAux();
    const VxColor amber = VxColor::GetAuxSelectColor();
    const std::uint8_t* p = selected.Pixel(c.x + 1, c.y);
    EXPECT_GT(p[1], 60) << "amber has green in it, red has none";
    EXPECT_GT(p[0], p[2]);
    (void)amber;
}

TEST_F(AuxDrawTest, DashedLineIsSixteenOnSixteenOffAlongItsRow) {
    VxAuxTestScene scene(4.0, false);
    auto* line = new VxAuxLine();
    line->SetStartPoint(VxPoint(-25, 0, 0));
    line->SetStopPoint(VxPoint(25, 0, 0));
    line->SetColor(VxColor(255, 255, 0));
    line->SetType(AuxLineType_Dashed);
    VxAuxTestScene::Aux()->AddAuxObject(line);
    VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_dashed_line");
    const CPoint a = scene.ToScreen(line->StartPoint());
    const CPoint b = scene.ToScreen(line->StopPoint());
    // The two-pixel line covers the row of its screen y or the one above.
    int row = a.y;
    if (img.Pixel((a.x + b.x) / 2, row)[2] > 100 && img.Pixel((a.x + b.x) / 2 + 16, row)[2] > 100) {
        row = a.y - 1;
    }
    auto runs = Runs(img, row, 0, kW, [](const std::uint8_t* p) { return p[2] < 100; });
    ASSERT_GE(runs.size(), 5u);
    for (size_t i = 1; i + 1 < runs.size(); ++i) {
        EXPECT_NEAR(runs[i].second, 16, 1) << "dash " << i;
        EXPECT_NEAR(runs[i + 1].first - (runs[i].first + runs[i].second), 16, 1) << "gap " << i;
    }

    // Solid: one run from end to end.
    line->SetType(AuxLineType_Solid);
    img = scene.FrameWithAux();
    runs = Runs(img, row, 0, kW, [](const std::uint8_t* p) { return p[2] < 100; });
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_NEAR(runs[0].second, b.x - a.x, 2);
}

TEST_F(AuxDrawTest, SphereDiametersFollowTheStyle) {
    VxAuxTestScene scene(20.0, false);
    auto* point = new VxAuxPoint();
    point->SetColor(VxColor(255, 0, 0));
    VxAuxTestScene::Aux()->AddAuxObject(point);
    const CPoint c = scene.ToScreen(VxPoint(0, 0, 0));
    const struct {
        AuxPointStyle_e style;
        double diameterPx;
    } cases[] = {{AuxPointStyle_Normal, 8},           {AuxPointStyle_Tiny, 2},
                 {AuxPointStyle_Large, 16},           {AuxPointStyle_Huge, 24},
                 {AuxPointStyle_Medium, 12},          {AuxPointStyle_Dot, 6},
                 {static_cast<AuxPointStyle_e>(9), 8}};
    for (const auto& k : cases) {
        point->SetStyle(k.style);
        VxTestImage img = scene.FrameWithAux();
        auto runs = Runs(img, c.y, 0, kW, [](const std::uint8_t* p) { return p[1] < 150; });
        ASSERT_EQ(runs.size(), 1u) << "style " << k.style;
        EXPECT_NEAR(runs[0].second, k.diameterPx, 1.5) << "style " << k.style;
    }
}

TEST_F(AuxDrawTest, ArrowTipsEndOnTheirStopPixel) {
    VxAuxTestScene scene(6.0, false);
    auto* arrow = new VxAuxArrow();
    arrow->SetColor(VxColor(0, 255, 0));
    VxAuxTestScene::Aux()->AddAuxObject(arrow);
    // Along +x (the zero-v case of the orientation), along -x, and slanted in the plane.
    const VxPoint stops[] = {VxPoint(12, 0, 0), VxPoint(-12, 0, 0), VxPoint(0, 12, 0)};
    for (const VxPoint& stop : stops) {
        arrow->SetPoint(VxPoint(0, 0, 0), stop);
        VxTestImage img = scene.FrameWithAux();
        const CPoint s = scene.ToScreen(stop);
        const CPoint o = scene.ToScreen(VxPoint(0, 0, 0));
        const auto green = [](const std::uint8_t* p) { return p[0] < 150; };
        if (stop[1] == 0) {
            auto runs = Runs(img, o.y, 0, kW, green);
            ASSERT_EQ(runs.size(), 1u) << stop[0];
            const int tip = stop[0] > 0 ? runs[0].first + runs[0].second - 1 : runs[0].first;
            // The cone thins to nothing at its apex: the last covered pixel lies a little short,
            // while a head of the wrong length or direction would miss by six pixels or more.
            EXPECT_LE(std::abs(tip - s.x), 4) << stop[0];
            EXPECT_LE(stop[0] > 0 ? tip - s.x : s.x - tip, 1) << "never past the stop";
        } else {
            int top = -1;
            for (int y = 0; y < kH && top < 0; ++y) {
                top = green(img.Pixel(s.x, y)) ? y : -1;
            }
            EXPECT_LE(std::abs(top - s.y), 4);
            EXPECT_GE(top, s.y - 1);
        }
    }
    // Dual: a head at the start as well, so the start pixel is also covered.
    arrow->SetPoint(VxPoint(-12, 0, 0), VxPoint(12, 0, 0));
    arrow->SetDualArrow(true);
    arrow->SetBoldStyle(true); // heads 3 long, 1.2 across, over a shaft 0.6 across
    VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_dual_arrow");
    const CPoint o = scene.ToScreen(VxPoint(0, 0, 0));
    auto runs = Runs(img, o.y, 0, kW, [](const std::uint8_t* p) { return p[0] < 150; });
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_LE(std::abs(runs[0].first - scene.ToScreen(VxPoint(-12, 0, 0)).x), 3);
    // The heads are twice the shaft's width: count lit rows at the head's base and mid-shaft.
    const auto litRows = [&](int x) {
        int n = 0;
        for (int y = 0; y < kH; ++y) {
            n += img.Pixel(x, y)[0] < 150 ? 1 : 0;
        }
        return n;
    };
    EXPECT_GT(litRows(scene.ToScreen(VxPoint(-9.5, 0, 0)).x), litRows(o.x) + 1);
    EXPECT_GT(litRows(scene.ToScreen(VxPoint(9.5, 0, 0)).x), litRows(o.x) + 1);
}

TEST_F(AuxDrawTest, TwoOutlinePolylineTurnsRedWhereAHalfCrossesItself) {
    VxAuxTestScene scene(6.0, false);
    auto* poly = new VxAuxPolyline();
    poly->SetType(AuxPolylineStyle_TwoHalves);
    poly->SetColor(VxColor(0, 0, 255));
    VxAuxTestScene::Aux()->AddAuxObject(poly);
    // First half on the left (a square, or a bow tie that crosses itself); second half a square
    // on the right.
    const std::vector<VxPoint> square = {VxPoint(-14, -4, 0), VxPoint(-6, -4, 0), VxPoint(-6, 4, 0),
                                         VxPoint(-14, 4, 0)};
    const std::vector<VxPoint> bowTie = {VxPoint(-14, -4, 0), VxPoint(-6, 4, 0), VxPoint(-6, -4, 0),
                                         VxPoint(-14, 4, 0)};
    const std::vector<VxPoint> right = {VxPoint(6, -4, 0), VxPoint(14, -4, 0), VxPoint(14, 4, 0),
                                        VxPoint(6, 4, 0)};
    // The strips are open: their closing side at x = -6 and x = 14 is drawn.
    const CPoint leftEdge = scene.ToScreen(VxPoint(-6, 0, 0));
    const CPoint rightEdge = scene.ToScreen(VxPoint(14, 0, 0));
    const auto colourNear = [&](const VxTestImage& img, CPoint p) {
        for (int dx = -1; dx <= 1; ++dx) {
            const std::uint8_t* q = img.Pixel(p.x + dx, p.y);
            if (std::min({q[0], q[1], q[2]}) < 100) {
                return VxColor(q[0], q[1], q[2]);
            }
        }
        return VxColor();
    };
    for (bool crossing : {false, true}) {
        std::vector<VxPoint> pts = crossing ? bowTie : square;
        pts.insert(pts.end(), right.begin(), right.end());
        poly->SetPoints(pts);
        VxTestImage img = scene.FrameWithAux();
        VxAuxTestScene::Save(img, crossing ? "aux_poly_crossing" : "aux_poly_clean");
        const VxColor l = colourNear(img, leftEdge);
        EXPECT_EQ(l.GetR() > 150, crossing);
        EXPECT_EQ(l.GetG() > 150, !crossing);
        const VxColor r = colourNear(img, rightEdge);
        EXPECT_GT(r.GetB(), 150) << "the clean second half keeps the object's colour";
        EXPECT_LT(r.GetR(), 50);
    }
    // A crossing second half turns that half red too.
    std::vector<VxPoint> pts = square;
    pts.insert(pts.end(),
               {VxPoint(6, -4, 0), VxPoint(14, 4, 0), VxPoint(14, -4, 0), VxPoint(6, 4, 0)});
    poly->SetPoints(pts);
    VxTestImage img = scene.FrameWithAux();
    EXPECT_GT(colourNear(img, rightEdge).GetR(), 150);
}

TEST_F(AuxDrawTest, CircleDiscIsBlueOverNearerGeometryAndItsRingTakesTheColour) {
    VxAuxTestScene scene(6.0, true, 5.0);
    auto* circle = new VxAuxCircle();
    // Behind the slab's top, centred on its middle.
    circle->Set(VxPoint(-10, 0, -0.5), VxVector(0, 0, 2), 5.0);
    circle->SetColor(VxColor(255, 0, 0));
    circle->SetType(AuxCircleType_Both);
    VxAuxTestScene::Aux()->AddAuxObject(circle);
    scene.Frame();
    VxTestImage bare = VxAuxTestScene::Read();
    VxAuxTestScene::Aux()->Render();
    VxTestImage img = VxAuxTestScene::Read();
    VxAuxTestScene::Save(img, "aux_circle");
    const CPoint c = scene.ToScreen(VxPoint(-10, 0, 0));
    const std::uint8_t* before = bare.Pixel(c.x, c.y);
    const std::uint8_t* after = img.Pixel(c.x, c.y);
    EXPECT_GT(after[2] - after[0], before[2] - before[0] + 20) << "blue disc in front of the slab";
    const CPoint ring = scene.ToScreen(VxPoint(-5, 0, 0));
    bool reddish = false;
    for (int dx = -2; dx <= 2; ++dx) {
        const std::uint8_t* p = img.Pixel(ring.x + dx, ring.y);
        reddish = reddish || p[0] > p[1] + 40;
    }
    EXPECT_TRUE(reddish) << "ring in the object's colour, half transparent";
}

// Number of vertical lines crossing a row inside the plane, by colour.
int CountLines(const VxTestImage& img, int y, int x0, int x1, bool green) {
    return static_cast<int>(Runs(img, y, x0, x1, [green](const std::uint8_t* p) {
                                return green ? p[1] > p[0] + 60
                                             : (p[0] < 235 && std::abs(p[0] - p[1]) < 20);
                            }).size());
}

TEST_F(AuxDrawTest, GridPlaneDrawsUnitLinesAndFiveUnitGreenLinesFromTheMiddle) {
    VxAuxTestScene scene(8.0, false);
    auto* plane = new VxAuxPlane();
    plane->SetPlaneStyle(AuxPlaneStyle_Grid);
    VxAuxTestScene::Aux()->AddAuxObject(plane);
    plane->Set(VxPoint(-11, -11, 0), VxVector(22, 0, 0), VxVector(0, 22, 0));
    VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_grid_22");
    // Across a row between horizontal lines: unit lines at +-1..10 from the middle, of which
    // +-5 and +-10 are green.
    const int y = scene.ToScreen(VxPoint(0, -10.5, 0)).y;
    const int x0 = scene.ToScreen(VxPoint(-11, 0, 0)).x + 3;
    const int x1 = scene.ToScreen(VxPoint(11, 0, 0)).x - 2;
    EXPECT_EQ(CountLines(img, y, x0, x1, false), 20 - 4);
    EXPECT_EQ(CountLines(img, y, x0, x1, true), 4);
    // Down a column: unit lines at 1..21 from the first edge.
    int horizontal = 0;
    bool inLine = false;
    const int x = scene.ToScreen(VxPoint(0.5, 0, 0)).x;
    for (int yy = scene.ToScreen(VxPoint(0, 11, 0)).y + 3;
         yy <= scene.ToScreen(VxPoint(0, -11, 0)).y - 2; ++yy) {
        const bool lit = img.Pixel(x, yy)[0] < 235;
        horizontal += lit && !inLine ? 1 : 0;
        inLine = lit;
    }
    EXPECT_EQ(horizontal, 21);

    // Side 10.4 at a larger zoom: int(10.4) / 10 = 1 gives green lines at +-5 from the middle,
    // 0.2 inside the border; along v, int(10.4) / 5 = 2 gives green lines at 5 and 10 from the
    // first edge, so the top one is 0.4 under the border and nothing mirrors it at the bottom.
    VxAuxTestScene zoomed(16.0, false);
    auto* small = new VxAuxPlane();
    small->SetPlaneStyle(AuxPlaneStyle_Grid);
    small->Set(VxPoint(-5.2, -5.2, 0), VxVector(10.4, 0, 0), VxVector(0, 10.4, 0));
    VxAuxTestScene::Aux()->AddAuxObject(small);
    img = zoomed.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_grid_10_4");
    const auto greenAt = [&](const VxPoint& p) {
        const CPoint s = zoomed.ToScreen(p);
        for (int d = -1; d <= 1; ++d) {
            const std::uint8_t* q = p[0] == 0.3 ? img.Pixel(s.x, s.y + d) : img.Pixel(s.x + d, s.y);
            if (q[1] > q[0] + 60) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(greenAt(VxPoint(5, -2.5, 0)));
    EXPECT_TRUE(greenAt(VxPoint(-5, -2.5, 0)));
    EXPECT_FALSE(greenAt(VxPoint(4, -2.5, 0))) << "a plain unit line";
    EXPECT_TRUE(greenAt(VxPoint(0.3, -5.2 + 5, 0)));
    EXPECT_TRUE(greenAt(VxPoint(0.3, -5.2 + 10, 0)));
    EXPECT_FALSE(greenAt(VxPoint(0.3, -5.2 + 0.4, 0))) << "no mirrored line at the bottom";

    // The translucent style tints what lies behind it with the object's colour.
    small->SetPlaneStyle(AuxPlaneStyle_Translucent);
    small->SetColor(VxColor(255, 0, 255));
    img = zoomed.FrameWithAux();
    const std::uint8_t* p = img.Pixel(kW / 2 + 3, kH / 2 + 3);
    // Alpha 60 over white: green falls to 195 of 255, red and blue stay.
    EXPECT_NEAR(p[1], 195, 3);
    EXPECT_GT(p[0], 250);
    EXPECT_GT(p[2], 250);
}

TEST_F(AuxDrawTest, BoxFollowsItsToothsFirstPlacement) {
    VxAuxTestScene scene(6.0, false);
    VxTooth tooth(11);
    tooth.SetMeshData({VxPoint(-2, -2, 0), VxPoint(2, -2, 0), VxPoint(2, 2, 0), VxPoint(-2, 2, 0)},
                      {0, 1, 2, 0, 2, 3});
    // Two placements at the current step; the box takes the first in the set's order.
    VxMatrix first = VxMatrix::Translation(VxVector(8, 0, 0));
    VxMatrix second = VxMatrix::Translation(VxVector(-8, 0, 0));
    VxTransformMatrix::GetInstance()->SetDrawInfos(
        &tooth, VxTransformMatrix::GetInstance()->GetCurrentStep(),
        {DrawInfo_s(false, first), DrawInfo_s(false, second)});
    const VxMatrix expected =
        VxTransformMatrix::GetInstance()->GetDrawInfos(&tooth).begin()->matrix;
    const double dx = expected[0][3];
    auto* box = new VxAuxBox();
    box->SetEntity(&tooth);
    VxAuxTestScene::Aux()->AddAuxObject(box);
    VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_box_placed");
    const auto purple = [](const std::uint8_t* p) {
        return p[0] > 100 && p[2] > 100 && p[1] < 120;
    };
    // Left and right edges of the placed box: purple dashes somewhere along each column.
    for (double x : {dx - 2, dx + 2, -dx - 2, -dx + 2}) {
        const int sx = scene.ToScreen(VxPoint(x, 0, 0)).x;
        int lit = 0;
        for (int y = 0; y < kH; ++y) {
            for (int k = -1; k <= 1; ++k) {
                lit += purple(img.Pixel(sx + k, y)) ? 1 : 0;
            }
        }
        if ((x > 0) == (dx > 0)) {
            EXPECT_GT(lit, 8) << "edge at x " << x;
        } else {
            EXPECT_EQ(lit, 0) << "nothing at the other placement, x " << x;
        }
    }
}

TEST_F(AuxDrawTest, FaceColoursInterpolateBetweenVertices) {
    VxAuxTestScene scene(6.0, false);
    VxMesh mesh;
    mesh.SetMeshData({VxPoint(-10, -8, 0), VxPoint(10, -8, 0), VxPoint(0, 10, 0)}, {0, 1, 2});
    auto* face = new VxAuxFace(&mesh);
    face->SetFaces({0});
    face->AddColorVtx(0, VxColor(0, 0, 0));
    face->AddColorVtx(0, VxColor(255, 0, 0)); // replaces the black
    face->AddColorVtx(1, VxColor(0, 255, 0));
    face->AddColorVtx(2, VxColor(0, 0, 255));
    VxAuxTestScene::Aux()->AddAuxObject(face);
    VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_face");
    const auto at = [&](const VxPoint& p) {
        return img.Pixel(scene.ToScreen(p).x, scene.ToScreen(p).y);
    };
    const std::uint8_t* nearRed = at(VxPoint(-8, -7, 0));
    EXPECT_GT(nearRed[0], 180);
    EXPECT_LT(nearRed[1], 80);
    const std::uint8_t* mid = at(VxPoint(0, -2, 0));
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(mid[k], 85, 30) << "channel " << k << " at the centroid";
    }
    const std::uint8_t* halfway = at(VxPoint(0, -8 + 0.3, 0));
    EXPECT_NEAR(halfway[0], 127, 25);
    EXPECT_NEAR(halfway[1], 127, 25);

    // Translucent style: half the face colour over what is behind; no faces, nothing.
    face->SetTransparent(true);
    face->SetColor(VxColor(0, 0, 0));
    img = scene.FrameWithAux();
    EXPECT_NEAR(at(VxPoint(0, -2, 0))[0], 127, 3);
    // Indices past the mesh are skipped, not read.
    face->SetFaces({-1, 0, 99});
    img = scene.FrameWithAux();
    EXPECT_NEAR(at(VxPoint(0, -2, 0))[0], 127, 3);
    face->ClearFaces();
    img = scene.FrameWithAux();
    EXPECT_EQ(at(VxPoint(0, -2, 0))[0], 255);
}

TEST_F(AuxDrawTest, FaceOnTheShaderPathGoesThroughTheColouredTrianglePass) {
    VxApplyRenderPath(VxTestRenderPath::Shader);
    VxAuxTestScene scene(6.0, false);
    VxMesh mesh;
    // The first float of the renderer's block is its cache key: a vertex x no other test uses.
    mesh.SetMeshData({VxPoint(-10.25, -8, 0), VxPoint(10, -8, 0), VxPoint(0, 10, 0)}, {0, 1, 2});
    auto* face = new VxAuxFace(&mesh);
    face->SetFaces({0, 7}); // the unknown face is skipped
    face->AddColorVtx(0, VxColor(255, 0, 0));
    face->AddColorVtx(1, VxColor(0, 255, 0));
    face->AddColorVtx(2, VxColor(0, 0, 255));
    VxAuxTestScene::Aux()->AddAuxObject(face);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_face_shader");
    const auto at = [&](const VxPoint& p) {
        return img.Pixel(scene.ToScreen(p).x, scene.ToScreen(p).y);
    };
    EXPECT_GT(at(VxPoint(-8, -7, 0))[0], 180);
    EXPECT_LT(at(VxPoint(-8, -7, 0))[1], 80);
    EXPECT_GT(at(VxPoint(8, -7, 0))[1], 180);
    EXPECT_GT(at(VxPoint(0, 8, 0))[2], 180);
    EXPECT_EQ(at(VxPoint(12, 8, 0))[0], 255) << "white outside the triangle";
    // With several views, the frame's camera record holds the last view drawn while the
    // registry draws each view under its own matrices: the patch must not follow the record.
    scene.Frame();
    VxXForm other = VxViewManager::GetInstance()->GetView(0)->GetXForm();
    other.SetScale(other.GetScale() * 2.0);
    other.SetTranslation(other.GetTranslation() + VxVector(7, -3, 0));
    NuCameraSnapshot::GetInstance()->SetViewTransform(&other);
    VxAuxTestScene::Aux()->Render();
    const VxTestImage underOther = VxAuxTestScene::Read();
    EXPECT_EQ(underOther.rgba, img.rgba) << "the same pixels whatever the record holds";
    GLint program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    // Nothing on either path without faces.
    face->ClearFaces();
    EXPECT_EQ(scene.FrameWithAux().Pixel(scene.ToScreen(VxPoint(0, -2, 0)).x,
                                         scene.ToScreen(VxPoint(0, -2, 0)).y)[0],
              255);
    VxApplyRenderPath(VxTestRenderPath::Fixed);
}

TEST_F(AuxDrawTest, CurvesAndSurfacesDrawWhatGluAcceptsAndNothingElse) {
    VxAuxTestScene scene(6.0, false);
    const VxTestImage bare = scene.FrameWithAux();
    auto* empty = new VxAuxCurve();
    auto* surface = new VxAuxSurface();
    auto* mesh = new VxAuxMesh();
    for (VxAuxObject* o : std::initializer_list<VxAuxObject*>{empty, surface, mesh}) {
        o->SetColor(VxColor(255, 0, 0));
        VxAuxTestScene::Aux()->AddAuxObject(o);
    }
    // Empty curve, empty surface, no mesh: nothing drawn, no GL error, no GLU message.
    VxTestImage img = scene.FrameWithAux();
    EXPECT_EQ(img.rgba, bare.rgba);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    // A curve that refused its knots stays empty and draws nothing either.
    VxBSplineCurve bad;
    EXPECT_FALSE(bad.Set(3, {VxPoint(0, 0, 0), VxPoint(1, 0, 0)}, VxKnotVec({0, 1, 0.5, 0})));
    auto* refused = new VxAuxCurve();
    refused->SetCurve(bad);
    VxAuxTestScene::Aux()->AddAuxObject(refused);
    std::unique_ptr<VxBSplineCurve> arc(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(-10, -5, 0), VxPoint(0, 8, 0), VxPoint(10, -5, 0)}, false));
    ASSERT_TRUE(arc);
    empty->SetCurve(*arc);
    img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_curve");
    // The curve's colour along its path: at its apex it runs through the middle column.
    const CPoint top = scene.ToScreen(arc->Evaluate(0.5));
    int red = 0;
    for (int dy = -3; dy <= 3; ++dy) {
        red += IsRedDominant(img.Pixel(top.x, top.y + dy)) ? 1 : 0;
    }
    EXPECT_GE(red, 1);
    EXPECT_LE(red, 3) << "two pixels wide";
}

TEST_F(AuxDrawTest, AuxMeshDrawsGreyOrSelectedRedUnderItsMatrix) {
    VxAuxTestScene scene(6.0, false);
    VxMesh square;
    square.SetMeshData({VxPoint(-2, -2, 0), VxPoint(2, -2, 0), VxPoint(2, 2, 0), VxPoint(-2, 2, 0)},
                       {0, 1, 2, 0, 2, 3});
    auto* aux = new VxAuxMesh(&square);
    VxMatrix shift = VxMatrix::Translation(VxVector(8, 0, 0));
    aux->SetMatrix(shift);
    VxAuxTestScene::Aux()->AddAuxObject(aux);
    VxTestImage img = scene.FrameWithAux();
    const CPoint at = scene.ToScreen(VxPoint(8, 0, 0));
    const CPoint origin = scene.ToScreen(VxPoint(0, 0, 0));
    const std::uint8_t* p = img.Pixel(at.x, at.y);
    EXPECT_LT(p[0], 240) << "the mesh is drawn at its matrix";
    EXPECT_NEAR(p[0], p[1], 12) << "grey";
    EXPECT_EQ(img.Pixel(origin.x, origin.y)[0], 255) << "and not where it lies";
    aux->SetSelected(1);
    img = scene.FrameWithAux();
    p = img.Pixel(at.x, at.y);
    EXPECT_GT(p[0], p[1] + 60) << "selected red";
    aux->ClearMesh();
    EXPECT_EQ(scene.FrameWithAux().Pixel(at.x, at.y)[0], 255);
}

} // namespace
