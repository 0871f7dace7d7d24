// The built vxrender program, run as a user runs it on the synthetic patient: every layout puts
// the patient into every one of its views (view rectangles computed here from the layout rules),
// steps, jaws, display modes and the selection change the picture, and every kind of bad input
// (missing, empty or corrupt case, bad option, unreadable background) ends in
// exactly one "vxrender: ..." line on stderr, a non-zero exit and no picture, never a crash.
// Each run costs a context and a case load, so pictures are reused between checks wherever the
// same options would be rendered twice.
#include "VxTestImage.h"
#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int kW = 360;
constexpr int kH = 240;
// The background picture's colour, far from tooth, gum and line colours.
constexpr int kBkR = 20, kBkG = 90, kBkB = 40;

struct RunResult {
    bool exited = false; // false: killed by a signal
    int status = -1;
    std::string out;
    std::string err;
};

std::string ReadText(const std::string& path) {
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

std::string Quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) {
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return q + "'";
}

// A view rectangle on screen (y from the top), shrunk away from the layout lines.
struct Rect {
    int x, y, w, h;
};
Rect Inner(int ox, int oyFromBottom, int w, int h) {
    const int m = 3;
    return Rect{ox + m, kH - (oyFromBottom + h) + m, w - 2 * m, h - 2 * m};
}

class CliRenderTest : public ::testing::Test {
protected:
    static std::string Exe() { return VxTestOutputDir() + "/../bin/vxrender"; }
    static std::string Dir() { return VxTestOutputDir() + "/cli_render"; }

    void SetUp() override {
        if (!fs::exists(Exe())) {
            GTEST_SKIP() << "vxrender is not built (VX_BUILD_APPS=OFF or no case tooling)";
        }
        fs::create_directories(Dir());
    }

    static RunResult Run(const std::vector<std::string>& args) {
        std::string cmd = Quote(Exe());
        for (const std::string& a : args) {
            cmd += " " + Quote(a);
        }
        const std::string out = Dir() + "/stdout.txt";
        const std::string err = Dir() + "/stderr.txt";
        cmd += " >" + Quote(out) + " 2>" + Quote(err);
        const int raw = std::system(cmd.c_str());
        const bool exited = WIFEXITED(raw);
        return RunResult{exited, exited ? WEXITSTATUS(raw) : -1, ReadText(out), ReadText(err)};
    }

    // Runs and loads the one picture written; fails the test when either does not work.
    static VxTestImage Render(std::vector<std::string> args, const std::string& name, int w = kW,
                              int h = kH) {
        const std::string png = Dir() + "/" + name + ".png";
        fs::remove(png);
        args.insert(args.end(), {"--size", std::to_string(w) + "x" + std::to_string(h), "-o", png,
                                 "--background", Background()});
        const RunResult r = Run(args);
        EXPECT_TRUE(r.exited && r.status == 0) << r.err;
        EXPECT_EQ(r.out, png + "\n");
        VxTestImage img;
        EXPECT_TRUE(VxLoadPng(png, &img)) << png;
        return img;
    }

    static std::string Background() {
        const std::string path = Dir() + "/background.bmp";
        if (fs::exists(path)) {
            return path;
        }
        VxWriteBmp24(path, kW, kH, VxTestRgb{kBkR, kBkG, kBkB});
        return path;
    }

    // Pixels of a rectangle (x, y from the top) that are not the background.
    static int ModelPixels(const VxTestImage& img, int x0, int y0, int w, int h) {
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
    static int ModelPixels(const VxTestImage& img) { return ModelPixels(img, 0, 0, kW, kH); }
    // Every rectangle has the patient over at least a 25th of it.
    static void ExpectPatientIn(const VxTestImage& img, const std::vector<Rect>& views) {
        for (size_t i = 0; i < views.size(); ++i) {
            const Rect& r = views[i];
            EXPECT_GT(ModelPixels(img, r.x, r.y, r.w, r.h), r.w * r.h / 25) << "view " << i;
        }
    }

    static int DifferentPixels(const VxTestImage& a, const VxTestImage& b) {
        EXPECT_EQ(a.width, b.width);
        EXPECT_EQ(a.height, b.height);
        int n = 0;
        for (size_t i = 0; i + 3 < a.rgba.size() && i + 3 < b.rgba.size(); i += 4) {
            if (std::abs(a.rgba[i] - b.rgba[i]) + std::abs(a.rgba[i + 1] - b.rgba[i + 1]) +
                    std::abs(a.rgba[i + 2] - b.rgba[i + 2]) >
                12) {
                ++n;
            }
        }
        return n;
    }

    // The failure contract: one line, a non-zero exit, no crash, nothing on stdout.
    static void ExpectOneErrorLine(const RunResult& r, const std::string& mentions) {
        EXPECT_TRUE(r.exited) << "killed by a signal";
        EXPECT_NE(r.status, 0);
        EXPECT_TRUE(r.out.empty()) << r.out;
        ASSERT_FALSE(r.err.empty());
        EXPECT_EQ(r.err.rfind("vxrender: ", 0), 0u) << r.err;
        EXPECT_EQ(r.err.find('\n'), r.err.size() - 1) << "more than one line: " << r.err;
        EXPECT_NE(r.err.find(mentions), std::string::npos) << r.err;
    }
};

} // namespace

TEST_F(CliRenderTest, EveryLayoutShowsThePatientInEveryView) {
    const VxTestImage single = Render({}, "single");
    ASSERT_EQ(single.width, kW);
    ASSERT_EQ(single.height, kH);
    const int model = ModelPixels(single);
    // Teeth and gums cover a fair part of the view, and the corners are background.
    EXPECT_GT(model, kW * kH / 20);
    EXPECT_LT(model, kW * kH * 9 / 10);
    EXPECT_EQ(ModelPixels(single, 0, 0, 4, 4), 0);
    EXPECT_EQ(ModelPixels(single, kW - 4, kH - 4, 4, 4), 0);
    // The default is the shader path on this context; the fixed path puts the patient at the same
    // place in other colours.
    const VxTestImage fixed = Render({"--path", "fixed"}, "single_fixed");
    EXPECT_GT(DifferentPixels(single, fixed), kW * kH / 50);
    EXPECT_NEAR(ModelPixels(fixed), model, model / 20);

    // The five-view rectangles: three on top above 3H/5, two below.
    const int W = kW, H = kH;
    ExpectPatientIn(Render({"--layout", "five"}, "five"),
                    {Inner(0, 3 * H / 5, W / 3 - 1, 2 * H / 5 - 1),
                     Inner(W / 3 + 1, 3 * H / 5, W / 3 - 1, 2 * H / 5 - 1),
                     Inner(2 * W / 3 + 1, 3 * H / 5, W / 3 - 1, 2 * H / 5 - 1),
                     Inner(0, 0, W / 2 - 1, 3 * H / 5 - 1),
                     Inner(W / 2 + 1, 0, W / 2 - 1, 3 * H / 5 - 1)});
    for (const char* layout : {"compare", "jaws"}) {
        SCOPED_TRACE(layout);
        ExpectPatientIn(Render({"--layout", layout}, layout),
                        {Inner(0, 0, W / 2, H), Inner(W / 2, 0, W / 2, H)});
    }

    // Four views; then each jaw alone covers less, and the two differ.
    const VxTestImage both = Render({"--layout", "four"}, "four_both");
    ExpectPatientIn(both, {Inner(0, H / 2, W / 2, H / 2), Inner(W / 2 + 1, H / 2, W / 2, H / 2),
                           Inner(0, 0, W / 2, H / 2), Inner(W / 2 + 1, 0, W / 2, H / 2)});
    const VxTestImage upper = Render({"--layout", "four", "--jaws", "upper"}, "four_upper");
    const VxTestImage lower = Render({"--layout", "four", "--jaws", "lower"}, "four_lower");
    EXPECT_LT(ModelPixels(upper), ModelPixels(both));
    EXPECT_LT(ModelPixels(lower), ModelPixels(both));
    EXPECT_GT(DifferentPixels(upper, lower), kW * kH / 50);

    // Display modes and the selection against the solid single view above.
    const VxTestImage edges = Render({"--display", "edges"}, "mode_edges");
    const VxTestImage points = Render({"--display", "points"}, "mode_points");
    const VxTestImage solidEdges = Render({"--display", "solid+edges"}, "mode_solid_edges");
    // At this size the dense meshes' points and edges cover about what the surfaces cover, so
    // the modes are told apart by colour, pixel for pixel, not by area.
    EXPECT_GT(DifferentPixels(single, edges), kW * kH / 20);
    EXPECT_GT(DifferentPixels(single, points), kW * kH / 20);
    EXPECT_GT(DifferentPixels(edges, points), kW * kH / 20);
    EXPECT_GT(DifferentPixels(single, solidEdges), 100);
    EXPECT_GT(DifferentPixels(single, Render({"--select", "11,21"}, "selected")), 50);
    EXPECT_GT(DifferentPixels(single, Render({"--highlight", "11,21"}, "highlighted")), 50);
}

// With the editor the view is zoomed onto the crowns, so the dentition spans the picture where
// the plain view shows the background beside it; the start plan's space card shows in its pale
// blue, the value cards carry black digits.
TEST_F(CliRenderTest, EditorFramesTheDentitionAndDrawsTheCards) {
    const VxTestImage plain = Render({}, "editor_plain");
    const VxTestImage editor = Render({"--editor"}, "editor");
    ASSERT_FALSE(plain.Empty() || editor.Empty());
    // The part of a column, over the middle half of the rows, that shows something.
    const auto covered = [](const VxTestImage& img, int x) {
        int n = 0;
        for (int y = kH / 4; y < kH * 3 / 4; ++y) {
            const std::uint8_t* p = img.Pixel(x, y);
            n += !(p[0] == kBkR && p[1] == kBkG && p[2] == kBkB);
        }
        return n / double(kH / 2);
    };
    for (int x : {kW / 8, kW * 7 / 8}) {
        EXPECT_EQ(covered(plain, x), 0.0) << x;
        EXPECT_GT(covered(editor, x), 0.5) << x << ": the crowns fill the width";
    }
    const auto count = [](const VxTestImage& img, auto&& test) {
        int n = 0;
        for (int y = 0; y < kH; ++y) {
            for (int x = 0; x < kW; ++x) {
                n += test(img.Pixel(x, y));
            }
        }
        return n;
    };
    const auto spaceCard = [](const std::uint8_t* p) {
        return p[0] == 220 && p[1] == 232 && p[2] == 248;
    };
    const auto ink = [](const std::uint8_t* p) { return p[0] < 60 && p[1] < 60 && p[2] < 60; };
    EXPECT_EQ(count(plain, spaceCard), 0);
    EXPECT_GT(count(editor, spaceCard), kW * kH / 200) << "the space card of 21|22";
    EXPECT_GT(count(editor, ink), count(plain, ink) + 20) << "the values' digits";
}

TEST_F(CliRenderTest, AllStepsAreNumberedFramesAndTheTeethMove) {
    const std::string dir = Dir() + "/steps/";
    fs::remove_all(dir);
    const RunResult r = Run({"--step", "all", "--size", "160x100", "-o", dir});
    ASSERT_TRUE(r.exited && r.status == 0) << r.err;
    std::vector<std::string> written;
    std::stringstream ss(r.out);
    for (std::string line; std::getline(ss, line);) {
        written.push_back(line);
    }
    ASSERT_GE(written.size(), 2u) << "the synthetic plan has more than one step";
    for (size_t i = 0; i < written.size(); ++i) {
        char name[64];
        std::snprintf(name, sizeof name, "single_step%02zu.png", i);
        EXPECT_EQ(written[i], dir + name);
        EXPECT_TRUE(fs::exists(written[i]));
    }
    VxTestImage first, last;
    ASSERT_TRUE(VxLoadPng(written.front(), &first));
    ASSERT_TRUE(VxLoadPng(written.back(), &last));
    EXPECT_GT(DifferentPixels(first, last), 20);

    // A step the plan does not have.
    ExpectOneErrorLine(Run({"--step", "9999", "-o", dir + "none.png"}), "--step");
    EXPECT_FALSE(fs::exists(dir + "none.png"));
}

// Pixels within a few steps of a colour, in rows y0 to y1 (from the top).
int PixelsNear(const VxTestImage& img, int r, int g, int b, int y0, int y1) {
    int n = 0;
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < img.width; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            n += std::abs(p[0] - r) <= 12 && std::abs(p[1] - g) <= 12 && std::abs(p[2] - b) <= 12;
        }
    }
    return n;
}

// Gum-coloured pixels: the patient is in the picture.
int GumPixels(const VxTestImage& img) {
    int n = 0;
    for (size_t i = 0; i + 3 < img.rgba.size(); i += 4) {
        const int r = img.rgba[i], g = img.rgba[i + 1], b = img.rgba[i + 2];
        n += r > 190 && g > 90 && g < 170 && b > 90 && b < 170 && r - g > 50;
    }
    return n;
}

TEST_F(CliRenderTest, PicturesShowThroughTheOverlaysWithThePatientOutOfTheWay) {
    // The film is fitted to the view less 400 pixels of width: a wider picture than the others.
    constexpr int w = 800, h = 500;
    const VxTestImage patient = Render({}, "picture_patient", w, h);
    const VxTestImage overlay =
        Render({"--overlay", "panoramic"}, "picture_overlay_panoramic", w, h);
    const VxTestImage shorthand = Render({"--picture", "panoramic"}, "picture_panoramic", w, h);
    ASSERT_FALSE(patient.Empty() || overlay.Empty() || shorthand.Empty());
    EXPECT_GT(GumPixels(patient), 2000);
    EXPECT_LT(GumPixels(overlay), 20) << "the patient covers the film";
    EXPECT_EQ(DifferentPixels(overlay, shorthand), 0) << "--picture is --overlay by another name";
    // Every coloured landmark disc, whole: 10 pixels of radius less its white number (the grey
    // "?" disc cannot be told from the film).
    const struct {
        int r, g, b;
    } discs[] = {{255, 0, 0},   {49, 196, 9},   {243, 98, 47},
                 {53, 51, 200}, {132, 50, 200}, {19, 222, 241}};
    for (const auto& d : discs) {
        EXPECT_GT(PixelsNear(overlay, d.r, d.g, d.b, 0, h), 150)
            << "disc " << d.r << "," << d.g << "," << d.b;
    }

    // The smile photograph upright and in true colours: brown hair in the upper half only.
    const VxTestImage front = Render({"--overlay", "front"}, "picture_overlay_front", w, h);
    ASSERT_FALSE(front.Empty());
    EXPECT_GT(PixelsNear(front, 70, 50, 35, 0, h / 2), 2000);
    EXPECT_EQ(PixelsNear(front, 70, 50, 35, h / 2, h), 0);
}

TEST_F(CliRenderTest, BadInputGivesOneReadableLine) {
    const std::string png = Dir() + "/never.png";
    fs::remove(png);
    ExpectOneErrorLine(Run({Dir() + "/no/such/case", "-o", png}), "does not exist");

    const std::string empty = Dir() + "/empty_case";
    fs::create_directories(empty);
    fs::remove(empty + "/case.json");
    ExpectOneErrorLine(Run({empty, "-o", png}), "case.json");

    const std::string corrupt = Dir() + "/corrupt_case";
    fs::create_directories(corrupt);
    std::ofstream(corrupt + "/case.json") << "{ \"format\": \"vxcase\", \"version\": 1, \n"
                                          << "  \"teeth\": [ { \"fdi\": \"eleven\" ";
    ExpectOneErrorLine(Run({corrupt, "-o", png}), "corrupt_case");

    std::ofstream(Dir() + "/not_a_case.txt") << "hello";
    ExpectOneErrorLine(Run({Dir() + "/not_a_case.txt", "-o", png}), "not a directory");

    RunResult r = Run({"--layout", "six"});
    ExpectOneErrorLine(r, "--layout");
    EXPECT_EQ(r.status, 2);

    ExpectOneErrorLine(Run({"--background", Dir() + "/missing.bmp", "-o", png}), "missing.bmp");
    std::ofstream(Dir() + "/garbage.bmp") << "this is not a picture at all";
    ExpectOneErrorLine(Run({"--background", Dir() + "/garbage.bmp", "-o", png}), "garbage.bmp");
    EXPECT_FALSE(fs::exists(png));

    // Help is not an error and lists the options.
    r = Run({"--help"});
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("--layout"), std::string::npos);
    EXPECT_TRUE(r.err.empty());
}
