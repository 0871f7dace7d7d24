// Tooth annotations on the synthetic patient (seed 1), on both render paths: the tooth numbers
// read upright and unmirrored in both jaws, follow their teeth between plan steps, carry the
// right text (a kind-6 tooth 11 reads 51 on the large card) and let a click through to the
// tooth; movement marks follow a limit table built here, with values exactly at a minimum and
// at a maximum.
#include "VxCacheStuffProbe.h"
#include "VxOverlayTestScene.h"
#include "VxTestRenderPath.h"

#include <VxCase.h>

#include <GL/glew.h>

#include <interfaces/CBitmap.h>
#include <interfaces/VxMoveDiffDataMgr.h>
#include <interfaces/VxScheme.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxTreatStep.h>
#include <overlays/VxCacheStuff.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>

namespace {

using Scene = VxOverlayTestScene;

// Blue text or mark over ivory, gum or black.
bool IsBlueInk(const std::uint8_t* p) {
    return p[2] > 90 && p[2] > p[0] + 50 && p[2] > p[1] + 50;
}

VxPoint Mid(const VxPoint* c) {
    return VxPoint((c[0][0] + c[2][0]) / 2, (c[0][1] + c[2][1]) / 2, (c[0][2] + c[2][2]) / 2);
}

// Where the tooth's own coordinates stand at the current step.
VxPoint Placed(VxTooth* tooth, const VxPoint& p) {
    for (const DrawInfo_s& d : VxTransformMatrix::GetInstance()->GetDrawInfos(tooth)) {
        if (!d.limited) {
            return d.matrix.Transform(p);
        }
    }
    return p;
}

class OverlayToothTest : public ::testing::TestWithParam<VxTestRenderPath> {
protected:
    void SetUp() override {
        if (!Scene::Open()) {
            GTEST_SKIP() << "no EGL context on this machine";
        }
        VxApplyRenderPath(GetParam());
        cache = Scene::Cache();
    }
    void TearDown() override {
        if (cache != nullptr) {
            Scene::Reset();
        }
    }
    std::string Name(const std::string& base) const {
        return base + (GetParam() == VxTestRenderPath::Fixed ? "_fixed" : "_shader");
    }

    VxCacheStuff* cache = nullptr;
};

// Ink of the card's screen box, as fractions of the box from its top-left corner.
struct Ink {
    int count = 0;
    double u = 0.0, v = 0.0;
};

Ink InkOnCard(const VxTestImage& img, VxTooth* tooth, const VxPoint* corners) {
    int x0 = 1 << 30, y0 = 1 << 30, x1 = -1, y1 = -1;
    for (int i = 0; i < 4; ++i) {
        const CPoint s = Scene::ToScreen(Placed(tooth, corners[i]));
        x0 = std::min(x0, int(s.x));
        x1 = std::max(x1, int(s.x));
        y0 = std::min(y0, int(s.y));
        y1 = std::max(y1, int(s.y));
    }
    Ink ink;
    for (int y = std::max(y0, 0); y <= std::min(y1, img.height - 1); ++y) {
        for (int x = std::max(x0, 0); x <= std::min(x1, img.width - 1); ++x) {
            if (IsBlueInk(img.Pixel(x, y))) {
                ++ink.count;
                ink.u += double(x - x0) / std::max(1, x1 - x0);
                ink.v += double(y - y0) / std::max(1, y1 - y0);
            }
        }
    }
    if (ink.count > 0) {
        ink.u /= ink.count;
        ink.v /= ink.count;
    }
    return ink;
}

TEST_P(OverlayToothTest, NumbersReadUprightAndUnmirroredInBothJaws) {
    Scene::Look(VxViewManager::View_Front, 0, 3.0);
    cache->SetShowToothFDI(true);
    const VxTestImage img = Scene::Frame();
    Scene::Save(img, Name("overlay_numbers_front"));
    for (int fdi : {11, 21, 12, 22, 41, 31, 42, 32}) {
        SCOPED_TRACE(fdi);
        VxTooth* tooth = Scene::Case().FindTooth(fdi);
        ASSERT_NE(tooth, nullptr);
        VxPoint c[4];
        VxCacheStuffProbe::FDIPosition(tooth, c, true);
        // Corners in order top-left, bottom-left, bottom-right, top-right as the reader sees
        // them; the picture's first row goes to the first corner.
        const CPoint tl = Scene::ToScreen(c[0]), bl = Scene::ToScreen(c[1]),
                     tr = Scene::ToScreen(c[3]);
        EXPECT_LT(tl.y, bl.y) << "upright";
        EXPECT_LT(tl.x, tr.x) << "unmirrored";
        // Half side 1.5 for a plain tooth.
        EXPECT_NEAR((c[0] - c[1]).Magnitude(), 3.0, 1e-9);
        EXPECT_NEAR((c[0] - c[3]).Magnitude(), 3.0, 1e-9);
    }
    // The digits are drawn from the bitmap's top-left: on the card their ink lies in the upper
    // left part when it reads the right way, for an upper and a lower tooth alike.
    for (int fdi : {11, 41}) {
        SCOPED_TRACE(fdi);
        VxTooth* tooth = Scene::Case().FindTooth(fdi);
        VxPoint c[4];
        VxCacheStuffProbe::FDIPosition(tooth, c, true);
        const Ink ink = InkOnCard(img, tooth, c);
        EXPECT_GT(ink.count, 20) << "the number is on its tooth";
        EXPECT_LT(ink.v, 0.5) << "glyph mass in the upper part";
        EXPECT_LT(ink.u, 0.52) << "text starts at the left";
    }
}

TEST_P(OverlayToothTest, NumbersMoveWithTheirTeethBetweenSteps) {
    cache->SetShowToothFDI(true);
    const int last = Scene::Case().stepCount - 1;
    int moved = 0;
    for (int step : {0, last}) {
        Scene::Look(VxViewManager::View_Front, step, 3.0);
        const VxTestImage img = Scene::Frame();
        if (step == last) {
            Scene::Save(img, Name("overlay_numbers_last_step"));
        }
        for (int fdi : {12, 11, 21, 22}) {
            SCOPED_TRACE("tooth " + std::to_string(fdi) + " step " + std::to_string(step));
            VxTooth* tooth = Scene::Case().FindTooth(fdi);
            VxPoint c[4];
            VxCacheStuffProbe::FDIPosition(tooth, c, true);
            const CPoint expected = Scene::ToScreen(Placed(tooth, Mid(c)));
            const CPoint unmoved = Scene::ToScreen(Mid(c));
            moved += std::abs(expected.x - unmoved.x) + std::abs(expected.y - unmoved.y) > 6;
            // The ink's centre sits near the card's centre where the tooth now stands.
            const Ink ink = InkOnCard(img, tooth, c);
            ASSERT_GT(ink.count, 20);
            int x0 = 1 << 30, y0 = 1 << 30, x1 = -1, y1 = -1;
            for (int i = 0; i < 4; ++i) {
                const CPoint s = Scene::ToScreen(Placed(tooth, c[i]));
                x0 = std::min(x0, int(s.x));
                x1 = std::max(x1, int(s.x));
                y0 = std::min(y0, int(s.y));
                y1 = std::max(y1, int(s.y));
            }
            const double inkX = x0 + ink.u * (x1 - x0);
            const double inkY = y0 + ink.v * (y1 - y0);
            EXPECT_NEAR(inkX, expected.x, 0.3 * (x1 - x0));
            EXPECT_NEAR(inkY, expected.y, 0.3 * (y1 - y0));
        }
    }
    EXPECT_GT(moved, 0) << "the plan moves some front teeth visibly";
}

// Renders the card's picture alone, square to a 175-pixel viewport, black behind it: one pixel
// a texel, blue scaled by the picture's alpha.
std::vector<int> CardAlpha(VxAuxTexture* card, int size) {
    VxPoint c[4];
    for (int i = 0; i < 4; ++i) {
        c[i] = card->GetCorner(i);
    }
    const VxPoint centre = Mid(c);
    const VxVector X = (c[3] - c[0]).Normalized();
    const VxVector Y = (c[0] - c[1]).Normalized();
    const VxVector Z = X * Y;
    const double h = (c[3] - c[0]).Magnitude() / 2.0;
    glPushAttrib(GL_VIEWPORT_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glViewport(0, 0, size, size);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(-h, h, -h, h, -10, 10);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    const double m[16] = {X[0],
                          Y[0],
                          Z[0],
                          0,
                          X[1],
                          Y[1],
                          Z[1],
                          0,
                          X[2],
                          Y[2],
                          Z[2],
                          0,
                          -(X % VxVector(centre)),
                          -(Y % VxVector(centre)),
                          -(Z % VxVector(centre)),
                          1};
    glLoadMatrixd(m);
    card->Draw();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    std::vector<unsigned char> rgba(size_t(size) * size * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, size, size, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    glPopAttrib();
    std::vector<int> alpha(size_t(size) * size);
    for (int y = 0; y < size; ++y) { // top row first
        for (int x = 0; x < size; ++x) {
            alpha[size_t(y * size + x)] = rgba[(size_t(size - 1 - y) * size + x) * 4 + 2];
        }
    }
    return alpha;
}

// The mask a text bitmap carries, top row first.
std::vector<int> TextAlpha(const CString& text, int size) {
    std::unique_ptr<CBitmap> bmp(VxCacheStuffProbe::TextBitmap(text, size == 96));
    std::vector<unsigned char> bits(size_t(size) * size * 4);
    bmp->GetBitmapBits(DWORD(bits.size()), bits.data());
    std::vector<int> alpha(size_t(size) * size);
    for (size_t i = 0; i < alpha.size(); ++i) {
        alpha[i] = bits[i * 4 + 3];
    }
    return alpha;
}

int Mismatches(const std::vector<int>& a, const std::vector<int>& b) {
    int n = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        n += std::abs(a[i] - b[i]) > 40;
    }
    return n;
}

TEST_P(OverlayToothTest, KindSixToothElevenReadsFiftyOneOnTheLargeCard) {
    VxTooth* tooth = Scene::Case().FindTooth(11);
    const ToothKind_e kind = tooth->GetToothKind();
    tooth->SetToothKind(ToothKind_e(6));
    cache->SetShowToothFDI(true);
    tooth->SetToothKind(kind);
    VxAuxTexture* card = VxCacheStuffProbe::Label(tooth);
    ASSERT_NE(card, nullptr);
    EXPECT_EQ(card->GetTextureHeight(), 175.0);
    EXPECT_NEAR((card->GetCorner(0) - card->GetCorner(1)).Magnitude(), 4.8, 1e-9);
    const std::vector<int> shown = CardAlpha(card, 175);
    const std::vector<int> fiftyOne = TextAlpha(L"51", 175);
    const std::vector<int> eleven = TextAlpha(L"11", 175);
    EXPECT_LT(Mismatches(shown, fiftyOne), 175 * 2) << "the card shows 51";
    EXPECT_GT(Mismatches(shown, eleven), 3 * Mismatches(shown, fiftyOne)) << "and not 11";
    // Implants and pontics carry their mark on the large card as well.
    VxTooth* implant = Scene::Case().FindTooth(36);
    ASSERT_EQ(implant->GetToothKind(), ToothKind_Implant);
    const std::vector<int> implantShown = CardAlpha(VxCacheStuffProbe::Label(implant), 175);
    EXPECT_LT(Mismatches(implantShown, TextAlpha(L"36(I)", 175)), 175 * 2);
    VxTooth* pontic = Scene::Case().FindTooth(15);
    ASSERT_EQ(pontic->GetToothKind(), ToothKind_Pontic);
    EXPECT_LT(
        Mismatches(CardAlpha(VxCacheStuffProbe::Label(pontic), 175), TextAlpha(L"15(P)", 175)),
        175 * 2);
    const std::vector<int> plain =
        CardAlpha(VxCacheStuffProbe::Label(Scene::Case().FindTooth(21)), 96);
    EXPECT_LT(Mismatches(plain, TextAlpha(L"21", 96)), 96 * 2);
}

TEST_P(OverlayToothTest, AClickOnAToothNumberPicksTheTooth) {
    Scene::Look(VxViewManager::View_Front, 0, 3.0);
    cache->SetShowToothFDI(true);
    for (int fdi : {21, 41}) {
        VxTooth* tooth = Scene::Case().FindTooth(fdi);
        VxPoint c[4];
        VxCacheStuffProbe::FDIPosition(tooth, c, true);
        Scene::Frame();
        EXPECT_EQ(Scene::Click(Scene::ToScreen(Mid(c))), tooth) << fdi;
    }
}

// Magnitudes of the plan's total movement of a tooth: x move, x rotation, y move, y rotation, z
// move, z rotation.
std::array<double, 6> Magnitudes(int fdi) {
    std::vector<VxTreatStep*> steps;
    VxSchemeMgr::GetInstance()->GetCurScheme()->GetToothAllSteps(fdi, steps);
    const VxVector m = VxTreatStep::GetTransMove(steps.front(), steps.back());
    const VxVector r = VxTreatStep::GetTransRotate(steps.front(), steps.back());
    return {std::fabs(m[0]), std::fabs(r[0]), std::fabs(m[1]),
            std::fabs(r[1]), std::fabs(m[2]), std::fabs(r[2])};
}

ThreeMovementDiff_s Limits(const std::array<double, 6>& min, const std::array<double, 6>& max) {
    ThreeMovementDiff_s d;
    double* mins[6] = {&d.moveXMin,   &d.rotateXMin, &d.moveYMin,
                       &d.rotateYMin, &d.moveZMin,   &d.rotateZMin};
    double* maxs[6] = {&d.moveXMax,   &d.rotateXMax, &d.moveYMax,
                       &d.rotateYMax, &d.moveZMax,   &d.rotateZMax};
    for (int k = 0; k < 6; ++k) {
        *mins[k] = min[size_t(k)];
        *maxs[k] = max[size_t(k)];
    }
    return d;
}

TEST_P(OverlayToothTest, MovementMarksFollowTheLimitTable) {
    const std::map<int, ThreeMovementDiff_s> kept =
        VxMoveDiffDataMgr::GetInstance()->GetMovementDiff();
    // The largest of the six magnitudes of each tooth decides the interesting row.
    const auto largest = [](const std::array<double, 6>& a) {
        return int(std::max_element(a.begin(), a.end()) - a.begin());
    };
    std::map<int, ThreeMovementDiff_s> table;
    std::array<double, 6> above{}, huge{};
    huge.fill(1e6);
    // 11: every magnitude strictly below its minimum: no mark.
    {
        std::array<double, 6> mins = Magnitudes(11);
        for (double& v : mins) {
            v = std::nextafter(v, 1e9);
        }
        table[11] = Limits(mins, huge);
    }
    // 21: one magnitude exactly at its minimum, the rest below theirs: blue.
    {
        const std::array<double, 6> mag = Magnitudes(21);
        std::array<double, 6> mins = mag;
        const int k = largest(mag);
        for (int i = 0; i < 6; ++i) {
            if (i != k) {
                mins[size_t(i)] = std::nextafter(mag[size_t(i)], 1e9);
            }
        }
        table[21] = Limits(mins, huge);
    }
    // 12: the largest magnitude exactly at its maximum: still blue.
    {
        const std::array<double, 6> mag = Magnitudes(12);
        std::array<double, 6> maxs = huge;
        maxs[size_t(largest(mag))] = mag[size_t(largest(mag))];
        table[12] = Limits(above, maxs);
    }
    // 22: the largest magnitude just past its maximum: black.
    {
        const std::array<double, 6> mag = Magnitudes(22);
        std::array<double, 6> maxs = huge;
        maxs[size_t(largest(mag))] = std::nextafter(mag[size_t(largest(mag))], 0.0);
        table[22] = Limits(above, maxs);
    }
    // 41 has no entry: no mark.
    for (int fdi : {11, 21, 12, 22}) {
        const std::array<double, 6> mag = Magnitudes(fdi);
        ASSERT_GT(*std::max_element(mag.begin(), mag.end()), 0.0) << fdi;
    }
    VxMoveDiffDataMgr::GetInstance()->SetMovementDiff(table);
    cache->SetShowMoveDiff(true);
    VxMoveDiffDataMgr::GetInstance()->SetMovementDiff(kept);

    VxCase& c = Scene::Case();
    EXPECT_EQ(VxCacheStuffProbe::Mark(c.FindTooth(11)), nullptr);
    EXPECT_EQ(VxCacheStuffProbe::Mark(c.FindTooth(41)), nullptr);
    EXPECT_EQ(VxCacheStuffProbe::Marks(), 3u);
    Scene::Look(VxViewManager::View_Front, 0, 3.0);
    const VxTestImage img = Scene::Frame();
    Scene::Save(img, Name("overlay_marks_table"));
    const struct {
        int fdi;
        bool black;
    } rows[] = {{21, false}, {12, false}, {22, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fdi);
        VxTooth* tooth = c.FindTooth(row.fdi);
        ASSERT_NE(VxCacheStuffProbe::Mark(tooth), nullptr);
        VxPoint corners[4];
        VxCacheStuffProbe::MDPosition(tooth, corners, true);
        const CPoint at = Scene::ToScreen(Mid(corners));
        const std::uint8_t* p = img.Pixel(at.x, at.y);
        if (row.black) {
            EXPECT_LT(std::max({p[0], p[1], p[2]}), 60)
                << int(p[0]) << "," << int(p[1]) << "," << int(p[2]);
        } else {
            EXPECT_TRUE(IsBlueInk(p) && p[2] > 200)
                << int(p[0]) << "," << int(p[1]) << "," << int(p[2]);
        }
    }
}

VX_BOTH_RENDER_PATHS(OverlayToothTest);

} // namespace
