// CString: UTF-8 conversion against glibc's own UTF-8 decoder and the Unicode rules for broken
// input, searching and slicing at their edges, and formatting with desktop-style wide formats.
#include <interfaces/CString.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cwchar>
#include <locale.h>
#include <string>

namespace {

const wchar_t R = 0xFFFD;

std::wstring Decode(const std::string& s) {
    return CString::FromUtf8(s).Str();
}

} // namespace

TEST(StringUtf8Test, KnownEncodingsBothWays) {
    struct Case {
        std::wstring text;
        std::string bytes;
    } cases[] = {
        {L"", ""},
        {L"abc", "abc"},
        {std::wstring(1, wchar_t(0xE9)), "\xC3\xA9"},
        {L"\u6977\u4F53_GB2312", "\xE6\xA5\xB7\xE4\xBD\x93_GB2312"},
        {std::wstring(1, wchar_t(0x1F600)), "\xF0\x9F\x98\x80"},
        {std::wstring(1, wchar_t(0x10FFFF)), "\xF4\x8F\xBF\xBF"},
        {std::wstring(1, wchar_t(0xFFFF)), "\xEF\xBF\xBF"},
        {std::wstring(1, wchar_t(0x7FF)) + std::wstring(1, wchar_t(0x800)), "\xDF\xBF\xE0\xA0\x80"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CString(c.text).ToUtf8(), c.bytes);
        EXPECT_EQ(Decode(c.bytes), c.text);
    }
    // A character outside the basic plane is one wchar_t here, not a surrogate pair.
    EXPECT_EQ(CString::FromUtf8("\xF0\x9F\x98\x80").GetLength(), 1);
    // Embedded zero bytes survive both ways.
    const std::string withNul("a\0b", 3);
    EXPECT_EQ(CString::FromUtf8(withNul).ToUtf8(), withNul);
}

TEST(StringUtf8Test, EveryScalarValueRoundTripsAndAgreesWithGlibc) {
    std::wstring all;
    for (wchar_t c = 1; c <= 0x10FFFF; ++c) {
        if (c < 0xD800 || c > 0xDFFF) {
            all += c;
        }
    }
    const std::string utf8 = CString(all).ToUtf8();
    EXPECT_EQ(Decode(utf8), all);

    locale_t utf8Locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t(0));
    if (!utf8Locale) {
        GTEST_SKIP() << "no C.UTF-8 locale to compare with";
    }
    const locale_t previous = uselocale(utf8Locale);
    std::wstring reference(utf8.size() + 1, L'\0');
    const size_t n = std::mbstowcs(&reference[0], utf8.c_str(), reference.size());
    uselocale(previous);
    freelocale(utf8Locale);
    ASSERT_NE(n, size_t(-1));
    reference.resize(n);
    EXPECT_EQ(reference, all);
}

TEST(StringUtf8Test, BrokenInputBecomesReplacementCharacters) {
    // Maximal valid prefixes each give one U+FFFD, as Unicode recommends.
    EXPECT_EQ(Decode("\x80"), std::wstring(1, R));
    EXPECT_EQ(Decode("a\xBF"
                     "b"),
              (std::wstring{L'a', R, L'b'}));
    EXPECT_EQ(Decode("\xC0\xAF"), (std::wstring{R, R}));               // overlong lead byte
    EXPECT_EQ(Decode("\xE0\x80\xAF"), (std::wstring{R, R, R}));        // overlong three bytes
    EXPECT_EQ(Decode("\xED\xA0\x80"), (std::wstring{R, R, R}));        // surrogate
    EXPECT_EQ(Decode("\xF4\x90\x80\x80"), (std::wstring{R, R, R, R})); // above U+10FFFF
    EXPECT_EQ(Decode("\xF5\x80"), (std::wstring{R, R}));
    EXPECT_EQ(Decode("\xE4\xB8"), std::wstring(1, R)); // truncated at the end
    EXPECT_EQ(Decode("\xE4\xB8"
                     "A"),
              (std::wstring{R, L'A'}));
    EXPECT_EQ(Decode("\xF0\x9F\x98"), std::wstring(1, R));
    EXPECT_EQ(Decode("\xFF\xFE"), (std::wstring{R, R}));
    // Values that are not scalar values are written as U+FFFD.
    EXPECT_EQ(CString(std::wstring(1, wchar_t(0xD800))).ToUtf8(), "\xEF\xBF\xBD");
    EXPECT_EQ(CString(std::wstring(1, wchar_t(0x110000))).ToUtf8(), "\xEF\xBF\xBD");
    EXPECT_EQ(CString(std::wstring(1, wchar_t(-1))).ToUtf8(), "\xEF\xBF\xBD");
}

TEST(StringSearchTest, FindLeftAndMidClampLikeTheDesktopClass) {
    const CString s(L"abcabc");
    EXPECT_EQ(s.Find(L"bc"), 1);
    EXPECT_EQ(s.Find(L"bc", 2), 4);
    EXPECT_EQ(s.Find(L"bc", 5), -1);
    EXPECT_EQ(s.Find(L"xyz"), -1);
    EXPECT_EQ(s.Find(L"", 3), 3);
    EXPECT_EQ(s.Find(L"", 6), 6); // the end is a valid start for text
    EXPECT_EQ(s.Find(L"a", 7), -1);
    EXPECT_EQ(s.Find(L"a", -1), -1);
    EXPECT_EQ(s.Find(static_cast<const wchar_t*>(nullptr)), -1);
    EXPECT_EQ(s.Find(L'c'), 2);
    EXPECT_EQ(s.Find(L'c', 3), 5);
    EXPECT_EQ(s.Find(L'c', 6), -1); // but not for a character
    EXPECT_EQ(s.Find(L'c', -2), -1);
    EXPECT_EQ(s.Find(L'z'), -1);
    EXPECT_EQ(s.ReverseFind(L'a'), 3);
    EXPECT_EQ(s.ReverseFind(L'z'), -1);
    EXPECT_EQ(CString().ReverseFind(L'a'), -1);
    const CString path(L"C:\\dir\\lib.so");
    EXPECT_EQ(path.Left(path.ReverseFind(L'\\')), CString(L"C:\\dir"));

    const CString h(L"hello");
    EXPECT_EQ(h.Left(2), CString(L"he"));
    EXPECT_EQ(h.Left(0), CString());
    EXPECT_EQ(h.Left(-3), CString());
    EXPECT_EQ(h.Left(99), h);
    EXPECT_EQ(h.Mid(1), CString(L"ello"));
    EXPECT_EQ(h.Mid(-4), h);
    EXPECT_EQ(h.Mid(5), CString());
    EXPECT_EQ(h.Mid(9), CString());
    EXPECT_EQ(h.Mid(1, 3), CString(L"ell"));
    EXPECT_EQ(h.Mid(3, 99), CString(L"lo"));
    EXPECT_EQ(h.Mid(2, -1), CString());
    EXPECT_EQ(h.Mid(-2, 2), CString(L"he"));
}

TEST(StringFormatTest, DesktopStyleConversionsLongOutputAndSelfReference) {
    CString s;
    s.Format(L"%d", -42);
    EXPECT_EQ(s, CString(L"-42"));
    s.Format(L"[%5.2f|%-4d|%04x|%%]", 3.14159, 7, 255);
    EXPECT_EQ(s, CString(L"[ 3.14|7   |00ff|%]"));
    s.Format(L"%s and %ls", L"wide", L"also wide");
    EXPECT_EQ(s, CString(L"wide and also wide"));
    s.Format(L"%hs/%S", "narrow", "NARROW");
    EXPECT_EQ(s, CString(L"narrow/NARROW"));
    s.Format(L"%c%hc%lc", wchar_t(0x4E2D), 'x', L'y');
    EXPECT_EQ(s, CString(std::wstring{wchar_t(0x4E2D), L'x', L'y'}));
    s.Format(L"%I64d %lld %hd", 1LL << 40, -(1LL << 40), short(-3));
    EXPECT_EQ(s, CString(L"1099511627776 -1099511627776 -3"));
    s.Format(L"%*d|%.*f", 5, 42, 1, 2.25);
    EXPECT_EQ(s, CString(L"   42|2.2"));
    s.Format(L"%s", L"\u6977\u4F53"); // wide text passes untouched in any locale
    EXPECT_EQ(s.ToUtf8(), "\xE6\xA5\xB7\xE4\xBD\x93");

    const std::wstring big(5000, L'x');
    s.Format(L"<%s>%d", big.c_str(), 9);
    EXPECT_EQ(s.GetLength(), 5003);
    EXPECT_EQ(s.Find(L"<x"), 0);
    EXPECT_EQ(s.Mid(5001), CString(L">9"));
    CString t(L"abc");
    t.Format(L"%s%s", t.GetString(), t.GetString());
    EXPECT_EQ(t, CString(L"abcabc"));
    t.Format(nullptr);
    EXPECT_TRUE(t.IsEmpty());
}

TEST(StringFormatTest, UnconvertibleNarrowArgumentGivesEmptyString) {
    // In the C locale a narrow non-ASCII argument cannot be widened; the result is empty, not
    // a crash or a runaway buffer.
    const char* previous = std::setlocale(LC_CTYPE, nullptr);
    const std::string saved = previous ? previous : "C";
    std::setlocale(LC_CTYPE, "C");
    CString s(L"old");
    s.Format(L"%hs", "\xE4\xB8\xAD");
    EXPECT_TRUE(s.IsEmpty());
    std::setlocale(LC_CTYPE, saved.c_str());
}
