// The shader renderer without a GL context: making it reads the images and the font beside the
// library and makes no GL call; the generated assets have the properties the programs rely on;
// missing or corrupt files print the renderer's messages and leave null images, never a crash.
// Also the material presets, whose numbers are the look of every object.
#include "VxTestPaths.h"

#include <frame/OpenGLVersion.h>
#include <mesh/VxDrawerFiles.h>
#include <shader/NuRenderMaterial.h>
#include <shader/RenderV1.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

const std::vector<int> kEditorCodes = {11, 12, 13, 14, 21, 22, 23, 24, 31,
                                       32, 33, 34, 41, 50, 61, 62, 63};

std::string MakeScratchDir(const std::string& name) {
    const std::string dir = VxTestOutputDir() + "/" + name;
    std::system(("rm -rf '" + dir + "'").c_str());
    mkdir(dir.c_str(), 0755);
    return dir;
}

// Reads the files of `dir` instead of the library's, and puts the library's back afterwards.
struct ReadFrom {
    explicit ReadFrom(const std::string& dir) {
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(dir));
    }
    ~ReadFrom() {
        VxDrawerFiles::SetDirectoryOverride(CString());
        RenderV1::GetInstance()->SetUpdata();
    }
};

void ExpectAllImagesNull(const RenderV1* r) {
    EXPECT_EQ(r->gumImagePixels, nullptr);
    EXPECT_EQ(r->gumBumpPixels, nullptr);
    EXPECT_EQ(r->editorImages.size(), kEditorCodes.size());
    for (const auto& e : r->editorImages) {
        EXPECT_EQ(e.second.pixels, nullptr) << e.first;
        EXPECT_EQ(e.second.texture, 0u);
    }
}

TEST(ShaderAssets, MadeWithoutAContextFromTheFilesBesideTheLibrary) {
    testing::internal::CaptureStdout();
    RenderV1* r = RenderV1::GetInstance();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(r->toothShader, nullptr);
    EXPECT_EQ(r->currentMeshShader, nullptr);
    EXPECT_EQ(r->Getthemodel(), nullptr);

    ASSERT_NE(r->gumImagePixels, nullptr);
    ASSERT_NE(r->gumBumpPixels, nullptr);
    ASSERT_NE(r->ftFace, nullptr);
    std::vector<int> codes;
    for (const auto& e : r->editorImages) {
        codes.push_back(e.first);
        EXPECT_NE(e.second.pixels, nullptr) << e.first;
        EXPECT_GT(e.second.width, 0);
        EXPECT_EQ(e.second.texture, 0u) << "textures are made at the first draw, not here";
    }
    EXPECT_EQ(codes, kEditorCodes);
}

TEST(ShaderAssets, GumImagesSuitTheGumProgram) {
    const RenderV1* r = RenderV1::GetInstance();
    ASSERT_NE(r->gumImagePixels, nullptr);
    // Texels are raised to 1.7 and 2.2: the colour map must stay bright to keep the gum pink.
    const int n = r->gumImageWidth * r->gumImageHeight;
    EXPECT_LE(n, 256 * 256) << "uploaded on every textured gum draw";
    int bright = 0;
    for (int i = 0; i < n * 3; ++i) {
        bright += r->gumImagePixels[i] >= 200;
    }
    EXPECT_GT(bright, n * 3 * 95 / 100);
    // Alternate bands are mirrored along u: each row reads the same from either end.
    const int w = r->gumImageWidth;
    for (int y = 0; y < r->gumImageHeight; y += 17) {
        for (int x = 0; x < w; x += 5) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_EQ(r->gumImagePixels[(y * w + x) * 3 + c],
                          r->gumImagePixels[(y * w + (w - 1 - x)) * 3 + c]);
            }
        }
    }
    // The normal map is nearly flat (128, 128, 255) with fine stippling, not a blank image.
    const int m = r->gumBumpWidth * r->gumBumpHeight;
    double sum[3] = {0, 0, 0};
    int tilted = 0;
    for (int i = 0; i < m; ++i) {
        const unsigned char* p = r->gumBumpPixels + i * 3;
        for (int c = 0; c < 3; ++c) {
            sum[c] += p[c];
        }
        tilted += std::abs(p[0] - 128) > 6 || std::abs(p[1] - 128) > 6;
    }
    EXPECT_NEAR(sum[0] / m, 128, 3);
    EXPECT_NEAR(sum[1] / m, 128, 3);
    EXPECT_GT(sum[2] / m, 240);
    EXPECT_GT(tilted, m / 20);
    EXPECT_LT(tilted, m * 3 / 4);
}

TEST(ShaderAssets, EditorImagesShowTheirStates) {
    const RenderV1* r = RenderV1::GetInstance();
    auto image = [&](int code) { return r->editorImages.at(static_cast<Enumerationofpng>(code)); };
    // Each hover image differs visibly from its normal one.
    for (int normal : {11, 13, 21, 23, 31, 33}) {
        const NuPngImage a = image(normal), b = image(normal + 1);
        ASSERT_TRUE(a.pixels && b.pixels);
        ASSERT_EQ(a.width * a.height, b.width * b.height);
        long diff = 0;
        for (int i = 0; i < a.width * a.height * 3; ++i) {
            diff += std::abs(a.pixels[i] - b.pixels[i]);
        }
        EXPECT_GT(diff / (a.width * a.height), 10) << "element " << normal;
    }
    // Lock icons are drawn with white keyed out (red above 221): only near-white may pass it.
    for (int code : {21, 22, 23, 24}) {
        const NuPngImage img = image(code);
        int keyed = 0, drawn = 0;
        for (int i = 0; i < img.width * img.height; ++i) {
            const unsigned char* p = img.pixels + i * 3;
            if (p[0] > 221) {
                ++keyed;
                EXPECT_GT(std::min(p[1], p[2]), 200) << "element " << code << " pixel " << i;
            } else {
                ++drawn;
            }
        }
        EXPECT_GT(keyed, 0);
        EXPECT_GT(drawn, img.width * img.height / 5) << "element " << code;
    }
    // Locked and unlocked look different.
    EXPECT_NE(std::vector<unsigned char>(image(21).pixels, image(21).pixels + 32 * 32 * 3),
              std::vector<unsigned char>(image(23).pixels, image(23).pixels + 32 * 32 * 3));
}

TEST(ShaderAssets, FontHoldsTheEditorCharacters) {
    const RenderV1* r = RenderV1::GetInstance();
    ASSERT_NE(r->ftFace, nullptr);
    for (char32_t c : std::u32string(U"在与之间增加片切的隙去除和0123456789.AZaz")) {
        EXPECT_NE(FT_Get_Char_Index(r->ftFace, c), 0u) << "U+" << std::hex << int(c);
    }
}

TEST(ShaderAssets, MissingFilesPrintTheFontMessageAndLeaveNullImages) {
    const std::string dir = MakeScratchDir("shader_assets_missing");
    RenderV1::GetInstance(); // made from the library's own files first
    ReadFrom from(dir);
    testing::internal::CaptureStdout();
    RenderV1::GetInstance()->SetUpdata();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ERROR::FREETYPE: Failed to load font\n");
    EXPECT_EQ(RenderV1::GetInstance()->ftFace, nullptr);
    ExpectAllImagesNull(RenderV1::GetInstance());
}

TEST(ShaderAssets, CorruptFilesAreTreatedAsMissing) {
    const std::string dir = MakeScratchDir("shader_assets_corrupt");
    mkdir((dir + "/pngofcreatemodify").c_str(), 0755);
    const char* names[] = {"GumImageredwhite.png", "GumImagebump.png", "default.ttf",
                           "pngofcreatemodify/btn_add_nor.png",
                           "pngofcreatemodify/ipr_normal_step.png"};
    for (const char* name : names) {
        std::ofstream(dir + "/" + name, std::ios::binary) << "\x89PNG\r\n\x1a\n not really";
    }
    // A truncated copy of a real image.
    std::ifstream real(VxTestSourceDir() + "/../assets/pngofcreatemodify/gap_card_bg.png",
                       std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(real)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 100u);
    std::ofstream(dir + "/pngofcreatemodify/gap_card_bg.png", std::ios::binary)
        << bytes.substr(0, bytes.size() / 2);

    RenderV1::GetInstance(); // made from the library's own files first
    ReadFrom from(dir);
    testing::internal::CaptureStdout();
    RenderV1::GetInstance()->SetUpdata();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ERROR::FREETYPE: Failed to load font\n");
    ExpectAllImagesNull(RenderV1::GetInstance());
}

TEST(ShaderAssets, SwitchingToTheShaderPathForgetsMeshBuffersButNotGums) {
    RenderV1* r = RenderV1::GetInstance();
    r->mapOfVBOID[{nullptr, 3}] = NuMeshBuffer{7, nullptr, 3};
    r->mapOfTriColorVBO[1.5f] = NuMeshBuffer{8, nullptr, 1};
    r->mapOfGumVBO[std::make_tuple(nullptr, 3, 0.5)] = NuMeshBuffer{9, nullptr, 3};
    OpenGLVersion* v = OpenGLVersion::GetInstance();
    v->Set_btestversion(true);
    v->Set_btestversion(); // off: nothing forgotten
    EXPECT_EQ(r->mapOfVBOID.size(), 1u);
    v->Set_btestversion(); // on again
    EXPECT_TRUE(r->mapOfVBOID.empty());
    EXPECT_TRUE(r->mapOfTriColorVBO.empty());
    EXPECT_EQ(r->mapOfGumVBO.size(), 1u);
    r->mapOfGumVBO.clear();
}

// ---------------------------------------------------------------------------------------------
// Materials.

struct Row {
    void (NuRenderMaterial::*preset)();
    int a[4], d[4], s[4], e[4];
    float shininess;
};

::testing::AssertionResult Is255(const float* v, const int* e) {
    for (int i = 0; i < 4; ++i) {
        if (v[i] != static_cast<float>(e[i] * 0.00392156862745098)) {
            return ::testing::AssertionFailure()
                   << "channel " << i << " is " << v[i] * 255 << ", expected " << e[i];
        }
    }
    return ::testing::AssertionSuccess();
}

TEST(ShaderMaterials, PresetsHoldTheirColours) {
    const Row rows[] = {
        {&NuRenderMaterial::SetToothDefault,
         {184, 184, 184, 255},
         {36, 36, 36, 255},
         {255, 255, 255, 255},
         {153, 143, 133, 255},
         512},
        {&NuRenderMaterial::SetToothSelected,
         {47, 41, 38, 255},
         {156, 131, 84, 255},
         {68, 43, 19, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetToothHighlight,
         {56, 82, 184, 255},
         {10, 10, 10, 255},
         {10, 10, 10, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetToothKind2,
         {40, 40, 40, 255},
         {70, 70, 70, 255},
         {51, 51, 51, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetToothKind3,
         {40, 40, 40, 153},
         {80, 80, 150, 255},
         {51, 51, 51, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetToothKind5,
         {40, 40, 40, 153},
         {204, 21, 227, 255},
         {51, 51, 51, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetToothLocked,
         {100, 100, 100, 255},
         {36, 36, 36, 255},
         {34, 32, 31, 255},
         {153, 143, 133, 255},
         10},
        {&NuRenderMaterial::SetJawDefault,
         {51, 51, 51, 255},
         {125, 125, 125, 255},
         {38, 33, 30, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetSelected,
         {47, 41, 38, 255},
         {136, 101, 64, 255},
         {68, 43, 19, 255},
         {0, 0, 0, 255},
         10},
        {&NuRenderMaterial::SetGumPlain,
         {156, 80, 70, 255},
         {49, 31, 26, 255},
         {47, 82, 68, 255},
         {153, 104, 102, 255},
         64},
        {&NuRenderMaterial::SetAttachmentDefault,
         {180, 90, 90, 255},
         {72, 36, 36, 510},
         {36, 18, 18, 255},
         {0, 0, 0, 255},
         10},
    };
    for (const Row& row : rows) {
        NuRenderMaterial m;
        m.SetBackAndFront(true);
        (m.*row.preset)();
        const int index = static_cast<int>(&row - rows);
        EXPECT_TRUE(Is255(m.ambient, row.a)) << "row " << index;
        EXPECT_TRUE(Is255(m.diffuse, row.d)) << "row " << index;
        EXPECT_TRUE(Is255(m.specular, row.s)) << "row " << index;
        EXPECT_TRUE(Is255(m.emission, row.e)) << "row " << index;
        EXPECT_EQ(m.shininess, row.shininess) << "row " << index;
        EXPECT_TRUE(m.backAndFront) << "a preset leaves the flag alone";
    }
}

TEST(ShaderMaterials, GumDefaultAndColourForms) {
    NuRenderMaterial zero;
    EXPECT_EQ(zero.ambient[3], 0.0f);
    EXPECT_EQ(zero.shininess, 0.0f);
    EXPECT_FALSE(zero.backAndFront);

    NuRenderMaterial gum;
    gum.SetGumDefault();
    EXPECT_NEAR(gum.diffuse[0] * 255, 225 / 2.0, 1e-3);
    EXPECT_NEAR(gum.diffuse[1] * 255, 142 / 2.0, 1e-3);
    EXPECT_NEAR(gum.diffuse[2] * 255, 138 / 2.0, 1e-3);
    EXPECT_EQ(gum.diffuse[3], 1.0f);
    const int specular255[] = {50, 50, 50, 255}, amb[] = {156, 80, 70, 255};
    EXPECT_TRUE(Is255(gum.specular, specular255));
    EXPECT_TRUE(Is255(gum.ambient, amb));
    EXPECT_EQ(gum.shininess, 256.0f);

    NuRenderMaterial c;
    c.SetToothKind3(); // alpha 153, shininess 10
    c.SetFromColor(200, 100, 50);
    EXPECT_NEAR(c.ambient[0], 100 / 255.0, 1e-6);
    EXPECT_NEAR(c.diffuse[1], 30 / 255.0, 1e-6);
    EXPECT_NEAR(c.specular[2], 10 / 255.0, 1e-6);
    EXPECT_NEAR(c.ambient[3], 153 / 255.0, 1e-6) << "alphas stay";
    EXPECT_EQ(c.shininess, 10.0f);

    NuRenderMaterial l;
    l.SetToothDefault();
    l.SetLimited(200, 100, 50, 102);
    EXPECT_FLOAT_EQ(l.ambient[3], 0.4f);
    EXPECT_FLOAT_EQ(l.diffuse[3], 0.4f);
    EXPECT_NEAR(l.diffuse[0], 60 / 255.0, 1e-6);
    EXPECT_EQ(l.emission[0], 0.0f);
    EXPECT_EQ(l.emission[3], 0.0f);
    EXPECT_EQ(l.shininess, 512.0f) << "shininess stays";

    NuRenderMaterial a;
    a.SetAttachmentFromColor(255, 0, 51);
    EXPECT_NEAR(a.ambient[0], 1.0, 1e-6);
    EXPECT_NEAR(a.ambient[2], 0.2, 1e-6);
    EXPECT_NEAR(a.diffuse[3], 2.0, 1e-6);
    EXPECT_EQ(a.shininess, 10.0f);
}

} // namespace
