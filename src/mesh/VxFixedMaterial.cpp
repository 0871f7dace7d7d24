// VxFixedMaterial: the twelve records and glMaterial.
#include <mesh/VxFixedMaterial.h>

#include <GL/glew.h>

namespace {

// Each channel divided by 255 as a double, then narrowed: the records are ints and GL takes
// floats, and the rounding of that one step is what the colours on screen come from.
void ToFloats(const VxColor& c, GLfloat out[4]) {
    out[0] = static_cast<GLfloat>(c.GetR() / 255.0);
    out[1] = static_cast<GLfloat>(c.GetG() / 255.0);
    out[2] = static_cast<GLfloat>(c.GetB() / 255.0);
    out[3] = static_cast<GLfloat>(c.GetA() / 255.0);
}

VxFixedMaterial Make(int ar, int ag, int ab, int aa, int dr, int dg, int db, int da, int sr, int sg,
                     int sb, int sa, int er, int eg, int eb, int ea, float shininess) {
    return VxFixedMaterial(VxColor(ar, ag, ab, aa), VxColor(dr, dg, db, da),
                           VxColor(sr, sg, sb, sa), VxColor(er, eg, eb, ea), shininess);
}

// Namespace-scope statics: initialised when the library loads, before any function-local
// singleton can be reached.
VxFixedMaterial g_tooth = VxFixedMaterial::ToothDefault();
VxFixedMaterial g_gum = VxFixedMaterial::GumDefault();
VxFixedMaterial g_jaw = VxFixedMaterial::JawDefault();
VxFixedMaterial g_selected =
    Make(153, 153, 153, 153, 214, 164, 76, 255, 64, 64, 64, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_auxRed =
    Make(153, 153, 153, 153, 214, 0, 0, 255, 64, 64, 64, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothSelected =
    Make(153, 153, 153, 153, 214, 164, 76, 255, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothHighlight =
    Make(76, 102, 204, 153, 76, 102, 204, 153, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothKind2 =
    Make(128, 128, 128, 153, 115, 115, 115, 255, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothKind3 =
    Make(128, 128, 128, 153, 128, 128, 230, 255, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothKind5 =
    Make(128, 128, 128, 153, 204, 21, 227, 255, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_toothLocked =
    Make(128, 128, 128, 153, 153, 153, 153, 255, 51, 51, 51, 255, 0, 0, 0, 255, 10);
VxFixedMaterial g_attachment =
    Make(10, 10, 10, 128, 10, 10, 10, 128, 10, 3, 3, 25, 76, 52, 51, 255, 10);

} // namespace

VxFixedMaterial VxFixedMaterial::ToothDefault() {
    return Make(110, 110, 110, 153, 60, 60, 60, 255, 86, 80, 80, 255, 153, 143, 133, 255, 100);
}
VxFixedMaterial VxFixedMaterial::GumDefault() {
    return Make(33, 33, 33, 128, 33, 33, 33, 128, 38, 13, 13, 25, 153, 104, 102, 255, 128);
}
VxFixedMaterial VxFixedMaterial::JawDefault() {
    return Make(153, 153, 153, 153, 178, 178, 178, 255, 38, 33, 30, 255, 0, 0, 0, 255, 10);
}

VxFixedMaterial& VxFixedMaterial::Tooth() {
    return g_tooth;
}
VxFixedMaterial& VxFixedMaterial::Gum() {
    return g_gum;
}
VxFixedMaterial& VxFixedMaterial::Jaw() {
    return g_jaw;
}
VxFixedMaterial& VxFixedMaterial::Selected() {
    return g_selected;
}
VxFixedMaterial& VxFixedMaterial::AuxRed() {
    return g_auxRed;
}
VxFixedMaterial& VxFixedMaterial::ToothSelected() {
    return g_toothSelected;
}
VxFixedMaterial& VxFixedMaterial::ToothHighlight() {
    return g_toothHighlight;
}
VxFixedMaterial& VxFixedMaterial::ToothKind2() {
    return g_toothKind2;
}
VxFixedMaterial& VxFixedMaterial::ToothKind3() {
    return g_toothKind3;
}
VxFixedMaterial& VxFixedMaterial::ToothKind5() {
    return g_toothKind5;
}
VxFixedMaterial& VxFixedMaterial::ToothLocked() {
    return g_toothLocked;
}
VxFixedMaterial& VxFixedMaterial::Attachment() {
    return g_attachment;
}

void VxFixedMaterial::Apply() const {
    GLfloat c[4];
    glDisable(GL_COLOR_MATERIAL);
    ToFloats(m_emission, c);
    glMaterialfv(GL_FRONT, GL_EMISSION, c);
    ToFloats(m_ambient, c);
    glMaterialfv(GL_FRONT, GL_AMBIENT, c);
    ToFloats(m_diffuse, c);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, c);
    ToFloats(m_specular, c);
    glMaterialfv(GL_FRONT, GL_SPECULAR, c);
    glMaterialf(GL_FRONT, GL_SHININESS, m_shininess);
}
