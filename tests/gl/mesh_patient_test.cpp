// The synthetic patient through the frame and the drawers of both render paths: every kind of
// entity of a full case lands in the stencil with its own value, the upper-only mask leaves no
// lower jaw pixels and shelters the lower teeth, and compare mode's initial step draws each tooth
// once. The pictures go to test-output/mesh_patient_*.png.
#include "VxTestImage.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <VxSyntheticPatient.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>

namespace {

constexpr int kW = 320;
constexpr int kH = 240;

class MeshPatientTest : public ::testing::TestWithParam<VxTestRenderPath> {
public:
    static void SetUpTestSuite() {
        g_bDIBShowMessage = false;
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        render = VxRenderStatus::GetInstance()->GetRender();
        created = render->Create(window, 24, 8);
    }

protected:
    void SetUp() override {
        if (!created) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        render->GetGLContext()->MakeCurrent();
        VxApplyRenderPath(GetParam());
        patient = VxSyntheticPatient::Generate(7);
        ASSERT_TRUE(patient);
        patient->Install();
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        render->SetModel(&patient->model);
        mgr->CreateSingleView();
        // Fit the arches (about 60 mm across) into the view's -1..1.
        VxViewRegion* view = mgr->GetAllViews()[0];
        const VxBBox box = patient->model.GetBBox();
        const VxPoint c = box.Center();
        view->GetXForm().SetScale(1.6 / box.Diagonal());
        view->GetXForm().SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    }
    void TearDown() override {
        if (created && patient) {
            mgr->Clear();
            mgr->SetDisplayMode(Display_Mode_Normal);
            render->SetModel(nullptr);
            VxVBOHandleMgr::GetInstance()->Clear();
            patient->Uninstall();
        }
    }
    // Renders a frame, saves its picture and reads the stencil back, bottom row first.
    std::vector<GLint> Render(const std::string& name) {
        EXPECT_TRUE(render->RenderScene(true));
        VxTestImage img(kW, kH);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        rgba = img.rgba;
        img.FlipRows();
        VxWritePng(VxTestOutputDir() + "/" + name +
                       (GetParam() == VxTestRenderPath::Shader ? "_shader" : "_fixed") + ".png",
                   img);
        std::vector<GLint> v(static_cast<size_t>(kW) * kH);
        glReadPixels(0, 0, kW, kH, GL_STENCIL_INDEX, GL_INT, v.data());
        return v;
    }
    std::map<int, int> Histogram(const std::string& name) {
        std::map<int, int> h;
        for (GLint s : Render(name)) {
            ++h[s];
        }
        return h;
    }

    std::vector<std::uint8_t> rgba; // of the last frame, bottom row first
    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    std::unique_ptr<VxCase> patient;
    VxViewManager* mgr = nullptr;
};

// Seen from above, the upper jaw covers the rest; the mask shows one class at a time.
TEST_P(MeshPatientTest, EveryKindLandsInTheStencil) {
    VxViewRegion* view = mgr->GetAllViews()[0];
    EXPECT_GT(Histogram("mesh_patient_all")[4], 500) << "upper jaw on top";

    view->SelectJawShow(
        static_cast<Display_Selec>(Display_Selec_UpperTeeth | Display_Selec_LowerTeeth));
    std::map<int, int> h = Histogram("mesh_patient_teeth");
    EXPECT_GT(h[2], 500) << "teeth";
    if (!patient->attachments.empty()) {
        EXPECT_GT(h[6], 0) << "attachments";
    }
    EXPECT_EQ(h[3] + h[4] + h[5], 0);

    view->SelectJawShow(
        static_cast<Display_Selec>(Display_Selec_UpperGum | Display_Selec_LowerGum));
    h = Histogram("mesh_patient_gums");
    EXPECT_GT(h[3], 500) << "gums";
    EXPECT_EQ(h[2] + h[4] + h[5] + h[6], 0);
    for (const auto& tooth : patient->teeth) {
        EXPECT_TRUE(tooth->IsSheltered()) << tooth->GetFDI();
    }

    view->SelectJawShow(Display_Selec_Lower);
    h = Histogram("mesh_patient_lower");
    EXPECT_EQ(h[4], 0) << "no upper jaw";
    EXPECT_GT(h[5], 500) << "lower jaw";
    for (const auto& tooth : patient->teeth) {
        EXPECT_EQ(tooth->IsSheltered(), tooth->IsUp()) << tooth->GetFDI();
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(MeshPatientTest, EdgesModeAndCompareInitialStep) {
    mgr->GetAllViews()[0]->SelectJawShow(
        static_cast<Display_Selec>(Display_Selec_UpperTeeth | Display_Selec_LowerTeeth));
    VxRenderStatus::GetInstance()->SetDisplayMode(DisplayMode_Edges);
    const std::vector<GLint> stencil = Render("mesh_patient_edges");
    VxRenderStatus::GetInstance()->SetDisplayMode(DisplayMode_Solid);
    // Dense meshes at this size are almost all edge; what matters is that every tooth pixel is
    // an edge pixel, that is black: no face was drawn.
    int toothPixels = 0, nonBlack = 0;
    for (size_t i = 0; i < stencil.size(); ++i) {
        if (stencil[i] == 2) {
            ++toothPixels;
            nonBlack += rgba[i * 4] + rgba[i * 4 + 1] + rgba[i * 4 + 2] != 0;
        }
    }
    EXPECT_GT(toothPixels, 500);
    EXPECT_EQ(nonBlack, 0);

    mgr->SetDisplayMode(Display_Mode_Compare);
    mgr->GetAllViews()[0]->SetDisplayStep(Display_Step_Initial);
    EXPECT_GT(Histogram("mesh_patient_compare_initial")[2], 500);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

VX_BOTH_RENDER_PATHS(MeshPatientTest);

} // namespace
