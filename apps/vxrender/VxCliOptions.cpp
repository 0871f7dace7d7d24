// VxCliOptions: parsing of vxrender's command line. Every value is checked for form and range
// here, so the renderer only meets values it can use; whether a step or tooth exists in the case
// is left to the renderer. It does not print: the caller decides where help and errors go.
#include "VxCliOptions.h"

#include "../common/VxAppOverlays.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>

namespace {

std::string Trim(const std::string& s) {
    const auto b = s.find_first_not_of(" \t");
    if (b == std::string::npos) {
        return "";
    }
    const auto e = s.find_last_not_of(" \t");
    return s.substr(b, e - b + 1);
}

bool ParseSize(const std::string& text, int& w, int& h) {
    const auto x = text.find_first_of("xX");
    if (x == std::string::npos) {
        return false;
    }
    long long a = 0;
    long long b = 0;
    if (!VxCliParseInt(text.substr(0, x), kVxCliMinSize, kVxCliMaxSize, a) ||
        !VxCliParseInt(text.substr(x + 1), kVxCliMinSize, kVxCliMaxSize, b)) {
        return false;
    }
    w = static_cast<int>(a);
    h = static_cast<int>(b);
    return true;
}

// Steps are limited to what a plan can hold; a case's own count is checked by the renderer.
constexpr long long kMaxStep = 9999;

bool ParseSteps(const std::string& text, VxCliSteps& steps) {
    if (text == "all") {
        steps.kind = VxCliSteps::Kind::All;
        return true;
    }
    if (text == "last") {
        steps.kind = VxCliSteps::Kind::Last;
        return true;
    }
    if (text == "current") {
        steps.kind = VxCliSteps::Kind::Current;
        return true;
    }
    // A range "A-B"; the first character is not taken as a separator so "-1" stays a bad number.
    const auto dash = text.find('-', 1);
    long long a = 0;
    long long b = 0;
    if (dash == std::string::npos) {
        if (!VxCliParseInt(text, 0, kMaxStep, a)) {
            return false;
        }
        steps.kind = VxCliSteps::Kind::One;
        steps.first = steps.last = static_cast<int>(a);
        return true;
    }
    if (!VxCliParseInt(text.substr(0, dash), 0, kMaxStep, a) ||
        !VxCliParseInt(text.substr(dash + 1), 0, kMaxStep, b) || b < a) {
        return false;
    }
    steps.kind = VxCliSteps::Kind::Range;
    steps.first = static_cast<int>(a);
    steps.last = static_cast<int>(b);
    return true;
}

bool ParseFdiList(const std::string& text, std::vector<int>& out, std::string& bad) {
    std::vector<int> list;
    std::stringstream ss(text);
    std::string item;
    while (std::getline(ss, item, ',')) {
        long long v = 0;
        if (!VxCliParseInt(item, 11, 85, v) || !VxCliIsFdi(static_cast<int>(v))) {
            bad = Trim(item);
            return false;
        }
        list.push_back(static_cast<int>(v));
    }
    if (list.empty() || text.back() == ',') {
        bad = text;
        return false;
    }
    out.insert(out.end(), list.begin(), list.end());
    return true;
}

struct Option {
    const char* longName;
    const char* shortName; // may be null
    bool takesValue;
    // Returns an error without the option's name, or "".
    std::function<std::string(const std::string&, VxCliOptions&)> apply;
};

template <typename E, std::size_t N>
std::string ApplyName(const std::array<VxAppName<E>, N>& names, const char* what,
                      const std::string& value, E& out) {
    if (VxAppParseName(names, value, out)) {
        return "";
    }
    return "unknown " + std::string(what) + " '" + value + "' (choose " + VxAppWordList(names) +
           ")";
}

const std::vector<Option>& Options() {
    static const std::vector<Option> options = {
        {"--help", "-h", false, [](const std::string&, VxCliOptions&) { return std::string(); }},
        {"--size", "-s", true,
         [](const std::string& v, VxCliOptions& o) {
             return ParseSize(v, o.width, o.height)
                        ? std::string()
                        : "expected WIDTHxHEIGHT, each " + std::to_string(kVxCliMinSize) + " to " +
                              std::to_string(kVxCliMaxSize) + ", like 1280x800; got '" + v + "'";
         }},
        {"--layout", "-l", true,
         [](const std::string& v, VxCliOptions& o) {
             return ApplyName(kVxAppLayouts, "layout", v, o.layout);
         }},
        {"--path", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             return ApplyName(kVxAppRenderPaths, "render path", v, o.renderPath);
         }},
        {"--display", "-d", true,
         [](const std::string& v, VxCliOptions& o) {
             return ApplyName(kVxAppDisplays, "display mode", v, o.display);
         }},
        {"--jaws", "-j", true,
         [](const std::string& v, VxCliOptions& o) {
             return ApplyName(kVxAppJaws, "jaw choice", v, o.jaws);
         }},
        {"--step", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             return ParseSteps(v, o.steps)
                        ? std::string()
                        : "expected a step number N, a range A-B with A <= B, 'last', "
                          "'current' or 'all'; got '" +
                              v + "'";
         }},
        {"--select", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             std::string bad;
             return ParseFdiList(v, o.selectFdi, bad)
                        ? std::string()
                        : "'" + bad + "' is not an FDI tooth number (11-48, 51-85)";
         }},
        {"--highlight", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             std::string bad;
             return ParseFdiList(v, o.highlightFdi, bad)
                        ? std::string()
                        : "'" + bad + "' is not an FDI tooth number (11-48, 51-85)";
         }},
        {"--pick", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             const auto comma = v.find(',');
             long long x = 0;
             long long y = 0;
             if (comma == std::string::npos ||
                 !VxCliParseInt(v.substr(0, comma), 0, kVxCliMaxSize - 1, x) ||
                 !VxCliParseInt(v.substr(comma + 1), 0, kVxCliMaxSize - 1, y)) {
                 return "'" + v + "' is not a pixel X,Y";
             }
             o.picks.emplace_back(static_cast<int>(x), static_cast<int>(y));
             return std::string();
         }},
        {"--background", "-b", true,
         [](const std::string& v, VxCliOptions& o) {
             if (v.empty()) {
                 return std::string("needs a BMP file name");
             }
             o.background = v;
             return std::string();
         }},
        {"--output", "-o", true,
         [](const std::string& v, VxCliOptions& o) {
             if (v.empty()) {
                 return std::string("needs a file or directory name");
             }
             o.output = v;
             return std::string();
         }},
        {"--seed", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             long long s = 0;
             if (!VxCliParseInt(v, 0, 0xFFFFFFFFLL, s)) {
                 return "expected a whole number 0 to 4294967295; got '" + v + "'";
             }
             o.seed = static_cast<unsigned>(s);
             return std::string();
         }},
        {"--write-case", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             if (v.empty()) {
                 return std::string("needs a directory name");
             }
             o.writeCase = v;
             return std::string();
         }},
        {"--editor", nullptr, false,
         [](const std::string&, VxCliOptions& o) {
             o.editor = true;
             return std::string();
         }},
        {"--aux-demo", nullptr, false,
         [](const std::string&, VxCliOptions& o) {
             o.auxDemo = true;
             return std::string();
         }},
        {"--handle", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             const bool mode =
                 v.size() == 10 && v.compare(0, 9, "position:") == 0 && v[9] >= '0' && v[9] <= '7';
             if (v != "frame" && v != "rotate" && v != "position" && !mode) {
                 return "expected frame, rotate, position or position:0 to position:7; got '" + v +
                        "'";
             }
             o.handle = v;
             return std::string();
         }},
        {"--picture", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             return ApplyName(kVxAppPictures, "picture", v, o.picture);
         }},
        {"--overlay", nullptr, true,
         [](const std::string& v, VxCliOptions& o) {
             std::string error;
             return VxAppOverlays::Parse(v, o.overlays, error) ? std::string() : error;
         }},
        {"--no-axis", nullptr, false,
         [](const std::string&, VxCliOptions& o) {
             o.noAxis = true;
             return std::string();
         }},
        {"--quiet", "-q", false,
         [](const std::string&, VxCliOptions& o) {
             o.quiet = true;
             return std::string();
         }},
    };
    return options;
}

} // namespace

bool VxCliParseInt(const std::string& text, long long low, long long high, long long& out) {
    const std::string t = Trim(text);
    if (t.empty() || t.size() > 18) {
        return false;
    }
    for (std::size_t i = 0; i < t.size(); ++i) {
        const char c = t[i];
        if (!(c >= '0' && c <= '9') && !(i == 0 && (c == '-' || c == '+') && t.size() > 1)) {
            return false;
        }
    }
    errno = 0;
    char* end = nullptr;
    const long long v = std::strtoll(t.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || v < low || v > high) {
        return false;
    }
    out = v;
    return true;
}

bool VxCliIsFdi(int fdi) {
    const int quadrant = fdi / 10;
    const int tooth = fdi % 10;
    if (quadrant >= 1 && quadrant <= 4) {
        return tooth >= 1 && tooth <= 8;
    }
    if (quadrant >= 5 && quadrant <= 8) {
        return tooth >= 1 && tooth <= 5;
    }
    return false;
}

VxCliParseResult VxParseCliOptions(int argc, const char* const* argv, VxCliOptions& options) {
    VxCliParseResult result;
    auto fail = [&](const std::string& message) {
        result.status = VxCliParseResult::Status::Error;
        result.error = message;
        return result;
    };
    bool help = false;
    bool caseGiven = false;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i] ? argv[i] : "";
        if (optionsEnded || arg.empty() || arg[0] != '-' || arg == "-") {
            if (caseGiven) {
                return fail("more than one case directory given ('" + options.caseDir + "' and '" +
                            arg + "')");
            }
            if (arg.empty()) {
                return fail("the case directory name is empty");
            }
            options.caseDir = arg;
            caseGiven = true;
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        std::string name = arg;
        std::string value;
        bool inlineValue = false;
        if (arg.compare(0, 2, "--") == 0) {
            const auto eq = arg.find('=');
            if (eq != std::string::npos) {
                name = arg.substr(0, eq);
                value = arg.substr(eq + 1);
                inlineValue = true;
            }
        }
        const Option* option = nullptr;
        for (const Option& o : Options()) {
            if (name == o.longName || (o.shortName && name == o.shortName)) {
                option = &o;
                break;
            }
        }
        if (!option) {
            return fail("unknown option '" + name + "'");
        }
        if (option->takesValue) {
            if (!inlineValue) {
                if (i + 1 >= argc || argv[i + 1] == nullptr) {
                    return fail(std::string(option->longName) + " needs a value");
                }
                value = argv[++i];
            }
        } else if (inlineValue) {
            return fail(std::string(option->longName) + " takes no value");
        }
        if (std::string(option->longName) == "--help") {
            help = true;
            continue;
        }
        const std::string error = option->apply(value, options);
        if (!error.empty()) {
            return fail(std::string(option->longName) + ": " + error);
        }
    }
    if (help) {
        result.status = VxCliParseResult::Status::Help;
    }
    return result;
}

std::string VxCliOutputPath(const VxCliOptions& options, int step, bool severalSteps,
                            int highestStep) {
    const std::string layout = VxAppNameOf(kVxAppLayouts, options.layout);
    std::string stepPart;
    if (severalSteps) {
        std::string n = std::to_string(step);
        const std::size_t width = std::max<std::size_t>(2, std::to_string(highestStep).size());
        if (n.size() < width) {
            n.insert(0, width - n.size(), '0');
        }
        stepPart = "_step" + n;
    }
    std::string out = options.output;
    std::error_code ec;
    const bool isDir =
        !out.empty() && (out.back() == '/' || std::filesystem::is_directory(out, ec));
    if (out.empty()) {
        return "vxrender_" + layout + stepPart + ".png";
    }
    if (isDir) {
        if (out.back() != '/') {
            out += '/';
        }
        return out + layout + stepPart + ".png";
    }
    const std::string ext = ".png";
    if (out.size() > ext.size() && out.compare(out.size() - ext.size(), ext.size(), ext) == 0) {
        out.erase(out.size() - ext.size());
    }
    return out + stepPart + ext;
}

std::string VxCliHelpText() {
    std::ostringstream h;
    h << "usage: vxrender [options] [CASE_DIR]\n"
         "\n"
         "Renders a patient case into PNG pictures without a display (off-screen GL).\n"
         "CASE_DIR is a case directory holding case.json; without one the built-in synthetic\n"
         "patient is rendered.\n"
         "\n"
         "Options (a value may also be given as --name=value):\n"
         "  -s, --size WxH         picture size in pixels, each side "
      << kVxCliMinSize << " to " << kVxCliMaxSize
      << " (default 1280x800)\n"
         "  -l, --layout NAME      view layout (default single):\n";
    for (const auto& n : kVxAppLayouts) {
        h << "                           " << n.word
          << std::string(9 - std::string(n.word).size(), ' ') << n.meaning << "\n";
    }
    h << "      --path NAME        render path: shader (default; fixed where GL is below 4.3)\n"
         "                           or fixed\n"
         "  -d, --display NAME     how surfaces are drawn (default solid):\n";
    for (const auto& n : kVxAppDisplays) {
        h << "                           " << n.word
          << std::string(13 - std::string(n.word).size(), ' ') << n.meaning << "\n";
    }
    h << "  -j, --jaws NAME        which jaw shows: both (default), upper, lower\n"
         "      --step STEPS       treatment step(s) to draw: N (one step), A-B (a range, one\n"
         "                         picture per step), all, last, or current (default: the step\n"
         "                         the case was saved at); step 0 is the initial state\n"
         "      --select FDI,...   mark teeth as selected, by FDI number (e.g. 11,21,36)\n"
         "      --highlight FDI,...  mark teeth as highlighted, by FDI number\n"
         "      --pick X,Y         click at pixel X,Y (y from the top) in the layout's view "
         "there;\n"
         "                         prints what it picks and draws it selected (may repeat)\n"
         "  -b, --background FILE  paint a BMP picture behind the model (default plain white)\n"
         "  -o, --output PATH      a .png file, or a directory (existing, or ending in '/') that\n"
         "                         receives <layout>.png; several steps add _stepNN to the name\n"
         "                         (default vxrender_<layout>.png in the working directory)\n"
         "      --seed N           seed of the synthetic patient (default 1)\n"
         "      --write-case DIR   also save the case as a case directory (case.json, meshes,\n"
         "                         pictures); with no CASE_DIR this writes the synthetic patient\n"
         "      --editor           draw the in-view gap editor over the patient (shader path,\n"
         "                         one front view zoomed onto the crowns): add/delete squares\n"
         "                         at the gaps, value cards with up/down arrows and locks on\n"
         "                         green leaders\n"
         "      --aux-demo         draw a sample of every aux object over the patient (sphere,\n"
         "                         box, arrows, polyline, curve, pipe, planes, circle, torus,\n"
         "                         face patch, labels, pin labels)\n"
         "      --handle KIND      draw a manipulator on the selected tooth (--select), else a\n"
         "                         molar: frame (balls on the axes), rotate (the frame handle\n"
         "                         turning, with its graduated ring), position (every move\n"
         "                         arrow and turn arc) or position:N for one move mode N: 0-2\n"
         "                         move along X, Y, Z; 3 turn about Z; 4 the wide arc about Y;\n"
         "                         5, 6 turn about X from the centre, from below; 7 all\n"
         "      --picture KIND     show one of the case's patient pictures in the patient's\n"
         "                         place (the picture overlay of that name, the patient left\n"
         "                         out): front, profile, xray, or panoramic (with its\n"
         "                         landmark markers); none by default\n"
         "      --overlay NAME,... show clinical overlays (may repeat; 'all' for every one):\n"
         "                         numbers, marks, facc, refs, keypoint, archwire, midplane,\n"
         "                         backplane, beauty, upplane, lowplane, upline, lowline,\n"
         "                         xray, front, profile, panoramic (pictures, as --picture),\n"
         "                         and\n"
         "                           ipr          IPR labels of the plan (\" step(gap mm)\")\n"
         "                           collision    contacts across the jaws coloured by depth\n"
         "                                        (blue 0, green 0.5, red 1 mm) and values\n"
         "                           attachments  \" first(last)\" step of each attachment\n"
         "                           grid         millimetre grid and 1mm/10mm scale bar\n"
         "      --no-axis          leave out the small axis cross drawn in the lower-right\n"
         "                         corner of every view\n"
         "  -q, --quiet            do not list the pictures written\n"
         "  -h, --help             show this text and exit\n"
         "\n"
         "Exit status: 0 pictures written, 1 the case or the GL context failed, 2 bad command "
         "line.\n"
         "Examples:\n"
         "  vxrender --layout five -o out/\n"
         "  vxrender cases/patient1 --layout compare --size 1600x900 -o compare.png\n"
         "  vxrender --step all --jaws upper -o frames/\n"
         "  vxrender --editor -o editor.png\n"
         "  vxrender --overlay numbers,marks,facc --step last -o plan.png\n"
         "  vxrender --overlay ipr,collision,attachments,grid -o overlays.png\n";
    return h.str();
}
