// Reference planes and curves on the synthetic patient: the arch wire runs through the middle of
// every crown's Facc curve on screen, each plane is the rectangle from its frame's origin to
// origin + L (X + Y) and shows in its colour, the beauty points stand where the reference puts
// them, and the arch wire leaves out missing teeth and jaws without references.
#include "VxCacheStuffProbe.h"
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>

#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPlane.h>
#include <aux/VxAuxPoint.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxOcclusalPlane.h>
#include <interfaces/VxReferenceMgr.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxVertex.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Scene = VxOverlayTestScene;

bool IsYellow(const std::uint8_t* p) {
    return p[0] > 120 && p[1] > 120 && p[2] + 60 < p[0] && p[2] + 60 < p[1];
}

// Hides (or shows again) every entity but the wire's own, so nothing stands in front of it.
void ShowModel(bool show) {
    std::vector<VxEntity*> all;
    Scene::Case().model.GetEntities(all);
    for (VxEntity* e : all) {
        e->SetVisible(show ? 1 : 0);
    }
}

bool YellowNear(const VxTestImage& img, const CPoint& at, int r) {
    for (int y = at.y - r; y <= at.y + r; ++y) {
        for (int x = at.x - r; x <= at.x + r; ++x) {
            if (x >= 0 && y >= 0 && x < img.width && y < img.height && IsYellow(img.Pixel(x, y))) {
                return true;
            }
        }
    }
    return false;
}

class OverlayPlanesTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    void SetUp() override {
        if (!Scene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
        cache = Scene::Cache();
    }
    void TearDown() override {
        if (cache != nullptr) {
            Scene::Reset();
        }
    }
    std::string Name(const std::string& base) const {
        return base + (GetParam() == VxTestRenderPath::Fixed ? "_fixed" : "_shader");
    }
    VxCacheStuff* cache = nullptr;
};

TEST_P(OverlayPlanesTest, ArchWirePassesThroughEveryCrownMiddle) {
    cache->SetShowArchWire(true);
    ASSERT_EQ(VxCacheStuffProbe::ArchWires(), 2u);
    Scene::Look(VxViewManager::View_Front, 0, 2.0);
    Scene::Save(Scene::Frame(), Name("overlay_archwire_front"));
    int checked = 0;
    for (VxViewManager::FixedView side :
         {VxViewManager::View_Front, VxViewManager::View_Left, VxViewManager::View_Right}) {
        Scene::Look(side, 0, 2.0); // framed on the model, which then steps aside
        ShowModel(false);
        const VxTestImage img = Scene::Frame();
        ShowModel(true);
        for (const auto& [fdi, ref] : VxReferenceMgr::GetInstance()->GetAll()) {
            VxPoint mid;
            double t = 0.0;
            ASSERT_TRUE(ref->GetFacc().GetCurve()->GetMiddlePoint(mid, t));
            // Only the crowns that face this camera: the wire on the far side is hidden.
            const int position = fdi % 10;
            const int quadrant = fdi / 10;
            const bool patientRight = quadrant == 1 || quadrant == 4;
            const bool faces =
                side == VxViewManager::View_Front
                    ? position <= 3
                    : position >= 4 && (side == VxViewManager::View_Right) == patientRight;
            if (!faces) {
                continue;
            }
            EXPECT_TRUE(YellowNear(img, Scene::ToScreen(mid), 2)) << "tooth " << fdi;
            ++checked;
        }
    }
    EXPECT_EQ(checked, 28);
}

TEST_P(OverlayPlanesTest, PlanesSpanTheirFramesFromTheOrigin) {
    const VxJawRef& jaw = *Scene::Case().upperJawRef;
    const VxScheme& scheme = *VxSchemeMgr::GetInstance()->GetCurScheme();
    VxFrame frames[5];
    double lengths[5] = {0, 0, 0, 0, 0};
    ASSERT_TRUE(jaw.GetMiddlePlane(frames[0], lengths[0]));
    ASSERT_TRUE(jaw.GetBackBoundaryPlane(frames[1], lengths[1]));
    frames[2] = jaw.GetBeautyPlane()->GetPlaneFrame();
    lengths[2] = jaw.GetBeautyPlane()->GetLength();
    frames[3] = scheme.GetUpOccPlane()->GetPlaneFrame();
    lengths[3] = scheme.GetUpOccPlane()->GetLength();
    frames[4] = scheme.GetLowOccPlane()->GetPlaneFrame();
    lengths[4] = scheme.GetLowOccPlane()->GetLength();
    const VxColor colours[5] = {{100, 200, 100, 100},
                                {100, 200, 100, 100},
                                {100, 200, 100, 100},
                                {0, 255, 0, 100},
                                {0, 0, 255, 100}};
    // Plain functions: the sanitizer build misreads calls through member-function pointers.
    void (*const shows[5])(VxCacheStuff*, bool) = {
        [](VxCacheStuff* k, bool on) { k->SetShowMiddlePlane(on); },
        [](VxCacheStuff* k, bool on) { k->SetShowBackBoundaryPlane(on); },
        [](VxCacheStuff* k, bool on) { k->SetShowBeautyPlane(on); },
        [](VxCacheStuff* k, bool on) { k->SetShowUpJawPlane(on); },
        [](VxCacheStuff* k, bool on) { k->SetShowDownJawPlane(on); }};
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        shows[i](Scene::Cache(), true);
        VxAuxPlane* plane = VxCacheStuffProbe::Plane(i);
        ASSERT_NE(plane, nullptr);
        VxPoint origin;
        VxVector u, v;
        plane->Get(origin, u, v);
        const VxPoint far =
            frames[i].GetOrigin() + (frames[i].DirX() + frames[i].DirY()) * lengths[i];
        EXPECT_LT((origin - frames[i].GetOrigin()).Magnitude(), 1e-9);
        EXPECT_LT((origin + u + v - far).Magnitude(), 1e-9);
        EXPECT_EQ(plane->GetColor(), colours[i]);
    }
    // Each plane seen face on, with the model out of the way, tints the picture at its centre
    // in its own colour.
    const VxViewManager::FixedView faceOn[5] = {
        VxViewManager::View_Right, VxViewManager::View_Back, VxViewManager::View_Front,
        VxViewManager::View_OcclusalUpper, VxViewManager::View_OcclusalLower};
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        for (int k = 0; k < 5; ++k) {
            shows[k](Scene::Cache(), false);
        }
        Scene::Look(faceOn[i], 0, 1.0); // framed on the model, which then steps aside
        ShowModel(false);
        const VxPoint centre =
            frames[i].GetOrigin() + (frames[i].DirX() + frames[i].DirY()) * (lengths[i] / 2);
        const CPoint at = Scene::ToScreen(centre);
        const VxTestImage without = Scene::Frame();
        shows[i](Scene::Cache(), true);
        const VxTestImage with = Scene::Frame();
        Scene::Save(with, Name("overlay_plane_face_on_" + std::to_string(i)));
        ShowModel(true);
        const std::uint8_t* a = without.Pixel(at.x, at.y);
        const std::uint8_t* b = with.Pixel(at.x, at.y);
        const int d[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const int main = i == 4 ? 2 : 1;
        EXPECT_GT(d[main], 15) << d[0] << "," << d[1] << "," << d[2];
        for (int ch = 0; ch < 3; ++ch) {
            if (ch != main) {
                EXPECT_GT(d[main], d[ch]) << ch;
            }
        }
    }
}

TEST_P(OverlayPlanesTest, BeautyPointsAndToothLinesComeFromTheReferences) {
    cache->SetShowBeautyPlane(true);
    std::vector<VxPoint> pts;
    Scene::Case().upperJawRef->GetBeautyPlane()->GetBeauPt(pts);
    ASSERT_EQ(VxCacheStuffProbe::BeautyPoints(), pts.size());
    for (size_t i = 0; i < pts.size(); ++i) {
        auto* p = static_cast<VxAuxPoint*>(VxCacheStuffProbe::Beauty()[i]);
        EXPECT_EQ(p->GetPos(), pts[i]);
        EXPECT_EQ(p->GetStyle(), AuxPointStyle_Large);
        EXPECT_FALSE(p->IsHitable());
        EXPECT_EQ(p->GetColor(), VxColor(0, 255, 0, 100));
    }
    cache->SetShowUpToothLine(true);
    cache->SetShowDownToothLine(true);
    for (bool up : {true, false}) {
        VxAuxPipeLine* line = VxCacheStuffProbe::ToothLine(up);
        ASSERT_NE(line, nullptr);
        EXPECT_TRUE(line->IsDrawHidden());
        EXPECT_EQ(line->GetColor(), up ? VxColor(0, 255, 0, 100) : VxColor(0, 0, 255, 100));
        ASSERT_NE(line->GetMesh(), nullptr);
    }
    Scene::Look(VxViewManager::View_OcclusalLower, 0, 1.2);
    cache->SetShowArchWire(true);
    Scene::Save(Scene::Frame(), Name("overlay_lines_occlusal"));
}

TEST_P(OverlayPlanesTest, ArchWireSkipsMissingTeethAndEmptyJaws) {
    VxReferenceMgr* refs = VxReferenceMgr::GetInstance();
    // A missing tooth and one without a Facc curve: the wire bridges them.
    refs->Get(12)->SetToothKind(ToothKind_Missing);
    refs->Get(22)->SetFacc(VxFacc());
    cache->SetShowArchWire(true);
    EXPECT_EQ(VxCacheStuffProbe::ArchWires(), 2u);
    // Seen from below with the model aside, the wire meets the crown middles of 11 and 13 and
    // passes by where 12 and 22 stand out of the arch.
    Scene::Look(VxViewManager::View_OcclusalUpper, 0, 1.5);
    ShowModel(false);
    const VxTestImage img = Scene::Frame();
    ShowModel(true);
    Scene::Save(img, Name("overlay_archwire_bridged"));
    const auto middle = [](int fdi) {
        for (const VxToothRef& r : Scene::Case().toothRefs) {
            if (r.GetFDI() == fdi) {
                VxPoint mid;
                double t = 0.0;
                r.GetFacc().GetCurve()->GetMiddlePoint(mid, t);
                return Scene::ToScreen(mid);
            }
        }
        return CPoint(-100, -100);
    };
    EXPECT_TRUE(YellowNear(img, middle(11), 2));
    EXPECT_TRUE(YellowNear(img, middle(13), 2));
    EXPECT_FALSE(YellowNear(img, middle(12), 1)) << "the wire bridges the missing 12";
    EXPECT_FALSE(YellowNear(img, middle(22), 1)) << "and 22 without a curve";
    // No lower references: the upper wire alone.
    for (int q : {3, 4}) {
        for (int p = 1; p <= 7; ++p) {
            refs->Remove(q * 10 + p);
        }
    }
    cache->SetShowArchWire(true);
    EXPECT_EQ(VxCacheStuffProbe::ArchWires(), 1u);
    cache->SetShowArchWire(false);
    Scene::Case().Install(); // the references back as the case has them
}

VX_BOTH_RENDER_PATHS(OverlayPlanesTest);

} // namespace
