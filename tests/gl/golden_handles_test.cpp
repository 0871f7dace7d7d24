// The manipulators on the synthetic patient (seed 1) as vxrender --handle draws them, at 480 x 320:
// the side view of the lower right first molar (46) zoomed in, compared with tests/golden. The
// goldens were made with VX_UPDATE_GOLDEN=1 on Mesa llvmpipe and looked at before they were
// committed:
// - handle_frame_seed1.png: the frame handle at rest. The tan X axis runs along the arch and Z
//   up the tooth's long axis, each with its letter and red turn balls at the ends; Y looks at
//   the viewer and is left out with its balls. The red-tinted balls below are the Z turn ball and
//   the one visible move ball, seen through the gum.
// - handle_rotate_seed1.png: the same handle turning: the upper Z turn ball (inside the gum) is
//   hit, so the turn is about Y, and a ring with 360 ticks (longer every fifth) circles the
//   molar in the plane facing the viewer, grey over the teeth and tinted red by the gum where
//   its ticks pass behind it.
// - handle_position_seed1.png: the position handle in mode 7: three dual arrows crossing below
//   the crown (buried in the gum, so red-tinted), the purple wide arc on both sides of the
//   tooth, the green short arc at the crown and the olive one below, and the blue circle about
//   the long axis seen nearly edge-on, each arc ending in cone tips.
// Also here: the viewer key's cycle of handles on the selected tooth, and a drag of the frame
// handle's grips moving the tooth as a host applies it.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <VxAppHandle.h>
#include <VxAppScene.h>
#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxFrame.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <platform/VxNativeWindow.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kW = 480;
constexpr int kH = 320;

class GoldenHandlesTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        patient = VxSyntheticPatient::Generate(1).release();
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        scene = new VxAppScene;
        std::string error;
        open = window != nullptr && scene->Open(window, kW, kH, "", error);
        if (open) {
            scene->SetCase(patient);
        }
    }
    static void TearDownTestSuite() {
        if (open) {
            scene->SetCase(nullptr);
        }
        // The scene and window stay for the process: the library's context lives on them.
    }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no GL context";
            }
            GTEST_SKIP() << "no GL context";
        }
        scene->SetCase(patient); // a fresh view and placements for each test
    }
    void TearDown() override {
        if (open) {
            handle.Detach();
        }
    }
    static VxTestImage Picture(const std::string& name) {
        scene->RenderFrame();
        const std::string path = VxTestOutputDir() + "/" + name;
        std::string error;
        EXPECT_TRUE(scene->SaveSnapshot(path, error)) << error;
        VxTestImage img;
        EXPECT_TRUE(VxLoadPng(path, &img));
        return img;
    }
    void Attach(const char* kind) {
        VxAppHandleChoice choice;
        ASSERT_TRUE(VxAppParseHandle(kind, choice));
        std::string error;
        ASSERT_TRUE(handle.Attach(*scene, 46, choice, error)) << error;
        handle.FocusView(2.5);
    }
    static inline VxCase* patient = nullptr;
    static inline VxNativeWindow* window = nullptr;
    static inline VxAppScene* scene = nullptr;
    static inline bool open = false;
    VxAppHandle handle;
};

TEST_F(GoldenHandlesTest, FrameHandleAtRestOnAMolar) {
    Attach("frame");
    VxExpectMatchesGolden(Picture("handle_frame.png"), "handle_frame_seed1.png");
}

TEST_F(GoldenHandlesTest, FrameHandleTurningShowsTheGraduatedRing) {
    Attach("rotate");
    const VxTestImage img = Picture("handle_rotate.png");
    // The ring's grey runs round the tooth: left and right of the origin at the ring's radius.
    EXPECT_GT(img.CountColour(192, 191, 194, 40), 200);
    VxExpectMatchesGolden(img, "handle_rotate_seed1.png");
}

TEST_F(GoldenHandlesTest, PositionHandleWithEveryMove) {
    Attach("position");
    VxExpectMatchesGolden(Picture("handle_position.png"), "handle_position_seed1.png");
}

TEST_F(GoldenHandlesTest, TheViewerKeyCyclesThroughEveryHandleOnTheSelectedTooth) {
    EXPECT_EQ(VxAppHandle::DefaultTooth(*scene), 46) << "a molar when nothing is selected";
    ASSERT_TRUE(scene->SelectTooth(23, true));
    const int fdi = VxAppHandle::DefaultTooth(*scene);
    EXPECT_EQ(fdi, 23);
    EXPECT_EQ(handle.Cycle(*scene, fdi), "handle: frame handle on tooth 23");
    for (int mode = 0; mode <= 7; ++mode) {
        const std::string said = handle.Cycle(*scene, fdi);
        EXPECT_EQ(said.rfind("handle: position handle, mode " + std::to_string(mode), 0), 0u)
            << said;
        EXPECT_EQ(handle.Choice().moveMode, mode);
        EXPECT_EQ(VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects().size(), 1u);
    }
    EXPECT_EQ(handle.Cycle(*scene, fdi), "handle: off");
    EXPECT_FALSE(handle.IsAttached());
    EXPECT_TRUE(VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects().empty());
    // Turning the aux sample on clears the registry: the handle is gone, not dangling.
    handle.Cycle(*scene, fdi);
    std::string error;
    ASSERT_TRUE(scene->SetAuxDemo(true, error)) << error;
    EXPECT_FALSE(handle.IsAttached());
    EXPECT_FALSE(handle.Grab(CPoint(kW / 2, kH / 2)));
    handle.Drag(CPoint(kW / 2, kH / 2), CPoint(kW / 2 + 20, kH / 2), false);
    EXPECT_EQ(handle.Cycle(*scene, fdi), "handle: frame handle on tooth 23");
    scene->SetAuxDemo(false, error);
    scene->SelectTooth(23, false);
    // A tooth the case lacks leaves no handle.
    EXPECT_EQ(handle.Cycle(*scene, 99).rfind("handle: the case has no tooth 99", 0), 0u);
    EXPECT_FALSE(handle.IsAttached());
}

TEST_F(GoldenHandlesTest, DraggingTheCentreBallMovesTheToothAndTheHandleTogether) {
    Attach("frame");
    VxTooth* tooth = patient->FindTooth(46);
    ASSERT_NE(tooth, nullptr);
    const auto placement = [&] {
        return VxTransformMatrix::GetInstance()->GetDrawInfos(tooth).begin()->matrix;
    };
    const VxMatrix before = placement();
    // The plan of the tooth is put back at the end, for the pictures of the other tests.
    const auto plan = patient->placements[tooth];
    scene->RenderFrame();
    const VxAuxFrame* h = dynamic_cast<const VxAuxFrame*>(
        *VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects().begin());
    ASSERT_NE(h, nullptr);
    const VxPoint o = h->GetFrame().GetOrigin();
    const CPoint c = scene->Render()->MapModelPointToScreen(o);
    ASSERT_TRUE(handle.Grab(c));
    EXPECT_EQ(h->GetHitIndex(), 6);
    handle.Drag(c, CPoint(c.x + 30, c.y), false);
    const VxMatrix after = placement();
    const VxVector moved(after[0][3] - before[0][3], after[1][3] - before[1][3],
                         after[2][3] - before[2][3]);
    EXPECT_GT(moved.Magnitude(), 0.5);
    EXPECT_TRUE((h->GetFrame().GetOrigin() - o - moved).Magnitude() < 1e-9)
        << "the tooth moves by what the handle moved";
    // The case keeps it: going back to the step shows the tooth where it was put.
    EXPECT_EQ(patient->placements[tooth][VxTransformMatrix::GetInstance()->GetCurrentStep()]
                  .begin()
                  ->matrix,
              after);

    // A turn ball turns the tooth about the handle's origin, which stays put.
    const CPoint ball = scene->Render()->MapModelPointToScreen(h->TurnBall(0).GetPos());
    scene->RenderFrame();
    ASSERT_TRUE(handle.Grab(ball));
    ASSERT_EQ(h->GetOperMode(), HandleOper_Rotate);
    const VxPoint pivot = h->GetFrame().GetOrigin();
    const VxMatrix beforeTurn = placement();
    const CPoint oc = scene->Render()->MapModelPointToScreen(pivot);
    handle.Drag(CPoint(oc.x + 60, oc.y - 5), CPoint(oc.x + 5, oc.y - 60), false);
    const VxMatrix turned = placement();
    EXPECT_NE(turned, beforeTurn);
    // The pivot's image under the step (turned * inverse(beforeTurn)) is the pivot itself.
    VxMatrix inv = beforeTurn;
    ASSERT_TRUE(inv.Inverse());
    const VxPoint image = (turned * inv).Transform(pivot);
    EXPECT_LT((image - pivot).Magnitude(), 1e-6);
    patient->placements[tooth] = plan;
}

} // namespace
