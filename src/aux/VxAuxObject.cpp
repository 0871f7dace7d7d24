// VxAuxObject: the flags and the depth-mode helpers shared by the auxiliary drawables.
#include <aux/VxAuxObject.h>

#include <GL/glew.h>

#include <frame/VxRenderStatus.h>

static_assert(GL_NEVER == 0x0200 && GL_LEQUAL == 0x0203 && GL_GREATER == 0x0204,
              "depth modes are passed as GL enums");
static_assert((GL_CURRENT_BIT | GL_POINT_BIT | GL_LINE_BIT | GL_POLYGON_BIT | GL_LIGHTING_BIT |
               GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT) == 0x614F,
              "attribute mask spelled as numbers in the header");

VxAuxObject::VxAuxObject() : m_render(VxRenderStatus::GetInstance()->GetRender()) {}

VxAuxObject::VxAuxObject(const VxAuxObject& other) = default;
VxAuxObject& VxAuxObject::operator=(const VxAuxObject& other) = default;
VxAuxObject::~VxAuxObject() = default;

ObjectType_e VxAuxObject::GetObjectType() const {
    return ObjectType_AuxObject;
}

bool VxAuxObject::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxObject || VxObject::IsKindOf(type);
}

bool VxAuxObject::HitTest(int, int) {
    return false;
}

VxColor VxAuxObject::Scaled(const VxColor& c, double factor) {
    return VxColor(static_cast<int>(c.GetR() * factor), static_cast<int>(c.GetG() * factor),
                   static_cast<int>(c.GetB() * factor), static_cast<int>(c.GetA() * factor));
}

void VxAuxObject::GLColor(const VxColor& c) {
    GLColor(c, c.GetA());
}

void VxAuxObject::GLColor(const VxColor& c, int alpha) {
    glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
               static_cast<GLubyte>(c.GetB()), static_cast<GLubyte>(alpha));
}

void VxAuxObject::ApplyDepthMode(int mode) {
    if (mode == kModeFront) {
        glDisable(GL_DEPTH_TEST);
        return;
    }
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(static_cast<GLenum>(mode));
    if (mode == kModeHidden) {
        glEnable(GL_BLEND);
        glDepthMask(GL_FALSE);
        glBlendFunc(GL_SRC_ALPHA, GL_DST_COLOR);
    }
}

VxColor VxAuxObject::PassColor(int mode, bool useSelected) const {
    if (mode == kModeHidden) {
        return Scaled(m_color, 0.3);
    }
    if (useSelected && IsSelected()) {
        return VxColor::GetAuxSelectColor();
    }
    return m_color;
}

void VxAuxObject::PopPass() {
    GLfloat pending[4];
    glGetFloatv(GL_CURRENT_COLOR, pending); // settles the pending colour before the pop
    glPopAttrib();
}
