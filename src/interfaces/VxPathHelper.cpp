// VxPathHelper: both separators are accepted everywhere because paths reach us from two
// directions: the module path from the platform layer ('/') and names joined by the library
// with '\\'. Drive letters and UNC prefixes get no special treatment.
#include <interfaces/VxPathHelper.h>

#include <algorithm>
#include <string>

namespace {

bool IsSeparator(wchar_t c) {
    return c == L'/' || c == L'\\';
}

} // namespace

CString VxPathHelper::GetDirectory(const CString& path) {
    const std::wstring& s = path.Str();
    const auto last = std::find_if(s.rbegin(), s.rend(), IsSeparator);
    if (last == s.rend()) {
        return CString(L".");
    }
    std::wstring dir(s.begin(), last.base() - 1);
    while (!dir.empty() && IsSeparator(dir.back())) {
        dir.pop_back();
    }
    return CString(dir);
}

CString VxPathHelper::GetFileName(const CString& path) {
    const std::wstring& s = path.Str();
    const auto last = std::find_if(s.rbegin(), s.rend(), IsSeparator);
    return CString(std::wstring(last.base(), s.end()));
}

CString VxPathHelper::ToNativePath(const CString& path) {
    std::wstring s = path.Str();
    std::replace(s.begin(), s.end(), L'\\', L'/');
    return CString(s);
}

std::string VxPathHelper::ToNativePath(const std::string& path) {
    std::string s = path;
    std::replace(s.begin(), s.end(), '\\', '/');
    return s;
}
