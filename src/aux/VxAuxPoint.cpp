// VxAuxPoint: spheres and dots.
#include <aux/VxAuxPoint.h>

#include <GL/glew.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxSystemOption.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <vector>

ObjectType_e VxAuxPoint::GetObjectType() const {
    return ObjectType_AuxPoint;
}

bool VxAuxPoint::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxPoint || VxAuxObject::IsKindOf(type);
}

double VxAuxPoint::DrawRadius(int style) {
    switch (style) {
    case 1:
        return 0.05;
    case 2:
        return 0.4;
    case 3:
        return 0.6;
    case 4:
        return 0.0;
    case 5:
        return 0.3;
    default:
        return 0.2;
    }
}

double VxAuxPoint::HighlightRadius(int style) {
    switch (style) {
    case 2:
        return 0.5;
    case 4:
        return 0.0;
    case 5:
        return 0.3;
    default:
        return 0.2;
    }
}

void VxAuxPoint::Draw() {
    DrawPasses([this](int mode) { DrawPoint(mode); });
}

void VxAuxPoint::Shape(double radius, float dotSize) const {
    if (m_style == AuxPointStyle_Dot) {
        glDisable(GL_LIGHTING);
        glPointSize(dotSize);
        glBegin(GL_POINTS);
        glVertex3d(m_pos[0], m_pos[1], m_pos[2]);
        glEnd();
        return;
    }
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    // Lit spheres take the current colour as their material.
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslated(m_pos[0], m_pos[1], m_pos[2]);
    DrawSphere(radius);
    glPopMatrix();
}

void VxAuxPoint::DrawPoint(int mode) {
    glPushAttrib(kPassAttribs);
    ApplyDepthMode(mode);
    GLColor(PassColor(mode, true));
    Shape(DrawRadius(m_style), 6.0f);
    PopPass();
}

void VxAuxPoint::DrawHighlight() {
    if (!IsVisible()) {
        return;
    }
    glPushAttrib(kPassAttribs);
    if (m_front) {
        glDisable(GL_DEPTH_TEST);
    } else {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    }
    GLColor(VxColor::GetHighlightColor());
    Shape(HighlightRadius(m_style), 8.0f);
    PopPass();
}

bool VxAuxPoint::HitTest(int x, int y) {
    if (m_render == nullptr) {
        return false;
    }
    const CPoint s = m_render->MapModelPointToScreen(m_pos);
    return std::abs(s.x - x) + std::abs(s.y - y) < VxSystemOption::GetInstance()->GetHitPrecision();
}

namespace {

struct SphereArrays {
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<unsigned int> indices;
};

// Bands of latitude from the +z pole, each split into quads of longitude, as GLU tessellates
// its spheres; two triangles a quad, normals outwards. Indexed, so each of the 33 x 33 grid
// points is shaded once however many triangles share it.
SphereArrays MakeSphere(double radius) {
    constexpr int kSlices = 32;
    constexpr int kStacks = 32;
    const double pi = 3.14159265358979323846;
    SphereArrays a;
    for (int i = 0; i <= kStacks; ++i) {
        const double phi = pi * i / kStacks;
        for (int j = 0; j <= kSlices; ++j) {
            const double theta = 2.0 * pi * j / kSlices;
            const double n[3] = {std::sin(phi) * std::cos(theta), std::sin(phi) * std::sin(theta),
                                 std::cos(phi)};
            for (int k = 0; k < 3; ++k) {
                a.normals.push_back(static_cast<float>(n[k]));
                a.positions.push_back(static_cast<float>(n[k] * radius));
            }
        }
    }
    const auto at = [](int i, int j) { return static_cast<unsigned int>(i * (kSlices + 1) + j); };
    for (int i = 0; i < kStacks; ++i) {
        for (int j = 0; j < kSlices; ++j) {
            a.indices.insert(a.indices.end(), {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j),
                                               at(i + 1, j + 1), at(i, j + 1)});
        }
    }
    return a;
}

} // namespace

void VxAuxPoint::DrawSphere(double radius) {
    // The family uses a handful of radii; a host's own radii are bounded too.
    static std::map<double, SphereArrays> cache;
    auto it = cache.find(radius);
    if (it == cache.end()) {
        if (cache.size() >= 32) {
            cache.clear();
        }
        it = cache.emplace(radius, MakeSphere(radius)).first;
    }
    GLint buffer = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
    if (buffer != 0) {
        glBindBufferARB(GL_ARRAY_BUFFER, 0); // client arrays, not offsets into a buffer
    }
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, it->second.positions.data());
    glNormalPointer(GL_FLOAT, 0, it->second.normals.data());
    GLint elements = 0;
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &elements);
    if (elements != 0) {
        glBindBufferARB(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(it->second.indices.size()), GL_UNSIGNED_INT,
                   it->second.indices.data());
    if (elements != 0) {
        glBindBufferARB(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(elements));
    }
    glPopClientAttrib();
    if (buffer != 0) {
        glBindBufferARB(GL_ARRAY_BUFFER, static_cast<GLuint>(buffer));
    }
}
