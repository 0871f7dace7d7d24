// RenderV1: the program slots. Kept programs are compiled at their first use inside a current
// context and never deleted; the immediate mesh draw compiles its own each time.
#include <shader/RenderV1.h>

#include <shader/Shader.h>
#include <shader/ShaderSourceTable.h>

namespace {

struct KeptSources {
    Shader* RenderV1::*slot;
    const char* vertex;
    const char* fragment;
};

} // namespace

Shader* RenderV1::KeptProgram(KeptProgram_e which) {
    // Indexed by KeptProgram_e.
    static const KeptSources kSources[Kept_Count] = {
        {&RenderV1::meshShader, "Mesh_vertex_shader", "Mesh_frag_shader"},
        {&RenderV1::toothShader, "tooth_vertex_shader", "tooth_frag_shader"},
        {&RenderV1::gumShader, "Gum_vertex_shader", "Gum_frag_shader"},
        {&RenderV1::attachShader, "tooth_vertex_shader", "Mesh_frag_shader"},
        {&RenderV1::billboardShader, "billboard3d_vertex_shader", "billboard3d_frag_shader"},
        {&RenderV1::triandcolorShader, "triandcolor_vertex_shader", "triandcolor_frag_shader"},
        {&RenderV1::quadrTextureShader, "QuadrTexture_vertex_shader", "QuadrTexture_frag_shader"},
        {&RenderV1::quadrSelectionShader, "QuadrSelection_vertex_shader",
         "QuadrSelection_frag_shader"},
        {&RenderV1::quadrTextureForPngShader, "QuadrTexture_forpng_vertex_shader",
         "QuadrTexture_forpng_frag_shader"},
        {&RenderV1::lineShader, "line_vertex_shader", "line_frag_shader"},
        {&RenderV1::textShader, "text_vertex_shader", "text_frag_shader"},
        {&RenderV1::textChineseShader, "text_chinese_vertex_shader", "text_chinese_frag_shader"},
    };
    if (which < 0 || which >= Kept_Count) {
        return nullptr;
    }
    const KeptSources& k = kSources[which];
    Shader*& slot = this->*k.slot;
    if (!slot) {
        slot =
            new Shader(ShaderSourceTable::Source(k.vertex), ShaderSourceTable::Source(k.fragment));
    }
    return slot;
}

Shader* RenderV1::CompileCurrentMeshShader(bool backAndFront, bool gum) {
    // The previous call's GL program was deleted at the end of its draw; only its object is left.
    delete currentMeshShader;
    currentMeshShader =
        new Shader(ShaderSourceTable::Source("Mesh_vertex_shader"),
                   ShaderSourceTable::Source(backAndFront ? "Mesh_frag_shaderforBackAndFront"
                                                          : "Mesh_frag_shader"));
    if (gum) {
        // The plain program just made is dropped without glDeleteProgram: its GL name is lost
        // for the life of the context, one per gum drawn this way.
        delete currentMeshShader;
        currentMeshShader = new Shader(ShaderSourceTable::Source("Gum_vertex_shader"),
                                       ShaderSourceTable::Source("Gum_frag_shader"));
    }
    return currentMeshShader;
}
