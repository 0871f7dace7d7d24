// VxMaterialIni: stamp-checked reading of the three colour files.
#include <mesh/VxMaterialIni.h>

#include <interfaces/CIniReader.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxFixedMaterial.h>
#include <platform/VxFileSystem.h>

#include <chrono>
#include <sstream>

namespace {

struct FileCache {
    std::wstring path;
    VxFileStamp stamp;
    bool valid = false; // the values below come from a parse of `path` at `stamp`
    bool racy = true;
    VxFixedMaterial values;
};

std::uint64_t g_parseCount = 0;
FileCache g_tooth, g_jaw, g_gum;

// Empty text gives 0; anything else goes through a stream extraction, which leaves 0 on failure
// and stops at the first character that is not part of a number.
int ReadInt(const CIniReader& ini, const std::string& section, const char* key) {
    const std::string& text = ini.Get(section, key);
    if (text.empty()) {
        return 0;
    }
    int value = 0;
    std::istringstream in(text);
    in >> value;
    return value;
}

VxColor ReadColour(const CIniReader& ini, const std::string& section) {
    // Clamped to 0..255 by VxColor, so a stray value cannot wrap in glMaterial.
    return VxColor(ReadInt(ini, section, "R"), ReadInt(ini, section, "G"),
                   ReadInt(ini, section, "B"), ReadInt(ini, section, "A"));
}

void FromReader(const CIniReader& ini, const std::string& prefix, VxFixedMaterial& record) {
    record.m_ambient = ReadColour(ini, prefix + "_AMBIENT");
    record.m_diffuse = ReadColour(ini, prefix + "_DIFFUSE");
    record.m_specular = ReadColour(ini, prefix + "_SPECULAR");
    record.m_emission = ReadColour(ini, prefix + "_EMISSION");
    record.m_shininess = static_cast<float>(ReadInt(ini, prefix + "_SHINNESS", "V"));
}

std::int64_t NowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

void Read(FileCache& cache, const wchar_t* suffix, const char* prefix, VxFixedMaterial& record) {
    const std::wstring path = VxDrawerFiles::Path(suffix).Str();
    const VxFileStamp stamp = VxFileSystem::Stamp(path.c_str());
    if (cache.valid && !cache.racy && path == cache.path && stamp == cache.stamp) {
        record = cache.values;
        return;
    }
    if (!stamp.exists) {
        // Nothing to load: the record keeps what it had. A later file at this path is new.
        cache.valid = false;
        return;
    }
    // Taken before the read: an edit between here and the load shows as a new stamp next time.
    const std::int64_t now = NowNs();
    CIniReader ini;
    ++g_parseCount;
    if (!ini.Load(VxFileSystem::ToNativePath(path.c_str()))) {
        cache.valid = false;
        return;
    }
    FromReader(ini, prefix, record);
    cache.path = path;
    cache.stamp = stamp;
    cache.values = record;
    cache.valid = true;
    cache.racy = now - stamp.modifiedNs < VxMaterialIni::kRacyWindowNs;
}

} // namespace

void VxMaterialIni::ReadToothColorIni() {
    Read(g_tooth, L"\\ColorRenderTooth.ini", "TOOTH", VxFixedMaterial::Tooth());
}

void VxMaterialIni::ReadJawColorIni() {
    Read(g_jaw, L"\\ColorRenderJaw.ini", "JAW", VxFixedMaterial::Jaw());
}

void VxMaterialIni::ReadGumColorIni() {
    Read(g_gum, L"\\ColorRenderGum.ini", "GUM", VxFixedMaterial::Gum());
}

void VxMaterialIni::ParseInto(const std::string& text, const std::string& prefix,
                              VxFixedMaterial& record) {
    CIniReader ini;
    ini.LoadFromString(text);
    FromReader(ini, prefix, record);
}

std::uint64_t VxMaterialIni::ParseCount() {
    return g_parseCount;
}

void VxMaterialIni::ForgetStamps() {
    g_tooth.valid = g_jaw.valid = g_gum.valid = false;
}
