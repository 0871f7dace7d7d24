// VxMaterialIni: the three colour INI files beside the library ("ColorRenderTooth.ini",
// "ColorRenderJaw.ini", "ColorRenderGum.ini") and the operations that rewrite the tooth, jaw and
// gum records of VxFixedMaterial from them. The drawers call them on every draw of an object in
// its default state, so an edited file shows at the next frame.
//
// Cost: a file is parsed again only when its stamp (existence, size, modification time) differs
// from the one it had at the last parse; otherwise the values of that parse are written back
// into the record, which is what a parse would have given. A file whose modification time lies
// within kRacyWindowNs of the moment it was read keeps being parsed, since a second edit inside
// the file system's timestamp granularity could otherwise go unnoticed.
// It does not watch files and never writes one.
#pragma once

#include <cstdint>
#include <string>

class VxFixedMaterial;

class VxMaterialIni {
public:
    // Each rewrites one record. A file that cannot be loaded leaves the record as it is (compiled
    // defaults at first); a loaded file sets all seventeen values, a missing or non-numeric key
    // giving 0.
    static void ReadToothColorIni();
    static void ReadJawColorIni();
    static void ReadGumColorIni();

    // The parse itself, from INI text, with section prefix "TOOTH", "JAW" or "GUM".
    static void ParseInto(const std::string& text, const std::string& prefix,
                          VxFixedMaterial& record);

    // How many times a file was really parsed since the process started (all three files).
    static std::uint64_t ParseCount();
    // Forgets the stamps, so the next read of each file parses it.
    static void ForgetStamps();

    static constexpr std::int64_t kRacyWindowNs = 3000000000LL;
};
