// The synthetic patient (seed 1) at 640 x 400 compared with reference pictures in tests/golden/:
// the five-view layout at step 0 on both render paths (five_views_seed1.png, fixed;
// five_views_shader_seed1.png, shader), and one front view on the shader path at the last step
// with tooth 11 selected (single_view_shader_seed1.png), where the canines show their limit
// positions as see-through ghosts. The goldens were made by running this test with
// VX_UPDATE_GOLDEN=1 on Mesa 22.3 llvmpipe (Debian 12) and looked at before they were committed:
// no background picture, so the window is black behind the model; the top row of the five views
// shows the patient's right side, the front and the left side; the bottom row the upper arch from
// below (incisors up) and the lower arch from above (incisors down). On the shader path the teeth
// are ivory with a warm band at the gum line, the gums pink and finely stippled, the jaws grey;
// the selected tooth is gold. A change in any drawer, program, material, camera or layout shows
// up here.
#include "VxGLTest.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <VxSyntheticPatient.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

struct Scene {
    bool fiveViews = true;
    int step = 0;
    int selectedFdi = 0;
};

VxTestImage Render(VxCase& patient, const Scene& scene) {
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    static std::unique_ptr<VxNativeWindow> window = VxNativeWindow::CreateOffscreen(kW, kH);
    static bool created = window && render->Create(window.get(), 24, 8);
    if (!created || !render->GetGLContext()) {
        return VxTestImage();
    }
    render->ResizeViewport(kW, kH);

    patient.Install();
    patient.SetCurrentStep(scene.step);
    if (VxTooth* t = patient.model.GetTooth(scene.selectedFdi)) {
        t->SetSelected(1);
    }
    render->SetModel(&patient.model);

    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView();
    const VxBBox box = patient.model.GetBBox();
    VxXForm fit;
    fit.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                    VxViewManager::GetReferenceRotation(patient.model));
    fit.SetScale(1.8 / box.Diagonal());
    const VxPoint c = box.Center();
    fit.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    views->GetView(0)->SetXForm(fit);
    render->RenderScene(true); // the layouts map through the last frame's matrices
    if (scene.fiveViews) {
        views->SwitchTo5View(patient.model);
        render->RenderScene(true);
    }
    glFinish();

    VxTestImage img(kW, kH);
    glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
    img.FlipRows();
    for (size_t i = 3; i < img.rgba.size(); i += 4) {
        img.rgba[i] = 255; // alpha of the back buffer is not part of the picture
    }
    views->Clear();
    render->SetModel(nullptr);
    patient.Uninstall();
    return img;
}

class GoldenFiveViewTest : public ::testing::TestWithParam<VxTestRenderPath> {};

TEST_P(GoldenFiveViewTest, SyntheticPatientMatchesTheReferencePicture) {
    VxApplyRenderPath(GetParam());
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    VxExpectMatchesGolden(Render(*patient, Scene{}), GetParam() == VxTestRenderPath::Shader
                                                         ? "five_views_shader_seed1.png"
                                                         : "five_views_seed1.png");
}

VX_BOTH_RENDER_PATHS(GoldenFiveViewTest);

TEST(GoldenShaderViewTest, SelectedToothAndGhostsMatchTheReferencePicture) {
    VxApplyRenderPath(VxTestRenderPath::Shader);
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    Scene scene;
    scene.fiveViews = false;
    scene.step = patient->stepCount - 1;
    scene.selectedFdi = 11;
    VxExpectMatchesGolden(Render(*patient, scene), "single_view_shader_seed1.png");
}

} // namespace
