// CString: UTF-8 conversion, searching, slicing and printf-style formatting of the wide string.
// Formatting follows the desktop system's wide printf, which the library's format strings were
// written for: in a wide format %s and %c take wide arguments and %hs, %hc, %S and %C narrow ones.
// On this platform the C library reads %s as narrow, so the format is rewritten before it goes to
// vswprintf (%s -> %ls, %hs and %S -> %s, likewise for c; %I64 -> %ll). %ls and %lc stay wide.
// Narrow arguments go through the C locale: they must be ASCII unless the host set a UTF-8 one.
#include <interfaces/CString.h>

#include <cerrno>
#include <cstdarg>
#include <cwchar>
#include <vector>

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

// Rewrites a desktop-style wide format into the C library's; see the banner.
std::wstring TranslateFormat(const wchar_t* f) {
    std::wstring out;
    for (const wchar_t* p = f; *p; ++p) {
        out += *p;
        if (*p != L'%') {
            continue;
        }
        ++p;
        if (*p == L'%') {
            out += *p;
            continue;
        }
        // Flags, width, precision (digits, '*', '$' of positional arguments).
        while (*p && std::wcschr(L"-+ #0'123456789.*$", *p)) {
            out += *p++;
        }
        // Length modifiers.
        bool narrow = false;
        bool wide = false;
        std::wstring length;
        for (;;) {
            if (*p == L'h') {
                narrow = true;
                length += *p++;
            } else if (*p == L'l' || *p == L'w') {
                wide = true;
                length += L'l';
                ++p;
            } else if (*p == L'I' && p[1] == L'6' && p[2] == L'4') {
                length += L"ll";
                p += 3;
            } else if (*p == L'I' && p[1] == L'3' && p[2] == L'2') {
                p += 3;
            } else if (*p == L'L' || *p == L'q' || *p == L'j' || *p == L'z' || *p == L't') {
                length += *p++;
            } else {
                break;
            }
        }
        if (!*p) {
            out += length;
            break;
        }
        const wchar_t conv = *p;
        if (conv == L's' || conv == L'c') {
            out += narrow ? std::wstring() : std::wstring(L"l");
            out += conv;
        } else if (conv == L'S' || conv == L'C') {
            out += wide ? L"l" : L"";
            out += wchar_t(conv == L'S' ? L's' : L'c');
        } else {
            out += length;
            out += conv;
        }
    }
    return out;
}

} // namespace

CString CString::FromUtf8(const std::string& utf8) {
    std::wstring out;
    out.reserve(utf8.size());
    const auto* s = reinterpret_cast<const unsigned char*>(utf8.data());
    const size_t n = utf8.size();
    size_t i = 0;
    while (i < n) {
        const unsigned char b = s[i];
        if (b < 0x80) {
            out += wchar_t(b);
            ++i;
            continue;
        }
        int need = 0;
        unsigned lo = 0x80;
        unsigned hi = 0xBF;
        char32_t cp = 0;
        if (b >= 0xC2 && b <= 0xDF) {
            need = 1;
            cp = b & 0x1F;
        } else if (b >= 0xE0 && b <= 0xEF) {
            need = 2;
            cp = b & 0x0F;
            lo = b == 0xE0 ? 0xA0 : 0x80; // no overlong forms
            hi = b == 0xED ? 0x9F : 0xBF; // no surrogates
        } else if (b >= 0xF0 && b <= 0xF4) {
            need = 3;
            cp = b & 0x07;
            lo = b == 0xF0 ? 0x90 : 0x80; // no overlong forms
            hi = b == 0xF4 ? 0x8F : 0xBF; // nothing above U+10FFFF
        } else {
            out += kReplacement;
            ++i;
            continue;
        }
        // A broken sequence becomes one replacement character for the bytes that were still a
        // valid beginning, and decoding restarts at the byte that broke it.
        size_t j = i + 1;
        bool ok = true;
        for (int k = 0; k < need; ++k, ++j) {
            const unsigned lower = k == 0 ? lo : 0x80;
            const unsigned upper = k == 0 ? hi : 0xBF;
            if (j >= n || s[j] < lower || s[j] > upper) {
                ok = false;
                break;
            }
            cp = (cp << 6) | (s[j] & 0x3F);
        }
        out += ok ? wchar_t(cp) : kReplacement;
        i = j;
    }
    return CString(out);
}

std::string CString::ToUtf8() const {
    std::string out;
    out.reserve(m_s.size());
    for (wchar_t wc : m_s) {
        char32_t c = char32_t(wc);
        if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) {
            c = kReplacement;
        }
        if (c < 0x80) {
            out += char(c);
        } else if (c < 0x800) {
            out += char(0xC0 | (c >> 6));
            out += char(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += char(0xE0 | (c >> 12));
            out += char(0x80 | ((c >> 6) & 0x3F));
            out += char(0x80 | (c & 0x3F));
        } else {
            out += char(0xF0 | (c >> 18));
            out += char(0x80 | ((c >> 12) & 0x3F));
            out += char(0x80 | ((c >> 6) & 0x3F));
            out += char(0x80 | (c & 0x3F));
        }
    }
    return out;
}

int CString::Find(const wchar_t* text, int start) const {
    if (!text || start < 0 || start > GetLength()) {
        return -1;
    }
    const size_t at = m_s.find(text, size_t(start));
    return at == std::wstring::npos ? -1 : int(at);
}

int CString::Find(wchar_t ch, int start) const {
    if (start < 0 || start >= GetLength()) {
        return -1;
    }
    const size_t at = m_s.find(ch, size_t(start));
    return at == std::wstring::npos ? -1 : int(at);
}

int CString::ReverseFind(wchar_t ch) const {
    const size_t at = m_s.rfind(ch);
    return at == std::wstring::npos ? -1 : int(at);
}

CString CString::Left(int count) const {
    if (count <= 0) {
        return CString();
    }
    return CString(m_s.substr(0, size_t(count)));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    if (first < 0) {
        first = 0;
    }
    if (count <= 0 || first >= GetLength()) {
        return CString();
    }
    return CString(m_s.substr(size_t(first), size_t(count)));
}

void CString::Format(const wchar_t* format, ...) {
    if (!format) {
        m_s.clear();
        return;
    }
    const std::wstring f = TranslateFormat(format);
    // vswprintf says -1 both for a buffer too small and for an argument it cannot convert; the
    // latter sets EILSEQ, and the cap stops the growth for anything else.
    constexpr size_t kCap = size_t(1) << 20;
    std::vector<wchar_t> buffer(256);
    for (;;) {
        va_list args;
        va_start(args, format);
        errno = 0;
        const int n = std::vswprintf(buffer.data(), buffer.size(), f.c_str(), args);
        va_end(args);
        if (n >= 0) {
            m_s.assign(buffer.data(), size_t(n));
            return;
        }
        if (errno == EILSEQ || buffer.size() >= kCap) {
            m_s.clear();
            return;
        }
        buffer.resize(buffer.size() * 4);
    }
}
