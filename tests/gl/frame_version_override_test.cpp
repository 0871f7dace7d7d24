// The version test on a context that really reports 4.1: Mesa is asked for it through
// MESA_GL_VERSION_OVERRIDE, which it reads once per process before the first context, so the
// variable is set by a static initialiser ahead of main and this test has a file to itself.
// The frame must then keep every entity on the fixed-function path even after the host switched
// the shader path on, because DrawModel repeats the test on every view.
#include <frame/OpenGLVersion.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxModel.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace {

const bool kOverrideSet = [] {
    // Keeps a value a developer set by hand.
    setenv("MESA_GL_VERSION_OVERRIDE", "4.1COMPAT", 0);
    return true;
}();

} // namespace

TEST(FrameVersionOverrideTest, ContextBelowTheTestKeepsTheFixedPath) {
    ASSERT_TRUE(kOverrideSet);
    auto window = VxNativeWindow::CreateOffscreen(64, 64);
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    OpenGLVersion* version = OpenGLVersion::GetInstance();
    version->Set_btestversion(true);
    if (!render->Create(window.get(), 24, 8)) {
        GTEST_SKIP() << "no EGL context on this machine";
    }
    const char* v = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    ASSERT_NE(v, nullptr);
    if (std::strncmp(v, "4.1", 3) != 0) {
        GTEST_SKIP() << "the driver ignored MESA_GL_VERSION_OVERRIDE and reports " << v;
    }
    // Initialize ran the test.
    EXPECT_FALSE(version->Get_btestversion());
    EXPECT_STREQ(version->GetVersion(), v);

    VxViewManager* mgr = VxViewManager::GetInstance();
    VxModel model;
    render->SetModel(&model);
    mgr->SetTotalViewSize(64, 64);
    render->ResizeViewport(64, 64);

    // The host switches the shader path on; a frame without views or without the model pass
    // does not repeat the test ...
    version->Set_btestversion();
    EXPECT_TRUE(version->Get_btestversion());
    render->RenderScene(true);
    EXPECT_TRUE(version->Get_btestversion());
    render->RenderScene(false);
    EXPECT_TRUE(version->Get_btestversion());

    // ... but every view of a model frame does.
    mgr->CreateSingleView();
    render->RenderScene(true);
    EXPECT_FALSE(version->Get_btestversion());
    version->Set_btestversion(true);
    render->RenderScene(true);
    EXPECT_FALSE(version->Get_btestversion());
    mgr->Clear();
    render->SetModel(nullptr);
}
