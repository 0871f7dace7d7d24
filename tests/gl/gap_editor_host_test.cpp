// The programs' host of the gap editor (VxAppEditor, vxview's E key) driven on real GL the way a
// person drives it: the window is drawn, the mouse goes onto an element and stays there for a
// frame, the button comes up, the printed line is read and the plan and the picture are looked
// at. The synthetic patient (seed 1) in one front view, shader path, framed as the programs
// frame it. Where each element lies is read from the editor's own pick pass drawn into the
// window, as a person would find it by eye.
#include "VxGLTest.h"
#include "VxTestImage.h"

#include <VxAppEditor.h>
#include <VxAppScene.h>
#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <gapeditor/ModelCreateModify.h>
#include <interfaces/CPoint.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <shader/RenderV1.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class RenderV1Probe {
public:
    static void PickPass(VxViewRegion* view) { RenderV1::GetInstance()->WalkEditor(view, true); }
};

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

// Pick codes: element, record id, list row.
using Code = std::array<unsigned char, 3>;
constexpr unsigned char kUpArrow = 31;
constexpr unsigned char kLockOn = 21;
constexpr unsigned char kLockOff = 23;
constexpr unsigned char kAddButton = 11;
constexpr unsigned char kAddList = 52;
constexpr unsigned char kFirstRow = 101;

struct Spot {
    int x = -1;
    int y = -1;
    bool Found() const { return x >= 0; }
};

class GapEditorHostTest : public ::testing::Test {
protected:
    void SetUp() override {
        static std::unique_ptr<VxNativeWindow> window = VxNativeWindow::CreateOffscreen(kW, kH);
        static VxAppScene s;
        static std::string error;
        static bool open = window && s.Open(window.get(), kW, kH, "", error);
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no GL context: " << error;
            }
            GTEST_SKIP() << "no GL context: " << error;
        }
        scene = &s;
        std::string pathError;
        if (!scene->SetRenderPath(VxAppRenderPath::Shader, pathError)) {
            GTEST_SKIP() << "no shader path: " << pathError;
        }
        patient = VxSyntheticPatient::Generate(1);
        scene->SetCase(patient.get());
        scene->SetLayout(VxAppLayout::Single);
        // As vxview's E key: framed onto the crowns, a frame drawn, then the editor started.
        VxAppEditor::FrameDentition(patient->model, View());
        scene->RenderFrame();
        editor.Start(&patient->model);
    }
    void TearDown() override {
        if (scene != nullptr) {
            editor.Stop();
            scene->SetCase(nullptr);
        }
    }
    VxViewRegion* View() const { return scene->ViewAt(CPoint(kW / 2, kH / 2)); }

    VxTestImage Frame() {
        scene->RenderFrame();
        VxTestImage img(kW, kH);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        return img;
    }
    // The centre of the pixels that carry a code in the editor's pick pass (window pixels, y
    // down); only pixels amid their own code count, so a sliver under another element does not.
    Spot Where(const Code& code) {
        scene->RenderFrame();
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        // The frame ends with the axis cross in its corner viewport; the pass fills the window.
        glPushAttrib(GL_ENABLE_BIT | GL_VIEWPORT_BIT);
        glViewport(0, 0, kW, kH);
        glDisable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_CULL_FACE);
        RenderV1Probe::PickPass(View());
        glPopAttrib();
        VxTestImage img(kW, kH);
        glReadPixels(0, 0, kW, kH, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
        img.FlipRows();
        const auto is = [&](int x, int y) {
            const std::uint8_t* p = img.Pixel(x, y);
            return p[0] == code[0] && p[1] == code[1] && p[2] == code[2];
        };
        long sx = 0, sy = 0, n = 0;
        for (int y = 1; y + 1 < kH; ++y) {
            for (int x = 1; x + 1 < kW; ++x) {
                if (is(x, y) && is(x - 1, y) && is(x + 1, y) && is(x, y - 1) && is(x, y + 1)) {
                    sx += x;
                    sy += y;
                    ++n;
                }
            }
        }
        Spot s;
        if (n > 0) {
            s.x = static_cast<int>(sx / n);
            s.y = static_cast<int>(sy / n);
            if (!is(s.x, s.y)) {
                s = Spot{}; // a shape whose centre is not its own is not a target
            }
        }
        return s;
    }
    // A person's click: the pointer moves onto the spot, a frame is drawn under it, the button
    // comes up there.
    std::string Click(const Spot& s) {
        Hover(s);
        scene->RenderFrame();
        return editor.Release(s.x, s.y, View());
    }
    void Hover(const Spot& s) {
        scene->RenderFrame();
        editor.Move(s.x, s.y, View());
        scene->RenderFrame();
        editor.Move(s.x, s.y, View());
    }
    // The record id of a gap: upper gaps count from 0, lower ones from 100.
    int IdOf(int first, int second) const {
        for (bool upper : {true, false}) {
            const auto gaps = editor.Gaps(upper);
            for (size_t i = 0; i < gaps.size(); ++i) {
                if (gaps[i].first == first && gaps[i].second == second) {
                    return static_cast<int>(i) + (upper ? 0 : 100);
                }
            }
        }
        return -1;
    }
    VxAppEditor::Gap PlanOf(int first, int second) const {
        for (bool upper : {true, false}) {
            for (const auto& g : editor.Gaps(upper)) {
                if (g.first == first && g.second == second) {
                    return g;
                }
            }
        }
        return VxAppEditor::Gap{};
    }
    static int Differing(const VxTestImage& a, const VxTestImage& b, const Spot& c, int r) {
        int n = 0;
        for (int y = std::max(0, c.y - r); y < std::min(kH, c.y + r); ++y) {
            for (int x = std::max(0, c.x - r); x < std::min(kW, c.x + r); ++x) {
                const std::uint8_t* p = a.Pixel(x, y);
                const std::uint8_t* q = b.Pixel(x, y);
                n += p[0] != q[0] || p[1] != q[1] || p[2] != q[2];
            }
        }
        return n;
    }

    VxAppScene* scene = nullptr;
    std::unique_ptr<VxCase> patient;
    VxAppEditor editor;
};

// The up arrow of the 11|21 reduction: hovering recolours the triangle, the click prints the
// change with the value before it, the plan and the card then read the new value.
TEST_F(GapEditorHostTest, UpArrowRaisesTheReduction) {
    const int id = IdOf(11, 21);
    ASSERT_GT(id, 0) << "the 11|21 gap is one of the upper records, not the background's 0";
    ASSERT_DOUBLE_EQ(PlanOf(11, 21).value, 0.3);
    const Spot up = Where(Code{kUpArrow, static_cast<unsigned char>(id), 0});
    ASSERT_TRUE(up.Found());

    const VxTestImage before = Frame();
    Hover(up);
    const VxTestImage hovered = Frame();
    EXPECT_GT(Differing(before, hovered, up, 6), 10) << "the hovered triangle changes colour";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    EXPECT_EQ(Click(up), "IPR 11|21 0.3 -> 0.4 mm");
    EXPECT_TRUE(editor.TookClick());
    EXPECT_DOUBLE_EQ(PlanOf(11, 21).value, 0.4);
    ASSERT_NE(ModelCreateModify::getInstance()->Record(id), nullptr);
    EXPECT_FLOAT_EQ(ModelCreateModify::getInstance()->Record(id)->value, 0.4f);
    // The card's ".3" became ".4": the pixels around the card's value change.
    const Spot card = Where(Code{63, static_cast<unsigned char>(id), 0});
    ASSERT_TRUE(card.Found());
    editor.Move(3, 3, View()); // the pointer leaves, so only the value differs
    const VxTestImage after = Frame();
    editor.Move(3, 3, View());
    EXPECT_GT(Differing(before, after, card, 20), 10);

    // A second click goes on from the new value.
    EXPECT_EQ(Click(Where(Code{kUpArrow, static_cast<unsigned char>(id), 0})),
              "IPR 11|21 0.4 -> 0.5 mm");
}

// The framing zooms onto the crowns, centred on them; no view or no teeth leave things alone.
TEST_F(GapEditorHostTest, FramingOnTheCrowns) {
    const VxXForm framed = View()->GetXForm();
    scene->ResetView();
    const VxXForm whole = View()->GetXForm();
    EXPECT_GT(framed.GetScale(), 1.5 * whole.GetScale()) << "closer than the whole case";
    VxModel empty;
    VxAppEditor::FrameDentition(empty, View());
    VxAppEditor::FrameDentition(patient->model, nullptr);
    EXPECT_EQ(View()->GetXForm().GetScale(), whole.GetScale());
    VxAppEditor::FrameDentition(patient->model, View());
    EXPECT_EQ(View()->GetXForm().GetScale(), framed.GetScale());
}

// The lock of a gap toggles and the plan follows; a space's up arrow widens it.
TEST_F(GapEditorHostTest, LockAndSpace) {
    const int locked = IdOf(41, 42);
    ASSERT_GE(locked, 100);
    ASSERT_TRUE(PlanOf(41, 42).locked);
    const Spot lock = Where(Code{kLockOn, static_cast<unsigned char>(locked), 0});
    ASSERT_TRUE(lock.Found());
    EXPECT_EQ(Click(lock), "Lock 41|42 off");
    EXPECT_FALSE(PlanOf(41, 42).locked);
    const Spot unlock = Where(Code{kLockOff, static_cast<unsigned char>(locked), 0});
    ASSERT_TRUE(unlock.Found());
    EXPECT_EQ(Click(unlock), "Lock 41|42 on");
    EXPECT_TRUE(PlanOf(41, 42).locked);
    EXPECT_DOUBLE_EQ(PlanOf(41, 42).value, 0.2) << "a lock leaves the value alone";

    const int space = IdOf(21, 22);
    ASSERT_GT(space, 0);
    const Spot up = Where(Code{kUpArrow, static_cast<unsigned char>(space), 0});
    ASSERT_TRUE(up.Found());
    EXPECT_EQ(Click(up), "Space 21|22 -1.2 -> -1.3 mm");
    EXPECT_DOUBLE_EQ(PlanOf(21, 22).value, -1.3);
}

// An untouched gap's add button opens a list; its first row adds a reduction of 0.2. An open
// list closes on a click on the background; a click on the background is otherwise not the
// editor's. After Stop the editor takes nothing.
TEST_F(GapEditorHostTest, ListRowsAndTheBackground) {
    // The add buttons of the untouched gaps (record 0 aside: it shares its code with the
    // background).
    std::vector<std::pair<int, Spot>> adds;
    for (bool upper : {true, false}) {
        const auto gaps = editor.Gaps(upper);
        for (size_t i = 1; i < gaps.size() && adds.size() < 2; ++i) {
            if (gaps[i].value == 0.0 && gaps[i].first != 0) {
                const int id = static_cast<int>(i) + (upper ? 0 : 100);
                const Spot s = Where(Code{kAddButton, static_cast<unsigned char>(id), 0});
                if (s.Found()) {
                    adds.emplace_back(id, s);
                }
            }
        }
    }
    ASSERT_EQ(adds.size(), 2u) << "untouched gaps show their add buttons";
    const int id = adds[0].first;
    const auto gap = [&] { return editor.Gaps(id < 100)[static_cast<size_t>(id % 100)]; };
    EXPECT_EQ(Click(adds[0].second), "list opened");
    EXPECT_TRUE(editor.TookClick());
    const Spot row = Where(Code{kAddList, static_cast<unsigned char>(id), kFirstRow});
    ASSERT_TRUE(row.Found());
    const std::string expected = "IPR " + std::to_string(gap().first) + "|" +
                                 std::to_string(gap().second) + " 0.0 -> 0.2 mm";
    EXPECT_EQ(Click(row), expected);
    EXPECT_DOUBLE_EQ(gap().value, 0.2);

    // Another list, closed by a click on the background; a further click there is not the
    // editor's, so the program may use it.
    const Spot corner{3, 3};
    EXPECT_EQ(Click(adds[1].second), "list opened");
    EXPECT_EQ(Click(corner), "list closed");
    EXPECT_TRUE(editor.TookClick());
    EXPECT_EQ(Click(corner), "");
    EXPECT_FALSE(editor.TookClick());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    editor.Stop();
    EXPECT_FALSE(editor.IsOn());
    EXPECT_FALSE(ModelCreateModify::getInstance()->GetIsShowIPR());
    EXPECT_EQ(editor.Release(adds[1].second.x, adds[1].second.y, View()), "");
    EXPECT_FALSE(editor.TookClick());
}

} // namespace
