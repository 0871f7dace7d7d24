// The drawers reached the way a host reaches them, on both render paths: a model given to the
// renderer, one view, RenderScene, then ProcessFeedback and DoSelect under each entity. Checks
// that every pass finds its drawer, that the stencil values the drawers write are what the
// feedback reads back and the pick turns into the entity, that the view's jaw mask hides and
// shelters a jaw for the next pick, that the display modes draw faces, edges and points as they
// say (edges staying on top of the faces), and that a limit position is a see-through ghost that
// cannot be picked.
#include "VxTestImage.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/glew.h>
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

class MeshFrameTest : public ::testing::TestWithParam<VxTestRenderPath> {
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
        VxApplyRenderPath(GetParam());
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        // The shorter side of a view spans -1 to 1 at scale 1.
        Square(tooth, -0.4, 0.3, 0.15);
        Square(gum, 0.4, 0.3, 0.15);
        Square(jaw, 0, -0.3, 0.15);
        Square(upperJaw, 0.75, -0.3, 0.15);
        Square(shape, 0, 0, 0.08);
        // The attachment is picked by its own geometry, drawn as its shape per part.
        Square(attachment, -0.4, -0.3, 0.08);
        attachment.AttachParts().push_back(
            std::make_shared<VxAttachmentPart>(VxMatrix::Translation(VxVector(-0.4, -0.3, 0.01))));
        for (VxEntity* e :
             std::initializer_list<VxEntity*>{&tooth, &gum, &jaw, &upperJaw, &attachment}) {
            model.AddEntity(e);
        }
        render->SetModel(&model);
        select->SetModel(&model);
        mgr->CreateSingleView();
        mgr->SetActiveView(0);
        status->SetSelectType({ObjectType_Jaw, ObjectType_Gum, ObjectType_Tooth,
                               ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Mesh});
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
            select->SetModel(nullptr);
            status->SetDisplayMode(DisplayMode_Solid);
            VxTransformMatrix::GetInstance()->Clear();
            VxVBOHandleMgr::GetInstance()->Clear();
        }
    }
    void Frame(const std::string& name) {
        ASSERT_TRUE(render->RenderScene(true));
        ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        VxTestImage img(kW, kH);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        rgba = img;
        img.FlipRows();
        VxWritePng(VxTestOutputDir() + "/" + name + "_" + Path() + ".png", img);
    }
    std::string Path() const { return GetParam() == VxTestRenderPath::Shader ? "shader" : "fixed"; }
    CPoint Pixel(double x, double y) { return render->MapModelPointToScreen(VxPoint(x, y, 0)); }
    int FeedbackAt(double x, double y) {
        render->ProcessFeedback(Pixel(x, y));
        return status->GetFeedbackType();
    }
    // A click as the host makes one: the stencil read, then the pick.
    VxObject* Click(double x, double y) {
        render->ProcessFeedback(Pixel(x, y));
        return select->DoSelect(Pixel(x, y));
    }
    // Colour of the last frame at a model point (bottom-up rows).
    const std::uint8_t* ColourAt(double x, double y) {
        const CPoint p = Pixel(x, y);
        return rgba.Pixel(p.x, kH - 1 - p.y);
    }
    int StencilAt(double x, double y) {
        const CPoint p = Pixel(x, y);
        GLint v = 0;
        glReadPixels(p.x, kH - 1 - p.y, 1, 1, GL_STENCIL_INDEX, GL_INT, &v);
        return v;
    }
    // Black pixels of the last frame inside a square of the model (half size h about c).
    int BlackInside(double cx, double cy, double h) {
        const CPoint a = Pixel(cx - h, cy + h), b = Pixel(cx + h, cy - h);
        int n = 0;
        for (int y = a.y; y <= b.y; ++y) {
            for (int x = a.x; x <= b.x; ++x) {
                const std::uint8_t* c = rgba.Pixel(x, kH - 1 - y);
                n += c[0] + c[1] + c[2] < 24;
            }
        }
        return n;
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    VxOpenGLSelect* select = VxRenderStatus::GetInstance()->GetSelecter();
    VxViewManager* mgr = nullptr;
    VxTestImage rgba;
    VxTooth tooth{11};
    VxGum gum{true};
    VxJaw jaw{false};
    VxJaw upperJaw{true};
    VxStdAttach shape{CString(L"SK-1"), VxColor(0, 0, 0)};
    VxAttachment attachment{&shape, &tooth};
    VxModel model;
};

TEST_P(MeshFrameTest, EachKindIsFedBackAndPicked) {
    Frame("mesh_frame_all");
    const struct {
        double x, y;
        int feedback;
        VxObject* picked;
    } rows[] = {
        {-0.4, 0.3, FeedbackType_Tooth, &tooth},
        {0.45, 0.35, FeedbackType_Gum, &gum},
        {0.05, -0.25, FeedbackType_LowerJaw, &jaw},
        {0.8, -0.25, FeedbackType_UpperJaw, &upperJaw},
        {-0.38, -0.32, FeedbackType_Attachment, &attachment},
        {0.0, 0.75, FeedbackType_None, nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FeedbackAt(row.x, row.y), row.feedback) << row.x << ", " << row.y;
        EXPECT_EQ(Click(row.x, row.y), row.picked) << row.x << ", " << row.y;
    }
    EXPECT_FALSE(jaw.IsSheltered());

    // Upper only: the lower jaw is gone from the picture and sheltered from the pick.
    mgr->GetAllViews()[0]->SelectJawShow(Display_Selec_Upper);
    Frame("mesh_frame_upper");
    EXPECT_EQ(FeedbackAt(0.05, -0.25), FeedbackType_None);
    EXPECT_EQ(Click(0.05, -0.25), nullptr);
    EXPECT_TRUE(jaw.IsSheltered());
    EXPECT_EQ(Click(0.8, -0.25), &upperJaw);
    EXPECT_EQ(Click(-0.4, 0.3), &tooth);
}

TEST_P(MeshFrameTest, DisplayModesDrawFacesEdgesAndPoints) {
    // Inside the tooth's square, away from its border and its diagonal.
    const double ix = -0.33, iy = 0.25;
    Frame("mesh_frame_solid");
    EXPECT_EQ(BlackInside(-0.4, 0.3, 0.12), 0) << "no edges in solid mode";
    EXPECT_EQ(StencilAt(ix, iy), 2);

    status->SetDisplayMode(DisplayMode_SolidEdges);
    Frame("mesh_frame_solid_edges");
    // The diagonal edge crosses the inside of the square and stays on top of the faces.
    EXPECT_GT(BlackInside(-0.4, 0.3, 0.12), 12);
    EXPECT_GT(ColourAt(ix, iy)[0], 60);

    status->SetDisplayMode(DisplayMode_Edges);
    Frame("mesh_frame_edges");
    EXPECT_EQ(StencilAt(ix, iy), 0) << "no faces in edges mode";
    EXPECT_LT(ColourAt(ix, iy)[0] + ColourAt(ix, iy)[1], 10);

    status->SetDisplayMode(DisplayMode_Points);
    Frame("mesh_frame_points");
    EXPECT_EQ(StencilAt(ix, iy), 0);
    const std::uint8_t* corner = ColourAt(-0.55, 0.15);
    EXPECT_GT(corner[0], 200);
    EXPECT_LT(corner[1], 40);
}

TEST_P(MeshFrameTest, LimitPositionIsASeeThroughGhostThatCannotBePicked) {
    // Teeth are drawn in model order with depth writes on, so a ghost shows what was drawn before
    // it: another tooth, put first in the model.
    VxTooth behind(12);
    Square(behind, 0.0, 0.65, 0.15);
    model.RemoveEntity(&tooth);
    model.AddEntity(&behind);
    model.AddEntity(&tooth);
    // The tooth where it stands, and its limit position half over the other tooth, nearer the eye.
    VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
    tm->SetDrawInfos(&tooth, tm->GetCurrentStep(),
                     {DrawInfo_s(false, VxMatrix::Identity(4)),
                      DrawInfo_s(true, VxMatrix::Translation(VxVector(0.5, 0.35, 0.05)))});
    Frame("mesh_frame_ghost");
    const std::uint8_t* overTooth = ColourAt(0.05, 0.65);
    const std::uint8_t* overBlack = ColourAt(0.2, 0.65);
    const std::uint8_t* toothAlone = ColourAt(-0.1, 0.65);
    // Red, and what lies behind shows through.
    EXPECT_GT(overBlack[0], overBlack[1] + 20);
    EXPECT_GT(overTooth[1], overBlack[1] + 15);
    EXPECT_LT(overTooth[1], toothAlone[1] - 15);
    EXPECT_EQ(StencilAt(0.2, 0.65), 2);
    EXPECT_EQ(Click(0.2, 0.65), nullptr);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Tooth);
    EXPECT_EQ(Click(-0.4, 0.3), &tooth);
    model.RemoveEntity(&behind);
}

VX_BOTH_RENDER_PATHS(MeshFrameTest);

} // namespace
