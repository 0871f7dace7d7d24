// Screen markers read back pixel for pixel in a 300 x 200 window (y from the top): the outline
// shapes at their exact pixels, the disc's white text, the bounds hit, and a model-space marker
// pinned to the camera of its creation.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxBillBoard.h>
#include <aux/VxAuxLine2D.h>
#include <aux/VxAuxMarker.h>
#include <aux/VxAuxPolyline2D.h>
#include <aux/VxAuxRender.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace {

constexpr int kW = 300;
constexpr int kH = 200;

bool IsRed(const std::uint8_t* p) {
    return p[0] > 200 && p[1] < 60 && p[2] < 60;
}
bool IsWhite(const std::uint8_t* p) {
    return p[0] > 200 && p[1] > 200 && p[2] > 200;
}

// Red pixels of row y between x0 and x1 (exclusive).
int RowCount(const VxTestImage& img, int y, int x0, int x1) {
    int n = 0;
    for (int x = x0; x < x1; ++x) {
        n += IsRed(img.Pixel(x, y)) ? 1 : 0;
    }
    return n;
}
int ColumnCount(const VxTestImage& img, int x, int y0, int y1) {
    int n = 0;
    for (int y = y0; y < y1; ++y) {
        n += IsRed(img.Pixel(x, y)) ? 1 : 0;
    }
    return n;
}
int Count(const VxTestImage& img, bool (*on)(const std::uint8_t*)) {
    int n = 0;
    for (int y = 0; y < img.height; ++y) {
        for (int x = 0; x < img.width; ++x) {
            n += on(img.Pixel(x, y)) ? 1 : 0;
        }
    }
    return n;
}

class AuxMarkerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH, false); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }
    static VxAuxMarker* Add() {
        auto* m = new VxAuxMarker();
        m->SetFillColor(VxColor(255, 0, 0, 100));
        VxAuxTestScene::Aux()->AddAuxObject(m);
        return m;
    }
    static inline bool open = false;
};

} // namespace

TEST_F(AuxMarkerTest, TwoDimensionalShapesLandOnTheirPixels) {
    VxAuxTestScene scene(4.0, false);
    VxAuxMarker* square = Add();
    square->SetSquare(CPoint(50, 40), 10);
    VxAuxMarker* trapezoid = Add();
    trapezoid->SetTrapezoid(CPoint(150, 50), 24);
    VxAuxMarker* triangle = Add();
    triangle->SetTriangle(CPoint(240, 50), 40, 30);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_markers_2d");

    // Square: x 40..60, y 30..50 (y from the top), nothing a pixel outside.
    EXPECT_TRUE(IsRed(img.Pixel(50, 40)));
    EXPECT_TRUE(IsRed(img.Pixel(41, 31)));
    EXPECT_TRUE(IsRed(img.Pixel(59, 49)));
    EXPECT_FALSE(IsRed(img.Pixel(61, 40)));
    EXPECT_FALSE(IsRed(img.Pixel(50, 51)));
    EXPECT_FALSE(IsRed(img.Pixel(38, 40)));
    EXPECT_FALSE(IsRed(img.Pixel(50, 28)));
    EXPECT_NEAR(RowCount(img, 40, 0, 100), 20, 1);
    EXPECT_NEAR(ColumnCount(img, 50, 0, 100), 20, 1);

    // Trapezoid 48 wide: its top edge loses a quarter of the width at each end.
    const int top = RowCount(img, 28, 100, 200);
    const int bottom = RowCount(img, 72, 100, 200);
    EXPECT_NEAR(bottom, 48, 2);
    EXPECT_NEAR(top, 24, 3) << "narrow at the top";

    // Triangle: full height at its left edge, a point at the right middle.
    EXPECT_NEAR(ColumnCount(img, 221, 0, 100), 30, 2);
    EXPECT_LT(ColumnCount(img, 257, 0, 100), 6);
    EXPECT_TRUE(IsRed(img.Pixel(255, 50)));
    EXPECT_FALSE(IsRed(img.Pixel(255, 38)));
}

TEST_F(AuxMarkerTest, DiscCarriesWhiteDigitsInItsMiddle) {
    VxAuxTestScene scene(4.0, false);
    VxAuxMarker* disc = Add();
    disc->SetCircle(CPoint(150, 100), 16);
    disc->SetText(CString(L"12"));
    ASSERT_GT(disc->GetTextBitmapWidth(), 4);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_marker_disc_text");
    int white = 0;
    int whiteOutside = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            if (!IsWhite(img.Pixel(x, y))) {
                continue;
            }
            const bool inDisc = std::hypot(x - 150.0, y - 100.0) < 16.0;
            (inDisc ? white : whiteOutside) += 1;
        }
    }
    EXPECT_GT(white, 15) << "the digits";
    EXPECT_EQ(whiteOutside, 0);
    EXPECT_NEAR(RowCount(img, 86, 100, 200) + 0.0, 2.0 * std::sqrt(16.0 * 16.0 - 14.0 * 14.0), 3.0);

    // An empty text removes the digits.
    disc->SetText(CString(L""));
    EXPECT_EQ(Count(scene.FrameWithAux(), IsWhite), 0);
}

TEST_F(AuxMarkerTest, HitUsesTheWindowBoundsAndNothingMarkerHitsOnlyWithPoints) {
    VxAuxTestScene scene(4.0, false);
    VxAuxMarker* square = Add();
    square->SetSquare(CPoint(100, 80), 10);
    EXPECT_TRUE(square->HitTest(100, 80));
    EXPECT_TRUE(square->HitTest(91, 71));
    EXPECT_FALSE(square->HitTest(111, 80)) << "one pixel past the right edge";
    EXPECT_FALSE(square->HitTest(100, 91)) << "one pixel below";
    VxAuxTestScene::Aux()->HitTest(CPoint(100, 80));
    EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), square);

    // Moving shifts the outline, and the hit follows.
    square->Move(VxPoint(130, 80, 0), 30, 0);
    EXPECT_FALSE(square->HitTest(95, 80));
    EXPECT_TRUE(square->HitTest(130, 80));

    VxAuxMarker* none = Add();
    none->SetType(AuxMarkerType_None);
    EXPECT_FALSE(none->HitTest(0, 0));
    none->SetSquare(CPoint(20, 20), 5);
    none->SetType(AuxMarkerType_None);
    EXPECT_TRUE(none->HitTest(0, 0)) << "every point maps to the origin";

    // The model-point trapezoid does nothing at all.
    VxAuxTestScene::Aux()->SetHitObject(nullptr); // no highlight over the square
    VxAuxMarker* noop = Add();
    noop->SetTrapezoid(VxPoint(0, 0, 0), VxVector(0, 0, 1), 3.0);
    EXPECT_TRUE(noop->GetPoints().empty());
    EXPECT_EQ(Count(scene.FrameWithAux(), IsRed), 20 * 20 + 0) << "only the moved square";
}

TEST_F(AuxMarkerTest, PinnedModelMarkerKeepsItsPixelsThroughATurn) {
    VxAuxTestScene scene(4.0, false);
    // The view's matrix in GL, as while a host draws.
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(VxViewManager::GetInstance()->GetView(0)->GetModelViewMatrix());
    VxAuxMarker* pinned = Add();
    pinned->SetSquare(VxPoint(10, 5, 0), VxVector(0, 0, 1), 3.0);
    pinned->SetDisableModeViewChange(true);
    VxAuxMarker* free = Add();
    free->SetCircle(VxPoint(-10, -5, 0), VxVector(0, 0, 1), 3.0);
    free->SetFillColor(VxColor(0, 255, 0));
    const VxTestImage before = scene.FrameWithAux();
    const CPoint centre = scene.ToScreen(VxPoint(10, 5, 0));
    ASSERT_TRUE(IsRed(before.Pixel(centre.x, centre.y)));
    EXPECT_TRUE(pinned->HitTest(centre.x, centre.y));

    // Turn the model 30 degrees about the vertical axis.
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    VxXForm xf = view->GetXForm();
    xf.SetRotation(VxMatrix::s_GetRotationMatrix(VxVector(0, 1, 0), 30.0 * 3.14159265358979 / 180));
    view->SetXForm(xf);
    const VxTestImage after = scene.FrameWithAux();
    VxAuxTestScene::Save(after, "aux_marker_pinned_turned");
    int moved = 0;
    int greenMoved = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            moved += IsRed(before.Pixel(x, y)) != IsRed(after.Pixel(x, y)) ? 1 : 0;
            greenMoved += (before.Pixel(x, y)[1] > 200) != (after.Pixel(x, y)[1] > 200) ? 1 : 0;
        }
    }
    EXPECT_EQ(moved, 0);
    EXPECT_GT(greenMoved, 10) << "the marker that is not pinned turns with the model";
    EXPECT_TRUE(pinned->HitTest(centre.x, centre.y));
}

TEST_F(AuxMarkerTest, ScreenLineIsAFaintVeilAcrossTheWindowAndNeverHit) {
    VxAuxTestScene scene(4.0, false);
    auto* line = new VxAuxLine2D();
    line->SetColor(VxColor(255, 255, 255));
    line->SetPoint(CPoint(20, 30), CPoint(220, 30));
    line->SetWidth(1.0f);
    VxAuxTestScene::Aux()->AddAuxObject(line);
    ASSERT_EQ(VxAuxTestScene::Aux()->GetScreenLines().size(), 1u);
    const VxTestImage img = scene.FrameWithAux();
    // Alpha 80 over black: a grey of about 80 along the row (y from the top), nothing elsewhere.
    int onRow = 0;
    int elsewhere = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            if (p[0] == 0 && p[1] == 0 && p[2] == 0) {
                continue;
            }
            if (std::abs(y - 30) <= 1 && x >= 20 && x <= 220) {
                EXPECT_NEAR(p[0], 80, 6) << x << "," << y;
                ++onRow;
            } else {
                ++elsewhere;
            }
        }
    }
    EXPECT_NEAR(onRow, 200, 3);
    EXPECT_EQ(elsewhere, 0);
    EXPECT_FALSE(line->HitTest(100, 30));
    VxAuxTestScene::Aux()->HitTest(CPoint(100, 30));
    EXPECT_EQ(VxAuxTestScene::Aux()->GetHitObject(), nullptr);
}

TEST_F(AuxMarkerTest, ScreenPolylineSitsAtItsViewFractionInFrontOfTheScene) {
    VxAuxTestScene scene(4.0, true); // the slab covers the left half, nearer than anything else
    auto* poly = new VxAuxPolyline2D();
    poly->SetColor(VxColor(255, 0, 0));
    poly->SetPos(0.1, 0.5);
    poly->AddPoint({VxPoint(0, 0, 0), VxPoint(40, 0, 0)});
    poly->AddPoint({VxPoint(0, 10, 0), VxPoint(0, 30, 0)});
    VxAuxTestScene::Aux()->AddAuxObject(poly);
    const VxTestImage img = scene.FrameWithAux();
    // x = 0.1 * 300 = 30, y = 0.5 * 200 = 100 from the bottom: row 99 or 100 from the top.
    const int row = IsRed(img.Pixel(50, 100)) ? 100 : 99;
    EXPECT_NEAR(RowCount(img, row, 0, kW), 40, 1) << "drawn over the slab";
    EXPECT_NEAR(ColumnCount(img, 30, 0, kH) + ColumnCount(img, 29, 0, kH), 20, 2);
    poly->Clear();
    EXPECT_EQ(Count(scene.FrameWithAux(), IsRed), 0);
    GLdouble range[2];
    glGetDoublev(GL_DEPTH_RANGE, range);
    EXPECT_EQ(range[0], 0.0);
    EXPECT_EQ(range[1], 1.0);
}

TEST_F(AuxMarkerTest, ScreenFramesPanelInPixelsAndOutlineAtViewFractions) {
    VxAuxTestScene scene(4.0, true); // grey slab over x 70..150
    auto* panel = new VxAuxBillBoard();
    panel->SetType(BillBoardType_Panel);
    panel->Set(180, 50, 60, 30); // pixels, y from the top: rows 20..49
    VxAuxTestScene::Aux()->AddAuxObject(panel);
    auto* outline = new VxAuxBillBoard();
    outline->Set(0.3, 0.3, 40, 20); // from (90, 60) up from the bottom, over the slab
    VxAuxTestScene::Aux()->AddAuxObject(outline);
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_billboard_frames");
    // Blue at alpha 64 over black.
    EXPECT_NEAR(img.Pixel(210, 35)[2], 64, 4);
    EXPECT_EQ(img.Pixel(210, 35)[0], 0);
    EXPECT_EQ(img.Pixel(210, 52)[2], 0);
    EXPECT_EQ(img.Pixel(243, 35)[2], 0);
    EXPECT_EQ(img.Pixel(210, 17)[2], 0);
    // The outline's bottom edge lies on the row 60 pixels up, black across the grey slab.
    int dark = 0;
    for (int x = 94; x < 126; ++x) {
        const int y = kH - 60;
        dark += (img.Pixel(x, y)[0] < 30 || img.Pixel(x, y - 1)[0] < 30) ? 1 : 0;
    }
    EXPECT_EQ(dark, 32);
    EXPECT_GT(img.Pixel(110, kH - 70)[0], 60) << "the inside stays the slab's grey";
}
