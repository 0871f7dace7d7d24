// The panoramic film of the synthetic patient (seed 1) as vxrender --picture panoramic shows it
// at 640 x 400, through the overlay cache, compared with tests/golden/panoramic_seed1.png. The
// golden was made by running this test once with VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and looked
// at before it was committed: the film fitted to the view (240 x 120 pixels, 20 below the
// middle), darkened by the case's brightness and contrast positions, upright, upper roots
// pointing up and lower ones down, the bite line rising towards the middle, with its landmark
// discs over it: red "1" and "2" at the molars, green "2", orange "2", blue and purple "2", a
// cyan disc under the front teeth and a "?" mark; the landmark of an unknown kind stays hidden.
// The same run checks what the program's picture switch does: each picture the case holds
// shows upright in its fitted rectangle with the patient out of the way, and the landmarks
// follow the film when it is dragged. In a two-view layout only the view that shows a picture
// leaves the patient out.
#include "VxTestImage.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <VxAppScene.h>
#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxMarker.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <frame/VxRenderStatus.h>
#include <platform/VxNativeWindow.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

class GoldenPanoramicTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Each test makes a context of its own; names from an earlier one mean nothing here.
        VxForgetShaderObjects();
        patient = VxSyntheticPatient::Generate(1);
        window = VxNativeWindow::CreateOffscreen(kW, kH);
        std::string error;
        if (!window || !scene.Open(window.get(), kW, kH, "", error)) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no GL context: " << error;
            }
            GTEST_SKIP() << "no GL context: " << error;
        }
        scene.SetCase(patient.get());
    }
    void TearDown() override { scene.SetCase(nullptr); }
    VxTestImage Frame(const std::string& name) {
        scene.RenderFrame();
        const std::string path = VxTestOutputDir() + "/" + name + ".png";
        std::string error;
        EXPECT_TRUE(scene.SaveSnapshot(path, error)) << error;
        VxTestImage img;
        EXPECT_TRUE(VxLoadPng(path, &img));
        return img;
    }
    std::unique_ptr<VxCase> patient;
    std::unique_ptr<VxNativeWindow> window;
    VxAppScene scene;
};

} // namespace

TEST_F(GoldenPanoramicTest, PanoramicFilmWithItsLandmarksMatchesTheReferencePicture) {
    std::string error;
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::Panoramic, error)) << error;
    EXPECT_EQ(scene.GetPicture(), VxAppPictureKind::Panoramic);
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    // Nine landmarks, one of a kind without a meaning: hidden.
    ASSERT_EQ(aux->GetAuxObjects().size(), 9u);
    int hidden = 0;
    for (VxAuxObject* o : aux->GetAuxObjects()) {
        hidden += o->IsVisible() ? 0 : 1;
    }
    EXPECT_EQ(hidden, 1);
    const VxTestImage img = Frame("golden_panoramic");
    VxExpectMatchesGolden(img, "panoramic_seed1.png");
}

TEST_F(GoldenPanoramicTest, EveryPictureShowsInItsRectangleAndTheLandmarksFollowADrag) {
    std::string error;
    const VxTestImage bare = Frame("picture_none");
    for (VxAppPictureKind kind : {VxAppPictureKind::Front, VxAppPictureKind::Profile,
                                  VxAppPictureKind::Xray, VxAppPictureKind::Panoramic}) {
        ASSERT_TRUE(scene.SetPicture(kind, error)) << error;
        const VxTestImage img = Frame(std::string("picture_") + VxAppNameOf(kVxAppPictures, kind));
        VxAuxTexture* t = nullptr;
        for (VxAuxObject* o : VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture()) {
            t = dynamic_cast<VxAuxTexture*>(o);
        }
        ASSERT_NE(t, nullptr);
        const CRect r = t->GetScreenRect();
        // Inside the rectangle the picture; outside it the plain white page.
        int differs = 0;
        for (int y = r.top + 2; y < r.bottom - 2; y += 5) {
            for (int x = r.left + 2; x < r.right - 2; x += 5) {
                const std::uint8_t* p = img.Pixel(x, y);
                differs += (p[0] < 250 || p[1] < 250 || p[2] < 250) ? 1 : 0;
            }
        }
        EXPECT_GT(differs, 20) << VxAppNameOf(kVxAppPictures, kind);
        const std::uint8_t* corner = img.Pixel(r.left - 20, r.top - 20);
        EXPECT_EQ(corner[0], 255) << "the patient is out of the way";
    }
    // The synthetic smile photograph: brown hair at the top, the bluish backdrop in a corner.
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::Front, error));
    VxTestImage img = Frame("picture_front");
    VxAuxTexture* t = dynamic_cast<VxAuxTexture*>(
        VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture().front());
    ASSERT_NE(t, nullptr);
    CRect r = t->GetScreenRect();
    const std::uint8_t* hair = img.Pixel(r.left + r.Width() / 2, r.top + r.Height() * 30 / 360);
    EXPECT_NEAR(hair[0], 70, 12);
    EXPECT_NEAR(hair[1], 50, 12);
    EXPECT_NEAR(hair[2], 35, 12);
    const std::uint8_t* backdrop = img.Pixel(r.left + 4, r.bottom - 4);
    EXPECT_NEAR(backdrop[0], 90, 12);
    EXPECT_NEAR(backdrop[2], 140, 12);

    // Landmarks ride with the film.
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::Panoramic, error));
    Frame("picture_panoramic_before");
    VxAuxMarker* first = nullptr;
    for (VxAuxObject* o : VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects()) {
        if (auto* m = dynamic_cast<VxAuxMarker*>(o); m != nullptr && first == nullptr) {
            first = m;
        }
    }
    ASSERT_NE(first, nullptr);
    const VxPoint before = first->GetCenterPoint();
    t = dynamic_cast<VxAuxTexture*>(
        VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture().front());
    t->Drag(CPoint(100, 100), CPoint(130, 90));
    Frame("picture_panoramic_dragged");
    EXPECT_NEAR(first->GetCenterPoint()[0], before[0] + 30, 1.0);
    EXPECT_NEAR(first->GetCenterPoint()[1], before[1] - 10, 1.0);

    // None gives the patient back.
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::None, error));
    EXPECT_TRUE(VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture().empty());
    EXPECT_EQ(Frame("picture_none_again").rgba, bare.rgba);
}

TEST_F(GoldenPanoramicTest, OnlyTheViewShowingAPictureLeavesThePatientOut) {
    std::string error;
    scene.SetLayout(VxAppLayout::Jaws);
    const VxTestImage bare = Frame("picture_jaws_none");
    // The front photograph is tall enough to fit a half-width view.
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::Front, error)) << error;
    const VxTestImage img = Frame("picture_jaws_front");
    VxAuxTexture* t = dynamic_cast<VxAuxTexture*>(
        VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture().front());
    ASSERT_NE(t, nullptr);
    // The picture stands in the first (left) view, where the library's mapping of that view puts
    // it; the gum is what tells the patient apart from the photograph.
    const auto gum = [](const VxTestImage& im, int x0, int x1) {
        int n = 0;
        for (int y = 0; y < kH; ++y) {
            for (int x = x0; x < x1; ++x) {
                const std::uint8_t* p = im.Pixel(x, y);
                n += p[0] > 180 && p[1] > 100 && p[1] < 170 && p[2] > 90 && p[2] < 160 &&
                     p[0] - p[1] > 60;
            }
        }
        return n;
    };
    int leftChanged = 0, rightChanged = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            const std::uint8_t* a = bare.Pixel(x, y);
            const std::uint8_t* b = img.Pixel(x, y);
            (x < kW / 2 ? leftChanged : rightChanged) +=
                a[0] != b[0] || a[1] != b[1] || a[2] != b[2];
        }
    }
    // About 20,000 gum pixels with the patient there; the photograph's lips give a few.
    EXPECT_GT(gum(bare, 0, kW / 2), 5000) << "the measure sees the patient";
    EXPECT_LT(gum(img, 0, kW / 2), 100) << "the patient is left out beside the picture";
    EXPECT_GT(leftChanged, 2000);
    EXPECT_EQ(rightChanged, 0) << "the other view keeps its patient";
    EXPECT_GT(gum(img, kW / 2, kW), 500);

    // Taking the picture away gives the left view its patient back.
    ASSERT_TRUE(scene.SetPicture(VxAppPictureKind::None, error));
    EXPECT_EQ(Frame("picture_jaws_none_again").rgba, bare.rgba);
}
