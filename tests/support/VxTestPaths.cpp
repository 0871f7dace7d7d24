// Locations the tests read from and write to, fixed at configure time.
#include "VxTestPaths.h"

std::string VxTestSourceDir() {
    return VX_TEST_SOURCE_DIR;
}
std::string VxTestOutputDir() {
    return VX_TEST_OUTPUT_DIR;
}
