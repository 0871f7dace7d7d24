// VxFileSystem: stat-based answers; backslashes become slashes before any system call.
#include <platform/VxFileSystem.h>

#include <interfaces/CString.h>
#include <interfaces/VxPathHelper.h>

#include <sys/stat.h>

namespace {

bool StatPath(const wchar_t* path, struct stat* info) {
    if (!path || !*path) {
        return false;
    }
    const std::string native = VxFileSystem::ToNativePath(path);
    return ::stat(native.c_str(), info) == 0;
}

} // namespace

std::string VxFileSystem::ToNativePath(const wchar_t* path) {
    if (!path) {
        return std::string();
    }
    return VxPathHelper::ToNativePath(CString(path)).ToUtf8();
}

bool VxFileSystem::Exists(const wchar_t* path) {
    struct stat info;
    return StatPath(path, &info);
}

bool VxFileSystem::IsDirectory(const wchar_t* path) {
    struct stat info;
    return StatPath(path, &info) && S_ISDIR(info.st_mode);
}

bool VxFileSystem::FileSize(const wchar_t* path, std::uint64_t* size) {
    struct stat info;
    if (!StatPath(path, &info) || !S_ISREG(info.st_mode)) {
        return false;
    }
    if (size) {
        *size = static_cast<std::uint64_t>(info.st_size);
    }
    return true;
}

VxFileStamp VxFileSystem::Stamp(const wchar_t* path) {
    VxFileStamp stamp;
    struct stat info;
    if (!StatPath(path, &info)) {
        return stamp;
    }
    stamp.exists = true;
    stamp.size = static_cast<std::uint64_t>(info.st_size);
    stamp.modifiedNs = static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000LL +
                       static_cast<std::int64_t>(info.st_mtim.tv_nsec);
    return stamp;
}

bool PathFileExistsW(const wchar_t* path) {
    return VxFileSystem::Exists(path);
}
