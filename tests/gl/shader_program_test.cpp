// The shader path's programs on a real headless context: every kept program and the three
// combinations the immediate mesh draw compiles link without a record on standard output, and each
// exposes, queried from GL, the attribute locations and uniform names the renderer feeds. A
// misspelt uniform in a source therefore fails here instead of drawing black. Also: the failure
// record of a broken source, and that compiling leaves the GL state as it was.
#include "VxGLTest.h"

#include <shader/RenderV1.h>
#include <shader/Shader.h>
#include <shader/ShaderSourceTable.h>

#include <string>
#include <vector>

// The tests' access to RenderV1's private program slots.
class RenderV1Probe {
public:
    static int KeptCount() { return RenderV1::Kept_Count; }
    static Shader* Kept(int which) {
        return RenderV1::GetInstance()->KeptProgram(static_cast<RenderV1::KeptProgram_e>(which));
    }
    static Shader* CurrentMesh(bool backAndFront, bool gum) {
        return RenderV1::GetInstance()->CompileCurrentMeshShader(backAndFront, gum);
    }
};

namespace {

struct Attr {
    const char* name;
    int location;
    bool mayBeInactive; // an input the program never reads may be dropped by the linker
};

struct Expected {
    Shader* RenderV1::*slot;
    std::vector<Attr> attributes;
    std::vector<std::string> uniforms; // must be active
};

const std::vector<std::string> kMvp = {"model", "view", "projection"};

std::vector<std::string> Join(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<std::string> Rig(const std::string& name) {
    std::vector<std::string> out;
    for (int i = 0; i < 5; ++i) {
        for (const char* m : {"position", "ambient", "diffuse", "specular"}) {
            out.push_back(name + "[" + std::to_string(i) + "]." + m);
        }
    }
    return out;
}

std::vector<std::string> LitUniforms() {
    return Join(Join(kMvp, {"viewPos", "alphaforblimited", "material.ambient", "material.diffuse",
                            "material.specular", "material.shininess"}),
                Rig("light"));
}

std::vector<std::string> GumUniforms() {
    // The gum's ambient comes from its base colour, and it is always opaque: material.ambient and
    // alphaforblimited are declared but not read.
    return Join(Join(kMvp, {"viewPos", "ourTexture", "bumpTexture", "material.diffuse",
                            "material.specular", "material.shininess"}),
                Rig("lightgum"));
}

const std::vector<Attr> kMeshAttrs = {
    {"aPos", 0, false}, {"aNormal", 1, false}, {"aOrder", 2, true}};
const std::vector<Attr> kToothAttrs = {
    {"aPos", 0, false}, {"aNormal", 1, false}, {"aOrder", 2, false}};
const std::vector<Attr> kGumAttrs = {{"aPos", 0, false},         {"aNormal", 1, false},
                                     {"aOrder", 2, true},        {"aUVcoord", 3, false},
                                     {"abumpUVcoord", 4, false}, {"tangent", 5, false},
                                     {"bitangent", 6, false}};
const std::vector<Attr> kPosColour = {{"aPos", 0, false}, {"aColor", 1, false}};
const std::vector<Attr> kVertexTex = {{"vertex", 0, false}, {"texcoord", 1, false}};

// In the order of the kept slots.
std::vector<Expected> KeptTable() {
    return {
        {&RenderV1::meshShader, kMeshAttrs, LitUniforms()},
        {&RenderV1::toothShader, kToothAttrs, LitUniforms()},
        {&RenderV1::gumShader, kGumAttrs, GumUniforms()},
        {&RenderV1::attachShader, kMeshAttrs, LitUniforms()},
        {&RenderV1::billboardShader, {{"aPos", 0, false}}, Join(kMvp, {"backgroundColor"})},
        {&RenderV1::triandcolorShader, kPosColour, kMvp},
        {&RenderV1::quadrTextureShader, kVertexTex, Join(kMvp, {"atexture"})},
        {&RenderV1::quadrSelectionShader, {{"vertex", 0, false}}, Join(kMvp, {"codecolor"})},
        {&RenderV1::quadrTextureForPngShader, kVertexTex, Join(kMvp, {"atexture"})},
        {&RenderV1::lineShader, kPosColour, kMvp},
        {&RenderV1::textShader, kVertexTex, Join(kMvp, {"text", "textColor"})},
        {&RenderV1::textChineseShader, kVertexTex, Join(kMvp, {"text", "textColor"})},
    };
}

void ExpectInterface(const Shader* shader, const std::vector<Attr>& attributes,
                     const std::vector<std::string>& uniforms, const std::string& what) {
    ASSERT_NE(shader, nullptr) << what;
    GLint linked = 0;
    glGetProgramiv(shader->program, GL_LINK_STATUS, &linked);
    EXPECT_EQ(linked, GL_TRUE) << what;
    for (const Attr& a : attributes) {
        const GLint loc = glGetAttribLocation(shader->program, a.name);
        if (a.mayBeInactive && loc == -1) {
            continue;
        }
        EXPECT_EQ(loc, a.location) << what << ": attribute " << a.name;
    }
    for (const std::string& u : uniforms) {
        EXPECT_NE(glGetUniformLocation(shader->program, u.c_str()), -1)
            << what << ": uniform " << u << " is not active";
    }
}

// The record text the renderer prints for each failing stage, split into its parts.
const std::string kRecordEnd = "\n -- --------------------------------------------------- -- \n";

std::vector<std::string> Records(const std::string& out) {
    std::vector<std::string> records;
    size_t start = 0;
    for (size_t end; (end = out.find(kRecordEnd, start)) != std::string::npos;
         start = end + kRecordEnd.size()) {
        records.push_back(out.substr(start, end - start));
    }
    EXPECT_EQ(start, out.size()) << "text after the last record: " << out.substr(start);
    return records;
}

using ShaderProgramTest = VxGLTest;

TEST_F(ShaderProgramTest, KeptProgramsLinkSilentlyWithTheirInterface) {
    GLint before = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &before);
    const std::vector<Expected> table = KeptTable();
    ASSERT_EQ(static_cast<int>(table.size()), RenderV1Probe::KeptCount());

    for (int i = 0; i < RenderV1Probe::KeptCount(); ++i) {
        testing::internal::CaptureStdout();
        Shader* shader = RenderV1Probe::Kept(i);
        const std::string out = testing::internal::GetCapturedStdout();
        const std::string what = "kept program " + std::to_string(i);
        EXPECT_EQ(out, "") << what;
        // Filled into its own slot, and kept: a second use compiles nothing.
        EXPECT_EQ(RenderV1::GetInstance()->*(table[i].slot), shader) << what;
        EXPECT_EQ(RenderV1Probe::Kept(i), shader) << what;
        ExpectInterface(shader, table[i].attributes, table[i].uniforms, what);
    }
    GLint after = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &after);
    EXPECT_EQ(after, before);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderProgramTest, ImmediateMeshProgramsLinkSilently) {
    struct Case {
        bool backAndFront, gum;
    };
    for (const Case c : {Case{false, false}, Case{true, false}, Case{false, true}}) {
        const std::string what =
            std::string(c.backAndFront ? "back-and-front" : "plain") + (c.gum ? " gum" : " mesh");
        testing::internal::CaptureStdout();
        Shader* shader = RenderV1Probe::CurrentMesh(c.backAndFront, c.gum);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << what;
        EXPECT_EQ(RenderV1::GetInstance()->currentMeshShader, shader) << what;
        if (c.gum) {
            ExpectInterface(shader, kGumAttrs, GumUniforms(), what);
        } else {
            ExpectInterface(shader, kMeshAttrs, LitUniforms(), what);
        }
        shader->deleteProgram();
    }
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ShaderProgramTest, SourceTableKeepsItsSharedTextsAndTheExperiment) {
    const auto& table = ShaderSourceTable::Table();
    EXPECT_EQ(table.size(), 25u);
    // The early experiment is kept as text and still valid GLSL, though no slot compiles it.
    testing::internal::CaptureStdout();
    Shader test(ShaderSourceTable::Source("Gum_vertex_shader_test"),
                ShaderSourceTable::Source("Gum_frag_shader_test"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    test.deleteProgram();
    for (const char* v : {"tooth_vertex_shader", "Mesh_vertex_shader"}) {
        EXPECT_EQ(ShaderSourceTable::Source(v).rfind("#version 330 core", 0), 0u) << v;
    }
    EXPECT_EQ(ShaderSourceTable::Source("tooth_vertex_shader"),
              ShaderSourceTable::Source("Mesh_vertex_shader"));
    EXPECT_EQ(ShaderSourceTable::Source("QuadrTexture_vertex_shader"),
              ShaderSourceTable::Source("QuadrTexture_forpng_vertex_shader"));
    EXPECT_EQ(ShaderSourceTable::Source("no_such_shader"), "");
}

TEST_F(ShaderProgramTest, BrokenSourcesPrintOneRecordPerFailingStageAndKeepTheProgram) {
    const std::string goodFragment = ShaderSourceTable::Source("line_frag_shader");
    testing::internal::CaptureStdout();
    Shader broken("#version 330 core\nvoid main() { this is not glsl; }\n", goodFragment);
    const std::string out = testing::internal::GetCapturedStdout();
    const std::vector<std::string> records = Records(out);
    ASSERT_EQ(records.size(), 2u) << out;
    const std::string vertexHead = "ERROR::SHADER_COMPILATION_ERROR of type: VERTEX\n";
    const std::string linkHead = "ERROR::PROGRAM_LINKING_ERROR of type: PROGRAM\n";
    EXPECT_EQ(records[0].rfind(vertexHead, 0), 0u) << records[0];
    EXPECT_GT(records[0].size(), vertexHead.size()) << "the compiler's log is missing";
    EXPECT_EQ(records[1].rfind(linkHead, 0), 0u) << records[1];
    EXPECT_EQ(glIsProgram(broken.program), GL_TRUE);
    // Using it is allowed and changes nothing visible; GL keeps its error to itself.
    broken.use();
    broken.setFloat("anything", 1.0f);
    glUseProgram(0);
    GLErrors();

    testing::internal::CaptureStdout();
    Shader both("garbage", "garbage");
    const std::vector<std::string> three = Records(testing::internal::GetCapturedStdout());
    ASSERT_EQ(three.size(), 3u);
    EXPECT_EQ(three[0].rfind(vertexHead, 0), 0u);
    EXPECT_EQ(three[1].rfind("ERROR::SHADER_COMPILATION_ERROR of type: FRAGMENT\n", 0), 0u);
    EXPECT_EQ(three[2].rfind(linkHead, 0), 0u);
    EXPECT_EQ(glIsProgram(both.program), GL_TRUE);
    broken.deleteProgram();
    both.deleteProgram();
    EXPECT_EQ(GLErrors(), "");
}

} // namespace
