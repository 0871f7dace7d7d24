// Glyph text of the shader path on a real context, checked against the project's font read
// directly with FreeType: screen-space labels land pixel for pixel where the font's bitmaps say
// (CJK list rows and ASCII values, line breaks pixelSize + 3 apart), the store reuses what it made,
// the model-space forms lay their lines along the vectors given and from their own anchors, a
// missing font draws nothing and says so, and every form leaves the GL state as it found it.
// Also the golden of the editor's value cards and list rows.
#include "VxGLTest.h"
#include "VxTestPaths.h"

#include <frame/NuCameraSnapshot.h>
#include <mesh/VxDrawerFiles.h>
#include <platform/VxFileSystem.h>
#include <shader/NuTextureFont.h>
#include <shader/RenderV1.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr int kW = 320;
constexpr int kH = 200;
// The editor's orthographic box: z midway between near and far.
constexpr float kNear = 0.1f;
constexpr float kFar = 100.0f;
constexpr float kZ = -(kNear + kFar) / 2.0f;

const glm::vec3 kBlack(0.0f, 0.0f, 0.0f);

// Row A of the editor's list for the gap between teeth 11 and 21: twelve characters.
const wchar_t* const kRowA = L"在11与21之间增加片切";
const wchar_t* const kRowB = L"增加11与21之间的间隙";

std::string FontPath() {
    return VxFileSystem::ToNativePath(VxDrawerFiles::Path(L"\\default.ttf").Str().c_str());
}

// The font as FreeType itself renders it, for the expected pictures.
class ReferenceFont {
public:
    explicit ReferenceFont(int size) {
        FT_Init_FreeType(&library);
        ok = FT_New_Face(library, FontPath().c_str(), 0, &face) == 0;
        if (ok) {
            FT_Set_Char_Size(face, size << 6, size << 6, 72, 72);
        }
    }
    ~ReferenceFont() {
        if (ok) {
            FT_Done_Face(face);
        }
        FT_Done_FreeType(library);
    }
    struct Glyph {
        int left = 0, top = 0, width = 0, rows = 0;
        std::vector<unsigned char> coverage;
    };
    Glyph Render(wchar_t c) {
        Glyph g;
        if (FT_Load_Char(face, static_cast<FT_ULong>(c), FT_LOAD_RENDER)) {
            return g;
        }
        const FT_Bitmap& b = face->glyph->bitmap;
        g.left = face->glyph->bitmap_left;
        g.top = face->glyph->bitmap_top;
        g.width = static_cast<int>(b.width);
        g.rows = static_cast<int>(b.rows);
        for (int y = 0; y < g.rows; ++y) {
            g.coverage.insert(g.coverage.end(), b.buffer + y * b.pitch,
                              b.buffer + y * b.pitch + g.width);
        }
        return g;
    }
    bool ok = false;

private:
    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

// The label as it should come out in black on white: a glyph starts where the last one's
// bearing and width ended, its top at the baseline minus its bitmap top, and every
// `charsPerLine` characters a new line starts pixelSize + 3 lower.
VxTestImage ExpectedLabel(const wchar_t* text, CPoint position, int pixelSize, int charsPerLine) {
    VxTestImage image(kW, kH);
    image.Fill(255, 255, 255);
    ReferenceFont font(pixelSize);
    int x = position.x;
    int y = position.y;
    for (int i = 0; text[i]; ++i) {
        if (i > 0 && i % charsPerLine == 0) {
            x = position.x;
            y += pixelSize + 3;
        }
        const ReferenceFont::Glyph g = font.Render(text[i]);
        for (int row = 0; row < g.rows; ++row) {
            for (int col = 0; col < g.width; ++col) {
                const int px = x + col;
                const int py = y - g.top + row;
                if (px < 0 || py < 0 || px >= kW || py >= kH) {
                    continue;
                }
                const auto v = static_cast<std::uint8_t>(255 - g.coverage[row * g.width + col]);
                std::uint8_t* p = image.Pixel(px, py);
                p[0] = p[1] = p[2] = std::min(p[0], v);
            }
        }
        x += g.left + g.width;
    }
    return image;
}

// Dark pixels of a top-down read-back, as (x, y up from the bottom).
std::vector<std::pair<int, int>> Ink(const VxTestImage& image) {
    std::vector<std::pair<int, int>> ink;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            if (image.Pixel(x, y)[0] < 128) {
                ink.emplace_back(x, image.height - 1 - y);
            }
        }
    }
    return ink;
}

struct GLStateSnapshot {
    GLint program = -1, vao = -1, buffer = -1, texture = -1, src = -1, dst = -1;
    GLboolean blend = GL_FALSE;
    static GLStateSnapshot Take() {
        GLStateSnapshot s;
        glGetIntegerv(GL_CURRENT_PROGRAM, &s.program);
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &s.vao);
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &s.buffer);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &s.texture);
        glGetIntegerv(GL_BLEND_SRC_RGB, &s.src);
        glGetIntegerv(GL_BLEND_DST_RGB, &s.dst);
        s.blend = glIsEnabled(GL_BLEND);
        return s;
    }
    bool operator==(const GLStateSnapshot& o) const {
        return program == o.program && vao == o.vao && buffer == o.buffer && texture == o.texture &&
               src == o.src && dst == o.dst && blend == o.blend;
    }
};

// Model space that is window pixels, y up: the model-space forms draw through this camera.
void SetPixelCamera() {
    NuCameraSnapshot* camera = NuCameraSnapshot::GetInstance();
    const glm::mat4 ortho = glm::ortho(0.0f, float(kW), 0.0f, float(kH), -10.0f, 10.0f);
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

class ShaderTextTest : public VxGLTestSized<kW, kH> {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        RenderV1* r = RenderV1::GetInstance();
        if (!r->textureFont) {
            r->GenTextureFont();
        }
        glViewport(0, 0, kW, kH);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
    }
    // Blending writes coverage into the target's alpha too; only the colour is seen.
    static VxTestImage OpaqueReadBack() {
        VxTestImage image = ReadAllRGBA();
        for (std::size_t i = 3; i < image.rgba.size(); i += 4) {
            image.rgba[i] = 255;
        }
        return image;
    }
    void Label(const wchar_t* text, CPoint at, int pixelSize, int charsPerLine) {
        RenderV1::GetInstance()->RenderText3(at, kZ, text, kBlack, float(kW), float(kH), kNear,
                                             kFar, pixelSize, charsPerLine);
    }
};

TEST_F(ShaderTextTest, LabelsMatchTheFontsBitmapsWithLineBreaks) {
    ASSERT_TRUE(ReferenceFont(16).ok) << "default.ttf is missing beside the library";
    const std::wstring twoRows = std::wstring(kRowA) + kRowB;
    struct Case {
        const char* what;
        std::wstring text;
        CPoint at;
        int pixelSize;
        int charsPerLine;
        int lines;
    };
    const Case cases[] = {
        {"list row, one line", kRowA, CPoint(8, 40), 16, 12, 1},
        {"two list rows, 12 a line", twoRows, CPoint(8, 40), 16, 12, 2},
        {"nine digits, 4 a line", L"123456789", CPoint(30, 60), 16, 4, 3},
        {"card value", L"1.2", CPoint(100, 120), 24, 14, 1},
    };
    for (const Case& c : cases) {
        glClear(GL_COLOR_BUFFER_BIT);
        const GLStateSnapshot before = GLStateSnapshot::Take();
        Label(c.text.c_str(), c.at, c.pixelSize, c.charsPerLine);
        EXPECT_EQ(GLErrors(), "") << c.what;
        EXPECT_TRUE(GLStateSnapshot::Take() == before) << c.what;
        const VxTestImage actual = OpaqueReadBack();
        const VxTestImage expected =
            ExpectedLabel(c.text.c_str(), c.at, c.pixelSize, c.charsPerLine);
        EXPECT_TRUE(VxCompareImages(actual, expected, 2, 0.05,
                                    std::string("text_") + std::to_string(&c - cases)))
            << c.what;
        // Lines pixelSize + 3 apart: the ink falls into that many bands of rows.
        std::vector<int> rows;
        for (const auto& p : Ink(actual)) {
            rows.push_back(kH - 1 - p.second);
        }
        ASSERT_FALSE(rows.empty()) << c.what;
        std::sort(rows.begin(), rows.end());
        rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
        int bands = 1;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            bands += rows[i] - rows[i - 1] > 1;
        }
        EXPECT_EQ(bands, c.lines) << c.what;
    }
    // The second of two equal lines is the first moved down by 19 pixels.
    glClear(GL_COLOR_BUFFER_BIT);
    Label((std::wstring(kRowA) + kRowA).c_str(), CPoint(8, 40), 16, 12);
    const VxTestImage twice = ReadAllRGBA();
    int inkPixels = 0;
    for (int y = 24; y < 43; ++y) {
        for (int x = 0; x < kW; ++x) {
            ASSERT_EQ(twice.Pixel(x, y)[0], twice.Pixel(x, y + 19)[0]) << x << "," << y;
            inkPixels += twice.Pixel(x, y)[0] < 128;
        }
    }
    EXPECT_GT(inkPixels, 200);
}

TEST_F(ShaderTextTest, StoreReusesFacesAndCellsOfASizeItHasSeen) {
    RenderV1* r = RenderV1::GetInstance();
    NuTextureFont* font = r->textureFont;
    ASSERT_NE(font, nullptr);
    Label(kRowA, CPoint(8, 40), 16, 12);
    const std::size_t faces = font->faces.size();
    const std::size_t cells = font->glyphsBySize.at(16).size();
    ASSERT_EQ(font->result.size(), 12u);
    std::vector<unsigned> textures;
    for (const NuGlyphCell* cell : font->result) {
        ASSERT_NE(cell->Texture(), 0u);
        textures.push_back(cell->Texture());
    }
    GLuint probe = 0;
    glGenTextures(1, &probe);

    Label(kRowA, CPoint(8, 40), 16, 12);
    font->SetSize(16);
    EXPECT_EQ(font->faces.size(), faces);
    EXPECT_EQ(font->glyphsBySize.at(16).size(), cells);
    std::vector<unsigned> again;
    for (const NuGlyphCell* cell : font->result) {
        again.push_back(cell->Texture());
    }
    EXPECT_EQ(again, textures);
    GLuint next = 0;
    glGenTextures(1, &next);
    EXPECT_EQ(next, probe + 1) << "the same text at the same size made textures";

    // A size never seen: a new face and an empty map, the old size's cells untouched.
    font->SetSize(37);
    EXPECT_EQ(font->faces.size(), faces + 1);
    EXPECT_TRUE(font->glyphsBySize.at(37).empty());
    EXPECT_EQ(font->glyphsBySize.at(16).size(), cells);
    EXPECT_EQ(font->currentFace, *font->faces.at(37));
    glDeleteTextures(1, &probe);
    glDeleteTextures(1, &next);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderTextTest, WideLabelSpreadsOverThreeAnchorsWithPensOfTheirOwn) {
    SetPixelCamera();
    RenderV1* r = RenderV1::GetInstance();
    ASSERT_NE(r->ftFace, nullptr);
    const GLStateSnapshot before = GLStateSnapshot::Take();
    // Seven digits, six CJK characters, two digits; anchors 30 above, 15 below and 60 below
    // the origin (20, 100).
    r->RenderText2New(VxPoint(20, 100, 0), VxVector(1, 0, 0), VxVector(0, 1, 0),
                      L"1234567在与之间增加89", 0.25f, kBlack, true, 1.0f, 1.0f, 1.0f,
                      1.0f / 30.0f);
    EXPECT_EQ(GLErrors(), "");
    EXPECT_TRUE(GLStateSnapshot::Take() == before);
    const std::vector<std::pair<int, int>> ink = Ink(ReadAllRGBA());
    ASSERT_FALSE(ink.empty());
    struct Band {
        int baseline;
        int minX = 1 << 20, maxX = -1, count = 0;
    };
    Band bands[3] = {{130}, {85}, {40}};
    for (const auto& [x, y] : ink) {
        Band* hit = nullptr;
        for (Band& b : bands) {
            // A glyph at scale 0.25 of 48 pixels rises at most 13 above and drops 4 below.
            if (y >= b.baseline - 4 && y <= b.baseline + 14) {
                hit = &b;
            }
        }
        ASSERT_NE(hit, nullptr) << "ink at " << x << "," << y << " outside the three lines";
        hit->minX = std::min(hit->minX, x);
        hit->maxX = std::max(hit->maxX, x);
        ++hit->count;
    }
    for (const Band& b : bands) {
        EXPECT_GT(b.count, 10) << "line at " << b.baseline;
        // Each line starts at its anchor, not where the line above ended.
        EXPECT_GE(b.minX, 20) << "line at " << b.baseline;
        EXPECT_LE(b.minX, 24) << "line at " << b.baseline;
    }
    // Seven digits, six ideographs (wider), two digits.
    EXPECT_GT(bands[0].maxX - bands[0].minX, 40);
    EXPECT_GT(bands[1].maxX - bands[1].minX, bands[0].maxX - bands[0].minX);
    EXPECT_LT(bands[2].maxX - bands[2].minX, 16);

    // Downward: the first anchor is now below the origin, and the glyphs stand upside down
    // under it.
    glClear(GL_COLOR_BUFFER_BIT);
    r->RenderText2New(VxPoint(20, 100, 0), VxVector(1, 0, 0), VxVector(0, 1, 0), L"11", 0.25f,
                      kBlack, false, 1.0f, 1.0f, 1.0f, 1.0f / 30.0f);
    for (const auto& [x, y] : Ink(ReadAllRGBA())) {
        EXPECT_TRUE(y <= 70 && y >= 70 - 14) << x << "," << y;
    }
}

TEST_F(ShaderTextTest, ModelSpaceTextRunsAlongItsFrame) {
    SetPixelCamera();
    RenderV1* r = RenderV1::GetInstance();
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    const GLStateSnapshot before = GLStateSnapshot::Take();
    struct Case {
        const char* what;
        std::function<void()> draw;
        bool vertical;
    };
    const VxPoint o(40, 60, 0);
    const Case cases[] = {
        {"narrow, along x",
         [&] {
             r->RenderText(o, VxPoint(41, 60, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 0),
                           std::string("IPR 0.3mm"), 0, 0, 0.4f, kBlack);
         },
         false},
        {"wide, along x",
         [&] {
             r->RenderText2(o, VxPoint(41, 60, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 0),
                            L"增加间隙0.3", 0, 0, 0.4f, kBlack);
         },
         false},
        // Along +y, up along -x: the line climbs the picture.
        {"wide, along y",
         [&] {
             r->RenderText2(o, VxPoint(40, 61, 0), VxPoint(-1, 0, 0), VxPoint(0, 0, 0),
                            L"增加间隙0.3", 0, 0, 0.4f, kBlack);
         },
         true},
    };
    for (const Case& c : cases) {
        glClear(GL_COLOR_BUFFER_BIT);
        c.draw();
        EXPECT_EQ(GLErrors(), "") << c.what;
        EXPECT_TRUE(GLStateSnapshot::Take() == before) << c.what;
        const auto ink = Ink(ReadAllRGBA());
        ASSERT_GT(ink.size(), 50u) << c.what;
        int minX = kW, maxX = 0, minY = kH, maxY = 0;
        for (const auto& [x, y] : ink) {
            minX = std::min(minX, x);
            maxX = std::max(maxX, x);
            minY = std::min(minY, y);
            maxY = std::max(maxY, y);
        }
        const int along = c.vertical ? maxY - minY : maxX - minX;
        const int across = c.vertical ? maxX - minX : maxY - minY;
        EXPECT_GT(along, 2 * across) << c.what;
        // It starts at the origin.
        EXPECT_NEAR(c.vertical ? minY : minX, c.vertical ? 60 : 40, 4) << c.what;
    }
    glDisable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // The flat form is kept for old callers; it must not fail.
    r->RenderText(std::string("0.3"), 10.0f, 10.0f, 1.0f, kBlack);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderTextTest, ScreenLabelsTurnBlendingOffWhenDone) {
    glEnable(GL_BLEND);
    Label(L"1.2", CPoint(10, 30), 24, 14);
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
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
        RenderV1::GetInstance()->GenTextureFont();
        testing::internal::GetCapturedStdout();
    }
};

TEST_F(ShaderTextTest, WithoutAFontOrAStoreNothingIsDrawnAndNothingFails) {
    RenderV1* r = RenderV1::GetInstance();
    // No store yet (no background has loaded): the label is simply not there.
    NuTextureFont* kept = r->textureFont;
    r->textureFont = nullptr;
    testing::internal::CaptureStdout();
    Label(kRowA, CPoint(8, 40), 16, 12);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    r->textureFont = kept;
    EXPECT_EQ(CountColour(255, 255, 255), kW * kH);

    const std::string dir = VxTestOutputDir() + "/shader_text_nofont";
    std::system(("rm -rf '" + dir + "'").c_str());
    mkdir(dir.c_str(), 0755);
    {
        ReadFrom empty(dir);
        testing::internal::CaptureStdout();
        r->SetUpdata();
        r->GenTextureFont();
        EXPECT_NE(
            testing::internal::GetCapturedStdout().find("ERROR::FREETYPE: Failed to load font"),
            std::string::npos);
        EXPECT_EQ(r->ftFace, nullptr);
        ASSERT_NE(r->textureFont, nullptr);
        EXPECT_EQ(r->textureFont->currentFace, nullptr);
        SetPixelCamera();
        r->asciiCharacters.clear();
        r->wideCharacters.clear();
        testing::internal::CaptureStdout();
        Label(kRowA, CPoint(8, 40), 16, 12);
        r->RenderText2New(VxPoint(20, 100, 0), VxVector(1, 0, 0), VxVector(0, 1, 0), kRowA, 0.25f,
                          kBlack, true, 1.0f, 1.0f, 1.0f, 1.0f / 30.0f);
        r->RenderText2(VxPoint(40, 60, 0), VxPoint(41, 60, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 0),
                       kRowB, 0, 0, 0.4f, kBlack);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        // The narrow store tries every ASCII character and reports each failure.
        testing::internal::CaptureStdout();
        r->RenderText(VxPoint(40, 60, 0), VxPoint(41, 60, 0), VxPoint(0, 1, 0), VxPoint(0, 0, 0),
                      std::string("0.3"), 0, 0, 0.4f, kBlack);
        std::string expected;
        for (int i = 0; i < 128; ++i) {
            expected += "ERROR::FREETYTPE: Failed to load Glyph\n";
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
        EXPECT_TRUE(r->asciiCharacters.empty());
        EXPECT_EQ(CountColour(255, 255, 255), kW * kH);
        EXPECT_EQ(GLErrors(), "");
    }
    ASSERT_NE(r->ftFace, nullptr) << "the library's font is back";
    r->asciiCharacters.clear();
}

// The editor's value cards (".3" and "1.2") and two rows of its list, black on white, drawn with
// the same calls and sizes as the editor: cards with a green border and the value 8 pixels left
// of and 4 below the centre at 24 pixels, rows at 16 pixels with 12 characters a line.
TEST_F(ShaderTextTest, GoldenValueCardsAndListRows) {
    RenderV1* r = RenderV1::GetInstance();
    const glm::vec3 white(1, 1, 1);
    const glm::vec3 green(2 / 255.0f, 187 / 255.0f, 112 / 255.0f);
    const glm::vec3 hover(187 / 255.0f, 215 / 255.0f, 245 / 255.0f);
    auto card = [&](CPoint centre, const wchar_t* value) {
        const CPoint a(centre.x - 24, centre.y - 16), b(centre.x + 24, centre.y - 16),
            c(centre.x + 24, centre.y + 16), d(centre.x - 24, centre.y + 16);
        r->DrawQuadrangle3(a, b, c, d, kZ, white, kW, kH, kNear, kFar);
        r->DrawLine3(a, b, kZ, green, kW, kH, kNear, kFar);
        r->DrawLine3(b, c, kZ, green, kW, kH, kNear, kFar);
        r->DrawLine3(c, d, kZ, green, kW, kH, kNear, kFar);
        r->DrawLine3(d, a, kZ, green, kW, kH, kNear, kFar);
        Label(value, CPoint(centre.x - 8, centre.y + 4), 24, 14);
    };
    auto row = [&](int top, const wchar_t* text, const glm::vec3& background) {
        r->DrawQuadrangle3(CPoint(20, top), CPoint(230, top), CPoint(230, top + 24),
                           CPoint(20, top + 24), kZ, background, kW, kH, kNear, kFar);
        Label(text, CPoint(26, top + 18), 16, 12);
    };
    glClearColor(0.93f, 0.93f, 0.93f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    card(CPoint(60, 40), L".3");
    card(CPoint(160, 40), L"1.2");
    row(100, kRowA, white);
    row(124, kRowB, hover);
    EXPECT_EQ(GLErrors(), "");
    const VxTestImage img = OpaqueReadBack();
    VxWritePng(VxTestOutputDir() + "/shader_text_cards.png", img);
    EXPECT_GT(Ink(img).size(), 400u);
    EXPECT_TRUE(
        VxCompareImageToFile(img, VxTestSourceDir() + "/golden/shader_text_cards.png", 8, 0.2));
}

} // namespace
