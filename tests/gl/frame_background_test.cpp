// A window without a background picture is black: the renderer created with no background path
// (or with one that does not load) paints the whole window black, whatever colour is current,
// and gives the current colour back. Its own process, so that no earlier Create has loaded a
// picture into the renderer singleton.
#include "VxGLTest.h"

#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxModel.h>
#include <views/VxViewManager.h>

namespace {

class FrameBackgroundTest : public VxGLTest {};

TEST_F(FrameBackgroundTest, MissingBackgroundPaintsBlackAndKeepsTheCurrentColour) {
    g_bDIBShowMessage = false;
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    render->SetBkGround(CString(L"/nonexistent/background.bmp"));
    ASSERT_TRUE(render->Create(Window(), 24, 8));
    VxModel model;
    render->SetModel(&model);
    render->ResizeViewport(Width(), Height());
    VxViewManager::GetInstance()->Clear();
    VxViewManager::GetInstance()->SetTotalViewSize(Width(), Height());

    for (const float grey : {1.0f, 0.5f}) {
        // A host's clear colour and current colour do not show through.
        glClearColor(0.2f, 0.9f, 0.2f, 1.0f);
        glColor4f(grey, grey, grey, 1.0f);
        EXPECT_TRUE(render->RenderScene(false));
        EXPECT_EQ(CountColour(0, 0, 0), Width() * Height()) << "current grey " << grey;
        GLfloat current[4] = {};
        glGetFloatv(GL_CURRENT_COLOR, current);
        EXPECT_FLOAT_EQ(current[0], grey);
    }
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    render->SetModel(nullptr);
}

} // namespace
