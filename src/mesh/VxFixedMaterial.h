// VxFixedMaterial: a material record of the fixed-function path (ambient, diffuse, specular,
// emission as 0..255 colours, and a shininess) and the twelve records the drawers use. The
// records are plain statics, built before any singleton; the tooth, gum and jaw records are
// rewritten from their colour INI files (VxMaterialIni) before each use. No GL here but Apply.
#pragma once

#include <interfaces/VxColor.h>

class VxFixedMaterial {
public:
    VxFixedMaterial() = default;
    VxFixedMaterial(const VxColor& ambient, const VxColor& diffuse, const VxColor& specular,
                    const VxColor& emission, float shininess)
        : m_ambient(ambient), m_diffuse(diffuse), m_specular(specular), m_emission(emission),
          m_shininess(shininess) {}

    // GL_COLOR_MATERIAL off, then GL_FRONT emission, ambient, diffuse, specular and shininess.
    // The drawers run it inside their lighting-bit push.
    void Apply() const;

    VxColor m_ambient;
    VxColor m_diffuse;
    VxColor m_specular;
    VxColor m_emission;
    float m_shininess = 0.0f;

    // The records. Tooth, gum and jaw are the INI-fed defaults; jaw also serves plain meshes and
    // the skull; Selected serves every selected non-tooth entity.
    static VxFixedMaterial& Tooth();
    static VxFixedMaterial& Gum();
    static VxFixedMaterial& Jaw();
    static VxFixedMaterial& Selected();
    static VxFixedMaterial& AuxRed();
    static VxFixedMaterial& ToothSelected();
    static VxFixedMaterial& ToothHighlight();
    static VxFixedMaterial& ToothKind2();
    static VxFixedMaterial& ToothKind3();
    static VxFixedMaterial& ToothKind5();
    static VxFixedMaterial& ToothLocked();
    static VxFixedMaterial& Attachment();

    // The compiled values of the three INI-fed records, for a reset (tests) and for reference.
    static VxFixedMaterial ToothDefault();
    static VxFixedMaterial GumDefault();
    static VxFixedMaterial JawDefault();
};
