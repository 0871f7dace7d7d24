// The colour files of the fixed-function records, without GL: how a file's text becomes a
// record (missing keys zero, junk zeroes, numbers stop at the first stray character, values
// clamp), the compiled records, that a missing file leaves the record alone, and that an edit is
// seen at the next read while an unchanged file is not parsed again. Also the names beside the
// library, the selection names and the attachment colour rule.
#include "VxTestPaths.h"

#include <interfaces/VxAttachment.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxAttachmentDrawer.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxSelectNames.h>
#include <platform/VxModulePath.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <fstream>

namespace {

const char* kFullTooth = "[TOOTH_AMBIENT]\nR=1\nG=2\nB=3\nA=4\n"
                         "[TOOTH_DIFFUSE]\nR=5\nG=6\nB=7\nA=8\n"
                         "[TOOTH_SPECULAR]\nR=9\nG=10\nB=11\nA=12\n"
                         "[TOOTH_EMISSION]\nR=13\nG=14\nB=15\nA=16\n"
                         "[TOOTH_SHINNESS]\nV=17\n";

TEST(MeshMaterialIniTest, TextBecomesARecord) {
    VxFixedMaterial m = VxFixedMaterial::ToothDefault();
    VxMaterialIni::ParseInto(kFullTooth, "TOOTH", m);
    EXPECT_EQ(m.m_ambient, VxColor(1, 2, 3, 4));
    EXPECT_EQ(m.m_diffuse, VxColor(5, 6, 7, 8));
    EXPECT_EQ(m.m_specular, VxColor(9, 10, 11, 12));
    EXPECT_EQ(m.m_emission, VxColor(13, 14, 15, 16));
    EXPECT_FLOAT_EQ(m.m_shininess, 17.0f);

    // Another file's sections are not this one's: everything zero.
    m = VxFixedMaterial::ToothDefault();
    VxMaterialIni::ParseInto(kFullTooth, "JAW", m);
    EXPECT_EQ(m.m_ambient, VxColor(0, 0, 0, 0));
    EXPECT_EQ(m.m_emission, VxColor(0, 0, 0, 0));
    EXPECT_FLOAT_EQ(m.m_shininess, 0.0f);

    // Section and key case do not matter; junk gives 0, "12abc" gives 12, out-of-range values
    // clamp, a missing key zeroes only its channel.
    m = VxFixedMaterial::GumDefault();
    VxMaterialIni::ParseInto("[gum_ambient]\nr=12abc\ng=abc\nb=-7\na=999\n"
                             "[GUM_DIFFUSE]\nR=1\nB=3\nA=4\n[GUM_SHINNESS]\nV=64.9\n",
                             "GUM", m);
    EXPECT_EQ(m.m_ambient, VxColor(12, 0, 0, 255));
    EXPECT_EQ(m.m_diffuse, VxColor(1, 0, 3, 4));
    EXPECT_EQ(m.m_specular, VxColor(0, 0, 0, 0));
    EXPECT_FLOAT_EQ(m.m_shininess, 64.0f);
}

TEST(MeshMaterialIniTest, RecordsHoldTheirCompiledValues) {
    // Spot checks of the records' distinctive channels; a typo in any table row shows here.
    EXPECT_EQ(VxFixedMaterial::ToothDefault().m_emission, VxColor(153, 143, 133, 255));
    EXPECT_FLOAT_EQ(VxFixedMaterial::ToothDefault().m_shininess, 100.0f);
    EXPECT_EQ(VxFixedMaterial::GumDefault().m_specular, VxColor(38, 13, 13, 25));
    EXPECT_FLOAT_EQ(VxFixedMaterial::GumDefault().m_shininess, 128.0f);
    EXPECT_EQ(VxFixedMaterial::JawDefault().m_diffuse, VxColor(178, 178, 178, 255));
    EXPECT_EQ(VxFixedMaterial::JawDefault().m_emission, VxColor(0, 0, 0, 255));
    EXPECT_EQ(VxFixedMaterial::Selected().m_diffuse, VxColor(214, 164, 76, 255));
    EXPECT_EQ(VxFixedMaterial::AuxRed().m_diffuse, VxColor(214, 0, 0, 255));
    EXPECT_EQ(VxFixedMaterial::ToothSelected().m_specular, VxColor(51, 51, 51, 255));
    EXPECT_EQ(VxFixedMaterial::ToothHighlight().m_ambient, VxColor(76, 102, 204, 153));
    EXPECT_EQ(VxFixedMaterial::ToothKind2().m_diffuse, VxColor(115, 115, 115, 255));
    EXPECT_EQ(VxFixedMaterial::ToothKind3().m_diffuse, VxColor(128, 128, 230, 255));
    EXPECT_EQ(VxFixedMaterial::ToothKind5().m_diffuse, VxColor(204, 21, 227, 255));
    EXPECT_EQ(VxFixedMaterial::ToothLocked().m_diffuse, VxColor(153, 153, 153, 255));
    EXPECT_EQ(VxFixedMaterial::Attachment().m_emission, VxColor(76, 52, 51, 255));
    EXPECT_EQ(VxFixedMaterial::Attachment().m_specular, VxColor(10, 3, 3, 25));
}

class MeshMaterialFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string dir = VxTestOutputDir() + "/mesh_material_ini_files";
        ::mkdir(dir.c_str(), 0755);
        m_path = dir + "/ColorRenderTooth.ini";
        std::remove(m_path.c_str());
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(dir));
        VxFixedMaterial::Tooth() = VxFixedMaterial::ToothDefault();
        VxMaterialIni::ForgetStamps();
    }
    void TearDown() override {
        VxDrawerFiles::SetDirectoryOverride(CString());
        VxFixedMaterial::Tooth() = VxFixedMaterial::ToothDefault();
        VxMaterialIni::ForgetStamps();
    }
    void Write(const std::string& text, long ageSeconds) {
        std::ofstream(m_path) << text;
        // Back-dated beyond the racy window, so the cache may trust the stamp.
        const time_t t = time(nullptr) - ageSeconds;
        utimbuf times{t, t};
        ::utime(m_path.c_str(), &times);
    }
    std::string m_path;
};

TEST_F(MeshMaterialFileTest, MissingFileKeepsTheRecord) {
    VxMaterialIni::ReadToothColorIni();
    VxMaterialIni::ReadGumColorIni();
    VxMaterialIni::ReadJawColorIni();
    EXPECT_EQ(VxFixedMaterial::Tooth().m_ambient, VxColor(110, 110, 110, 153));
    EXPECT_EQ(VxFixedMaterial::Tooth().m_diffuse, VxColor(60, 60, 60, 255));
    EXPECT_FLOAT_EQ(VxFixedMaterial::Tooth().m_shininess, 100.0f);
    EXPECT_EQ(VxFixedMaterial::Gum().m_emission, VxColor(153, 104, 102, 255));
    EXPECT_EQ(VxFixedMaterial::Jaw().m_ambient, VxColor(153, 153, 153, 153));
}

TEST_F(MeshMaterialFileTest, EditsAreSeenAndUnchangedFilesAreNotParsedAgain) {
    const std::uint64_t before = VxMaterialIni::ParseCount();
    // Reads the file and says how many parses it took since the start and what diffuse came.
    auto read = [&]() {
        VxMaterialIni::ReadToothColorIni();
        return std::make_pair(VxMaterialIni::ParseCount() - before,
                              VxFixedMaterial::Tooth().m_diffuse);
    };
    using Seen = std::pair<std::uint64_t, VxColor>;
    Write(kFullTooth, 100);
    EXPECT_EQ(read(), Seen(1, VxColor(5, 6, 7, 8)));

    // Unchanged: no parse, but the record gets the file's values back even if someone wrote it.
    VxFixedMaterial::Tooth().m_diffuse = VxColor(99, 99, 99, 99);
    for (int i = 0; i < 9; ++i) {
        read();
    }
    EXPECT_EQ(read(), Seen(1, VxColor(5, 6, 7, 8)));

    // Same size, other time: parsed again.
    std::string edited = kFullTooth;
    edited.replace(edited.find("R=5"), 3, "R=6");
    Write(edited, 50);
    EXPECT_EQ(read(), Seen(2, VxColor(6, 6, 7, 8)));

    // Just written (inside the racy window): parsed at every read until it has settled, so two
    // edits within one timestamp tick cannot hide the second.
    Write(kFullTooth, 0);
    read();
    EXPECT_EQ(read(), Seen(4, VxColor(5, 6, 7, 8)));

    // Gone: the record keeps the last values; back again with the old stamp: read again.
    std::remove(m_path.c_str());
    EXPECT_EQ(read().second, VxColor(5, 6, 7, 8));
    Write(edited, 50);
    EXPECT_EQ(read().second, VxColor(6, 6, 7, 8));
}

TEST(MeshDrawerFilesTest, FilesLieBesideTheLibrary) {
    VxDrawerFiles::SetDirectoryOverride(CString());
    EXPECT_EQ(VxDrawerFiles::Path(L"\\teeth.bmp").Str(),
              VxModulePath::FileBesideLibrary(L"\\teeth.bmp").Str());
    EXPECT_EQ(VxDrawerFiles::Path(L"\\ColorRenderTooth.ini").Str(),
              VxModulePath::Directory().Str() + L"/ColorRenderTooth.ini");
    VxDrawerFiles::SetDirectoryOverride(CString(L"/tmp/x"));
    EXPECT_EQ(VxDrawerFiles::Path(L"\\gum.bmp").Str(), L"/tmp/x/gum.bmp");
    VxDrawerFiles::SetDirectoryOverride(CString());
}

TEST(MeshSelectNamesTest, NamesLeadBackToTheirObjects) {
    VxSelectNames::Reset();
    VxTooth a, b;
    const unsigned int na = VxSelectNames::NameOf(&a);
    const unsigned int nb = VxSelectNames::NameOf(&b);
    EXPECT_NE(na, 0u);
    EXPECT_NE(nb, 0u);
    EXPECT_NE(na, nb);
    EXPECT_EQ(VxSelectNames::NameOf(&a), na);
    EXPECT_EQ(VxSelectNames::ObjectOf(na), &a);
    EXPECT_EQ(VxSelectNames::ObjectOf(nb), &b);
    EXPECT_EQ(VxSelectNames::ObjectOf(0), nullptr);
    EXPECT_EQ(VxSelectNames::NameOf(nullptr), 0u);
    if (!VxSelectNames::kAddressNames) {
        EXPECT_EQ(VxSelectNames::Count(), 2u);
        EXPECT_EQ(VxSelectNames::ObjectOf(nb + 1), nullptr);
        VxSelectNames::Reset();
        EXPECT_EQ(VxSelectNames::ObjectOf(na), nullptr);
        EXPECT_EQ(VxSelectNames::Count(), 0u);
    }
}

TEST(MeshAttachmentColourTest, FamiliesGetTheFixedBlue) {
    VxTooth tooth(11);
    const std::vector<unsigned char> blue = {0, 173, 239}, own = {11, 22, 33};
    const std::pair<const wchar_t*, bool> cases[] = {
        {L"SK", true},  {L"xSNx", true}, {L"QY-2", true}, {L"ANQ", true},
        {L"LJ", false}, {L"sk", false},  {L"S K", false}, {L"", false}};
    for (const auto& c : cases) {
        VxStdAttach shape(CString(c.first), VxColor(11, 22, 33));
        VxAttachment att(&shape, &tooth);
        std::vector<unsigned char> rgb(3);
        VxAttachmentDrawer::AttachmentColour(&att, rgb.data());
        EXPECT_EQ(rgb, c.second ? blue : own) << CString(c.first).ToUtf8();
    }
    VxAttachment orphan(nullptr, &tooth);
    unsigned char rgb[3] = {1, 1, 1};
    VxAttachmentDrawer::AttachmentColour(&orphan, rgb);
    EXPECT_EQ(rgb[0], 0);
}

} // namespace
