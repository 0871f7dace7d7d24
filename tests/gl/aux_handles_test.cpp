// The two manipulators driven as a host drives them, on real pixels: each ball of the frame
// handle hit at its projected centre (index, oper mode, click object, the yellow ball in the next
// frame), mouse translations and quarter turns measured against the pixels dragged, the axes
// that vanish when they look at the viewer, the position handle's highlight sets per move mode
// and the lower pivot of mode 6, and the neutral answers to bad input (zero sizes, rays along the
// plane, no hit). The view looks down -z with x right and y up, 10 px a millimetre, on white.
#include "VxAuxTestScene.h"
#include "VxTestRenderPath.h"

#include <GL/glew.h>

#include <aux/VxAuxFrame.h>
#include <aux/VxAuxPosition.h>
#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <interfaces/VxQuaternion.h>
#include <interfaces/VxSystemOption.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr int kW = 320;
constexpr int kH = 320;
constexpr double kPxPerMm = 10.0;
constexpr double kPi = 3.14159265358979323846;

// Pixels within a box about a point for which `on` holds.
template <typename On> int CountNear(const VxTestImage& img, CPoint c, int half, On on) {
    int n = 0;
    for (int y = c.y - half; y <= c.y + half; ++y) {
        for (int x = c.x - half; x <= c.x + half; ++x) {
            if (x >= 0 && y >= 0 && x < img.width && y < img.height && on(img.Pixel(x, y))) {
                ++n;
            }
        }
    }
    return n;
}
bool Yellow(const std::uint8_t* p) {
    // Lit yellow; the tan axis lines (205, 165, 87) stay out.
    return p[0] > 190 && p[1] > 190 && p[2] < 70;
}
bool Red(const std::uint8_t* p) {
    return IsRedDominant(p);
}
bool Green(const std::uint8_t* p) {
    return p[1] > 120 && p[1] > p[0] + 60 && p[1] > p[2] + 60;
}
bool NotWhite(const std::uint8_t* p) {
    return p[0] < 200 || p[1] < 200 || p[2] < 200;
}

bool Near(const VxVector& a, const VxVector& b, double tol) {
    return (a - b).Magnitude() < tol;
}

double Degrees(double radians) {
    return radians * 180.0 / kPi;
}

// A frame whose X and Y axes lean 70 degrees off the viewing direction, so that their groups
// show; Z is 29 degrees off it and hidden unless everything is drawn. No two balls overlap on
// the screen.
VxFrame TiltedFrame(const VxPoint& o) {
    const double t = 29.0 * kPi / 180.0;
    const VxVector u(1, 0, 0);
    const VxVector v(0, std::cos(t), std::sin(t));
    return VxFrame(o, (u + v).Normalized(), (v - u).Normalized());
}

class AuxHandlesTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
        VxSystemOption::GetInstance()->SetHitPrecision(5);
        OpenGLVersion::GetInstance()->Setmy_exe_type(0);
        scene = std::make_unique<VxAuxTestScene>(kPxPerMm, false);
    }
    void TearDown() override {
        if (!open) {
            return;
        }
        scene.reset();
        OpenGLVersion::GetInstance()->Setmy_exe_type(0);
        VxApplyRenderPath(VxTestRenderPath::Fixed);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    // A handle owned by the registry, as a host adds it.
    template <typename T> T* Add(double ref, const VxFrame& frame) {
        T* h = new T;
        h->SetRefDist(ref);
        h->SetGeometry(frame);
        VxAuxTestScene::Aux()->AddAuxObject(h);
        return h;
    }
    CPoint At(const VxPoint& p) { return VxAuxTestScene::Render()->MapModelPointToScreen(p); }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
};

TEST_P(AuxHandlesTest, EachBallIsHitAtItsProjectedCentreAndTurnsYellowInTheNextFrame) {
    // Everything drawn, so that each drawn ball's colour can be read.
    OpenGLVersion::GetInstance()->Setmy_exe_type(4);
    const VxFrame f = TiltedFrame(VxPoint(0, 0, 0));
    VxAuxFrame* h = Add<VxAuxFrame>(8.0, f);
    scene->FrameWithAux();

    struct Ball {
        const VxAuxPoint* ball;
        int index;
        HandleOperMode_e mode;
        ClickObject click;
        bool drawn;
    };
    const Ball balls[] = {
        {&h->CenterBall(), 6, HandleOper_Translate, Click_Center, true},
        {&h->MoveBall(0), 0, HandleOper_Translate, Click_MoveX, false},
        {&h->MoveBall(1), 1, HandleOper_Translate, Click_MoveY, false},
        {&h->MoveBall(2), 2, HandleOper_Translate, Click_MoveZ, false},
        {&h->MoveBall(3), 3, HandleOper_Translate, Click_MoveX, false},
        {&h->MoveBall(4), 4, HandleOper_Translate, Click_MoveY, false},
        {&h->MoveBall(5), 5, HandleOper_Translate, Click_MoveZ, true},
        // X and Y turn balls both turn about Z, the Z balls about X.
        {&h->TurnBall(0), 0, HandleOper_Rotate, Click_TurnZ, true},
        {&h->TurnBall(1), 1, HandleOper_Rotate, Click_TurnZ, true},
        {&h->TurnBall(2), 2, HandleOper_Rotate, Click_TurnX, true},
        {&h->TurnBall(3), 3, HandleOper_Rotate, Click_TurnZ, true},
        {&h->TurnBall(4), 4, HandleOper_Rotate, Click_TurnZ, true},
        {&h->TurnBall(5), 5, HandleOper_Rotate, Click_TurnX, true},
    };
    for (const Ball& b : balls) {
        SCOPED_TRACE("ball of hit index " + std::to_string(b.index) + " mode " +
                     std::to_string(b.mode));
        const CPoint c = At(b.ball->GetPos());
        VxAuxTestScene::Aux()->HitTest(c);
        EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), h);
        EXPECT_EQ(h->GetHitIndex(), b.index);
        EXPECT_EQ(h->GetOperMode(), b.mode);
        EXPECT_EQ(h->GetClickObject(), b.click);
        EXPECT_EQ(b.ball->GetColor().GetR(), 255);
        EXPECT_EQ(b.ball->GetColor().GetB(), 0);
        const VxTestImage img = scene->FrameWithAux();
        const int yellow = CountNear(img, c, 3, Yellow);
        if (b.drawn) {
            EXPECT_GE(yellow, 20) << "a hit ball shows yellow";
        } else {
            EXPECT_EQ(yellow, 0) << "move balls 0 to 4 are invisible grips";
        }
    }
    // Off every ball: rest state, and the balls take their own colours back.
    VxAuxTestScene::Aux()->HitTest(CPoint(2, 2));
    EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), nullptr);
    EXPECT_EQ(h->GetHitIndex(), -1);
    EXPECT_EQ(h->GetOperMode(), HandleOper_None);
    EXPECT_EQ(h->GetClickObject(), Click_None);
    const VxTestImage img = scene->FrameWithAux();
    EXPECT_GE(CountNear(img, At(h->TurnBall(5).GetPos()), 3, Red), 20);
    EXPECT_GE(CountNear(img, At(h->MoveBall(5).GetPos()), 3, Green), 20);
    EXPECT_EQ(img.CountColour(255, 255, 0, 60), 0);

    // Without translation support only the turn balls answer.
    h->SetSupportTranslate(false);
    EXPECT_FALSE(h->HitTest(At(h->CenterBall().GetPos()).x, At(h->CenterBall().GetPos()).y));
    EXPECT_FALSE(h->HitTest(At(h->MoveBall(0).GetPos()).x, At(h->MoveBall(0).GetPos()).y));
    EXPECT_TRUE(h->HitTest(At(h->TurnBall(3).GetPos()).x, At(h->TurnBall(3).GetPos()).y));
    EXPECT_EQ(h->GetOperMode(), HandleOper_Rotate);
}

TEST_P(AuxHandlesTest, MouseTranslationFollowsTheDraggedPixelsAndSlowTakesATenth) {
    // X in the screen plane at 30 degrees: a drag along its image moves by the dragged length.
    const VxVector x(std::cos(kPi / 6), std::sin(kPi / 6), 0);
    const VxFrame f(VxPoint(1, -2, 0), x, VxVector(0, 0, 1) * x);
    VxAuxFrame* h = Add<VxAuxFrame>(6.0, f);
    scene->FrameWithAux();
    const CPoint grip = At(h->MoveBall(0).GetPos());
    ASSERT_TRUE(h->HitTest(grip.x, grip.y));
    ASSERT_EQ(h->GetHitIndex(), 0);
    // 60 px along the image of X (screen y runs down).
    const CPoint to(grip.x + static_cast<int>(std::lround(60 * x[0])),
                    grip.y - static_cast<int>(std::lround(60 * x[1])));
    const double pixel = 1.0 / kPxPerMm;
    const VxMatrix m = h->Transform(grip, to, false, false);
    const VxVector d(m[0][3], m[1][3], m[2][3]);
    EXPECT_NEAR(d.Magnitude(), 60 * pixel, pixel);
    EXPECT_NEAR(d.Normalized() % x, 1.0, 1e-9) << "movement stays on the axis";
    EXPECT_TRUE(Near(h->GetFrame().GetOrigin() - VxPoint(1, -2, 0), d, 1e-12));
    EXPECT_TRUE(Near(h->MoveBall(0).GetPos() - (VxPoint(1, -2, 0) + 6.0 * x), d, 1e-9))
        << "the parts follow the frame";
    EXPECT_EQ(m[0][0], 1.0);
    EXPECT_EQ(m[3][3], 1.0);

    const VxMatrix slow = h->Transform(to, grip, true, false);
    EXPECT_NEAR(slow[0][3], -d[0] / 10.0, 1e-9);
    EXPECT_NEAR(slow[1][3], -d[1] / 10.0, 1e-9);

    // The centre ball moves in the frame's XY plane even when the caller asks for an axis.
    const CPoint centre = At(h->GetFrame().GetOrigin());
    ASSERT_TRUE(h->HitTest(centre.x, centre.y));
    ASSERT_EQ(h->GetHitIndex(), 6);
    const VxMatrix free = h->Transform(centre, CPoint(centre.x + 30, centre.y + 40), false, false);
    EXPECT_NEAR(free[0][3], 3.0, pixel);
    EXPECT_NEAR(free[1][3], -4.0, pixel);

    // Numbers: along an axis, and nothing for the centre.
    const VxPoint before = h->GetFrame().GetOrigin();
    const VxMatrix byNumber = h->Transform(Click_MoveY, 2.5);
    EXPECT_TRUE(Near(VxVector(byNumber[0][3], byNumber[1][3], byNumber[2][3]),
                     2.5 * h->GetFrame().DirY(), 1e-12));
    EXPECT_TRUE(h->Transform(Click_Center, 4.0).IsIdentity());
    EXPECT_TRUE(Near(h->GetFrame().GetOrigin() - before, 2.5 * h->GetFrame().DirY(), 1e-12));
}

TEST_P(AuxHandlesTest,
       QuarterTurnWithAZTurnBallRotatesAboutTheCrossProductAndDraggingBackRestores) {
    // X leans 45 degrees towards the viewer and Y lies in the screen: a Z turn ball turns about
    // X, in the plane that contains Y and Z.
    const double s = std::sqrt(0.5);
    const VxPoint o(0, 0, 0);
    const VxFrame f(o, VxVector(s, 0, s), VxVector(0, 1, 0));
    VxAuxFrame* h = Add<VxAuxFrame>(6.0, f);
    scene->FrameWithAux();
    const CPoint ball = At(h->TurnBall(2).GetPos());
    ASSERT_TRUE(h->HitTest(ball.x, ball.y));
    ASSERT_EQ(h->GetClickObject(), Click_TurnX);
    ASSERT_EQ(h->GetOperMode(), HandleOper_Rotate);

    // From the image of +Y to the image of +Z: a quarter turn.
    const CPoint c = At(o);
    const CPoint from(c.x, c.y - 120);
    const CPoint to(c.x - 120, c.y);
    const VxVector x0 = f.DirX(), y0 = f.DirY(), z0 = f.DirZ();
    const VxMatrix m = h->Transform(from, to, false, false);
    const VxMatrix r = [&] {
        VxMatrix r3(3, 3);
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                r3[i][j] = m[i][j];
            }
        }
        return r3;
    }();
    EXPECT_EQ(m[0][3], 0.0) << "a turn about the coordinate origin, no translation";
    // The axis is Y x Z = X and the angle 90 degrees.
    EXPECT_TRUE(Near(r.Transform(x0), x0, 1e-9));
    EXPECT_NEAR(Degrees(r.Transform(y0).AngleWith(z0)), 0.0, 0.5);
    EXPECT_NEAR(Degrees(h->GetFrame().DirY().AngleWith(z0)), 0.0, 0.5);
    EXPECT_TRUE(Near(h->GetFrame().DirX(), x0, 1e-9));
    // The ring keeps the frame of the hit while the frame turns.
    EXPECT_TRUE(Near(h->GetCircleFrame().DirY(), y0, 1e-12));

    // Dragging back turns about -X and restores the frame.
    h->Transform(to, from, false, false);
    EXPECT_NEAR(Degrees(h->GetFrame().DirY().AngleWith(y0)), 0.0, 0.5);
    EXPECT_NEAR(Degrees(h->GetFrame().DirZ().AngleWith(z0)), 0.0, 0.5);

    // Slow: a tenth of the angle.
    h->Transform(from, to, true, false);
    EXPECT_NEAR(Degrees(h->GetFrame().DirY().AngleWith(y0)), 9.0, 0.5);

    // A drag that does not move gives the identity and leaves the frame.
    const VxFrame kept = h->GetFrame();
    EXPECT_TRUE(h->Transform(from, from, false, false).IsIdentity());
    EXPECT_TRUE(Near(h->GetFrame().DirY(), kept.DirY(), 1e-15));

    // An X turn ball always turns about Z, and keeps Z.
    const CPoint xball = At(h->TurnBall(0).GetPos());
    ASSERT_TRUE(h->HitTest(xball.x, xball.y));
    ASSERT_EQ(h->GetClickObject(), Click_TurnZ);
    const VxVector zBefore = h->GetFrame().DirZ();
    const CPoint o2 = At(h->GetFrame().GetOrigin());
    h->Transform(CPoint(o2.x + 80, o2.y), CPoint(o2.x, o2.y - 80), false, false);
    EXPECT_TRUE(Near(h->GetFrame().DirZ(), zBefore, 1e-9));
}

TEST_P(AuxHandlesTest, RotateModeDrawsTheGraduatedRingFromTheNextFrameOn) {
    const VxFrame f(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    VxAuxFrame* h = Add<VxAuxFrame>(8.0, f);
    const VxTestImage rest = scene->FrameWithAux();
    const CPoint ball = At(h->TurnBall(0).GetPos());
    ASSERT_TRUE(h->HitTest(ball.x, ball.y));
    // Ring of radius 1.2 r about Z (a turn about Z), ticks out to 1.25 r and every fifth 1.3 r.
    scene->FrameWithAux();
    EXPECT_TRUE(h->Ring().IsVisible());
    EXPECT_NEAR(h->Ring().GetRadius(), 9.6, 1e-12);
    const VxVector n = h->Ring().GetNormal();
    EXPECT_TRUE(Near(n, VxVector(0, 0, 1), 1e-12));
    EXPECT_NEAR(h->RingTick(5).StartPoint().DistanceToPoint(h->RingTick(5).StopPoint()), 0.8, 1e-9);
    EXPECT_NEAR(h->RingTick(7).StartPoint().DistanceToPoint(h->RingTick(7).StopPoint()), 0.4, 1e-9);
    const VxTestImage turning = scene->FrameWithAux();
    // At 45 degrees (off every axis) the ring and its ticks are grey where the rest frame was
    // white.
    const VxPoint onRing(9.6 * std::sqrt(0.5), 9.6 * std::sqrt(0.5), 0);
    const VxPoint onTick(10.2 * std::cos(kPi / 3.6), 10.2 * std::sin(kPi / 3.6), 0);
    EXPECT_EQ(CountNear(rest, At(onRing), 2, NotWhite), 0);
    EXPECT_GT(CountNear(turning, At(onRing), 2, NotWhite), 0);
    EXPECT_GT(CountNear(turning, At(onTick), 2, NotWhite), 0);
    // Leaving the ball hides the ring again.
    h->HitTest(2, 2);
    scene->FrameWithAux();
    EXPECT_FALSE(h->Ring().IsVisible());
    const VxTestImage after = scene->FrameWithAux();
    EXPECT_EQ(CountNear(after, At(onRing), 2, NotWhite), 0);
}

TEST_P(AuxHandlesTest, AnAxisLookingAtTheViewerVanishesUnlessEverythingIsShown) {
    // Z is 40 degrees off the view, X 50 degrees: both vanish; Y lies in the screen plane.
    const double a = 40.0 * kPi / 180.0;
    const VxFrame f(VxPoint(0, 0, 0), VxVector(std::cos(a), 0, -std::sin(a)), VxVector(0, 1, 0));
    ASSERT_NEAR(Degrees(f.DirZ().AngleWith(VxVector(0, 0, 1))), 40.0, 1e-9);
    VxAuxFrame* h = Add<VxAuxFrame>(8.0, f);
    const auto shows = [&](const VxTestImage& img, const VxAuxPoint& b, bool red) {
        return CountNear(img, At(b.GetPos()), 3, red ? Red : Green) >= 20;
    };
    VxTestImage img = scene->FrameWithAux();
    EXPECT_TRUE(shows(img, h->TurnBall(1), true));
    EXPECT_TRUE(shows(img, h->TurnBall(4), true));
    for (int i : {0, 3, 2, 5}) {
        EXPECT_FALSE(shows(img, h->TurnBall(i), true)) << "turn ball " << i;
    }
    EXPECT_FALSE(shows(img, h->MoveBall(5), false));
    // Still hit although not drawn.
    EXPECT_TRUE(h->HitTest(At(h->TurnBall(2).GetPos()).x, At(h->TurnBall(2).GetPos()).y));
    h->HitTest(2, 2);

    OpenGLVersion::GetInstance()->Setmy_exe_type(4);
    img = scene->FrameWithAux();
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(shows(img, h->TurnBall(i), true)) << "turn ball " << i;
    }
    EXPECT_TRUE(shows(img, h->MoveBall(5), false));
    OpenGLVersion::GetInstance()->Setmy_exe_type(0);

    // The limit is 60 degrees, and an axis at the limit is hidden: just under it hides, just over
    // it shows (the viewing ray comes from unprojected pixels, so exactly 60 is not reproducible).
    for (double deg : {59.9, 60.1}) {
        const double b = (90.0 - deg) * kPi / 180.0;
        h->SetGeometry(
            VxFrame(VxPoint(0, 0, 0), VxVector(std::cos(b), 0, std::sin(b)), VxVector(0, 1, 0)));
        img = scene->FrameWithAux();
        EXPECT_EQ(shows(img, h->TurnBall(0), true), deg > 60.0) << deg << " degrees";
    }
}

TEST_P(AuxHandlesTest, NumericTurnsTheRingsFrameAndCopies) {
    const VxFrame first(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    VxAuxFrame* h = Add<VxAuxFrame>(5.0, first);
    // The ring keeps the first frame through later SetGeometry calls until it is renewed.
    h->SetGeometry(VxFrame(VxPoint(3, 0, 0), VxVector(0, 1, 0), VxVector(-1, 0, 0)));
    EXPECT_EQ(h->GetCircleFrame().GetOrigin(), VxPoint(0, 0, 0));
    h->UpdateCircle(false);
    EXPECT_EQ(h->GetCircleFrame().GetOrigin(), VxPoint(0, 0, 0));
    h->UpdateCircle(true);
    EXPECT_EQ(h->GetCircleFrame().GetOrigin(), VxPoint(3, 0, 0));

    // Numbers turn about the frame's own axes and keep the axis turned about.
    h->SetGeometry(first);
    const VxMatrix rx = h->Transform(Click_TurnX, 90.0);
    EXPECT_TRUE(Near(h->GetFrame().DirX(), VxVector(1, 0, 0), 1e-9));
    EXPECT_TRUE(Near(h->GetFrame().DirY(), VxVector(0, 0, 1), 1e-9));
    EXPECT_EQ(rx[0][3], 0.0);
    h->Transform(Click_TurnX, -90.0);
    h->Rotate(Click_TurnY, 30.0);
    EXPECT_TRUE(Near(h->GetFrame().DirY(), VxVector(0, 1, 0), 1e-9));
    EXPECT_NEAR(Degrees(h->GetFrame().DirX().AngleWith(VxVector(1, 0, 0))), 30.0, 1e-6);
    h->Rotate(Click_TurnY, -30.0);
    const VxMatrix rz = h->Rotate(Click_TurnZ, 45.0);
    EXPECT_EQ(rz.Rows(), 3);
    EXPECT_TRUE(Near(h->GetFrame().DirZ(), VxVector(0, 0, 1), 1e-9));
    EXPECT_TRUE(Near(h->TurnBall(0).GetPos() - VxPoint(0, 0, 0),
                     6.0 * VxVector(std::sqrt(0.5), std::sqrt(0.5), 0), 1e-9))
        << "the parts follow a numeric turn";

    // A copy has every part where the original has it, and draws its own letters.
    const VxAuxFrame copy(*h);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(copy.TurnBall(i).GetPos(), h->TurnBall(i).GetPos());
        EXPECT_EQ(copy.MoveBall(i).GetPos(), h->MoveBall(i).GetPos());
    }
    EXPECT_EQ(copy.AxisLetter(2).GetTextPos(), h->AxisLetter(2).GetTextPos());
    scene->FrameWithAux();
    EXPECT_NE(h->AxisLetter(0).GetListBase(), VxAuxText::kNoList);
    EXPECT_EQ(h->AxisLetter(0).GetText().Str(), std::wstring(L"X"));
    EXPECT_EQ(h->AxisLetter(2).GetText().Str(), std::wstring(L"Z"));
}

TEST_P(AuxHandlesTest, BadInputGivesNeutralAnswers) {
    // No hit: identity and zero, nothing moves.
    VxAuxFrame* h =
        Add<VxAuxFrame>(6.0, VxFrame(VxPoint(1, 1, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    EXPECT_EQ(h->GetHitIndex(), -1);
    EXPECT_TRUE(h->Transform(CPoint(10, 10), CPoint(60, 90), false, false).IsIdentity());
    EXPECT_TRUE(h->Rotate(CPoint(10, 10), CPoint(60, 90), false).IsIdentity());
    EXPECT_TRUE(h->Translate(CPoint(10, 10), CPoint(60, 90), false, true).IsZero());
    EXPECT_TRUE(h->Rotate(Click_MoveX, 30.0).IsIdentity());
    EXPECT_TRUE(h->Translate(Click_TurnZ, 3.0).IsZero());
    EXPECT_EQ(h->GetFrame().GetOrigin(), VxPoint(1, 1, 0));

    // A turn about an axis that lies in the screen plane: every cursor ray runs along the plane.
    const CPoint zball = At(h->TurnBall(2).GetPos());
    h->SetHitIndex(2);
    EXPECT_TRUE(h->Rotate(zball, CPoint(zball.x + 40, zball.y + 10), false).IsIdentity());
    EXPECT_TRUE(Near(h->GetFrame().DirY(), VxVector(0, 1, 0), 1e-15));

    // Size zero: every part on the origin, nothing non-finite, frames still drawn.
    h->SetRefDist(0.0);
    h->SetGeometry(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(h->TurnBall(i).GetPos(), VxPoint(0, 0, 0));
    }
    scene->FrameWithAux();

    // The position handle at size zero in every mode: no NaN anywhere, nothing hit but what has
    // a shape, and drags that do nothing.
    VxAuxPosition* p = Add<VxAuxPosition>(0.0, VxFrame());
    for (int mode = 0; mode <= 7; ++mode) {
        p->SetMoveMode(static_cast<HandleMovMode_e>(mode));
        p->SetGeometry(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
        for (int g = 0; g < 3; ++g) {
            for (int i = 0; i < 2; ++i) {
                const VxPoint a = p->Group(g).arrows[i].StartPoint();
                EXPECT_TRUE(std::isfinite(a[0]) && std::isfinite(a[1]) && std::isfinite(a[2]));
            }
        }
        scene->FrameWithAux();
        p->HitTest(kW / 2, kH / 2);
        EXPECT_TRUE(p->Transform(CPoint(kW / 2, kH / 2), CPoint(kW / 2, kH / 2), false, false)
                        .IsIdentity());
    }
    EXPECT_EQ(p->Group(0).pipe.GetMesh(), nullptr) << "no arc without a size";
    EXPECT_EQ(p->Group(1).pipe.GetMesh(), nullptr);
    // Before any hit the actual mode is unset and a drag is the identity.
    VxAuxPosition fresh;
    EXPECT_TRUE(fresh.Transform(CPoint(1, 1), CPoint(50, 50), false, false).IsIdentity());
}

TEST_P(AuxHandlesTest, GLStateIsLeftAsFoundAfterHandlesDraw) {
    VxAuxFrame* h = Add<VxAuxFrame>(8.0, TiltedFrame(VxPoint(0, 0, 0)));
    VxAuxPosition* p = Add<VxAuxPosition>(10.0, VxFrame());
    p->SetMoveMode(HandleMov_All);
    p->SetGeometry(VxFrame(VxPoint(2, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    const CPoint ball = At(h->TurnBall(0).GetPos());
    ASSERT_TRUE(h->HitTest(ball.x, ball.y)); // rotate mode: the ring and ticks draw too
    p->HitTest(At(p->WidePipeMiddle(0)).x, At(p->WidePipeMiddle(0)).y);
    scene->Frame();
    double before[16], after[16];
    glMatrixMode(GL_MODELVIEW);
    glGetDoublev(GL_MODELVIEW_MATRIX, before);
    GLint attribs = 0, attribsAfter = 0;
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &attribs);
    const GLboolean depth = glIsEnabled(GL_DEPTH_TEST), light = glIsEnabled(GL_LIGHTING);
    VxAuxTestScene::Aux()->Render();
    VxAuxTestScene::Aux()->Render(); // the ring is visible from the second frame on
    glGetDoublev(GL_MODELVIEW_MATRIX, after);
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &attribsAfter);
    EXPECT_EQ(std::memcmp(before, after, sizeof before), 0);
    EXPECT_EQ(attribs, attribsAfter);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), depth);
    EXPECT_EQ(glIsEnabled(GL_LIGHTING), light);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    GLboolean mask = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
    EXPECT_TRUE(mask);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// ---- position handle ----

// Which pieces are lit after a hit.
struct Lit {
    bool move[3];
    bool groupPipe[3];
    bool groupArrows[3][2];
    bool widePipes[2];
    bool wideArrows[4];
};

Lit ReadLit(const VxAuxPosition& p) {
    Lit l{};
    for (int k = 0; k < 3; ++k) {
        l.move[k] = p.MoveArrow(k).IsHighLight();
        l.groupPipe[k] = p.Group(k).pipe.IsHighLight();
        l.groupArrows[k][0] = p.Group(k).arrows[0].IsHighLight();
        l.groupArrows[k][1] = p.Group(k).arrows[1].IsHighLight();
    }
    for (int i = 0; i < 2; ++i) {
        l.widePipes[i] = p.GetWideArc().pipes[i].IsHighLight();
    }
    for (int i = 0; i < 4; ++i) {
        l.wideArrows[i] = p.GetWideArc().arrows[i].IsHighLight();
    }
    return l;
}

std::string Describe(const Lit& l) {
    std::string s;
    for (int k = 0; k < 3; ++k) {
        if (l.move[k]) {
            s += " move" + std::to_string(k);
        }
        if (l.groupPipe[k]) {
            s += " pipe" + std::to_string(k);
        }
        for (int i = 0; i < 2; ++i) {
            if (l.groupArrows[k][i]) {
                s += " arrow" + std::to_string(k) + "." + std::to_string(i);
            }
        }
    }
    for (int i = 0; i < 2; ++i) {
        if (l.widePipes[i]) {
            s += " wide" + std::to_string(i);
        }
    }
    for (int i = 0; i < 4; ++i) {
        if (l.wideArrows[i]) {
            s += " widearrow" + std::to_string(i);
        }
    }
    return s.empty() ? " nothing" : s;
}

Lit OnlyMove(int k) {
    Lit l{};
    l.move[k] = true;
    return l;
}
Lit OnlyGroup(int g) {
    Lit l{};
    l.groupPipe[g] = l.groupArrows[g][0] = l.groupArrows[g][1] = true;
    return l;
}
Lit OnlyWide() {
    Lit l{};
    l.widePipes[0] = l.widePipes[1] = true;
    for (bool& a : l.wideArrows) {
        a = true;
    }
    return l;
}

// The handle's frame turned 70 degrees about a diagonal of the screen, so that no two axes share
// a direction on the screen and the arcs of mode 7 lie at least 15 px off the move arrows (which
// are tested first); the display point sits below right of the origin.
VxFrame PositionFrame() {
    const VxQuaternion q = VxQuaternion::FromAxisAngle(VxVector(1, 1, 0), 70.0 * kPi / 180.0);
    return VxFrame(VxPoint(-3, 2, 0), q * VxVector(1, 0, 0), q * VxVector(0, 1, 0));
}

// Points the arcs run through off their middles, clear of the move arrows: a quarter of the way
// along the short arcs of groups 0 and 1, and an eighth of a turn round the circle of group 2.
VxPoint ArcPoint(const VxFrame& f, double ref, int group) {
    const VxPoint o = f.GetOrigin();
    const VxVector z = f.DirZ();
    const VxVector turned = VxQuaternion::FromAxisAngle(f.DirX(), 0.25) * z;
    if (group == 0) {
        return o - ref * turned;
    }
    if (group == 1) {
        return (o - ref * z) + ref * turned;
    }
    const VxPoint p = o - (ref - 2.0) * z;
    return p + 5.0 * (VxQuaternion::FromAxisAngle(z, -kPi / 4) * f.DirY());
}

TEST_P(AuxHandlesTest, PositionHandleHitAtAPipeMiddleLightsExactlyThePiecesOfItsMode) {
    struct Case {
        HandleMovMode_e mode;
        Lit expected;
    };
    const Case cases[] = {
        {HandleMov_MoveX, OnlyMove(0)},       {HandleMov_MoveY, OnlyMove(1)},
        {HandleMov_MoveZ, OnlyMove(2)},       {HandleMov_TurnZ, OnlyGroup(2)},
        {HandleMov_TurnY, OnlyWide()},        {HandleMov_TurnX, OnlyGroup(0)},
        {HandleMov_TurnXLower, OnlyGroup(1)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("move mode " + std::to_string(c.mode));
        VxAuxPosition* p = new VxAuxPosition;
        p->SetRefDist(10.0);
        p->SetMoveMode(c.mode);
        p->SetDisplayPoint(VxPoint(4, -3, 0));
        p->SetGeometry(PositionFrame());
        VxAuxTestScene::Aux()->AddAuxObject(p);
        const VxTestImage before = scene->FrameWithAux();
        VxPoint middle;
        if (c.mode <= HandleMov_MoveZ) {
            const VxAuxArrow& a = p->MoveArrow(c.mode);
            middle = a.StartPoint() + 0.5 * (a.StopPoint() - a.StartPoint());
        } else if (c.mode == HandleMov_TurnY) {
            middle = p->WidePipeMiddle(1);
        } else {
            middle =
                p->PipeMiddle(c.mode == HandleMov_TurnZ ? 2 : (c.mode == HandleMov_TurnX ? 0 : 1));
        }
        const CPoint s = At(middle);
        VxAuxTestScene::Aux()->HitTest(s);
        EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), p);
        EXPECT_EQ(p->GetActualMovMode(), c.mode);
        EXPECT_EQ(Describe(ReadLit(*p)), Describe(c.expected));
        // The lit pieces draw in the highlight colour in the next frame.
        const VxTestImage lit = scene->FrameWithAux();
        int changed = 0;
        for (int y = s.y - 4; y <= s.y + 4; ++y) {
            for (int x = s.x - 4; x <= s.x + 4; ++x) {
                changed += std::memcmp(before.Pixel(x, y), lit.Pixel(x, y), 3) != 0;
            }
        }
        if (c.mode != HandleMov_MoveX) {
            // The highlight of an arrow is its colour darkened: the black X arrow stays black.
            EXPECT_GT(changed, 0) << "the highlight shows";
        }
        // A miss clears the set and keeps the actual mode.
        VxAuxTestScene::Aux()->HitTest(CPoint(2, 2));
        EXPECT_EQ(p->GetActualMovMode(), c.mode);
        Lit left{};
        if (c.mode == HandleMov_TurnXLower) {
            // The miss of mode 6 clears its pipe but the Z-turn group's arrows.
            left.groupArrows[1][0] = left.groupArrows[1][1] = true;
        }
        EXPECT_EQ(Describe(ReadLit(*p)), Describe(left));
        VxAuxTestScene::Aux()->RemoveAuxObject(p, true);
    }
}

TEST_P(AuxHandlesTest, PositionHandleInModeSevenFindsEveryPieceWithItsActualMode) {
    VxAuxPosition* p = Add<VxAuxPosition>(10.0, VxFrame());
    p->SetMoveMode(HandleMov_All);
    p->SetDisplayPoint(VxPoint(4, -3, 0));
    p->SetGeometry(PositionFrame());
    // Group 2 is built last and every mode's parts are placed.
    for (int g = 0; g < 3; ++g) {
        EXPECT_NE(p->Group(g).pipe.GetMesh(), nullptr);
    }
    EXPECT_NE(p->GetWideArc().pipes[1].GetMesh(), nullptr);
    scene->FrameWithAux();
    struct Case {
        VxPoint at;
        HandleMovMode_e actual;
        Lit expected;
    };
    const Case cases[] = {
        {p->WidePipeMiddle(0), HandleMov_TurnY, OnlyWide()},
        {ArcPoint(PositionFrame(), 10.0, 2), HandleMov_TurnZ, OnlyGroup(2)},
        {ArcPoint(PositionFrame(), 10.0, 0), HandleMov_TurnX, OnlyGroup(0)},
        // The middles of groups 0 and 1 lie on the Z arrow, which is tested first.
        {ArcPoint(PositionFrame(), 10.0, 1), HandleMov_TurnXLower, OnlyGroup(1)},
        {p->MoveArrow(0).StartPoint() +
             0.25 * (p->MoveArrow(0).StopPoint() - p->MoveArrow(0).StartPoint()),
         HandleMov_MoveX, OnlyMove(0)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("actual mode " + std::to_string(c.actual));
        // A hit ends the search, so pieces after it keep the highlight of an earlier hit: a miss
        // first clears them all.
        EXPECT_FALSE(p->HitTest(2, 2));
        const CPoint s = At(c.at);
        EXPECT_TRUE(p->HitTest(s.x, s.y));
        EXPECT_EQ(p->GetActualMovMode(), c.actual);
        EXPECT_EQ(Describe(ReadLit(*p)), Describe(c.expected));
    }
    EXPECT_FALSE(p->HitTest(2, 2));
    EXPECT_EQ(Describe(ReadLit(*p)), Describe(Lit{}));
}

TEST_P(AuxHandlesTest, ModeSixMeasuresTheTurnFromTheLowerPointAndModeSevenFromTheOrigin) {
    // Both handles hit their group-1 arc, so both turn about X with the actual mode 6; only the
    // move mode differs.
    VxAuxPosition* six = Add<VxAuxPosition>(10.0, VxFrame());
    six->SetMoveMode(HandleMov_TurnXLower);
    six->SetGeometry(PositionFrame());
    VxAuxPosition* seven = Add<VxAuxPosition>(10.0, VxFrame());
    seven->SetMoveMode(HandleMov_All);
    seven->SetDisplayPoint(VxPoint(4, -3, 0));
    seven->SetGeometry(PositionFrame());
    scene->FrameWithAux();
    const CPoint s = At(ArcPoint(PositionFrame(), 10.0, 1));
    ASSERT_TRUE(six->HitTest(s.x, s.y));
    ASSERT_TRUE(seven->HitTest(s.x, s.y));
    ASSERT_EQ(six->GetActualMovMode(), HandleMov_TurnXLower);
    ASSERT_EQ(seven->GetActualMovMode(), HandleMov_TurnXLower);

    const CPoint from(s.x, s.y);
    const CPoint to(s.x, s.y + 40);
    const VxMatrix a = six->Transform(from, to, false, false);
    const VxMatrix b = seven->Transform(from, to, false, false);
    const VxVector y0 = PositionFrame().DirY();
    const double angleSix = Degrees(six->GetPositionFrame().DirY().AngleWith(y0));
    const double angleSeven = Degrees(seven->GetPositionFrame().DirY().AngleWith(y0));
    EXPECT_GT(angleSix, 1.0);
    EXPECT_GT(angleSeven, 1.0);
    EXPECT_GT(std::abs(angleSix - angleSeven), 1.0) << angleSix << " vs " << angleSeven;
    EXPECT_NE(a, b);
    // Both keep X, the axis of the turn.
    EXPECT_TRUE(Near(six->GetPositionFrame().DirX(), PositionFrame().DirX(), 1e-9));
    EXPECT_TRUE(Near(seven->GetPositionFrame().DirX(), PositionFrame().DirX(), 1e-9));
    // The parts follow the position frame; the base's parts, kept at the base's own size (never
    // set here, so zero), sit on the origin.
    EXPECT_EQ(six->TurnBall(0).GetPos(), six->GetPositionFrame().GetOrigin());
}

TEST_P(AuxHandlesTest, PositionHandleTranslatesAlongTheHitArrow) {
    VxAuxPosition* p = Add<VxAuxPosition>(10.0, VxFrame());
    p->SetMoveMode(HandleMov_MoveX);
    p->SetGeometry(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    scene->FrameWithAux();
    const VxAuxArrow& a = p->MoveArrow(0);
    const CPoint s = At(a.StartPoint() + 0.3 * (a.StopPoint() - a.StartPoint()));
    ASSERT_TRUE(p->HitTest(s.x, s.y));
    const VxMatrix m = p->Transform(s, CPoint(s.x + 50, s.y + 30), false, false);
    EXPECT_NEAR(m[0][3], 5.0, 1e-6);
    EXPECT_NEAR(m[1][3], 0.0, 1e-9);
    EXPECT_NEAR(p->GetPositionFrame().GetOrigin()[0], 5.0, 1e-6);
    EXPECT_NEAR(p->MoveArrow(0).StartPoint()[0], 13.0, 1e-6) << "the arrow follows";
    const VxMatrix slow = p->Transform(s, CPoint(s.x - 50, s.y), true, true);
    EXPECT_NEAR(slow[0][3], -0.5, 1e-6);
}

VX_BOTH_RENDER_PATHS(AuxHandlesTest);

} // namespace
