// NuRenderMaterial: presets. Each channel is a 0..255 integer times 1/255, computed in double and
// narrowed once, so equal inputs give bit-equal floats whichever preset wrote them.
#include <shader/NuRenderMaterial.h>

namespace {

constexpr double kInv255 = 0.00392156862745098;

float Unit(double v255) {
    return static_cast<float>(v255 * kInv255);
}

void Store(float* out, const int* v255) {
    for (int i = 0; i < 4; ++i) {
        out[i] = Unit(v255[i]);
    }
}

void StoreRgb(float* out, double r, double g, double b, double factor) {
    out[0] = Unit(r * factor);
    out[1] = Unit(g * factor);
    out[2] = Unit(b * factor);
}

} // namespace

NuRenderMaterial::NuRenderMaterial() : shininess(0.0f), backAndFront(false) {
    for (int i = 0; i < 4; ++i) {
        ambient[i] = diffuse[i] = specular[i] = emission[i] = 0.0f;
    }
}

void NuRenderMaterial::SetAll(const int* a, const int* d, const int* s, const int* e, float sh) {
    Store(ambient, a);
    Store(diffuse, d);
    Store(specular, s);
    Store(emission, e);
    shininess = sh;
}

void NuRenderMaterial::SetToothDefault() {
    const int a[] = {184, 184, 184, 255}, d[] = {36, 36, 36, 255}, s[] = {255, 255, 255, 255},
              e[] = {153, 143, 133, 255};
    SetAll(a, d, s, e, 512.0f);
}

void NuRenderMaterial::SetToothSelected() {
    const int a[] = {47, 41, 38, 255}, d[] = {156, 131, 84, 255}, s[] = {68, 43, 19, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetToothHighlight() {
    const int a[] = {56, 82, 184, 255}, d[] = {10, 10, 10, 255}, s[] = {10, 10, 10, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetToothKind2() {
    const int a[] = {40, 40, 40, 255}, d[] = {70, 70, 70, 255}, s[] = {51, 51, 51, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetToothKind3() {
    const int a[] = {40, 40, 40, 153}, d[] = {80, 80, 150, 255}, s[] = {51, 51, 51, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetToothKind5() {
    const int a[] = {40, 40, 40, 153}, d[] = {204, 21, 227, 255}, s[] = {51, 51, 51, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetToothLocked() {
    const int a[] = {100, 100, 100, 255}, d[] = {36, 36, 36, 255}, s[] = {34, 32, 31, 255},
              e[] = {153, 143, 133, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetJawDefault() {
    const int a[] = {51, 51, 51, 255}, d[] = {125, 125, 125, 255}, s[] = {38, 33, 30, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetSelected() {
    const int a[] = {47, 41, 38, 255}, d[] = {136, 101, 64, 255}, s[] = {68, 43, 19, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetGumPlain() {
    const int a[] = {156, 80, 70, 255}, d[] = {49, 31, 26, 255}, s[] = {47, 82, 68, 255},
              e[] = {153, 104, 102, 255};
    SetAll(a, d, s, e, 64.0f);
}

void NuRenderMaterial::SetGumDefault() {
    SetGumPlain();
    // Half of the gum base colour (225, 142, 138): the textured program multiplies by that base
    // again, so the diffuse here only scales it.
    const float half = 1.0f - 0.5f;
    diffuse[0] = half * 0.88235295f;
    diffuse[1] = half * 0.5568628f;
    diffuse[2] = half * 0.5411765f;
    diffuse[3] = 1.0f;
    const int s[] = {50, 50, 50, 255};
    Store(specular, s);
    shininess = 256.0f;
}

void NuRenderMaterial::SetAttachmentDefault() {
    // The diffuse is (36, 18, 18, 255) doubled, alpha included; the alpha is never sent.
    const int a[] = {180, 90, 90, 255}, d[] = {72, 36, 36, 510}, s[] = {36, 18, 18, 255},
              e[] = {0, 0, 0, 255};
    SetAll(a, d, s, e, 10.0f);
}

void NuRenderMaterial::SetFromColor(float r, float g, float b) {
    StoreRgb(ambient, r, g, b, 0.5);
    StoreRgb(diffuse, r, g, b, 0.3);
    StoreRgb(specular, r, g, b, 0.2);
}

void NuRenderMaterial::SetAttachmentFromColor(float r, float g, float b) {
    StoreRgb(ambient, r, g, b, 1.0);
    const int d[] = {72, 36, 36, 510}, s[] = {36, 18, 18, 255}, e[] = {0, 0, 0, 255};
    Store(diffuse, d);
    Store(specular, s);
    Store(emission, e);
    shininess = 10.0f;
}

void NuRenderMaterial::SetLimited(float r, float g, float b, float a) {
    StoreRgb(ambient, r, g, b, 0.5);
    StoreRgb(diffuse, r, g, b, 0.3);
    StoreRgb(specular, r, g, b, 0.2);
    ambient[3] = diffuse[3] = specular[3] = Unit(a);
    for (float& c : emission) {
        c = 0.0f;
    }
}

void NuRenderMaterial::SetBackAndFront(bool value) {
    backAndFront = value;
}
