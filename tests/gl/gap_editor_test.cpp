// The in-view gap editor on the synthetic patient (seed 1), one full-window front view on the
// shader path over a white page. The pick pass is also drawn into the window through the
// renderer's private walk, which gives the map of every code: each element is then picked at the
// centre of its own pixels, and the visible picture must show something there. A scripted host
// hovers, clicks, reads the events and rebuilds, as a program would. The view is framed onto the
// crowns as the programs frame it, at the programs' default 1280 x 800, where the cards keep their
// pixel size and the gaps spread apart. Goldens, looked at when made:
//  - gap_editor_idle.png: add and delete buttons at each gap of the front half; four cards, each
//    on its own green leader with its arrows and lock: ".5" (43|44, up arrow grey at the top of
//    its range) on the left, ".2" (41|42, closed lock, down arrow grey), ".3" below the central
//    incisors (11|21), and the blue space card "1.2" (21|22) on the right; no card covers another;
//  - gap_editor_list.png: the same with the add list of the lower central gap open beside the
//    ".3" card, its first row "在31与41之间增加片切" highlighted under the cursor.
// The pictures also go to test-output/.
#include "VxGLTest.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"
#include "VxTestRenderPath.h"

#include "VxAppEditor.h"

#include <VxSyntheticPatient.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <gapeditor/EventInfoCreateModify.h>
#include <gapeditor/ModelCreateModify.h>
#include <gapeditor/ViewControllerCreateModify.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <memory>
#include <tuple>

class RenderV1Probe {
public:
    static void PickPass(VxViewRegion* view) { RenderV1::GetInstance()->WalkEditor(view, true); }
};

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

using Code = std::array<unsigned char, 3>;

struct Spot {
    int x = 0;
    int y = 0;
    int pixels = 0;
};

class GapEditorTest : public ::testing::Test {
public:
    static void SetUpTestSuite() {
        render = VxRenderStatus::GetInstance()->GetRender();
        const std::string white = VxTestOutputDir() + "/gap_editor_white.bmp";
        VxWriteBmp24(white, 4, 4, VxTestRgb{255, 255, 255});
        render->SetBkGround(CString::FromUtf8(white));
        window = VxNativeWindow::CreateOffscreen(kW, kH).release();
        created = window && render->Create(window, 24, 8);
    }

protected:
    void SetUp() override {
        if (!created) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
        render->GetGLContext()->MakeCurrent();
        VxApplyRenderPath(VxTestRenderPath::Shader);
        patient = VxSyntheticPatient::Generate(1);
        patient->Install();
        render->ResizeViewport(kW, kH);
        render->SetModel(&patient->model);
        views = VxViewManager::GetInstance();
        views->Clear();
        views->SetTotalViewSize(kW, kH);
        views->CreateSingleView();
        // Zoomed onto the crowns as the programs show the editor.
        VxAppEditor::FrameDentition(patient->model, View());

        *Editor() = ModelCreateModify();
        *EventInfoCreateModify::getInstance() = EventInfoCreateModify();
        *ViewControllerCreateModify::getInstance() = ViewControllerCreateModify();
        plain = Frame(); // the records are placed from this frame's matrices
        Editor()->SetIsShowIPR(true);
        Editor()->SetIsOnCreateModified(true);
        Rebuild();
    }
    void TearDown() override {
        if (created && patient) {
            *Editor() = ModelCreateModify();
            views->Clear();
            render->SetModel(nullptr);
            patient->Uninstall();
        }
    }

    static ModelCreateModify* Editor() { return ModelCreateModify::getInstance(); }
    static ViewControllerCreateModify* Controller() {
        return ViewControllerCreateModify::getInstance();
    }
    static EventInfoCreateModify* Events() { return EventInfoCreateModify::getInstance(); }
    VxViewRegion* View() const { return views->GetView(0); }

    // The FDI numbers of the two crowns nearest to a gap's anchor, the smaller first.
    std::pair<int, int> Teeth(const VxPoint& p, bool upper) const {
        std::vector<std::pair<double, int>> byDistance;
        for (VxTooth* t : patient->model.GetTeeth()) {
            if (t->IsUp() == upper) {
                byDistance.emplace_back((t->GetBBox().Center() - p).Magnitude(), t->GetFDI());
            }
        }
        std::sort(byDistance.begin(), byDistance.end());
        if (byDistance.size() < 2) {
            return {0, 0};
        }
        return {std::min(byDistance[0].second, byDistance[1].second),
                std::max(byDistance[0].second, byDistance[1].second)};
    }
    // The host's plan, as the programs start it: most gaps untouched; a reduction of 0.3
    // between the central incisors, a space of 1.2 beside them, a locked smallest reduction and
    // one at the top of its range, spread so that no card covers another. Ids are the pair's FDI
    // numbers; the overrides replace values by record index.
    std::vector<std::tuple<int, int, bool, double>> Plan(bool upper) const {
        static const std::map<std::pair<int, int>, std::pair<double, bool>> kPlan = {
            {{11, 21}, {0.3, false}},
            {{21, 22}, {-1.2, false}},
            {{41, 42}, {0.2, true}},
            {{43, 44}, {0.5, false}},
        };
        const std::vector<VxPoint> starts =
            upper ? Editor()->GetupGumGapStartPointList() : Editor()->GetdownGumGapStartPointList();
        std::vector<std::tuple<int, int, bool, double>> plan;
        for (size_t i = 0; i < starts.size(); ++i) {
            const auto [first, second] = Teeth(starts[i], upper);
            const auto planned = kPlan.find({first, second});
            double v = planned != kPlan.end() ? planned->second.first : 0.0;
            const bool lock = planned != kPlan.end() && planned->second.second;
            const auto it = overrides.find(std::make_pair(upper, static_cast<int>(i)));
            if (it != overrides.end()) {
                v = it->second;
            }
            plan.emplace_back(first, second, lock, v);
        }
        return plan;
    }
    void Rebuild() {
        Editor()->InitData(&patient->model, {}, {}); // finds the gaps
        const auto zeros = [](size_t n) {
            return std::vector<std::tuple<int, int, double>>(n, std::make_tuple(0, 0, 0.0));
        };
        Editor()->InitData(&patient->model, zeros(Editor()->GetupGumGapStartPointList().size()),
                           zeros(Editor()->GetdownGumGapStartPointList().size()));
        Editor()->InitDatawithLock(&patient->model, Plan(true), Plan(false));
    }

    VxTestImage Frame() {
        EXPECT_TRUE(render->RenderScene(true));
        glFinish();
        VxTestImage img(kW, kH);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        for (size_t i = 3; i < img.rgba.size(); i += 4) {
            img.rgba[i] = 255;
        }
        return img;
    }

    // The pick pass drawn into the window after a frame: every code with the centre of its
    // pixels (moved onto the nearest pixel of its own when the centre falls outside them).
    std::map<Code, Spot> CodeMap() {
        Frame();
        GLfloat clear[4];
        glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(clear[0], clear[1], clear[2], clear[3]);
        // As the pick pass runs: no blending, no depth (its buffer has none).
        glPushAttrib(GL_ENABLE_BIT);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_CULL_FACE);
        RenderV1Probe::PickPass(View());
        glPopAttrib();
        VxTestImage img(kW, kH);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        for (size_t i = 0; i < img.rgba.size(); i += 4) {
            dump.rgba.resize(img.rgba.size());
            dump.width = kW;
            dump.height = kH;
            dump.rgba[i] = static_cast<std::uint8_t>(img.rgba[i] * 3);
            dump.rgba[i + 1] = static_cast<std::uint8_t>(img.rgba[i + 1] * 20);
            dump.rgba[i + 2] = static_cast<std::uint8_t>(img.rgba[i + 2]);
            dump.rgba[i + 3] = 255;
        }
        VxWritePng(VxTestOutputDir() + "/gap_editor_codes.png", dump);
        // Only pixels whose 3 x 3 neighbourhood carries the same code count: an element that
        // shows only as a sliver under later ones is not one a person could point at.
        const auto codeAt = [&img](int x, int y) {
            const std::uint8_t* p = img.Pixel(x, y);
            return Code{p[0], p[1], p[2]};
        };
        std::map<Code, std::vector<std::pair<int, int>>> interior;
        for (int y = 1; y + 1 < kH; ++y) {
            for (int x = 1; x + 1 < kW; ++x) {
                const Code c = codeAt(x, y);
                if (c[0] == 0) {
                    continue;
                }
                bool inside = true;
                for (int dy = -1; dy <= 1 && inside; ++dy) {
                    for (int dx = -1; dx <= 1 && inside; ++dx) {
                        inside = codeAt(x + dx, y + dy) == c;
                    }
                }
                if (inside) {
                    interior[c].emplace_back(x, y);
                }
            }
        }
        std::map<Code, Spot> spots;
        for (const auto& [code, pixels] : interior) {
            long sx = 0, sy = 0;
            for (const auto& p : pixels) {
                sx += p.first;
                sy += p.second;
            }
            const int n = static_cast<int>(pixels.size());
            const long cx = sx / n, cy = sy / n;
            // The interior pixel nearest to the centre.
            Spot spot{0, 0, n};
            long best = -1;
            for (const auto& p : pixels) {
                const long d = (p.first - cx) * (p.first - cx) + (p.second - cy) * (p.second - cy);
                if (best < 0 || d < best) {
                    best = d;
                    spot.x = p.first;
                    spot.y = p.second;
                }
            }
            spots[code] = spot;
        }
        return spots;
    }

    Code Pick(int x, int y) {
        const unsigned char* b = RenderV1::GetInstance()->ObjectSelected(View(), x, y);
        return b ? Code{b[0], b[1], b[2]} : Code{255, 255, 255};
    }
    // The first code of an element (and row) in the map.
    static const std::pair<const Code, Spot>* Find(const std::map<Code, Spot>& map, int element,
                                                   int row = 0) {
        for (const auto& entry : map) {
            if (entry.first[0] == element && entry.first[2] == row) {
                return &entry;
            }
        }
        return nullptr;
    }
    // The host's hover and click, as a program passes them.
    void Move(const Spot& s) {
        Frame();
        Controller()->SetupCurrentMouseState(s.x, s.y, View());
        Controller()->MouseLeftMoving();
    }
    void Release(const Spot& s) {
        Frame();
        Controller()->SetupCurrentMouseState(s.x, s.y, View());
        Controller()->MouseLeftReleased();
    }
    static int Differing(const VxTestImage& a, const VxTestImage& b, int x0, int y0, int x1,
                         int y1) {
        int n = 0;
        for (int y = std::max(0, y0); y < std::min(kH, y1); ++y) {
            for (int x = std::max(0, x0); x < std::min(kW, x1); ++x) {
                const std::uint8_t* p = a.Pixel(x, y);
                const std::uint8_t* q = b.Pixel(x, y);
                n += p[0] != q[0] || p[1] != q[1] || p[2] != q[2];
            }
        }
        return n;
    }

    static inline VxOpenGLRender* render = nullptr;
    static inline VxNativeWindow* window = nullptr;
    static inline bool created = false;
    std::unique_ptr<VxCase> patient;
    VxViewManager* views = nullptr;
    VxTestImage plain;
    VxTestImage dump;
    std::map<std::pair<bool, int>, double> overrides;
};

// Every element drawn is picked at its centre with its own code, shows in the picture there,
// and the background reads (0, 0, 0). The pick leaves the window's frame buffer bound and no
// GL error.
TEST_F(GapEditorTest, EveryDrawnElementPicksAtItsCentre) {
    const std::map<Code, Spot> map = CodeMap();
    const VxTestImage shown = Frame();
    VxWritePng(VxTestOutputDir() + "/gap_editor_shown.png", shown);
    std::set<int> elements;
    for (const auto& [code, spot] : map) {
        SCOPED_TRACE(std::to_string(code[0]) + "/" + std::to_string(code[1]) + "/" +
                     std::to_string(code[2]));
        EXPECT_EQ(Pick(spot.x, spot.y), code);
        EXPECT_GT(Differing(plain, shown, spot.x - 2, spot.y - 2, spot.x + 3, spot.y + 3), 0)
            << "nothing drawn at " << spot.x << "," << spot.y;
        elements.insert(code[0]);
    }
    for (int e : {11, 13, 21, 23, 31, 33, 35, 36, 41, 63}) {
        EXPECT_TRUE(elements.count(e)) << "element " << e << " is drawn somewhere";
    }
    EXPECT_EQ(Pick(3, 3), (Code{0, 0, 0}));
    EXPECT_EQ(Pick(kW - 3, kH / 2), (Code{0, 0, 0}));
    // Lower record 3 answers with id 103, when it is shown.
    bool lower3 = false;
    for (const auto& [code, spot] : map) {
        lower3 = lower3 || code[1] == 103;
    }
    EXPECT_TRUE(lower3);
    GLint framebuffer = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    EXPECT_EQ(framebuffer, 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// Drawing leaves GL state as it found it; the switches gate drawing and picking; bad regions
// fail quietly.
TEST_F(GapEditorTest, SwitchesStateAndQuietFailures) {
    const VxTestImage with = Frame();
    EXPECT_GT(Differing(plain, with, 0, 0, kW, kH), 2000);

    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    RenderV1::GetInstance()->Drawcreatemodify(View());
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    GLint program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDisable(GL_CULL_FACE); // the frame does not set it

    const std::map<Code, Spot> map = CodeMap();
    ASSERT_FALSE(map.empty());
    const Spot s = map.begin()->second;
    Editor()->SetIsOnCreateModified(false);
    EXPECT_EQ(Pick(s.x, s.y), (Code{0, 0, 0})) << "picking is off";
    Editor()->SetIsOnCreateModified(true);
    Editor()->SetIsShowIPR(false);
    const VxTestImage off = Frame();
    EXPECT_EQ(Differing(plain, off, 0, 0, kW, kH), 0) << "drawing is off";

    EXPECT_EQ(RenderV1::GetInstance()->ObjectSelected(nullptr, 1, 1), nullptr);
    RenderV1::GetInstance()->Drawcreatemodify(nullptr);
    VxViewRegion empty(CPoint(0, 0), 0, 0);
    const unsigned char* b = RenderV1::GetInstance()->ObjectSelected(&empty, 1, 1);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b[0] + b[1] + b[2], 0);
    EXPECT_EQ(Pick(-5, kH + 10), (Code{0, 0, 0})) << "outside the window";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// A hover step marks the element: the next pass reads its hover code and its triangle changes
// colour; leaving the record undoes it.
TEST_F(GapEditorTest, HoverChangesTheCodeAndTheColour) {
    const std::map<Code, Spot> map = CodeMap();
    const auto* up = Find(map, 31);
    ASSERT_NE(up, nullptr);
    const Spot s = up->second;
    const VxTestImage before = Frame();
    Move(s);
    EXPECT_EQ(Pick(s.x, s.y), (Code{32, up->first[1], 0}));
    const VxTestImage hovered = Frame();
    EXPECT_GT(Differing(before, hovered, s.x - 6, s.y - 6, s.x + 7, s.y + 7), 10);
    const std::uint8_t* p = hovered.Pixel(s.x, s.y);
    EXPECT_GT(p[1], p[2]) << "the hovered arrow is green";
    Move(Spot{3, 3, 1});
    if (up->first[1] != 0) {
        EXPECT_EQ(Pick(s.x, s.y)[0], 31) << "leaving the record undoes the mark";
    }
}

// A program's road through the editor: the up arrow raises 31 with the old value, the rebuild
// shows the new value; the lock toggles 21/23; the list rows raise 41, 51, 43, 53; a click on
// the background closes an open list with -1.
TEST_F(GapEditorTest, ScriptedHost) {
    std::map<Code, Spot> map = CodeMap();
    // The up arrow of the record whose card shows most, so its new value can be seen.
    const std::pair<const Code, Spot>* up = nullptr;
    int best = 0;
    for (const auto& entry : map) {
        if (entry.first[0] != 31) {
            continue;
        }
        for (unsigned char cardCode : {63, 41}) {
            const auto c = map.find(Code{cardCode, entry.first[1], 0});
            if (c != map.end() && c->second.pixels > best) {
                best = c->second.pixels;
                up = &entry;
            }
        }
    }
    ASSERT_NE(up, nullptr);
    const int id = up->first[1];
    const bool upper = id < 100;
    const int index = upper ? id : id - 100;
    const float old = Editor()->Record(id)->value;
    const auto cardIt = map.find(
        Code{static_cast<unsigned char>(old > 0 ? 63 : 41), static_cast<unsigned char>(id), 0});
    ASSERT_NE(cardIt, map.end());
    const auto* card = &*cardIt;
    const VxTestImage oldCard = Frame();
    Move(up->second);
    Move(up->second);
    Release(up->second);
    EXPECT_TRUE(Controller()->GetsomeSelected());
    EXPECT_EQ(Events()->GetEventInfo(), EventValueUp);
    const EventIPRinfo info = Events()->GetIPRInfo();
    EXPECT_FLOAT_EQ(static_cast<float>(info.value), old);
    EXPECT_EQ(info.isUp, upper);
    EXPECT_EQ(info.index, index);
    // The host applies it and rebuilds.
    overrides[{upper, index}] = old + (old < 0 ? -0.1 : 0.1);
    Rebuild();
    EXPECT_FLOAT_EQ(Editor()->Record(id)->value, static_cast<float>(old + (old < 0 ? -0.1 : 0.1)));
    const VxTestImage newCard = Frame();
    EXPECT_GT(Differing(oldCard, newCard, card->second.x - 30, card->second.y - 30,
                        card->second.x + 30, card->second.y + 30),
              10)
        << "the card's text changed";

    // Lock toggles.
    map = CodeMap();
    const auto* lock = Find(map, 21);
    ASSERT_NE(lock, nullptr);
    Move(lock->second);
    Move(lock->second);
    Release(lock->second);
    EXPECT_EQ(Events()->GetEventInfo(), EventUnlocked);
    map = CodeMap();
    const auto* unlock = Find(map, 23);
    ASSERT_NE(unlock, nullptr);
    Move(unlock->second);
    Move(unlock->second);
    Release(unlock->second);
    EXPECT_EQ(Events()->GetEventInfo(), EventLocked);

    // Lists: add list (button 11) rows 101 and 105; delete lists of a reduction and a space.
    struct Case {
        int button;
        int list;
        int row;
        EnumEventInfoCreateModify event;
        bool reduction;
    };
    for (const Case& c :
         {Case{11, 52, 101, EventAddReduction, false}, Case{11, 52, 105, EventAddGap, false},
          Case{13, 55, 101, EventDeleteReduction, true},
          Case{13, 57, 101, EventDeleteGap, false}}) {
        SCOPED_TRACE(c.event);
        overrides.clear();
        Rebuild();
        map = CodeMap();
        const std::pair<const Code, Spot>* button = nullptr;
        for (const auto& entry : map) {
            const GumGapGraphicsObject* r = Editor()->Record(entry.first[1]);
            if (entry.first[0] == c.button && r &&
                (c.button == 11 || (r->value > 0) == c.reduction)) {
                button = &entry;
                break;
            }
        }
        ASSERT_NE(button, nullptr);
        // A copy: the map it lies in is replaced below.
        const std::pair<const Code, Spot> pressed = *button;
        Move(pressed.second);
        Move(pressed.second);
        Release(pressed.second);
        EXPECT_EQ(Events()->GetEventInfo(), EventListOpened);
        map = CodeMap();
        const auto* row = Find(map, c.list, c.row);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->first[1], pressed.first[1]);
        Move(row->second);
        EXPECT_EQ(Pick(row->second.x, row->second.y)[0], c.list + (c.row == 101 ? 1 : 2));
        Release(row->second);
        EXPECT_EQ(Events()->GetEventInfo(), c.event);
        EXPECT_FALSE(Controller()->GetsomeSelected());
    }

    // An open list closes on a click on the background, with event -1.
    overrides.clear();
    Rebuild();
    map = CodeMap();
    const auto* add = Find(map, 11);
    ASSERT_NE(add, nullptr);
    ASSERT_NE(add->first[1], 0) << "record 0 keeps its mark over the background";
    Move(add->second);
    Move(add->second);
    Release(add->second);
    ASSERT_EQ(Editor()->Record(add->first[1])->listState, 2);
    Move(Spot{3, 3, 1});
    Release(Spot{3, 3, 1});
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);
    EXPECT_EQ(Editor()->Record(add->first[1])->listState, 1);
}

// A reduction's list: state 5 draws its row plain, state 6 in the hover colour; the row picks as
// element 55 or 56 with row code 101.
TEST_F(GapEditorTest, ListRowHoverColour) {
    const std::map<Code, Spot> map = CodeMap();
    const auto* card = Find(map, 63);
    ASSERT_NE(card, nullptr);
    const int id = card->first[1];
    const auto hoverPixels = [this](const Spot& row) {
        const VxTestImage img = Frame();
        int n = 0;
        for (int y = row.y - 8; y <= row.y + 8; ++y) {
            for (int x = row.x - 80; x <= row.x + 80; ++x) {
                if (x < 0 || y < 0 || x >= kW || y >= kH) {
                    continue;
                }
                const std::uint8_t* p = img.Pixel(x, y);
                n += p[0] == 120 && p[1] == 187 && p[2] == 240;
            }
        }
        return n;
    };
    for (int state : {5, 6}) {
        Editor()->Record(id)->listState = state;
        const std::map<Code, Spot> lists = CodeMap();
        const auto row = lists.find(
            Code{static_cast<unsigned char>(50 + state), static_cast<unsigned char>(id), 101});
        ASSERT_NE(row, lists.end()) << state;
        EXPECT_EQ(Pick(row->second.x, row->second.y), row->first);
        if (state == 5) {
            EXPECT_EQ(hoverPixels(row->second), 0);
        } else {
            EXPECT_GT(hoverPixels(row->second), 500);
        }
    }
}

// The pictures a clinician looks at.
TEST_F(GapEditorTest, Goldens) {
    VxExpectMatchesGolden(Frame(), "gap_editor_idle.png");
    std::map<Code, Spot> map = CodeMap();
    // The add button nearest the middle, so that its list lies whole in the picture.
    const std::pair<const Code, Spot>* add = nullptr;
    for (const auto& entry : map) {
        const auto off = [](const Spot& s) {
            return std::abs(s.x - kW / 2) + std::abs(s.y - kH / 2);
        };
        if (entry.first[0] == 11 && (!add || off(entry.second) < off(add->second))) {
            add = &entry;
        }
    }
    ASSERT_NE(add, nullptr);
    Move(add->second);
    Move(add->second);
    Release(add->second);
    map = CodeMap();
    const auto* row = Find(map, 52, 101);
    ASSERT_NE(row, nullptr);
    Move(row->second);
    VxExpectMatchesGolden(Frame(), "gap_editor_list.png");
}

} // namespace
