// VxModulePath: dladdr on one of the library's own functions names the file it was loaded from.
#include <platform/VxModulePath.h>

#include <interfaces/VxPathHelper.h>

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>

#include <string>

CString VxModulePath::LibraryPath() {
    Dl_info info{};
    // Any function of this library resolves to the library's own file, not to the program's.
    if (!dladdr(reinterpret_cast<void*>(&VxModulePath::LibraryPath), &info) || !info.dli_fname) {
        return CString();
    }
    // dli_fname is the name the loader was given, which may be relative or a symlink
    // (libvxrender.so -> libvxrender.so.0); the directory is the same either way, but a full
    // path is what callers expect.
    char resolved[PATH_MAX];
    const char* path = ::realpath(info.dli_fname, resolved) ? resolved : info.dli_fname;
    return CString::FromUtf8(path);
}

CString VxModulePath::Directory() {
    const CString path = LibraryPath();
    return path.IsEmpty() ? CString() : VxPathHelper::GetDirectory(path);
}

CString VxModulePath::FileBesideLibrary(const wchar_t* suffix) {
    std::wstring name(suffix ? suffix : L"");
    for (wchar_t& c : name) {
        if (c == L'\\') {
            c = L'/';
        }
    }
    size_t first = name.find_first_not_of(L'/');
    name = first == std::wstring::npos ? std::wstring() : name.substr(first);
    std::wstring dir = Directory().Str();
    if (dir.empty() || dir.back() != L'/') {
        dir += L'/';
    }
    return CString(dir + name);
}

unsigned long GetModuleFileNameW(void* /*module*/, wchar_t* buffer, unsigned long size) {
    if (!buffer || size == 0) {
        return 0;
    }
    const CString full = VxModulePath::LibraryPath();
    const std::wstring& path = full.Str();
    if (path.empty()) {
        buffer[0] = L'\0';
        return 0;
    }
    const size_t n = path.size() < size - 1 ? path.size() : size - 1;
    path.copy(buffer, n);
    buffer[n] = L'\0';
    return static_cast<unsigned long>(n);
}
