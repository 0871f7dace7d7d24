// VxCliOptions: the command line of vxrender, parsed into plain values, the help text, and the
// names of the pictures a run writes. Pure standard C++ so it is tested without GL or a case;
// it checks the form of every value (sizes, step ranges, FDI numbers) but not whether the case
// has that step or tooth, which only the renderer can know.
#pragma once

#include "../common/VxAppTypes.h"

#include <string>
#include <utility>
#include <vector>

struct VxCliSteps {
    enum class Kind {
        Current, // the step the case was saved at
        One,     // first only
        Range,   // first .. last, both included
        All,     // every step of the case
        Last,    // the final step of the case
    };
    Kind kind = Kind::Current;
    int first = 0;
    int last = 0;
};

struct VxCliOptions {
    std::string caseDir; // empty: the synthetic patient
    unsigned seed = 1;   // of the synthetic patient
    int width = 1280;
    int height = 800;
    VxAppLayout layout = VxAppLayout::Single;
    VxAppRenderPath renderPath = VxAppRenderPath::Shader;
    VxAppDisplay display = VxAppDisplay::Solid;
    VxAppJaws jaws = VxAppJaws::Both;
    VxCliSteps steps;
    std::vector<int> selectFdi;
    std::vector<int> highlightFdi;
    // Clicks, pixels with y from the top: what each picks is printed and drawn selected.
    std::vector<std::pair<int, int>> picks;
    std::string background; // BMP, empty: a plain white page
    std::string output;     // empty: "vxrender_<layout>.png" in the working directory
    bool quiet = false;
    std::string writeCase; // non-empty: also save the case (e.g. the synthetic one) there
    // Lay a sample of the gap editor's value cards and list rows over each picture.
    bool editorSample = false;
    bool auxDemo = false; // draw the sample of aux objects over the patient
    bool noAxis = false;  // no axis cross in the views' corners
    // Clinical overlays by name, in the order given (checked against the overlays when drawing).
    std::vector<std::string> overlays;
};

struct VxCliParseResult {
    enum class Status { Run, Help, Error };
    Status status = Status::Run;
    // One line without the program name, for Status::Error.
    std::string error;
};

// argv[0] is skipped. Options may be given as "--name value" or "--name=value".
VxCliParseResult VxParseCliOptions(int argc, const char* const* argv, VxCliOptions& options);
std::string VxCliHelpText();

// Limits of --size: a pbuffer cannot be empty, and the biggest llvmpipe surface is 16384.
constexpr int kVxCliMinSize = 16;
constexpr int kVxCliMaxSize = 8192;

// The picture of one step. With several steps the step number goes into the name
// ("five_step03.png"). `output` naming an existing directory, or ending in '/', puts
// "<layout>.png" (or "<layout>_stepNN.png") inside it; a name without ".png" gets it added.
std::string VxCliOutputPath(const VxCliOptions& options, int step, bool severalSteps,
                            int highestStep);

// Helpers shared with vxview; false on anything but a whole, in-range value.
bool VxCliParseInt(const std::string& text, long long low, long long high, long long& out);
bool VxCliIsFdi(int fdi);
