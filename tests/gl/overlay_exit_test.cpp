// A host that ends with every overlay still shown: the process exits through the singletons'
// destructors (the cache's Clear, then the registry it was built after) without a fault, a
// double free or a leak the sanitizer build would report. The one test leaves everything on.
#include "VxCacheStuffProbe.h"
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <aux/VxAuxRender.h>
#include <frame/VxRenderStatus.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

TEST(OverlayExitTest, ExitsWithEveryOverlayShown) {
    if (!VxOverlayTestScene::Open()) {
        GTEST_SKIP() << "no EGL context on this machine";
    }
    VxApplyRenderPath(VxTestRenderPath::Fixed);
    VxOverlayTestScene::Look(VxViewManager::View_Front, 0);
    VxCacheStuff* cache = VxOverlayTestScene::Cache();
    cache->SetShowToothFDI(true);
    cache->SetShowMoveDiff(true);
    cache->SetShowFacc(true);
    cache->SetShowToothRef(true);
    cache->SetShowKeyPoint(true);
    cache->SetShowArchWire(true);
    cache->SetShowMiddlePlane(true);
    cache->SetShowBackBoundaryPlane(true);
    cache->SetShowBeautyPlane(true);
    cache->SetShowUpJawPlane(true);
    cache->SetShowDownJawPlane(true);
    cache->SetShowUpToothLine(true);
    cache->SetShowDownToothLine(true);
    cache->SetShowXImg(true);
    cache->SetShowFrontImg(true);
    cache->SetShowProfile(true);
    cache->SetShowPanoramic(true);
    cache->SetShowKeyPoint(true); // the earlier point stays with the registry
    VxOverlayTestScene::Frame();
    EXPECT_GT(VxRenderStatus::GetInstance()->GetAuxRender()->GetAuxObjects().size(), 100u);
    EXPECT_GT(VxCacheStuffProbe::Labels(), 0u);
}
