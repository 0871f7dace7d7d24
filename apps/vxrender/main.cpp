// vxrender: renders a patient case into PNG pictures on a machine without a display. The options
// are in VxCliOptions, the work in VxCliRender; this file only routes help and errors, so every
// failure ends as one line on stderr and a non-zero status.
#include "VxCliOptions.h"
#include "VxCliRender.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

int Fail(const std::string& message, int status) {
    std::string line = message;
    for (char& ch : line) {
        if (ch == '\n' || ch == '\r') {
            ch = ' ';
        }
    }
    std::fprintf(stderr, "vxrender: %s\n", line.c_str());
    return status;
}

} // namespace

int main(int argc, char** argv) {
    try {
        VxCliOptions options;
        const VxCliParseResult parsed = VxParseCliOptions(argc, argv, options);
        if (parsed.status == VxCliParseResult::Status::Help) {
            std::fputs(VxCliHelpText().c_str(), stdout);
            return 0;
        }
        if (parsed.status == VxCliParseResult::Status::Error) {
            return Fail(parsed.error + " (vxrender --help lists the options)", 2);
        }
        std::string error;
        const int status = VxCliRender(options, error);
        return status == 0 ? 0 : Fail(error, status);
    } catch (const std::exception& e) {
        // The case reader and the library do not throw on bad input; this is memory running out.
        return Fail(std::string("unexpected failure: ") + e.what(), 1);
    }
}
