// Coordinate mapping against GLU's own gluProject and gluUnProject, fed with matrices built here
// by hand from the view's transform and camera (not read back from the library), plus the
// depth-reading forms over a quad drawn by the test, the arcball and the pixel ratio.
#include "VxTestImage.h"
#include "VxTestPaths.h"

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

constexpr int kW = 200;
constexpr int kH = 160;

// GLU is a private dependency of the library; its symbols are in the process all the same.
using ProjectFn = GLint (*)(GLdouble, GLdouble, GLdouble, const GLdouble*, const GLdouble*,
                            const GLint*, GLdouble*, GLdouble*, GLdouble*);
ProjectFn GluProject() {
    return reinterpret_cast<ProjectFn>(dlsym(RTLD_DEFAULT, "gluProject"));
}
ProjectFn GluUnProject() {
    return reinterpret_cast<ProjectFn>(dlsym(RTLD_DEFAULT, "gluUnProject"));
}

VxMatrix Rotation4(const VxXForm& xf) {
    VxMatrix m = VxMatrix::Identity(4);
    const VxMatrix r = xf.GetRotation();
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m[i][j] = r[i][j];
        }
    }
    return m;
}

// look-at from (0, 0, e) to the origin, up Y, is a plain shift by -e along Z; then rotation,
// scale, translation.
void HandModelView(const VxXForm& xf, double eye, double out[16]) {
    VxMatrix S = VxMatrix::Identity(4);
    S[0][0] = S[1][1] = S[2][2] = xf.GetScale();
    const VxMatrix m = VxMatrix::Translation(VxVector(0, 0, -eye)) * Rotation4(xf) * S *
                       VxMatrix::Translation(xf.GetTranslation());
    m.ToArray(out);
}

void HandOrtho(double l, double r, double b, double t, double n, double f, double out[16]) {
    VxMatrix m = VxMatrix::Identity(4);
    m[0][0] = 2.0 / (r - l);
    m[1][1] = 2.0 / (t - b);
    m[2][2] = -2.0 / (f - n);
    m[0][3] = -(r + l) / (r - l);
    m[1][3] = -(t + b) / (t - b);
    m[2][3] = -(f + n) / (f - n);
    m.ToArray(out);
}

VxMesh* MakeBox(double half) {
    VxMesh* m = new VxMesh();
    std::vector<VxPoint> p;
    for (int i = 0; i < 8; ++i) {
        p.emplace_back(i & 1 ? half : -half, i & 2 ? half : -half, i & 4 ? half : -half);
    }
    m->SetMeshData(p, {0, 1, 3, 0, 3, 2});
    return m;
}

class MappingTest : public ::testing::Test {
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
        ASSERT_NE(GluProject(), nullptr);
        render->GetGLContext()->MakeCurrent();
        mgr = VxViewManager::GetInstance();
        mgr->Clear();
        mgr->EnableSynView(false);
        mgr->SetTotalViewSize(kW, kH);
        render->ResizeViewport(kW, kH);
        box.reset(MakeBox(1.0));
        model.AddEntity(box.get());
        render->SetModel(&model);
        mgr->CreateSingleView();
        view = mgr->GetView(0);
        VxXForm& xf = view->GetXForm();
        xf.SetRotation(VxMatrix::s_GetRotationMatrix(VxVector(1, 1, 0).Normalized(), 0.7));
        xf.SetScale(1.7);
        xf.SetTranslation(VxVector(0.3, -0.2, 0.1));
        render->RenderScene(true);
        HandModelView(xf, render->GetEyeDistance(), handMV);
        double l, r, b, t, n, f;
        view->GetCamera()->GetFrustum(l, r, b, t, n, f);
        HandOrtho(l, r, b, t, n, f, handProj);
        viewport[0] = view->Origin().x;
        viewport[1] = view->Origin().y;
        viewport[2] = view->Width();
        viewport[3] = view->Height();
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
        }
    }

    // Window coordinates of a model point through the hand matrices.
    VxPoint Project(const VxPoint& p, const double* mv) const {
        double x = 0, y = 0, z = 0;
        GluProject()(p[0], p[1], p[2], mv, handProj, viewport, &x, &y, &z);
        return VxPoint(x, y, z);
    }
    VxPoint UnProject(double wx, double wy, double wz, const double* mv) const {
        double x = 0, y = 0, z = 0;
        GluUnProject()(wx, wy, wz, mv, handProj, viewport, &x, &y, &z);
        return VxPoint(x, y, z);
    }
    // A unit quad at z = 0 of the model, drawn with depth through the view's stored matrices.
    void DrawQuad() {
        // The quad alone: the box of the set-up frame is drawn on either path.
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
        glMatrixMode(GL_PROJECTION);
        glLoadMatrixd(handProj);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(view->GetModelViewMatrix());
        glEnable(GL_DEPTH_TEST);
        glDisable(GL_LIGHTING);
        glColor3f(1.0f, 0.9f, 0.2f);
        glBegin(GL_QUADS);
        glVertex3d(-0.5, -0.5, 0);
        glVertex3d(0.5, -0.5, 0);
        glVertex3d(0.5, 0.5, 0);
        glVertex3d(-0.5, 0.5, 0);
        glEnd();
        glDisable(GL_DEPTH_TEST);
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxViewManager* mgr = nullptr;
    VxViewRegion* view = nullptr;
    std::unique_ptr<VxMesh> box;
    VxModel model;
    double handMV[16];
    double handProj[16];
    GLint viewport[4];
};

const VxPoint kProbes[] = {VxPoint(0, 0, 0),       VxPoint(0.5, -0.25, 0.3),
                           VxPoint(-1, 1, -1),     VxPoint(0.9, 0.8, 0.7),
                           VxPoint(-0.3, -0.6, 1), VxPoint(0.123, 0.456, -0.789)};

} // namespace

TEST_F(MappingTest, StoredMatricesMatchTheHandBuiltOnes) {
    const double* mv = view->GetModelViewMatrix();
    double proj[16];
    glGetDoublev(GL_PROJECTION_MATRIX, proj);
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(mv[i], handMV[i], 1e-5) << i; // GL keeps floats
        EXPECT_NEAR(proj[i], handProj[i], 1e-6) << i;
    }
}

TEST_F(MappingTest, ModelToScreenAndWorldAgreeWithGluProject) {
    for (const VxPoint& p : kProbes) {
        const VxPoint w = Project(p, handMV);
        double depth = -1.0;
        const CPoint s = render->MapModelPointToScreen(view, p, &depth);
        EXPECT_EQ(s.x, static_cast<int>(w[0] + 0.5));
        EXPECT_EQ(s.y, static_cast<int>(kH - w[1] + 0.5));
        EXPECT_NEAR(depth, w[2], 1e-6);
        EXPECT_EQ(render->MapModelPointToScreen(p), s); // the active view
        const VxPoint world = render->MapModelPointToWorld(p);
        EXPECT_NEAR(world[0], w[0], 1e-3);
        EXPECT_NEAR(world[1], w[1], 1e-3);
        EXPECT_NEAR(world[2], w[2], 1e-6);
    }
}

TEST_F(MappingTest, ScreenToModelAgreesWithGluUnProject) {
    for (int px : {0, 17, 100, 199}) {
        for (int py : {0, 33, 80, 159}) {
            for (double d : {0.0, 0.25, 0.5, 1.0}) {
                const VxPoint expected = UnProject(px, kH - py, d, handMV);
                const VxPoint got = render->MapScreenPointToModel(view, CPoint(px, py), d);
                EXPECT_LT(got.DistanceToPoint(expected), 1e-4) << px << "," << py << "," << d;
                EXPECT_LT(render->MapScreenPointToModel(CPoint(px, py), d).DistanceToPoint(got),
                          1e-12);
            }
        }
    }
    // Round trip through the unrounded world coordinates.
    for (const VxPoint& p : kProbes) {
        const VxPoint w = render->MapModelPointToWorld(p);
        const VxPoint back = render->MapScreenPointToModel(
            view,
            CPoint(static_cast<int>(std::lround(w[0])), kH - static_cast<int>(std::lround(w[1]))),
            w[2]);
        // Within a pixel, in model units (1 / ratio).
        EXPECT_LT(back.DistanceToPoint(p), 1.5 / view->GetpixelmodelRatio());
    }
}

TEST_F(MappingTest, MapScreenPointRebuildsTheCurrentTransform) {
    // Fresh matrices: the inverse of MapModelPointToWorld.
    for (const VxPoint& p : kProbes) {
        VxPoint w = render->MapModelPointToWorld(p);
        EXPECT_LT(render->MapScreenPoint(w).DistanceToPoint(p), 1e-4);
    }
    // After a turn and a move the stored matrix is stale; MapScreenPoint follows the transform
    // as it is now.
    mgr->RotateView(view, VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), 0.4));
    mgr->TranslateView(view, VxVector(0.2, 0.1, -0.3));
    mgr->ScaleView(view, 1.3);
    double nowMV[16];
    HandModelView(view->GetXForm(), render->GetEyeDistance(), nowMV);
    for (const VxPoint& p : kProbes) {
        VxPoint w = Project(p, handMV); // window point under the old matrices
        const VxPoint expected = UnProject(w[0], w[1], w[2], nowMV);
        EXPECT_LT(render->MapScreenPoint(w).DistanceToPoint(expected), 1e-4);
    }
}

TEST_F(MappingTest, ViewLookAtKeepsThePointOnScreen) {
    const VxPoint p(0.4, -0.3, 0.2);
    const VxPoint before = render->MapModelPointToWorld(p);
    const VxVector a = VxVector(0, 1, 1).Normalized();
    const VxVector b = VxVector(1, 0, 0);
    mgr->ViewLookAt(view, p, a, b);
    // The frame of a and b is now square to the screen.
    const VxMatrix r = view->GetXForm().GetRotation();
    auto apply = [&](const VxVector& d) {
        return VxVector(r[0][0] * d[0] + r[0][1] * d[1] + r[0][2] * d[2],
                        r[1][0] * d[0] + r[1][1] * d[1] + r[1][2] * d[2],
                        r[2][0] * d[0] + r[2][1] * d[1] + r[2][2] * d[2]);
    };
    EXPECT_LT((apply(a) - VxVector(1, 0, 0)).Magnitude(), 1e-9);
    EXPECT_LT((apply(b) - VxVector(0, 1, 0)).Magnitude(), 1e-9);
    // And p projects where it did, through the new transform.
    double nowMV[16];
    HandModelView(view->GetXForm(), render->GetEyeDistance(), nowMV);
    const VxPoint after = Project(p, nowMV);
    EXPECT_NEAR(after[0], before[0], 1e-3);
    EXPECT_NEAR(after[1], before[1], 1e-3);
}

TEST_F(MappingTest, CursorRayAndPixelRatio) {
    // Orthographic: the shorter side spans 2 / scale model units.
    const double expectedRatio = std::min(kW, kH) * view->GetXForm().GetScale() / 2.0;
    EXPECT_NEAR(render->GetpixelmodelRatio(view), expectedRatio, 1e-6 * expectedRatio);
    EXPECT_NEAR(view->GetpixelmodelRatio(), expectedRatio, 1e-6 * expectedRatio);
    for (const VxPoint& p : kProbes) {
        const CPoint s = render->MapModelPointToScreen(p);
        const VxLine ray = render->GetCursorRay(s);
        // Rounding is "integer part of w + 0.5", which truncates towards zero for a point off
        // the window's left or top: up to a pixel there, half a pixel elsewhere.
        EXPECT_LT(ray.DistanceToPoint(p), 1.5 / expectedRatio);
        const VxPoint nearPoint = UnProject(s.x, kH - s.y, 0.0, handMV);
        EXPECT_LT(ray.DistanceToPoint(nearPoint), 1e-6);
    }
    // Kept for its signature; it hands nothing back and must not fail.
    render->Get1mmModelPointIndex(view, {}, {});
}

TEST_F(MappingTest, DepthReadsOverAQuadAndOverTheBackground) {
    DrawQuad();
    VxTestImage img(kW, kH);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
    img.FlipRows();
    VxWritePng(VxTestOutputDir() + "/mapping_quad.png", img);
    EXPECT_GT(img.CountColour(255, 230, 51, 2), 100);

    const VxPoint onQuad(0.1, 0.2, 0.0);
    const CPoint s = render->MapModelPointToScreen(onQuad);
    EXPECT_TRUE(render->IsMouseOnModel(s));
    EXPECT_FALSE(render->IsMouseOnModel(CPoint(2, 2)));
    EXPECT_FALSE(render->IsMouseOnModel(CPoint(kW - 3, kH - 3)));

    bool visible = false;
    render->MapModelPointToScreen(onQuad, &visible);
    EXPECT_TRUE(visible);
    // Straight behind the quad point, along the view axis: same pixel, deeper. A window-depth
    // difference of 0.01 hides it, one of 0.0005 does not.
    const VxMatrix r = view->GetXForm().GetRotation();
    const VxVector away(-r[2][0], -r[2][1], -r[2][2]); // R^T (0, 0, -1)
    const double unitsPerDepth = 2.0 * render->GetEyeDistance() / view->GetXForm().GetScale();
    render->MapModelPointToScreen(onQuad + away * (0.01 * unitsPerDepth), &visible);
    EXPECT_FALSE(visible);
    render->MapModelPointToScreen(onQuad + away * (0.0005 * unitsPerDepth), &visible);
    EXPECT_TRUE(visible);
    render->MapModelPointToScreen(onQuad + away * (0.01 * unitsPerDepth), nullptr);

    // On the quad the depth read gives the quad's point back; on the background the far plane.
    const VxPoint picked = render->MapScreenPointToModel(s);
    EXPECT_LT(std::fabs(picked[2]), 0.05);
    EXPECT_LT(picked.DistanceToPoint(onQuad), 2.0 / view->GetpixelmodelRatio());
    const VxPoint far = render->MapScreenPointToModel(CPoint(3, 3));
    EXPECT_LT(far.DistanceToPoint(render->MapScreenPointToModel(view, CPoint(3, 3), 1.0)), 1e-9);

    // With the view's matrix in GL the text form finds the view by that matrix.
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view->GetModelViewMatrix());
    EXPECT_LT(render->MapScreenPointToModelForText(CPoint(50, 60), 0.3)
                  .DistanceToPoint(render->MapScreenPointToModel(view, CPoint(50, 60), 0.3)),
              1e-12);
}

TEST_F(MappingTest, OtherViewUsesItsOwnMatrixAndTheLastProjection) {
    VxModel empty;
    mgr->SwitchToMultiView(empty);
    render->RenderScene(true);
    VxViewRegion* v1 = mgr->GetView(1);
    double depth = 0;
    const CPoint s = render->MapModelPointToScreen(v1, VxPoint(0, 0, 0), &depth);
    // Inside view 1 (upper right), screen y counting down.
    EXPECT_TRUE(v1->IsContain(s));
    EXPECT_EQ(mgr->GetView(s), v1);
}

TEST(ArcballTest, CentreAndTheHalfBoundary) {
    VxOpenGLRender render; // W and H only; no GL needed
    render.ResizeViewport(129, 129);
    VxPoint c = render.MapScreenCoordToSphere(CPoint(64, 64));
    EXPECT_EQ(c[0], 0.0);
    EXPECT_EQ(c[1], 0.0);
    EXPECT_EQ(c[2], 1.0);
    // (96, 32) is x = y = 0.5 exactly (2 / 128 is exact): d = 0.5 takes the hyperbolic sheet.
    VxPoint b = render.MapScreenCoordToSphere(CPoint(96, 32));
    EXPECT_EQ(b[0], 0.5);
    EXPECT_EQ(b[1], 0.5);
    EXPECT_EQ(b[2], 1.0 / (2.0 * std::sqrt(0.5)));
    // Just inside: the sphere; just outside: the sheet; the two meet at the rim.
    VxPoint in = render.MapScreenCoordToSphere(CPoint(95, 32));
    const double dIn = in[0] * in[0] + in[1] * in[1];
    EXPECT_LT(dIn, 0.5);
    EXPECT_EQ(in[2], std::sqrt(1.0 - dIn));
    VxPoint out = render.MapScreenCoordToSphere(CPoint(128, 0));
    EXPECT_EQ(out[2], 1.0 / (2.0 * std::sqrt(2.0)));
    // Screen y grows downwards, arcball y upwards.
    EXPECT_GT(render.MapScreenCoordToSphere(CPoint(64, 0))[1], 0.99);
}
