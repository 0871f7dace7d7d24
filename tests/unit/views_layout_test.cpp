// Layout rectangles, view lookup and the view operations of VxViewManager, without a GL context.
// Layouts are built from models without jaws, so nothing here reaches the look-at step (which
// maps through GL); the GL side is in tests/gl/frame_views_test.cpp.
#include <views/VxViewManager.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxXForm.h>
#include <views/VxCamera.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

struct Rect {
    int x, y, w, h;
};

void ExpectRect(const VxViewRegion* view, const Rect& r) {
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->Origin().x, r.x);
    EXPECT_EQ(view->Origin().y, r.y);
    EXPECT_EQ(view->Width(), r.w);
    EXPECT_EQ(view->Height(), r.h);
    // The camera's viewport follows the region.
    int c[4];
    view->GetCamera()->GetViewPort(c[0], c[1], c[2], c[3]);
    EXPECT_EQ(std::vector<int>(c, c + 4), (std::vector<int>{r.x, r.y, r.w, r.h}));
}

// The rotation block of a 4 x 4 matrix.
VxMatrix Block3(const VxMatrix& m4) {
    VxMatrix m3(3, 3);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m3[i][j] = m4[i][j];
        }
    }
    return m3;
}

VxMatrix RandomRotation(std::mt19937& rng) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    VxVector axis(u(rng), u(rng), u(rng));
    if (axis.Magnitude() < 1e-3) {
        axis = VxVector(0, 0, 1);
    }
    axis.Normalize();
    return Block3(VxMatrix::s_GetRotationMatrix(axis, u(rng) * 3.0));
}

double MaxDiff(const VxMatrix& a, const VxMatrix& b) {
    double d = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            d = std::max(d, std::fabs(a[i][j] - b[i][j]));
        }
    }
    return d;
}

// A jaw with one face (so it is not empty) and the given frame.
VxJaw* MakeJaw(const VxFrame& frame) {
    VxJaw* jaw = new VxJaw(true);
    jaw->SetMeshData({VxPoint(0, 0, 0), VxPoint(1, 0, 0), VxPoint(0, 1, 0)}, {0, 1, 2});
    jaw->SetFrame(frame);
    return jaw;
}

class ViewsLayoutTest : public ::testing::Test {
protected:
    void SetUp() override {
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->EnableSynView(false);
        mgr->SetDisplayMode(Display_Mode_Normal);
    }
    void TearDown() override {
        mgr->Clear();
        mgr->EnableSynView(false);
    }
    // The views of the current layout, in order, against their rectangles.
    void ExpectRects(const std::vector<Rect>& rects) {
        ASSERT_EQ(mgr->GetAllViews().size(), rects.size());
        for (size_t i = 0; i < rects.size(); ++i) {
            SCOPED_TRACE(i);
            ExpectRect(mgr->GetAllViews()[i], rects[i]);
        }
    }
    void StartSingle(int w, int h) {
        mgr->SetTotalViewSize(w, h);
        mgr->CreateSingleView();
    }
    VxViewManager* mgr = nullptr;
    VxModel emptyModel;
};

} // namespace

TEST_F(ViewsLayoutTest, RectanglesOfEveryLayoutForOddSize) {
    // 1001 x 801: W/2 = 500, H/2 = 400, W/3 = 333, 2W/3 = 667, 3H/5 = 480, 2H/5 = 320.
    StartSingle(1001, 801);
    ExpectRect(mgr->GetView(0), {0, 0, 1001, 801});

    mgr->SwitchToMultiView(emptyModel);
    ExpectRects({{0, 400, 500, 400}, {501, 400, 500, 400}, {0, 0, 500, 400}, {501, 0, 500, 400}});
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(mgr->GetAllViews()[i]->GetViewId(), i);
    }

    mgr->SwitchToSingleView();
    mgr->SwitchTo5View(emptyModel);
    ExpectRects({{0, 480, 332, 319},
                 {334, 480, 332, 319},
                 {668, 480, 332, 319},
                 {0, 0, 499, 479},
                 {501, 0, 499, 479}});
    EXPECT_EQ(mgr->GetAllViews()[3]->GetUpDownSelec(), 21u);
    EXPECT_EQ(mgr->GetAllViews()[4]->GetUpDownSelec(), 42u);
    EXPECT_EQ(mgr->GetAllViews()[0]->GetUpDownSelec(), 63u);

    mgr->SwitchToSingleView();
    mgr->SwitchTo2View(emptyModel);
    // No one-pixel gap in this layout.
    ExpectRects({{0, 0, 500, 801}, {500, 0, 500, 801}});
    EXPECT_EQ(mgr->GetAllViews()[0]->GetUpDownSelec(), 21u);
    EXPECT_EQ(mgr->GetAllViews()[1]->GetUpDownSelec(), 42u);
}

TEST_F(ViewsLayoutTest, AdjustMultiViewUsesCurrentSizeAndKeepsTransforms) {
    StartSingle(640, 480);
    mgr->SwitchTo5View(emptyModel);
    std::mt19937 rng(7);
    std::vector<VxXForm> before;
    for (VxViewRegion* v : mgr->GetAllViews()) {
        v->GetXForm().SetRotation(RandomRotation(rng));
        v->GetXForm().SetScale(1.5);
        v->GetXForm().SetTranslation(VxVector(1, 2, 3));
        before.push_back(v->GetXForm());
    }
    mgr->SetTotalViewSize(1001, 801);
    mgr->AdjustMultiView();
    const auto& views = mgr->GetAllViews();
    ExpectRect(views[2], {668, 480, 332, 319});
    ExpectRect(views[3], {0, 0, 499, 479});
    // View 0's size before the adjustment is remembered.
    EXPECT_EQ(mgr->GetPreviousWidth(), 640 / 3 - 1);
    EXPECT_EQ(mgr->GetPreviousHeight(), 2 * 480 / 5 - 1);
    for (size_t i = 0; i < views.size(); ++i) {
        EXPECT_EQ(MaxDiff(views[i]->GetXForm().GetRotation(), before[i].GetRotation()), 0.0);
        EXPECT_EQ(views[i]->GetXForm().GetScale(), 1.5);
        EXPECT_EQ(views[i]->GetXForm().GetTranslation(), VxVector(1, 2, 3));
    }

    // A layout of three views is none the Adjust knows: nothing moves.
    mgr->Clear();
    for (int i = 0; i < 3; ++i) {
        mgr->CreateSingleView();
    }
    mgr->SetTotalViewSize(300, 200);
    mgr->AdjustMultiView();
    ExpectRect(mgr->GetAllViews()[2], {0, 0, 1001, 801});
}

TEST_F(ViewsLayoutTest, FourAndTwoViewAdjustForEvenAndOddSizes) {
    for (int w : {999, 1000, 1001}) {
        for (int h : {799, 800, 801}) {
            SCOPED_TRACE(testing::Message() << w << " x " << h);
            mgr->Clear();
            StartSingle(w, h);
            mgr->SwitchToMultiView(emptyModel);
            mgr->SetTotalViewSize(w + 10, h + 10);
            mgr->AdjustMultiView();
            const int W = w + 10, H = h + 10;
            const auto& v = mgr->GetAllViews();
            ExpectRects({{0, H / 2, W / 2, H / 2},
                         {W / 2 + 1, H / 2, W / 2, H / 2},
                         {0, 0, W / 2, H / 2},
                         {W / 2 + 1, 0, W / 2, H / 2}});
            // The right column reaches the window's right edge (or one past it when W is even).
            EXPECT_GE(v[1]->Origin().x + v[1]->Width(), W - 1);
            EXPECT_LE(v[1]->Origin().x + v[1]->Width(), W + 1);
        }
    }
}

TEST_F(ViewsLayoutTest, FiveViewBottomRowTakesViewZeroHeightBeforeTheSwitch) {
    // The window grew but view 0 was not adjusted: the top row follows H, the bottom row h0.
    StartSingle(1001, 500);
    mgr->SetTotalViewSize(1001, 801);
    mgr->SwitchTo5View(emptyModel);
    const auto& v = mgr->GetAllViews();
    ExpectRect(v[0], {0, 480, 332, 319});
    ExpectRect(v[3], {0, 0, 499, 3 * 500 / 5 - 1});
    ExpectRect(v[4], {501, 0, 499, 3 * 500 / 5 - 1});
}

TEST_F(ViewsLayoutTest, GuardsAndRepeatedSwitches) {
    StartSingle(800, 600);
    mgr->SwitchTo5View(emptyModel);
    ASSERT_EQ(mgr->GetAllViews().size(), 5u);
    std::vector<VxViewRegion*> before = mgr->GetAllViews();
    mgr->SwitchTo5View(emptyModel);
    mgr->SwitchToMultiView(emptyModel);
    EXPECT_EQ(mgr->GetAllViews(), before);
    ExpectRect(mgr->GetAllViews()[0], {0, 360, 265, 239});

    mgr->SwitchToSingleView();
    mgr->SwitchTo2View(emptyModel);
    mgr->SwitchTo2View(emptyModel);
    EXPECT_EQ(mgr->GetAllViews().size(), 3u);

    // CreateSingleView does not look at what is there.
    mgr->Clear();
    EXPECT_TRUE(mgr->GetAllViews().empty());
    EXPECT_EQ(mgr->GetActiveView(), nullptr);
    mgr->CreateSingleView();
    mgr->CreateSingleView();
    EXPECT_EQ(mgr->GetAllViews().size(), 2u);
    EXPECT_TRUE(mgr->IsMultiView());

    // SwitchToSingleView with one view or none does nothing.
    mgr->Clear();
    mgr->SwitchToSingleView();
    EXPECT_TRUE(mgr->GetAllViews().empty());
}

TEST_F(ViewsLayoutTest, CompareLayoutStepsTitlesAndMode) {
    StartSingle(800, 600);
    VxModel second;
    mgr->SwitchTo2View(emptyModel, second);
    ASSERT_EQ(mgr->GetAllViews().size(), 2u);
    const auto& v = mgr->GetAllViews();
    EXPECT_EQ(v[0]->GetDisplayStep(), 0u);
    EXPECT_EQ(v[1]->GetDisplayStep(), 1u);
    EXPECT_EQ(v[0]->GetUpDownSelec(), 63u);
    EXPECT_EQ(v[1]->GetUpDownSelec(), 63u);
    EXPECT_EQ(v[0]->GetTitle(), CString(L"初始状态"));
    EXPECT_FALSE(v[1]->GetTitle().IsEmpty());
    EXPECT_EQ(mgr->GetDisplayMode(), Display_Mode_Compare);
    EXPECT_EQ(mgr->GetActiveView(), v[0]);
    mgr->SwitchToSingleView();
    EXPECT_EQ(mgr->GetDisplayMode(), Display_Mode_Normal);
}

TEST_F(ViewsLayoutTest, SwitchToSingleViewResetsYExtentAndKeepsRotation) {
    StartSingle(1001, 801);
    std::mt19937 rng(3);
    const VxMatrix rot = RandomRotation(rng);
    mgr->GetView(0)->GetXForm().SetRotation(rot);
    mgr->SwitchToMultiView(emptyModel);
    mgr->SetActiveView(2);
    mgr->GetView(0)->SelectJawShow(Display_Selec_Upper);
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    render->SetYExtRat(2.5);

    mgr->SwitchToSingleView();
    ASSERT_EQ(mgr->GetAllViews().size(), 1u);
    VxViewRegion* v0 = mgr->GetAllViews()[0];
    EXPECT_EQ(v0->GetViewId(), 0);
    ExpectRect(v0, {0, 0, 1001, 801});
    EXPECT_TRUE(v0->IsActive());
    EXPECT_EQ(v0->GetUpDownSelec(), 63u);
    EXPECT_EQ(render->GetYExtRat(), 1.0);
    EXPECT_EQ(MaxDiff(v0->GetXForm().GetRotation(), rot), 0.0);
}

TEST_F(ViewsLayoutTest, ReferenceRotationBringsJawFrameToScreenAxes) {
    // Without a usable jaw the reference rotation is the identity, and the four views carry the
    // fixed matrices themselves.
    StartSingle(800, 600);
    VxModel model;
    VxJaw* emptyJaw = new VxJaw(true); // empty: skipped even with a valid frame
    emptyJaw->SetFrame(VxFrame(VxPoint(0, 0, 0), VxVector(0, 1, 0), VxVector(1, 0, 0)));
    model.AddEntity(emptyJaw);
    EXPECT_EQ(MaxDiff(VxViewManager::GetReferenceRotation(model), VxMatrix::Identity(3)), 0.0);

    mgr->GetView(0)->GetXForm().SetScale(2.0);
    mgr->GetView(0)->GetXForm().SetTranslation(VxVector(4, 5, 6));
    mgr->SwitchToMultiView(model);
    const auto& v = mgr->GetAllViews();
    EXPECT_EQ(MaxDiff(v[1]->GetXForm().GetRotation(),
                      VxViewManager::GetFixedMatrix(VxViewManager::View_Front)),
              0.0);
    EXPECT_EQ(MaxDiff(v[2]->GetXForm().GetRotation(),
                      VxViewManager::GetFixedMatrix(VxViewManager::View_Left)),
              0.0);
    EXPECT_EQ(MaxDiff(v[3]->GetXForm().GetRotation(),
                      VxViewManager::GetFixedMatrix(VxViewManager::View_Right)),
              0.0);
    for (int i = 1; i < 4; ++i) {
        EXPECT_EQ(v[i]->GetXForm().GetScale(), 2.0);
        EXPECT_EQ(v[i]->GetXForm().GetTranslation(), VxVector(4, 5, 6));
        EXPECT_EQ(v[i]->GetUpDownSelec(), 63u);
    }
    EXPECT_EQ(mgr->GetActiveView(), v[0]);

    // A tilted frame: the first usable jaw's X goes to screen Z and its Y to screen X (or -X
    // when that jaw is not the first of the list).
    const VxVector x = VxVector(1, 1, 0).Normalized();
    const VxVector y = VxVector(-1, 1, 1).Normalized();
    VxJaw* jaw = MakeJaw(VxFrame(VxPoint(3, 4, 5), x, y));
    VxFrame f = jaw->GetFrame();
    model.AddEntity(jaw);
    VxMatrix R = VxViewManager::GetReferenceRotation(model);
    auto apply = [&](const VxVector& d) {
        return VxVector(R[0][0] * d[0] + R[0][1] * d[1] + R[0][2] * d[2],
                        R[1][0] * d[0] + R[1][1] * d[1] + R[1][2] * d[2],
                        R[2][0] * d[0] + R[2][1] * d[1] + R[2][2] * d[2]);
    };
    EXPECT_NEAR((apply(f.DirX()) - VxVector(0, 0, 1)).Magnitude(), 0.0, 1e-9);
    EXPECT_NEAR((apply(f.DirY()) - VxVector(-1, 0, 0)).Magnitude(), 0.0, 1e-9);

    VxModel first;
    VxJaw* jaw2 = MakeJaw(VxFrame(VxPoint(0, 0, 0), x, y));
    first.AddEntity(jaw2);
    R = VxViewManager::GetReferenceRotation(first);
    EXPECT_NEAR((apply(f.DirY()) - VxVector(1, 0, 0)).Magnitude(), 0.0, 1e-9);
    delete emptyJaw;
    delete jaw;
    delete jaw2;
}

TEST_F(ViewsLayoutTest, SynchronisedRotationKeepsRelativeAngles) {
    StartSingle(1000, 800);
    mgr->SwitchTo5View(emptyModel);
    std::mt19937 rng(11);
    for (VxViewRegion* v : mgr->GetAllViews()) {
        v->GetXForm().SetRotation(RandomRotation(rng));
    }
    const auto& views = mgr->GetAllViews();
    VxViewRegion* hand = views[2];

    // Off: only the view in hand turns, by m x T.
    std::vector<VxMatrix> before;
    for (VxViewRegion* v : views) {
        before.push_back(v->GetXForm().GetRotation());
    }
    const VxMatrix m = RandomRotation(rng);
    mgr->RotateView(hand, m);
    EXPECT_LT(MaxDiff(hand->GetXForm().GetRotation(), m * before[2]), 1e-12);
    for (size_t i = 0; i < views.size(); ++i) {
        if (i != 2) {
            EXPECT_EQ(MaxDiff(views[i]->GetXForm().GetRotation(), before[i]), 0.0);
        }
    }

    // On: T_hand^-1 x T_other, the other view's rotation relative to the view in hand, survives
    // any number of turns (brute force with transposes, which invert a rotation).
    mgr->EnableSynView(true);
    auto relative = [&](size_t i) {
        return hand->GetXForm().GetRotation().Transposed() * views[i]->GetXForm().GetRotation();
    };
    std::vector<VxMatrix> rel;
    for (size_t i = 0; i < views.size(); ++i) {
        rel.push_back(relative(i));
    }
    for (int k = 0; k < 20; ++k) {
        mgr->RotateView(hand, RandomRotation(rng));
    }
    for (size_t i = 0; i < views.size(); ++i) {
        EXPECT_LT(MaxDiff(relative(i), rel[i]), 1e-9) << "view " << i;
        // Still a rotation.
        const VxMatrix r = views[i]->GetXForm().GetRotation();
        EXPECT_LT(MaxDiff(r.Transposed() * r, VxMatrix::Identity(3)), 1e-9);
    }
    // A 4 x 4 argument acts through its rotation block.
    const VxMatrix t0 = hand->GetXForm().GetRotation();
    mgr->RotateView(hand, VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), 0.5));
    const VxMatrix e3 = Block3(VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), 0.5));
    EXPECT_LT(MaxDiff(hand->GetXForm().GetRotation(), e3 * t0), 1e-12);
}

TEST_F(ViewsLayoutTest, ScaleAndTranslateFollowSynchronisation) {
    StartSingle(1000, 800);
    mgr->SwitchToMultiView(emptyModel);
    const auto& v = mgr->GetAllViews();
    v[1]->GetXForm().SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Left));
    mgr->ScaleView(v[1], 2.0);
    mgr->TranslateView(v[1], VxVector(1, 0, 0));
    EXPECT_EQ(v[1]->GetXForm().GetScale(), 2.0);
    EXPECT_EQ(v[0]->GetXForm().GetScale(), 1.0);
    EXPECT_EQ(v[0]->GetXForm().GetTranslation(), VxVector(0, 0, 0));

    mgr->EnableSynView(true);
    mgr->ScaleView(v[1], 3.0);
    mgr->TranslateView(v[1], VxVector(0, 2, 0));
    EXPECT_EQ(v[1]->GetXForm().GetScale(), 6.0);
    EXPECT_EQ(v[3]->GetXForm().GetScale(), 3.0);
    EXPECT_EQ(v[1]->GetXForm().GetTranslation(), VxVector(1, 2, 0));
    // The same vector everywhere, not turned into the other views' axes.
    EXPECT_EQ(v[0]->GetXForm().GetTranslation(), VxVector(0, 2, 0));
    EXPECT_EQ(v[3]->GetXForm().GetTranslation(), VxVector(0, 2, 0));
}

TEST_F(ViewsLayoutTest, GetViewOnSharedBordersAndCorners) {
    StartSingle(1001, 801);
    mgr->SwitchTo2View(emptyModel);
    const auto& two = mgr->GetAllViews();
    // x = 500 is the right edge of view 0 and the left edge of view 1: the first in order wins.
    EXPECT_EQ(mgr->GetView(CPoint(500, 400)), two[0]);
    EXPECT_EQ(mgr->GetView(CPoint(501, 400)), two[1]);
    EXPECT_EQ(mgr->GetView(CPoint(0, 0)), two[0]); // top-left: y' = 801, the top edge
    EXPECT_EQ(mgr->GetView(CPoint(1000, 801)), two[1]);
    EXPECT_EQ(mgr->GetView(CPoint(1001, 400)), nullptr);
    EXPECT_EQ(mgr->GetView(CPoint(-1, 400)), nullptr);
    EXPECT_EQ(mgr->GetView(CPoint(10, 802)), nullptr);

    mgr->SwitchToSingleView();
    mgr->SwitchToMultiView(emptyModel);
    const auto& four = mgr->GetAllViews();
    // The centre cross: row y' = 400 belongs to both view 0 (bottom edge) and view 2 (top edge).
    EXPECT_EQ(mgr->GetView(CPoint(250, 801 - 400)), four[0]);
    EXPECT_EQ(mgr->GetView(CPoint(250, 801 - 399)), four[2]);
    EXPECT_EQ(mgr->GetView(CPoint(500, 801 - 400)), four[0]);
    EXPECT_EQ(mgr->GetView(CPoint(501, 801 - 400)), four[1]);
    EXPECT_EQ(mgr->GetView(CPoint(501, 801 - 399)), four[3]);

    // By id, and the active-view helpers.
    EXPECT_EQ(mgr->GetView(3), four[3]);
    EXPECT_EQ(mgr->GetView(7), nullptr);
    mgr->SetActiveView(four[2]);
    EXPECT_EQ(mgr->GetActiveView(), four[2]);
    mgr->SetActiveView(1);
    EXPECT_EQ(mgr->GetActiveView(), four[1]);
    EXPECT_FALSE(four[2]->IsActive());
}

TEST_F(ViewsLayoutTest, GetViewByMatrixIgnoresTheLastElement) {
    StartSingle(400, 300);
    mgr->SwitchToMultiView(emptyModel);
    const auto& v = mgr->GetAllViews();
    for (size_t i = 0; i < v.size(); ++i) {
        double m[16];
        for (int k = 0; k < 16; ++k) {
            m[k] = 0.1 * k + static_cast<double>(i);
        }
        v[i]->SetModelViewMatrix(m);
    }
    double probe[16];
    for (int k = 0; k < 16; ++k) {
        probe[k] = 0.1 * k + 2.0;
    }
    EXPECT_EQ(mgr->GetView(static_cast<const double*>(probe)), v[2]);
    probe[15] = 1e9; // not compared
    EXPECT_EQ(mgr->GetView(static_cast<const double*>(probe)), v[2]);
    probe[14] += 0.5e-6; // within the zero tolerance
    EXPECT_EQ(mgr->GetView(static_cast<const double*>(probe)), v[2]);
    probe[14] += 1e-3;
    EXPECT_EQ(mgr->GetView(static_cast<const double*>(probe)), nullptr);
}

TEST(ViewRegionTest, ContainmentCameraAndId) {
    VxViewManager* mgr = VxViewManager::GetInstance();
    mgr->Clear();
    mgr->SetTotalViewSize(200, 100);
    VxViewRegion region(CPoint(10, 20), 50, 30);
    // Upper-right corner (60, 50) in region terms is pixel (60, 100 - 50) on screen.
    EXPECT_TRUE(region.IsContain(CPoint(60, 50)));
    EXPECT_TRUE(region.IsContain(CPoint(10, 80)));
    EXPECT_FALSE(region.IsContain(CPoint(61, 50)));
    EXPECT_FALSE(region.IsContain(CPoint(60, 49)));
    EXPECT_FALSE(region.IsContain(CPoint(10, 81)));

    region.Set(CPoint(1, 2), 3, 4);
    ExpectRect(&region, {1, 2, 3, 4});

    // Width 0: only the left edge.
    VxViewRegion thin(CPoint(5, 0), 0, 100);
    EXPECT_TRUE(thin.IsContain(CPoint(5, 50)));
    EXPECT_FALSE(thin.IsContain(CPoint(6, 50)));
    EXPECT_FALSE(thin.IsContain(CPoint(4, 50)));
}

TEST(CameraTest, LocationZReplacesXAndY) {
    VxCamera camera;
    VxPoint eye, at;
    VxVector up;
    camera.SetLocationZ(12.5);
    camera.GetFrame(eye, at, up);
    EXPECT_EQ(eye, VxPoint(0, 0, 12.5));
    EXPECT_EQ(at, VxPoint(0, 0, 0));
    EXPECT_EQ(up, VxVector(0, 1, 0));
}
