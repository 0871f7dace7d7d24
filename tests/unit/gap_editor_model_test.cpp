// The gap editor's records and its controller, driven without GL: the pick and the screen
// mapping are replaced, the gums are small strips whose segment anchors are known. Tables of
// the initial states, the id routing, every update operation, the events with the value before
// the change, and the hover/undo/release rows of the controller.
#include <gapeditor/EventInfoCreateModify.h>
#include <gapeditor/ModelCreateModify.h>
#include <gapeditor/ViewControllerCreateModify.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <shader/NuGapCardLayout.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

namespace {

using Up = std::vector<std::tuple<int, int, double>>;
using Locked = std::vector<std::tuple<int, int, bool, double>>;

// A gum of `segments` triangles; the second vertex of segment k's first face lies at
// (k, y, 0), so a start point tells which segment it came from.
std::unique_ptr<VxGum> StripGum(bool up, int segments, double y) {
    auto gum = std::make_unique<VxGum>(up);
    std::vector<int> first;
    std::vector<int> end;
    for (int k = 0; k < segments; ++k) {
        const int a = gum->AddVertex(VxPoint(k - 0.5, y - 1, 0));
        const int b = gum->AddVertex(VxPoint(k, y, 0));
        const int c = gum->AddVertex(VxPoint(k + 0.5, y - 1, 0));
        first.push_back(gum->AddFace(a, b, c));
        end.push_back(first.back());
    }
    gum->Finish();
    gum->SetSegments(first, end);
    return gum;
}

class GapModelTest : public ::testing::Test {
protected:
    void SetUp() override { Build(4, 4); }
    void Build(int upSegments, int downSegments) {
        model = std::make_unique<VxModel>();
        upGum = StripGum(true, upSegments, 10);
        downGum = StripGum(false, downSegments, -10);
        model->AddEntity(upGum.get());
        model->AddEntity(downGum.get());
        *ModelCreateModify::getInstance() = ModelCreateModify();
        *EventInfoCreateModify::getInstance() = EventInfoCreateModify();
        *ViewControllerCreateModify::getInstance() = ViewControllerCreateModify();
        // Screen x grows with model x: the model's centre is left of gaps with larger x.
        Editor()->SetScreenMapping(
            [](const VxPoint& p) { return CPoint(static_cast<int>(std::lround(p[0] * 10)), 0); });
    }
    void TearDown() override {
        if (model) {
            model->Clear();
        }
    }
    static ModelCreateModify* Editor() { return ModelCreateModify::getInstance(); }
    static EventInfoCreateModify* Events() { return EventInfoCreateModify::getInstance(); }
    static GumGapGraphicsObject& Rec(int id) { return *Editor()->Record(id); }
    void InitUp(std::vector<double> values) {
        Up up;
        for (size_t i = 0; i < values.size(); ++i) {
            up.emplace_back(11 + static_cast<int>(i), 21 + static_cast<int>(i), values[i]);
        }
        Editor()->InitData(model.get(), up, up);
    }

    std::unique_ptr<VxModel> model;
    std::unique_ptr<VxGum> upGum;
    std::unique_ptr<VxGum> downGum;
};

// Every row of the states a value starts with, with its boundaries; the limits are the stored
// float's, so 0.05 and -0.05 show no card.
TEST_F(GapModelTest, InitialStatesFollowTheStoredValue) {
    struct Row {
        double value;
        int button, card, down, up;
    };
    const Row rows[] = {
        {0.0, 1, 3, 1, 1},
        {0.05, 1, 3, 1, 1},
        {-0.05, 1, 3, 1, 1},
        {0.06, 3, 1, 3, 1},
        {0.2, 3, 1, 3, 1},
        {0.25, 3, 1, 1, 1},
        {0.3, 3, 1, 1, 1},
        {0.4, 3, 1, 1, 1},
        {0.45, 3, 1, 1, 1},
        {0.5, 3, 1, 1, 3},
        {1.2, 3, 1, 1, 3},
        {-0.06, 3, 2, 3, 1},
        {-0.2, 3, 2, 3, 1},
        {-0.25, 3, 2, 1, 1},
        {-0.3, 3, 2, 1, 1},
        {-5.0, 3, 2, 1, 1},
        {std::numeric_limits<double>::quiet_NaN(), 1, 3, 1, 1},
    };
    for (const Row& row : rows) {
        InitUp({row.value});
        const GumGapGraphicsObject& r = Rec(0);
        SCOPED_TRACE(row.value);
        EXPECT_EQ(r.buttonState, row.button);
        EXPECT_EQ(r.cardState, row.card);
        EXPECT_EQ(r.downState, row.down);
        EXPECT_EQ(r.upState, row.up);
        EXPECT_EQ(r.lockState, 3) << "InitData never starts locked";
        EXPECT_EQ(r.listState, 1);
    }
}

// Start points pair with the host's list by index: upper gaps run the gum's segments backwards,
// lower forwards; the leader reaches 14 mm on the screen's left of the centre, 9 on its right,
// along the normalised outward direction tilted by tooth 11's axis.
TEST_F(GapModelTest, RecordsAnchorOnTheSegmentsWithTheirLeaders) {
    InitUp({0.3, 0.0, -0.3, 0.5});
    const auto up = Editor()->GetUpGumGapGraphicsObjects();
    const auto down = Editor()->GetDownGumGapGraphicsObjects();
    ASSERT_EQ(up.size(), 4u);
    ASSERT_EQ(down.size(), 4u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(up[i].points[0][0], 3 - i);
        EXPECT_DOUBLE_EQ(down[i].points[0][0], i);
        EXPECT_EQ(up[i].points[0], up[i].points[1]);
        EXPECT_EQ(up[i].points[2], up[i].points[3]);
        EXPECT_EQ(up[i].firstId, 11 + i);
        EXPECT_EQ(up[i].secondId, 21 + i);
    }
    // The default axis is -y. Upper gap 0 at x = 3 lies right of the centre on screen: 9 mm.
    const VxPoint c = model->GetBBox().Center();
    for (const auto& [record, length] : {std::make_pair(up[0], 9.0), std::make_pair(up[3], 14.0)}) {
        VxVector d = record.points[0] - c;
        d.Normalize();
        d = d + VxVector(0, -0.75, 0);
        d.Normalize();
        const VxVector leader = record.points[3] - record.points[0];
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(leader[k], d[k] * 1.5 * length, 1e-9);
        }
    }
    // Tooth 11's axis replaces the default for the upper jaw only.
    VxTooth tooth(11);
    tooth.SetFrame(VxFrame(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    model->AddEntity(&tooth);
    InitUp({0.3, 0.0, -0.3, 0.5});
    const auto tilted = Editor()->GetUpGumGapGraphicsObjects();
    EXPECT_NE(tilted[0].points[3], up[0].points[3]);
    model->RemoveEntity(&tooth);
}

// A jaw has at most 100 records (ids travel in one byte); a short list leaves gaps out rather
// than reading past its end; an empty model gives no records.
TEST_F(GapModelTest, RecordCountsAreBoundedQuietly) {
    Build(120, 3);
    InitUp(std::vector<double>(120, 0.3));
    EXPECT_EQ(Editor()->GetUpGumGapGraphicsObjects().size(), 100u);
    EXPECT_EQ(Editor()->GetupGumGapStartPointList().size(), 120u);
    EXPECT_EQ(Editor()->GetDownGumGapGraphicsObjects().size(), 3u);
    Editor()->InitData(model.get(), Up{{1, 2, 0.3}}, Up{});
    EXPECT_EQ(Editor()->GetUpGumGapGraphicsObjects().size(), 1u);
    EXPECT_TRUE(Editor()->GetDownGumGapGraphicsObjects().empty());
    Editor()->InitData(nullptr, Up{{1, 2, 0.3}}, Up{{1, 2, 0.3}});
    EXPECT_TRUE(Editor()->GetUpGumGapGraphicsObjects().empty());
}

// Ids 0..99 name upper records, 100 + i lower ones; negative ids and ids past the end name
// none and change nothing.
TEST_F(GapModelTest, IdsRouteToTheirJaw) {
    Build(100, 2);
    std::vector<double> values(100, 0.3);
    values[99] = -0.7;
    InitUp(values);
    Editor()->InitData(model.get(), Up(), Up());
    Up up;
    for (int i = 0; i < 100; ++i) {
        up.emplace_back(i, i + 1, values[i]);
    }
    Editor()->InitData(model.get(), up, Up{{31, 32, 0.4}, {33, 34, -1.5}});
    Editor()->SetCurIPR(0, 99);
    EventIPRinfo info = Events()->GetIPRInfo();
    EXPECT_TRUE(info.isUp);
    EXPECT_EQ(info.index, 99);
    EXPECT_FLOAT_EQ(static_cast<float>(info.value), -0.7f);
    Editor()->SetCurIPR(0, 100);
    info = Events()->GetIPRInfo();
    EXPECT_FALSE(info.isUp);
    EXPECT_EQ(info.index, 0);
    EXPECT_EQ(info.firstId, 31);
    EXPECT_EQ(info.secondId, 32);
    EXPECT_FLOAT_EQ(static_cast<float>(info.value), 0.4f);
    EXPECT_EQ(info.reserved1 + info.reserved2, 0);
    Editor()->SetCurIPR(0, -1);
    info = Events()->GetIPRInfo();
    EXPECT_FALSE(info.isUp);
    EXPECT_EQ(info.index + info.firstId + info.secondId, 0);
    EXPECT_EQ(info.value, 0.0);

    const ModelCreateModify before = *Editor();
    for (int id : {-1, 102, 255}) {
        Editor()->UpdateData(4, id);
        Editor()->UpdateDataforLeftReleasedforbtnupdown(1, id);
        Editor()->UpdateDataforLeftReleasedmoveout(5, id);
    }
    EXPECT_EQ(Editor()->GetDownGumGapGraphicsObjects()[1].value,
              before.GetDownGumGapGraphicsObjects()[1].value);
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);
    Editor()->UpdateData(4, 101);
    EXPECT_EQ(Rec(101).buttonState, 4);
    EXPECT_EQ(Rec(99).buttonState, 3);
}

// The update family, each operation on a fresh record of a known state.
TEST_F(GapModelTest, UpdateOperationsMoveTheirField) {
    enum Field { Button, Lock, Up_, Down, List };
    const auto field = [](const GumGapGraphicsObject& r, Field f) {
        switch (f) {
        case Button:
            return r.buttonState;
        case Lock:
            return r.lockState;
        case Up_:
            return r.upState;
        case Down:
            return r.downState;
        default:
            return r.listState;
        }
    };
    struct Row {
        const char* name;
        int start; // the field's value before
        Field f;
        std::function<void()> op;
        int expected;
    };
    ModelCreateModify* m = Editor();
    const Row rows[] = {
        {"value 4 to button", 1, Button, [m] { m->UpdateData(4, 0); }, 4},
        {"value to button by 13", 3, Button, [m] { m->UpdateData(2, 0, PngBtnDelNormal); }, 2},
        {"value to lock by 24", 3, Lock, [m] { m->UpdateData(1, 0, PngBtnUnlockHover); }, 1},
        {"value to up by 31", 2, Up_, [m] { m->UpdateData(1, 0, PngBtnUpNormal); }, 1},
        {"value to down by 33", 2, Down, [m] { m->UpdateData(1, 0, PngBtnDownNormal); }, 1},
        {"value by 32 does nothing", 2, Up_, [m] { m->UpdateData(1, 0, PngBtnUpHover); }, 2},
        {"row 101 unmarks 3", 3, List, [m] { m->UpdateData(1, 0, PngRowFirst); }, 2},
        {"row 101 unmarks 6", 6, List, [m] { m->UpdateData(1, 0, PngRowFirst); }, 5},
        {"row 101 unmarks 8", 8, List, [m] { m->UpdateData(1, 0, PngRowFirst); }, 7},
        {"row 101 keeps 4", 4, List, [m] { m->UpdateData(1, 0, PngRowFirst); }, 4},
        {"row 105 unmarks 4", 4, List, [m] { m->UpdateData(1, 0, PngRowSecond); }, 2},
        {"mark 11", 1, Button, [m] { m->UpdateData(PngBtnAddNormal, 0, 1); }, 2},
        {"mark 13", 3, Button, [m] { m->UpdateData(PngBtnDelNormal, 0, 1); }, 4},
        {"mark 23", 3, Lock, [m] { m->UpdateData(PngBtnUnlockNormal, 0, 1); }, 4},
        {"mark 31", 1, Up_, [m] { m->UpdateData(PngBtnUpNormal, 0, 1); }, 2},
        {"mark 101 on up", 1, Up_, [m] { m->UpdateData(PngRowFirst, 0, 1); }, 2},
        {"mark 105 on down", 1, Down, [m] { m->UpdateData(PngRowSecond, 0, 1); }, 2},
        {"unmark 12", 2, Button, [m] { m->UpdateData(PngBtnAddHover, 0, 2); }, 1},
        {"unmark 21", 2, Lock, [m] { m->UpdateData(PngBtnLockNormal, 0, 2); }, 1},
        {"unmark 31 does nothing", 2, Up_, [m] { m->UpdateData(PngBtnUpNormal, 0, 2); }, 2},
        {"pop 101 from 2", 2, List, [m] { m->UpdateDataforlistpop(PngRowFirst, 0, 1); }, 3},
        {"pop 101 from 4", 4, List, [m] { m->UpdateDataforlistpop(PngRowFirst, 0, 1); }, 3},
        {"pop 101 from 5", 5, List, [m] { m->UpdateDataforlistpop(PngRowFirst, 0, 1); }, 6},
        {"pop 101 from 7", 7, List, [m] { m->UpdateDataforlistpop(PngRowFirst, 0, 1); }, 8},
        {"pop 105 from 3", 3, List, [m] { m->UpdateDataforlistpop(PngRowSecond, 0, 1); }, 4},
        {"pop 105 from 5", 5, List, [m] { m->UpdateDataforlistpop(PngRowSecond, 0, 1); }, 5},
        {"pop with mode 2", 2, List, [m] { m->UpdateDataforlistpop(PngRowFirst, 0, 2); }, 2},
        {"move out", 5, List, [m] { m->UpdateDataforLeftReleasedmoveout(1, 0); }, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        InitUp({0.3});
        GumGapGraphicsObject& r = Rec(0);
        r.buttonState = r.lockState = r.upState = r.downState = r.listState = row.start;
        row.op();
        EXPECT_EQ(field(Rec(0), row.f), row.expected);
    }
}

// A decision raises its event with the record's data from before the change; up always grows
// the magnitude; the lock and list rows give their events; an opened list keeps the last info.
TEST_F(GapModelTest, DecisionsRaiseEventsWithTheValueBefore) {
    InitUp({0.3, -0.4, 0.0, -0.3});
    Editor()->UpdateDataforLeftReleasedforbtnupdown(1, 0);
    EXPECT_EQ(Events()->GetEventInfo(), EventValueUp);
    EXPECT_FLOAT_EQ(static_cast<float>(Events()->GetIPRInfo().value), 0.3f);
    EXPECT_FLOAT_EQ(Rec(0).value, 0.4f);

    Editor()->UpdateDataforLeftReleasedforbtnupdown(-1, 1);
    EXPECT_EQ(Events()->GetEventInfo(), EventValueDown);
    EXPECT_FLOAT_EQ(static_cast<float>(Events()->GetIPRInfo().value), -0.4f);
    EXPECT_FLOAT_EQ(Rec(1).value, -0.3f);
    Editor()->UpdateDataforLeftReleasedforbtnupdown(1, 1);
    EXPECT_FLOAT_EQ(Rec(1).value, -0.4f) << "up on a space makes it wider";

    Editor()->UpdateDataforLeftReleasedforlock(3, 0);
    EXPECT_EQ(Events()->GetEventInfo(), EventUnlocked);
    EXPECT_EQ(Rec(0).lockState, 3);
    Editor()->UpdateDataforLeftReleasedforlock(1, 0);
    EXPECT_EQ(Events()->GetEventInfo(), EventLocked);
    EXPECT_EQ(Rec(0).lockState, 1);

    struct Text {
        int id, row;
        EnumEventInfoCreateModify event;
    };
    for (const Text& t : {Text{2, 1, EventAddReduction}, Text{2, -1, EventAddGap},
                          Text{0, 1, EventDeleteReduction}, Text{3, 1, EventDeleteGap}}) {
        Editor()->UpdateDataforLeftReleasedforrecttext(t.row, t.id);
        EXPECT_EQ(Events()->GetEventInfo(), t.event) << t.id << " " << t.row;
        EXPECT_EQ(Events()->GetIPRInfo().index, t.id);
    }

    // The list that opens depends on the button and card.
    struct Open {
        int id, button, list;
    };
    for (const Open& o : {Open{2, 2, 2}, Open{0, 4, 5}, Open{3, 4, 7}}) {
        Rec(o.id).buttonState = o.button;
        Editor()->UpdateDataforLeftReleased(2, o.id);
        EXPECT_EQ(Rec(o.id).listState, o.list);
        EXPECT_EQ(Events()->GetEventInfo(), EventListOpened);
        EXPECT_EQ(Events()->GetIPRInfo().index, 3) << "info of the event before";
    }

    // A rebuild drops every list and hover state; a lock renewal keeps them.
    Rec(1).upState = 2;
    Editor()->UpdateDatajustLock(model.get(), Locked{{1, 2, true, 9}, {1, 2, false, 9}}, Locked{});
    EXPECT_EQ(Rec(0).lockState, 1);
    EXPECT_EQ(Rec(1).lockState, 3);
    EXPECT_EQ(Rec(1).upState, 2);
    EXPECT_EQ(Rec(0).listState, 5);
    EXPECT_FLOAT_EQ(Rec(0).value, 0.4f);
    Editor()->InitDatawithLock(model.get(), Locked{{1, 2, true, 0.3}, {3, 4, false, 0.0}},
                               Locked{});
    EXPECT_EQ(Rec(0).lockState, 1);
    EXPECT_EQ(Rec(1).lockState, 3);
    EXPECT_EQ(Rec(0).listState, 1);
}

// The controller against a scripted pick: each step names the bytes under the cursor.
class GapControllerTest : public GapModelTest {
protected:
    void SetUp() override {
        GapModelTest::SetUp();
        InitUp({0.3, 0.0, -0.3, 0.5});
        Controller()->SetPick([this](VxViewRegion*, int, int) { return bytes; });
    }
    static ViewControllerCreateModify* Controller() {
        return ViewControllerCreateModify::getInstance();
    }
    // The pick finds what the record's state draws: a marked element reads its hover code.
    void Move(int element, int id, int row = 0) {
        bytes = {static_cast<unsigned char>(element), static_cast<unsigned char>(id),
                 static_cast<unsigned char>(row)};
        Controller()->SetupCurrentMouseState(10, 20, nullptr);
        Controller()->MouseLeftMoving();
    }
    void Release() { Controller()->MouseLeftReleased(); }
    std::array<unsigned char, 3> bytes{0, 0, 0};
};

TEST_F(GapControllerTest, CodesTransform) {
    ViewControllerCreateModify* c = Controller();
    const std::map<int, int> plain = {{5, 58},  {7, -1},  {11, 11}, {14, 14}, {15, -1}, {24, 24},
                                      {36, 36}, {37, -1}, {41, 41}, {42, -1}, {50, 50}, {57, 57},
                                      {58, -1}, {61, 61}, {63, 63}, {64, -1}, {0, -1},  {101, -1}};
    for (const auto& [code, element] : plain) {
        EXPECT_EQ(c->TransformfromInt(code), element) << code;
        EXPECT_EQ(c->TransformfromInt(code, 0), element) << code;
    }
    EXPECT_EQ(c->TransformfromInt(12, 101), 101);
    EXPECT_EQ(c->TransformfromInt(12, 105), 105);
    EXPECT_EQ(c->TransformfromInt(12, 3), 0);
}

// A full click on the up button: mark on the first move, hover code on the next, event on the
// release with the value before.
TEST_F(GapControllerTest, UpButtonClick) {
    Controller()->MousePressed();
    EXPECT_EQ(Rec(0).upState, 1);
    Move(31, 0);
    EXPECT_EQ(Rec(0).upState, 2);
    Move(32, 0);
    EXPECT_EQ(Rec(0).upState, 2) << "a marked element is not marked twice";
    Release();
    EXPECT_TRUE(Controller()->GetsomeSelected());
    EXPECT_EQ(Events()->GetEventInfo(), EventValueUp);
    EXPECT_FLOAT_EQ(static_cast<float>(Events()->GetIPRInfo().value), 0.3f);
    EXPECT_FLOAT_EQ(Rec(0).value, 0.4f);
    EXPECT_EQ(Controller()->GetMousePos_x(), 10);
    EXPECT_EQ(Controller()->GetMousePos_y(), 20);
}

// Each release row, from the hover code the pick finds after the mark.
TEST_F(GapControllerTest, ReleaseRows) {
    struct Row {
        int normal, hover, id, row;
        EnumEventInfoCreateModify event;
        bool some;
    };
    const Row rows[] = {
        {11, 12, 1, 0, EventListOpened, true},
        {13, 14, 0, 0, EventListOpened, true},
        {21, 22, 0, 0, EventUnlocked, true},
        {23, 24, 0, 0, EventLocked, true},
        {31, 32, 2, 0, EventValueUp, true},
        {33, 34, 2, 0, EventValueDown, true},
        {52, 52, 1, 101, EventAddReduction, false},
        {52, 52, 1, 105, EventAddGap, false},
        {55, 55, 0, 101, EventDeleteReduction, false},
        {57, 57, 2, 101, EventDeleteGap, false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.normal * 1000 + r.row);
        SetUp();
        if (r.normal == 21) {
            Rec(0).lockState = 1;
        }
        Move(r.normal, r.id, r.row);
        Move(r.hover, r.id, r.row);
        Release();
        EXPECT_EQ(Events()->GetEventInfo(), r.event);
        EXPECT_EQ(Controller()->GetsomeSelected(), r.some);
    }
    // Nothing under the cursor and no mark: a release changes nothing.
    SetUp();
    const auto before = Editor()->GetUpGumGapGraphicsObjects();
    Move(0, 0);
    Release();
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);
    const auto after = Editor()->GetUpGumGapGraphicsObjects();
    for (size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(after[i].buttonState, before[i].buttonState);
        EXPECT_EQ(after[i].upState, before[i].upState);
        EXPECT_EQ(after[i].listState, before[i].listState);
    }
}

// Leaving a record undoes its mark; moving within a record does not; the background (id 0)
// leaves record 0's mark in place; disabled buttons clear the mark state.
TEST_F(GapControllerTest, HoverUndoRows) {
    struct Row {
        int element, id, row;
        std::function<int(const GumGapGraphicsObject&)> field;
        int marked, undone;
    };
    const auto button = [](const GumGapGraphicsObject& r) { return r.buttonState; };
    const auto lock = [](const GumGapGraphicsObject& r) { return r.lockState; };
    const auto up = [](const GumGapGraphicsObject& r) { return r.upState; };
    const auto down = [](const GumGapGraphicsObject& r) { return r.downState; };
    const auto list = [](const GumGapGraphicsObject& r) { return r.listState; };
    const Row rows[] = {
        {11, 1, 0, button, 2, 1}, {13, 2, 0, button, 4, 3}, {23, 2, 0, lock, 4, 3},
        {31, 2, 0, up, 2, 1},     {33, 2, 0, down, 2, 1},   {52, 1, 101, list, 3, 2},
        {52, 1, 105, list, 4, 2},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.element * 1000 + r.row);
        SetUp();
        if (r.row != 0) {
            Rec(r.id).listState = 2;
        }
        Move(r.element, r.id, r.row);
        EXPECT_EQ(r.field(Rec(r.id)), r.marked);
        Move(41, 3); // onto another record's card
        EXPECT_EQ(r.field(Rec(r.id)), r.undone);
    }

    // Within one record both marks stay until the cursor leaves it.
    SetUp();
    Move(31, 2);
    Move(33, 2);
    EXPECT_EQ(Rec(2).upState, 2);
    EXPECT_EQ(Rec(2).downState, 2);
    Move(0, 0);
    EXPECT_EQ(Rec(2).downState, 1) << "the last mark is undone";

    // The background reads id 0: record 0's mark stays, record 1's goes.
    SetUp();
    Move(13, 0);
    Move(0, 0);
    EXPECT_EQ(Rec(0).buttonState, 4);
    SetUp();
    Move(11, 1);
    Move(0, 0);
    EXPECT_EQ(Rec(1).buttonState, 1);

    // A disabled button clears the mark state: leaving it unmarks nothing, and a release there
    // does nothing.
    SetUp();
    Move(33, 3);
    Move(35, 3);
    Move(0, 0);
    EXPECT_EQ(Rec(3).downState, 2) << "the mark was forgotten, not undone";
    SetUp();
    Move(36, 1);
    Release();
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);
    EXPECT_FALSE(Controller()->GetsomeSelected());
}

// A click away from a record with an open list closes it and clears the event, even when the
// click itself raised one: the move-out runs last.
TEST_F(GapControllerTest, MoveOutClosesTheList) {
    Move(11, 1);
    Move(12, 1);
    Release();
    EXPECT_EQ(Rec(1).listState, 2);
    EXPECT_EQ(Events()->GetEventInfo(), EventListOpened);
    Move(0, 0);
    Release();
    EXPECT_EQ(Rec(1).listState, 1);
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);

    SetUp();
    Move(11, 1);
    Move(12, 1);
    Release();
    Move(31, 2);
    Move(32, 2);
    Release();
    EXPECT_FLOAT_EQ(Rec(2).value, -0.4f) << "the click on the second record still acts";
    EXPECT_EQ(Rec(1).listState, 2) << "the mark moved to record 2 on the way";
    Move(0, 0);
    Release();
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);

    // A release on a second record's already marked button while the first record's list is
    // open: the button acts, then the move-out closes the list and clears its event.
    SetUp();
    Move(11, 1);
    Move(12, 1);
    Release();
    Rec(2).upState = 2;
    Move(32, 2);
    Release();
    EXPECT_FLOAT_EQ(Rec(2).value, -0.4f);
    EXPECT_EQ(Rec(1).listState, 1);
    EXPECT_EQ(Events()->GetEventInfo(), EventNone);
}

// The card's value text: rounded to a tenth, no sign, no leading zero below 1.
TEST(GapCardText, ValueCuts) {
    const std::map<float, std::wstring> table = {
        {0.34f, L".3"},  {0.3f, L".3"}, {1.26f, L"1.3"}, {1.2f, L"1.2"}, {-0.34f, L".3"},
        {-1.2f, L"1.2"}, {0.05f, L""},  {-0.05f, L""},   {0.0f, L""},    {0.5f, L".5"}};
    for (const auto& [value, text] : table) {
        EXPECT_EQ(NuGapCardLayout::ValueText(value), text) << value;
    }
    EXPECT_EQ(NuGapCardLayout::ValueText(std::nanf("")), L"");
}

} // namespace
