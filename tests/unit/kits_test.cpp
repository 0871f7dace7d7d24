// Path splitting, collision labels and the hit-precision option: the small services the overlays
// and the asset loaders lean on.
#include <interfaces/VxPathHelper.h>
#include <interfaces/VxSystemOption.h>
#include <interfaces/VxUtility.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

namespace {
std::wstring Dir(const wchar_t* path) {
    return VxPathHelper::GetDirectory(CString(path)).Str();
}
} // namespace

TEST(VxPathHelperTest, GetDirectoryAcceptsBothSeparators) {
    EXPECT_EQ(Dir(L"/usr/lib/vxrender/libvxrender.so"), L"/usr/lib/vxrender");
    EXPECT_EQ(Dir(L"C:\\Program Files\\App\\vxrender.dll"), L"C:\\Program Files\\App");
    EXPECT_EQ(Dir(L"/opt/app\\sub\\file.ini"), L"/opt/app\\sub");
    EXPECT_EQ(Dir(L"relative/dir/file"), L"relative/dir");
    EXPECT_EQ(Dir(L"a//b"), L"a");             // doubled separators do not leave one behind
    EXPECT_EQ(Dir(L"/opt/app/"), L"/opt/app"); // a directory path gives itself
    EXPECT_EQ(Dir(L"/libvx.so"), L"");         // root: joining "\\x" then gives "/x"
    EXPECT_EQ(Dir(L"libvx.so"), L".");         // no directory part: the working directory
    EXPECT_EQ(Dir(L""), L".");
    EXPECT_EQ(VxPathHelper::GetFileName(CString(L"/a/b\\teeth.bmp")).Str(), L"teeth.bmp");
    EXPECT_EQ(VxPathHelper::GetFileName(CString(L"/a/b/")).Str(), L"");
}

TEST(VxPathHelperTest, JoinedWindowsStyleNameOpensAfterConversion) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::path(VxTestOutputDir()) / "kits_test_assets";
    fs::create_directories(dir);
    std::ofstream(dir / "teeth.bmp") << "BM";
    const CString module = CString::FromUtf8((dir / "libvxrender.so").string());

    // The way the library forms the name of a file beside itself.
    const CString joined = VxPathHelper::GetDirectory(module) + L"\\teeth.bmp";
    EXPECT_FALSE(fs::exists(fs::path(joined.ToUtf8()))) << "a backslash is no separator here";
    const CString native = VxPathHelper::ToNativePath(joined);
    EXPECT_TRUE(fs::exists(fs::path(native.ToUtf8()))) << native.ToUtf8();
    EXPECT_EQ(VxPathHelper::ToNativePath(std::string("d\\pngofcreatemodify\\a.png")),
              "d/pngofcreatemodify/a.png");
    fs::remove_all(dir);
}

TEST(VxUtilityTest, FormatCollisionGivesTwoDecimalsWithSign) {
    EXPECT_EQ(VxUtility::FormatCollision(0.25).Str(), L"0.25");
    EXPECT_EQ(VxUtility::FormatCollision(1.5).Str(), L"1.50");
    EXPECT_EQ(VxUtility::FormatCollision(0.0).Str(), L"0.00");
    EXPECT_EQ(VxUtility::FormatCollision(-0.3).Str(), L"-0.30");
    EXPECT_EQ(VxUtility::FormatCollision(0.126).Str(), L"0.13");
    EXPECT_EQ(VxUtility::FormatCollision(12.0).Str(), L"12.00");
    // Nothing that rounds to zero shows a minus sign.
    EXPECT_EQ(VxUtility::FormatCollision(-0.001).Str(), L"0.00");
    EXPECT_EQ(VxUtility::FormatCollision(-0.0).Str(), L"0.00");
    EXPECT_EQ(VxUtility::FormatCollision(-0.006).Str(), L"-0.01");
    EXPECT_EQ(VxUtility::FormatCollision(std::numeric_limits<double>::quiet_NaN()).Str(), L"");
    EXPECT_EQ(VxUtility::FormatCollision(std::numeric_limits<double>::infinity()).Str(), L"");
}

TEST(VxUtilityTest, FormatCollisionIgnoresTheProcessLocale) {
    const char* names[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"};
    const std::string old = std::setlocale(LC_ALL, nullptr);
    const char* got = nullptr;
    for (const char* n : names) {
        if ((got = std::setlocale(LC_ALL, n)) != nullptr) {
            break;
        }
    }
    if (!got) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    std::locale::global(std::locale(""));
    const std::wstring text = VxUtility::FormatCollision(0.25).Str();
    std::locale::global(std::locale::classic());
    std::setlocale(LC_ALL, old.c_str());
    EXPECT_EQ(text, L"0.25");
}

TEST(VxSystemOptionTest, HitPrecisionDefaultsToFivePixelsAndFollowsTheHost) {
    VxSystemOption* o = VxSystemOption::GetInstance();
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o, VxSystemOption::GetInstance());
    EXPECT_EQ(o->GetHitPrecision(), 5);
    o->SetHitPrecision(9);
    EXPECT_EQ(VxSystemOption::GetInstance()->GetHitPrecision(), 9);
    o->SetHitPrecision(-3);
    EXPECT_EQ(o->GetHitPrecision(), 0);
    o->SetHitPrecision(5);
}
