// CIniReader over the dialect of the colour files and over the ways such files get damaged:
// Windows line ends and byte order marks, stray text, binary junk, missing files.
#include <interfaces/CIniReader.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace {

// How the colour loaders read a channel: empty gives the default, anything else is a stream
// extraction into an int.
int Channel(const CIniReader& ini, const char* section, const char* key) {
    const std::string& text = ini.Get(section, key);
    if (text.empty()) {
        return 0;
    }
    int v = 0;
    std::istringstream(text) >> v;
    return v;
}

std::string WriteFile(const std::string& name, const std::string& bytes) {
    const std::filesystem::path p = std::filesystem::path(VxTestOutputDir()) / name;
    std::ofstream(p, std::ios::binary) << bytes;
    return p.string();
}

} // namespace

TEST(CIniReaderTest, SectionsKeysCommentsAndWhitespace) {
    CIniReader ini;
    ASSERT_TRUE(ini.LoadFromString("; colours of the fixed-function tooth\n"
                                   "# another comment\n"
                                   "version = 3\n"
                                   "[TOOTH_AMBIENT]\n"
                                   "R=51\n"
                                   "  G =  76 \t\n"
                                   "B = 102 ; trailing comment\n"
                                   "A=255#not a comment\n"
                                   "\n"
                                   "  [ TOOTH_SHINNESS ]  extra\n"
                                   "V=\"  40 \"\n"
                                   "no equals sign here\n"
                                   "=value without key\n"
                                   "[TOOTH_AMBIENT]\n"
                                   "R=52\n"));
    EXPECT_EQ(Channel(ini, "TOOTH_AMBIENT", "R"), 52); // duplicate key: last wins, sections merge
    EXPECT_EQ(Channel(ini, "TOOTH_AMBIENT", "G"), 76);
    EXPECT_EQ(ini.Get("TOOTH_AMBIENT", "B"), "102");
    EXPECT_EQ(ini.Get("TOOTH_AMBIENT", "A"), "255#not a comment");
    EXPECT_EQ(ini.Get("TOOTH_SHINNESS", "V"), "  40 ");
    EXPECT_EQ(ini.Get("", "version"), "3");
    // Case does not matter, as with the Windows profile functions.
    EXPECT_EQ(ini.Get("tooth_ambient", "g"), "76");
    EXPECT_TRUE(ini.HasSection("Tooth_Shinness"));
    EXPECT_FALSE(ini.HasKey("TOOTH_AMBIENT", ""));
}

TEST(CIniReaderTest, AbsentKeysLineEndsAndByteOrderMark) {
    CIniReader ini;
    EXPECT_TRUE(ini.Get("TOOTH_DIFFUSE", "R").empty()); // nothing loaded yet
    ASSERT_TRUE(ini.LoadFromString("[TOOTH_DIFFUSE]\nR=1\nG=\n"));
    EXPECT_TRUE(ini.Get("TOOTH_DIFFUSE", "B").empty());
    EXPECT_TRUE(ini.Get("JAW_DIFFUSE", "R").empty());
    EXPECT_TRUE(ini.HasKey("TOOTH_DIFFUSE", "G")); // present but empty: the caller's default
    EXPECT_TRUE(ini.Get("TOOTH_DIFFUSE", "G").empty());
    EXPECT_EQ(Channel(ini, "TOOTH_DIFFUSE", "B"), 0);

    ASSERT_TRUE(ini.LoadFromString("\xEF\xBB\xBF[GUM_AMBIENT]\r\nR=200\r\nG=10\r\n"));
    EXPECT_EQ(ini.Get("GUM_AMBIENT", "R"), "200");
    EXPECT_EQ(ini.Get("GUM_AMBIENT", "G"), "10");
    ASSERT_TRUE(ini.LoadFromString("[JAW_EMISSION]\rR=7\rG=8"));
    EXPECT_EQ(ini.Get("JAW_EMISSION", "G"), "8");
    EXPECT_TRUE(ini.Get("GUM_AMBIENT", "R").empty()) << "loading replaces earlier content";
}

TEST(CIniReaderTest, GarbageNeverCrashesAndGoodLinesSurvive) {
    std::mt19937 rng(1234);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 200; ++round) {
        std::string junk;
        const int n = round * 13 % 700;
        for (int i = 0; i < n; ++i) {
            junk.push_back(static_cast<char>(byte(rng)));
        }
        CIniReader ini;
        ASSERT_TRUE(ini.LoadFromString("[S]\nk=v\n" + junk));
        // The junk may open new sections, but cannot reach back into the first line pair unless
        // it names [S] again; the value is always some string, and Get always answers.
        (void)ini.Get("S", "k");
        (void)ini.Get(junk.substr(0, std::min<size_t>(5, n)), junk.substr(std::min<size_t>(5, n)));
        CIniReader plain;
        ASSERT_TRUE(plain.LoadFromString(junk + "\n[S]\nk=v\n"));
        EXPECT_EQ(plain.Get("S", "k"), "v");
    }
    CIniReader ini;
    static const char kNuls[] = "[A\0B]\nk\0=v\0w\n[unterminated\nx=1\n";
    ASSERT_TRUE(ini.LoadFromString(std::string(kNuls, sizeof kNuls - 1)));
    EXPECT_EQ(ini.Get(std::string("A\0B", 3), std::string("k\0", 2)), std::string("v\0w", 3));
    EXPECT_EQ(ini.Get(std::string("A\0B", 3), "x"), "1"); // a broken header changes nothing
    EXPECT_TRUE(ini.LoadFromString(""));
    EXPECT_TRUE(ini.LoadFromString("["));
    EXPECT_TRUE(ini.LoadFromString("="));
    EXPECT_TRUE(ini.LoadFromString("\xEF\xBB"));
}

TEST(CIniReaderTest, LoadReadsFilesAndFailsQuietly) {
    const std::string path = WriteFile("ini_reader_test_colour.ini",
                                       "[JAW_DIFFUSE]\r\nR=120\r\nG=130\r\nB=140\r\nA=255\r\n");
    CIniReader ini;
    ASSERT_TRUE(ini.Load(path));
    EXPECT_EQ(Channel(ini, "JAW_DIFFUSE", "B"), 140);

    EXPECT_FALSE(ini.Load(path + ".missing"));
    EXPECT_TRUE(ini.Get("JAW_DIFFUSE", "B").empty()) << "a failed load leaves nothing loaded";
    EXPECT_FALSE(ini.Load(VxTestOutputDir())); // a directory
    EXPECT_FALSE(ini.Load(""));

    // A name joined the Windows way still finds the file.
    const std::filesystem::path p(path);
    const std::string joined = p.parent_path().string() + "\\" + p.filename().string();
    ASSERT_TRUE(ini.Load(joined));
    EXPECT_EQ(ini.Get("JAW_DIFFUSE", "R"), "120");

    std::filesystem::remove(p);
}
