// vxrender's command line: every option in its long, short and "=" forms, the limits of each
// value, the errors for bad values, missing values and unknown options, the help text against an
// independent list of the options, and the names of the pictures a run writes.
// The parser is a plain source of the program; it is compiled into this test rather than linked.
#include "../../apps/vxrender/VxCliOptions.cpp"

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

struct Parsed {
    VxCliParseResult result;
    VxCliOptions options;
};

Parsed Parse(std::initializer_list<const char*> args) {
    std::vector<const char*> argv{"vxrender"};
    argv.insert(argv.end(), args.begin(), args.end());
    Parsed p;
    p.result = VxParseCliOptions(static_cast<int>(argv.size()), argv.data(), p.options);
    return p;
}

bool Runs(const Parsed& p) {
    return p.result.status == VxCliParseResult::Status::Run;
}

// The error of a command line that must fail.
std::string ErrorOf(std::initializer_list<const char*> args) {
    const Parsed p = Parse(args);
    EXPECT_EQ(p.result.status, VxCliParseResult::Status::Error);
    EXPECT_FALSE(p.result.error.empty());
    EXPECT_EQ(p.result.error.find('\n'), std::string::npos) << "one line only";
    return p.result.error;
}

bool Contains(const std::string& s, const std::string& part) {
    return s.find(part) != std::string::npos;
}

} // namespace

TEST(CliOptionsTest, DefaultsWithoutArguments) {
    const Parsed p = Parse({});
    ASSERT_TRUE(Runs(p));
    const VxCliOptions& o = p.options;
    EXPECT_TRUE(o.caseDir.empty());
    EXPECT_EQ(o.width, 1280);
    EXPECT_EQ(o.height, 800);
    EXPECT_EQ(o.layout, VxAppLayout::Single);
    EXPECT_EQ(o.renderPath, VxAppRenderPath::Shader);
    EXPECT_EQ(o.display, VxAppDisplay::Solid);
    EXPECT_EQ(o.jaws, VxAppJaws::Both);
    EXPECT_EQ(o.steps.kind, VxCliSteps::Kind::Current);
    EXPECT_TRUE(o.selectFdi.empty());
    EXPECT_TRUE(o.highlightFdi.empty());
    EXPECT_TRUE(o.background.empty());
    EXPECT_TRUE(o.output.empty());
    EXPECT_EQ(o.seed, 1u);
    EXPECT_FALSE(o.quiet);
}

TEST(CliOptionsTest, EveryOptionInLongShortAndInlineForms) {
    Parsed p =
        Parse({"cases/p1", "--size",    "640x480",     "--layout",    "five",  "--path",
               "fixed",    "--display", "solid+edges", "--jaws",      "upper", "--step",
               "2-4",      "--select",  "11,21",       "--highlight", "36",    "--background",
               "bk.bmp",   "--output",  "out/x.png",   "--seed",      "42",    "--quiet"});
    ASSERT_TRUE(Runs(p)) << p.result.error;
    EXPECT_EQ(p.options.caseDir, "cases/p1");
    EXPECT_EQ(p.options.width, 640);
    EXPECT_EQ(p.options.height, 480);
    EXPECT_EQ(p.options.layout, VxAppLayout::Five);
    EXPECT_EQ(p.options.display, VxAppDisplay::SolidEdges);
    EXPECT_EQ(p.options.jaws, VxAppJaws::Upper);
    EXPECT_EQ(p.options.steps.kind, VxCliSteps::Kind::Range);
    EXPECT_EQ(p.options.steps.first, 2);
    EXPECT_EQ(p.options.steps.last, 4);
    EXPECT_EQ(p.options.selectFdi, (std::vector<int>{11, 21}));
    EXPECT_EQ(p.options.highlightFdi, (std::vector<int>{36}));
    EXPECT_EQ(p.options.background, "bk.bmp");
    EXPECT_EQ(p.options.output, "out/x.png");
    EXPECT_EQ(p.options.seed, 42u);
    EXPECT_TRUE(p.options.quiet);

    p = Parse({"-s", "100X50", "-l", "compare", "-d", "points", "-j", "lower", "-b", "a.bmp", "-o",
               "dir/", "-q"});
    ASSERT_TRUE(Runs(p)) << p.result.error;
    EXPECT_EQ(p.options.width, 100);
    EXPECT_EQ(p.options.height, 50);
    EXPECT_EQ(p.options.layout, VxAppLayout::Compare);
    EXPECT_EQ(p.options.display, VxAppDisplay::Points);
    EXPECT_EQ(p.options.jaws, VxAppJaws::Lower);
    EXPECT_EQ(p.options.background, "a.bmp");
    EXPECT_EQ(p.options.output, "dir/");
    EXPECT_TRUE(p.options.quiet);

    p = Parse({"--size=64x32", "--layout=jaws", "--display=edges", "--step=all", "--select=48",
               "--path=fixed"});
    ASSERT_TRUE(Runs(p)) << p.result.error;
    EXPECT_EQ(p.options.width, 64);
    EXPECT_EQ(p.options.layout, VxAppLayout::Jaws);
    EXPECT_EQ(p.options.display, VxAppDisplay::Edges);
    EXPECT_EQ(p.options.steps.kind, VxCliSteps::Kind::All);
    EXPECT_EQ(p.options.selectFdi, (std::vector<int>{48}));
    EXPECT_EQ(p.options.renderPath, VxAppRenderPath::Fixed);
}

TEST(CliOptionsTest, EveryChoiceWordParsesAndNoOtherDoes) {
    std::string e;
    const std::vector<std::pair<const char*, VxAppLayout>> layouts = {
        {"single", VxAppLayout::Single},
        {"jaws", VxAppLayout::Jaws},
        {"compare", VxAppLayout::Compare},
        {"four", VxAppLayout::Four},
        {"five", VxAppLayout::Five}};
    for (const auto& [word, value] : layouts) {
        const Parsed p = Parse({"--layout", word});
        ASSERT_TRUE(Runs(p)) << word;
        EXPECT_EQ(p.options.layout, value) << word;
    }
    const std::vector<std::pair<const char*, VxAppDisplay>> displays = {
        {"solid", VxAppDisplay::Solid},
        {"solid+edges", VxAppDisplay::SolidEdges},
        {"edges", VxAppDisplay::Edges},
        {"points", VxAppDisplay::Points}};
    for (const auto& [word, value] : displays) {
        const Parsed p = Parse({"--display", word});
        ASSERT_TRUE(Runs(p)) << word;
        EXPECT_EQ(p.options.display, value) << word;
    }
    for (const char* word : {"both", "upper", "lower"}) {
        EXPECT_TRUE(Runs(Parse({"--jaws", word}))) << word;
    }
    const std::vector<std::pair<const char*, VxAppPictureKind>> pictures = {
        {"none", VxAppPictureKind::None},
        {"front", VxAppPictureKind::Front},
        {"profile", VxAppPictureKind::Profile},
        {"xray", VxAppPictureKind::Xray},
        {"panoramic", VxAppPictureKind::Panoramic}};
    for (const auto& [word, value] : pictures) {
        const Parsed p = Parse({"--picture", word});
        ASSERT_TRUE(Runs(p)) << word;
        EXPECT_EQ(p.options.picture, value) << word;
    }
    EXPECT_EQ(Parse({}).options.picture, VxAppPictureKind::None);
    e = ErrorOf({"--picture", "x-ray"});
    EXPECT_TRUE(Contains(e, "none, front, profile, xray, panoramic")) << e;
    // Words are exact: no case folding, no prefixes, no numbers for names.
    e = ErrorOf({"--layout", "Five"});
    EXPECT_TRUE(Contains(e, "--layout")) << e;
    EXPECT_TRUE(Contains(e, "'Five'")) << e;
    EXPECT_TRUE(Contains(e, "single, jaws, compare, four, five")) << e;
    e = ErrorOf({"--display", "wire"});
    EXPECT_TRUE(Contains(e, "solid, solid+edges, edges, points")) << e;
    ErrorOf({"--jaws", "up"});
    ErrorOf({"--path", "gl"});
    ErrorOf({"--layout", "5"});
}

TEST(CliOptionsTest, SizeLimitsAndMalformedSizes) {
    EXPECT_TRUE(Runs(Parse({"--size", "16x16"})));
    EXPECT_TRUE(Runs(Parse({"--size", "8192x8192"})));
    for (const char* bad : {"15x100", "100x15", "8193x100", "0x0", "-5x10", "1280", "x800", "1280x",
                            "12a0x800", "1280x800x3", "1280*800", "", "99999999999x1"}) {
        const std::string e = ErrorOf({"--size", bad});
        EXPECT_TRUE(Contains(e, "--size")) << bad;
        EXPECT_TRUE(Contains(e, "WIDTHxHEIGHT")) << bad;
    }
}

TEST(CliOptionsTest, StepForms) {
    Parsed p = Parse({"--step", "7"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.steps.kind, VxCliSteps::Kind::One);
    EXPECT_EQ(p.options.steps.first, 7);
    EXPECT_EQ(p.options.steps.last, 7);
    p = Parse({"--step", "3-3"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.steps.kind, VxCliSteps::Kind::Range);
    p = Parse({"--step", "0-9999"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.steps.last, 9999);
    EXPECT_EQ(Parse({"--step", "last"}).options.steps.kind, VxCliSteps::Kind::Last);
    EXPECT_EQ(Parse({"--step", "all", "--step", "current"}).options.steps.kind,
              VxCliSteps::Kind::Current); // the last one given counts
    for (const char* bad : {"-1", "5-2", "3-", "-", "a", "1-b", "10000", "1.5", "1--2", "all2"}) {
        const std::string e = ErrorOf({"--step", bad});
        EXPECT_TRUE(Contains(e, "--step")) << bad;
    }
}

TEST(CliOptionsTest, FdiListsAndTheirErrors) {
    Parsed p = Parse({"--select", "11, 21", "--select", "55", "--highlight", "18,28,38,48"});
    ASSERT_TRUE(Runs(p)) << p.result.error;
    EXPECT_EQ(p.options.selectFdi, (std::vector<int>{11, 21, 55})); // repeated lists add up
    EXPECT_EQ(p.options.highlightFdi, (std::vector<int>{18, 28, 38, 48}));
    // Permanent teeth 1-8 in quadrants 1-4, milk teeth 1-5 in quadrants 5-8.
    for (int q = 0; q <= 9; ++q) {
        for (int t = 0; t <= 9; ++t) {
            const int fdi = q * 10 + t;
            const bool valid =
                (q >= 1 && q <= 4 && t >= 1 && t <= 8) || (q >= 5 && q <= 8 && t >= 1 && t <= 5);
            EXPECT_EQ(VxCliIsFdi(fdi), valid) << fdi;
        }
    }
    for (const char* bad : {"19", "56", "90", "10", "11,,21", "11,", ",11", "", "abc", "111"}) {
        const std::string e = ErrorOf({"--highlight", bad});
        EXPECT_TRUE(Contains(e, "--highlight")) << bad;
        EXPECT_TRUE(Contains(e, "FDI")) << bad;
    }
    // A failed list adds nothing.
    p = Parse({"--select", "11,19"});
    EXPECT_TRUE(p.options.selectFdi.empty());
}

TEST(CliOptionsTest, MalformedCommandLines) {
    EXPECT_EQ(ErrorOf({"--size"}), "--size needs a value");
    EXPECT_EQ(ErrorOf({"-o"}), "--output needs a value");
    EXPECT_EQ(ErrorOf({"--bogus"}), "unknown option '--bogus'");
    EXPECT_EQ(ErrorOf({"-x"}), "unknown option '-x'");
    EXPECT_EQ(ErrorOf({"--bogus=3"}), "unknown option '--bogus'");
    EXPECT_EQ(ErrorOf({"--quiet=yes"}), "--quiet takes no value");
    EXPECT_EQ(ErrorOf({"--editor=1"}), "--editor takes no value");
    EXPECT_TRUE(Parse({"--editor"}).options.editor);
    EXPECT_FALSE(Parse({}).options.editor);
    EXPECT_TRUE(Contains(ErrorOf({"a", "b"}), "more than one case directory"));
    EXPECT_TRUE(Contains(ErrorOf({"--output="}), "--output"));
    EXPECT_TRUE(Contains(ErrorOf({"--background", ""}), "--background"));
    EXPECT_TRUE(Contains(ErrorOf({"--seed", "-1"}), "--seed"));
    EXPECT_TRUE(Contains(ErrorOf({"--seed", "4294967296"}), "--seed"));
    EXPECT_EQ(Parse({"--seed", "4294967295"}).options.seed, 4294967295u);
    EXPECT_EQ(Parse({"--write-case", "cases/synthetic"}).options.writeCase, "cases/synthetic");
    EXPECT_TRUE(Contains(ErrorOf({"--write-case", ""}), "--write-case"));
    // After "--" a name that starts with a dash is a case directory.
    const Parsed p = Parse({"--", "-odd-name"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.caseDir, "-odd-name");
    // A value that looks like an option is still the value.
    EXPECT_EQ(Parse({"-o", "--size"}).options.output, "--size");
}

TEST(CliOptionsTest, HelpWinsOverValidOptionsButNotOverErrors) {
    EXPECT_EQ(Parse({"--help"}).result.status, VxCliParseResult::Status::Help);
    EXPECT_EQ(Parse({"-l", "five", "-h"}).result.status, VxCliParseResult::Status::Help);
    EXPECT_EQ(Parse({"--bogus", "-h"}).result.status, VxCliParseResult::Status::Error);
}

TEST(CliOptionsTest, HandleKindsAndTheirModes) {
    for (const char* word : {"frame", "rotate", "position", "position:0", "position:7"}) {
        const Parsed p = Parse({"--handle", word});
        ASSERT_TRUE(Runs(p)) << word;
        EXPECT_EQ(p.options.handle, word);
    }
    EXPECT_EQ(Parse({"--handle=position:3"}).options.handle, "position:3");
    EXPECT_TRUE(Parse({}).options.handle.empty());
    // Modes run from 0 to 7, one digit; names are exact.
    for (const char* bad : {"position:8", "position:", "position:-1", "position:07", "Frame",
                            "frames", "position3", "rotate:1", ""}) {
        const std::string e = ErrorOf({"--handle", bad});
        EXPECT_TRUE(Contains(e, "--handle")) << bad << ": " << e;
    }
    EXPECT_TRUE(Contains(VxCliHelpText(), "--handle KIND"));
    EXPECT_TRUE(Contains(VxCliHelpText(), "position:N"));
}

TEST(CliOptionsTest, HelpTextExplainsEveryOptionAndChoice) {
    const std::string help = VxCliHelpText();
    for (const char* name :
         {"--size",   "-s,",          "--layout", "-l,",      "--path",      "--display",    "-d,",
          "--jaws",   "-j,",          "--step",   "--select", "--highlight", "--background", "-b,",
          "--output", "-o,",          "--seed",   "--quiet",  "-q,",         "--help",       "-h,",
          "CASE_DIR", "--write-case", "--editor", "--picture"}) {
        EXPECT_TRUE(Contains(help, name)) << name;
    }
    for (const char* word :
         {"single", "jaws",        "compare", "four",    "five",  "fixed",    "shader",
          "solid",  "solid+edges", "edges",   "points",  "upper", "lower",    "both",
          "all",    "last",        "A-B",     "profile", "xray",  "panoramic"}) {
        EXPECT_TRUE(Contains(help, word)) << word;
    }
    // Every line fits a terminal.
    std::size_t start = 0;
    while (start < help.size()) {
        const std::size_t end = help.find('\n', start);
        const std::size_t len = (end == std::string::npos ? help.size() : end) - start;
        EXPECT_LE(len, 100u) << help.substr(start, len);
        start = end == std::string::npos ? help.size() : end + 1;
    }
}

TEST(CliOptionsTest, OutputNames) {
    VxCliOptions o;
    o.layout = VxAppLayout::Five;
    EXPECT_EQ(VxCliOutputPath(o, 3, false, 3), "vxrender_five.png");
    EXPECT_EQ(VxCliOutputPath(o, 3, true, 12), "vxrender_five_step03.png");
    EXPECT_EQ(VxCliOutputPath(o, 7, true, 120), "vxrender_five_step007.png");
    o.output = "pics/a.png";
    EXPECT_EQ(VxCliOutputPath(o, 0, false, 0), "pics/a.png");
    EXPECT_EQ(VxCliOutputPath(o, 4, true, 9), "pics/a_step04.png");
    o.output = "pics/a";
    EXPECT_EQ(VxCliOutputPath(o, 0, false, 0), "pics/a.png");
    o.output = "pics/";
    EXPECT_EQ(VxCliOutputPath(o, 0, false, 0), "pics/five.png");
    EXPECT_EQ(VxCliOutputPath(o, 11, true, 11), "pics/five_step11.png");
    // An existing directory without the slash is still a directory.
    const std::string dir = VxTestOutputDir() + "/cli_options_dir";
    std::filesystem::create_directories(dir);
    o.output = dir;
    o.layout = VxAppLayout::Compare;
    EXPECT_EQ(VxCliOutputPath(o, 1, false, 1), dir + "/compare.png");
}

TEST(CliOptionsTest, OverlaysByNameListOrAllAndAnUnknownNameIsOneError) {
    Parsed p = Parse({"--overlay", "numbers,marks", "--overlay=facc,numbers"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.overlays, (std::vector<std::string>{"numbers", "marks", "facc"}));
    p = Parse({"--overlay", "all"});
    ASSERT_TRUE(Runs(p));
    ASSERT_EQ(p.options.overlays.size(), 21u);
    EXPECT_EQ(p.options.overlays.front(), "numbers");
    EXPECT_EQ(p.options.overlays[16], "panoramic");
    EXPECT_EQ(p.options.overlays.back(), "grid");
    for (const std::string& name : p.options.overlays) {
        EXPECT_TRUE(Contains(VxCliHelpText(), name)) << name << " is named in --help";
    }
    const std::string error = ErrorOf({"--overlay", "numbers,teeth"});
    EXPECT_TRUE(Contains(error, "--overlay")) << error;
    EXPECT_TRUE(Contains(error, "'teeth'")) << error;
    EXPECT_TRUE(Contains(error, "panoramic")) << error << " lists the known names";
    EXPECT_FALSE(Contains(ErrorOf({"--overlay", "numbers,,marks"}), "'numbers'"));
    // The cache's labels, contacts and grid share the option and the list.
    p = Parse({"--overlay", "ipr,collision", "--overlay=grid,numbers"});
    ASSERT_TRUE(Runs(p));
    EXPECT_EQ(p.options.overlays,
              (std::vector<std::string>{"ipr", "collision", "grid", "numbers"}));
    EXPECT_TRUE(Contains(ErrorOf({"--overlay", "ipr,"}), "--overlay"));
    EXPECT_TRUE(Contains(ErrorOf({"--overlay="}), "--overlay"));
    for (const char* name : {"ipr", "collision", "attachments", "grid"}) {
        EXPECT_TRUE(Contains(VxCliHelpText(), name)) << name;
    }
}
