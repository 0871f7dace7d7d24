// VxTestRenderPath: the two render paths as a test parameter. Tests that must hold on both paths
// are written once as TEST_P and instantiated with VX_BOTH_RENDER_PATHS; Apply puts the library on
// the path (the context's own version test still runs at every view).
#pragma once

#include <gtest/gtest.h>

#include <string>

enum class VxTestRenderPath { Fixed, Shader };

// Sets OpenGLVersion's path flag.
void VxApplyRenderPath(VxTestRenderPath path);
// For a test that makes a new context on the same process: the shader renderer keeps its programs
// and buffers for the life of the process (a host has one context), and names from the old
// context mean nothing in the new one. Forgets them all without a GL call.
void VxForgetShaderObjects();
// "Fixed" or "Shader", for test names.
std::string VxRenderPathName(const ::testing::TestParamInfo<VxTestRenderPath>& info);

#define VX_BOTH_RENDER_PATHS(suite)                                                                \
    INSTANTIATE_TEST_SUITE_P(Paths, suite,                                                         \
                             ::testing::Values(VxTestRenderPath::Fixed, VxTestRenderPath::Shader), \
                             VxRenderPathName)
