// VxTestRenderPath: the path flag and test names.
#include "VxTestRenderPath.h"

#include <frame/OpenGLVersion.h>

void VxApplyRenderPath(VxTestRenderPath path) {
    OpenGLVersion::GetInstance()->Set_btestversion(path == VxTestRenderPath::Shader);
}

std::string VxRenderPathName(const ::testing::TestParamInfo<VxTestRenderPath>& info) {
    return info.param == VxTestRenderPath::Shader ? "Shader" : "Fixed";
}
