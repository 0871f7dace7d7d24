// CString: a wide (wchar_t) string with the handful of operations the library's interface uses.
// On Linux wchar_t is UTF-32; ToUtf8 gives the form file-system calls take.
#pragma once

#include <string>

class CString {
public:
    CString() = default;
    CString(const wchar_t* s) : m_s(s ? s : L"") {}
    CString(const std::wstring& s) : m_s(s) {}
    CString(const CString&) = default;
    CString& operator=(const CString&) = default;
    // From UTF-8 (invalid sequences become U+FFFD).
    static CString FromUtf8(const std::string& utf8);

    int GetLength() const { return static_cast<int>(m_s.size()); }
    bool IsEmpty() const { return m_s.empty(); }
    void Empty() { m_s.clear(); }
    const wchar_t* GetString() const { return m_s.c_str(); }
    operator const wchar_t*() const { return m_s.c_str(); }
    wchar_t GetAt(int i) const { return m_s[static_cast<size_t>(i)]; }
    const std::wstring& Str() const { return m_s; }

    // Index of the first occurrence at or after start, or -1.
    int Find(const wchar_t* text, int start = 0) const;
    int Find(wchar_t ch, int start = 0) const;
    int ReverseFind(wchar_t ch) const;
    CString Left(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    // printf-style formatting with wide format strings, read as the desktop system reads them:
    // %s and %c take wide arguments (as do %ls and %lc), %hs, %hc, %S and %C narrow ones.
    void Format(const wchar_t* format, ...);
    std::string ToUtf8() const;

    CString operator+(const CString& s) const { return CString(m_s + s.m_s); }
    CString operator+(const wchar_t* s) const { return CString(m_s + (s ? s : L"")); }
    CString& operator+=(const CString& s) {
        m_s += s.m_s;
        return *this;
    }
    bool operator==(const CString& s) const { return m_s == s.m_s; }
    bool operator!=(const CString& s) const { return m_s != s.m_s; }
    bool operator<(const CString& s) const { return m_s < s.m_s; }

private:
    std::wstring m_s;
};

inline CString operator+(const wchar_t* a, const CString& b) {
    return CString(a) + b;
}
