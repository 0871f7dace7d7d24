// Picture overlays read back from real frames in a 300 x 200 window: an asymmetric four-colour
// picture in the case reader's layout (rows bottom-up, bytes R, G, B) shows upright with true
// colours where its view fit puts it, and drag, scale and zoom move it, with a marker that stays
// on its picture point. Pictures of other depths are refused.
#include "VxAuxTestScene.h"

#include <GL/glew.h>

#include <aux/VxAuxMarker.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>
#include <interfaces/CBitmap.h>
#include <views/VxViewManager.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

constexpr int kW = 300;
constexpr int kH = 200;

// 8 x 8: red top-left, green top-right, blue bottom-left, white bottom-right, stored as the case
// reader stores pictures: the first row in memory is the picture's bottom row.
void FourColours(CBitmap& bitmap) {
    std::vector<unsigned char> bits;
    for (int row = 0; row < 8; ++row) {
        const bool bottom = row < 4;
        for (int x = 0; x < 8; ++x) {
            const bool right = x >= 4;
            unsigned char r = 0, g = 0, b = 0;
            if (!bottom && !right) {
                r = 255;
            } else if (!bottom && right) {
                g = 255;
            } else if (bottom && !right) {
                b = 255;
            } else {
                r = g = b = 255;
            }
            bits.insert(bits.end(), {r, g, b});
        }
    }
    ASSERT_TRUE(bitmap.CreateBitmap(8, 8, 1, 24, bits.data()));
}

bool Near(const std::uint8_t* p, int r, int g, int b) {
    return std::abs(p[0] - r) < 40 && std::abs(p[1] - g) < 40 && std::abs(p[2] - b) < 40;
}

struct Box {
    int x0 = 1 << 30, y0 = 1 << 30, x1 = -1, y1 = -1;
};
Box Lit(const VxTestImage& img) {
    Box b;
    for (int y = 0; y < img.height; ++y) {
        for (int x = 0; x < img.width; ++x) {
            const std::uint8_t* p = img.Pixel(x, y);
            if (p[0] + p[1] + p[2] > 60) {
                b.x0 = std::min(b.x0, x);
                b.y0 = std::min(b.y0, y);
                b.x1 = std::max(b.x1, x);
                b.y1 = std::max(b.y1, y);
            }
        }
    }
    return b;
}

class AuxTextureTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { open = VxAuxTestScene::Open(kW, kH, false); }
    void SetUp() override {
        if (!open) {
            if (std::getenv("VX_REQUIRE_GL")) {
                FAIL() << "no EGL context";
            }
            GTEST_SKIP() << "no EGL context on this machine";
        }
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }
    static inline bool open = false;
};

} // namespace

TEST_F(AuxTextureTest, FittedPictureIsUprightWithTrueColoursInItsRectangle) {
    VxAuxTestScene scene(4.0, false);
    auto* picture = new VxAuxTexture();
    picture->SetType(AuxTexture_Movable);
    CBitmap bitmap;
    FourColours(bitmap);
    ASSERT_TRUE(picture->SetTexture(bitmap));
    VxAuxTestScene::Aux()->AddAuxObject(picture);
    // Square picture in 300 x 200: height 200 - 50, margins 75 and 25, 20 pixels down.
    const CRect& r = picture->GetScreenRect();
    EXPECT_EQ(r, CRect(75, 45, 225, 195));
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_texture_four_colours");
    EXPECT_TRUE(Near(img.Pixel(112, 82), 255, 0, 0)) << "red at the top left";
    EXPECT_TRUE(Near(img.Pixel(187, 82), 0, 255, 0)) << "green at the top right";
    EXPECT_TRUE(Near(img.Pixel(112, 157), 0, 0, 255)) << "blue at the bottom left";
    EXPECT_TRUE(Near(img.Pixel(187, 157), 255, 255, 255)) << "white at the bottom right";
    const Box b = Lit(img);
    EXPECT_NEAR(b.x0, 75, 1);
    EXPECT_NEAR(b.x1, 224, 1);
    EXPECT_NEAR(b.y0, 45, 1);
    EXPECT_NEAR(b.y1, 194, 1);

    EXPECT_TRUE(picture->HitTest(150, 120));
    EXPECT_FALSE(picture->HitTest(70, 120));
    EXPECT_FALSE(picture->HitTest(150, 197));
    picture->SetType(AuxTexture_Screen);
    EXPECT_FALSE(picture->HitTest(150, 120)) << "a fixed screen image ignores the mouse";
}

TEST_F(AuxTextureTest, OrdinaryPictureBroughtIntoTheLayoutShowsUprightInTrueColours) {
    // An ordinary 10 x 8 picture, row 0 on top, as a file or a camera gives it: red top-left,
    // green top-right, blue bottom-left, white bottom-right; the case holds it in the layout.
    CImage photo;
    ASSERT_TRUE(photo.Create(10, 8, 24));
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool right = x >= 5;
            photo.SetPixel(x, y,
                           y < 4 ? (right ? RGB(0, 255, 0) : RGB(255, 0, 0))
                                 : (right ? RGB(255, 255, 255) : RGB(0, 0, 255)));
        }
    }
    CImage held;
    ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(photo, held));
    VxAuxTestScene scene(4.0, false);
    auto* picture = new VxAuxTexture();
    picture->SetType(AuxTexture_Movable);
    CBitmap bitmap;
    bitmap.Attach(held.Detach());
    ASSERT_TRUE(picture->SetTexture(bitmap));
    held.Attach(bitmap.Detach());
    VxAuxTestScene::Aux()->AddAuxObject(picture);
    const CRect r = picture->GetScreenRect();
    const VxTestImage img = scene.FrameWithAux();
    VxAuxTestScene::Save(img, "aux_texture_from_layout");
    const int qx = r.Width() / 4;
    const int qy = r.Height() / 4;
    EXPECT_TRUE(Near(img.Pixel(r.left + qx, r.top + qy), 255, 0, 0)) << "red at the top left";
    EXPECT_TRUE(Near(img.Pixel(r.right - qx, r.top + qy), 0, 255, 0)) << "green at the top right";
    EXPECT_TRUE(Near(img.Pixel(r.left + qx, r.bottom - qy), 0, 0, 255)) << "blue, bottom left";
    EXPECT_TRUE(Near(img.Pixel(r.right - qx, r.bottom - qy), 255, 255, 255)) << "white";
}

TEST_F(AuxTextureTest, DragScaleAndZoomMoveThePixelsAndTheMarkerFollows) {
    VxAuxTestScene scene(4.0, false);
    auto* picture = new VxAuxTexture();
    picture->SetType(AuxTexture_Movable);
    CBitmap bitmap;
    FourColours(bitmap);
    ASSERT_TRUE(picture->SetTexture(bitmap));
    VxAuxTestScene::Aux()->AddAuxObject(picture);
    auto* marker = new VxAuxMarker();
    marker->SetSquare(CPoint(112, 82), 2); // on the red quarter's middle
    marker->SetFillColor(VxColor(255, 255, 0));
    VxAuxTestScene::Aux()->AddAuxObject(marker);
    picture->SetMarkers({marker});
    const Box before = Lit(scene.FrameWithAux());

    picture->Drag(CPoint(100, 100), CPoint(110, 95));
    picture->Drag(CPoint(5, 5), CPoint(5, 5)); // equal points: nothing
    const VxTestImage dragged = scene.FrameWithAux();
    const Box after = Lit(dragged);
    EXPECT_EQ(after.x0, before.x0 + 10);
    EXPECT_EQ(after.y0, before.y0 - 5);
    EXPECT_EQ(after.x1, before.x1 + 10);
    EXPECT_EQ(after.y1, before.y1 - 5);
    EXPECT_EQ(marker->GetCenterPoint()[0], 122);
    EXPECT_EQ(marker->GetCenterPoint()[1], 77);
    EXPECT_TRUE(Near(dragged.Pixel(122 + 6, 77), 255, 0, 0)) << "still red beside the marker";

    picture->ScaleImg(0.5);
    const CRect& r = picture->GetScreenRect();
    EXPECT_EQ(r, CRect(160 - 37, 115 - 37, 160 + 37, 115 + 37));
    const VxTestImage scaled = scene.FrameWithAux();
    VxAuxTestScene::Save(scaled, "aux_texture_scaled");
    // A quarter of the way in from the top left, as before.
    const double mx = marker->GetCenterPoint()[0];
    const double my = marker->GetCenterPoint()[1];
    EXPECT_NEAR(mx, r.left + r.Width() * 0.25, 1.0);
    EXPECT_NEAR(my, r.top + r.Height() * 0.25, 1.0);
    EXPECT_TRUE(Near(scaled.Pixel(int(mx) - 5, int(my)), 255, 0, 0));

    // Zoom in about the picture's middle: 90 % of it shows, the window moves by 5 % each way.
    picture->ZoomImg(true, r.CenterPoint());
    double left = 0, bottom = 0;
    picture->GetLeftBPos(left, bottom);
    EXPECT_NEAR(picture->GetZoom(), 0.9, 1e-12);
    EXPECT_NEAR(left, 0.05, 0.01);
    EXPECT_NEAR(bottom, 0.05, 0.01);
    picture->ZoomImg(false, r.CenterPoint());
    picture->GetLeftBPos(left, bottom);
    EXPECT_EQ(picture->GetZoom(), 1.0);
    EXPECT_EQ(left, 0.0);
    EXPECT_EQ(bottom, 0.0);

    // Scaling stops below a height of 100 for shrinking.
    picture->ScaleImg(0.5);
    EXPECT_EQ(picture->GetScreenRect(), r);
}

TEST_F(AuxTextureTest, PicturesOfOtherDepthsAreRefused) {
    VxAuxTestScene scene(4.0, false);
    VxAuxTexture picture;
    CBitmap grey;
    std::vector<unsigned char> bits(8 * 8, 128);
    ASSERT_TRUE(grey.CreateBitmap(8, 8, 1, 8, bits.data()));
    EXPECT_FALSE(picture.SetTexture(grey));
    EXPECT_FALSE(picture.HadValidImg());
    CBitmap empty;
    EXPECT_FALSE(picture.SetTexture(empty));
    // Odd widths come padded; the upload reads each row's own bytes only.
    CBitmap odd;
    std::vector<unsigned char> oddBits(size_t((5 * 3 + 1) & ~1) * 3, 200);
    ASSERT_TRUE(odd.CreateBitmap(5, 3, 1, 24, oddBits.data()));
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    EXPECT_TRUE(picture.SetTexture(odd));
    EXPECT_NEAR(picture.GetRatio(), 5.0 / 3.0, 1e-12);
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    EXPECT_EQ(alignment, 4) << "the unpack alignment is put back";
}
