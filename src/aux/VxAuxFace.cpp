// VxAuxFace: coloured triangles over a mesh.
#include <aux/VxAuxFace.h>

#include <GL/glew.h>

#include <frame/OpenGLVersion.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTransformMatrix.h>
#include <shader/NuViewTransforms.h>
#include <shader/RenderV1.h>

#include <cmath>
#include <vector>

namespace {

// The renderer's matrices come from the frame's camera record, which holds the last view drawn,
// while the registry draws each view under its own fixed-function matrices (the placement
// already multiplied on). The matrix handed to the renderer carries a vertex through the fixed
// matrices in force and back through the inverse of the renderer's, so the patch lands on the
// same pixels in every view. A composite that is not affine (a perspective camera against an
// orthographic one) cannot pass as a model matrix: the placement alone goes then.
glm::mat4 ShaderPlacement(const VxMatrix* placement) {
    double m[16];
    double p[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, m);
    glGetDoublev(GL_PROJECTION_MATRIX, p);
    glm::dmat4 gm(1.0);
    glm::dmat4 gp(1.0);
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r) {
            gm[c][r] = m[c * 4 + r];
            gp[c][r] = p[c * 4 + r];
        }
    }
    const NuViewTransforms t;
    const glm::dmat4 shader = glm::dmat4(t.projection) * glm::dmat4(t.view) * glm::dmat4(t.model);
    const glm::dmat4 carry = glm::inverse(shader) * gp * gm;
    const bool affine = std::abs(carry[0][3]) < 1e-9 && std::abs(carry[1][3]) < 1e-9 &&
                        std::abs(carry[2][3]) < 1e-9 && std::abs(carry[3][3] - 1.0) < 1e-6;
    if (affine) {
        return glm::mat4(carry);
    }
    return placement != nullptr ? NuViewTransforms::FromMatrix(*placement) : glm::mat4(1.0f);
}

} // namespace

VxAuxFace::VxAuxFace(VxMesh* mesh) : m_mesh(mesh) {
    m_hitPriority = AuxHitPriority_Low;
}

ObjectType_e VxAuxFace::GetObjectType() const {
    return ObjectType_AuxFace;
}

bool VxAuxFace::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxFace || VxAuxObject::IsKindOf(type);
}

void VxAuxFace::Draw() {
    if (!IsVisible() || m_mesh == nullptr || m_faces.empty()) {
        return;
    }
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(m_mesh);
    if (!infos.empty()) {
        DrawCore(&infos.begin()->matrix);
    } else {
        DrawCore(nullptr);
    }
}

template <typename Visit> void VxAuxFace::ForEachVertex(Visit visit) const {
    const int faceCount = m_mesh->GetFaceCount();
    const int vertexCount = m_mesh->GetVertexCount();
    for (int f : m_faces) {
        if (f < 0 || f >= faceCount) {
            continue;
        }
        int v[3];
        m_mesh->GetFaces()[static_cast<std::size_t>(f)].Get3VtxId(v[0], v[1], v[2]);
        if (v[0] < 0 || v[1] < 0 || v[2] < 0 || v[0] >= vertexCount || v[1] >= vertexCount ||
            v[2] >= vertexCount) {
            continue;
        }
        for (int id : v) {
            visit(id, m_mesh->GetVertices()[static_cast<std::size_t>(id)].GetPos());
        }
    }
}

template <typename ColourOf> void VxAuxFace::Triangles(ColourOf colourOf) const {
    glBegin(GL_TRIANGLES);
    ForEachVertex([&colourOf](int id, const VxPoint& p) {
        colourOf(id);
        glVertex3d(p[0], p[1], p[2]);
    });
    glEnd();
}

template <typename ColourOf>
void VxAuxFace::ShaderTriangles(ColourOf colourOf, const VxMatrix* placement) const {
    // Position and colour of each vertex, six floats, the layout the coloured-triangle pass
    // reads; the renderer copies it, so the block lives for this draw only.
    std::vector<float> data;
    data.reserve(m_faces.size() * 18);
    ForEachVertex([&](int id, const VxPoint& p) {
        const VxColor c = colourOf(id);
        data.insert(data.end(),
                    {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]),
                     static_cast<float>(c.GetR() / 255.0), static_cast<float>(c.GetG() / 255.0),
                     static_cast<float>(c.GetB() / 255.0)});
    });
    if (data.empty()) {
        return;
    }
    const glm::mat4 matrix = ShaderPlacement(placement);
    RenderV1::GetInstance()->DrawWithMaterialWithMatrixTriandColor(
        data.data(), static_cast<int>(data.size() / 18), matrix);
}

void VxAuxFace::DrawCore(const VxMatrix* placement) {
    if (placement != nullptr) {
        double m[16];
        placement->ToArray(m);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glMultMatrixd(m);
    }
    // On the shader path the triangles go to the renderer's coloured-triangle pass with the
    // placement as its own matrix; the fixed path multiplies it on the model-view above.
    const bool shaderPath = OpenGLVersion::GetInstance()->Get_btestversion();
    const auto vertexColour = [this](int id) {
        // A vertex without a colour is the caller's slip; it gets black, not a crash.
        auto it = m_vertexColors.find(id);
        return it != m_vertexColors.end() ? it->second : VxColor();
    };
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                 GL_COLOR_BUFFER_BIT | GL_POLYGON_BIT);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    // The patch lies exactly on the mesh it colours; pulled a little towards the eye it wins
    // every depth test instead of half of them (a speckle of tooth through the map).
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(-1.0f, -2.0f);
    if (m_transparent) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        GLColor(m_faceColor, 128);
        if (shaderPath) {
            ShaderTriangles([this](int) { return m_faceColor; }, placement);
        } else {
            Triangles([](int) {});
        }
    } else {
        glShadeModel(GL_SMOOTH);
        if (shaderPath) {
            ShaderTriangles(vertexColour, placement);
        } else {
            Triangles([&vertexColour](int id) { GLColor(vertexColour(id), 255); });
        }
    }
    PopPass();
    if (placement != nullptr) {
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
}
