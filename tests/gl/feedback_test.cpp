// ProcessFeedback over stencil values written straight into the buffer: the 2 x 2 block at the
// cursor, the score that favours small values and the cursor pixel, ties kept by the earlier
// pixel, and the select types that make a value pickable or not.
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

namespace {

constexpr int kW = 64;
constexpr int kH = 48;

const std::vector<ObjectType_e> kDefaultSelectTypes = {
    ObjectType_Jaw,         ObjectType_Gum,        ObjectType_Tooth,
    ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Mesh};

class FeedbackTest : public ::testing::Test {
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
        render->GetGLContext()->MakeCurrent();
        render->ResizeViewport(kW, kH);
        status->SetSelectType(kDefaultSelectTypes);
        glClearStencil(0);
        glClear(GL_STENCIL_BUFFER_BIT);
    }
    void TearDown() override { status->SetSelectType(kDefaultSelectTypes); }

    // One stencil pixel at GL window coordinates.
    static void PutStencil(int x, int y, int value) {
        glEnable(GL_SCISSOR_TEST);
        glScissor(x, y, 1, 1);
        glClearStencil(value);
        glClear(GL_STENCIL_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        glClearStencil(0);
    }
    // The block ProcessFeedback reads for a cursor at screen (cx, cy): row r, column c is GL
    // pixel (cx - 1 + c, H - cy - 1 + r). Row 1, column 1 scores lowest.
    static void PutBlock(int cx, int cy, int r0c0, int r0c1, int r1c0, int r1c1) {
        const int x = cx - 1, y = kH - cy - 1;
        PutStencil(x, y, r0c0);
        PutStencil(x + 1, y, r0c1);
        PutStencil(x, y + 1, r1c0);
        PutStencil(x + 1, y + 1, r1c1);
    }
    int Feedback(int cx, int cy) {
        status->SetFeedbackType(static_cast<FeedbackType_e>(99));
        render->ProcessFeedback(CPoint(cx, cy));
        return status->GetFeedbackType();
    }

    static inline VxNativeWindow* window = nullptr;
    static inline VxOpenGLRender* render = nullptr;
    static inline bool created = false;
    VxRenderStatus* status = VxRenderStatus::GetInstance();
};

} // namespace

TEST_F(FeedbackTest, StencilWritesAreWhereTheBlockIsRead) {
    PutBlock(20, 20, 1, 2, 3, 4);
    GLint values[4] = {-1, -1, -1, -1};
    glReadPixels(19, kH - 21, 2, 2, GL_STENCIL_INDEX, GL_INT, values);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], 2);
    EXPECT_EQ(values[2], 3);
    EXPECT_EQ(values[3], 4);
}

TEST_F(FeedbackTest, DiagonalPrefersTheSmallerPickableValue) {
    // 2 (tooth) and 6 (attachment) on a diagonal, in both orientations.
    PutBlock(20, 20, 2, 0, 0, 6);
    EXPECT_EQ(Feedback(20, 20), 2);
    PutBlock(30, 30, 6, 0, 0, 2);
    EXPECT_EQ(Feedback(30, 30), 2);
    status->SetSelectType({ObjectType_Attachment});
    EXPECT_EQ(Feedback(20, 20), 6);
    EXPECT_EQ(Feedback(30, 30), 6);
    status->SetSelectType({ObjectType_Gum});
    EXPECT_EQ(Feedback(20, 20), 0);
}

TEST_F(FeedbackTest, TiesGoToTheEarlierPixel) {
    // Scores: r0c0 = 2 + v, r0c1 = r1c0 = 1 + v, r1c1 = v.
    PutBlock(20, 20, 3, 0, 0, 5); // 5 and 5
    EXPECT_EQ(Feedback(20, 20), 3);
    PutBlock(30, 20, 0, 3, 0, 4); // 4 and 4
    EXPECT_EQ(Feedback(30, 20), 3);
    PutBlock(40, 20, 0, 4, 3, 0); // 5 and 4
    EXPECT_EQ(Feedback(40, 20), 3);
    PutBlock(20, 30, 0, 0, 1, 2); // 2 and 2: the earlier one, value 1
    EXPECT_EQ(Feedback(20, 30), 1);
    PutBlock(30, 30, 0, 0, 0, 4); // the cursor pixel alone
    EXPECT_EQ(Feedback(30, 30), 4);
}

TEST_F(FeedbackTest, SelectTypesDecidePickability) {
    PutBlock(10, 10, 1, 0, 0, 0);
    PutBlock(20, 10, 2, 0, 0, 0);
    PutBlock(30, 10, 3, 0, 0, 0);
    PutBlock(40, 10, 4, 0, 0, 0);
    PutBlock(50, 10, 5, 0, 0, 0);
    PutBlock(10, 20, 6, 0, 0, 0);
    PutBlock(20, 20, 7, 0, 0, 0);
    struct Row {
        std::vector<ObjectType_e> types;
        int expected[7]; // values 1 to 7
    };
    const Row rows[] = {
        {kDefaultSelectTypes, {1, 2, 3, 4, 5, 6, 0}},
        {{ObjectType_Face}, {1, 2, 0, 0, 0, 6, 0}}, // gum and jaw do not answer to faces
        {{ObjectType_Vertex}, {1, 2, 3, 4, 5, 6, 0}},
        {{ObjectType_Edge}, {1, 2, 3, 4, 5, 6, 0}},
        {{ObjectType_Jaw}, {0, 0, 0, 4, 5, 0, 0}},
        {{ObjectType_Mesh}, {1, 0, 0, 0, 0, 0, 0}},
        {{ObjectType_Tooth, ObjectType_Gum}, {0, 2, 3, 0, 0, 0, 0}},
        {{ObjectType_Skull}, {0, 0, 0, 0, 0, 0, 0}},
        {{}, {0, 0, 0, 0, 0, 0, 0}},
    };
    const CPoint cursors[7] = {{10, 10}, {20, 10}, {30, 10}, {40, 10},
                               {50, 10}, {10, 20}, {20, 20}};
    for (size_t r = 0; r < sizeof rows / sizeof rows[0]; ++r) {
        status->SetSelectType(rows[r].types);
        for (int v = 0; v < 7; ++v) {
            EXPECT_EQ(Feedback(cursors[v].x, cursors[v].y), rows[r].expected[v])
                << "select row " << r << ", stencil " << v + 1;
        }
    }
}

TEST_F(FeedbackTest, BackgroundAndWindowEdge) {
    EXPECT_EQ(Feedback(30, 30), 0);
    // Half the block outside the window: no crash, and what lies inside still counts.
    PutStencil(0, kH - 1, 2);
    EXPECT_EQ(Feedback(0, 0), 2);
    EXPECT_EQ(Feedback(kW + 5, kH + 5), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
