// Where tests find their data (tests/ in the source tree) and put what they write
// (test-output/ in the build tree: rendered PNGs, difference images).
#pragma once

#include <string>

std::string VxTestSourceDir();
std::string VxTestOutputDir();
