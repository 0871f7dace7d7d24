// VxTestRenderPath: the path flag and test names.
#include "VxTestRenderPath.h"

#include <frame/OpenGLVersion.h>
#include <shader/RenderV1.h>
#include <shader/Shader.h>

void VxApplyRenderPath(VxTestRenderPath path) {
    OpenGLVersion::GetInstance()->Set_btestversion(path == VxTestRenderPath::Shader);
}

std::string VxRenderPathName(const ::testing::TestParamInfo<VxTestRenderPath>& info) {
    return info.param == VxTestRenderPath::Shader ? "Shader" : "Fixed";
}

void VxForgetShaderObjects() {
    RenderV1* r = RenderV1::GetInstance();
    for (Shader** slot :
         {&r->currentMeshShader, &r->meshShader, &r->toothShader, &r->gumShader, &r->attachShader,
          &r->billboardShader, &r->triandcolorShader, &r->quadrTextureShader,
          &r->quadrSelectionShader, &r->quadrTextureForPngShader, &r->lineShader, &r->textShader,
          &r->textChineseShader}) {
        delete *slot;
        *slot = nullptr;
    }
    r->ClearMapofVBOID();
    r->mapOfGumVBO.clear();
    r->objectQueue.clear();
    r->attachQueue.clear();
}
