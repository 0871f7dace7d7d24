// VxGLTest: the fixture of every GL test. Each test suite gets one headless context on an
// off-screen target (256 x 256, depth 24, stencil 8 unless the suite asks otherwise), made before
// the suite's first test and made current before every test. Where EGL gives no context the
// tests are skipped with the reason; VX_REQUIRE_GL=1 in the environment turns that into a failure
// (for machines where GL is known to work). Read-back helpers return top-down images by default.
// It does not reset GL state between tests: a test that changes state it relies on sets it.
#pragma once

// GLEW first: a GL test that includes GLEW after gl.h would not compile.
#include <GL/glew.h>

#include "VxTestImage.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

class VxGLContext;
class VxNativeWindow;

struct VxGLTestConfig {
    int width = 256;
    int height = 256;
    int depthBits = 24;
    int stencilBits = 8;
};

class VxGLTest : public ::testing::Test {
public:
    enum class RowOrder { TopDown, BottomUp };

    static void SetUpTestSuite() { CreateSuiteContext(VxGLTestConfig{}); }
    static void TearDownTestSuite();

protected:
    // A suite that needs another size or other bits hides SetUpTestSuite and calls this
    // (VxGLTestSized does it for the size).
    static void CreateSuiteContext(const VxGLTestConfig& config);

    void SetUp() override;

    static VxGLContext* Context();
    static VxNativeWindow* Window();
    static const VxGLTestConfig& Config();
    static int Width();
    static int Height();
    // Remakes the off-screen surface at this size; the context stays the same.
    static bool ResizeSurface(int width, int height);

    // Colour of a rectangle, x and y in GL window coordinates (from the bottom-left).
    static VxTestImage ReadRGBA(int x, int y, int width, int height,
                                RowOrder order = RowOrder::TopDown);
    static VxTestImage ReadAllRGBA(RowOrder order = RowOrder::TopDown);
    // Stencil values of a rectangle, bottom row first (GL order).
    static std::vector<int> ReadStencil(int x, int y, int width, int height);
    static float ReadDepth(int x, int y);
    // Pixels of the whole surface within tolerance of the colour.
    static int CountColour(std::uint8_t r, std::uint8_t g, std::uint8_t b, int tolerance = 0);
    // Drains glGetError: "" when there was none, else the error names joined by spaces.
    static std::string GLErrors();
};

template <int W, int H, int DepthBits = 24, int StencilBits = 8>
class VxGLTestSized : public VxGLTest {
public:
    static void SetUpTestSuite() {
        VxGLTestConfig config;
        config.width = W;
        config.height = H;
        config.depthBits = DepthBits;
        config.stencilBits = StencilBits;
        CreateSuiteContext(config);
    }
};
