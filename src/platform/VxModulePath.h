// VxModulePath: where the loaded library lies, for the files it reads from beside itself. The
// library's code builds names as directory + L"\\teeth.bmp"; FileBesideLibrary takes that suffix
// form and gives "<directory of libvxrender.so>/teeth.bmp". It does not check that a file exists.
#pragma once

#include <interfaces/CString.h>

class VxModulePath {
public:
    // Full path of the loaded shared library (resolved through the dynamic loader), or empty
    // when the loader cannot tell.
    static CString LibraryPath();
    // Directory of LibraryPath, without a trailing separator.
    static CString Directory();
    // Directory joined with a name given with a leading "\\" or "/" (or none); backslashes in
    // the name become slashes.
    static CString FileBesideLibrary(const wchar_t* suffix);
};

// The desktop call the library's code makes with a null module: writes the library's full path
// into buffer (truncated and terminated when it does not fit) and returns the number of
// characters written, not counting the terminator; 0 on failure. The module argument is ignored.
unsigned long GetModuleFileNameW(void* module, wchar_t* buffer, unsigned long size);
