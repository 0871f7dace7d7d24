// Outline glyph lists: shape, orientation, counters, pen advance and bad input, read back from the
// framebuffer with the em square scaled to 200 pixels.
#include "VxGLTest.h"

#include <platform/VxFontOutlines.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace {

const char* kFontFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

class FontOutlinesTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        ASSERT_EQ(FT_Init_FreeType(&m_lib), 0);
        ASSERT_EQ(FT_New_Face(m_lib, kFontFile, 0, &m_face), 0) << kFontFile;
        m_base = glGenLists(4);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_LIGHTING);
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glViewport(0, 0, Width(), Height());
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, Width(), 0, Height(), -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glColor3ub(255, 255, 255);
    }
    void TearDown() override {
        glDeleteLists(m_base, 4);
        if (m_face) {
            FT_Done_Face(m_face);
        }
        FT_Done_FreeType(m_lib);
    }
    // One character at (20, 40) with the em square 200 pixels high.
    void DrawChar(wchar_t c, int format = WGL_FONT_POLYGONS) {
        ASSERT_TRUE(
            VxFontOutlines::UseFontOutlines(m_face, c, 1, m_base, 0.0f, 0.0f, format, &m_metrics));
        glPushMatrix();
        glTranslated(20, 40, 0);
        glScaled(200, 200, 1);
        glCallList(m_base);
        glPopMatrix();
    }
    bool Lit(int x, int y) {
        VxTestImage px = ReadRGBA(x, y, 1, 1);
        return px.Pixel(0, 0)[0] > 128;
    }

    FT_Library m_lib = nullptr;
    FT_Face m_face = nullptr;
    GLuint m_base = 0;
    GLYPHMETRICSFLOAT m_metrics;
};

} // namespace

TEST_F(FontOutlinesTest, LetterIsUprightUnmirroredAndEmSized) {
    DrawChar(L'L');
    // An "L": a stem on the left from the baseline to the cap height and a foot along the
    // baseline to the right. A mirrored or upside-down glyph lights the other corners.
    const int left = 20 + int(200 * m_metrics.gmfptGlyphOrigin.x);
    const int right = left + int(200 * m_metrics.gmfBlackBoxX);
    const int top = 40 + int(200 * m_metrics.gmfptGlyphOrigin.y);
    EXPECT_TRUE(Lit(left + 4, top - 20)) << "stem";
    EXPECT_TRUE(Lit(right - 4, 40 + 4)) << "foot";
    EXPECT_FALSE(Lit(right - 4, top - 20)) << "upper right stays empty";
    EXPECT_FALSE(Lit(left + 4, top + 6)) << "nothing above the cap height";
    EXPECT_FALSE(Lit(left + 4, 40 - 6)) << "nothing below the baseline";
    EXPECT_GT(m_metrics.gmfBlackBoxY, 0.70f);
    EXPECT_LT(m_metrics.gmfBlackBoxY, 0.76f);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(FontOutlinesTest, CountersStayOpenAndLinesFormDrawsOnlyTheRim) {
    DrawChar(L'O');
    const int cx = 20 + int(200 * (m_metrics.gmfptGlyphOrigin.x + m_metrics.gmfBlackBoxX / 2));
    const int cy = 40 + int(200 * m_metrics.gmfBlackBoxY / 2);
    EXPECT_FALSE(Lit(cx, cy)) << "the hole of the O is not filled";
    const int rimX = 20 + int(200 * m_metrics.gmfptGlyphOrigin.x) + 8;
    EXPECT_TRUE(Lit(rimX, cy)) << "the left side of the ring";

    glClear(GL_COLOR_BUFFER_BIT);
    DrawChar(L'O', WGL_FONT_LINES);
    EXPECT_FALSE(Lit(rimX, cy)) << "inside the stroke, between the outline loops";
    EXPECT_GT(CountColour(255, 255, 255, 100), 200) << "the loops themselves";
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(FontOutlinesTest, EachListEndsByAdvancingThePen) {
    ASSERT_TRUE(VxFontOutlines::UseFontOutlines(m_face, L'A', 3, m_base, 0.0f, 0.0f,
                                                WGL_FONT_POLYGONS, nullptr));
    GLYPHMETRICSFLOAT m[3];
    ASSERT_TRUE(
        VxFontOutlines::UseFontOutlines(m_face, L'A', 3, m_base, 0.0f, 0.0f, WGL_FONT_POLYGONS, m));
    glPushMatrix();
    glLoadIdentity();
    const GLubyte offsets[3] = {0, 1, 2};
    glListBase(m_base);
    glCallLists(3, GL_UNSIGNED_BYTE, offsets);
    glListBase(0);
    double mv[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, mv);
    glPopMatrix();
    const double expected = double(m[0].gmfCellIncX) + m[1].gmfCellIncX + m[2].gmfCellIncX;
    EXPECT_NEAR(mv[12], expected, 1e-6);
    EXPECT_NEAR(mv[13], 0.0, 1e-9);
    // The advance is in em units: the font's own advance of "A" over its em.
    FT_Load_Char(m_face, L'A', FT_LOAD_NO_SCALE);
    EXPECT_NEAR(m[0].gmfCellIncX, double(m_face->glyph->metrics.horiAdvance) / m_face->units_per_EM,
                1e-6);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(FontOutlinesTest, BadInputFailsQuietly) {
    EXPECT_FALSE(VxFontOutlines::UseFontOutlines(nullptr, L'A', 1, m_base, 0.0f, 0.0f,
                                                 WGL_FONT_POLYGONS, nullptr));
    // A character the face lacks still gets a list that moves the pen, so the rest of a line
    // keeps its place.
    GLYPHMETRICSFLOAT m;
    ASSERT_TRUE(VxFontOutlines::UseFontOutlines(m_face, 0xE000, 1, m_base, 0.0f, 0.0f,
                                                WGL_FONT_POLYGONS, &m));
    EXPECT_GT(m.gmfCellIncX, 0.0f);
    // A space: nothing drawn, the pen moves.
    glClear(GL_COLOR_BUFFER_BIT);
    DrawChar(L' ');
    EXPECT_EQ(CountColour(255, 255, 255, 100), 0);
    EXPECT_GT(m_metrics.gmfCellIncX, 0.2f);
    EXPECT_EQ(GLErrors(), "");
}
