// RenderV1's mesh passes and the shader-path drawers on a real headless context. Direct draws
// under a known orthographic camera (x, y in [-1, 1] over 256 pixels, eye on +z) read back colour
// and stencil: the grade tint of a tooth, the batch's stencil value and translucency, the gum's
// missing images, the attachment colours and the coloured-triangle cache. Frames of a small model
// check the buffer caches: constant over 100 frames, rebuilt once on a change, forgotten by
// ClearMapofVBOID for teeth only, one entry per gum shape. Every draw leaves GL as it found it.
#include "VxGLTest.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include <frame/NuCameraSnapshot.h>
#include <frame/NuRenderStatus.h>
#include <frame/OpenGLVersion.h>
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
#include <mesh/NuDrawerMgr.h>
#include <mesh/VxDrawer.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <sys/stat.h>

#include <memory>
#include <string>

namespace {

constexpr int kSize = 256;

void OrthoCamera() {
    NuCameraSnapshot* cam = NuCameraSnapshot::GetInstance();
    cam->SetEye(0, 0, 5);
    cam->SetCenter(0, 0, 0);
    cam->SetUp(0, 1, 0);
    const glm::dmat4 p = glm::ortho(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0);
    cam->SetProjection(glm::value_ptr(p));
    cam->SetViewTransform(nullptr);
}

// A grid in the z = 0 plane over [x0, x1] x [y0, y1], n x m cells, faces counter-clockwise from
// the eye; faces of rows below `rootRows` get the basic-root style.
void Grid(VxMesh& mesh, double x0, double x1, double y0, double y1, int n, int m,
          int rootRows = 0) {
    mesh.Clear();
    for (int j = 0; j <= m; ++j) {
        for (int i = 0; i <= n; ++i) {
            mesh.AddVertex(VxPoint(x0 + (x1 - x0) * i / n, y0 + (y1 - y0) * j / m, 0));
        }
    }
    for (int j = 0; j < m; ++j) {
        const FaceStyle_e style = j < rootRows ? FaceStyle_BasicRoot : FaceStyle_Normal;
        for (int i = 0; i < n; ++i) {
            const int a = j * (n + 1) + i;
            mesh.AddFace(a, a + 1, a + n + 2, style);
            mesh.AddFace(a, a + n + 2, a + n + 1, style);
        }
    }
    mesh.Finish();
}

// A strip gum of one band: `rows` rows of 19 cells, laid as the gum generator lays them.
void StripGum(VxGum& gum, int rows, double lift) {
    gum.Clear();
    for (int r = 0; r <= rows; ++r) {
        for (int c = 0; c <= 19; ++c) {
            gum.AddVertex(VxPoint(-0.9 + 1.8 * c / 19, -0.9 + 1.8 * r / rows, lift * r));
        }
    }
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < 19; ++c) {
            const int a = r * 20 + c, b = a + 20;
            gum.AddFace(b, a, a + 1);
            gum.AddFace(b, a + 1, b + 1);
        }
    }
    gum.Finish();
    gum.SetBands(1, {0}, {rows * 38});
}

struct Rgb {
    int r, g, b;
};

class ShaderMeshPassTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        OrthoCamera();
        glViewport(0, 0, kSize, kSize);
        glDisable(GL_CULL_FACE);
        glDisable(GL_BLEND);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glEnable(GL_STENCIL_TEST);
        glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
        glStencilFunc(GL_ALWAYS, 0, 0xFF);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        OpenGLVersion::GetInstance()->Set_textured(true);
        OpenGLVersion::GetInstance()->Setmy_exe_type(0);
    }
    void TearDown() override {
        ExpectStateUntouched();
        r->objectQueue.clear();
        r->attachQueue.clear();
        VxTransformMatrix::GetInstance()->Clear();
        VxVBOHandleMgr::GetInstance()->Clear();
    }
    // What every pass must leave as the test set it.
    void ExpectStateUntouched() {
        GLint v = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &v);
        EXPECT_EQ(v, 0);
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &v);
        EXPECT_EQ(v, 0);
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &v);
        EXPECT_EQ(v, 0);
        glGetIntegerv(GL_ACTIVE_TEXTURE, &v);
        EXPECT_EQ(v, GL_TEXTURE0);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &v);
        EXPECT_EQ(v, 0);
        glGetIntegerv(GL_STENCIL_REF, &v);
        EXPECT_EQ(v, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_POLYGON_OFFSET_FILL));
        EXPECT_EQ(GLErrors(), "");
    }
    static Rgb At(double x, double y) {
        const int px = static_cast<int>((x + 1) / 2 * kSize),
                  py = static_cast<int>((y + 1) / 2 * kSize);
        const VxTestImage img = ReadRGBA(px, py, 1, 1);
        return {img.rgba[0], img.rgba[1], img.rgba[2]};
    }
    static int StencilAt(double x, double y) {
        return ReadStencil(static_cast<int>((x + 1) / 2 * kSize),
                           static_cast<int>((y + 1) / 2 * kSize), 1, 1)[0];
    }
    // A drawer's stencil value is the frame's to restore, as DrawModel does around its passes.
    static void DrawAsTheFrameDoes(VxDrawer* drawer, VxEntity* entity) {
        drawer->Draw(entity);
        glStencilFunc(GL_ALWAYS, 0, 0xFF);
    }
    void Save(const std::string& name) {
        VxWritePng(VxTestOutputDir() + "/shader_mesh_" + name + ".png", ReadAllRGBA());
    }

    RenderV1* r = RenderV1::GetInstance();
};

// A tooth without basic-root faces is ungraded: the tooth program draws it as the plain mesh
// program does (grade 1 is no tint). With a root, the band at 60 % of the height turns warm.
TEST_F(ShaderMeshPassTest, ToothTintFollowsItsGrade) {
    NuRenderMaterial m;
    m.SetToothDefault();
    VxTooth tooth(11);
    // Height in the tooth's frame runs along +y of the screen.
    tooth.SetFrame(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 0, 1)));
    Grid(tooth, -0.5, 0.5, -1.0, 1.0, 4, 20);
    r->SendMaterialMatrix(&tooth, m, glm::mat4(1.0f), false, nullptr);
    r->DrawGraphicObjects();
    r->objectQueue.clear();
    Save("ungraded");
    // Left of the highlight.
    const Rgb batch[2] = {At(-0.45, 0.6), At(-0.45, -0.9)};
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    r->DrawWithMaterialWithMatrix(&tooth, m, glm::mat4(1.0f));
    for (int k = 0; k < 2; ++k) {
        const Rgb plain = At(-0.45, k == 0 ? 0.6 : -0.9);
        EXPECT_NEAR(batch[k].r, plain.r, 1);
        EXPECT_NEAR(batch[k].g, plain.g, 1);
        EXPECT_NEAR(batch[k].b, plain.b, 1);
    }

    // The lowest quarter is root: the tooth is graded, 0 at y = 0.6, 1 at the root tip. The same
    // entity and face count: the update flag (which the drawers set from the mesh) rebuilds.
    Grid(tooth, -0.5, 0.5, -1.0, 1.0, 4, 20, 5);
    NuRenderStatus::GetInstance()->Set_bIsUpdateVBO(true);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    r->SendMaterialMatrix(&tooth, m, glm::mat4(1.0f), false, nullptr);
    r->DrawGraphicObjects();
    r->objectQueue.clear();
    Save("graded");
    const Rgb band = At(-0.45, 0.6), tip = At(-0.45, -0.9);
    EXPECT_GT(band.r - band.b, tip.r - tip.b + 40) << "a warm band";
    EXPECT_NEAR(tip.r, batch[1].r, 2);
    EXPECT_NEAR(tip.b, batch[1].b, 4);
}

// The drawers' choices: a selected tooth is drawn at once and not queued, a limited one is queued
// see-through at 102 / 255, the batch writes stencil 2 and blends the limited one.
TEST_F(ShaderMeshPassTest, ToothDrawerQueuesAndTheBatchDrawsWithStencilTwo) {
    VxDrawer* drawer = NuDrawerMgr::GetInstance()->GetDrawer(ObjectType_Tooth);
    ASSERT_NE(drawer, nullptr);
    VxViewRegion view(CPoint(0, 0), kSize, kSize);
    VxTooth tooth(11);
    Grid(tooth, -0.8, -0.2, -0.3, 0.3, 2, 2);
    drawer->SetViewRegion(&view);
    tooth.SetSelected(1);
    DrawAsTheFrameDoes(drawer, &tooth);
    EXPECT_TRUE(r->objectQueue.empty());
    EXPECT_EQ(StencilAt(-0.5, 0.0), 2);
    const Rgb gold = At(-0.5, 0.0);
    EXPECT_GT(gold.r, gold.b + 30);

    tooth.SetSelected(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    // Once where it stands, once as a ghost moved right over white.
    VxTransformMatrix::GetInstance()->SetDrawInfos(
        &tooth, VxTransformMatrix::GetInstance()->GetCurrentStep(),
        {DrawInfo_s(false, VxMatrix::Identity(4)),
         DrawInfo_s(true, VxMatrix::Translation(VxVector(1.0, 0, 0)))});
    DrawAsTheFrameDoes(drawer, &tooth);
    ASSERT_EQ(r->objectQueue.size(), 2u);
    const NuDrawItem& ghost = r->objectQueue[0].limited ? r->objectQueue[0] : r->objectQueue[1];
    EXPECT_TRUE(ghost.limited);
    EXPECT_NEAR(ghost.material.ambient[3], 102 / 255.0, 1e-6);
    EXPECT_NE(ghost.xform, nullptr);
    // White behind the ghost's right half.
    glScissor(kSize * 3 / 4, 0, kSize / 4, kSize);
    glEnable(GL_SCISSOR_TEST);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 0, 0, 1);
    r->DrawGraphicObjects();
    Save("batch");
    EXPECT_EQ(StencilAt(-0.5, 0.0), 2);
    EXPECT_EQ(StencilAt(0.4, 0.0), 2);
    const Rgb overBlack = At(0.4, 0.0), overWhite = At(0.65, 0.0);
    // 60 % of the white shows through.
    EXPECT_NEAR(overWhite.g - overBlack.g, 255 * (1 - 102 / 255.0), 4);
}

// The gum images missing: every textured draw says so twice, and the gum is still drawn.
TEST_F(ShaderMeshPassTest, MissingGumImagesArePrintedAtEveryDraw) {
    const std::string empty = VxTestOutputDir() + "/shader_mesh_no_files";
    ::mkdir(empty.c_str(), 0755);
    VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(empty));
    testing::internal::CaptureStdout();
    r->SetUpdata();
    testing::internal::GetCapturedStdout(); // the font's complaint is not this test's business
    VxGum gum(true);
    StripGum(gum, 2, 0.0);
    NuRenderMaterial m;
    m.SetGumDefault();
    testing::internal::CaptureStdout();
    r->DrawGumWithMaterialWithMatrix(&gum, m, glm::mat4(1.0f));
    r->DrawGumWithMaterialWithMatrix(&gum, m, glm::mat4(1.0f));
    const std::string out = testing::internal::GetCapturedStdout();
    VxDrawerFiles::SetDirectoryOverride(CString());
    testing::internal::CaptureStdout();
    r->SetUpdata();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "Failed to load texture\nFailed to load texture2\n"
                   "Failed to load texture\nFailed to load texture2\n");
    EXPECT_LT(ReadDepth(kSize / 2, kSize / 2), 1.0f) << "drawn, from empty textures";
    // With the images back, the band is textured: pink, brighter in red than blue.
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    r->DrawGumWithMaterialWithMatrix(&gum, m, glm::mat4(1.0f));
    Save("gum");
    const Rgb pink = At(0.0, 0.0);
    EXPECT_GT(pink.r, pink.b + 40);
    r->mapOfGumVBO.clear();
}

// Attachments never reach a frame's shader drawers; the drawer is called directly here. The
// catalogue colour is the attachment look, the blue families are blue whatever it says, parts
// are queued for their own batch with stencil 6, and the batch does not empty its queue.
TEST_F(ShaderMeshPassTest, AttachmentDrawerColoursAndItsBatch) {
    VxDrawer* drawer = NuDrawerMgr::GetInstance()->GetDrawer(ObjectType_Attachment);
    ASSERT_NE(drawer, nullptr);
    VxTooth tooth(11);
    VxStdAttach red(CString(L"RECT-1"), VxColor(220, 20, 20));
    VxStdAttach blue(CString(L"AB-QY-2"), VxColor(220, 20, 20));
    VxAttachment plain(&red, &tooth), family(&blue, &tooth);
    for (VxAttachment* a : {&plain, &family}) {
        auto part = std::make_shared<VxAttachmentPart>(
            VxMatrix::Translation(VxVector(a == &plain ? -0.5 : 0.5, 0, 0)));
        Grid(*part, -0.3, 0.3, -0.3, 0.3, 1, 1);
        a->AttachParts().push_back(part);
        DrawAsTheFrameDoes(drawer, a);
    }
    ASSERT_EQ(r->attachQueue.size(), 2u);
    EXPECT_NEAR(r->attachQueue[0].material.ambient[0], 220 / 255.0, 1e-6);
    EXPECT_NEAR(r->attachQueue[1].material.ambient[0], 0.0, 1e-6);
    EXPECT_NEAR(r->attachQueue[1].material.ambient[2], 0.5 * 239 / 255.0, 1e-6);
    r->DrawGraphicAttachObjects();
    Save("attachments");
    EXPECT_EQ(r->attachQueue.size(), 2u);
    EXPECT_EQ(StencilAt(-0.5, 0.0), 6);
    EXPECT_EQ(StencilAt(0.5, 0.0), 6);
    const Rgb a = At(-0.5, 0.0), b = At(0.5, 0.0);
    EXPECT_GT(a.r, a.b + 40);
    EXPECT_GT(b.b, b.r + 40);
    // A hidden tooth hides its attachments.
    tooth.SetVisible(0);
    r->attachQueue.clear();
    DrawAsTheFrameDoes(drawer, &plain);
    EXPECT_TRUE(r->attachQueue.empty());
}

// A jaw's open shell shows its inside grey, not black: the back-and-front program.
TEST_F(ShaderMeshPassTest, JawInsideIsNotBlack) {
    VxDrawer* drawer = NuDrawerMgr::GetInstance()->GetDrawer(ObjectType_Jaw);
    ASSERT_NE(drawer, nullptr);
    VxJaw jaw(false);
    Grid(jaw, -0.5, 0.5, -0.5, 0.5, 1, 1);
    jaw.Transform(
        VxMatrix::s_GetRotationMatrix(VxVector(0, 1, 0), 3.14159265358979)); // facing away
    DrawAsTheFrameDoes(drawer, &jaw);
    Save("jaw_back");
    const Rgb back = At(0.0, 0.0);
    EXPECT_GT(back.r, 60);
    EXPECT_NEAR(back.r, back.b, 12) << "neutral grey";
}

// Coloured triangles are cached by their first float with the count they were made with: a block
// sharing that float draws the cached data and never more triangles than the buffer holds.
TEST_F(ShaderMeshPassTest, ColouredTrianglesCacheByFirstFloat) {
    std::vector<float> one = {-0.9f, -0.9f, 0, 1,     0,     0, -0.1f, -0.9f, 0,
                              1,     0,     0, -0.5f, -0.1f, 0, 1,     0,     0};
    r->ClearMapofVBOID();
    r->DrawWithMaterialWithMatrixTriandColor(one.data(), 1, glm::mat4(1.0f));
    EXPECT_EQ(At(-0.5, -0.6).r, 255);
    std::vector<float> two = one;
    for (size_t i = 0; i < 18; ++i) {
        two.push_back(i % 6 < 3 ? one[i] + (i % 6 == 0 ? 1.0f : 0.0f) : (i % 6 == 4 ? 1.0f : 0.0f));
    }
    glClear(GL_COLOR_BUFFER_BIT);
    r->DrawWithMaterialWithMatrixTriandColor(two.data(), 2, glm::mat4(1.0f));
    Save("tricolor");
    EXPECT_EQ(At(-0.5, -0.6).r, 255);
    EXPECT_EQ(At(0.5, -0.6).g, 0) << "past the cached buffer";
    EXPECT_EQ(r->mapOfTriColorVBO.size(), 1u);
    r->ClearMapofVBOID();
    glClear(GL_COLOR_BUFFER_BIT);
    r->DrawWithMaterialWithMatrixTriandColor(two.data(), 2, glm::mat4(1.0f));
    EXPECT_EQ(At(0.5, -0.6).g, 255);
    r->ClearMapofVBOID();
}

// Frames of a small model on the shader path: the caches stay put frame after frame, an update
// rebuilds once, ClearMapofVBOID forgets teeth but not gums, and an edited gum of the same face
// count gets an entry of its own. The renderer makes its own context on the window; its kept
// programs belong to the context they were made in (a host has only the one), so they are
// forgotten when the frame's context comes and when it goes.
struct SmallFrame {
    explicit SmallFrame(VxNativeWindow* window) {
        g_bDIBShowMessage = false;
        VxForgetShaderObjects();
        created = render->Create(window, 24, 8);
        OpenGLVersion::GetInstance()->Set_btestversion(true);
        Grid(tooth, -0.8, -0.2, -0.3, 0.3, 3, 3);
        StripGum(gum, 2, 0.0);
        model.AddEntity(&tooth);
        model.AddEntity(&gum);
        render->SetModel(&model);
        render->ResizeViewport(kSize, kSize);
        views->Clear();
        views->SetTotalViewSize(kSize, kSize);
        views->CreateSingleView();
        r->ClearMapofVBOID();
        r->mapOfGumVBO.clear();
    }
    ~SmallFrame() {
        views->Clear();
        render->SetModel(nullptr);
        r->mapOfGumVBO.clear();
        VxForgetShaderObjects();
    }
    unsigned ToothBuffer() { return r->mapOfVBOID.at({&tooth, tooth.GetFaceCount()}).buffer; }
    void Frame() { render->RenderScene(true); }

    RenderV1* r = RenderV1::GetInstance();
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    VxViewManager* views = VxViewManager::GetInstance();
    bool created = false;
    VxTooth tooth{11};
    VxGum gum{true};
    VxModel model;
};

TEST_F(ShaderMeshPassTest, BufferCachesStayBuiltUntilAChange) {
    SmallFrame f(Window());
    ASSERT_TRUE(f.created);
    GLErrors(); // what making the context left (GLEW under EGL) is not this test's business
    VxTooth& tooth = f.tooth;
    auto Frame = [&f] { f.Frame(); };
    auto ToothBuffer = [&f] { return f.ToothBuffer(); };
    auto& gum = f.gum;
    Frame();
    ASSERT_EQ(GLErrors(), "");
    ASSERT_EQ(r->mapOfVBOID.size(), 1u);
    ASSERT_EQ(r->mapOfGumVBO.size(), 1u);
    EXPECT_FALSE(tooth.IsUpdateVBO());
    const unsigned toothBuffer = ToothBuffer();
    const unsigned gumBuffer = r->mapOfGumVBO.begin()->second.buffer;
    GLuint before = 0, after = 0;
    glGenBuffers(1, &before);
    glDeleteBuffers(1, &before);
    for (int i = 0; i < 100; ++i) {
        Frame();
    }
    glGenBuffers(1, &after);
    glDeleteBuffers(1, &after);
    EXPECT_LE(after, before + 1) << "no buffer made in 100 frames";
    EXPECT_EQ(r->mapOfVBOID.size(), 1u);
    EXPECT_EQ(r->mapOfGumVBO.size(), 1u);
    EXPECT_EQ(ToothBuffer(), toothBuffer);
    EXPECT_EQ(r->mapOfGumVBO.begin()->second.buffer, gumBuffer);

    // A moved tooth is rebuilt at the next frame, once.
    tooth.Transform(VxMatrix::Translation(VxVector(0, 0.1, 0)));
    ASSERT_TRUE(tooth.IsUpdateVBO());
    Frame();
    const unsigned rebuilt = ToothBuffer();
    EXPECT_FALSE(tooth.IsUpdateVBO());
    EXPECT_FALSE(NuRenderStatus::GetInstance()->Get_bIsUpdateVBO());
    Frame();
    EXPECT_EQ(ToothBuffer(), rebuilt);

    // Forgotten: the tooth's buffer is made anew, the gum keeps its own.
    r->ClearMapofVBOID();
    EXPECT_TRUE(r->mapOfVBOID.empty());
    Frame();
    EXPECT_EQ(r->mapOfVBOID.size(), 1u);
    EXPECT_NE(ToothBuffer(), rebuilt);
    EXPECT_EQ(r->mapOfGumVBO.size(), 1u);
    EXPECT_EQ(r->mapOfGumVBO.begin()->second.buffer, gumBuffer);

    // The gum edited to another shape with the same face count: a second entry.
    StripGum(gum, 2, 0.2);
    Frame();
    EXPECT_EQ(r->mapOfGumVBO.size(), 2u);
    EXPECT_EQ(GLErrors(), "");
}

} // namespace
