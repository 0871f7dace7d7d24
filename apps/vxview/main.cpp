// vxview: the interactive viewer of a patient case. Parses its few options and hands over to
// VxViewer; every failure ends as one line on stderr and a non-zero status.
#include "VxCliOptions.h"
#include "VxViewer.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

const char* kUsage =
    "usage: vxview [options] [CASE_DIR]\n"
    "\n"
    "Shows a patient case in a window (X11). CASE_DIR is a case directory holding case.json;\n"
    "without one the built-in synthetic patient is shown.\n"
    "\n"
    "Options:\n"
    "  -s, --size WxH          window size in pixels (default 1280x800)\n"
    "  -l, --layout NAME       starting layout: single, jaws, compare, four, five\n"
    "  -b, --background FILE   BMP picture behind the model\n"
    "      --seed N            seed of the synthetic patient (default 1)\n"
    "      --smoke-test FILE   draw a few frames, save a snapshot to FILE (PNG), send the\n"
    "                          window the quit key and exit 0 once it arrives (for tests)\n"
    "  -h, --help              this text and the key list\n";

int Fail(const std::string& message) {
    std::string line = message;
    for (char& ch : line) {
        if (ch == '\n' || ch == '\r') {
            ch = ' ';
        }
    }
    std::fprintf(stderr, "vxview: %s\n", line.c_str());
    return 1;
}

// 0 to run, 1 for help shown, -1 with `error` for a bad command line.
int Parse(int argc, char** argv, VxViewerOptions& o, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        std::string value;
        const auto eq = arg.find('=');
        const bool inlineValue = arg.compare(0, 2, "--") == 0 && eq != std::string::npos;
        if (inlineValue) {
            value = arg.substr(eq + 1);
            arg = arg.substr(0, eq);
        }
        auto next = [&](std::string& out) {
            if (inlineValue) {
                out = value;
                return true;
            }
            if (i + 1 >= argc) {
                error = arg + " needs a value";
                return false;
            }
            out = argv[++i];
            return true;
        };
        if (arg == "-h" || arg == "--help") {
            return 1;
        }
        if (arg == "-s" || arg == "--size") {
            if (!next(value)) {
                return -1;
            }
            const auto x = value.find_first_of("xX");
            long long w = 0;
            long long h = 0;
            if (x == std::string::npos ||
                !VxCliParseInt(value.substr(0, x), kVxCliMinSize, kVxCliMaxSize, w) ||
                !VxCliParseInt(value.substr(x + 1), kVxCliMinSize, kVxCliMaxSize, h)) {
                error = "--size: expected WIDTHxHEIGHT like 1280x800; got '" + value + "'";
                return -1;
            }
            o.width = static_cast<int>(w);
            o.height = static_cast<int>(h);
        } else if (arg == "-l" || arg == "--layout") {
            if (!next(value)) {
                return -1;
            }
            if (!VxAppParseName(kVxAppLayouts, value, o.layout)) {
                error = "--layout: unknown layout '" + value + "' (choose " +
                        VxAppWordList(kVxAppLayouts) + ")";
                return -1;
            }
        } else if (arg == "-b" || arg == "--background") {
            if (!next(o.background) || o.background.empty()) {
                error = "--background needs a BMP file name";
                return -1;
            }
        } else if (arg == "--seed") {
            long long s = 0;
            if (!next(value)) {
                return -1;
            }
            if (!VxCliParseInt(value, 0, 0xFFFFFFFFLL, s)) {
                error = "--seed: expected a whole number; got '" + value + "'";
                return -1;
            }
            o.seed = static_cast<unsigned>(s);
        } else if (arg == "--smoke-test") {
            if (!next(o.smokeTestSnapshot) || o.smokeTestSnapshot.empty()) {
                error = "--smoke-test needs a PNG file name";
                return -1;
            }
        } else if (!arg.empty() && arg[0] == '-') {
            error = "unknown option '" + arg + "'";
            return -1;
        } else if (!o.caseDir.empty()) {
            error = "more than one case directory given ('" + o.caseDir + "' and '" + arg + "')";
            return -1;
        } else {
            o.caseDir = arg;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        VxViewerOptions options;
        std::string error;
        const int parsed = Parse(argc, argv, options, error);
        if (parsed == 1) {
            std::fputs(kUsage, stdout);
            std::fputs("\n", stdout);
            std::fputs(VxViewer::KeyHelp().c_str(), stdout);
            return 0;
        }
        if (parsed < 0) {
            std::fprintf(stderr, "vxview: %s (vxview --help lists the options)\n", error.c_str());
            return 2;
        }
        VxViewer viewer;
        const int status = viewer.Run(options, error);
        return status == 0 ? 0 : Fail(error);
    } catch (const std::exception& e) {
        return Fail(std::string("unexpected failure: ") + e.what());
    }
}
