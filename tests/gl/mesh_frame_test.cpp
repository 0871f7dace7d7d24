// The fixed-function drawers reached the way a host reaches them: a model given to the renderer,
// one view, RenderScene, then ProcessFeedback under each entity. Checks that every pass finds
// its drawer, that the stencil values the drawers write are what the feedback reads back, and
// that the view's jaw mask hides and shelters a jaw for the next pick.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr int kW = 200;
constexpr int kH = 160;

// A square in the z = 0 plane facing +z.
template <typename T> void Square(T& m, double cx, double cy, double half) {
    m.SetMeshData({VxPoint(cx - half, cy - half, 0), VxPoint(cx + half, cy - half, 0),
                   VxPoint(cx + half, cy + half, 0), VxPoint(cx - half, cy + half, 0)},
                  {0, 1, 2, 0, 2, 3});
}

class MeshFrameTest : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        // No background file is set: the frame's failed background load need not say so.
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
        OpenGLVersion::GetInstance()->Set_btestversion(false);
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        // The shorter side of a view spans -1 to 1 at scale 1.
        Square(tooth, -0.4, 0.3, 0.15);
        Square(gum, 0.4, 0.3, 0.15);
        Square(jaw, 0, -0.3, 0.15);
        Square(shape, 0, 0, 0.08);
        attachment.AttachParts().push_back(
            std::make_shared<VxAttachmentPart>(VxMatrix::Translation(VxVector(-0.4, -0.3, 0.01))));
        for (VxEntity* e : std::initializer_list<VxEntity*>{&tooth, &gum, &jaw, &attachment}) {
            model.AddEntity(e);
        }
        render->SetModel(&model);
        mgr->CreateSingleView();
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
            VxVBOHandleMgr::GetInstance()->Clear();
        }
    }
    int FeedbackAt(const VxPoint& p) {
        const CPoint s = render->MapModelPointToScreen(p);
        render->ProcessFeedback(s);
        return VxRenderStatus::GetInstance()->GetFeedbackType();
    }
    void Save(const std::string& name) {
        VxTestImage img(kW, kH);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        VxWritePng(VxTestOutputDir() + "/" + name + ".png", img);
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxViewManager* mgr = nullptr;
    VxTooth tooth{11};
    VxGum gum{true};
    VxJaw jaw{false};
    VxStdAttach shape{CString(L"SK-1"), VxColor(0, 0, 0)};
    VxAttachment attachment{&shape, &tooth};
    VxModel model;
};

TEST_F(MeshFrameTest, StencilOfEachKindReachesTheFeedback) {
    ASSERT_TRUE(render->RenderScene(true));
    Save("mesh_frame_all");
    EXPECT_EQ(FeedbackAt(VxPoint(-0.4, 0.3, 0)), FeedbackType_Tooth);
    EXPECT_EQ(FeedbackAt(VxPoint(0.4, 0.3, 0)), FeedbackType_Gum);
    EXPECT_EQ(FeedbackAt(VxPoint(0, -0.3, 0)), FeedbackType_LowerJaw);
    EXPECT_EQ(FeedbackAt(VxPoint(-0.4, -0.3, 0.01)), FeedbackType_Attachment);
    EXPECT_EQ(FeedbackAt(VxPoint(0.4, -0.3, 0)), FeedbackType_None);
    EXPECT_FALSE(jaw.IsSheltered());

    // Upper only: the lower jaw is gone from the picture and sheltered from the pick.
    mgr->GetAllViews()[0]->SelectJawShow(Display_Selec_Upper);
    ASSERT_TRUE(render->RenderScene(true));
    Save("mesh_frame_upper");
    EXPECT_EQ(FeedbackAt(VxPoint(0, -0.3, 0)), FeedbackType_None);
    EXPECT_TRUE(jaw.IsSheltered());
    EXPECT_EQ(FeedbackAt(VxPoint(-0.4, 0.3, 0)), FeedbackType_Tooth);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

} // namespace
