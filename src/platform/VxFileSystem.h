// VxFileSystem: the file questions the library asks (does it exist, how big, when changed),
// taking paths in the library's wide-string form with either separator, so a path built as
// directory + L"\\name" works here. It does not open, read or watch files.
#pragma once

#include <cstdint>
#include <string>

// What a file looked like when asked; compared to notice a change (an INI file re-read only
// when its stamp differs). A missing file has exists false and zeros elsewhere.
struct VxFileStamp {
    bool exists = false;
    std::uint64_t size = 0;
    std::int64_t modifiedNs = 0; // nanoseconds since the epoch
    bool operator==(const VxFileStamp& o) const {
        return exists == o.exists && size == o.size && modifiedNs == o.modifiedNs;
    }
    bool operator!=(const VxFileStamp& o) const { return !(*this == o); }
};

class VxFileSystem {
public:
    // UTF-8 path with every backslash turned into a slash. Null gives "".
    static std::string ToNativePath(const wchar_t* path);
    static bool Exists(const wchar_t* path);
    static bool IsDirectory(const wchar_t* path);
    // False (size untouched) when the file is missing or not a regular file.
    static bool FileSize(const wchar_t* path, std::uint64_t* size);
    static VxFileStamp Stamp(const wchar_t* path);
};

// The desktop call the library's code makes: a file or directory is there. Null or empty is not.
bool PathFileExistsW(const wchar_t* path);
