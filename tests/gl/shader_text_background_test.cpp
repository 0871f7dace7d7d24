// The glyph store of screen labels is made when the window's background picture loads, and only
// then: a window set up without a picture draws its labels as nothing, silently, and one set up
// with a picture draws them. Its own process, so that no earlier set-up has made the store.
#include "VxGLTest.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <shader/NuTextureFont.h>
#include <shader/RenderV1.h>

namespace {

class ShaderTextBackgroundTest : public VxGLTest {};

TEST_F(ShaderTextBackgroundTest, LabelsAppearOnlyOnceABackgroundHasLoaded) {
    g_bDIBShowMessage = false;
    RenderV1* text = RenderV1::GetInstance();
    ASSERT_EQ(text->textureFont, nullptr);
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    const auto label = [&] {
        glViewport(0, 0, Width(), Height());
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        testing::internal::CaptureStdout();
        text->RenderText3(CPoint(10, 40), -50.05f, L"在11与21之间增加片切", glm::vec3(0, 0, 0),
                          float(Width()), float(Height()), 0.1f, 100.0f, 16, 12);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(GLErrors(), "");
        return Width() * Height() - CountColour(255, 255, 255);
    };

    render->SetBkGround(CString(L"/nonexistent/background.bmp"));
    ASSERT_TRUE(render->Create(Window(), 24, 8));
    EXPECT_EQ(text->textureFont, nullptr);
    EXPECT_EQ(label(), 0);

    const std::string bmp = VxTestOutputDir() + "/shader_text_background.bmp";
    ASSERT_TRUE(VxWriteBmp24(bmp, 4, 4, VxTestRgb{255, 255, 255}));
    render->SetBkGround(CString::FromUtf8(bmp));
    ASSERT_TRUE(render->Create(Window(), 24, 8));
    ASSERT_NE(text->textureFont, nullptr);
    EXPECT_EQ(text->textureFont->size, 16);
    EXPECT_GT(label(), 150);
    glClearColor(0, 0, 0, 1);
}

} // namespace
