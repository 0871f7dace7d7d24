// VxPathHelper: splitting and converting the file paths the library builds for files beside
// itself (colour INI files, textures, fonts). Pure string work: nothing here touches the file
// system, checks existence or resolves links.
#pragma once

#include <interfaces/CString.h>

#include <string>

class VxPathHelper {
public:
    // Everything before the last separator ('/' or '\\'), without trailing separators, so that
    // directory + L"\\teeth.bmp" names a file inside it. "/usr/lib/libvx.so" gives "/usr/lib",
    // "C:\\app\\vx.dll" gives "C:\\app", "/libvx.so" gives "" (joining then yields "/teeth.bmp"),
    // and a bare file name gives "." (the working directory).
    static CString GetDirectory(const CString& path);

    // The last component, after the last separator ("" when the path ends with one).
    static CString GetFileName(const CString& path);

    // Turns every backslash into '/'. The library joins names the Windows way,
    // directory + L"\\teeth.bmp"; on Linux a backslash is an ordinary file-name character, so
    // "/opt/vx\\teeth.bmp" would name a file called "vx\teeth.bmp" in /opt and never be found.
    // Apply this to every joined path before it reaches open(), stbi_load or FreeType.
    static CString ToNativePath(const CString& path);
    static std::string ToNativePath(const std::string& path);
};
