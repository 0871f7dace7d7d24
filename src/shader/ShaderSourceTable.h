// ShaderSourceTable: the GLSL 3.30 texts of every shader-path program, held inside the library so
// that no shader is ever read from disk. One ordered map from source name to text, filled once at
// static initialisation and never changed. Lookups go through the map's subscript, so a misspelt
// name yields an empty source (and a compile record) rather than a crash.
#pragma once

#include <map>
#include <string>

class ShaderSourceTable {
public:
    // The whole table (25 entries).
    static std::map<std::string, std::string>& Table();
    // Table()[name]: the text, or "" for a name the table does not hold.
    static const std::string& Source(const std::string& name);
};
