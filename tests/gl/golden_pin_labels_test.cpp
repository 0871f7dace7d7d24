// The aux sample's pin labels on the synthetic patient (seed 1) at 640 x 400, in a process of
// their own (the shader renderer keeps its programs and glyph textures for the one context a
// host has).
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <VxAppScene.h>
#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/VxRenderStatus.h>
#include <platform/VxNativeWindow.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

// The aux sample's three pin labels alone (the other objects taken away) on the anterior teeth,
// compared with tests/golden/pin_labels_seed1.png; made like the picture above and looked at:
// "11" and "21" on white diamonds with blue rims standing on blue leaders above the upper
// centrals, "31" with "LL1" under it on an orange leader down over the lower gum; dark,
// legible digits, and no other aux object.
TEST(GoldenPinLabelsTest, ThreePinLabelsOnTheAnteriorTeethMatchTheReferencePicture) {
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    std::unique_ptr<VxNativeWindow> window = VxNativeWindow::CreateOffscreen(kW, kH);
    VxAppScene scene;
    std::string error;
    if (!window || !scene.Open(window.get(), kW, kH, "", error)) {
        if (std::getenv("VX_REQUIRE_GL")) {
            FAIL() << "no GL context: " << error;
        }
        GTEST_SKIP() << "no GL context: " << error;
    }
    scene.SetCase(patient.get());
    ASSERT_TRUE(scene.SetAuxDemo(true, error)) << error;
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    const std::vector<VxAuxObject*> others(aux->GetAuxObjects().begin(),
                                           aux->GetAuxObjects().end());
    for (VxAuxObject* o : others) {
        aux->RemoveAuxObject(o, true);
    }
    const std::vector<VxAuxObject*> texts = aux->GetTexts();
    for (VxAuxObject* o : texts) {
        aux->RemoveAuxObject(o, true);
    }
    ASSERT_EQ(aux->GetBillBoards().size(), 3u);
    scene.SetAxisCross(false);
    scene.RenderFrame();
    const std::string actualPath = VxTestOutputDir() + "/golden_pin_labels.png";
    ASSERT_TRUE(scene.SaveSnapshot(actualPath, error)) << error;
    for (VxAuxObject* o : aux->GetBillBoards()) {
        EXPECT_TRUE(static_cast<VxAuxBillBoard3d*>(o)->IsPlateValid());
    }
    scene.SetCase(nullptr);
    VxTestImage actual;
    ASSERT_TRUE(VxLoadPng(actualPath, &actual));
    VxExpectMatchesGolden(actual, "pin_labels_seed1.png");
}

} // namespace
