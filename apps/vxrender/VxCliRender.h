// VxCliRender: one run of vxrender once its options are parsed: the case, an off-screen window
// of the asked size, the scene set up as the options say, and one PNG per treatment step.
// It does not parse the command line and prints only the names of the pictures it wrote.
#pragma once

#include "VxCliOptions.h"

#include <string>

// The exit status (0 written, 1 the case, a value or GL failed, 2 an option this build cannot
// honour); on failure `error` holds one line without the program name.
int VxCliRender(const VxCliOptions& options, std::string& error);
