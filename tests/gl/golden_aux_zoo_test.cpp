// The aux sample of vxrender --aux-demo on the synthetic patient (seed 1) at 640 x 400,
// compared with tests/golden/aux_zoo_seed1.png. The golden was made by running this test once
// with VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and looked at before it was committed: the front
// teeth, zoomed, carry a red sphere half inside 11, a dashed box around 21 (its buried edges
// dimmed), an orange arrow off 13 and a blue dual arrow before the lower incisors, a green
// outline before 12 and a red crossing one before 22, a purple arch curve over the upper crowns
// and a yellow pipe over the lower ones, a translucent plane over the lower right teeth and a
// ruled grid by the upper right canine, a ring with its blue disc around 23, a green torus arc
// by 33 and a blue-to-red depth patch on 41, and three pin labels: "11" and "21" on white
// diamonds standing on blue leaders above the upper centrals, "31" with its description "LL1" on
// an orange leader down over the lower gum. Any change in how an aux object draws shows here.
#include "VxTestPaths.h"
#include "VxTestImage.h"

#include <VxAppScene.h>
#include <VxSyntheticPatient.h>
#include <VxCase.h>

#include <aux/VxAuxRender.h>
#include <frame/VxRenderStatus.h>
#include <platform/VxNativeWindow.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

TEST(GoldenAuxZooTest, AuxSampleOnTheSyntheticPatientMatchesTheReferencePicture) {
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
    EXPECT_EQ(VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects().size(), 12u);
    scene.RenderFrame();
    const std::string actualPath = VxTestOutputDir() + "/golden_aux_zoo.png";
    ASSERT_TRUE(scene.SaveSnapshot(actualPath, error)) << error;
    scene.SetCase(nullptr);
    VxTestImage actual;
    ASSERT_TRUE(VxLoadPng(actualPath, &actual));

    VxExpectMatchesGolden(actual, "aux_zoo_seed1.png");
}

} // namespace
