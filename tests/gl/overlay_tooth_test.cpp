// Tooth annotations on the synthetic patient: numbers, movement marks and Facc curves.
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>

#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

namespace {

class OverlayToothTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    void SetUp() override {
        if (!VxOverlayTestScene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
    }
    void TearDown() override { VxOverlayTestScene::Reset(); }
};

TEST_P(OverlayToothTest, Smoke) {
    VxCacheStuff* cache = VxOverlayTestScene::Cache();
    VxOverlayTestScene::Look(VxViewManager::View_Front, 0, 2.8);
    cache->SetShowToothFDI(true);
    cache->SetShowMoveDiff(true);
    cache->SetShowFacc(true);
    VxOverlayTestScene::Save(VxOverlayTestScene::Frame(),
                             std::string("overlay_smoke_front0_") +
                                 (GetParam() == VxTestRenderPath::Fixed ? "fixed" : "shader"));
    const int last = VxOverlayTestScene::Case().stepCount - 1;
    VxOverlayTestScene::Look(VxViewManager::View_Front, last, 2.8);
    VxOverlayTestScene::Save(VxOverlayTestScene::Frame(),
                             std::string("overlay_smoke_frontN_") +
                                 (GetParam() == VxTestRenderPath::Fixed ? "fixed" : "shader"));
}

VX_BOTH_RENDER_PATHS(OverlayToothTest);

} // namespace
