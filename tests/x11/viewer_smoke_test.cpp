// The built vxview program under the X server: it opens its GLFW window (no GL context of GLFW's
// own), the library makes the context on the X11 window, a few frames are drawn, a pick runs, the
// snapshot taken through CreateSnapshot shows the patient over the background in every view of
// the five-view layout, and the quit key sent through the server ends it with status 0.
// A wrong case gives one error line before any window opens, so that part needs no display.
#include "VxTestImage.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int kW = 480;
constexpr int kH = 300;
constexpr int kBkR = 30, kBkG = 40, kBkB = 110;

std::string Exe() {
    return VxTestOutputDir() + "/../bin/vxview";
}
std::string Dir() {
    return VxTestOutputDir() + "/viewer_smoke";
}

std::string ReadText(const std::string& path) {
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

struct RunResult {
    bool exited = false;
    int status = -1;
    std::string out;
    std::string err;
};

RunResult RunViewer(const std::string& args) {
    // A viewer that hangs must not hang the test run.
    const std::string cmd = "timeout 60 '" + Exe() + "' " + args + " >'" + Dir() + "/out.txt' 2>'" +
                            Dir() + "/err.txt'";
    const int raw = std::system(cmd.c_str());
    RunResult r;
    r.exited = WIFEXITED(raw);
    r.status = r.exited ? WEXITSTATUS(raw) : -1;
    r.out = ReadText(Dir() + "/out.txt");
    r.err = ReadText(Dir() + "/err.txt");
    return r;
}

// A uniform 24-bit BMP of the window's size.
std::string Background() {
    const std::string path = Dir() + "/background.bmp";
    VxWriteBmp24(path, kW, kH, VxTestRgb{kBkR, kBkG, kBkB});
    return path;
}

int ModelPixels(const VxTestImage& img, int x0, int y0, int w, int h) {
    int n = 0;
    for (int y = y0; y < y0 + h; ++y) {
        for (int x = x0; x < x0 + w; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            if (std::abs(p[0] - kBkR) + std::abs(p[1] - kBkG) + std::abs(p[2] - kBkB) > 24) {
                ++n;
            }
        }
    }
    return n;
}

class ViewerSmokeTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists(Exe())) {
            GTEST_SKIP() << "vxview is not built (GLFW or the case tooling missing)";
        }
        fs::create_directories(Dir());
    }
};

} // namespace

TEST_F(ViewerSmokeTest, DrawsSnapshotsAndQuitsOnItsKey) {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        GTEST_SKIP() << "no X display (scripts/test.sh runs these tests under xvfb-run)";
    }
    const std::string png = Dir() + "/snapshot.png";
    fs::remove(png);
    const RunResult r =
        RunViewer("--size " + std::to_string(kW) + "x" + std::to_string(kH) + " --layout five " +
                  "--background '" + Background() + "' --smoke-test '" + png + "'");
    ASSERT_TRUE(r.exited) << "killed by a signal";
    ASSERT_EQ(r.status, 0) << r.err << r.out;
    EXPECT_NE(r.out.find("quit key received"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("Q or Esc"), std::string::npos) << "the key list is printed at start";

    VxTestImage img;
    ASSERT_TRUE(VxLoadPng(png, &img));
    ASSERT_EQ(img.width, kW);
    ASSERT_EQ(img.height, kH);
    // Background where nothing is drawn: the window's corner.
    EXPECT_EQ(ModelPixels(img, 0, 0, 3, 3), 0);
    // Each of the five views shows the patient (rectangles of the five-view layout, y from the
    // top, kept clear of the dividing lines).
    const int W = kW, H = kH, m = 3;
    struct R {
        int x, y, w, h;
    };
    const std::vector<R> views = {
        {0 + m, m, W / 3 - 1 - 2 * m, 2 * H / 5 - 1 - 2 * m},
        {W / 3 + 1 + m, m, W / 3 - 1 - 2 * m, 2 * H / 5 - 1 - 2 * m},
        {2 * W / 3 + 1 + m, m, W / 3 - 1 - 2 * m, 2 * H / 5 - 1 - 2 * m},
        {0 + m, H - (3 * H / 5 - 1) + m, W / 2 - 1 - 2 * m, 3 * H / 5 - 1 - 2 * m},
        {W / 2 + 1 + m, H - (3 * H / 5 - 1) + m, W / 2 - 1 - 2 * m, 3 * H / 5 - 1 - 2 * m},
    };
    for (size_t i = 0; i < views.size(); ++i) {
        const R& v = views[i];
        EXPECT_GT(ModelPixels(img, v.x, v.y, v.w, v.h), v.w * v.h / 25) << "view " << i;
    }
}

TEST_F(ViewerSmokeTest, WrongCaseGivesOneLineBeforeAnyWindow) {
    const RunResult r = RunViewer("'" + Dir() + "/no_such_case'");
    EXPECT_TRUE(r.exited);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err.rfind("vxview: ", 0), 0u) << r.err;
    EXPECT_EQ(r.err.find('\n'), r.err.size() - 1) << r.err;
    EXPECT_NE(r.err.find("no_such_case"), std::string::npos) << r.err;

    const RunResult bad = RunViewer("--layout sideways");
    EXPECT_EQ(bad.status, 2);
    EXPECT_NE(bad.err.find("--layout"), std::string::npos) << bad.err;
}
