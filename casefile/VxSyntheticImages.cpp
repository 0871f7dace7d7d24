// VxSyntheticImages: the synthetic patient's pictures and measures. Four small
// 24-bit pictures drawn pixel by pixel from closed-form shapes: a lateral
// cephalometric X-ray (cranium, facial bones, a row of teeth), a panoramic film
// (two rows of crowns and roots), a frontal smile photograph and a profile
// photograph; plus the cephalometric landmarks in model space, the panoramic
// landmarks and the brightness and contrast positions. The pictures are not
// meant to be anatomically right, only recognisable and different from one
// another; they carry a little seeded noise so that the X-rays are not flat.
// Pixels are written straight into the bits of an ordinary picture, which is then brought into
// the layout the case reader holds pictures in (upside down, bytes R, G, B).
#include "VxSyntheticParts.h"

#include "VxSyntheticRandom.h"

#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using Shader = std::function<void(int x, int y, int& r, int& g, int& b)>;

std::unique_ptr<CImage> Paint(int w, int h, const Shader& shade, VxSyntheticRandom* noise,
                              int noiseAmp) {
    auto img = std::make_unique<CImage>();
    if (!img->Create(w, h, 24)) {
        return nullptr;
    }
    auto* bits = static_cast<unsigned char*>(img->GetBits());
    const int pitch = img->GetPitch();
    for (int y = 0; y < h; ++y) {
        unsigned char* row = bits + static_cast<ptrdiff_t>(y) * pitch;
        for (int x = 0; x < w; ++x) {
            int r = 0;
            int g = 0;
            int b = 0;
            shade(x, y, r, g, b);
            if (noise) {
                const int n =
                    static_cast<int>(noise->Below(static_cast<uint32_t>(2 * noiseAmp + 1))) -
                    noiseAmp;
                r += n;
                g += n;
                b += n;
            }
            row[3 * x + 0] = static_cast<unsigned char>(std::max(0, std::min(255, b)));
            row[3 * x + 1] = static_cast<unsigned char>(std::max(0, std::min(255, g)));
            row[3 * x + 2] = static_cast<unsigned char>(std::max(0, std::min(255, r)));
        }
    }
    // Painted as an ordinary picture, held as the case reader holds a read one.
    auto held = std::make_unique<CImage>();
    if (!VxPictureLayout::ToOverlayLayout(*img, *held)) {
        return nullptr;
    }
    return held;
}

double Ell(double x, double y, double cx, double cy, double rx, double ry) {
    const double u = (x - cx) / rx;
    const double v = (y - cy) / ry;
    return u * u + v * v; // below 1 inside
}

void Grey(int& r, int& g, int& b, int v) {
    r = g = b = v;
}

// Lateral X-ray, patient facing right.
std::unique_ptr<CImage> Cephalogram(VxSyntheticRandom& rng) {
    return Paint(
        400, 340,
        [](int x, int y, int& r, int& g, int& b) {
            int v = 18;
            const double cr = Ell(x, y, 175, 120, 145, 108);
            if (cr < 1.0) {
                v = cr > 0.86 ? 205 : 70; // cranial vault and brain
            }
            // Soft tissue of the face in front, faint.
            if (x > 250 && x < 345 && y > 120 && y < 320 && Ell(x, y, 285, 215, 62, 110) < 1.0) {
                v = std::max(v, 55);
            }
            // Maxilla and mandible.
            if (Ell(x, y, 270, 205, 62, 26) < 1.0) {
                v = std::max(v, 150);
            }
            const double jaw = Ell(x, y, 250, 255, 75, 42);
            if (jaw < 1.0 && jaw > 0.55) {
                v = std::max(v, 175);
            }
            if (std::hypot(x - 150.0, y - 135.0) < 11.0) {
                v = 40; // sella turcica
            }
            // Teeth: a row of crowns meeting at the occlusal line y = 232.
            if (x > 225 && x < 318 && std::abs(y - 232) < 22) {
                const int col = (x - 225) % 13;
                if (col > 1) {
                    v = std::max(v, y < 232 ? 235 : 225);
                }
            }
            Grey(r, g, b, v);
        },
        &rng, 6);
}

std::unique_ptr<CImage> Panoramic(VxSyntheticRandom& rng) {
    return Paint(
        480, 240,
        [](int x, int y, int& r, int& g, int& b) {
            int v = 28;
            const double dx = (x - 240.0) / 240.0;
            const double smile = 118.0 + 28.0 * dx * dx;
            // Mandible and maxilla as broad bands.
            if (std::fabs(y - (smile + 45.0)) < 40.0 && std::fabs(dx) < 0.9) {
                v = 105;
            }
            if (std::fabs(y - (smile - 45.0)) < 38.0 && std::fabs(dx) < 0.85) {
                v = std::max(v, 95);
            }
            // Fourteen teeth a row.
            const double span = 360.0 / 14.0;
            const double tx = (x - 60.0) / span;
            if (tx >= 0.0 && tx < 14.0) {
                const double f = tx - std::floor(tx);
                const double c = std::fabs(f - 0.5);
                const double up = smile - 4.0 - y;  // upper tooth: crown just above the line
                const double low = y - smile - 4.0; // lower tooth: below
                if (up >= 0.0 && up < 22.0 && c < 0.42) {
                    v = 230;
                } else if (up >= 22.0 && up < 70.0 && c < 0.3 * (1.0 - (up - 22.0) / 55.0)) {
                    v = 175;
                }
                if (low >= 0.0 && low < 20.0 && c < 0.42) {
                    v = 228;
                } else if (low >= 20.0 && low < 72.0 && c < 0.28 * (1.0 - (low - 20.0) / 58.0)) {
                    v = 172;
                }
            }
            Grey(r, g, b, v);
        },
        &rng, 5);
}

std::unique_ptr<CImage> FrontalSmile() {
    return Paint(
        300, 360,
        [](int x, int y, int& r, int& g, int& b) {
            r = 90;
            g = 110;
            b = 140;
            if (Ell(x, y, 150, 175, 108, 150) < 1.0) {
                r = 232;
                g = 192;
                b = 162;
            }
            if (y < 80 && Ell(x, y, 150, 150, 112, 140) < 1.0) {
                r = 70;
                g = 50;
                b = 35; // hair
            }
            for (int e : {108, 192}) {
                if (Ell(x, y, e, 145, 17, 8) < 1.0) {
                    r = 250;
                    g = 250;
                    b = 250;
                }
                if (Ell(x, y, e, 145, 6, 6) < 1.0) {
                    r = 60;
                    g = 40;
                    b = 30;
                }
            }
            if (Ell(x, y, 150, 205, 14, 30) < 1.0 && x > 150) {
                r -= 25;
                g -= 25;
                b -= 25; // shade beside the nose
            }
            const double lips = Ell(x, y, 150, 268, 56, 24);
            if (lips < 1.0) {
                r = 190;
                g = 80;
                b = 85;
                if (Ell(x, y, 150, 266, 46, 11) < 1.0) {
                    // Teeth, with darker lines between them.
                    const int col = (x - 104 + 100) % 11;
                    r = g = b = (col == 0) ? 170 : 245;
                    b -= 10;
                }
            }
        },
        nullptr, 0);
}

std::unique_ptr<CImage> Profile() {
    return Paint(
        300, 360,
        [](int x, int y, int& r, int& g, int& b) {
            r = g = b = 205;
            // The facial line: forehead, nose, lips, chin, neck, facing right.
            const double t = static_cast<double>(y);
            double edge = 170.0 + 6.0 * std::sin(t / 60.0);
            edge += 45.0 * std::exp(-(t - 175.0) * (t - 175.0) / 260.0); // nose
            edge += 14.0 * std::exp(-(t - 232.0) * (t - 232.0) / 90.0);  // lips
            edge += 10.0 * std::exp(-(t - 282.0) * (t - 282.0) / 200.0); // chin
            if (t > 305.0) {
                edge -= (t - 305.0) * 0.9; // under the chin to the neck
            }
            if (x < edge && x > 30 && y > 40) {
                r = 228;
                g = 186;
                b = 156;
            }
            if (Ell(x, y, 95, 110, 85, 85) < 1.0 && y < 120 && x < 150) {
                r = 60;
                g = 45;
                b = 30; // hair
            }
            if (Ell(x, y, 160, 140, 7, 4) < 1.0) {
                r = 50;
                g = 40;
                b = 35; // eye
            }
        },
        nullptr, 0);
}

} // namespace

namespace vx_synthetic {

void BuildImagesAndMeasures(VxSynthContext& ctx, VxSyntheticRandom& rng) {
    VxCase& c = ctx.out;
    if (ctx.options.images) {
        VxSyntheticRandom cephRng = rng.Fork(21);
        VxSyntheticRandom panRng = rng.Fork(22);
        c.patientInfo.SetCephalometricImg(Cephalogram(cephRng));
        c.patientInfo.SetPanoramicImg(Panoramic(panRng));
        c.patientInfo.SetFrontalSmileImg(FrontalSmile());
        c.patientInfo.SetProfileImg(Profile());
    }
    VxSyntheticRandom measRng = rng.Fork(23);
    c.cepMeasure.SetBrightPos(10 + static_cast<int>(measRng.Below(10)));
    c.cepMeasure.SetContrastPos(15 + static_cast<int>(measRng.Below(10)));
    c.panMeasure.SetBrightPos(-5 - static_cast<int>(measRng.Below(10)));
    c.panMeasure.SetContrastPos(8 + static_cast<int>(measRng.Below(10)));

    // Landmarks in model space: the X-ray is taken as registered to the model,
    // mid-sagittal.
    struct Lm {
        MEASURE_POINT id;
        double y, z;
    };
    static const Lm kLm[] = {
        {MEASURE_POINT_Sella, -62.0, 68.0},
        {MEASURE_POINT_Nasion, 6.0, 74.0},
        {MEASURE_POINT_Orbitale, -8.0, 44.0},
        {MEASURE_POINT_Porion, -78.0, 42.0},
        {MEASURE_POINT_ANS, 4.0, 22.0},
        {MEASURE_POINT_PNS, -42.0, 20.0},
        {MEASURE_POINT_PointA, 1.0, 14.0},
        {MEASURE_POINT_PointB, -4.0, -16.0},
        {MEASURE_POINT_Pogonion, -2.0, -30.0},
        {MEASURE_POINT_Menton, -8.0, -38.0},
        {MEASURE_POINT_Gnathion, -4.0, -35.0},
        {MEASURE_POINT_Gonion, -68.0, -22.0},
        {MEASURE_POINT_Articulare, -72.0, 28.0},
        {MEASURE_POINT_Basion, -74.0, 18.0},
        {MEASURE_POINT_Condylion, -70.0, 34.0},
        {MEASURE_POINT_UpperIncisorTip, 1.0, -1.0},
        {MEASURE_POINT_UpperIncisorApex, -6.0, 20.0},
        {MEASURE_POINT_LowerIncisorTip, -2.5, 1.0},
        {MEASURE_POINT_LowerIncisorApex, -6.0, -19.0},
        {MEASURE_POINT_UpperMolarMesial, -27.0, 0.3},
        {MEASURE_POINT_LowerMolarMesial, -26.0, -0.3},
        {MEASURE_POINT_Pterygoid, -45.0, 36.0},
        {MEASURE_POINT_RefLineStart, -78.0, 40.0},
        {MEASURE_POINT_RefLineEnd, -8.0, 44.0},
        {MEASURE_POINT_SoftNasion, 12.0, 74.0},
        {MEASURE_POINT_SoftPogonion, 10.0, -32.0},
        {MEASURE_POINT_KeyPoint, 3.0, -28.0},
    };
    for (const Lm& lm : kLm) {
        c.cepMeasure.SetMeasurePt(CephalometricPt(lm.id, VxPoint(0.0, lm.y, lm.z)));
    }

    // Panoramic landmarks: kind, number (the label subtracts a per-kind offset),
    // share x, y.
    struct Pa {
        int kind, number;
        double x, y;
    };
    static const Pa kPa[] = {{1, 1, 0.18, 0.42},  {1, 2, 0.82, 0.42},  {2, 5, 0.30, 0.40},
                             {3, 15, 0.45, 0.38}, {4, 19, 0.55, 0.62}, {5, 24, 0.70, 0.64},
                             {6, 0, 0.50, 0.20},  {7, 0, 0.25, 0.75},  {8, 0, 0.90, 0.90}};
    for (const Pa& p : kPa) {
        c.panMeasure.AddData(PanAttribute(p.kind, p.number, VxPoint(p.x, p.y, 0.0)));
    }
}

} // namespace vx_synthetic
