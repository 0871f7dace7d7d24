// Picking in every view of the multi-view layouts, driven as a host drives it: a frame, the
// clicked view made active and its jaws put in place of the last drawn view's, ProcessFeedback,
// DoSelect. In each view of the two-jaw and the five-view layouts of the synthetic patient, the
// test clicks pixels that show a tooth (stencil 2 in a solid block), and finds which tooth is
// there on its own: the model point under the pixel (from the depth buffer) and the tooth whose
// placed vertices lie nearest it. The pick must give that tooth. Without the shelter step the
// last drawn view's jaws decide, and a click on an upper tooth finds a lower one.
#include "VxGLTest.h"
#include "VxTestRenderPath.h"

#include <VxSyntheticPatient.h>

#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <mesh/VxFixedDrawSteps.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>

namespace {

constexpr int kW = 640;
constexpr int kH = 400;

class SelectEveryViewTest : public VxGLTest,
                            public ::testing::WithParamInterface<VxTestRenderPath> {
public:
    static void SetUpTestSuite() {
        VxGLTestConfig config;
        config.width = kW;
        config.height = kH;
        CreateSuiteContext(config);
    }

protected:
    void SetUp() override {
        VxGLTest::SetUp();
        render = VxRenderStatus::GetInstance()->GetRender();
        ASSERT_TRUE(render->Create(Window(), 24, 8));
        VxForgetShaderObjects(); // a new context for every test
        VxApplyRenderPath(GetParam());
        g_bDIBShowMessage = false; // no background picture here, on purpose
        patient = VxSyntheticPatient::Generate(1);
        patient->Install();
        render->SetModel(&patient->model);
        VxRenderStatus::GetInstance()->GetSelecter()->SetModel(&patient->model);
        render->ResizeViewport(kW, kH);
        views = VxViewManager::GetInstance();
        views->Clear();
        views->SetTotalViewSize(kW, kH);
        views->CreateSingleView();
        const VxBBox box = patient->model.GetBBox();
        VxXForm fit;
        fit.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                        VxViewManager::GetReferenceRotation(patient->model));
        fit.SetScale(1.8 / box.Diagonal());
        const VxPoint c = box.Center();
        fit.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
        views->GetView(0)->SetXForm(fit);
        render->RenderScene(true);
    }

    void TearDown() override {
        views->Clear();
        render->SetModel(nullptr);
        VxRenderStatus::GetInstance()->GetSelecter()->SetModel(nullptr);
        patient->Uninstall();
    }

    // Pixels (y from the top) inside the view that show a tooth with a margin of tooth pixels
    // around them, nearest the view's centre first.
    std::vector<CPoint> ToothPixels(const VxViewRegion* view) {
        const CPoint o = view->Origin(); // from the bottom-left, as GL counts
        const int w = view->Width(), h = view->Height();
        const std::vector<int> stencil = ReadStencil(o.x, o.y, w, h);
        auto at = [&](int x, int y) { return stencil[static_cast<size_t>(y) * w + x]; };
        std::vector<std::pair<long, CPoint>> found;
        for (int y = 4; y + 4 < h; y += 3) {
            for (int x = 4; x + 4 < w; x += 3) {
                bool solid = true;
                for (int dy = -3; dy <= 3 && solid; ++dy) {
                    for (int dx = -3; dx <= 3 && solid; ++dx) {
                        solid = at(x + dx, y + dy) == 2;
                    }
                }
                if (solid) {
                    const long d = static_cast<long>(x - w / 2) * (x - w / 2) +
                                   static_cast<long>(y - h / 2) * (y - h / 2);
                    found.push_back({d, CPoint(o.x + x, kH - 1 - (o.y + y))});
                }
            }
        }
        std::stable_sort(found.begin(), found.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<CPoint> out;
        for (const auto& f : found) {
            out.push_back(f.second);
        }
        return out;
    }

    // A pixel well inside one tooth: the same tooth lies under it and 3 pixels to each side.
    const VxTooth* UnambiguousTooth(VxViewRegion* view, const CPoint& p) {
        const VxTooth* t = ToothUnder(view, p);
        for (const CPoint& d : {CPoint(3, 0), CPoint(-3, 0), CPoint(0, 3), CPoint(0, -3)}) {
            if (ToothUnder(view, CPoint(p.x + d.x, p.y + d.y)) != t) {
                return nullptr;
            }
        }
        return t;
    }

    // The tooth drawn at a pixel of a view, found from the depth buffer and the geometry alone.
    const VxTooth* ToothUnder(VxViewRegion* view, const CPoint& pixel) {
        const float depth = ReadDepth(pixel.x, kH - 1 - pixel.y);
        const VxPoint m = render->MapScreenPointToModel(view, pixel, depth);
        const VxTooth* best = nullptr;
        double bestD = std::numeric_limits<double>::max();
        for (const auto& tooth : patient->teeth) {
            if (!tooth->IsVisible() || !view ||
                (tooth->IsUp() ? (view->GetUpDownSelec() & Display_Selec_UpperTeeth) == 0
                               : (view->GetUpDownSelec() & Display_Selec_LowerTeeth) == 0)) {
                continue;
            }
            for (const DrawInfo_s& info :
                 VxTransformMatrix::GetInstance()->GetDrawInfos(tooth.get())) {
                if (info.limited) {
                    continue;
                }
                for (const VxVertex& v : tooth->GetVertices()) {
                    const double d = info.matrix.Transform(v.GetPos()).SquareDistanceToPoint(m);
                    if (d < bestD) {
                        bestD = d;
                        best = tooth.get();
                    }
                }
            }
        }
        return best;
    }

    // Clicks every chosen pixel of every view; returns how many clicks were checked.
    int ClickEveryView(const char* layout) {
        int checked = 0;
        VxRenderStatus* status = VxRenderStatus::GetInstance();
        status->SetSelectType({ObjectType_Tooth});
        const std::vector<VxViewRegion*> all = views->GetAllViews();
        for (size_t i = 0; i < all.size(); ++i) {
            render->RenderScene(true);
            const std::vector<CPoint> pixels = ToothPixels(all[i]);
            EXPECT_FALSE(pixels.empty()) << layout << ": view " << i << " shows no tooth";
            // The clear tooth pixel nearest the view's centre and the one farthest from it.
            std::vector<std::pair<CPoint, const VxTooth*>> clicks;
            for (int pass = 0; pass < 2; ++pass) {
                for (size_t k = 0; k < pixels.size(); ++k) {
                    const CPoint& p = pass == 0 ? pixels[k] : pixels[pixels.size() - 1 - k];
                    if (const VxTooth* t = UnambiguousTooth(all[i], p)) {
                        clicks.push_back({p, t});
                        break;
                    }
                }
            }
            for (const auto& [pixel, expected] : clicks) {
                render->RenderScene(true);
                views->SetActiveView(views->GetView(pixel));
                EXPECT_EQ(views->GetActiveView(), all[i]);
                VxFixedDrawSteps::ShelterAsShownIn(&patient->model, all[i]);
                render->ProcessFeedback(pixel);
                VxObject* hit = status->GetSelecter()->DoSelect(pixel);
                EXPECT_EQ(hit, static_cast<const VxObject*>(expected))
                    << layout << ": view " << i << " pixel (" << pixel.x << ", " << pixel.y
                    << ") should pick tooth " << expected->GetFDI() << ", picked "
                    << (hit && hit->IsKindOf(ObjectType_Tooth)
                            ? std::to_string(static_cast<VxTooth*>(hit)->GetFDI())
                            : std::string(hit ? "something else" : "nothing"));
                ++checked;
            }
        }
        return checked;
    }

    VxOpenGLRender* render = nullptr;
    VxViewManager* views = nullptr;
    std::unique_ptr<VxCase> patient;
};

TEST_P(SelectEveryViewTest, TwoJawLayoutPicksTheClickedViewsTooth) {
    views->SwitchTo2View(patient->model);
    ASSERT_EQ(views->GetAllViews().size(), 2u);
    EXPECT_EQ(ClickEveryView("jaws"), 4);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(SelectEveryViewTest, FiveViewLayoutPicksTheClickedViewsTooth) {
    views->SwitchTo5View(patient->model);
    ASSERT_EQ(views->GetAllViews().size(), 5u);
    EXPECT_EQ(ClickEveryView("five"), 10);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// The shelter step is what makes the difference: without it, the first view of the two-jaw
// layout (the upper arch) is picked with the lower arch's flags of the last drawn view.
TEST_P(SelectEveryViewTest, WithoutTheShelterStepTheLastDrawnViewDecides) {
    views->SwitchTo2View(patient->model);
    VxViewRegion* first = views->GetAllViews().front();
    render->RenderScene(true);
    const std::vector<CPoint> pixels = ToothPixels(first);
    ASSERT_FALSE(pixels.empty());
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    status->SetSelectType({ObjectType_Tooth});
    views->SetActiveView(first);
    const VxTooth* expected = UnambiguousTooth(first, pixels[0]);
    ASSERT_NE(expected, nullptr);
    ASSERT_TRUE(expected->IsUp());
    render->ProcessFeedback(pixels[0]);
    VxObject* hit = status->GetSelecter()->DoSelect(pixels[0]);
    EXPECT_NE(hit, static_cast<const VxObject*>(expected));
    EXPECT_TRUE(hit == nullptr || !static_cast<VxTooth*>(hit)->IsUp());
}

VX_BOTH_RENDER_PATHS(SelectEveryViewTest);

} // namespace
