// CIniReader: reads INI files ("ColorRenderTooth.ini" and friends) into memory and answers
// lookups by section and key. Read-only: it never writes a file back, expands no variables and
// knows no value types; callers parse the text they get.
#pragma once

#include <map>
#include <string>

class CIniReader {
public:
    CIniReader();
    ~CIniReader();
    CIniReader(const CIniReader&) = default;
    CIniReader& operator=(const CIniReader&) = default;

    // Reads the file, replacing whatever was loaded before. False, and nothing loaded, when the
    // file cannot be read: missing, not a regular file, or over 16 MiB (no configuration file is
    // near that; the cap keeps a mistaken path from pulling in a disk image). A path joined with
    // backslashes ("dir\\ColorRenderTooth.ini") is tried as given and then with '/' separators.
    // Malformed lines are skipped, never fatal: a readable file always loads what it can.
    bool Load(const std::string& path);
    // The same parse over text in memory. Always true.
    bool LoadFromString(const std::string& text);
    void Clear();

    // The value, or a reference to an empty string when the section or key is absent. Section and
    // key match without regard to ASCII case, as the Windows profile functions that wrote these
    // files do. The reference stays valid until the next Load, LoadFromString or Clear.
    const std::string& Get(const std::string& section, const std::string& key) const;
    bool HasKey(const std::string& section, const std::string& key) const;
    bool HasSection(const std::string& section) const;

private:
    // Keys are stored folded to lower case; values as written (trimmed).
    std::map<std::string, std::map<std::string, std::string>> m_sections;
};
