// The IPR, collision, attachment and grid overlays of the programs on the synthetic patient
// (seed 1) at 640 x 400, compared with goldens in tests/golden. Each golden was made with
// VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and looked at before it was committed:
//  - overlays2_ipr_seed1.png: the front teeth from the front, zoomed; green leaders from the
//    gaps between the incisors, canines and laterals to white diamond plates reading
//    " 4(0.2)", " 5(0.3)" and so on, upper labels rising, lower ones falling;
//  - overlays2_collision_seed1.png: both jaws from their biting sides; the premolars and molars
//    carry blue-to-green-to-red contact maps of the closed bite, with red contact values beside
//    them, green values of the neighbours' contacts and blue values of their gaps;
//  - overlays2_grid_seed1.png: the front view under a grey millimetre grid with the "10mm" bar
//    low on the right, and green pins " 1(23)", " 2(23)", " 3(23)" on the attachments.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <VxAppOverlays2.h>
#include <VxAppScene.h>
#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

class GoldenOverlays2Test : public ::testing::Test {
protected:
    void SetUp() override {
        static std::unique_ptr<VxNativeWindow> window = VxNativeWindow::CreateOffscreen(kW, kH);
        static VxAppScene s;
        static std::string error;
        static bool open = window && s.Open(window.get(), kW, kH, "", error);
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no GL context: " << error;
            }
            GTEST_SKIP() << "no GL context: " << error;
        }
        scene = &s;
        patient = VxSyntheticPatient::Generate(1);
        scene->SetCase(patient.get());
    }
    void TearDown() override {
        if (scene != nullptr) {
            VxAppOverlays2::Reset();
            scene->SetLayout(VxAppLayout::Single);
            scene->SetCase(nullptr);
        }
    }
    VxTestImage Picture(const std::string& name) {
        scene->RenderFrame();
        if (VxAppOverlays2::AfterFrame()) {
            scene->RenderFrame();
        }
        const std::string path = VxTestOutputDir() + "/" + name;
        std::string error;
        EXPECT_TRUE(scene->SaveSnapshot(path, error)) << error;
        VxTestImage img;
        EXPECT_TRUE(VxLoadPng(path, &img));
        return img;
    }
    void Show(const char* name) {
        std::string error;
        ASSERT_TRUE(VxAppOverlays2::Set(*scene, name, true, error)) << error;
    }
    VxAppScene* scene = nullptr;
    std::unique_ptr<VxCase> patient;
};

TEST_F(GoldenOverlays2Test, IprLabelsBetweenTheFrontTeeth) {
    // Zoom onto the incisors, as a clinician checking the reductions would.
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    VxXForm xf = view->GetXForm();
    xf.SetScale(xf.GetScale() * 2.0);
    view->SetXForm(xf);
    Show("ipr");
    VxExpectMatchesGolden(Picture("overlays2_ipr.png"), "overlays2_ipr_seed1.png");
}

TEST_F(GoldenOverlays2Test, ContactMapsOnBothJawsFromAbove) {
    // Each jaw seen from its biting side: where the teeth land on each other when the patient
    // bites down.
    scene->SetLayout(VxAppLayout::Jaws);
    scene->SetAxisCross(false);
    Show("collision");
    VxExpectMatchesGolden(Picture("overlays2_collision.png"), "overlays2_collision_seed1.png");
    scene->SetAxisCross(true);
}

TEST_F(GoldenOverlays2Test, GridAndAttachmentLabelsFromTheFront) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    VxXForm xf = view->GetXForm();
    xf.SetScale(xf.GetScale() * 1.8);
    view->SetXForm(xf);
    Show("grid");
    Show("attachments");
    VxExpectMatchesGolden(Picture("overlays2_grid.png"), "overlays2_grid_seed1.png");
}

} // namespace
