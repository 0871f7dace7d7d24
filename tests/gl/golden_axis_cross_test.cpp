// The axis cross of every view of the five-view layout (synthetic patient, seed 1, step 0,
// fixed-function path, 640 x 400), compared with tests/golden/five_views_axis_seed1.png. The
// golden was made by running this test once with VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and was
// looked at before it was committed: each view carries a small cross in its lower-right corner,
// blue Z, green Y and red X shafts with cones and the letters just past the tips, turned as that
// view turns the patient (the side views show X end-on, the arch views Z end-on).
#include "VxGLTest.h"
#include "VxTestPaths.h"

#include <VxSyntheticPatient.h>

#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

VxTestImage RenderFiveViews(VxCase& patient) {
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    static std::unique_ptr<VxNativeWindow> window = VxNativeWindow::CreateOffscreen(kW, kH);
    if (!window || !render->Create(window.get(), 24, 8) || !render->GetGLContext()) {
        return VxTestImage();
    }
    render->ResizeViewport(kW, kH);
    OpenGLVersion::GetInstance()->Set_btestversion(false);

    patient.Install();
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
    views->SwitchTo5View(patient.model);
    render->RenderScene(true);
    render->DrawCoordinateSystem();
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

} // namespace

TEST(GoldenAxisCrossTest, EveryViewOfTheFiveViewLayoutCarriesItsCross) {
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    const VxTestImage actual = RenderFiveViews(*patient);
    ASSERT_FALSE(actual.Empty()) << "no GL context";
    VxExpectMatchesGolden(actual, "five_views_axis_seed1.png");
}
