// Patient pictures on the synthetic patient: the front photograph stands upright in its true
// colours, and the panoramic film's markers sit at their share positions (within a pixel),
// follow the film when it is dragged and scaled, carry the colour and number of their kind, and
// a marker of an unknown kind stays hidden.
#include "VxCacheStuffProbe.h"
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>

#include <aux/VxAuxMarker.h>
#include <aux/VxAuxTexture.h>
#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>
#include <interfaces/PanAttribute.h>
#include <interfaces/VxPictureLayout.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

using Scene = VxOverlayTestScene;

void ShowModel(bool show) {
    std::vector<VxEntity*> all;
    Scene::Case().model.GetEntities(all);
    for (VxEntity* e : all) {
        e->SetVisible(show ? 1 : 0);
    }
}

class OverlayPictureTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    void SetUp() override {
        if (!Scene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
        cache = Scene::Cache();
        Scene::Look(VxViewManager::View_Front, 0);
    }
    void TearDown() override {
        if (cache != nullptr) {
            ShowModel(true);
            Scene::Reset();
        }
    }
    std::string Name(const std::string& base) const {
        return base + (GetParam() == VxTestRenderPath::Fixed ? "_fixed" : "_shader");
    }
    VxCacheStuff* cache = nullptr;
};

TEST_P(OverlayPictureTest, FrontPhotoIsUprightInTrueColours) {
    cache->SetShowFrontImg(true);
    VxAuxTexture* photo = VxCacheStuffProbe::Picture(1);
    ASSERT_NE(photo, nullptr);
    ShowModel(false); // the picture stands behind the model
    const VxTestImage img = Scene::Frame();
    Scene::Save(img, Name("overlay_front_photo"));
    // The case holds the photograph upside down in R, G, B order, as it is uploaded; turned
    // back it is the photograph a person took, and the screen must show that.
    CImage source;
    ASSERT_TRUE(VxPictureLayout::FromOverlayLayout(*Scene::Case().patientInfo.GetFrontalSmileImg(),
                                                   source));
    const CPoint tl = photo->GetScreenPtns(1);
    const CPoint br = photo->GetScreenPtns(3);
    ASSERT_GT(br.x - tl.x, 100);
    ASSERT_GT(br.y - tl.y, 100);
    int compared = 0;
    int colourful = 0;
    for (double v = 0.1; v < 0.95; v += 0.1) {
        for (double u = 0.1; u < 0.95; u += 0.1) {
            const COLORREF want =
                source.GetPixel(int(u * source.GetWidth()), int(v * source.GetHeight()));
            const int x = tl.x + int(std::lround(u * (br.x - tl.x)));
            const int y = tl.y + int(std::lround(v * (br.y - tl.y)));
            const std::uint8_t* got = img.Pixel(x, y);
            const int r = GetRValue(want), g = GetGValue(want), b = GetBValue(want);
            colourful += std::abs(r - b) > 60;
            EXPECT_NEAR(got[0], r, 40) << u << "," << v;
            EXPECT_NEAR(got[1], g, 40) << u << "," << v;
            EXPECT_NEAR(got[2], b, 40) << u << "," << v;
            ++compared;
        }
    }
    EXPECT_GT(colourful, 10) << "enough samples where red and blue differ to tell a swap";
}

TEST_P(OverlayPictureTest, PanoramicMarkersSitAtTheirSharesAndFollowTheFilm) {
    cache->SetShowPanoramic(true);
    VxAuxTexture* film = VxCacheStuffProbe::Picture(3);
    ASSERT_NE(film, nullptr);
    const std::vector<PanAttribute>& data = Scene::Case().panMeasure.GetDatas();
    const std::vector<VxAuxMarker*>& markers = VxCacheStuffProbe::Markers();
    ASSERT_EQ(markers.size(), data.size());
    const auto check = [&](const char* when) {
        SCOPED_TRACE(when);
        const CPoint bl = film->GetScreenPtns(0);
        const CPoint tr = film->GetScreenPtns(2);
        for (size_t i = 0; i < data.size(); ++i) {
            const VxPoint c = markers[i]->GetCenterPoint();
            // Shares count from the film's left and bottom edges.
            EXPECT_NEAR(c[0], bl.x + data[i].point[0] * (tr.x - bl.x), 1.0) << i;
            EXPECT_NEAR(c[1], bl.y - data[i].point[1] * (bl.y - tr.y), 1.0) << i;
        }
    };
    ShowModel(false);
    VxTestImage img = Scene::Frame();
    Scene::Save(img, Name("overlay_panoramic"));
    check("shown");
    // A drawn marker shows in its fill colour beside its digit; the hidden one leaves the film.
    // On a film this small neighbouring discs overlap and the later one covers: read the
    // colours on the film enlarged, then put it back.
    film->ScaleImg(5.0);
    img = Scene::Frame();
    for (size_t i = 0; i < data.size(); ++i) {
        if (data[i].kind != 1 && data[i].kind != 8) {
            continue;
        }
        const VxPoint c = markers[i]->GetCenterPoint();
        const std::uint8_t* p = img.Pixel(int(c[0]) + 6, int(c[1]));
        const bool red = p[0] > 150 && p[1] < 100 && p[2] < 100;
        EXPECT_EQ(red, data[i].kind == 1) << int(p[0]) << "," << int(p[1]) << "," << int(p[2]);
    }
    film->ScaleImg(0.2);
    Scene::Frame();
    check("scaled back");
    film->Drag(CPoint(200, 150), CPoint(160, 170));
    film->ScaleImg(0.8);
    Scene::Frame(); // the film moves its markers when it is drawn
    check("dragged and scaled");
    // Colour and number by kind; kind 8 is no kind the film knows: hidden.
    for (size_t i = 0; i < data.size(); ++i) {
        SCOPED_TRACE(i);
        VxAuxMarker* m = markers[i];
        EXPECT_FALSE(m->IsHitable());
        switch (data[i].kind) {
        case 1:
            EXPECT_EQ(m->GetFillColor(), VxColor(255, 0, 0, 100));
            EXPECT_EQ(m->GetText().Str(), std::to_wstring(data[i].number));
            break;
        case 3:
            EXPECT_EQ(m->GetFillColor(), VxColor(243, 98, 47, 100));
            EXPECT_EQ(m->GetText().Str(), std::to_wstring(data[i].number - 13));
            break;
        case 5:
            EXPECT_EQ(m->GetFillColor(), VxColor(132, 50, 200, 100));
            EXPECT_EQ(m->GetText().Str(), std::to_wstring(data[i].number - 22));
            break;
        case 6:
            EXPECT_EQ(m->GetText().Str(), L"");
            break;
        case 7:
            EXPECT_EQ(m->GetText().Str(), L"?");
            break;
        case 8:
            EXPECT_FALSE(m->IsVisible());
            break;
        default:
            break;
        }
        EXPECT_EQ(m->IsVisible(), data[i].kind >= 1 && data[i].kind <= 7);
    }
}

TEST_P(OverlayPictureTest, UpdatePictureRebuildsOnlyWhatIsShown) {
    cache->SetShowXImg(true);
    cache->UpdatePicture();
    EXPECT_NE(VxCacheStuffProbe::Picture(0), nullptr);
    for (int i = 1; i < 4; ++i) {
        EXPECT_EQ(VxCacheStuffProbe::Picture(i), nullptr) << i;
    }
    cache->SetShowXImg(false);
    EXPECT_EQ(VxCacheStuffProbe::Picture(0), nullptr);
}

VX_BOTH_RENDER_PATHS(OverlayPictureTest);

} // namespace
