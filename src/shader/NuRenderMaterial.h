// NuRenderMaterial: the material of one shader-path draw, a value copied through every call. Four
// colours of four floats (0 to 1), a shininess and the back-and-front flag. What reaches a program:
// ambient rgb, diffuse rgb, specular rgb and shininess as the material, and the ambient alpha as
// the whole object's opacity; the other alphas and the emission are carried and never sent.
// Presets start from a default-constructed material and write colours given in 0..255.
#pragma once

class NuRenderMaterial {
public:
    NuRenderMaterial();

    void SetToothDefault();
    void SetToothSelected();
    void SetToothHighlight();
    void SetToothKind2();
    void SetToothKind3();
    void SetToothKind5();
    void SetToothLocked();
    void SetJawDefault();
    void SetSelected();
    void SetGumDefault();
    void SetGumPlain();
    void SetAttachmentDefault();

    // r, g, b in 0..255: ambient half, diffuse 0.3 and specular 0.2 of the colour. Alphas,
    // emission and shininess stay.
    void SetFromColor(float r, float g, float b);
    // Ambient is the colour itself; the rest is the attachment look.
    void SetAttachmentFromColor(float r, float g, float b);
    // The translucent look of a limited object: a (0..255) goes into every alpha, so into the
    // opacity. Shininess stays.
    void SetLimited(float r, float g, float b, float a);
    void SetBackAndFront(bool backAndFront);

    float ambient[4];
    float diffuse[4];
    float specular[4];
    float emission[4];
    float shininess;
    bool backAndFront;

private:
    void SetAll(const int* ambient255, const int* diffuse255, const int* specular255,
                const int* emission255, float shininessValue);
};
