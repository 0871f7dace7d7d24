// The measuring grid over a real context: after a frame at a known zoom the lit pixel columns and
// rows fall every step, the scale bar is one step long with its caption, a zoom only changes which
// lines show, hiding keeps every object, and deleting hands all of them back to the registry in
// one pass, leaving the others in their order.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxLine2D.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <interfaces/VxXForm.h>
#include <overlays/VxCacheStuff.h>
#include <overlays/VxMeasureGrid.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 320;
constexpr int kH = 240;

VxCacheStuff* Cache() {
    return VxCacheStuff::GetInstance();
}

// The grid of one view as the registry holds it: the columns, the rows, then the left tick, the
// bar and the right tick; the caption is the registry's first text.
struct Grid {
    std::vector<VxAuxLine2D*> vertical;
    std::vector<VxAuxLine2D*> horizontal;
    VxAuxLine2D* leftTick = nullptr;
    VxAuxLine2D* bar = nullptr;
    VxAuxLine2D* rightTick = nullptr;
    VxAuxText* text = nullptr;
};

Grid Lines(int w, int h) {
    Grid g;
    const std::vector<VxAuxObject*>& lines = VxAuxTestScene::Aux()->GetScreenLines();
    if (lines.size() < size_t(w + h + 3) || VxAuxTestScene::Aux()->GetTexts().empty()) {
        return g;
    }
    for (int i = 0; i < w + h; ++i) {
        (i < w ? g.vertical : g.horizontal).push_back(static_cast<VxAuxLine2D*>(lines[i]));
    }
    g.leftTick = static_cast<VxAuxLine2D*>(lines[w + h]);
    g.bar = static_cast<VxAuxLine2D*>(lines[w + h + 1]);
    g.rightTick = static_cast<VxAuxLine2D*>(lines[w + h + 2]);
    g.text = static_cast<VxAuxText*>(VxAuxTestScene::Aux()->GetTexts().front());
    return g;
}

VxViewRegion* View() {
    return VxViewManager::GetInstance()->GetView(0);
}

void Zoom(double pxPerMm) {
    VxXForm xf = View()->GetXForm();
    xf.SetScale(pxPerMm * 2.0 / std::min(kW, kH));
    View()->SetXForm(xf);
}

// Darkest of the pixel and its left neighbour: a one-pixel line on a pixel edge lands in one.
int Shade(const VxTestImage& img, int x, int y) {
    int v = 255;
    for (int dx : {-1, 0}) {
        if (x + dx >= 0 && x + dx < img.width) {
            v = std::min(v, int(img.Pixel(x + dx, y)[1]));
        }
    }
    return v;
}

int ShadeRow(const VxTestImage& img, int x, int y) {
    int v = 255;
    for (int dy : {-1, 0}) {
        if (y + dy >= 0 && y + dy < img.height) {
            v = std::min(v, int(img.Pixel(x, y + dy)[1]));
        }
    }
    return v;
}

class OverlayGridTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH, true); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        scene = std::make_unique<VxAuxTestScene>(4.4, false);
    }
    void TearDown() override {
        if (!open) {
            return;
        }
        Cache()->DeleteGrid();
        scene.reset();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
};

TEST_F(OverlayGridTest, LinesEveryStepAndTheBarNearTheRightEdge) {
    ASSERT_NEAR(View()->GetpixelmodelRatio(), 4.4, 1e-6);
    Cache()->DrawGrid(1);
    // One line a pixel column and row, the bar and its two ticks, and the caption.
    ASSERT_EQ(VxAuxTestScene::Aux()->GetScreenLines().size(), size_t(kW + kH + 3));
    ASSERT_EQ(VxAuxTestScene::Aux()->GetTexts().size(), 1u);
    const Grid g = Lines(kW, kH);
    // Column j runs down the pixel column j + 1 over the whole view, row i along row i + 1.
    EXPECT_EQ(g.vertical[7]->GetStartPoint().x, 8);
    EXPECT_EQ(g.vertical[7]->GetStartPoint().y, -1);
    EXPECT_EQ(g.vertical[7]->GetStopPoint().y, kH + 1);
    EXPECT_EQ(g.horizontal[5]->GetStartPoint().y, 6);
    EXPECT_EQ(g.horizontal[5]->GetStopPoint().x, kW - 1);

    const VxTestImage img = scene->FrameWithAux();
    VxAuxTestScene::Save(img, "overlay_grid_44");
    // 4.4 px a millimetre: a cell of 10 mm, 44 pixels; column j stands at x = j + 1.
    const int probeRow = 20 + 22; // between two lit rows
    for (int j = 0; j < kW; j += 44) {
        EXPECT_LT(Shade(img, j + 1, probeRow), 235) << "column " << j;
        if (j + 23 < kW) {
            EXPECT_EQ(Shade(img, j + 23, probeRow), 255) << "between columns after " << j;
        }
    }
    for (int i = 0; i < kH; i += 44) {
        EXPECT_LT(ShadeRow(img, 22, i + 1), 235) << "row " << i;
    }
    EXPECT_EQ(ShadeRow(img, 22, 1 + 22), 255);

    // The bar: one step long near the top right corner, and its caption under it.
    const CPoint a = g.bar->GetStartPoint();
    const CPoint b = g.bar->GetStopPoint();
    EXPECT_EQ(b.x - a.x, 44);
    EXPECT_EQ(a.y, b.y);
    // A step or two in from the right and down from the top: the mark is 80 pixels in from
    // the top right corner, and the bar stands a step before the lines nearest to it.
    // Here: columns 220 and 264 (x 221, 265) lie within a step of x 240, the last counts:
    // the bar starts at 265 - 88. Rows 44 and 88 (y 45, 89) lie within a step of y 80:
    // the bar runs at 89 - 44.
    EXPECT_EQ(a.x, 177);
    EXPECT_EQ(a.y, 45);
    EXPECT_EQ(g.leftTick->GetStartPoint().x, a.x);
    EXPECT_EQ(g.leftTick->GetStopPoint().y, a.y - 5);
    EXPECT_EQ(g.rightTick->GetStartPoint().x, b.x);
    EXPECT_EQ(g.text->GetText().Str(), L"10mm");
    EXPECT_EQ(g.text->GetSize(), 12);
    EXPECT_TRUE(g.bar->IsVisible());
    EXPECT_TRUE(g.text->IsVisible());
    // The bar is drawn darker than the grid (black under the same veil), the caption in black.
    EXPECT_LT(img.Pixel((a.x + b.x) / 2, a.y)[1] + 0, 200);
    int ink = 0;
    for (int y = a.y; y <= a.y + 16; ++y) {
        for (int x = a.x; x <= b.x + 20 && x < kW; ++x) {
            ink += img.Pixel(x, y)[1] < 60 ? 1 : 0;
        }
    }
    EXPECT_GT(ink, 10) << "no caption near the bar";
}

TEST_F(OverlayGridTest, ZoomChangesOnlyWhichLinesShow) {
    Cache()->DrawGrid(1);
    const Grid g = Lines(kW, kH);
    ASSERT_NE(g.bar, nullptr);
    const std::vector<VxAuxObject*> before = VxAuxTestScene::Aux()->GetScreenLines();
    const auto lit = [&] {
        std::vector<int> on;
        for (size_t j = 0; j < g.vertical.size(); ++j) {
            if (g.vertical[j]->IsVisible()) {
                on.push_back(int(j));
            }
        }
        return on;
    };
    EXPECT_EQ(lit(), (std::vector<int>{0, 44, 88, 132, 176, 220, 264, 308}));

    // 12.4 px a millimetre: a cell of 1 mm, 12 pixels.
    Zoom(12.4);
    scene->Frame();
    Cache()->RefreshMeshBenchmark(123.0); // the argument means nothing
    std::vector<int> want;
    for (int j = 0; j < kW; j += 12) {
        want.push_back(j);
    }
    EXPECT_EQ(lit(), want);
    EXPECT_EQ(g.text->GetText().Str(), L"1mm");
    EXPECT_EQ(g.bar->GetStopPoint().x - g.bar->GetStartPoint().x, 12);
    scene->FrameWithAux();

    // 0.04 px a millimetre: not one pixel a cell; the refresh stops and changes nothing.
    Zoom(0.04);
    scene->Frame();
    Cache()->DrawGrid(1);
    EXPECT_EQ(lit(), want);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetScreenLines(), before) << "nothing built or dropped";

    // Hidden: every line off, none freed; shown again, nothing rebuilt.
    Zoom(4.4);
    scene->Frame();
    Cache()->DrawGrid(0);
    EXPECT_TRUE(lit().empty());
    EXPECT_FALSE(g.bar->IsVisible());
    EXPECT_FALSE(g.text->IsVisible());
    EXPECT_EQ(VxAuxTestScene::Aux()->GetScreenLines(), before);
    const VxTestImage hidden = scene->FrameWithAux();
    EXPECT_EQ(hidden.CountColour(255, 255, 255), kW * kH) << "a hidden grid draws nothing";
    Cache()->DrawGrid(1);
    EXPECT_EQ(lit().size(), 8u);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetScreenLines(), before);
}

TEST_F(OverlayGridTest, DeleteHandsEverythingBackAndKeepsTheOthersInOrder) {
    VxAuxRender* aux = VxAuxTestScene::Aux();
    auto* first = new VxAuxLine2D();
    aux->AddAuxObject(first);
    Cache()->DrawGrid(1);
    auto* last = new VxAuxLine2D();
    aux->AddAuxObject(last);
    auto* caption = new VxAuxText();
    aux->AddAuxObject(caption);
    ASSERT_EQ(aux->GetScreenLines().size(), size_t(kW + kH + 5));
    Cache()->DeleteGrid();
    EXPECT_EQ(aux->GetScreenLines(), (std::vector<VxAuxObject*>{first, last}));
    EXPECT_EQ(aux->GetTexts(), (std::vector<VxAuxObject*>{caption}));
    Cache()->DeleteGrid(); // nothing left to delete
    Cache()->RefreshMeshBenchmark(1.0);

    // The bulk removal leaves alone what it does not hold and forgets a removed hit object.
    aux->SetHitObject(last);
    aux->RemoveAuxObjects({last, nullptr, last}, false);
    EXPECT_EQ(aux->GetHitObject(), nullptr);
    EXPECT_EQ(aux->GetScreenLines(), (std::vector<VxAuxObject*>{first}));
    aux->RemoveAuxObjects({last}, true); // not registered any more: not deleted either
    delete last;
}

TEST_F(OverlayGridTest, AViewAddedAfterTheBuildGetsNoLines) {
    Cache()->DrawGrid(1);
    const size_t count = VxAuxTestScene::Aux()->GetScreenLines().size();
    VxViewManager* views = VxViewManager::GetInstance();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView(); // a second region, after the build
    scene->Frame();
    Cache()->RefreshMeshBenchmark(0.0);
    Cache()->DrawGrid(1);
    EXPECT_EQ(VxAuxTestScene::Aux()->GetScreenLines().size(), count);
    scene->FrameWithAux();
}

} // namespace
