// Layouts that square views onto the arch (five views, two jaws, compare) need a drawn frame,
// since ViewLookAt maps through the active view's stored matrices. Checks that each such view
// ends with the jaw frame's directions on the screen axes and that frames still render.
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr int kW = 300;
constexpr int kH = 250;

VxVector Apply(const VxMatrix& r, const VxVector& d) {
    return VxVector(r[0][0] * d[0] + r[0][1] * d[1] + r[0][2] * d[2],
                    r[1][0] * d[0] + r[1][1] * d[1] + r[1][2] * d[2],
                    r[2][0] * d[0] + r[2][1] * d[1] + r[2][2] * d[2]);
}

// The view shows direction a along screen X and b along screen Y.
::testing::AssertionResult Squared(const VxViewRegion* view, const VxVector& a, const VxVector& b) {
    const VxMatrix r = view->GetXForm().GetRotation();
    const double ea = (Apply(r, a) - VxVector(1, 0, 0)).Magnitude();
    const double eb = (Apply(r, b) - VxVector(0, 1, 0)).Magnitude();
    if (ea < 1e-9 && eb < 1e-9) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "view " << view->GetViewId() << ": errors " << ea << ", " << eb;
}

class FrameViewsTest : public ::testing::Test {
public:
    static void SetUpTestSuite() {
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
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->EnableSynView(false);
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        jaw = std::make_unique<VxJaw>(true);
        jaw->SetMeshData({VxPoint(0, 0, 0), VxPoint(10, 0, 0), VxPoint(0, 10, 0)}, {0, 1, 2});
        jaw->SetFrame(VxFrame(VxPoint(2, 3, 1), VxVector(1, 0.2, 0.1), VxVector(-0.1, 1, 0.3)));
        model.AddEntity(jaw.get());
        render->SetModel(&model);
        mgr->CreateSingleView();
        render->RenderScene(true);
        F = jaw->GetFrame();
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
        }
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxViewManager* mgr = nullptr;
    std::unique_ptr<VxJaw> jaw;
    VxModel model;
    VxFrame F;
};

} // namespace

TEST_F(FrameViewsTest, FiveViewsSquareTheOcclusalViews) {
    mgr->SwitchTo5View(model);
    ASSERT_EQ(mgr->GetAllViews().size(), 5u);
    EXPECT_TRUE(Squared(mgr->GetView(3), F.DirY(), F.DirX()));
    EXPECT_TRUE(Squared(mgr->GetView(4), F.DirY(), -F.DirX()));
    // The top row keeps its fixed matrices times the reference rotation.
    const VxMatrix R = VxViewManager::GetReferenceRotation(model);
    const VxMatrix left = VxViewManager::GetFixedMatrix(VxViewManager::View_Left) * R;
    const VxMatrix r0 = mgr->GetView(0)->GetXForm().GetRotation();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(r0[i][j], left[i][j], 1e-12);
        }
    }
    EXPECT_EQ(mgr->GetActiveView(), mgr->GetView(0));
    EXPECT_TRUE(render->RenderScene(true));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    // Every view got its own camera viewport and a stored matrix from this frame.
    for (VxViewRegion* v : mgr->GetAllViews()) {
        EXPECT_GT(v->GetpixelmodelRatio(), 0.0);
    }
}

TEST_F(FrameViewsTest, TwoJawViewsAndCompareViews) {
    mgr->SwitchTo2View(model);
    ASSERT_EQ(mgr->GetAllViews().size(), 2u);
    EXPECT_TRUE(Squared(mgr->GetView(0), F.DirY(), F.DirX()));
    EXPECT_TRUE(Squared(mgr->GetView(1), F.DirY(), -F.DirX()));
    EXPECT_TRUE(render->RenderScene(true));

    mgr->SwitchToSingleView();
    VxModel second;
    mgr->SwitchTo2View(model, second);
    EXPECT_TRUE(Squared(mgr->GetView(0), F.DirY(), F.DirZ()));
    EXPECT_TRUE(Squared(mgr->GetView(1), F.DirY(), F.DirZ()));
    EXPECT_EQ(mgr->GetDisplayMode(), Display_Mode_Compare);
    EXPECT_TRUE(render->RenderScene(true));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
