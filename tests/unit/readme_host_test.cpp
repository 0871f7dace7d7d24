// The README's host code is the code of examples/minimal_host, which the package test builds
// against the installed library and runs: a host that copies the README gets a program that is
// known to work. The example marks its host part with "// --- host: begin" and "// --- host: end";
// the README holds the same lines, one indentation level less, in the code block that follows
// its "host code" marker.
#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Lines(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);) {
        out.push_back(line);
    }
    return out;
}

std::vector<std::string> ExampleHostLines(const std::vector<std::string>& lines) {
    std::vector<std::string> out;
    bool inside = false;
    for (const std::string& line : lines) {
        if (line.find("// --- host: end") != std::string::npos) {
            break;
        }
        if (inside) {
            out.push_back(line.compare(0, 4, "    ") == 0 ? line.substr(4) : line);
        }
        if (line.find("// --- host: begin") != std::string::npos) {
            inside = true;
        }
    }
    return out;
}

std::vector<std::string> ReadmeHostLines(const std::vector<std::string>& lines) {
    std::vector<std::string> out;
    size_t i = 0;
    while (i < lines.size() && lines[i].find("<!-- host code:") == std::string::npos) {
        ++i;
    }
    while (i < lines.size() && lines[i].compare(0, 3, "```") != 0) {
        ++i;
    }
    for (++i; i < lines.size() && lines[i].compare(0, 3, "```") != 0; ++i) {
        out.push_back(lines[i]);
    }
    return out;
}

} // namespace

TEST(ReadmeHostTest, ReadmeShowsTheExamplesHostCodeWordForWord) {
    const std::string root = VxTestSourceDir() + "/..";
    const std::vector<std::string> example =
        ExampleHostLines(Lines(root + "/examples/minimal_host/main.cpp"));
    const std::vector<std::string> readme = ReadmeHostLines(Lines(root + "/README.md"));
    ASSERT_GT(example.size(), 20u) << "no host markers in examples/minimal_host/main.cpp";
    ASSERT_FALSE(readme.empty()) << "no host code block in README.md";
    const size_t n = std::min(example.size(), readme.size());
    for (size_t i = 0; i < n; ++i) {
        ASSERT_EQ(readme[i], example[i]) << "README host code differs at its line " << i + 1;
    }
    EXPECT_EQ(readme.size(), example.size());
}
