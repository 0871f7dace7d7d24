// VxDrawerFiles: names beside the library, with the tests' directory override.
#include <mesh/VxDrawerFiles.h>

#include <platform/VxFileSystem.h>
#include <platform/VxModulePath.h>

namespace {
CString& OverrideDirectory() {
    static CString directory;
    return directory;
}

// Asked of the dynamic loader once: the library does not move while it is loaded, and the
// question (dladdr, then realpath over every path component) costs more than the file test that
// follows it at every draw.
const CString& LibraryDirectory() {
    static const CString directory = VxModulePath::Directory();
    return directory;
}

} // namespace

CString VxDrawerFiles::Path(const wchar_t* suffix) {
    const CString& over = OverrideDirectory();
    const CString& dir = over.IsEmpty() ? LibraryDirectory() : over;
    std::wstring name(suffix ? suffix : L"");
    while (!name.empty() && (name.front() == L'\\' || name.front() == L'/')) {
        name.erase(0, 1);
    }
    for (wchar_t& c : name) {
        if (c == L'\\') {
            c = L'/';
        }
    }
    return dir + L"/" + CString(name);
}

bool VxDrawerFiles::TeethBitmapExists() {
    return PathFileExistsW(Path(L"\\teeth.bmp").Str().c_str());
}

bool VxDrawerFiles::GumBitmapExists() {
    return PathFileExistsW(Path(L"\\gum.bmp").Str().c_str());
}

void VxDrawerFiles::SetDirectoryOverride(const CString& directory) {
    OverrideDirectory() = directory;
}
