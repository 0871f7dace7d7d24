// The overlay cache on the synthetic patient: what each overlay puts into the aux registry and
// into the cache's own containers when shown, shown again and hidden; what Clear leaves; quiet
// returns without a model; the per-tooth hook; the key point's odd ownership; and that a
// thousand show and hide cycles of every overlay leave no memory behind.
#include "VxCacheStuffProbe.h"
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>
#include <VxCaseOverlays.h>

#include <GL/glew.h>

#include <aux/VxAuxRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <malloc.h>

#include <functional>
#include <string>
#include <vector>

namespace {

VxAuxRender* Aux() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

// What the registry holds, container by container, and what the cache holds of its own.
struct Counts {
    size_t set = 0, textures = 0, billboards = 0, lines = 0, texts = 0;
    size_t labels = 0, marks = 0, facc = 0;
    static Counts Now() {
        Counts c;
        c.set = Aux()->GetAuxObjects().size();
        c.textures = Aux()->GetTexture().size();
        c.billboards = Aux()->GetBillBoards().size();
        c.lines = Aux()->GetScreenLines().size();
        c.texts = Aux()->GetTexts().size();
        c.labels = VxCacheStuffProbe::Labels();
        c.marks = VxCacheStuffProbe::Marks();
        c.facc = VxCacheStuffProbe::FaccCurves();
        return c;
    }
    bool operator==(const Counts& o) const {
        return set == o.set && textures == o.textures && billboards == o.billboards &&
               lines == o.lines && texts == o.texts && labels == o.labels && marks == o.marks &&
               facc == o.facc;
    }
};

std::ostream& operator<<(std::ostream& os, const Counts& c) {
    return os << "{set " << c.set << ", textures " << c.textures << ", billboards " << c.billboards
              << ", lines " << c.lines << ", texts " << c.texts << ", labels " << c.labels
              << ", marks " << c.marks << ", facc " << c.facc << "}";
}

struct Overlay {
    std::string name;
    void (VxCacheStuff::*show)(bool);
    // What one show adds, from the case's own data.
    std::function<Counts(const VxCase&)> added;
};

size_t TeethWithFacc(const VxCase& c) {
    size_t n = 0;
    for (const VxToothRef& r : c.toothRefs) {
        n += r.GetFacc().GetToothCurve() != nullptr ? 1 : 0;
    }
    return n;
}

std::vector<Overlay> AllOverlays() {
    using C = VxCacheStuff;
    const auto set = [](size_t n) {
        return [n](const VxCase&) {
            Counts c;
            c.set = n;
            return c;
        };
    };
    const auto texture = [](const VxCase&) {
        Counts c;
        c.textures = 1;
        return c;
    };
    return {
        {"numbers", &C::SetShowToothFDI,
         [](const VxCase& k) {
             Counts c;
             c.labels = TeethWithFacc(k);
             return c;
         }},
        {"facc", &C::SetShowFacc,
         [](const VxCase& k) {
             Counts c;
             c.facc = TeethWithFacc(k);
             return c;
         }},
        {"refs", &C::SetShowToothRef,
         [](const VxCase& k) {
             // Two curves a tooth, and a point a reference vertex and feature point.
             Counts c;
             for (const VxToothRef& r : k.toothRefs) {
                 c.set += 2 + r.GetFacc().GetAllRefVtx().size() +
                          r.GetMidCurve().GetAllRefVtx().size() + r.GetFeaturePoint().size();
             }
             return c;
         }},
        {"archwire", &C::SetShowArchWire, set(2)},
        {"midplane", &C::SetShowMiddlePlane, set(1)},
        {"backplane", &C::SetShowBackBoundaryPlane, set(1)},
        {"beauty", &C::SetShowBeautyPlane,
         [](const VxCase& k) {
             std::vector<VxPoint> pts;
             k.upperJawRef->GetBeautyPlane()->GetBeauPt(pts);
             Counts c;
             c.set = 1 + pts.size();
             return c;
         }},
        {"upplane", &C::SetShowUpJawPlane, set(1)},
        {"lowplane", &C::SetShowDownJawPlane, set(1)},
        {"upline", &C::SetShowUpToothLine, set(1)},
        {"lowline", &C::SetShowDownToothLine, set(1)},
        {"xray", &C::SetShowXImg, texture},
        {"front", &C::SetShowFrontImg, texture},
        {"profile", &C::SetShowProfile, texture},
        {"panoramic", &C::SetShowPanoramic,
         [](const VxCase& k) {
             Counts c;
             c.textures = 1;
             c.set = k.panMeasure.GetDatas().size(); // the markers
             return c;
         }},
    };
}

Counts Plus(Counts a, const Counts& b) {
    a.set += b.set;
    a.textures += b.textures;
    a.billboards += b.billboards;
    a.lines += b.lines;
    a.texts += b.texts;
    a.labels += b.labels;
    a.marks += b.marks;
    a.facc += b.facc;
    return a;
}

class OverlayCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!VxOverlayTestScene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(VxTestRenderPath::Fixed);
        VxOverlayTestScene::Look(VxViewManager::View_Front, 0);
        cache = VxOverlayTestScene::Cache();
    }
    void TearDown() override { VxOverlayTestScene::Reset(); }

    VxCacheStuff* cache = nullptr;
};

TEST_F(OverlayCacheTest, EachOverlayAddsItsObjectsOnceAndTakesThemAllBack) {
    const VxCase& c = VxOverlayTestScene::Case();
    for (const Overlay& o : AllOverlays()) {
        SCOPED_TRACE(o.name);
        const Counts start = Counts::Now();
        const Counts shown = Plus(start, o.added(c));
        (cache->*o.show)(true);
        EXPECT_EQ(Counts::Now(), shown);
        (cache->*o.show)(true); // rebuilt, not doubled
        EXPECT_EQ(Counts::Now(), shown);
        (cache->*o.show)(false);
        EXPECT_EQ(Counts::Now(), start);
        (cache->*o.show)(false); // nothing shown: nothing happens
        EXPECT_EQ(Counts::Now(), start);
    }
}

TEST_F(OverlayCacheTest, MovementMarksStayOffTheRegistry) {
    const Counts start = Counts::Now();
    cache->SetShowMoveDiff(true);
    const size_t marks = VxCacheStuffProbe::Marks();
    // The synthetic plan moves the crowded front teeth well past the small minimums.
    EXPECT_GT(marks, 0u);
    EXPECT_LE(marks, VxOverlayTestScene::Case().teeth.size());
    Counts shown = start;
    shown.marks = marks;
    EXPECT_EQ(Counts::Now(), shown);
    cache->SetShowMoveDiff(true);
    EXPECT_EQ(Counts::Now(), shown);
    cache->SetShowMoveDiff(false);
    EXPECT_EQ(Counts::Now(), start);
}

TEST_F(OverlayCacheTest, KeyPointIsTakenOutButKeptAndOnlyClearFreesIt) {
    const size_t start = Aux()->GetAuxObjects().size();
    cache->SetShowKeyPoint(true);
    VxAuxPoint* first = VxCacheStuffProbe::KeyPoint();
    ASSERT_NE(first, nullptr) << "the synthetic patient has every input of the key point";
    EXPECT_EQ(Aux()->GetAuxObjects().size(), start + 1);
    cache->SetShowKeyPoint(false);
    EXPECT_EQ(Aux()->GetAuxObjects().size(), start);
    EXPECT_EQ(VxCacheStuffProbe::KeyPoint(), first) << "the pointer is kept";
    // On, off, on: one point at a time, however often.
    for (int i = 0; i < 20; ++i) {
        cache->SetShowKeyPoint(true);
        cache->SetShowKeyPoint(false);
    }
    EXPECT_EQ(Aux()->GetAuxObjects().size(), start);
    // Shown twice: the earlier point stays registered beside the new one.
    cache->SetShowKeyPoint(true);
    cache->SetShowKeyPoint(true);
    EXPECT_EQ(Aux()->GetAuxObjects().size(), start + 2);
    cache->Clear();
    EXPECT_EQ(VxCacheStuffProbe::KeyPoint(), nullptr);
    EXPECT_EQ(Aux()->GetAuxObjects().size(), start + 1) << "the registry owns the earlier one";
}

TEST_F(OverlayCacheTest, ClearLeavesTheArchWireAndNothingElse) {
    const Counts start = Counts::Now();
    ASSERT_GT(VxCacheStuffProbe::AnchorGrids(), 0u);
    for (const Overlay& o : AllOverlays()) {
        (cache->*o.show)(true);
    }
    cache->SetShowMoveDiff(true);
    cache->SetShowKeyPoint(true);
    cache->Clear();
    Counts left = start;
    left.set += 2;
    EXPECT_EQ(Counts::Now(), left);
    EXPECT_EQ(VxCacheStuffProbe::ArchWires(), 2u);
    for (VxAuxObject* wire : VxCacheStuffProbe::ArchWire()) {
        EXPECT_EQ(Aux()->GetAuxObjects().count(wire), 1u);
    }
    EXPECT_EQ(VxCacheStuffProbe::AnchorGrids(), 0u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(VxCacheStuffProbe::Picture(i), nullptr) << i;
    }
    cache->SetShowArchWire(false);
    EXPECT_EQ(Counts::Now(), start);
}

TEST_F(OverlayCacheTest, WithoutAModelOrItsDataNothingIsShown) {
    const Counts start = Counts::Now();
    cache->SetModel(nullptr);
    for (const Overlay& o : AllOverlays()) {
        if (o.name == "numbers" || o.name == "facc" || o.name == "xray" || o.name == "front" ||
            o.name == "profile" || o.name == "panoramic") {
            (cache->*o.show)(true);
        }
    }
    cache->SetShowMoveDiff(true);
    cache->SetShowKeyPoint(true);
    EXPECT_EQ(Counts::Now(), start);
    EXPECT_EQ(VxCacheStuffProbe::KeyPoint(), nullptr);
    cache->UpdatePicture(); // nothing shown: nothing to rebuild
    EXPECT_EQ(Counts::Now(), start);

    // A model without pictures or measures: the tooth overlays still show, the pictures not.
    VxModel bare;
    for (const auto& t : VxOverlayTestScene::Case().teeth) {
        bare.AddEntity(t.get());
    }
    cache->SetModel(&bare);
    cache->SetShowFrontImg(true);
    cache->SetShowPanoramic(true);
    cache->SetShowKeyPoint(true);
    EXPECT_EQ(Counts::Now(), start);
    cache->SetShowToothFDI(true);
    EXPECT_GT(VxCacheStuffProbe::Labels(), 0u);
    cache->SetShowToothFDI(false);
    VxOverlayTestScene::Overlays().Install(VxOverlayTestScene::Case());
}

TEST_F(OverlayCacheTest, EachToothCarriesLabelFaccAndMarkInThatOrder) {
    VxTooth* tooth = VxOverlayTestScene::Case().FindTooth(11);
    ASSERT_NE(tooth, nullptr);
    VxAuxObject sentinel;
    std::vector<VxAuxObject*> stuff{&sentinel};
    cache->GetDisplayStuffByTooth(tooth, stuff);
    EXPECT_EQ(stuff, std::vector<VxAuxObject*>{&sentinel});

    cache->SetShowMoveDiff(true);
    cache->SetShowFacc(true);
    cache->SetShowToothFDI(true);
    ASSERT_NE(VxCacheStuffProbe::Mark(tooth), nullptr) << "tooth 11 moves past its minimums";
    cache->GetDisplayStuffByTooth(tooth, stuff);
    const std::vector<VxAuxObject*> expected{&sentinel, VxCacheStuffProbe::Label(tooth),
                                             VxCacheStuffProbe::Facc(tooth),
                                             VxCacheStuffProbe::Mark(tooth)};
    EXPECT_EQ(stuff, expected);

    // A tooth of no overlay leaves the list alone.
    VxTooth stranger(11);
    std::vector<VxAuxObject*> none{&sentinel};
    cache->GetDisplayStuffByTooth(&stranger, none);
    EXPECT_EQ(none, std::vector<VxAuxObject*>{&sentinel});
}

// GL state a frame with every overlay might disturb.
struct GLState {
    GLint texture = 0, blendSrc = 0, blendDst = 0, unpack = 0, program = 0, matrixMode = 0;
    GLboolean blend = 0, depthTest = 0, depthMask = 0, texture2d = 0, lighting = 0;
    GLfloat colour[4] = {0, 0, 0, 0};
    static GLState Now() {
        GLState s;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &s.texture);
        glGetIntegerv(GL_BLEND_SRC, &s.blendSrc);
        glGetIntegerv(GL_BLEND_DST, &s.blendDst);
        glGetIntegerv(GL_UNPACK_ALIGNMENT, &s.unpack);
        glGetIntegerv(GL_CURRENT_PROGRAM, &s.program);
        glGetIntegerv(GL_MATRIX_MODE, &s.matrixMode);
        s.blend = glIsEnabled(GL_BLEND);
        s.depthTest = glIsEnabled(GL_DEPTH_TEST);
        glGetBooleanv(GL_DEPTH_WRITEMASK, &s.depthMask);
        s.texture2d = glIsEnabled(GL_TEXTURE_2D);
        s.lighting = glIsEnabled(GL_LIGHTING);
        glGetFloatv(GL_CURRENT_COLOR, s.colour);
        return s;
    }
    bool operator==(const GLState& o) const {
        return texture == o.texture && blendSrc == o.blendSrc && blendDst == o.blendDst &&
               unpack == o.unpack && program == o.program && matrixMode == o.matrixMode &&
               blend == o.blend && depthTest == o.depthTest && depthMask == o.depthMask &&
               texture2d == o.texture2d && lighting == o.lighting &&
               std::equal(colour, colour + 4, o.colour);
    }
};

class OverlayCacheStateTest : public OverlayCacheTest,
                              public ::testing::WithParamInterface<VxTestRenderPath> {};

TEST_P(OverlayCacheStateTest, ShowingAndDrawingEveryOverlayLeavesGLAsItWas) {
    VxApplyRenderPath(GetParam());
    VxOverlayTestScene::Frame();
    while (glGetError() != GL_NO_ERROR) {
    }
    const GLState before = GLState::Now();
    for (const Overlay& o : AllOverlays()) {
        (cache->*o.show)(true);
    }
    cache->SetShowMoveDiff(true);
    cache->SetShowKeyPoint(true);
    EXPECT_TRUE(GLState::Now() == before) << "showing";
    VxOverlayTestScene::Frame();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_TRUE(GLState::Now() == before) << "drawing";
}

VX_BOTH_RENDER_PATHS(OverlayCacheStateTest);

size_t HeapInUse() {
    return mallinfo2().uordblks;
}

TEST_F(OverlayCacheTest, AThousandShowAndHideCyclesLeaveNoMemoryBehind) {
    const std::vector<Overlay> all = AllOverlays();
    const auto cycle = [&] {
        for (const Overlay& o : all) {
            (cache->*o.show)(true);
        }
        cache->SetShowMoveDiff(true);
        cache->SetShowKeyPoint(true);
        for (const Overlay& o : all) {
            (cache->*o.show)(false);
        }
        cache->SetShowMoveDiff(false);
        cache->SetShowKeyPoint(false);
    };
    const Counts start = Counts::Now();
    for (int i = 0; i < 20; ++i) { // settle caches (glyphs, fonts, driver pools)
        cycle();
    }
    const size_t before = HeapInUse();
    for (int i = 0; i < 1000; ++i) {
        cycle();
    }
    const size_t after = HeapInUse();
    EXPECT_EQ(Counts::Now(), start);
    // One cycle's labels alone are well over 100 KB: a leak of any kind shows at once.
    EXPECT_LT(after, before + 256 * 1024) << "heap grew from " << before << " to " << after;
}

} // namespace
