// The clinical overlays on the synthetic patient (seed 1) at 480 x 320 on the fixed path,
// compared with reference pictures in tests/golden/, black behind the model:
//  - overlays_front_step0.png and overlays_front_last.png: the front teeth close up at the start
//    and at the end of the plan with tooth numbers, movement marks and red Facc curves. The
//    numbers read upright on their own crowns (11 and 21 in the middle of the upper row, 41 and
//    31 below them) and move with their teeth; blue marks stand above the numbers of the upper
//    teeth and below those of the lower ones, black where a movement passes its limit.
//  - overlays_occlusal_lower.png: the lower arch from above, incisors down, with the yellow arch
//    wire along its labial faces (the upper jaw's wire, wider, runs outside it: aux objects do
//    not follow the views' jaw choice) and the blue lower and green upper tooth arch lines
//    through the crowns.
//  - overlays_side_planes.png: the patient's right side with the two occlusal planes seen edge
//    on: their green rims cross the bite at a slight angle.
//  - overlays_panoramic.png: the panoramic film enlarged in the view, its landmarks in their
//    kind's colours with their numbers (red 1, green, orange, blue and purple 2, a cyan disc
//    without a number, a grey "?"), the landmark of an unknown kind left out.
// Made with VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and looked at before they were committed.
#include "VxOverlayTestScene.h"
#include "VxTestImage.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>

#include <aux/VxAuxTexture.h>
#include <overlays/VxCacheStuff.h>

#include "VxCacheStuffProbe.h"

#include <gtest/gtest.h>

namespace {

using Scene = VxOverlayTestScene;

class GoldenOverlaysTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!Scene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(VxTestRenderPath::Fixed);
        cache = Scene::Cache();
    }
    void TearDown() override {
        if (cache != nullptr) {
            Scene::Reset();
        }
    }
    VxCacheStuff* cache = nullptr;
};

TEST_F(GoldenOverlaysTest, FrontTeethAtStartAndEndWithNumbersMarksAndFacc) {
    cache->SetShowToothFDI(true);
    cache->SetShowMoveDiff(true);
    cache->SetShowFacc(true);
    Scene::Look(VxViewManager::View_Front, 0, 3.0);
    VxExpectMatchesGolden(Scene::Frame(), "overlays_front_step0.png");
    Scene::Look(VxViewManager::View_Front, Scene::Case().stepCount - 1, 3.0);
    VxExpectMatchesGolden(Scene::Frame(), "overlays_front_last.png");
}

TEST_F(GoldenOverlaysTest, LowerArchWithWireAndToothLines) {
    cache->SetShowArchWire(true);
    cache->SetShowUpToothLine(true);
    cache->SetShowDownToothLine(true);
    Scene::Look(VxViewManager::View_OcclusalLower, 0, 1.3);
    VxExpectMatchesGolden(Scene::Frame(), "overlays_occlusal_lower.png");
}

TEST_F(GoldenOverlaysTest, SideViewWithOcclusalPlanes) {
    cache->SetShowUpJawPlane(true);
    cache->SetShowDownJawPlane(true);
    Scene::Look(VxViewManager::View_Right, 0, 1.3);
    VxExpectMatchesGolden(Scene::Frame(), "overlays_side_planes.png");
}

TEST_F(GoldenOverlaysTest, PanoramicFilmWithItsLandmarks) {
    Scene::Look(VxViewManager::View_Front, 0);
    std::vector<VxEntity*> all;
    Scene::Case().model.GetEntities(all);
    for (VxEntity* e : all) {
        e->SetVisible(0); // the film alone
    }
    cache->SetShowPanoramic(true);
    VxAuxTexture* film = VxCacheStuffProbe::Picture(3);
    ASSERT_NE(film, nullptr);
    // Fitted to a narrow view the film is small: enlarged about its centre, then centred.
    film->ScaleImg(5.0);
    const CPoint c = film->GetScreenRect().CenterPoint();
    film->Drag(c, CPoint(Scene::kWidth / 2, Scene::kHeight / 2));
    const VxTestImage img = Scene::Frame();
    for (VxEntity* e : all) {
        e->SetVisible(1);
    }
    VxExpectMatchesGolden(img, "overlays_panoramic.png");
}

} // namespace
