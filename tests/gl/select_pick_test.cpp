// Picking on a real headless context, with the frame drawn on either render path: a flat grid seen
// square on by an orthographic camera of known scale (80 pixels a model unit, window centre at the
// model origin), so every vertex has a pixel computed here by hand. Checked: the vertex pick's
// 10-pixel Manhattan tolerance, the edge picks of both forms with their tie and end rules, and
// entity picks end to end (frame, ProcessFeedback, DoSelect) of a tooth, a gum, an attachment and a
// face, the nearer of two overlapping teeth, and a limited ghost that cannot be picked.
#include "VxTestImage.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxAttachmentPart.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <platform/VxGLContext.h>
#include <platform/VxMessageSink.h>
#include <platform/VxNativeWindow.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

constexpr int kW = 200;
constexpr int kH = 160;
// The shorter side (160 pixels) spans -1 to 1 at scale 1.
constexpr double kPixelsPerUnit = 80.0;

// Screen pixel (y down) of a model point at z = 0, by hand.
CPoint PixelOf(double x, double y) {
    return CPoint(static_cast<int>(std::lround(kW / 2.0 + kPixelsPerUnit * x)),
                  static_cast<int>(std::lround(kH / 2.0 - kPixelsPerUnit * y)));
}

// n x n vertices spaced `step` apart, centred on (cx, cy) at height z; two triangles a cell.
void MakeGrid(VxMesh& mesh, int n, double step, double cx, double cy, double z) {
    std::vector<VxPoint> p;
    std::vector<int> t;
    const double half = step * (n - 1) / 2.0;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            p.emplace_back(cx - half + i * step, cy - half + j * step, z);
        }
    }
    for (int j = 0; j + 1 < n; ++j) {
        for (int i = 0; i + 1 < n; ++i) {
            const int a = j * n + i;
            t.insert(t.end(), {a, a + 1, a + n + 1, a, a + n + 1, a + n});
        }
    }
    mesh.SetMeshData(p, t);
}

// The vertex of a mesh at a position, or null.
const VxVertex* VertexAt(const VxMesh& mesh, double x, double y) {
    for (const VxVertex& v : mesh.GetVertices()) {
        if (std::fabs(v.GetPos()[0] - x) < 1e-9 && std::fabs(v.GetPos()[1] - y) < 1e-9) {
            return &v;
        }
    }
    return nullptr;
}

// The edge joining two vertices, or null.
VxEdge* EdgeOf(VxMesh& mesh, const VxVertex* a, const VxVertex* b) {
    for (const VxEdge& e : mesh.GetEdges()) {
        int v0, v1;
        e.Get2VtxId(v0, v1);
        if ((v0 == a->GetVtxId() && v1 == b->GetVtxId()) ||
            (v0 == b->GetVtxId() && v1 == a->GetVtxId())) {
            return mesh.GetEdge(e.GetEdgeId());
        }
    }
    return nullptr;
}

const std::vector<ObjectType_e> kDefaultSelectTypes = {
    ObjectType_Jaw,         ObjectType_Gum,        ObjectType_Tooth,
    ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Mesh};

class SelectPickTest : public ::testing::TestWithParam<VxTestRenderPath> {
public:
    static void SetUpTestSuite() {
        // No background file: the loader's complaint is not what these tests are about.
        VxMessageSink::SetHandler([](const std::string&, const std::string&) {});
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        render = VxRenderStatus::GetInstance()->GetRender();
        created = render->Create(window, 24, 8);
        VxMessageSink::Reset();
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
        render->SetModel(&model);
        select->SetModel(&model);
        render->ResizeViewport(kW, kH);
        mgr->CreateSingleView();
        mgr->SetActiveView(0);
        status->SetSelectType(kDefaultSelectTypes);
        status->SetDisplayMode(DisplayMode_Solid);
        // Picks read the stencil and redraw with the fixed-function selection drawing on both
        // paths; the frame draws with either path's drawers.
        VxApplyRenderPath(GetParam());
    }
    void TearDown() override {
        if (created) {
            mgr->Clear();
            render->SetModel(nullptr);
            select->SetModel(nullptr);
            status->SetSelectType(kDefaultSelectTypes);
            status->SetFeedbackType(FeedbackType_None);
            VxTransformMatrix::GetInstance()->Clear();
        }
    }

    void Frame() {
        render->RenderScene(true);
        ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    // A click as the host makes one: the stencil read, then the pick.
    VxObject* Click(const CPoint& p) {
        render->ProcessFeedback(p);
        return select->DoSelect(p);
    }
    void SaveFrame(const std::string& name) {
        VxTestImage img(kW, kH);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        VxWritePng(VxTestOutputDir() + "/" + name + ".png", img);
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    VxOpenGLSelect* select = VxRenderStatus::GetInstance()->GetSelecter();
    VxViewManager* mgr = nullptr;
    VxModel model;
};

// A 7 x 7 grid a quarter unit (20 pixels) apart around the origin: every pixel within 10 of a
// vertex is nearer to it than to any other.
class SelectGridTest : public SelectPickTest {
protected:
    void SetUp() override {
        SelectPickTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        MakeGrid(grid, 7, 0.25, 0.0, 0.0, 0.0);
        model.AddEntity(&grid);
        Frame();
    }
    VxMesh grid;
};

TEST_P(SelectGridTest, CameraIsTheOneComputedByHand) {
    for (const VxPoint& p : {VxPoint(0, 0, 0), VxPoint(0.75, -0.5, 0), VxPoint(-0.25, 0.75, 0)}) {
        const CPoint s = render->MapModelPointToScreen(p);
        EXPECT_EQ(s, PixelOf(p[0], p[1])) << p[0] << "," << p[1];
    }
    SaveFrame("select_grid");
}

TEST_P(SelectGridTest, VertexWithinTenPixelsManhattan) {
    status->SetSelectType({ObjectType_Vertex});
    const VxVertex* centre = VertexAt(grid, 0.0, 0.0);
    const VxVertex* corner = VertexAt(grid, 0.5, -0.25);
    const CPoint c = PixelOf(0, 0);
    const CPoint k = PixelOf(0.5, -0.25);
    const struct {
        CPoint at;
        const VxVertex* expected;
    } rows[] = {
        {c, centre},
        {CPoint(c.x + 6, c.y + 4), centre},  // 10
        {CPoint(c.x - 4, c.y - 6), centre},  // 10
        {CPoint(c.x + 6, c.y + 5), nullptr}, // 11
        {CPoint(c.x - 9, c.y + 2), nullptr}, // 11
        {CPoint(k.x + 10, k.y), corner},     // 10 along one axis
        {CPoint(k.x, k.y - 9), corner},      // 9
        {CPoint(k.x + 3, k.y - 8), nullptr}, // 11, and still nearest to it
        {CPoint(k.x + 5, k.y - 5), corner},  // 10
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Click(row.at), row.expected) << row.at.x << "," << row.at.y;
        EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Mesh);
    }
    // Off the grid the stencil shows nothing, so there are no candidates.
    EXPECT_EQ(Click(CPoint(5, 5)), nullptr);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_None);
}

TEST_P(SelectGridTest, EdgeThroughTheNearestVertex) {
    status->SetSelectType({ObjectType_Edge});
    const VxVertex* o = VertexAt(grid, 0.0, 0.0);
    const VxVertex* right = VertexAt(grid, 0.25, 0.0);
    const VxVertex* up = VertexAt(grid, 0.0, 0.25);
    const CPoint c = PixelOf(0, 0);
    // Just above the edge to the right, and just right of the edge upwards.
    EXPECT_EQ(Click(CPoint(c.x + 8, c.y - 1)), EdgeOf(grid, o, right));
    EXPECT_EQ(Click(CPoint(c.x + 1, c.y - 7)), EdgeOf(grid, o, up));
    // Eleven pixels from every vertex: no vertex, so no edge.
    EXPECT_EQ(Click(CPoint(c.x + 9, c.y - 2)), nullptr);
    // The vertex pick would give the vertex here; the edge form answers an edge of it.
    VxEdge* e = static_cast<VxEdge*>(Click(CPoint(c.x + 3, c.y - 3)));
    ASSERT_NE(e, nullptr);
    int v0, v1;
    e->Get2VtxId(v0, v1);
    EXPECT_TRUE(v0 == o->GetVtxId() || v1 == o->GetVtxId());
}

TEST_P(SelectGridTest, EdgeListOnScreen) {
    const VxVertex* o = VertexAt(grid, 0.0, 0.0);
    VxEdge* h = EdgeOf(grid, o, VertexAt(grid, 0.25, 0.0)); // pixels (100, 80) to (120, 80)
    VxEdge* v = EdgeOf(grid, o, VertexAt(grid, 0.0, 0.25)); // pixels (100, 80) to (100, 60)
    ASSERT_NE(h, nullptr);
    ASSERT_NE(v, nullptr);
    const CPoint c = PixelOf(0, 0);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h}, CPoint(c.x + 10, c.y + 9)), h);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h}, CPoint(c.x + 10, c.y + 10)), nullptr);
    // Nearest of several.
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h, v}, CPoint(c.x + 15, c.y - 2)), h);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h, v}, CPoint(c.x + 2, c.y - 15)), v);
    // Equal distances: the later edge wins.
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h, v}, CPoint(c.x + 5, c.y - 5)), v);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{v, h}, CPoint(c.x + 5, c.y - 5)), h);
    // Beyond both ends of an edge it is skipped, though its end is three pixels away.
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h}, CPoint(c.x + 23, c.y)), nullptr);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{h}, CPoint(c.x - 2, c.y + 1)), nullptr);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{}, c), nullptr);
}

TEST_P(SelectGridTest, EdgeOfZeroScreenLengthIsAPoint) {
    // An edge along the line of sight.
    VxMesh post;
    post.AddVertex(VxPoint(0.5, 0.5, 0.0));
    post.AddVertex(VxPoint(0.5, 0.5, 0.3));
    post.AddVertex(VxPoint(0.6, 0.5, 0.0));
    post.AddFace(0, 1, 2);
    post.Finish();
    model.AddEntity(&post);
    VxEdge* along = EdgeOf(post, post.GetVertex(0), post.GetVertex(1));
    ASSERT_NE(along, nullptr);
    const CPoint p = PixelOf(0.5, 0.5);
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{along}, CPoint(p.x - 5, p.y + 4)),
              along); // 9
    EXPECT_EQ(select->SelectEdge(std::vector<VxEdge*>{along}, CPoint(p.x - 5, p.y + 5)),
              nullptr); // 10
    model.RemoveEntity(&post);
}

// Entities end to end. Upper tooth 11 on the left, upper gum in the middle, an attachment on the
// right, all flat squares facing the eye.
class SelectEntityTest : public SelectPickTest {
protected:
    void SetUp() override {
        SelectPickTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        MakeGrid(tooth, 3, 0.2, -0.6, 0.3, 0.0);
        MakeGrid(gum, 3, 0.2, 0.0, 0.3, 0.0);
        // The attachment is drawn as its standard shape per part, and named with its own
        // geometry: both the same square here.
        MakeGrid(shape, 2, 0.3, 0.6, 0.3, 0.0);
        MakeGrid(attachment, 2, 0.3, 0.6, 0.3, 0.0);
        attachment.SetStdAttachment(&shape);
        attachment.SetTooth(&tooth);
        attachment.AttachParts().push_back(std::make_shared<VxAttachmentPart>());
        for (VxEntity* e : std::initializer_list<VxEntity*>{&tooth, &gum, &attachment}) {
            model.AddEntity(e);
        }
    }
    VxTooth tooth{11};
    VxGum gum{true};
    VxStdAttach shape;
    VxAttachment attachment;
};

TEST_P(SelectEntityTest, ClickGivesTheObjectUnderThePixel) {
    Frame();
    SaveFrame("select_entities");
    EXPECT_EQ(Click(PixelOf(-0.6, 0.3)), &tooth);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Tooth);
    EXPECT_EQ(Click(PixelOf(0.05, 0.35)), &gum);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Gum);
    EXPECT_EQ(Click(PixelOf(0.62, 0.25)), &attachment);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Attachment);
    EXPECT_EQ(Click(PixelOf(0.0, -0.6)), nullptr);
    // The pick leaves the projection as it found it, with the matrix mode at projection.
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_PROJECTION);
    GLint renderMode = 0;
    glGetIntegerv(GL_RENDER_MODE, &renderMode);
    EXPECT_EQ(renderMode, GL_RENDER);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(SelectEntityTest, SelectTypesNarrowThePick) {
    Frame();
    // Teeth only: the gum's stencil is not pickable, so its pixel gives nothing.
    status->SetSelectType({ObjectType_Tooth});
    EXPECT_EQ(Click(PixelOf(-0.6, 0.3)), &tooth);
    EXPECT_EQ(Click(PixelOf(0.05, 0.35)), nullptr);
    // Faces: the face under the pixel, not the tooth. All faces in the 8-pixel pick window are
    // hit at the same depth on a flat tooth, and the later one would win, so this tooth's two
    // triangles are big enough (inradius about 19 pixels) for the window to fit inside one.
    VxTooth big{21};
    MakeGrid(big, 2, 0.8, 0.0, -0.4, 0.1);
    model.AddEntity(&big);
    Frame();
    status->SetSelectType({ObjectType_Face});
    const double r = 0.8 * (2.0 - std::sqrt(2.0)) / 2.0;
    for (const VxPoint& at : {VxPoint(0.4 - r, -0.8 + r, 0.1), VxPoint(-0.4 + r, -r, 0.1)}) {
        VxObject* hit = Click(PixelOf(at[0], at[1]));
        ASSERT_NE(hit, nullptr);
        ASSERT_EQ(hit->GetObjectType(), ObjectType_Face);
        const VxFace* face = static_cast<const VxFace*>(hit);
        const std::vector<VxFace>& faces = big.GetFaces();
        ASSERT_TRUE(face >= faces.data() && face < faces.data() + faces.size());
        // The pixel's point lies inside the returned triangle (sign test in the plane).
        double sign[3];
        for (int k = 0; k < 3; ++k) {
            const VxPoint& p = big.GetVertex(face->GetVtxId(k))->GetPos();
            const VxPoint& q = big.GetVertex(face->GetVtxId((k + 1) % 3))->GetPos();
            sign[k] = (q[0] - p[0]) * (at[1] - p[1]) - (q[1] - p[1]) * (at[0] - p[0]);
        }
        EXPECT_TRUE((sign[0] > 0 && sign[1] > 0 && sign[2] > 0) ||
                    (sign[0] < 0 && sign[1] < 0 && sign[2] < 0))
            << at[0] << "," << at[1];
    }
    // Nothing to pick: feedback 0, no candidates, null in all three branches.
    for (auto types : {std::vector<ObjectType_e>{ObjectType_Vertex},
                       std::vector<ObjectType_e>{ObjectType_Edge}, kDefaultSelectTypes}) {
        status->SetSelectType(types);
        EXPECT_EQ(Click(PixelOf(0.9, -0.7)), nullptr);
        EXPECT_EQ(status->GetFeedbackType(), FeedbackType_None);
    }
    model.RemoveEntity(&big);
}

TEST_P(SelectEntityTest, NearerOfTwoOverlappingTeethWins) {
    VxTooth front{12};
    MakeGrid(front, 3, 0.2, -0.55, 0.3, 0.2); // nearer the eye, overlapping the tooth
    // Added after the farther tooth, and then before it: depth decides, not order.
    model.AddEntity(&front);
    Frame();
    EXPECT_EQ(Click(PixelOf(-0.55, 0.3)), &front);
    // Where only the farther tooth lies.
    EXPECT_EQ(Click(PixelOf(-0.78, 0.3)), &tooth);
    model.RemoveEntity(&tooth);
    model.RemoveEntity(&front);
    model.AddEntity(&front);
    model.AddEntity(&tooth);
    Frame();
    EXPECT_EQ(Click(PixelOf(-0.55, 0.3)), &front);
    model.RemoveEntity(&front);
}

TEST_P(SelectEntityTest, LimitedGhostCannotBePicked) {
    // The tooth stands where it is, and a see-through ghost of its limit position lies below.
    VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
    const VxMatrix down = VxMatrix::Translation(VxVector(0, -0.8, 0));
    tm->SetDrawInfos(&tooth, tm->GetCurrentStep(),
                     {DrawInfo_s(false, VxMatrix::Identity(4)), DrawInfo_s(true, down)});
    Frame();
    SaveFrame("select_ghost");
    EXPECT_EQ(Click(PixelOf(-0.6, 0.3)), &tooth);
    // The ghost writes the tooth's stencil, so the feedback says tooth, but no pickable placement
    // is under the ray.
    EXPECT_EQ(Click(PixelOf(-0.6, -0.5)), nullptr);
    EXPECT_EQ(status->GetFeedbackType(), FeedbackType_Tooth);
    // Moved by an unflagged placement, it is picked where it is drawn.
    tm->SetDrawInfos(&tooth, tm->GetCurrentStep(), {DrawInfo_s(false, down)});
    Frame();
    EXPECT_EQ(Click(PixelOf(-0.6, -0.5)), &tooth);
    EXPECT_EQ(Click(PixelOf(-0.6, 0.3)), nullptr);
}

VX_BOTH_RENDER_PATHS(SelectGridTest);
VX_BOTH_RENDER_PATHS(SelectEntityTest);

} // namespace
