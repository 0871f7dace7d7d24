// The look of the lit programs, read back from a real headless context and compared with a CPU
// twin of the four fragment programs written here from the shading rules (not shared with the
// library): quads under a known orthographic camera, with known normals, materials and lights,
// must come back within 2/255 of the twin at a grid of pixels. The tint by grade, the neutral back
// face, the gum's separately gamma-shaped terms and its flat colour outside the texture all differ
// from a textbook Phong shader by far more than that. Also: the lights follow the camera (read
// back from the program after a perspective camera is set), and a swatch golden of every
// material preset on a sphere, which is looked at by a person.
#include "VxGLTest.h"
#include "VxTestPaths.h"

#include <frame/NuCameraSnapshot.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxXForm.h>
#include <shader/NuRenderMaterial.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

// The tests' access to RenderV1's private program slots and uniform passes.
class RenderV1Probe {
public:
    static Shader* Tooth() { return R()->KeptProgram(RenderV1::Kept_Tooth); }
    static Shader* Mesh() { return R()->KeptProgram(RenderV1::Kept_Mesh); }
    static Shader* Gum() { return R()->KeptProgram(RenderV1::Kept_Gum); }
    static Shader* CurrentMesh(bool backAndFront) {
        return R()->CompileCurrentMeshShader(backAndFront, false);
    }
    static void Prepare(Shader* s, const NuRenderMaterial& m, const glm::mat4& matrix) {
        R()->PreparingDataForShader(s, m, matrix);
    }
    static void PrepareCurrent(const NuRenderMaterial& m, const glm::mat4& matrix) {
        R()->PreparingDataForShader(m, matrix);
    }

private:
    static RenderV1* R() { return RenderV1::GetInstance(); }
};

namespace {

using glm::vec3;

// ---------------------------------------------------------------------------------------------
// The CPU twin.

struct TwinLight {
    vec3 position, ambient, diffuse, specular;
};
using TwinRig = std::array<TwinLight, 5>;

struct TwinMaterial {
    vec3 ambient, diffuse, specular;
    float shininess;
    float alpha;
};

TwinMaterial FromMaterial(const NuRenderMaterial& m) {
    return {vec3(m.ambient[0], m.ambient[1], m.ambient[2]),
            vec3(m.diffuse[0], m.diffuse[1], m.diffuse[2]),
            vec3(m.specular[0], m.specular[1], m.specular[2]), m.shininess, m.ambient[3]};
}

// Near, lower, left corner of the view volume, w left undivided.
vec3 Span(const glm::mat4& view, const glm::mat4& projection) {
    return vec3(glm::inverse(view) * glm::inverse(projection) * glm::vec4(-1, -1, -1, 1));
}

TwinRig ToothRig(const vec3& s) {
    const vec3 z(0.0);
    return {{{vec3(0, 0, 1) * s, vec3(1), vec3(1), vec3(1)},
             {vec3(-1, 0, 1) * s, z, vec3(0.1f), vec3(0.05f)},
             {vec3(1, 0, 1) * s, z, vec3(0.1f), vec3(0.05f)},
             {vec3(0, -1, 0) * s, z, vec3(0.05f), vec3(0.025f)},
             {vec3(0, 1, 0) * s, z, vec3(0.05f), vec3(0.025f)}}};
}

TwinRig GumRig(const vec3& s) {
    const vec3 z(0.0), h(0.5f);
    return {{{vec3(0, 0, 1) * s, vec3(1), z, z},
             {vec3(-1, 1, 1) * s, z, h, h},
             {vec3(-1, -1, 1) * s, z, h, h},
             {vec3(1, -1, 1) * s, z, h, h},
             {vec3(1, 1, 1) * s, z, h, h}}};
}

vec3 Reflect(const vec3& i, const vec3& n) {
    return i - 2.0f * glm::dot(n, i) * n;
}

vec3 Lit(const TwinRig& rig, const TwinMaterial& m, vec3 n, const vec3& viewDir, bool front) {
    vec3 sum(0.0f);
    for (const TwinLight& l : rig) {
        const vec3 dir = glm::normalize(l.position);
        const float diff = std::max(glm::dot(n, dir), 0.0f);
        const float specAmount =
            std::pow(std::max(glm::dot(viewDir, Reflect(-dir, n)), 0.0f), m.shininess);
        if (front) {
            sum += l.ambient * m.ambient + l.diffuse * (diff * m.diffuse) +
                   l.specular * (specAmount * m.specular);
        } else {
            sum += l.ambient * 0.65f + l.diffuse * (diff * 0.15f);
        }
    }
    return sum;
}

vec3 TwinTooth(const TwinRig& rig, const TwinMaterial& m, const vec3& normal, const vec3& viewDir,
               float order) {
    const vec3 c = Lit(rig, m, glm::normalize(normal), viewDir, true);
    const float t = std::pow(order, 0.25f);
    const float r = std::sqrt(t * 60.0f / 255 + 195.0f / 255);
    const float g = t * 106.0f / 255 + 149.0f / 255;
    const float b = std::pow(t * 134.0f / 255 + 121.0f / 255, 1.5f);
    return vec3(r * c.r, g * c.g, b * c.b);
}

vec3 TwinMesh(const TwinRig& rig, const TwinMaterial& m, const vec3& normal, const vec3& viewDir,
              bool front) {
    const vec3 n = front ? glm::normalize(normal) : -glm::normalize(normal);
    return Lit(rig, m, n, viewDir, front);
}

vec3 Pow(const vec3& v, float e) {
    return vec3(std::pow(v.x, e), std::pow(v.y, e), std::pow(v.z, e));
}

// Textures are constant over the quad, so the sampled texel is the texel.
vec3 TwinGum(const TwinRig& rig, const TwinMaterial& m, const vec3& normal, const vec3& viewDir,
             const vec3& tex, const vec3& bumpTexel, const glm::mat3& tbn, float bumpU) {
    if (bumpU >= 2.0f) {
        return vec3(226, 161, 157) / 255.0f;
    }
    const vec3 base = vec3(225, 142, 138) / 255.0f;
    const vec3 faceN = tbn[2];
    vec3 nf = glm::normalize(tbn * glm::normalize(bumpTexel * 2.0f - 1.0f));
    const vec3 n = glm::normalize(glm::normalize(normal) + (nf - faceN) / 3.0f);
    vec3 amb(0), dif(0), spe(0);
    for (const TwinLight& l : rig) {
        amb += Pow(vec3(0.875f) * l.ambient * Pow(tex, 1.7f) * base, 1.7f);
        const vec3 dir = glm::normalize(l.position);
        const float diff = std::pow(std::max(glm::dot(n, dir), 0.0f), 3.5f);
        dif += Pow(l.diffuse * (diff * m.diffuse) * Pow(tex, 2.2f) * base, 2.2f);
        const float specAmount =
            std::pow(std::max(glm::dot(viewDir, Reflect(-dir, n)), 0.0f), m.shininess);
        spe += Pow(l.specular * (specAmount * m.specular) * Pow(tex, 2.2f) * base, 2.2f);
    }
    return Pow(amb, 1 / 2.2f) + Pow(dif, 1 / 2.2f) + Pow(spe, 1 / 2.2f);
}

// ---------------------------------------------------------------------------------------------
// Scene: an orthographic camera over x, y in [-1, 1], eye at z = 5 looking down -z.

constexpr int kSize = 256;
const vec3 kEye(0, 0, 5);

void SetOrthoCamera() {
    NuCameraSnapshot* cam = NuCameraSnapshot::GetInstance();
    cam->SetEye(kEye.x, kEye.y, kEye.z);
    cam->SetCenter(0, 0, 0);
    cam->SetUp(0, 1, 0);
    const glm::dmat4 p = glm::ortho(-1.0, 1.0, -1.0, 1.0, 1.0, 10.0);
    cam->SetProjection(glm::value_ptr(p));
    cam->SetViewTransform(nullptr);
}

glm::mat4 OrthoView() {
    return glm::lookAt(kEye, vec3(0), vec3(0, 1, 0));
}
glm::mat4 OrthoProjection() {
    return glm::ortho(-1.0f, 1.0f, -1.0f, 1.0f, 1.0f, 10.0f);
}

// World position of a pixel centre on the plane z = 0.
vec3 PixelWorld(int px, int py) {
    return vec3((px + 0.5f) / kSize * 2 - 1, (py + 0.5f) / kSize * 2 - 1, 0.0f);
}

// A full-window quad in the plain layout (position, normal, grade); back = clockwise from the eye.
std::vector<float> PlainQuad(const vec3& n, float order, bool back = false) {
    std::vector<vec3> p = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
    if (back) {
        std::swap(p[1], p[2]);
        std::swap(p[4], p[5]);
    }
    std::vector<float> v;
    for (const vec3& q : p) {
        v.insert(v.end(), {q.x, q.y, q.z, n.x, n.y, n.z, order});
    }
    return v;
}

// Position, normal, grade, colour uv, bump uv, tangent, bitangent.
std::vector<float> GumQuad(const vec3& n, float bumpU) {
    const std::vector<vec3> p = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0},
                                 {-1, -1, 0}, {1, 1, 0},  {-1, 1, 0}};
    std::vector<float> v;
    for (const vec3& q : p) {
        v.insert(v.end(),
                 {q.x, q.y, q.z, n.x, n.y, n.z, 1.0f, 0.5f, 0.5f, bumpU, 0.5f, 1, 0, 0, 0, 1, 0});
    }
    return v;
}

// Draws triangles with attributes of the given float counts at locations 0, 1, 2, ...
void DrawArrays(const std::vector<float>& data, const std::vector<int>& sizes) {
    int stride = 0;
    for (int s : sizes) {
        stride += s;
    }
    GLuint vao = 0, vbo = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    glGenBuffers(1, &vbo);
    glBindBuffer(GL_ARRAY_BUFFER, vbo);
    glBufferData(GL_ARRAY_BUFFER, data.size() * sizeof(float), data.data(), GL_STATIC_DRAW);
    int offset = 0;
    for (size_t i = 0; i < sizes.size(); ++i) {
        glVertexAttribPointer(i, sizes[i], GL_FLOAT, GL_FALSE, stride * sizeof(float),
                              reinterpret_cast<void*>(offset * sizeof(float)));
        glEnableVertexAttribArray(i);
        offset += sizes[i];
    }
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(data.size() / stride));
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDeleteBuffers(1, &vbo);
    glDeleteVertexArrays(1, &vao);
}

const std::vector<int> kPlainLayout = {3, 3, 1};
const std::vector<int> kGumLayout = {3, 3, 1, 2, 2, 3, 3};

void DrawWith(Shader* shader, const NuRenderMaterial& m, const std::vector<float>& data,
              const std::vector<int>& layout, const glm::mat4& matrix = glm::mat4(1.0f)) {
    shader->use();
    RenderV1Probe::Prepare(shader, m, matrix);
    DrawArrays(data, layout);
    glUseProgram(0);
}

GLuint ConstantTexture(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    const std::uint8_t px[4] = {r, g, b, 255};
    GLuint t = 0;
    glGenTextures(1, &t);
    glBindTexture(GL_TEXTURE_2D, t);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, px);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glBindTexture(GL_TEXTURE_2D, 0);
    return t;
}

vec3 Clamp01(const vec3& c) {
    return glm::clamp(c, vec3(0.0f), vec3(1.0f));
}

// Compares the window with the twin at a 9 x 9 grid of pixels.
template <typename F>
::testing::AssertionResult MatchesTwin(const VxTestImage& img, F twin, int tolerance = 2) {
    int bad = 0;
    std::string first;
    for (int gy = 0; gy < 9; ++gy) {
        for (int gx = 0; gx < 9; ++gx) {
            const int px = 8 + gx * 30, py = 8 + gy * 30;
            const vec3 e = Clamp01(twin(px, py)) * 255.0f;
            const std::uint8_t* a = img.Pixel(px, py);
            for (int c = 0; c < 3; ++c) {
                if (std::abs(a[c] - e[c]) > tolerance + 0.5f) {
                    if (bad++ == 0) {
                        first = "at (" + std::to_string(px) + ", " + std::to_string(py) +
                                ") got (" + std::to_string(a[0]) + ", " + std::to_string(a[1]) +
                                ", " + std::to_string(a[2]) + "), twin (" + std::to_string(e[0]) +
                                ", " + std::to_string(e[1]) + ", " + std::to_string(e[2]) + ")";
                    }
                    break;
                }
            }
        }
    }
    if (bad) {
        return ::testing::AssertionFailure() << bad << " of 81 pixels off; first " << first;
    }
    return ::testing::AssertionSuccess();
}

vec3 ViewDirAt(int px, int py) {
    return glm::normalize(kEye - PixelWorld(px, py));
}

class ShaderShadingTest : public VxGLTest {
protected:
    void SetUp() override {
        VxGLTest::SetUp();
        SetOrthoCamera();
        glDisable(GL_CULL_FACE);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
        glDisable(GL_LIGHTING);
        glViewport(0, 0, kSize, kSize);
        glClearColor(0.2f, 0.4f, 0.6f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    void TearDown() override { EXPECT_EQ(GLErrors(), ""); }
    // The whole window, bottom row first, as the twin counts pixels.
    static VxTestImage Window() { return ReadAllRGBA(RowOrder::BottomUp); }

    const vec3 tilted = glm::normalize(vec3(0.35f, -0.25f, 1.0f));
    const TwinRig rig = ToothRig(Span(OrthoView(), OrthoProjection()));
};

TEST_F(ShaderShadingTest, ToothIsTintedByItsGrade) {
    NuRenderMaterial m;
    m.SetToothDefault();
    const TwinMaterial tm = FromMaterial(m);
    for (float order : {1.0f, 0.0f, 0.3f}) {
        DrawWith(RenderV1Probe::Tooth(), m, PlainQuad(tilted, order), kPlainLayout);
        EXPECT_TRUE(MatchesTwin(
            Window(),
            [&](int x, int y) { return TwinTooth(rig, tm, tilted, ViewDirAt(x, y), order); }))
            << "grade " << order;
    }
    // Grade 1 leaves the lit colour; grade 0 is the warm tint, about (0.875, 0.584, 0.327).
    NuRenderMaterial grey;
    grey.SetFromColor(255, 255, 255); // ambient 0.5 everywhere
    grey.shininess = 10;
    const vec3 flat(0, 0, 1);
    DrawWith(RenderV1Probe::Tooth(), grey, PlainQuad(flat, 0.0f), kPlainLayout);
    const VxTestImage centre = ReadRGBA(128, 128, 1, 1);
    const std::uint8_t* warm = centre.Pixel(0, 0);
    EXPECT_GT(warm[0], warm[1]);
    EXPECT_GT(warm[1], warm[2] + 30);
}

TEST_F(ShaderShadingTest, MeshFrontFollowsTheMaterialAndBackFacesAreNeutral) {
    NuRenderMaterial jaw, gold;
    jaw.SetJawDefault();
    gold.SetSelected();
    for (const NuRenderMaterial* m : {&jaw, &gold}) {
        const TwinMaterial tm = FromMaterial(*m);
        DrawWith(RenderV1Probe::Mesh(), *m, PlainQuad(tilted, 0.5f), kPlainLayout);
        EXPECT_TRUE(MatchesTwin(Window(), [&](int x, int y) {
            return TwinMesh(rig, tm, tilted, ViewDirAt(x, y), true);
        }));
    }

    // Back faces: the material plays no part, so two materials give the same pixels.
    VxTestImage backs[2];
    int i = 0;
    for (const NuRenderMaterial* m : {&jaw, &gold}) {
        glClear(GL_COLOR_BUFFER_BIT);
        DrawWith(RenderV1Probe::Mesh(), *m, PlainQuad(tilted, 0.5f, true), kPlainLayout);
        EXPECT_TRUE(MatchesTwin(Window(), [&](int x, int y) {
            return TwinMesh(rig, TwinMaterial{}, tilted, ViewDirAt(x, y), false);
        }));
        backs[i++] = ReadAllRGBA();
    }
    EXPECT_EQ(backs[0].rgba, backs[1].rgba);
}

TEST_F(ShaderShadingTest, BackAndFrontProgramDrawsTheSamePixels) {
    NuRenderMaterial m;
    m.SetAttachmentDefault();
    VxTestImage images[2];
    for (int bf = 0; bf < 2; ++bf) {
        glClear(GL_COLOR_BUFFER_BIT);
        Shader* s = RenderV1Probe::CurrentMesh(bf == 1);
        s->use();
        RenderV1Probe::PrepareCurrent(m, glm::mat4(1.0f));
        // Front on the left half, back on the right.
        std::vector<float> both = PlainQuad(tilted, 1.0f);
        for (size_t k = 0; k < both.size(); k += 7) {
            both[k] = (both[k] - 1.0f) / 2.0f;
        }
        std::vector<float> back = PlainQuad(tilted, 1.0f, true);
        for (size_t k = 0; k < back.size(); k += 7) {
            back[k] = (back[k] + 1.0f) / 2.0f;
        }
        both.insert(both.end(), back.begin(), back.end());
        DrawArrays(both, kPlainLayout);
        glUseProgram(0);
        s->deleteProgram();
        images[bf] = ReadAllRGBA();
    }
    EXPECT_EQ(images[0].rgba, images[1].rgba);
    EXPECT_NE(images[0].Pixel(64, 128)[0], images[0].Pixel(192, 128)[0]);
}

TEST_F(ShaderShadingTest, LimitedMaterialIsFortyPercentOpaque) {
    NuRenderMaterial m;
    m.SetLimited(200, 150, 100, 102);
    EXPECT_FLOAT_EQ(m.ambient[3], 0.4f);
    const TwinMaterial tm = FromMaterial(m);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawWith(RenderV1Probe::Mesh(), m, PlainQuad(tilted, 1.0f), kPlainLayout);
    glDisable(GL_BLEND);
    const vec3 bg(0.2f, 0.4f, 0.6f);
    EXPECT_TRUE(MatchesTwin(Window(), [&](int x, int y) {
        return 0.4f * Clamp01(TwinMesh(rig, tm, tilted, ViewDirAt(x, y), true)) + 0.6f * bg;
    }));
}

TEST_F(ShaderShadingTest, GumSumsItsTermsThroughTheirGammasAndIsFlatOutsideTheTexture) {
    NuRenderMaterial m;
    m.SetGumDefault();
    m.ambient[3] = 0.3f; // the gum is always opaque
    const TwinMaterial tm = FromMaterial(m);
    const TwinRig gumRig = GumRig(Span(OrthoView(), OrthoProjection()));
    const GLuint colour = ConstantTexture(240, 222, 216);
    const GLuint bump = ConstantTexture(128, 128, 255);
    Shader* gum = RenderV1Probe::Gum();
    gum->use();
    glUniform1i(glGetUniformLocation(gum->program, "ourTexture"), 0);
    glUniform1i(glGetUniformLocation(gum->program, "bumpTexture"), 1);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, colour);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, bump);

    const vec3 tex = vec3(240, 222, 216) / 255.0f;
    const vec3 bumpTexel = vec3(128, 128, 255) / 255.0f;
    const glm::mat3 tbn(vec3(1, 0, 0), vec3(0, 1, 0), vec3(0, 0, 1));
    DrawWith(gum, m, GumQuad(tilted, 0.5f), kGumLayout);
    EXPECT_TRUE(MatchesTwin(Window(), [&](int x, int y) {
        return TwinGum(gumRig, tm, tilted, ViewDirAt(x, y), tex, bumpTexel, tbn, 0.5f);
    }));
    const VxTestImage one = ReadRGBA(100, 100, 1, 1);
    EXPECT_EQ(one.Pixel(0, 0)[3], 255);

    // Bump coordinate x of 2 or more: the plain gum colour, no light at all.
    glClear(GL_COLOR_BUFFER_BIT);
    DrawWith(gum, m, GumQuad(tilted, 2.5f), kGumLayout);
    EXPECT_EQ(CountColour(226, 161, 157, 1), kSize * kSize);

    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, 0);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(1, &colour);
    glDeleteTextures(1, &bump);
}

// ---------------------------------------------------------------------------------------------
// Uniforms as the program holds them, under a perspective camera and a view transform.

vec3 UniformVec3(GLuint program, const std::string& name) {
    GLfloat v[3] = {0, 0, 0};
    glGetUniformfv(program, glGetUniformLocation(program, name.c_str()), v);
    return vec3(v[0], v[1], v[2]);
}

::testing::AssertionResult Near(const vec3& a, const vec3& e, float tol = 1e-4f) {
    if (glm::all(glm::lessThanEqual(glm::abs(a - e), vec3(tol * std::max(1.0f, glm::length(e)))))) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "got (" << a.x << ", " << a.y << ", " << a.z << "), expected (" << e.x << ", " << e.y
           << ", " << e.z << ")";
}

TEST_F(ShaderShadingTest, LightsAndTransformsFollowTheCamera) {
    Shader* tooth = RenderV1Probe::Tooth();
    Shader* gum = RenderV1Probe::Gum();
    VxXForm xform;
    xform.SetRotation(VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), 0.5));
    xform.SetScale(0.25);
    xform.SetTranslation(VxVector(1, -2, 3));
    NuCameraSnapshot* cam = NuCameraSnapshot::GetInstance();
    cam->SetViewTransform(&xform);
    const glm::mat4 projection = glm::perspective(glm::radians(40.0f), 1.3f, 2.0f, 50.0f);
    cam->SetProjection(glm::value_ptr(glm::dmat4(projection)));
    const glm::mat4 matrix = glm::translate(glm::mat4(1.0f), vec3(0.5f, 0, 0));

    vec3 previous(0.0f);
    for (const vec3 eye : {vec3(3, 2, 6), vec3(-6, 1, -2)}) {
        cam->SetEye(eye.x, eye.y, eye.z);
        cam->SetCenter(0, 0, 0);
        cam->SetUp(0, 1, 0);
        NuRenderMaterial m;
        m.SetToothDefault();
        const glm::mat4 view = glm::lookAt(eye, vec3(0), vec3(0, 1, 0));
        const vec3 s = Span(view, projection);
        const TwinRig lights = ToothRig(s);
        const TwinRig gumLights = GumRig(s);

        for (Shader* program : {tooth, gum}) {
            program->use();
            RenderV1Probe::Prepare(program, m, matrix);
        }
        for (int i = 0; i < 5; ++i) {
            const std::string n = "light[" + std::to_string(i) + "].";
            EXPECT_TRUE(Near(UniformVec3(tooth->program, n + "position"), lights[i].position)) << n;
            EXPECT_TRUE(Near(UniformVec3(tooth->program, n + "diffuse"), lights[i].diffuse)) << n;
            EXPECT_TRUE(Near(UniformVec3(tooth->program, n + "ambient"), lights[i].ambient)) << n;
            const std::string g = "lightgum[" + std::to_string(i) + "].";
            EXPECT_TRUE(Near(UniformVec3(gum->program, g + "position"), gumLights[i].position))
                << g;
            EXPECT_TRUE(Near(UniformVec3(gum->program, g + "specular"), gumLights[i].specular))
                << g;
        }
        EXPECT_TRUE(Near(UniformVec3(tooth->program, "viewPos"), eye));

        // model = rotation * scale * translation of the view transform, then the draw's matrix.
        double r16[16];
        xform.GetRotation(r16);
        glm::mat4 expectedModel = glm::mat4(glm::make_mat4(r16));
        expectedModel = glm::scale(expectedModel, vec3(0.25f));
        expectedModel = glm::translate(expectedModel, vec3(1, -2, 3)) * matrix;
        GLfloat got[16];
        glGetUniformfv(tooth->program, glGetUniformLocation(tooth->program, "model"), got);
        const glm::mat4 gotModel = glm::make_mat4(got);
        for (int c = 0; c < 4; ++c) {
            EXPECT_TRUE(Near(vec3(gotModel[c]), vec3(expectedModel[c]))) << "model column " << c;
        }
        // The key light points along the view, so it turns when the camera does.
        const vec3 key = glm::normalize(UniformVec3(tooth->program, "light[0].position"));
        if (eye.x < 0) {
            EXPECT_LT(glm::dot(key, previous), 0.5f);
        }
        previous = key;
    }
    glUseProgram(0);
    cam->SetViewTransform(nullptr);
}

// ---------------------------------------------------------------------------------------------
// Swatch: one sphere per preset under the `light` rig.

std::vector<float> Sphere(float r, bool graded) {
    const int slices = 48, stacks = 24;
    auto at = [&](int i, int j) {
        const float th = float(M_PI) * j / stacks, ph = 2 * float(M_PI) * i / slices;
        return vec3(std::sin(th) * std::cos(ph), std::cos(th), std::sin(th) * std::sin(ph));
    };
    // Graded like a tooth crown: 0 at 60 % of the height, 1 at the bottom.
    const float top = 0.6f * r, span = top + r;
    std::vector<float> v;
    auto push = [&](const vec3& n) {
        const float order = graded ? std::min(1.0f, std::fabs((top - n.y * r) / span)) : 1.0f;
        v.insert(v.end(), {n.x * r, n.y * r, n.z * r, n.x, n.y, n.z, order});
    };
    for (int j = 0; j < stacks; ++j) {
        for (int i = 0; i < slices; ++i) {
            const vec3 a = at(i, j), b = at(i + 1, j), c = at(i + 1, j + 1), d = at(i, j + 1);
            // Counter-clockwise seen from outside: the mesh program shades the outside as front.
            push(a), push(b), push(c);
            push(a), push(c), push(d);
        }
    }
    return v;
}

// Same suite, so the same context as the kept programs (they live as long as the process, and a
// context of another suite would not know their names).
TEST_F(ShaderShadingTest, SwatchOfEveryPresetOnASphere) {
    ASSERT_TRUE(ResizeSurface(500, 200));
    NuCameraSnapshot* cam = NuCameraSnapshot::GetInstance();
    cam->SetEye(0, 0, 10);
    cam->SetCenter(0, 0, 0);
    cam->SetUp(0, 1, 0);
    cam->SetProjection(glm::value_ptr(glm::ortho(-5.0, 5.0, -2.0, 2.0, 1.0, 20.0)));
    cam->SetViewTransform(nullptr);
    glViewport(0, 0, 500, 200);
    glClearColor(0.16f, 0.18f, 0.22f, 1.0f);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    struct Swatch {
        void (NuRenderMaterial::*preset)();
        bool tooth;
    };
    const Swatch swatches[10] = {
        {&NuRenderMaterial::SetToothDefault, true},
        {&NuRenderMaterial::SetToothSelected, true},
        {&NuRenderMaterial::SetToothHighlight, true},
        {&NuRenderMaterial::SetToothKind2, true},
        {&NuRenderMaterial::SetToothKind3, true},
        {&NuRenderMaterial::SetToothKind5, true},
        {&NuRenderMaterial::SetToothLocked, true},
        {&NuRenderMaterial::SetJawDefault, false},
        {&NuRenderMaterial::SetGumDefault, false},
        {&NuRenderMaterial::SetAttachmentDefault, false},
    };
    const std::vector<float> toothSphere = Sphere(0.85f, true);
    const std::vector<float> plainSphere = Sphere(0.85f, false);
    for (int k = 0; k < 10; ++k) {
        NuRenderMaterial m;
        (m.*swatches[k].preset)();
        const glm::mat4 at =
            glm::translate(glm::mat4(1.0f), vec3(-4.0f + 2.0f * (k % 5), k < 5 ? 1.0f : -1.0f, 0));
        DrawWith(swatches[k].tooth ? RenderV1Probe::Tooth() : RenderV1Probe::Mesh(), m,
                 swatches[k].tooth ? toothSphere : plainSphere, kPlainLayout, at);
    }
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    EXPECT_EQ(GLErrors(), "");

    const VxTestImage img = ReadAllRGBA();
    VxWritePng(VxTestOutputDir() + "/shader_swatch.png", img);
    // What a person reads: the centre-left of each sphere (off the highlight) in image rows.
    auto centre = [&](int k) {
        const int x = 50 + 100 * (k % 5) - 15, y = k < 5 ? 50 : 150;
        const std::uint8_t* p = img.Pixel(x, y);
        return glm::ivec3(p[0], p[1], p[2]);
    };
    const glm::ivec3 ivory = centre(0), gold = centre(1), blue = centre(2), jaw = centre(7),
                     gum = centre(8);
    EXPECT_GT(ivory.r, 150);
    EXPECT_GT(ivory.r, ivory.b + 20) << "tooth not warm";
    EXPECT_GT(gold.r, gold.b + 40) << "selection not gold";
    EXPECT_GT(blue.b, blue.r + 60) << "highlight not blue";
    EXPECT_LE(std::abs(jaw.r - jaw.b), 12) << "jaw not grey";
    EXPECT_GT(gum.r, gum.g + 40) << "gum not pink";
    EXPECT_TRUE(VxCompareImageToFile(img, VxTestSourceDir() + "/golden/shader_swatch.png", 6, 0.3));
    ResizeSurface(kSize, kSize);
}

} // namespace
