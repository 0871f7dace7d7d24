// Patient pictures in the overlay layout: an asymmetric four-colour picture proves the turn and
// the channel order, odd sizes lose their last row and column, other depths are spread or
// refused; the case reader, the case writer and the synthetic patient hold their pictures so.
#include "VxTestPaths.h"

#include <VxCase.h>
#include <VxCaseIO.h>
#include <VxSyntheticPatient.h>

#include <interfaces/CImage.h>
#include <interfaces/CString.h>
#include <interfaces/VxPictureLayout.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>

namespace fs = std::filesystem;

namespace {

using Rgb = std::array<int, 3>;

// 9 x 7, an ordinary picture (row 0 on top): red top-left, green top-right, blue bottom-left,
// white bottom-right, each 4 x 3; the last column and the last row are yellow, to be dropped.
std::unique_ptr<CImage> FourColours(int bpp = 24) {
    auto img = std::make_unique<CImage>();
    EXPECT_TRUE(img->Create(9, 7, bpp));
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 9; ++x) {
            COLORREF c = RGB(255, 255, 0);
            if (x < 8 && y < 6) {
                const bool right = x >= 4;
                const bool bottom = y >= 3;
                c = !bottom ? (right ? RGB(0, 255, 0) : RGB(255, 0, 0))
                            : (right ? RGB(255, 255, 255) : RGB(0, 0, 255));
            }
            img->SetPixel(x, y, c);
        }
    }
    return img;
}

// The three bytes at (x, y), y counted from the top row as GetPixelAddress counts it.
Rgb Bytes(const CImage& img, int x, int y) {
    const auto* p = static_cast<const unsigned char*>(img.GetPixelAddress(x, y));
    return {p[0], p[1], p[2]};
}

// The layout of a 9 x 7 four-colour picture: 8 x 6, bottom row first, bytes R, G, B.
void ExpectFourColourLayout(const CImage& held) {
    ASSERT_FALSE(held.IsNull());
    ASSERT_EQ(held.GetWidth(), 8);
    ASSERT_EQ(held.GetHeight(), 6);
    ASSERT_EQ(held.GetBPP(), 24);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            // Row y of the layout is row 5 - y of the picture.
            const bool right = x >= 4;
            const bool pictureBottom = (5 - y) >= 3;
            const Rgb want = !pictureBottom ? (right ? Rgb{0, 255, 0} : Rgb{255, 0, 0})
                                            : (right ? Rgb{255, 255, 255} : Rgb{0, 0, 255});
            ASSERT_EQ(Bytes(held, x, y), want) << "at " << x << ", " << y;
        }
    }
}

} // namespace

TEST(PictureLayout, FourColoursTurnUpsideDownWithBytesRedGreenBlue) {
    const std::unique_ptr<CImage> picture = FourColours();
    CImage held;
    ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(*picture, held));
    ExpectFourColourLayout(held);
    // Back again: the ordinary picture, less its odd row and column.
    CImage plain;
    ASSERT_TRUE(VxPictureLayout::FromOverlayLayout(held, plain));
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            ASSERT_EQ(plain.GetPixel(x, y), picture->GetPixel(x, y)) << x << ", " << y;
        }
    }
    // A 32-bit picture drops its alpha and lands the same.
    CImage fromAlpha;
    ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(*FourColours(32), fromAlpha));
    ExpectFourColourLayout(fromAlpha);
}

TEST(PictureLayout, GreyIsSpreadAndWhatCannotBeHeldIsRefused) {
    CImage grey;
    ASSERT_TRUE(grey.Create(3, 5, 8));
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 3; ++x) {
            static_cast<unsigned char*>(grey.GetPixelAddress(x, y))[0] =
                static_cast<unsigned char>(10 * y + x);
        }
    }
    CImage held;
    ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(grey, held));
    ASSERT_EQ(held.GetWidth(), 2);
    ASSERT_EQ(held.GetHeight(), 4);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 2; ++x) {
            const int v = 10 * (3 - y) + x;
            EXPECT_EQ(Bytes(held, x, y), (Rgb{v, v, v})) << x << ", " << y;
        }
    }

    // Refused, and the target left empty even when it held a picture before.
    CImage oneBit;
    ASSERT_TRUE(oneBit.Create(8, 8, 1));
    EXPECT_FALSE(VxPictureLayout::ToOverlayLayout(oneBit, held));
    EXPECT_TRUE(held.IsNull());
    CImage sliver;
    ASSERT_TRUE(sliver.Create(1, 9, 24));
    EXPECT_FALSE(VxPictureLayout::ToOverlayLayout(sliver, held));
    CImage none;
    EXPECT_FALSE(VxPictureLayout::ToOverlayLayout(none, held));
    EXPECT_TRUE(held.IsNull());
    // A top-down picture is read by its rows, not by its memory order.
    CImage topDown;
    ASSERT_TRUE(topDown.Create(2, 2, 24));
    CImage topDownNeg;
    ASSERT_TRUE(topDownNeg.Create(2, -2, 24));
    for (CImage* p : {&topDown, &topDownNeg}) {
        p->SetPixel(0, 0, RGB(255, 0, 0));
        p->SetPixel(1, 0, RGB(0, 255, 0));
        p->SetPixel(0, 1, RGB(0, 0, 255));
        p->SetPixel(1, 1, RGB(255, 255, 255));
        ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(*p, held));
        EXPECT_EQ(Bytes(held, 0, 0), (Rgb{0, 0, 255}));
        EXPECT_EQ(Bytes(held, 1, 1), (Rgb{0, 255, 0}));
    }
}

TEST(PictureLayout, CaseReaderWriterAndSyntheticPatientHoldPicturesInTheLayout) {
    // A case with a panoramic film, written; its file replaced by the odd four-colour picture.
    const std::string dir = VxTestOutputDir() + "/picture_layout_case";
    fs::remove_all(dir);
    VxCase written;
    auto pan = std::make_unique<CImage>();
    ASSERT_TRUE(VxPictureLayout::ToOverlayLayout(*FourColours(), *pan));
    written.patientInfo.SetPanoramicImg(std::move(pan));
    std::string error;
    ASSERT_TRUE(VxCaseIO::Write(written, dir, error)) << error;
    // The writer turned it back: the file is the ordinary picture.
    CImage file;
    ASSERT_EQ(file.Load(CString::FromUtf8(dir + "/images/panoramic.png")), S_OK);
    EXPECT_EQ(file.GetPixel(0, 0), RGB(255, 0, 0)) << "red at the file's top-left";
    EXPECT_EQ(file.GetPixel(7, 5), RGB(255, 255, 255)) << "white at its bottom-right";

    ASSERT_EQ(FourColours()->Save(CString::FromUtf8(dir + "/images/panoramic.png")), S_OK);
    VxCase read;
    ASSERT_TRUE(VxCaseIO::Read(dir, read, error)) << error;
    ASSERT_NE(read.patientInfo.GetPanoramicImg(), nullptr);
    ExpectFourColourLayout(*read.patientInfo.GetPanoramicImg());

    // The synthetic smile photograph: hair at the top of the picture, so in the last rows of
    // the layout, with its brown bytes in R, G, B order; the bluish background at the first.
    const std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    const CImage* smile = patient->patientInfo.GetFrontalSmileImg();
    ASSERT_NE(smile, nullptr);
    ASSERT_EQ(smile->GetBPP(), 24);
    const int h = smile->GetHeight();
    EXPECT_EQ(Bytes(*smile, 150, h - 1 - 30), (Rgb{70, 50, 35}));
    EXPECT_EQ(Bytes(*smile, 5, 0), (Rgb{90, 110, 140}));
    for (const CImage* img : std::initializer_list<const CImage*>{
             patient->patientInfo.GetPanoramicImg(), patient->patientInfo.GetProfileImg(),
             patient->patientInfo.GetCephalometricImg(), smile}) {
        ASSERT_NE(img, nullptr);
        EXPECT_EQ(img->GetWidth() % 2, 0);
        EXPECT_EQ(img->GetHeight() % 2, 0);
    }
}
