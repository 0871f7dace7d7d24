// ShaderSourceTable: the 25 GLSL sources. Attribute locations are fixed in the texts, so the
// buffer layouts of the mesh passes never have to ask the linker where an input went.
#include <shader/ShaderSourceTable.h>

#include <utility>
#include <vector>

namespace {

// Shared by tooth, mesh and attachment programs: world position and normal, and the per-vertex
// grade the tooth program tints by.
const char* const kMeshVertex = R"(#version 330 core
layout (location = 0) in vec3 aPos;
layout (location = 1) in vec3 aNormal;
layout (location = 2) in float aOrder;

out vec3 FragPos;
out vec3 Normal;
out float OrderasColor;

uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;

void main()
{
    FragPos = vec3(model * vec4(aPos, 1.0));
    Normal = mat3(transpose(inverse(model))) * aNormal;
    OrderasColor = aOrder;
    gl_Position = projection * view * vec4(FragPos, 1.0);
}
)";

// Common head of the three programs lit by the `light` rig.
#define VX_LIT_HEAD                                                                                \
    "#version 330 core\n"                                                                          \
    "#define GLOBAL_LIGHT 1\n"                                                                     \
    "#define LIGHTS_COUNT 5\n"                                                                     \
    "struct Material {\n"                                                                          \
    "    vec3 ambient;\n"                                                                          \
    "    vec3 diffuse;\n"                                                                          \
    "    vec3 specular;\n"                                                                         \
    "    float shininess;\n"                                                                       \
    "};\n"                                                                                         \
    "struct Light {\n"                                                                             \
    "    vec3 position;\n"                                                                         \
    "    vec3 ambient;\n"                                                                          \
    "    vec3 diffuse;\n"                                                                          \
    "    vec3 specular;\n"                                                                         \
    "};\n"                                                                                         \
    "in vec3 FragPos;\n"                                                                           \
    "in vec3 Normal;\n"                                                                            \
    "in float OrderasColor;\n"                                                                     \
    "out vec4 FragColor;\n"                                                                        \
    "uniform float alphaforblimited;\n"                                                            \
    "uniform vec3 viewPos;\n"                                                                      \
    "uniform Material material;\n"                                                                 \
    "uniform Light light[LIGHTS_COUNT];\n"

// A matte tooth: directional lights, then a warm tint that grows towards the gum line.
const char* const kToothFrag = VX_LIT_HEAD R"(
vec3 CalcLight(Light l, vec3 normal, vec3 viewDir)
{
    vec3 ambient = l.ambient * material.ambient;
    vec3 lightDir = normalize(l.position);
    float diff = max(dot(normal, lightDir), 0.0);
    vec3 diffuse = l.diffuse * (diff * material.diffuse);
    vec3 reflectDir = reflect(-lightDir, normal);
    float specAmount = pow(max(dot(viewDir, reflectDir), 0.0), material.shininess);
    vec3 specular = l.specular * (specAmount * material.specular);
    return ambient + diffuse + specular;
}

void main()
{
    vec3 norm = normalize(Normal);
    vec3 viewDir = normalize(viewPos - FragPos);
    vec3 result = vec3(0.0);
    for (int i = 0; i < LIGHTS_COUNT; i++)
        result += CalcLight(light[i], norm, viewDir);

    float tempOrder = pow(OrderasColor, 0.25);
    float r = tempOrder * 60.0 / 255.0 + 195.0 / 255.0;
    float g = tempOrder * 106.0 / 255.0 + 149.0 / 255.0;
    float b = tempOrder * 134.0 / 255.0 + 121.0 / 255.0;
    r = pow(r, 0.5);
    b = pow(b, 1.5);
    result = vec3(r * result.r, g * result.g, b * result.b);
    FragColor = vec4(result, alphaforblimited);
}
)";

// Meshes and thin shells: the inside of a shell seen from behind gets one neutral tone under the
// lights, whatever the object's material, so an open surface reads as its back.
#define VX_MESH_FRAG_BODY                                                                          \
    "vec3 CalcLight(Light l, vec3 normal, vec3 viewDir, bool front)\n"                             \
    "{\n"                                                                                          \
    "    vec3 ambient = l.ambient * material.ambient;\n"                                           \
    "    vec3 lightDir = normalize(l.position);\n"                                                 \
    "    float diff = max(dot(normal, lightDir), 0.0);\n"                                          \
    "    vec3 diffuse = l.diffuse * (diff * material.diffuse);\n"                                  \
    "    vec3 reflectDir = reflect(-lightDir, normal);\n"                                          \
    "    float specAmount = pow(max(dot(viewDir, reflectDir), 0.0), material.shininess);\n"        \
    "    vec3 specular = l.specular * (specAmount * material.specular);\n"                         \
    "    if (!front) {\n"                                                                          \
    "        ambient = l.ambient * 0.65;\n"                                                        \
    "        diffuse = l.diffuse * (diff * 0.15);\n"                                               \
    "        specular = l.specular * 0.0;\n"                                                       \
    "    }\n"                                                                                      \
    "    return ambient + diffuse + specular;\n"                                                   \
    "}\n"                                                                                          \
    "void main()\n"                                                                                \
    "{\n"                                                                                          \
    "    vec3 norm = normalize(Normal);\n"                                                         \
    "    bool front = gl_FrontFacing;\n"                                                           \
    "    if (!front)\n"                                                                            \
    "        norm = -norm;\n"                                                                      \
    "    vec3 viewDir = normalize(viewPos - FragPos);\n"                                           \
    "    vec3 result = vec3(0.0);\n"                                                               \
    "    for (int i = 0; i < LIGHTS_COUNT; i++)\n"                                                 \
    "        result += CalcLight(light[i], norm, viewDir, front);\n"                               \
    "    FragColor = vec4(result, alphaforblimited);\n"                                            \
    "}\n"

const char* const kMeshFrag = VX_LIT_HEAD VX_MESH_FRAG_BODY;
// Chosen for materials flagged back-and-front; it computes the same as kMeshFrag so that the flag
// never changes a picture, only which program text is compiled.
const char* const kMeshFragBackAndFront =
    VX_LIT_HEAD "// both sides of a shell\n" VX_MESH_FRAG_BODY;

// Gum: colour and bump coordinates, and a per-face tangent frame for the bump map.
const char* const kGumVertex = R"(#version 330 core
layout (location = 0) in vec3 aPos;
layout (location = 1) in vec3 aNormal;
layout (location = 2) in float aOrder;
layout (location = 3) in vec2 aUVcoord;
layout (location = 4) in vec2 abumpUVcoord;
layout (location = 5) in vec3 tangent;
layout (location = 6) in vec3 bitangent;

out vec3 FragPos;
out vec3 Normal;
out float OrderasColor;
out vec2 UVtexturecoord;
out VS_OUT {
    vec3 FragPos;
    vec2 TexCoords;
    mat3 TBN;
    vec3 thefaceN;
} vs_out;

uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;

void main()
{
    FragPos = vec3(model * vec4(aPos, 1.0));
    mat3 normalMatrix = mat3(transpose(inverse(model)));
    Normal = normalMatrix * aNormal;
    OrderasColor = aOrder;
    UVtexturecoord = vec2(aUVcoord.x, 1.0 - aUVcoord.y);

    vec3 T = normalize(normalMatrix * tangent);
    vec3 B = normalize(normalMatrix * bitangent);
    vec3 N = cross(T, B);
    vs_out.FragPos = FragPos;
    vs_out.TexCoords = vec2(abumpUVcoord.x, 1.0 - abumpUVcoord.y);
    vs_out.TBN = mat3(T, B, N);
    vs_out.thefaceN = N;
    gl_Position = projection * view * vec4(FragPos, 1.0);
}
)";

// Gum: ambient, diffuse and specular summed separately, each through its own gamma, with the bump
// normal mixed in by a third so the stippling stays subtle. Outside the textured band (bump x of
// 2 or more) the gum is one flat colour.
const char* const kGumFrag = R"(#version 330 core
#define GLOBAL_LIGHT 1
#define LIGHTS_COUNT 5
struct Material {
    vec3 ambient;
    vec3 diffuse;
    vec3 specular;
    float shininess;
};
struct Light {
    vec3 position;
    vec3 ambient;
    vec3 diffuse;
    vec3 specular;
};

in vec3 FragPos;
in vec3 Normal;
in float OrderasColor;
in vec2 UVtexturecoord;
in VS_OUT {
    vec3 FragPos;
    vec2 TexCoords;
    mat3 TBN;
    vec3 thefaceN;
} fs_in;

out vec4 FragColor;

uniform sampler2D ourTexture;
uniform sampler2D bumpTexture;
uniform float alphaforblimited;
uniform vec3 viewPos;
uniform Material material;
uniform Light lightgum[LIGHTS_COUNT];

const vec3 gumBaseColor = vec3(225.0 / 255.0, 142.0 / 255.0, 138.0 / 255.0);

vec3 CalcAmbient(Light l, vec3 tex)
{
    float gammain = 1.7;
    vec3 t = pow(tex, vec3(gammain));
    vec3 ambient = vec3(0.875) * l.ambient * t * gumBaseColor;
    return pow(ambient, vec3(gammain));
}

vec3 CalcDiffuse(Light l, vec3 normal, vec3 tex)
{
    float gammain = 2.2;
    vec3 lightDir = normalize(l.position);
    float diff = pow(max(dot(normal, lightDir), 0.0), 3.5);
    vec3 t = pow(tex, vec3(gammain));
    vec3 diffuse = l.diffuse * (diff * material.diffuse) * t * gumBaseColor;
    return pow(diffuse, vec3(gammain));
}

vec3 CalcSpecular(Light l, vec3 normal, vec3 viewDir, vec3 tex)
{
    float gammain = 2.2;
    vec3 lightDir = normalize(l.position);
    vec3 reflectDir = reflect(-lightDir, normal);
    float specAmount = pow(max(dot(viewDir, reflectDir), 0.0), material.shininess);
    vec3 t = pow(tex, vec3(gammain));
    vec3 specular = l.specular * (specAmount * material.specular) * t * gumBaseColor;
    return pow(specular, vec3(gammain));
}

void main()
{
    vec3 norm = normalize(Normal);
    vec3 result;
    if (fs_in.TexCoords.x < 2.0) {
        vec3 normface = texture(bumpTexture, fs_in.TexCoords).rgb;
        normface = normalize(normface * 2.0 - 1.0);
        normface = normalize(fs_in.TBN * normface);
        norm = normalize(norm + (normface - fs_in.thefaceN) / 3.0);
        vec3 viewDir = normalize(viewPos - FragPos);
        vec3 tex = texture(ourTexture, UVtexturecoord).rgb;

        vec3 Ambientresult = vec3(0.0);
        vec3 Diffuseresult = vec3(0.0);
        vec3 Specularresult = vec3(0.0);
        for (int i = 0; i < LIGHTS_COUNT; i++) {
            Ambientresult += CalcAmbient(lightgum[i], tex);
            Diffuseresult += CalcDiffuse(lightgum[i], norm, tex);
            Specularresult += CalcSpecular(lightgum[i], norm, viewDir, tex);
        }
        Ambientresult = pow(Ambientresult, vec3(1.0 / 2.2));
        Diffuseresult = pow(Diffuseresult, vec3(1.0 / 2.2));
        Specularresult = pow(Specularresult, vec3(1.0 / 2.2));
        result = Ambientresult + Diffuseresult + Specularresult;

        // Saturation, contrast and channel knobs, left in neutral positions for tuning.
        float lumcoeff = 1.0;
        float contrastcolor = 0.5;
        float contrastcoeff = 1.0;
        float tongdaocoeff = 0.0;
        float luminance = dot(result, vec3(0.2125, 0.7154, 0.0721));
        result = (result - vec3(luminance)) * lumcoeff + vec3(luminance);
        result = (result - vec3(contrastcolor)) * contrastcoeff + vec3(contrastcolor);
        result.r = result.r * (1.0 - tongdaocoeff);
    } else {
        result = vec3(226.0 / 255.0, 161.0 / 255.0, 157.0 / 255.0);
    }
    FragColor = vec4(result, 1.0);
}
)";

// An early textured-quad experiment, kept in the table for reference and never compiled.
const char* const kGumVertexTest = R"(#version 330 core
layout (location = 0) in vec3 position;
layout (location = 1) in vec3 color;
layout (location = 2) in vec2 texCoord;
out vec3 ourColor;
out vec2 TexCoord;
void main()
{
    gl_Position = vec4(position, 1.0);
    ourColor = color;
    TexCoord = texCoord;
}
)";

const char* const kGumFragTest = R"(#version 330 core
in vec3 ourColor;
in vec2 TexCoord;
out vec4 color;
uniform sampler2D ourTexture;
void main()
{
    color = texture(ourTexture, TexCoord) * vec4(ourColor, 1.0);
}
)";

const char* const kTriAndColorVertex = R"(#version 330 core
layout (location = 0) in vec3 aPos;
layout (location = 1) in vec3 aColor;
out vec3 FragPos;
out vec3 outColor;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    FragPos = vec3(model * vec4(aPos, 1.0));
    outColor = aColor;
    gl_Position = projection * view * vec4(FragPos, 1.0);
}
)";

const char* const kTriAndColorFrag = R"(#version 330 core
in vec3 FragPos;
in vec3 outColor;
out vec4 FragColor;
void main()
{
    FragColor = vec4(outColor, 1.0);
}
)";

const char* const kBillboardVertex = R"(#version 330 core
layout (location = 0) in vec3 aPos;
out vec3 FragPos;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    FragPos = vec3(model * vec4(aPos, 1.0));
    gl_Position = projection * view * vec4(FragPos, 1.0);
}
)";

const char* const kBillboardFrag = R"(#version 330 core
in vec3 FragPos;
out vec4 FragColor;
uniform vec3 backgroundColor;
void main()
{
    FragColor = vec4(backgroundColor, 1.0);
}
)";

const char* const kTextVertex = R"(#version 330 core
layout (location = 0) in vec3 vertex;
layout (location = 1) in vec2 texcoord;
out vec2 TexCoords;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    gl_Position = projection * view * model * vec4(vertex, 1.0);
    TexCoords = texcoord;
}
)";

// Glyphs of the narrow stores are single-channel textures: coverage sits in red.
const char* const kTextFrag = R"(#version 330 core
in vec2 TexCoords;
out vec4 color;
uniform sampler2D text;
uniform vec3 textColor;
void main()
{
    vec4 sampled = vec4(1.0, 1.0, 1.0, texture(text, TexCoords).r);
    color = vec4(textColor, 1.0) * sampled;
}
)";

// Glyphs of the any-size store carry coverage in alpha.
const char* const kTextChineseFrag = R"(#version 330 core
in vec2 TexCoords;
out vec4 color;
uniform sampler2D text;
uniform vec3 textColor;
void main()
{
    vec4 sampled = vec4(1.0, 1.0, 1.0, texture(text, TexCoords).a);
    color = vec4(textColor, 1.0) * sampled;
}
)";

const char* const kLineVertex = R"(#version 330 core
layout (location = 0) in vec3 aPos;
layout (location = 1) in vec3 aColor;
out vec3 outColor;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    gl_Position = projection * view * model * vec4(aPos, 1.0);
    outColor = aColor;
}
)";

const char* const kLineFrag = R"(#version 330 core
in vec3 outColor;
out vec4 FragColor;
void main()
{
    FragColor = vec4(outColor, 1.0);
}
)";

// Image quads: the images are stored top row first, GL samples bottom row first.
const char* const kQuadTextureVertex = R"(#version 330 core
layout (location = 0) in vec3 vertex;
layout (location = 1) in vec2 texcoord;
out vec2 TexCoord;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    gl_Position = projection * view * model * vec4(vertex, 1.0);
    TexCoord = vec2(texcoord.x, 1.0 - texcoord.y);
}
)";

const char* const kQuadTextureFrag = R"(#version 330 core
in vec2 TexCoord;
out vec4 FragColor;
uniform sampler2D atexture;
void main()
{
    FragColor = texture(atexture, TexCoord);
}
)";

// Editor icons are drawn on white: anything whose red is above 0.87 is keyed out, which is why
// the icons' own colours keep red at or below 221.
const char* const kQuadTextureForPngFrag = R"(#version 330 core
in vec2 TexCoord;
out vec4 FragColor;
uniform vec3 backgroundColor;
uniform sampler2D atexture;
void main()
{
    vec4 texel = texture(atexture, TexCoord);
    if (texel.r > 0.87)
        texel.a = 0.0;
    FragColor = texel;
}
)";

const char* const kQuadSelectionVertex = R"(#version 330 core
layout (location = 0) in vec3 vertex;
uniform mat4 model;
uniform mat4 view;
uniform mat4 projection;
void main()
{
    gl_Position = projection * view * model * vec4(vertex, 1.0);
}
)";

// Pick colours are element codes: they must reach the buffer untouched.
const char* const kQuadSelectionFrag = R"(#version 330 core
out vec4 FragColor;
uniform vec3 codecolor;
void main()
{
    FragColor = vec4(codecolor, 1.0);
}
)";

std::map<std::string, std::string> BuildTable() {
    const std::vector<std::pair<const char*, const char*>> list = {
        {"tooth_vertex_shader", kMeshVertex},
        {"Mesh_vertex_shader", kMeshVertex},
        {"Gum_vertex_shader_test", kGumVertexTest},
        {"Gum_frag_shader_test", kGumFragTest},
        {"Gum_vertex_shader", kGumVertex},
        {"Gum_frag_shader", kGumFrag},
        {"tooth_frag_shader", kToothFrag},
        {"Mesh_frag_shader", kMeshFrag},
        {"Mesh_frag_shaderforBackAndFront", kMeshFragBackAndFront},
        {"triandcolor_vertex_shader", kTriAndColorVertex},
        {"triandcolor_frag_shader", kTriAndColorFrag},
        {"billboard3d_vertex_shader", kBillboardVertex},
        {"billboard3d_frag_shader", kBillboardFrag},
        {"text_vertex_shader", kTextVertex},
        {"text_frag_shader", kTextFrag},
        {"line_vertex_shader", kLineVertex},
        {"line_frag_shader", kLineFrag},
        {"QuadrTexture_vertex_shader", kQuadTextureVertex},
        {"QuadrTexture_frag_shader", kQuadTextureFrag},
        {"QuadrTexture_forpng_vertex_shader", kQuadTextureVertex},
        {"QuadrTexture_forpng_frag_shader", kQuadTextureForPngFrag},
        {"QuadrSelection_vertex_shader", kQuadSelectionVertex},
        {"QuadrSelection_frag_shader", kQuadSelectionFrag},
        {"text_chinese_vertex_shader", kTextVertex},
        {"text_chinese_frag_shader", kTextChineseFrag},
    };
    std::map<std::string, std::string> table;
    for (const auto& entry : list) {
        table.emplace(entry.first, entry.second);
    }
    return table;
}

// Filled once when the library loads; a function-local static, so a caller in another file's
// static initialiser still finds it filled.
std::map<std::string, std::string>& TableStorage() {
    static std::map<std::string, std::string> table = BuildTable();
    return table;
}

const bool kFilledAtLoad = (TableStorage(), true);

} // namespace

std::map<std::string, std::string>& ShaderSourceTable::Table() {
    (void)kFilledAtLoad;
    return TableStorage();
}

const std::string& ShaderSourceTable::Source(const std::string& name) {
    return Table()[name];
}
