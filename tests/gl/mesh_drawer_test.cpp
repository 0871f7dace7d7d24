// The six fixed-function drawers on a real headless context. Each test puts small quads through a
// drawer under an orthographic camera (x and y from -1 to 1 over 256 pixels, looking down -z at
// z = -5) with the frame's own GL defaults, and reads back colour and stencil. Colours are checked
// against the fixed-function lighting equation worked out here by hand from the material record
// (one light at the eye, ambient 0.1 and diffuse/specular 0.8, model ambient 0.2), so a wrong
// record, a missing Apply or a wrong colour rule all show. Pictures of what was drawn go to
// test-output/mesh_drawer/.
#include "VxGLTest.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <mesh/VxDrawer.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxDrawerMgr.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxSelectNames.h>
#include <mesh/VxVBOHandleMgr.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <sys/stat.h>
#include <utime.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <utility>

namespace {

constexpr int kSize = 256;

// Model x or y in [-1, 1] to a pixel column or row (GL order, from the bottom).
int Px(double v) {
    return static_cast<int>((v + 1.0) * kSize / 2.0);
}

// A square facing +z, corners counter-clockwise seen from the camera.
template <typename T> void Quad(T& m, double cx, double cy, double half = 0.1) {
    const int a = m.AddVertex(VxPoint(cx - half, cy - half, 0));
    const int b = m.AddVertex(VxPoint(cx + half, cy - half, 0));
    const int c = m.AddVertex(VxPoint(cx + half, cy + half, 0));
    const int d = m.AddVertex(VxPoint(cx - half, cy + half, 0));
    m.AddFace(a, b, c);
    m.AddFace(a, c, d);
    m.Finish();
}

void AddPart(VxAttachment& a, double x, double y) {
    a.AttachParts().push_back(
        std::make_shared<VxAttachmentPart>(VxMatrix::Translation(VxVector(x, y, 0))));
}

struct Rgb {
    int r, g, b;
};
const Rgb kBg = {40, 60, 90}; // not black, so black edges show

::testing::AssertionResult RgbNear(const Rgb& a, const Rgb& e, int tol) {
    if (std::abs(a.r - e.r) <= tol && std::abs(a.g - e.g) <= tol && std::abs(a.b - e.b) <= tol) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "got (" << a.r << ", " << a.g << ", " << a.b << "), expected (" << e.r << ", " << e.g
           << ", " << e.b << ") within " << tol;
}
#define EXPECT_RGB_NEAR(actual, expected, tol) EXPECT_TRUE(RgbNear((actual), (expected), (tol)))

int Clamp(double v) {
    return static_cast<int>(std::lround(std::min(255.0, std::max(0.0, v))));
}

// The fixed-function result for a face looking straight at the light and the eye: emission +
// ambient x (model 0.2 + light 0.1) + diffuse x 0.8 + specular x 0.8, channel by channel.
Rgb Lit(const VxColor& ambient, const VxColor& diffuse, const VxColor& specular,
        const VxColor& emission) {
    auto ch = [](int e, int a, int d, int s) { return Clamp(e + 0.3 * a + 0.8 * d + 0.8 * s); };
    return {ch(emission.GetR(), ambient.GetR(), diffuse.GetR(), specular.GetR()),
            ch(emission.GetG(), ambient.GetG(), diffuse.GetG(), specular.GetG()),
            ch(emission.GetB(), ambient.GetB(), diffuse.GetB(), specular.GetB())};
}
Rgb Lit(const VxFixedMaterial& m) {
    return Lit(m.m_ambient, m.m_diffuse, m.m_specular, m.m_emission);
}

std::string FilesDir() {
    return VxTestOutputDir() + "/mesh_drawer_files";
}

// A 2 x 2, 24-bit BMP, pure green: a face normal (0, 0, 1) samples green wherever it lands.
void WriteGreenBmp(const std::string& path) {
    VxWriteBmp24(path, 2, 2, VxTestRgb{0, 255, 0});
}

class MeshDrawerGLTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        ::mkdir(FilesDir().c_str(), 0755);
        ::mkdir((VxTestOutputDir() + "/mesh_drawer").c_str(), 0755);
        for (const char* f : {"teeth.bmp", "gum.bmp", "ColorRenderTooth.ini", "ColorRenderGum.ini",
                              "ColorRenderJaw.ini"}) {
            std::remove((FilesDir() + "/" + f).c_str());
        }
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(FilesDir()));
        VxFixedMaterial::Tooth() = VxFixedMaterial::ToothDefault();
        VxFixedMaterial::Gum() = VxFixedMaterial::GumDefault();
        VxFixedMaterial::Jaw() = VxFixedMaterial::JawDefault();
        VxMaterialIni::ForgetStamps();
        VxRenderStatus::GetInstance()->SetDisplayMode(DisplayMode_Solid);
        VxViewManager::GetInstance()->SetDisplayMode(Display_Mode_Normal);
        m_view = std::make_unique<VxViewRegion>(CPoint(0, 0), kSize, kSize);
        FrameDefaults();
    }
    // Every test ends without a GL error pending.
    void TearDown() override {
        if (!IsSkipped()) {
            EXPECT_EQ(GLErrors(), "");
        }
        VxTransformMatrix::GetInstance()->Clear();
        VxVBOHandleMgr::GetInstance()->Clear();
        VxDrawerFiles::SetDirectoryOverride(CString());
        VxViewManager::GetInstance()->SetDisplayMode(Display_Mode_Normal);
        VxRenderStatus::GetInstance()->SetDisplayMode(DisplayMode_Solid);
    }

    // What VxOpenGLRender::Initialize, SetUpMaterial and SetupLight leave behind where it differs
    // from a fresh context's defaults, and a camera.
    static void FrameDefaults() {
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        const GLfloat pos[4] = {0, 0, 0, 1};
        const GLfloat amb[4] = {0.1f, 0.1f, 0.1f, 1};
        const GLfloat dif[4] = {0.8f, 0.8f, 0.8f, 1};
        glLightfv(GL_LIGHT0, GL_POSITION, pos);
        glLightfv(GL_LIGHT0, GL_AMBIENT, amb);
        glLightfv(GL_LIGHT0, GL_DIFFUSE, dif);
        glLightfv(GL_LIGHT0, GL_SPECULAR, dif);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        for (GLenum cap : {GL_COLOR_MATERIAL, GL_LIGHTING, GL_LIGHT0, GL_NORMALIZE}) {
            glEnable(cap);
        }
        for (GLenum cap : {GL_DEPTH_TEST, GL_STENCIL_TEST, GL_BLEND, GL_CULL_FACE}) {
            glDisable(cap);
        }
        glDepthFunc(GL_LEQUAL);
        glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glViewport(0, 0, kSize, kSize);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-1, 1, -1, 1, 1, 20);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslated(0, 0, -5);
    }

    static void Clear() {
        glClearColor(kBg.r / 255.0f, kBg.g / 255.0f, kBg.b / 255.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    }

    // As DrawModel hands an entity to its drawer: inside a current/depth/stencil push with both
    // tests on, view first.
    void DrawEntity(VxEntity* e) {
        VxDrawer* d = VxDrawerMgr::GetInstance()->GetDrawer(e->GetObjectType());
        ASSERT_NE(d, nullptr);
        glPushAttrib(0x501);
        glEnable(GL_STENCIL_TEST);
        glEnable(GL_DEPTH_TEST);
        d->SetViewRegion(m_view.get());
        d->Draw(e);
        glPopAttrib();
    }
    // Clears, draws, and saves the picture when given a name.
    void Frame(std::initializer_list<VxEntity*> entities, const char* name = nullptr) {
        Clear();
        for (VxEntity* e : entities) {
            DrawEntity(e);
        }
        if (name != nullptr) {
            VxWritePng(VxTestOutputDir() + "/mesh_drawer/" + name + ".png", ReadAllRGBA());
        }
    }

    static Rgb At(double x, double y) {
        const VxTestImage img = ReadRGBA(Px(x), Px(y), 1, 1);
        return {img.rgba[0], img.rgba[1], img.rgba[2]};
    }
    static int StencilAt(double x, double y) { return ReadStencil(Px(x), Px(y), 1, 1)[0]; }
    struct StencilCase {
        double x, y;
        int value;
    };
    static void ExpectStencils(std::initializer_list<StencilCase> cases) {
        for (const StencilCase& c : cases) {
            EXPECT_EQ(StencilAt(c.x, c.y), c.value) << "at (" << c.x << ", " << c.y << ")";
        }
    }
    static void Place(VxEntity* e, std::set<DrawInfo_s> infos) {
        VxTransformMatrix::GetInstance()->SetDrawInfos(e, 0, infos);
    }
    static DrawInfo_s Shift(double x, double y, bool limited) {
        return DrawInfo_s(limited, VxMatrix::Translation(VxVector(x, y, 0)));
    }

    std::unique_ptr<VxViewRegion> m_view;
};

// Per-vertex lighting at corners 0.1 off the axis moves a channel by about 1 in 255; the rest is
// rounding.
constexpr int kTol = 3;

TEST_F(MeshDrawerGLTest, EveryKindWritesItsStencilValue) {
    VxTooth tooth(11);
    Quad(tooth, -0.6, 0.6);
    VxGum gum(true);
    Quad(gum, 0.0, 0.6);
    VxJaw upper(true), lower(false);
    Quad(upper, 0.6, 0.6);
    Quad(lower, -0.6, 0.0);
    VxMesh mesh;
    Quad(mesh, 0.0, 0.0);
    VxSkull skull;
    Quad(skull, 0.6, 0.0);
    VxStdAttach shape(CString(L"RECT"), VxColor(200, 100, 50));
    Quad(shape, 0.0, 0.0);
    VxAttachment attachment(&shape, &tooth);
    AddPart(attachment, -0.6, -0.6);
    Frame({&tooth, &gum, &upper, &lower, &mesh, &skull, &attachment}, "stencil_kinds");
    ExpectStencils({{-0.6, 0.6, 2},
                    {0.0, 0.6, 3},
                    {0.6, 0.6, 4},
                    {-0.6, 0.0, 5},
                    {0.0, 0.0, 1},
                    {0.6, 0.0, 1},
                    {-0.6, -0.6, 6},
                    {0.6, -0.6, 0}});
    EXPECT_RGB_NEAR(At(0.6, -0.6), kBg, 1);
}

TEST_F(MeshDrawerGLTest, ToothColourFollowsItsState) {
    VxTooth tooth(21);
    Quad(tooth, 0.0, 0.0);
    struct Case {
        const char* name;
        int selected, highlight;
        ToothKind_e kind;
        bool locked;
        const VxFixedMaterial* record;
    };
    const Case cases[] = {
        {"default", 0, 0, ToothKind_Normal, false, &VxFixedMaterial::Tooth()},
        {"selected", 1, 0, ToothKind_Normal, false, &VxFixedMaterial::ToothSelected()},
        {"highlight", 0, 1, ToothKind_Normal, false, &VxFixedMaterial::ToothHighlight()},
        {"kind2", 0, 0, ToothKind_Implant, false, &VxFixedMaterial::ToothKind2()},
        {"kind3", 0, 0, ToothKind_Pontic, false, &VxFixedMaterial::ToothKind3()},
        {"kind5", 0, 0, ToothKind_Restored, false, &VxFixedMaterial::ToothKind5()},
        {"locked", 0, 0, ToothKind_Normal, true, &VxFixedMaterial::ToothLocked()},
        // Selection wins over everything else, the kind over the lock.
        {"selected_kind3", 1, 0, ToothKind_Pontic, false, &VxFixedMaterial::ToothSelected()},
        {"kind5_locked", 0, 0, ToothKind_Restored, true, &VxFixedMaterial::ToothKind5()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        tooth.SetSelected(c.selected);
        tooth.SetHighLight(c.highlight);
        tooth.SetToothKind(c.kind);
        tooth.SetLockShown(c.locked);
        Frame({&tooth}, (std::string("tooth_") + c.name).c_str());
        EXPECT_RGB_NEAR(At(0.02, -0.05), Lit(*c.record), kTol);
        EXPECT_EQ(StencilAt(0.02, -0.05), 2);
    }
}

TEST_F(MeshDrawerGLTest, JawMaskHidesAndSheltersByJaw) {
    VxTooth up(11), low(41);
    Quad(up, -0.5, 0.5);
    Quad(low, -0.5, -0.5);
    VxGum upGum(true), lowGum(false);
    Quad(upGum, 0.0, 0.5);
    Quad(lowGum, 0.0, -0.5);
    VxJaw upJaw(true), lowJaw(false);
    Quad(upJaw, 0.5, 0.5);
    Quad(lowJaw, 0.5, -0.5);
    VxStdAttach shape(CString(L"RECT"), VxColor(200, 100, 50));
    Quad(shape, 0.0, 0.0, 0.05);
    VxAttachment upAtt(&shape, &up), lowAtt(&shape, &low);
    AddPart(upAtt, -0.8, 0.8);
    AddPart(lowAtt, -0.8, -0.8);
    std::initializer_list<VxEntity*> all = {&up,    &low,    &upGum, &lowGum,
                                            &upJaw, &lowJaw, &upAtt, &lowAtt};
    const std::initializer_list<VxObject*> uppers = {&up, &upGum, &upJaw, &upAtt};
    const std::initializer_list<VxObject*> lowers = {&low, &lowGum, &lowJaw, &lowAtt};

    // Each mask in turn: the shown jaw has pixels and no shelter, the other neither pixels nor
    // a pick.
    for (const bool upper : {true, false}) {
        SCOPED_TRACE(upper ? "upper" : "lower");
        m_view->SelectJawShow(upper ? Display_Selec_Upper : Display_Selec_Lower);
        Frame(all, upper ? "mask_upper" : "mask_lower");
        const double s = upper ? 1.0 : -1.0;
        for (double x : {-0.5, 0.0, 0.5}) {
            EXPECT_NE(StencilAt(x, 0.5 * s), 0) << x;
            EXPECT_EQ(StencilAt(x, -0.5 * s), 0) << x;
            EXPECT_RGB_NEAR(At(x, -0.5 * s), kBg, 1) << x;
        }
        ExpectStencils({{-0.8, 0.8 * s, 6}, {-0.8, -0.8 * s, 0}});
        for (VxObject* o : upper ? lowers : uppers) {
            EXPECT_TRUE(o->IsSheltered());
        }
        for (VxObject* o : upper ? uppers : lowers) {
            EXPECT_FALSE(o->IsSheltered());
        }
    }
    EXPECT_EQ(StencilAt(0.5, -0.5), 5);

    // An attachment of a hidden tooth is not drawn and keeps its shelter as it was.
    m_view->SelectJawShow(Display_Selec_All);
    up.SetVisible(0);
    for (const int shelter : {1, 0}) {
        upAtt.SetShelter(shelter);
        Frame({&upAtt});
        EXPECT_EQ(StencilAt(-0.8, 0.8), 0);
        EXPECT_EQ(upAtt.IsSheltered(), shelter != 0);
    }
}

TEST_F(MeshDrawerGLTest, DisplayModesRasteriseAsTheySay) {
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0, 0.5);
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    // A point inside the quad away from its edges and its diagonal.
    const double ix = 0.25, iy = -0.2;

    Frame({&tooth}, "mode_solid");
    EXPECT_EQ(StencilAt(ix, iy), 2);
    EXPECT_EQ(CountColour(0, 0, 0, 8), 0) << "no edges in solid mode";

    status->SetDisplayMode(DisplayMode_Edges);
    Frame({&tooth}, "mode_edges");
    EXPECT_RGB_NEAR(At(ix, iy), kBg, 1) << "edges mode draws no faces";
    EXPECT_EQ(StencilAt(ix, iy), 0);
    const int blackEdges = CountColour(0, 0, 0, 8);
    // Four sides of 128 pixels and a diagonal.
    EXPECT_GT(blackEdges, 4 * 120);
    // Stencil values come from the edge pixels alone.
    const std::vector<int> st = ReadStencil(0, 0, kSize, kSize);
    EXPECT_EQ(static_cast<int>(std::count(st.begin(), st.end(), 2)), blackEdges);

    status->SetDisplayMode(DisplayMode_SolidEdges);
    Frame({&tooth}, "mode_solid_edges");
    EXPECT_FALSE(RgbNear(At(ix, iy), kBg, 1));
    EXPECT_EQ(CountColour(0, 0, 0, 8), blackEdges);

    status->SetDisplayMode(DisplayMode_Points);
    Frame({&tooth}, "mode_points");
    EXPECT_RGB_NEAR(At(ix, iy), kBg, 1);
    // Four red points of 5 x 5 pixels, one on the corner.
    EXPECT_EQ(CountColour(255, 0, 0, 2), 4 * 25);
    EXPECT_RGB_NEAR(At(-0.5, -0.5), (Rgb{255, 0, 0}), 0);
}

// Compare mode: the tooth by the step table; gums and attachments by their comparison flag.
TEST_F(MeshDrawerGLTest, CompareModeFollowsTheStepTableAndTheCmpFlag) {
    // The tooth stands at x = 0 without placements; placed it goes to x = -0.5 (ordinary) and
    // to x = +0.5 (limit position).
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0);
    Place(&tooth, {Shift(-0.5, 0, false), Shift(0.5, 0, true)});
    VxGum gum(true), cmpGum(true);
    Quad(gum, -0.5, 0.5);
    Quad(cmpGum, 0.5, 0.5);
    cmpGum.SetCmp(true);
    Place(&gum, {Shift(0, -0.2, false)});
    Place(&cmpGum, {Shift(0, -0.2, false)});
    VxStdAttach shape(CString(L"RECT"), VxColor(200, 100, 50));
    Quad(shape, 0.0, 0.0, 0.08);
    VxAttachment att(&shape, &tooth), cmpAtt(&shape, &tooth);
    AddPart(att, -0.5, -0.5);
    AddPart(cmpAtt, 0.5, -0.5);
    cmpAtt.SetCmp(true);
    // Each attachment: an ordinary placement (up 0.2) and a limit position (down 0.2).
    Place(&att, {Shift(0, 0.2, false), Shift(0, -0.2, true)});
    Place(&cmpAtt, {Shift(0, 0.2, false), Shift(0, -0.2, true)});
    const Rgb opaque = Lit(VxFixedMaterial::ToothDefault());
    VxViewManager* views = VxViewManager::GetInstance();
    views->SetDisplayMode(Display_Mode_Compare);

    // Initial: the tooth, the plain gum and the plain attachment once, without a matrix.
    m_view->SetDisplayStep(Display_Step_Initial);
    Frame({&tooth, &gum, &cmpGum, &att, &cmpAtt}, "compare_initial");
    ExpectStencils({{0.0, 0.0, 2},
                    {-0.5, 0.0, 0},
                    {0.5, 0.0, 0},
                    {-0.5, 0.5, 3},
                    {0.5, 0.5, 0},
                    {0.5, 0.3, 0},
                    {-0.5, -0.5, 6},
                    {0.5, -0.5, 0},
                    {0.5, -0.7, 0}});

    // Final: the tooth's limit position, opaque; the comparison gum once without a matrix; the
    // comparison attachment at its limit position only.
    m_view->SetDisplayStep(Display_Step_Final);
    Frame({&tooth, &gum, &cmpGum, &att, &cmpAtt}, "compare_final");
    ExpectStencils({{0.0, 0.0, 0},
                    {-0.5, 0.0, 0},
                    {0.5, 0.0, 2},
                    {-0.5, 0.5, 0},
                    {-0.5, 0.3, 0},
                    {0.5, 0.5, 3},
                    {-0.5, -0.7, 0},
                    {0.5, -0.5, 0},
                    {0.5, -0.3, 0},
                    {0.5, -0.7, 6}});
    EXPECT_RGB_NEAR(At(0.5, 0.0), opaque, kTol) << "the limit position is drawn opaque";

    m_view->SetDisplayStep(Display_Step_Both);
    Frame({&tooth}, "compare_both");
    ExpectStencils({{0.0, 0.0, 0}, {-0.5, 0.0, 2}, {0.5, 0.0, 2}});
    EXPECT_RGB_NEAR(At(-0.5, 0.0), opaque, kTol);
    const Rgb ghost = At(0.5, 0.0);
    EXPECT_GT(ghost.r, ghost.g + 40) << "a red ghost";

    // A display mode that is neither normal nor compare draws no tooth, but still the jaw.
    VxJaw jaw(true);
    Quad(jaw, 0.0, 0.6);
    views->SetDisplayMode(static_cast<Display_Mode>(2));
    Frame({&tooth, &jaw});
    ExpectStencils({{-0.5, 0.0, 0}, {0.5, 0.0, 0}, {0.0, 0.6, 4}});

    // With no placements the final step still draws the tooth once where it stands.
    views->SetDisplayMode(Display_Mode_Compare);
    m_view->SetDisplayStep(Display_Step_Final);
    VxTooth bare(12);
    Quad(bare, 0.0, -0.6);
    Frame({&bare});
    EXPECT_EQ(StencilAt(0.0, -0.6), 2);
}

TEST_F(MeshDrawerGLTest, LimitPositionsAreSeeThroughGhosts) {
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0);
    VxGum gum(true);
    Quad(gum, 0.0, 0.5);
    Place(&tooth, {Shift(-0.5, 0, true)});
    Place(&gum, {Shift(0.5, 0, true)});
    Frame({&tooth, &gum}, "ghosts");
    const Rgb t1 = At(-0.5, 0.0);
    const Rgb g1 = At(0.5, 0.5);
    ExpectStencils({{-0.5, 0.0, 2}, {0.5, 0.5, 3}});
    // Drawn again over white: a see-through colour moves with what lies behind, by (1 - alpha)
    // of the change, alpha 150 for the tooth and 60 for the gum.
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    DrawEntity(&tooth);
    DrawEntity(&gum);
    EXPECT_NEAR(At(-0.5, 0.0).b - t1.b, (255 - kBg.b) * (1 - 150 / 255.0), 3);
    EXPECT_NEAR(At(0.5, 0.5).b - g1.b, (255 - kBg.b) * (1 - 60 / 255.0), 3);
    EXPECT_GT(t1.r, t1.b + 40) << "the limited colour is red";
}

TEST_F(MeshDrawerGLTest, AttachmentColourRule) {
    VxTooth tooth(11);
    Quad(tooth, 0.9, 0.9, 0.01);
    VxStdAttach sk(CString(L"BSK-3"), VxColor(200, 30, 30));
    VxStdAttach plain(CString(L"RECT"), VxColor(200, 30, 30));
    VxStdAttach lj(CString(L"LJ2"), VxColor(30, 200, 30));
    Quad(sk, 0.0, 0.0, 0.1);
    Quad(plain, 0.0, 0.0, 0.1);
    Quad(lj, 0.0, 0.0, 0.1);
    VxAttachment a1(&sk, &tooth), a2(&plain, &tooth), a3(&lj, &tooth);
    AddPart(a1, -0.5, 0);
    AddPart(a2, 0.0, 0);
    // Two parts: the shape is drawn under each.
    AddPart(a3, 0.5, 0.3);
    AddPart(a3, 0.5, -0.3);
    Frame({&a1, &a2, &a3}, "attachments");
    // The attachment record with the colour as ambient and diffuse (colour material).
    const VxFixedMaterial& rec = VxFixedMaterial::Attachment();
    auto expect = [&](int r, int g, int b) {
        const VxColor c(r, g, b, 255);
        return Lit(c, c, rec.m_specular, rec.m_emission);
    };
    EXPECT_RGB_NEAR(At(-0.5, 0.02), expect(0, 173, 239), kTol);
    EXPECT_RGB_NEAR(At(0.0, 0.02), expect(200, 30, 30), kTol);
    // "LJ" is a blue family only on the shader path.
    EXPECT_RGB_NEAR(At(0.5, 0.32), expect(30, 200, 30), kTol);
    EXPECT_RGB_NEAR(At(0.5, -0.28), expect(30, 200, 30), kTol);
    EXPECT_EQ(StencilAt(0.5, 0.0), 0);

    a2.SetSelected(1);
    Frame({&a2});
    EXPECT_RGB_NEAR(At(0.0, 0.02), Lit(VxFixedMaterial::Selected()), kTol);
}

TEST_F(MeshDrawerGLTest, WedgeSkullAndPlainMesh) {
    VxTooth left(11);
    Quad(left, 0.9, 0.9, 0.01);
    VxFilledWedgeTwoTooth wedge(&left, nullptr);
    Quad(wedge, -0.5, 0.0, 0.2);
    VxSkull skull;
    Quad(skull, 0.0, 0.5);
    // Two placements add up: the skull lands at x = 0.2 + 0.3.
    Place(&skull, {Shift(0.2, 0, false), Shift(0.3, 0, true)});
    VxMesh mesh;
    Quad(mesh, 0.5, -0.5);
    mesh.SetSelected(1);
    Frame({&wedge, &skull, &mesh}, "wedge_skull_mesh");

    // The wedge: see-through wedge colour at alpha 90, unlit, no depth written.
    const VxColor w = VxColor::GetWedgeColor();
    const double a = 90 / 255.0;
    const Rgb expected = {Clamp(w.GetR() * a + kBg.r * (1 - a)),
                          Clamp(w.GetG() * a + kBg.g * (1 - a)),
                          Clamp(w.GetB() * a + kBg.b * (1 - a))};
    EXPECT_RGB_NEAR(At(-0.5, 0.0), expected, 2);
    EXPECT_FLOAT_EQ(ReadDepth(Px(-0.5), Px(0.0)), 1.0f);
    ExpectStencils({{-0.5, 0.0, 1}, {0.0, 0.5, 0}, {0.5, 0.5, 1}});
    EXPECT_RGB_NEAR(At(0.5, 0.5), Lit(VxFixedMaterial::Jaw()), kTol);
    EXPECT_RGB_NEAR(At(0.5, -0.5), Lit(VxFixedMaterial::Selected()), kTol);

    // The wedge follows the show test of its left tooth.
    m_view->SelectJawShow(Display_Selec_Lower);
    Frame({&wedge});
    EXPECT_EQ(StencilAt(-0.5, 0.0), 0);
    EXPECT_TRUE(wedge.IsSheltered());
}

// The colour files: a file present when the frame is drawn decides the default records, an
// edit shows at the next frame, a missing key zeroes its channel, a missing file keeps what the
// record had, and a settled file is not parsed again at every draw.
TEST_F(MeshDrawerGLTest, ColourFilesFeedTheDefaultRecordsAtTheNextFrame) {
    // All three at the centre, where the lighting reference holds; one frame each.
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0);
    VxJaw jaw(true);
    Quad(jaw, 0.0, 0.0);
    VxGum gum(true);
    Quad(gum, 0.0, 0.0);
    auto colourOf = [&](VxEntity* e) {
        Frame({e});
        return At(0.02, -0.05);
    };
    EXPECT_RGB_NEAR(colourOf(&tooth), Lit(VxFixedMaterial::ToothDefault()), kTol)
        << "no file: compiled defaults";
    EXPECT_RGB_NEAR(colourOf(&jaw), Lit(VxFixedMaterial::JawDefault()), kTol);
    EXPECT_RGB_NEAR(colourOf(&gum), Lit(VxFixedMaterial::GumDefault()), kTol);

    auto write = [](const std::string& name, const std::string& prefix, int dr, int dg, int db) {
        std::ofstream f(FilesDir() + "/" + name);
        f << "[" << prefix << "_AMBIENT]\nR=0\nG=0\nB=0\nA=255\n"
          << "[" << prefix << "_DIFFUSE]\nR=" << dr << "\nG=" << dg << "\nB=" << db << "\nA=255\n"
          << "[" << prefix << "_SPECULAR]\nR=0\nG=0\nB=0\nA=255\n"
          << "[" << prefix << "_EMISSION]\nR=10\nG=20\nB=30\nA=255\n"
          << "[" << prefix << "_SHINNESS]\nV=10\n";
    };
    write("ColorRenderTooth.ini", "TOOTH", 100, 50, 20);
    write("ColorRenderJaw.ini", "JAW", 20, 100, 50);
    write("ColorRenderGum.ini", "GUM", 50, 20, 100);
    EXPECT_RGB_NEAR(colourOf(&jaw), (Rgb{10 + 16, 20 + 80, 30 + 40}), kTol);
    EXPECT_RGB_NEAR(colourOf(&gum), (Rgb{10 + 40, 20 + 16, 30 + 80}), kTol);
    EXPECT_RGB_NEAR(colourOf(&tooth), (Rgb{10 + 80, 20 + 40, 30 + 16}), kTol);

    // An edit of the same length right away: still seen at the next frame.
    write("ColorRenderTooth.ini", "TOOTH", 200, 50, 20);
    const Rgb edited = {10 + 160, 20 + 40, 30 + 16};
    EXPECT_RGB_NEAR(colourOf(&tooth), edited, kTol);

    // Selected and kind records are not fed by the file.
    tooth.SetToothKind(ToothKind_Pontic);
    EXPECT_RGB_NEAR(colourOf(&tooth), Lit(VxFixedMaterial::ToothKind3()), kTol);
    tooth.SetToothKind(ToothKind_Normal);

    // Settled (back-dated past the racy window): drawing again does not parse again.
    const std::string toothIni = FilesDir() + "/ColorRenderTooth.ini";
    const time_t old = time(nullptr) - 100;
    utimbuf times{old, old};
    for (const char* f : {"/ColorRenderTooth.ini", "/ColorRenderJaw.ini", "/ColorRenderGum.ini"}) {
        ::utime((FilesDir() + f).c_str(), &times);
    }
    colourOf(&tooth);
    const std::uint64_t parses = VxMaterialIni::ParseCount();
    for (int i = 0; i < 20; ++i) {
        DrawEntity(&tooth);
    }
    EXPECT_EQ(VxMaterialIni::ParseCount(), parses) << "an unchanged file is not parsed again";

    // The file goes: the record keeps what the last read gave it.
    std::remove(toothIni.c_str());
    EXPECT_RGB_NEAR(colourOf(&tooth), edited, kTol);

    // A file without the diffuse section zeroes diffuse (and all else it lacks but emission).
    std::ofstream(toothIni) << "[TOOTH_EMISSION]\nR=10\nG=20\nB=30\nA=255\n";
    EXPECT_RGB_NEAR(colourOf(&tooth), (Rgb{10, 20, 30}), kTol);
    EXPECT_EQ(VxFixedMaterial::Tooth().m_diffuse, VxColor(0, 0, 0, 0));
}

// Bitmaps beside the library texture the tooth and gum by direction; without them nothing is
// textured. A box has more faces than vertices, so the tooth's texture buffer (vertex-count
// sized, as it always was) is shorter than the draw: this must not fault.
TEST_F(MeshDrawerGLTest, OptionalBitmapsTextureToothAndGum) {
    VxTooth tooth(11);
    Quad(tooth, -0.5, 0.0, 0.3);
    VxGum gum(true);
    Quad(gum, 0.5, 0.0, 0.3);
    Frame({&tooth, &gum});
    const Rgb plainTooth = At(-0.5, 0.05);
    const Rgb plainGum = At(0.5, 0.05);

    WriteGreenBmp(FilesDir() + "/teeth.bmp");
    WriteGreenBmp(FilesDir() + "/gum.bmp");
    // Buffers made before the bitmap came have no texture buffer; a rebuild makes one.
    tooth.SetUpdateVBO(true);
    gum.SetUpdateVBO(true);
    Frame({&tooth, &gum}, "textured");
    const Rgb texTooth = At(-0.5, 0.05);
    // Modulated by green: red and blue go down, green stays.
    EXPECT_LT(texTooth.r, plainTooth.r - 50);
    EXPECT_LT(At(0.5, 0.05).r, plainGum.r - 30);
    EXPECT_NEAR(texTooth.g, plainTooth.g, 3);
    EXPECT_NE(VxVBOHandleMgr::GetInstance()->GetVBOHandle(&tooth).GetTextureHandle(), 0u);

    VxTooth box(12);
    for (int i = 0; i < 8; ++i) {
        box.AddVertex(VxPoint(i & 1 ? 0.2 : -0.2, i & 2 ? 0.2 : -0.2, i & 4 ? 0.2 : -0.2));
    }
    const int faces[12][3] = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6}, {0, 1, 5}, {0, 5, 4},
                              {2, 6, 7}, {2, 7, 3}, {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};
    for (const auto& t : faces) {
        box.AddFace(t[0], t[1], t[2]);
    }
    box.Finish();
    Frame({&box}, "textured_box");
    EXPECT_EQ(StencilAt(0.0, 0.0), 2);

    std::remove((FilesDir() + "/teeth.bmp").c_str());
    std::remove((FilesDir() + "/gum.bmp").c_str());
    Frame({&tooth, &gum});
    EXPECT_RGB_NEAR(At(-0.5, 0.05), plainTooth, 1) << "file gone: untextured at the next frame";
}

// A drawer leaves the GL state as it found it; the stencil function is the frame's to restore
// (DrawModel pushes the stencil bits around every drawer), so it is left out here.
TEST_F(MeshDrawerGLTest, DrawersLeaveTheStateAsTheyFoundIt) {
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0);
    Place(&tooth, {Shift(0, 0, false), Shift(0.3, 0, true)});
    VxGum gum(true);
    Quad(gum, 0.0, 0.3);
    Place(&gum, {Shift(0.3, 0, true)});
    VxJaw jaw(false);
    Quad(jaw, 0.3, 0.3);
    VxSkull skull;
    Quad(skull, -0.3, 0.3);
    Place(&skull, {Shift(0.1, 0, false)});
    VxFilledWedgeTwoTooth wedge(&tooth, nullptr);
    Quad(wedge, -0.3, -0.3);
    VxStdAttach shape(CString(L"SK1"), VxColor(1, 2, 3));
    Quad(shape, 0.0, 0.0, 0.05);
    VxAttachment att(&shape, &tooth);
    att.AttachParts().push_back(std::make_shared<VxAttachmentPart>());
    Place(&att, {Shift(0, -0.3, true)});

    // Sentinels: values no drawer would leave behind by chance.
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glDisable(GL_COLOR_MATERIAL);
    glPointSize(3.0f);
    GLuint sentinelBuffer = 0, sentinelTexture = 0;
    glGenBuffers(1, &sentinelBuffer);
    glBindBuffer(GL_ARRAY_BUFFER, sentinelBuffer);
    glGenTextures(1, &sentinelTexture);
    glBindTexture(GL_TEXTURE_2D, sentinelTexture);
    const GLfloat sentinelEmission[4] = {0.25f, 0.5f, 0.75f, 1.0f};
    glMaterialfv(GL_FRONT, GL_EMISSION, sentinelEmission);
    // The material emission is inside the lighting push, the rest in their own bits.
    using State = std::vector<std::pair<std::string, double>>;
    auto state = []() {
        State s;
        for (GLenum cap : {GL_BLEND, GL_COLOR_MATERIAL, GL_LIGHTING, GL_LIGHT0, GL_TEXTURE_2D,
                           GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_TEXTURE_COORD_ARRAY}) {
            s.emplace_back("enabled " + std::to_string(cap), glIsEnabled(cap));
        }
        const std::pair<GLenum, int> queries[] = {
            {GL_CURRENT_COLOR, 4},        {GL_BLEND_SRC, 1},
            {GL_POINT_SIZE, 1},           {GL_DEPTH_WRITEMASK, 1},
            {GL_ARRAY_BUFFER_BINDING, 1}, {GL_TEXTURE_BINDING_2D, 1},
            {GL_MATRIX_MODE, 1},          {GL_MODELVIEW_STACK_DEPTH, 1},
            {GL_MODELVIEW_MATRIX, 16}};
        for (const auto& q : queries) {
            GLdouble v[16];
            glGetDoublev(q.first, v);
            for (int i = 0; i < q.second; ++i) {
                s.emplace_back(std::to_string(q.first) + "[" + std::to_string(i) + "]", v[i]);
            }
        }
        GLfloat em[4];
        glGetMaterialfv(GL_FRONT, GL_EMISSION, em);
        s.emplace_back("emission g", em[1]);
        return s;
    };
    const State before = state();

    for (DisplayMode_e mode :
         {DisplayMode_Solid, DisplayMode_SolidEdges, DisplayMode_Edges, DisplayMode_Points}) {
        VxRenderStatus::GetInstance()->SetDisplayMode(mode);
        for (VxEntity* e :
             std::initializer_list<VxEntity*>{&tooth, &gum, &jaw, &skull, &wedge, &att}) {
            SCOPED_TRACE(::testing::Message()
                         << "mode " << mode << ", type " << e->GetObjectType());
            VxDrawer* d = VxDrawerMgr::GetInstance()->GetDrawer(e->GetObjectType());
            d->SetViewRegion(m_view.get());
            d->Draw(e);
            EXPECT_EQ(state(), before);
            EXPECT_EQ(GLErrors(), "");
        }
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteBuffers(1, &sentinelBuffer);
    glDeleteTextures(1, &sentinelTexture);
    glDisable(GL_BLEND);
    glPointSize(1.0f);
}

// Selection drawing: the names in the GL selection buffer lead back to the entity and, when
// faces or edges are asked for, to the very face or edge objects of the mesh; a limit position
// is never drawn for a pick.
TEST_F(MeshDrawerGLTest, DrawForSelectNamesObjects) {
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    const std::vector<ObjectType_e> savedTypes = status->GetSelectType();
    VxTooth tooth(11);
    Quad(tooth, 0.0, 0.0, 0.5);
    VxDrawer* d = VxDrawerMgr::GetInstance()->GetDrawer(ObjectType_Tooth);

    auto pick = [&](std::vector<ObjectType_e> types) {
        status->SetSelectType(types);
        std::vector<const VxObject*> hits;
        VxSelectNames::Reset();
        GLuint buffer[512];
        glSelectBuffer(512, buffer);
        glRenderMode(GL_SELECT);
        glInitNames();
        glPushName(0);
        d->DrawForSelect(&tooth, CPoint(kSize / 2, kSize / 2));
        const GLint n = glRenderMode(GL_RENDER);
        // Walk the records by their own name counts; the innermost name is the object's.
        for (GLint i = 0, at = 0; i < n; ++i, at += 3 + static_cast<int>(buffer[at])) {
            hits.push_back(VxSelectNames::ObjectOf(buffer[at + 2 + buffer[at]]));
        }
        return hits;
    };
    using Hits = std::vector<const VxObject*>;
    EXPECT_EQ(pick({ObjectType_Tooth}), Hits{&tooth});
    EXPECT_EQ(pick({ObjectType_Face}), (Hits{&tooth.GetFaces()[0], &tooth.GetFaces()[1]}));
    Hits toothAndEdges = {&tooth};
    for (const VxEdge& e : tooth.GetEdges()) {
        toothAndEdges.push_back(&e);
    }
    ASSERT_EQ(toothAndEdges.size(), 1u + 5u);
    EXPECT_EQ(pick({ObjectType_Edge, ObjectType_Tooth}), toothAndEdges);

    // A limit position is not drawn; an ordinary one moved out of the window is not hit.
    Place(&tooth, {Shift(5, 0, false), Shift(0, 0, true)});
    EXPECT_TRUE(pick({ObjectType_Tooth}).empty());
    status->SetSelectType(savedTypes);
}

} // namespace
