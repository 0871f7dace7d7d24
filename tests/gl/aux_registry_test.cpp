// The registry of aux objects: routing by kind, ownership on removal and Clear, the drawing
// order across its containers and views (recorded by a test double), the hit walk (priority,
// address among equals, objects that let the search go on, textures from the last), selection,
// and what Render leaves behind in GL. Also the kind tags, which are 64-bit.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxBox.h>
#include <aux/VxAuxCircle.h>
#include <aux/VxAuxCurve.h>
#include <aux/VxAuxDrawer.h>
#include <aux/VxAuxFace.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxMesh.h>
#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPlane.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxPolyline.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxSurface.h>
#include <aux/VxAuxTorus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxFrame.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 160;
constexpr int kH = 120;

std::vector<std::string> g_log;
int g_deleted = 0;

// Records each call with its name and the first number of the model-view matrix in GL, which
// tells the views apart.
class Recorder : public VxAuxObject {
public:
    Recorder(std::string name, ObjectType_e kind, bool hit = false, bool stop = true)
        : m_name(std::move(name)), m_kind(kind), m_hit(hit), m_stop(stop) {}
    ~Recorder() override { ++g_deleted; }
    ObjectType_e GetObjectType() const override { return m_kind; }
    bool IsKindOf(ObjectType_e t) const override {
        return t == m_kind || (m_kind == ObjectType_AuxBillBoard3d && t == ObjectType_AuxText) ||
               VxAuxObject::IsKindOf(t);
    }
    void Draw() override { g_log.push_back(m_name + View()); }
    void DrawHighlight() override { g_log.push_back("hl:" + m_name + View()); }
    bool HitTest(int, int) override {
        g_log.push_back("hit:" + m_name);
        return m_hit;
    }
    bool StopHit() override { return m_stop; }

private:
    static std::string View() {
        double m[16];
        glGetDoublev(GL_MODELVIEW_MATRIX, m);
        const VxViewRegion* first = VxViewManager::GetInstance()->GetAllViews()[0];
        return m[0] == first->GetModelViewMatrix()[0] ? "@1" : "@2";
    }
    std::string m_name;
    ObjectType_e m_kind;
    bool m_hit;
    bool m_stop;
};

class AuxRegistryTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        scene = std::make_unique<VxAuxTestScene>(4.0);
        aux = VxAuxTestScene::Aux();
        g_log.clear();
        g_deleted = 0;
    }
    void TearDown() override {
        scene.reset();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    static inline bool open = false;
    std::unique_ptr<VxAuxTestScene> scene;
    VxAuxRender* aux = nullptr;
};

// Every class of the family, placed in the middle of the picture.
void AddOneOfEach(VxAuxRender* aux, VxMesh* mesh) {
    auto* point = new VxAuxPoint();
    point->SetDrawHidden(true);
    aux->AddAuxObject(point);
    auto* line = new VxAuxLine();
    line->SetStopPoint(VxPoint(5, 5, 0));
    line->SetType(AuxLineType_Dashed);
    aux->AddAuxObject(line);
    auto* arrow = new VxAuxArrow();
    arrow->SetPoint(VxPoint(0, 0, 0), VxPoint(0, 8, 0));
    arrow->SetDualArrow(true);
    aux->AddAuxObject(arrow);
    auto* poly = new VxAuxPolyline();
    poly->SetPoints({VxPoint(0, 0, 0), VxPoint(3, 0, 0), VxPoint(3, 3, 0), VxPoint(0, 3, 0)});
    poly->SetPointsType({VxPointType_Marked, VxPointType_Green, VxPointType_Cyan});
    poly->SetType(AuxPolylineStyle_TwoHalves);
    aux->AddAuxObject(poly);
    VxBSplineCurve* c = VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(-5, 0, 0), VxPoint(0, 4, 0), VxPoint(5, 0, 0)}, false);
    auto* curve = new VxAuxCurve();
    curve->SetCurve(*c);
    aux->AddAuxObject(curve);
    aux->AddAuxObject(new VxAuxPipeLine(c));
    delete c;
    auto* box = new VxAuxBox();
    box->SetBox(VxBBox(VxPoint(-2, -2, -2), VxPoint(2, 2, 2)));
    aux->AddAuxObject(box);
    auto* circle = new VxAuxCircle();
    circle->Set(VxPoint(0, 0, 0), VxVector(0, 0, 1), 4);
    circle->SetType(AuxCircleType_Both);
    aux->AddAuxObject(circle);
    auto* plane = new VxAuxPlane();
    plane->Set(VxPoint(-6, -6, 0), VxVector(12, 0, 0), VxVector(0, 12, 0));
    plane->SetPlaneStyle(AuxPlaneStyle_Grid);
    aux->AddAuxObject(plane);
    auto* torus = new VxAuxTorus();
    torus->SetGeometry(3.0, 5.0, VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    aux->AddAuxObject(torus);
    auto* face = new VxAuxFace(mesh);
    face->SetFaces({0, 1});
    face->SetTransparent(true);
    aux->AddAuxObject(face);
    aux->AddAuxObject(new VxAuxMesh(mesh));
    aux->AddAuxObject(new VxAuxSurface());
}

int AttribDepth() {
    GLint d = 0;
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &d);
    return d;
}

TEST_F(AuxRegistryTest, RenderRestoresTheMatrixAndTheAttributeStack) {
    for (bool full : {false, true}) {
        SCOPED_TRACE(full ? "full registry" : "empty registry");
        if (full) {
            AddOneOfEach(aux, &scene->slab);
        }
        scene->Frame();
        aux->HitTest(scene->ToScreen(VxPoint(0, 8, 0))); // the arrow's highlight joins in
        double before[16];
        double after[16];
        glMatrixMode(GL_MODELVIEW);
        glGetDoublev(GL_MODELVIEW_MATRIX, before);
        const int depth = AttribDepth();
        GLfloat colourBefore[4];
        glColor4f(0.5f, 0.25f, 1.0f, 1.0f);
        glGetFloatv(GL_CURRENT_COLOR, colourBefore);
        GLint client = 0;
        glGetIntegerv(GL_CLIENT_ATTRIB_STACK_DEPTH, &client);
        aux->Render();
        aux->DrawAuxObject(aux->GetHitObject());
        glGetDoublev(GL_MODELVIEW_MATRIX, after);
        EXPECT_EQ(std::memcmp(before, after, sizeof before), 0);
        EXPECT_EQ(AttribDepth(), depth);
        GLint clientAfter = 0;
        glGetIntegerv(GL_CLIENT_ATTRIB_STACK_DEPTH, &clientAfter);
        EXPECT_EQ(clientAfter, client);
        // The frame paints a background without a file in the current colour.
        GLfloat colour[4];
        glGetFloatv(GL_CURRENT_COLOR, colour);
        EXPECT_EQ(colour[2], colourBefore[2]);
        EXPECT_EQ(colour[0], colourBefore[0]);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_LINE_STIPPLE));
        GLboolean mask = GL_FALSE;
        glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
        EXPECT_TRUE(mask);
        GLint buffer = -1;
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
        EXPECT_EQ(buffer, 0);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    EXPECT_EQ(aux->GetAuxObjects().size(), 13u);
}

TEST_F(AuxRegistryTest, DiagnosticHelpersBalanceTheirPushesButDrawFramePopsOnceMore) {
    const int depth = AttribDepth();
    VxAuxDrawer::DrawBox(VxBBox(VxPoint(-1, -1, -1), VxPoint(1, 1, 1)));
    VxAuxDrawer::DrawPoint(VxPoint(0, 0, 0));
    EXPECT_EQ(AttribDepth(), depth);
    // The frame helper eats one group of its caller's.
    glPushAttrib(GL_ENABLE_BIT);
    VxAuxDrawer::DrawFrame(VxFrame(), 2.0);
    EXPECT_EQ(AttribDepth(), depth);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(AuxRegistryTest, RenderOrderIsVectorsThenSetThenHighlightPerViewAndScreenLinesOnce) {
    // A second view with a different scale, so the recorder can tell the two apart.
    VxViewManager* views = VxViewManager::GetInstance();
    views->CreateSingleView();
    VxXForm xf = views->GetAllViews()[0]->GetXForm();
    xf.SetScale(xf.GetScale() * 4);
    views->GetAllViews()[1]->SetXForm(xf);
    scene->Frame();

    aux->AddAuxObject(new Recorder("screen", ObjectType_AuxLine2D));
    aux->AddAuxObject(new Recorder("text", ObjectType_AuxText));
    aux->AddAuxObject(new Recorder("billboard", ObjectType_AuxBillBoard3d));
    aux->AddAuxObject(new Recorder("texture", ObjectType_AuxTexture));
    auto* low = new Recorder("low", ObjectType_AuxPoint, true);
    low->SetHitPriority(AuxHitPriority_Low);
    auto* high = new Recorder("high", ObjectType_AuxPoint);
    high->SetHitPriority(AuxHitPriority_High);
    aux->AddAuxObject(low);
    aux->AddAuxObject(high);
    EXPECT_EQ(aux->GetTexts().size(), 1u) << "a billboard is not also a text";
    EXPECT_EQ(aux->GetBillBoards().size(), 1u);
    aux->HitTest(CPoint(1, 1));
    ASSERT_EQ(aux->GetHitObject(), low);
    g_log.clear();
    aux->Render();
    const std::vector<std::string> perView = {"texture", "billboard", "text",
                                              "high",    "low",       "hl:low"};
    std::vector<std::string> expected;
    for (const char* v : {"@1", "@2"}) {
        for (const std::string& s : perView) {
            expected.push_back(s + v);
        }
    }
    // Screen lines draw once, with the last view's matrix left in GL... or none at all: only
    // the count matters.
    ASSERT_EQ(g_log.size(), expected.size() + 1);
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(g_log[i], expected[i]) << i;
    }
    EXPECT_EQ(g_log.back().rfind("screen", 0), 0u);
}

TEST_F(AuxRegistryTest, RoutingOwnershipAndRemoval) {
    auto* a = new Recorder("a", ObjectType_AuxPoint);
    auto* tex = new Recorder("tex", ObjectType_AuxTexture);
    aux->AddAuxObject(nullptr);
    aux->AddAuxObject(a);
    aux->AddAuxObject(a);
    aux->AddAuxObject(tex);
    aux->AddAuxObject(tex);
    EXPECT_EQ(aux->GetAuxObjects().size(), 1u);
    EXPECT_EQ(aux->GetTexture().size(), 1u) << "a second add must not store a second pointer";

    // An object the registry does not hold is neither deleted nor does it clear the hit.
    Recorder stranger("stranger", ObjectType_AuxPoint);
    aux->SetHitObject(a);
    aux->RemoveAuxObject(&stranger, true);
    aux->RemoveAuxObject(nullptr, true);
    EXPECT_EQ(g_deleted, 0);
    EXPECT_EQ(aux->GetHitObject(), a);

    // Handing back: the hit object goes, the object lives.
    aux->RemoveAuxObject(a, false);
    EXPECT_EQ(aux->GetHitObject(), nullptr);
    EXPECT_EQ(g_deleted, 0);
    EXPECT_TRUE(aux->GetAuxObjects().empty());
    aux->AddAuxObject(a);
    aux->RemoveAuxObject(a, true);
    EXPECT_EQ(g_deleted, 1);

    // Clear deletes every container's objects once and forgets the hit object.
    aux->AddAuxObject(new Recorder("b", ObjectType_AuxPoint));
    aux->AddAuxObject(new Recorder("t", ObjectType_AuxText));
    aux->AddAuxObject(new Recorder("s", ObjectType_AuxLine2D));
    aux->AddAuxObject(new Recorder("bb", ObjectType_AuxBillBoard3d));
    aux->SetHitObject(tex);
    aux->Clear();
    EXPECT_EQ(g_deleted, 6);
    EXPECT_EQ(aux->GetHitObject(), nullptr);
    aux->DoSelect(CPoint(0, 0)); // nothing to select, nothing freed touched
    aux->DrawAuxObject(nullptr);
    aux->Render();
}

TEST_F(AuxRegistryTest, HitWalkFollowsPriorityThenAddressAndStopsOnlyWhereAsked) {
    // Priority first, whatever the addresses.
    auto* low = new Recorder("low", ObjectType_AuxPoint, true);
    low->SetHitPriority(AuxHitPriority_Low);
    auto* high = new Recorder("high", ObjectType_AuxPoint, true);
    high->SetHitPriority(AuxHitPriority_High);
    aux->AddAuxObject(low);
    aux->AddAuxObject(high);
    aux->HitTest(CPoint(0, 0));
    EXPECT_EQ(aux->GetHitObject(), high);
    EXPECT_EQ(g_log, (std::vector<std::string>{"hit:high"}));
    aux->Clear();

    // Equal priorities: the higher address is asked first and, stopping, wins.
    auto* x = new Recorder("x", ObjectType_AuxPoint, true);
    auto* y = new Recorder("y", ObjectType_AuxPoint, true);
    aux->AddAuxObject(x);
    aux->AddAuxObject(y);
    aux->HitTest(CPoint(0, 0));
    EXPECT_EQ(aux->GetHitObject(), x > y ? x : y);
    aux->Clear();

    // A hit that lets the search go on is kept unless a later object is hit too.
    auto* goOn = new Recorder("goOn", ObjectType_AuxPoint, true, false);
    goOn->SetHitPriority(AuxHitPriority_High);
    auto* later = new Recorder("later", ObjectType_AuxPoint, false);
    aux->AddAuxObject(goOn);
    aux->AddAuxObject(later);
    g_log.clear();
    aux->HitTest(CPoint(0, 0));
    EXPECT_EQ(aux->GetHitObject(), goOn);
    EXPECT_EQ(g_log, (std::vector<std::string>{"hit:goOn", "hit:later"}));
    aux->RemoveAuxObject(later, true);
    auto* laterHit = new Recorder("laterHit", ObjectType_AuxPoint, true);
    aux->AddAuxObject(laterHit);
    aux->HitTest(CPoint(0, 0));
    EXPECT_EQ(aux->GetHitObject(), laterHit);

    // Hidden or unhitable objects of the set are not asked; textures are asked whatever their
    // flags, from the last added, and only when the set gave nothing.
    goOn->SetVisible(0);
    laterHit->SetHitable(false);
    auto* tex1 = new Recorder("tex1", ObjectType_AuxTexture, true);
    auto* tex2 = new Recorder("tex2", ObjectType_AuxTexture, true);
    tex2->SetVisible(0);
    aux->AddAuxObject(tex1);
    aux->AddAuxObject(tex2);
    g_log.clear();
    aux->HitTest(CPoint(0, 0));
    EXPECT_EQ(aux->GetHitObject(), tex2);
    EXPECT_EQ(g_log, (std::vector<std::string>{"hit:tex2"}));

    // Selection flips on the hit object and flips back.
    aux->DoSelect(CPoint(0, 0));
    EXPECT_TRUE(tex2->IsSelected());
    aux->DoSelect(CPoint(0, 0));
    EXPECT_FALSE(tex2->IsSelected());
    aux->RemoveAuxObject(tex2, true);
    EXPECT_EQ(aux->GetHitObject(), nullptr);
}

TEST(AuxKindTest, TagsAreExactAndSixtyFourBitsWide) {
    VxAuxBox box;
    VxAuxCurve curve;
    VxAuxPoint point;
    EXPECT_EQ(box.GetObjectType(), ObjectType_AuxBox);
    EXPECT_TRUE(box.IsKindOf(ObjectType_AuxBox));
    EXPECT_TRUE(box.IsKindOf(ObjectType_AuxObject));
    EXPECT_TRUE(box.IsKindOf(ObjectType_Object));
    // 0x80000000 must not be read as a sign or as any other tag, nor a 33-bit tag as zero.
    EXPECT_FALSE(box.IsKindOf(static_cast<ObjectType_e>(0xFFFFFFFF80000000ULL)));
    EXPECT_FALSE(box.IsKindOf(ObjectType_AuxMarker));
    EXPECT_FALSE(point.IsKindOf(ObjectType_AuxMarker));
    EXPECT_FALSE(point.IsKindOf(ObjectType_AuxArrow));
    EXPECT_EQ(curve.GetObjectType(), ObjectType_AuxObject);
    EXPECT_FALSE(curve.IsKindOf(ObjectType_AuxLine));
}

// The buffer manager outlives the registry, so pipes still registered at exit free their
// buffers into a live manager: clean under AddressSanitizer.
TEST_F(AuxRegistryTest, ExitWithPipesRegisteredIsClean) {
    // A fresh process runs the statement: a forked one would inherit the renderer's threads.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The GL context is never released, on purpose; in a sanitizer build the leak check would
    // report it and turn the exit status into 1. The child looks for memory errors only.
    const char* asan = std::getenv("ASAN_OPTIONS");
    const std::string options =
        std::string(asan ? asan : "") + (asan ? ":" : "") + "detect_leaks=0";
    setenv("ASAN_OPTIONS", options.c_str(), 1);
    EXPECT_EXIT(
        {
            VxBSplineCurve* c = VxBSplineCurve::CreateInterpolateCurve(
                {VxPoint(0, 0, 0), VxPoint(2, 3, 0), VxPoint(4, 0, 1)}, false);
            for (int i = 0; i < 3; ++i) {
                auto* pipe = new VxAuxPipeLine(c);
                aux->AddAuxObject(pipe);
            }
            delete c;
            aux->Render();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

} // namespace
