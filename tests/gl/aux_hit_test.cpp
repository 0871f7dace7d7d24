// Hit tests of the aux objects at exact pixel offsets from where they land on screen: the pick
// tolerance minus one hits and the tolerance misses (Manhattan distance), a cursor past a
// segment's end measures to the end, the arrow's head-only test, both rounds of the polyline,
// the torus over the far half of its circle, the pipe's exact ray test, and the registry's
// choice between real objects under one cursor.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxBox.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxPolyline.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTorus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxSystemOption.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 240;
constexpr int kH = 200;

class AuxHitTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxSystemOption::GetInstance()->SetHitPrecision(5);
        scene = std::make_unique<VxAuxTestScene>(10.0, false);
    }
    void TearDown() override {
        scene.reset();
        VxSystemOption::GetInstance()->SetHitPrecision(5);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    bool HitAt(VxAuxObject& o, const VxPoint& p, int dx, int dy) {
        const CPoint s = scene->ToScreen(p);
        return o.HitTest(s.x + dx, s.y + dy);
    }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
};

struct Offset {
    int dx;
    int dy;
    bool hit;
};

TEST_F(AuxHitTest, PointIsHitBelowThePickToleranceInManhattanDistance) {
    VxAuxPoint point;
    point.SetPos(VxPoint(3, 2, 0));
    for (int precision : {5, 8}) {
        VxSystemOption::GetInstance()->SetHitPrecision(precision);
        const int p = precision;
        const Offset cases[] = {{0, 0, true},
                                {p - 1, 0, true},
                                {p, 0, false},
                                {0, -(p - 1), true},
                                {-(p - 2), 1, true},
                                {-(p - 2), 2, false},
                                {p / 2, p - p / 2, false}};
        for (const Offset& o : cases) {
            EXPECT_EQ(HitAt(point, point.GetPos(), o.dx, o.dy), o.hit)
                << "precision " << p << " offset " << o.dx << "," << o.dy;
        }
    }
}

TEST_F(AuxHitTest, LineAndArrowMeasureToTheSegmentOrItsNearerEnd) {
    VxAuxLine line;
    line.SetStartPoint(VxPoint(-5, 0, 0));
    line.SetStopPoint(VxPoint(5, 0, 0));
    // The tolerance is a fixed 10 pixels, whatever the pick precision says.
    VxSystemOption::GetInstance()->SetHitPrecision(1);
    const Offset alongMiddle[] = {{0, 9, true}, {0, 10, false}, {3, -9, true}, {0, -10, false}};
    for (const Offset& o : alongMiddle) {
        EXPECT_EQ(HitAt(line, VxPoint(0, 0, 0), o.dx, o.dy), o.hit) << o.dx << "," << o.dy;
    }
    // Past the stop: 4 pixels off the line's axis would hit, but the end is 10 away.
    const Offset pastEnd[] = {{6, 3, true}, {6, 4, false}, {9, 0, true}, {10, 0, false}};
    for (const Offset& o : pastEnd) {
        EXPECT_EQ(HitAt(line, line.StopPoint(), o.dx, o.dy), o.hit) << o.dx << "," << o.dy;
        EXPECT_EQ(HitAt(line, line.StartPoint(), -o.dx, o.dy), o.hit) << -o.dx << "," << o.dy;
    }
    // Both ends on one pixel: the distance to that pixel.
    line.SetStartPoint(VxPoint(1, 1, 0));
    line.SetStopPoint(VxPoint(1, 1, 0));
    EXPECT_TRUE(HitAt(line, VxPoint(1, 1, 0), 5, 4));
    EXPECT_FALSE(HitAt(line, VxPoint(1, 1, 0), 5, 5));

    VxAuxArrow arrow;
    arrow.SetPoint(VxPoint(0, 0, 0), VxPoint(10, 0, 0));
    EXPECT_TRUE(HitAt(arrow, VxPoint(5, 0, 0), 0, 9));
    // Head only: the segment shrinks to the last head length (1 mm, 10 pixels here).
    arrow.SetHitTestOnlyArrow(true);
    EXPECT_FALSE(HitAt(arrow, VxPoint(5, 0, 0), 0, 0));
    EXPECT_TRUE(HitAt(arrow, VxPoint(9.5, 0, 0), 0, 9));
    EXPECT_TRUE(HitAt(arrow, VxPoint(9, 0, 0), -9, 0));
    EXPECT_FALSE(HitAt(arrow, VxPoint(9, 0, 0), -10, 0));
    // A bold head is three times as long.
    arrow.SetBoldStyle(true);
    EXPECT_TRUE(HitAt(arrow, VxPoint(7.5, 0, 0), 0, 0));
}

TEST_F(AuxHitTest, PolylineMarkedPointsFirstThenPlainVerticesAndCyanNever) {
    VxAuxTestScene withSlab(10.0, true, 1.0);
    VxAuxPolyline poly;
    // The first four lie on the slab's top, as marks lie on a tooth; the last two inside the
    // slab, hidden from the depth buffer.
    poly.SetPoints({VxPoint(-8, 0, 1), VxPoint(-4, 0, 1), VxPoint(-4, 4, 1), VxPoint(-8, 4, 1),
                    VxPoint(-6, -3, 0), VxPoint(-6, 3, 0)});
    poly.SetPointsType({VxPointType_Marked, VxPointType_Green, VxPointType_Cyan, VxPointType_Plain,
                        VxPointType_Marked, VxPointType_Plain});
    withSlab.Frame();
    const struct {
        int index;
        int dx;
        bool hit;
        bool stop;
    } cases[] = {
        {0, 4, true, true},   {0, 5, false, false},
        {1, -4, true, true},  {2, 0, false, false}, // cyan: drawn, never hit
        {3, 0, true, false},  // plain vertex: hit in the second round, the search goes on
        {4, 0, false, false}, // marked but hidden: the first round needs it visible
        {5, 0, true, false},  // plain and hidden: the second round does not look at depth
    };
    for (const auto& c : cases) {
        const CPoint s = withSlab.ToScreen(poly.GetPoints()[c.index]);
        EXPECT_EQ(poly.HitTest(s.x + c.dx, s.y), c.hit) << "point " << c.index;
        EXPECT_EQ(poly.GetHitPointIdx(), c.hit ? c.index : -1) << "point " << c.index;
        EXPECT_EQ(poly.StopHit(), c.stop) << "point " << c.index;
    }
    // Drawing nothing does not stop the hit.
    poly.SetType(AuxPolylineStyle_None);
    const CPoint s = withSlab.ToScreen(poly.GetPoints()[0]);
    EXPECT_TRUE(poly.HitTest(s.x, s.y));
    // Types are copied over the front, the count stays; removal keeps them in step.
    poly.SetPointsType({VxPointType_Plain});
    EXPECT_EQ(poly.GetPointsType().size(), 6u);
    poly.RemovePoint(1);
    poly.RemovePoint(42);
    EXPECT_EQ(poly.GetPoints().size(), 5u);
    EXPECT_EQ(poly.GetPointsType()[1], VxPointType_Cyan);
}

TEST_F(AuxHitTest, TorusIsHitAlongItsSweepIncludingTheFarHalfOfTheCircle) {
    VxAuxTorus torus;
    const double degree = 3.14159265358979 / 180.0;
    torus.SetGeometry(300 * degree, 5.0, VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(1, 1, 0));
    const auto onArc = [](double deg) {
        const double a = deg * 3.14159265358979 / 180.0;
        return VxPoint(5 * std::cos(a), 5 * std::sin(a), 0);
    };
    const struct {
        double deg;
        int dx;
        int dy;
        bool hit;
    } cases[] = {
        {10, 0, 0, true},  {90, 0, 4, true},   {90, 0, 5, false},
        {180, 4, 0, true}, {200, 0, 0, true},  {270, 0, -4, true},
        {290, 0, 0, true}, {330, 0, 0, false}, {350, 0, 0, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(HitAt(torus, onArc(c.deg), c.dx, c.dy), c.hit) << c.deg << " degrees";
    }
    // Sweep 0: only the start answers.
    torus.SetGeometry(0.0, 5.0, VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    EXPECT_TRUE(HitAt(torus, onArc(0), 0, 0));
    EXPECT_FALSE(HitAt(torus, onArc(20), 0, 0));
    // Parallel axes leave no plane to cut.
    torus.SetGeometry(6.0, 5.0, VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(2, 0, 0));
    EXPECT_FALSE(HitAt(torus, onArc(0), 0, 0));
}

TEST_F(AuxHitTest, PipeIsHitOnItsSurfaceOnlyAndBoxOnItsEdges) {
    std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(-5, 0, 0), VxPoint(0, 3, 0), VxPoint(5, 0, 0)}, false));
    VxAuxPipeLine pipe(curve.get());
    pipe.SetStyle(AuxPipeLineStyle_Thick);
    pipe.SetBSplineCurve(curve.get()); // the thick radius takes effect here: 1.5 px each side
    EXPECT_TRUE(HitAt(pipe, VxPoint(0, 3, 0), 0, 0));
    EXPECT_TRUE(HitAt(pipe, VxPoint(0, 3, 0), 0, 1));
    EXPECT_FALSE(HitAt(pipe, VxPoint(0, 3, 0), 0, 3));
    // A copy owns its own mesh.
    VxAuxPipeLine copy(pipe);
    pipe.SetBSplineCurve(nullptr);
    EXPECT_EQ(pipe.GetMesh(), nullptr);
    EXPECT_FALSE(HitAt(pipe, VxPoint(0, 3, 0), 0, 0));
    EXPECT_TRUE(HitAt(copy, VxPoint(0, 3, 0), 0, 0));

    VxAuxBox box;
    box.SetBox(VxBBox(VxPoint(-3, -3, -3), VxPoint(3, 3, 3)));
    EXPECT_TRUE(HitAt(box, VxPoint(3, 0, 0), 9, 0));
    EXPECT_FALSE(HitAt(box, VxPoint(3, 0, 0), 10, 0));
    EXPECT_FALSE(HitAt(box, VxPoint(0, 0, 0), 0, 0)) << "the inside of the box is not an edge";
    VxAuxBox boxCopy(box);
    box.SetBox(VxBBox(VxPoint(-1, -1, -1), VxPoint(1, 1, 1)));
    EXPECT_TRUE(HitAt(boxCopy, VxPoint(3, 0, 0), 0, 0)) << "copies have edges of their own";
}

TEST_F(AuxHitTest, RegistryPicksAmongRealObjectsUnderOneCursor) {
    scene.reset();
    VxAuxTestScene withSlab(10.0, true, 1.0);
    VxAuxRender* aux = VxAuxTestScene::Aux();
    // A plain polyline vertex and a point on the same spot: the vertex does not stop the
    // search, so the point of lower priority, tested later, wins.
    auto* poly = new VxAuxPolyline();
    poly->SetPoints({VxPoint(-2, -2, 1), VxPoint(-6, -2, 1)});
    poly->SetHitPriority(AuxHitPriority_High);
    auto* point = new VxAuxPoint();
    point->SetPos(VxPoint(-2, -2, 1));
    aux->AddAuxObject(poly);
    aux->AddAuxObject(point);
    withSlab.Frame();
    const CPoint s = withSlab.ToScreen(VxPoint(-2, -2, 1));
    aux->HitTest(s);
    EXPECT_EQ(aux->GetHitObject(), point);
    // Marked, the vertex ends the search first.
    poly->SetPointsType({VxPointType_Marked});
    aux->HitTest(s);
    EXPECT_EQ(aux->GetHitObject(), poly);
    // Only the vertex: the polyline stays the hit object.
    aux->RemoveAuxObject(point, true);
    poly->SetPointsType({VxPointType_Plain});
    aux->HitTest(s);
    EXPECT_EQ(aux->GetHitObject(), poly);
    aux->HitTest(CPoint(s.x + 30, s.y + 30));
    EXPECT_EQ(aux->GetHitObject(), nullptr);
    // The highlight of the hit object draws over the frame.
    aux->HitTest(s);
    const VxTestImage before = VxAuxTestScene::Read();
    aux->Render();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    aux->RemoveAuxObject(poly, true);
    EXPECT_EQ(aux->GetHitObject(), nullptr);
    (void)before;
}

} // namespace
