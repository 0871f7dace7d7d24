// Screen-space and model-space primitives of the shader path on a real context: the pixel boxes
// they cover exactly (window pixels with y down for the screen family, the view's transforms and
// y up for the model family), the keyed editor image that lets the background show through its
// white, a corrupt image that draws black and says so, and the GL state each leaves behind.
#include "VxGLTest.h"
#include "VxTestPaths.h"

#include <frame/NuCameraSnapshot.h>
#include <mesh/VxDrawerFiles.h>
#include <shader/RenderV1.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <sys/stat.h>

namespace {

constexpr float kNear = 0.1f;
constexpr float kFar = 100.0f;
constexpr float kZ = -(kNear + kFar) / 2.0f;

class ShaderPrimitivesTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        glViewport(0, 0, Width(), Height());
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
    }
    float W() const { return static_cast<float>(Width()); }
    float H() const { return static_cast<float>(Height()); }

    // Every pixel of the read-back (top-down, x right) is `on` where inside(x, y) holds and
    // black elsewhere.
    void ExpectCoverage(const std::function<bool(int, int)>& inside, std::uint8_t r, std::uint8_t g,
                        std::uint8_t b, const std::string& what) {
        const VxTestImage img = ReadAllRGBA();
        int wrong = 0, covered = 0;
        for (int y = 0; y < img.height; ++y) {
            for (int x = 0; x < img.width; ++x) {
                const std::uint8_t* p = img.Pixel(x, y);
                const bool in = inside(x, y);
                covered += in;
                const bool ok = in ? (p[0] == r && p[1] == g && p[2] == b)
                                   : (p[0] == 0 && p[1] == 0 && p[2] == 0);
                if (!ok && ++wrong <= 5) {
                    ADD_FAILURE() << what << ": pixel " << x << "," << y << " is " << int(p[0])
                                  << "," << int(p[1]) << "," << int(p[2]) << (in ? " inside" : "");
                }
            }
        }
        EXPECT_EQ(wrong, 0) << what;
        EXPECT_GT(covered, 0) << what;
    }
};

// Model space that is window pixels with y up.
void SetPixelCamera(int w, int h) {
    NuCameraSnapshot* camera = NuCameraSnapshot::GetInstance();
    const glm::mat4 ortho = glm::ortho(0.0f, float(w), 0.0f, float(h), -10.0f, 10.0f);
    double m[16];
    for (int i = 0; i < 16; ++i) {
        m[i] = glm::value_ptr(ortho)[i];
    }
    camera->SetProjection(m);
    camera->SetEye(0, 0, 0);
    camera->SetCenter(0, 0, -1);
    camera->SetUp(0, 1, 0);
    camera->SetViewTransform(nullptr);
}

TEST_F(ShaderPrimitivesTest, ScreenFamilyCoversExactlyItsPixelsWithYDown) {
    RenderV1* r = RenderV1::GetInstance();
    const glm::vec3 white(1, 1, 1);

    r->DrawQuadrangle3(CPoint(10, 20), CPoint(50, 20), CPoint(50, 60), CPoint(10, 60), kZ, white,
                       W(), H(), kNear, kFar);
    ExpectCoverage([](int x, int y) { return x >= 10 && x < 50 && y >= 20 && y < 60; }, 255, 255,
                   255, "quadrangle");

    // No pixel centre lies on an edge of this triangle, so coverage is exact.
    glClear(GL_COLOR_BUFFER_BIT);
    r->DrawTriangle3(CPoint(10, 10), CPoint(50, 10), CPoint(10, 30), kZ, glm::vec3(0, 1, 0), W(),
                     H(), kNear, kFar);
    ExpectCoverage(
        [](int x, int y) {
            const double cx = x + 0.5, cy = y + 0.5;
            return cx > 10 && cy > 10 && (cx - 10) + 2 * (cy - 10) < 40;
        },
        0, 255, 0, "triangle");

    // Lines end one pixel short of their second point.
    glClear(GL_COLOR_BUFFER_BIT);
    r->DrawLine3(CPoint(10, 100), CPoint(50, 100), kZ, glm::vec3(1, 0, 0), W(), H(), kNear, kFar);
    r->DrawLine3(CPoint(200, 10), CPoint(200, 40), kZ, glm::vec3(1, 0, 0), W(), H(), kNear, kFar);
    const VxTestImage lines = ReadAllRGBA();
    int horizontal = 0, vertical = 0, stray = 0;
    for (int y = 0; y < lines.height; ++y) {
        for (int x = 0; x < lines.width; ++x) {
            if (lines.Pixel(x, y)[0] == 0) {
                continue;
            }
            if ((y == 99 || y == 100) && x >= 10 && x < 50) {
                ++horizontal;
            } else if ((x == 199 || x == 200) && y >= 10 && y < 40) {
                ++vertical;
            } else {
                ++stray;
            }
        }
    }
    EXPECT_EQ(horizontal, 40);
    EXPECT_EQ(vertical, 30);
    EXPECT_EQ(stray, 0);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderPrimitivesTest, ModelFamilyGoesThroughTheViewWithYUp) {
    RenderV1* r = RenderV1::GetInstance();
    SetPixelCamera(Width(), Height());
    // The model-space quadrangle and line draw in whatever colour the billboard program last
    // had: here the green of a triangle drawn off to the side.
    r->DrawTriangle3(CPoint(-10, -10), CPoint(-5, -10), CPoint(-10, -5), kZ, glm::vec3(0, 1, 0),
                     W(), H(), kNear, kFar);
    r->DrawQuadrangle(VxPoint(10, 10, 0), VxPoint(50, 10, 0), VxPoint(50, 50, 0),
                      VxPoint(10, 50, 0));
    const int h = Height();
    ExpectCoverage([h](int x, int y) { return x >= 10 && x < 50 && y >= h - 50 && y < h - 10; }, 0,
                   255, 0, "model quadrangle");

    glClear(GL_COLOR_BUFFER_BIT);
    r->DrawLineNew(VxPoint(100, 120, 0), VxPoint(150, 120, 0), VxColor(255, 0, 0));
    r->DrawLine(VxPoint(100, 200, 0), VxPoint(150, 200, 0));
    const VxTestImage img = ReadAllRGBA();
    int red = 0, green = 0, other = 0;
    for (int y = 0; y < img.height; ++y) {
        for (int x = 0; x < img.width; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            if (p[0] == 255 && p[1] == 0 && (y == h - 120 || y == h - 121)) {
                ++red;
            } else if (p[1] == 255 && p[0] == 0 && (y == h - 200 || y == h - 201)) {
                ++green;
            } else if (p[0] || p[1] || p[2]) {
                ++other;
            }
        }
    }
    EXPECT_EQ(red, 50);
    EXPECT_EQ(green, 50);
    EXPECT_EQ(other, 0);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderPrimitivesTest, KeyedImageShowsTheBackgroundThroughItsWhite) {
    RenderV1* r = RenderV1::GetInstance();
    r->editorTexturesMade = false;
    testing::internal::CaptureStdout();
    r->PrepareDrawcreatemodify();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    std::vector<unsigned> textures;
    for (const auto& e : r->editorImages) {
        EXPECT_TRUE(glIsTexture(e.second.texture)) << e.first;
        textures.push_back(e.second.texture);
    }
    // Once only.
    r->PrepareDrawcreatemodify();
    std::size_t i = 0;
    for (const auto& e : r->editorImages) {
        EXPECT_EQ(e.second.texture, textures[i++]);
    }

    const NuPngImage lock = r->editorImages.at(PngBtnLockNormal);
    ASSERT_NE(lock.pixels, nullptr);
    const int x0 = 60, y0 = 40;
    for (const bool blendBefore : {false, true}) {
        glClear(GL_COLOR_BUFFER_BIT);
        // A red backdrop under the icon.
        r->DrawQuadrangle3(CPoint(x0 - 4, y0 - 4), CPoint(x0 + lock.width + 4, y0 - 4),
                           CPoint(x0 + lock.width + 4, y0 + lock.height + 4),
                           CPoint(x0 - 4, y0 + lock.height + 4), kZ, glm::vec3(1, 0, 0), W(), H(),
                           kNear, kFar);
        if (blendBefore) {
            glEnable(GL_BLEND);
            glBlendFunc(GL_ONE, GL_ZERO);
        }
        r->DrawQuadrangle3forPng(PngBtnLockNormal, CPoint(x0, y0), CPoint(x0 + lock.width, y0),
                                 CPoint(x0 + lock.width, y0 + lock.height),
                                 CPoint(x0, y0 + lock.height), kZ, glm::vec3(0, 0, 1), W(), H(),
                                 kNear, kFar);
        EXPECT_EQ(glIsEnabled(GL_BLEND), blendBefore ? GL_TRUE : GL_FALSE);
        GLint src = 0, dst = 0, program = -1, texture = -1;
        glGetIntegerv(GL_BLEND_SRC_RGB, &src);
        glGetIntegerv(GL_BLEND_DST_RGB, &dst);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        if (blendBefore) {
            EXPECT_EQ(src, GL_ONE);
            EXPECT_EQ(dst, GL_ZERO);
        }
        EXPECT_EQ(program, 0);
        EXPECT_EQ(texture, 0);
        glDisable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

        // Pixel for pixel: near-white of the image is the red behind it, the rest is the image,
        // upright (its first row at the top).
        const VxTestImage img = ReadAllRGBA();
        int keyed = 0, drawn = 0, wrong = 0;
        for (int v = 0; v < lock.height; ++v) {
            for (int u = 0; u < lock.width; ++u) {
                const unsigned char* texel = lock.pixels + (v * lock.width + u) * 3;
                const std::uint8_t* p = img.Pixel(x0 + u, y0 + v);
                const bool white = texel[0] > 221;
                const int er = white ? 255 : texel[0];
                const int eg = white ? 0 : texel[1];
                const int eb = white ? 0 : texel[2];
                if (std::abs(p[0] - er) > 3 || std::abs(p[1] - eg) > 3 || std::abs(p[2] - eb) > 3) {
                    if (++wrong <= 3) {
                        ADD_FAILURE()
                            << u << "," << v << ": " << int(p[0]) << "," << int(p[1]) << ","
                            << int(p[2]) << " for " << er << "," << eg << "," << eb;
                    }
                }
                (white ? keyed : drawn)++;
            }
        }
        EXPECT_EQ(wrong, 0) << "blending on before: " << blendBefore;
        EXPECT_GT(keyed, 0);
        EXPECT_GT(drawn, 0);
    }
    EXPECT_EQ(GLErrors(), "");
}

// Reads the files of `dir` instead of the library's, and puts the library's back afterwards.
struct ReadFrom {
    explicit ReadFrom(const std::string& dir) {
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(dir));
    }
    ~ReadFrom() {
        VxDrawerFiles::SetDirectoryOverride(CString());
        testing::internal::CaptureStdout();
        RenderV1::GetInstance()->SetUpdata();
        testing::internal::GetCapturedStdout();
        RenderV1::GetInstance()->editorTexturesMade = false;
    }
};

TEST_F(ShaderPrimitivesTest, CorruptOrMissingImagesDrawBlackAndSaySo) {
    RenderV1* r = RenderV1::GetInstance();
    const std::string dir = VxTestOutputDir() + "/shader_primitives_badpng";
    std::system(("rm -rf '" + dir + "'").c_str());
    mkdir(dir.c_str(), 0755);
    mkdir((dir + "/pngofcreatemodify").c_str(), 0755);
    {
        std::ofstream bad(dir + "/pngofcreatemodify/btn_lock_nor.png", std::ios::binary);
        bad << "\x89PNG\r\n\x1a\n this is no image";
    }
    {
        ReadFrom scratch(dir);
        testing::internal::CaptureStdout();
        r->SetUpdata();
        testing::internal::GetCapturedStdout();
        r->editorTexturesMade = false;
        r->DrawQuadrangle3(CPoint(50, 50), CPoint(100, 50), CPoint(100, 100), CPoint(50, 100), kZ,
                           glm::vec3(1, 0, 0), W(), H(), kNear, kFar);
        testing::internal::CaptureStdout();
        r->DrawQuadrangle3forPng(PngBtnLockNormal, CPoint(60, 60), CPoint(90, 60), CPoint(90, 90),
                                 CPoint(60, 90), kZ, glm::vec3(1, 1, 1), W(), H(), kNear, kFar);
        std::string expected;
        for (std::size_t i = 0; i < r->editorImages.size(); ++i) {
            expected += "Failed to load texture\n";
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
        // Red around, black where the image should be.
        const VxTestImage img = ReadAllRGBA();
        for (int y = 50; y < 100; ++y) {
            for (int x = 50; x < 100; ++x) {
                const bool inner = x >= 60 && x < 90 && y >= 60 && y < 90;
                ASSERT_EQ(img.Pixel(x, y)[0], inner ? 0 : 255) << x << "," << y;
            }
        }
        EXPECT_EQ(GLErrors(), "");
    }
    ASSERT_NE(r->editorImages.at(PngBtnLockNormal).pixels, nullptr) << "the library's images";
}

TEST_F(ShaderPrimitivesTest, EveryPrimitiveLeavesNoProgramArrayOrBufferBound) {
    RenderV1* r = RenderV1::GetInstance();
    SetPixelCamera(Width(), Height());
    const glm::vec3 c(1, 1, 0);
    const std::pair<const char*, std::function<void()>> draws[] = {
        {"DrawLine", [&] { r->DrawLine(VxPoint(1, 1, 0), VxPoint(9, 9, 0)); }},
        {"DrawLineNew",
         [&] { r->DrawLineNew(VxPoint(1, 1, 0), VxPoint(9, 9, 0), VxColor(1, 2, 3)); }},
        {"DrawQuadrangle",
         [&] {
             r->DrawQuadrangle(VxPoint(1, 1, 0), VxPoint(9, 1, 0), VxPoint(9, 9, 0),
                               VxPoint(1, 9, 0));
         }},
        {"DrawLine3",
         [&] { r->DrawLine3(CPoint(1, 1), CPoint(9, 9), kZ, c, W(), H(), kNear, kFar); }},
        {"DrawTriangle3",
         [&] {
             r->DrawTriangle3(CPoint(1, 1), CPoint(9, 1), CPoint(1, 9), kZ, c, W(), H(), kNear,
                              kFar);
         }},
        {"DrawQuadrangle3",
         [&] {
             r->DrawQuadrangle3(CPoint(1, 1), CPoint(9, 1), CPoint(9, 9), CPoint(1, 9), kZ, c, W(),
                                H(), kNear, kFar);
         }},
        {"DrawQuadrangle3forPng",
         [&] {
             r->DrawQuadrangle3forPng(PngBtnAddNormal, CPoint(1, 1), CPoint(9, 1), CPoint(9, 9),
                                      CPoint(1, 9), kZ, c, W(), H(), kNear, kFar);
         }},
        {"DrawGraphicBillBoard3d", [&] { r->DrawGraphicBillBoard3d(); }},
    };
    for (const auto& [what, draw] : draws) {
        draw();
        GLint program = -1, vao = -1, buffer = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vao);
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
        EXPECT_EQ(program, 0) << what;
        EXPECT_EQ(vao, 0) << what;
        EXPECT_EQ(buffer, 0) << what;
        EXPECT_FALSE(glIsEnabled(GL_BLEND)) << what;
        EXPECT_EQ(GLErrors(), "") << what;
    }

    // The billboard queue only records; drawing it puts nothing on screen.
    glClear(GL_COLOR_BUFFER_BIT);
    r->billboardQueue.clear();
    r->SendBillBoard(VxPoint(10, 10, 0), VxPoint(60, 60, 0), CString(L"11"));
    r->SendBillBoard(VxPoint(20, 10, 0), VxPoint(70, 60, 0), CString(L"21"));
    r->DrawBillBoard(VxPoint(10, 10, 0), VxPoint(60, 60, 0), CString(L"x"));
    ASSERT_EQ(r->billboardQueue.size(), 2u);
    EXPECT_EQ(r->billboardQueue[1].text.Str(), L"21");
    EXPECT_EQ(r->billboardQueue[1].first[0], 20);
    r->DrawGraphicBillBoard3d();
    EXPECT_EQ(CountColour(0, 0, 0), Width() * Height());
    r->billboardQueue.clear();
}

} // namespace
