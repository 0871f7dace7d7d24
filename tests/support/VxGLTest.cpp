// VxGLTest: one context per suite through the library's own platform layer, so the tests run on
// exactly the code path the library uses.
#include "VxGLTest.h"

#include <platform/VxGLCheck.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>

#include <cstdlib>
#include <cstring>

namespace {

struct SuiteContext {
    VxGLTestConfig config;
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxGLContext> context;
    std::string failure;
};

SuiteContext& Suite() {
    static SuiteContext suite;
    return suite;
}

bool RequireGL() {
    const char* env = std::getenv("VX_REQUIRE_GL");
    return env && std::strcmp(env, "1") == 0;
}

} // namespace

void VxGLTest::CreateSuiteContext(const VxGLTestConfig& config) {
    SuiteContext& s = Suite();
    // Context before window: the context releases its display reference last otherwise.
    s.context.reset();
    s.window.reset();
    s.failure.clear();
    s.config = config;
    s.window = VxNativeWindow::CreateOffscreen(config.width, config.height);
    s.context = std::make_unique<VxGLContext>();
    if (!s.context->Create(s.window.get(), config.depthBits, config.stencilBits)) {
        s.failure = "no EGL OpenGL context: " + s.context->GetLastError();
        s.context.reset();
        s.window.reset();
    }
}

void VxGLTest::TearDownTestSuite() {
    SuiteContext& s = Suite();
    if (s.context) {
        s.context->DoneCurrent();
    }
    s.context.reset();
    s.window.reset();
}

void VxGLTest::SetUp() {
    SuiteContext& s = Suite();
    if (!s.context) {
        if (RequireGL()) {
            FAIL() << s.failure << " (VX_REQUIRE_GL=1)";
        }
        GTEST_SKIP() << s.failure;
    }
    ASSERT_TRUE(s.context->MakeCurrent()) << s.context->GetLastError();
    glViewport(0, 0, s.window->GetWidth(), s.window->GetHeight());
    // An error left by an earlier test would be blamed on this one.
    GLErrors();
}

VxGLContext* VxGLTest::Context() {
    return Suite().context.get();
}
VxNativeWindow* VxGLTest::Window() {
    return Suite().window.get();
}
const VxGLTestConfig& VxGLTest::Config() {
    return Suite().config;
}
int VxGLTest::Width() {
    return Suite().window ? Suite().window->GetWidth() : 0;
}
int VxGLTest::Height() {
    return Suite().window ? Suite().window->GetHeight() : 0;
}

bool VxGLTest::ResizeSurface(int width, int height) {
    SuiteContext& s = Suite();
    if (!s.window || !s.window->SetOffscreenSize(width, height)) {
        return false;
    }
    glViewport(0, 0, s.window->GetWidth(), s.window->GetHeight());
    return true;
}

VxTestImage VxGLTest::ReadRGBA(int x, int y, int width, int height, RowOrder order) {
    VxTestImage image(width, height);
    if (image.Empty()) {
        return image;
    }
    GLint pack = 4;
    glGetIntegerv(GL_PACK_ALIGNMENT, &pack);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, image.rgba.data());
    glPixelStorei(GL_PACK_ALIGNMENT, pack);
    if (order == RowOrder::TopDown) {
        image.FlipRows();
    }
    return image;
}

VxTestImage VxGLTest::ReadAllRGBA(RowOrder order) {
    return ReadRGBA(0, 0, Width(), Height(), order);
}

std::vector<int> VxGLTest::ReadStencil(int x, int y, int width, int height) {
    if (width <= 0 || height <= 0) {
        return {};
    }
    std::vector<GLint> values(static_cast<size_t>(width) * height, -1);
    GLint pack = 4;
    glGetIntegerv(GL_PACK_ALIGNMENT, &pack);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, width, height, GL_STENCIL_INDEX, GL_INT, values.data());
    glPixelStorei(GL_PACK_ALIGNMENT, pack);
    return std::vector<int>(values.begin(), values.end());
}

float VxGLTest::ReadDepth(int x, int y) {
    GLfloat depth = -1.0f;
    glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    return depth;
}

int VxGLTest::CountColour(std::uint8_t r, std::uint8_t g, std::uint8_t b, int tolerance) {
    return ReadAllRGBA(RowOrder::BottomUp).CountColour(r, g, b, tolerance);
}

std::string VxGLTest::GLErrors() {
    std::string names;
    for (int i = 0; i < 32; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) {
            break;
        }
        if (!names.empty()) {
            names += ' ';
        }
        names += VxGLErrorString(error);
    }
    return names;
}
