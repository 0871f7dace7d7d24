// VxMeshFile: mesh import with the vertex numbering pinned down per format, and the binary PLY
// writer. Import flow: STL through assimp without post-processing (after a check that the bytes
// are STL, so assimp never falls back to guessing among its other importers), then its corners
// joined; PLY and OBJ through the small readers below; then every coordinate and index checked
// before the mesh is built.
#include "VxMeshFile.h"

#include <interfaces/VxMesh.h>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <unordered_map>
#include <vector>

namespace {

struct Float3 {
    float v[3];
};

// Key of a position for joining: the bit patterns, with -0 taken as +0 so that the two zeros
// join as the values compare.
struct PosKey {
    std::uint32_t b[3];
    bool operator==(const PosKey& o) const {
        return b[0] == o.b[0] && b[1] == o.b[1] && b[2] == o.b[2];
    }
};
struct PosKeyHash {
    std::size_t operator()(const PosKey& k) const {
        std::uint64_t h = 1469598103934665603ull;
        for (std::uint32_t x : k.b) {
            h = (h ^ x) * 1099511628211ull;
        }
        return static_cast<std::size_t>(h);
    }
};
PosKey KeyOf(const Float3& p) {
    PosKey k{};
    for (int i = 0; i < 3; ++i) {
        const float f = p.v[i] == 0.0f ? 0.0f : p.v[i];
        std::memcpy(&k.b[i], &f, sizeof f);
    }
    return k;
}

bool Finite(const Float3& p) {
    return std::isfinite(p.v[0]) && std::isfinite(p.v[1]) && std::isfinite(p.v[2]);
}

const char* Hint(VxMeshFormat format) {
    switch (format) {
    case VxMeshFormat::Stl:
        return "stl";
    case VxMeshFormat::Ply:
        return "ply";
    case VxMeshFormat::Obj:
        return "obj";
    default:
        return "";
    }
}

bool StartsWith(const unsigned char* data, std::size_t size, const char* text) {
    const std::size_t n = std::strlen(text);
    return size >= n && std::memcmp(data, text, n) == 0;
}

// PLY is read here too. assimp 5.2's PLY importer loops forever on a header without
// "end_header" and corrupts its heap on some damaged property lists, and a case file must never
// take the process down. Header, then every element in order; only "vertex" (x, y, z) and the
// "vertex_indices" (or "vertex_index") list of "face" are kept, everything else is read past.
struct PlyProperty {
    std::string name;
    bool isList = false;
    int countType = 0; // size in bytes; sign and float-ness in the two flags below
    int valueType = 0;
    bool countSigned = false;
    bool valueSigned = false;
    bool valueFloat = false;
};
struct PlyElement {
    std::string name;
    unsigned long long count = 0;
    std::vector<PlyProperty> properties;
};

// Size of a PLY scalar type, 0 when unknown.
int PlyTypeSize(const std::string& t, bool& isSigned, bool& isFloat) {
    isSigned =
        t == "char" || t == "int8" || t == "short" || t == "int16" || t == "int" || t == "int32";
    isFloat = t == "float" || t == "float32" || t == "double" || t == "float64";
    if (t == "char" || t == "int8" || t == "uchar" || t == "uint8") {
        return 1;
    }
    if (t == "short" || t == "int16" || t == "ushort" || t == "uint16") {
        return 2;
    }
    if (t == "int" || t == "int32" || t == "uint" || t == "uint32" || t == "float" ||
        t == "float32") {
        return 4;
    }
    if (t == "double" || t == "float64") {
        return 8;
    }
    return 0;
}

class PlyReader {
public:
    PlyReader(const unsigned char* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Read(std::vector<Float3>& positions, std::vector<int>& triangles, std::string& error) {
        if (!ReadHeader(error)) {
            return false;
        }
        if (m_ascii) {
            m_text.assign(reinterpret_cast<const char*>(m_data) + m_pos, m_size - m_pos);
            m_cursor = m_text.c_str();
        }
        bool haveVertices = false;
        for (const PlyElement& e : m_elements) {
            const bool isVertex = e.name == "vertex";
            const bool isFace = e.name == "face";
            int xyz[3] = {-1, -1, -1};
            int indexList = -1;
            for (std::size_t p = 0; p < e.properties.size(); ++p) {
                const PlyProperty& prop = e.properties[p];
                if (isVertex && !prop.isList && prop.name.size() == 1 && prop.name[0] >= 'x' &&
                    prop.name[0] <= 'z') {
                    xyz[prop.name[0] - 'x'] = static_cast<int>(p);
                }
                if (isFace && prop.isList &&
                    (prop.name == "vertex_indices" || prop.name == "vertex_index")) {
                    indexList = static_cast<int>(p);
                }
            }
            if (isVertex) {
                if (xyz[0] < 0 || xyz[1] < 0 || xyz[2] < 0) {
                    error = "header: the vertex element lacks x, y or z";
                    return false;
                }
                haveVertices = true;
            }
            std::vector<double> values;
            for (unsigned long long i = 0; i < e.count; ++i) {
                Float3 v{{0, 0, 0}};
                for (std::size_t p = 0; p < e.properties.size(); ++p) {
                    const PlyProperty& prop = e.properties[p];
                    if (!prop.isList) {
                        double x = 0;
                        if (!Value(prop.valueType, prop.valueSigned, prop.valueFloat, x)) {
                            return Ended(e, i, error);
                        }
                        for (int k = 0; k < 3; ++k) {
                            if (xyz[k] == static_cast<int>(p)) {
                                v.v[k] = static_cast<float>(x);
                            }
                        }
                        continue;
                    }
                    double n = 0;
                    if (!Value(prop.countType, prop.countSigned, false, n)) {
                        return Ended(e, i, error);
                    }
                    // Each list entry takes at least one byte, so a count beyond what is left
                    // is damage, not a reason to allocate.
                    if (n < 0 || n > static_cast<double>(m_size) || n != std::floor(n)) {
                        error = e.name + " " + std::to_string(i) + ": bad list length";
                        return false;
                    }
                    values.clear();
                    for (long long k = 0; k < static_cast<long long>(n); ++k) {
                        double x = 0;
                        if (!Value(prop.valueType, prop.valueSigned, prop.valueFloat, x)) {
                            return Ended(e, i, error);
                        }
                        values.push_back(x);
                    }
                    if (static_cast<int>(p) != indexList) {
                        continue;
                    }
                    if (values.size() < 3) {
                        error = "face " + std::to_string(i) + ": has " +
                                std::to_string(values.size()) + " corners, not a polygon";
                        return false;
                    }
                    for (double x : values) {
                        if (x < 0 || x >= static_cast<double>(INT32_MAX) || x != std::floor(x)) {
                            error = "face " + std::to_string(i) + ": bad vertex id";
                            return false;
                        }
                    }
                    if (triangles.size() / 3 + values.size() >
                        static_cast<std::size_t>(INT32_MAX / 3)) {
                        error = "face " + std::to_string(i) + ": too many faces";
                        return false;
                    }
                    for (std::size_t k = 1; k + 1 < values.size(); ++k) {
                        triangles.push_back(static_cast<int>(values[0]));
                        triangles.push_back(static_cast<int>(values[k]));
                        triangles.push_back(static_cast<int>(values[k + 1]));
                    }
                }
                if (isVertex) {
                    positions.push_back(v);
                }
            }
        }
        if (!haveVertices) {
            error = "header: no vertex element";
            return false;
        }
        return true;
    }

private:
    bool Ended(const PlyElement& e, unsigned long long i, std::string& error) const {
        error = e.name + " " + std::to_string(i) + ": data ended early or is not a number";
        return false;
    }

    bool Value(int size, bool isSigned, bool isFloat, double& out) {
        if (m_ascii) {
            while (*m_cursor == ' ' || *m_cursor == '\t' || *m_cursor == '\n' ||
                   *m_cursor == '\r') {
                ++m_cursor;
            }
            char* next = nullptr;
            out = std::strtod(m_cursor, &next);
            if (next == m_cursor) {
                return false;
            }
            m_cursor = next;
            return true;
        }
        if (m_size - m_pos < static_cast<std::size_t>(size)) {
            return false;
        }
        unsigned char b[8] = {0, 0, 0, 0, 0, 0, 0, 0};
        for (int i = 0; i < size; ++i) {
            b[m_bigEndian ? size - 1 - i : i] = m_data[m_pos + static_cast<std::size_t>(i)];
        }
        m_pos += static_cast<std::size_t>(size);
        std::uint64_t u = 0;
        for (int i = size - 1; i >= 0; --i) {
            u = (u << 8) | b[i];
        }
        if (isFloat) {
            if (size == 4) {
                float f = 0;
                const std::uint32_t u32 = static_cast<std::uint32_t>(u);
                std::memcpy(&f, &u32, 4);
                out = f;
            } else {
                double d = 0;
                std::memcpy(&d, &u, 8);
                out = d;
            }
        } else if (isSigned) {
            const int shift = 64 - 8 * size;
            out = static_cast<double>(static_cast<std::int64_t>(u << shift) >> shift);
        } else {
            out = static_cast<double>(u);
        }
        return true;
    }

    bool ReadHeader(std::string& error) {
        const std::size_t kMaxHeader = 1 << 16;
        std::size_t lineNo = 0;
        bool haveFormat = false;
        std::string line;
        while (m_pos < m_size && m_pos < kMaxHeader) {
            std::size_t end = m_pos;
            while (end < m_size && m_data[end] != '\n') {
                ++end;
            }
            line.assign(reinterpret_cast<const char*>(m_data) + m_pos, end - m_pos);
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            m_pos = std::min(end + 1, m_size);
            ++lineNo;
            std::istringstream words(line);
            std::string word;
            words >> word;
            const std::string where = "header line " + std::to_string(lineNo);
            if (lineNo == 1) {
                if (word != "ply") {
                    error = "header: not a PLY file (no \"ply\" magic)";
                    return false;
                }
                continue;
            }
            if (word == "end_header") {
                if (!haveFormat) {
                    error = "header: no \"format\" line";
                    return false;
                }
                const std::size_t body = m_size - m_pos;
                for (const PlyElement& e : m_elements) {
                    if (e.count > 0 && e.properties.empty()) {
                        error = "header: element \"" + e.name + "\" has no properties";
                        return false;
                    }
                    // Every element takes at least one byte in either encoding.
                    if (e.count > body) {
                        error = "header: element count " + std::to_string(e.count) +
                                " exceeds the " + std::to_string(body) + " bytes of data";
                        return false;
                    }
                }
                return true;
            }
            if (word == "comment" || word == "obj_info" || word.empty()) {
                continue;
            }
            if (word == "format") {
                std::string kind;
                words >> kind;
                if (kind == "ascii") {
                    m_ascii = true;
                } else if (kind == "binary_big_endian") {
                    m_bigEndian = true;
                } else if (kind != "binary_little_endian") {
                    error = where + ": unknown format \"" + kind + "\"";
                    return false;
                }
                haveFormat = true;
            } else if (word == "element") {
                PlyElement e;
                std::string count;
                words >> e.name >> count;
                if (count.empty() || count.size() > 18 ||
                    count.find_first_not_of("0123456789") != std::string::npos) {
                    error = where + ": element count \"" + count + "\" is not a number";
                    return false;
                }
                e.count = std::stoull(count);
                m_elements.push_back(std::move(e));
            } else if (word == "property") {
                if (m_elements.empty()) {
                    error = where + ": property before any element";
                    return false;
                }
                PlyProperty prop;
                std::string type;
                words >> type;
                bool isFloat = false;
                if (type == "list") {
                    std::string countType;
                    words >> countType >> type;
                    prop.isList = true;
                    prop.countType = PlyTypeSize(countType, prop.countSigned, isFloat);
                    if (prop.countType == 0 || isFloat) {
                        error = where + ": list count type \"" + countType + "\" is not an integer";
                        return false;
                    }
                }
                prop.valueType = PlyTypeSize(type, prop.valueSigned, prop.valueFloat);
                words >> prop.name;
                if (prop.valueType == 0 || prop.name.empty()) {
                    error = where + ": unknown property type \"" + type + "\"";
                    return false;
                }
                m_elements.back().properties.push_back(std::move(prop));
            } else {
                error = where + ": unknown keyword \"" + word + "\"";
                return false;
            }
        }
        error = "header: no \"end_header\" in the first 64 KiB";
        return false;
    }

    const unsigned char* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
    bool m_ascii = false;
    bool m_bigEndian = false;
    std::vector<PlyElement> m_elements;
    std::string m_text;
    const char* m_cursor = nullptr;
};

// The shape of an ASCII STL file, checked before assimp sees it. assimp 5.2 allocates a mesh and
// a node for each solid before reading its facets and loses both when it then gives up on a
// damaged file, 2,464 bytes a time; a host that keeps loading damaged files would grow without
// end. Files it would give up on (a facet cut short, a solid without facets, a vertex that is not
// three numbers) are therefore refused here, with the line where the shape breaks.
bool AsciiStlWellFormed(const unsigned char* data, std::size_t size, std::string& error) {
    std::size_t pos = 0;
    std::size_t line = 1;
    std::size_t tokenLine = 1;
    // The next whitespace-separated word; empty at the end of the data.
    const auto next = [&]() {
        while (pos < size && std::isspace(data[pos])) {
            line += data[pos] == '\n';
            ++pos;
        }
        tokenLine = line;
        const std::size_t start = pos;
        while (pos < size && !std::isspace(data[pos])) {
            ++pos;
        }
        return std::string(reinterpret_cast<const char*>(data) + start, pos - start);
    };
    const auto restOfLine = [&]() {
        while (pos < size && data[pos] != '\n') {
            ++pos;
        }
    };
    const auto fail = [&](const std::string& what) {
        error = "line " + std::to_string(tokenLine) + ": " + what;
        return false;
    };
    const auto expect = [&](const char* word) {
        const std::string got = next();
        return got == word ? true
                           : fail(std::string("expected \"") + word + "\", found \"" +
                                  got.substr(0, 32) + "\"");
    };
    const auto numbers = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const std::string word = next();
            char* end = nullptr;
            std::strtod(word.c_str(), &end);
            if (word.empty() || end != word.c_str() + word.size()) {
                return fail("expected a number, found \"" + word.substr(0, 32) + "\"");
            }
        }
        return true;
    };
    std::string word = next();
    if (word != "solid") {
        return fail("expected \"solid\"");
    }
    while (word == "solid") {
        restOfLine(); // the solid's name
        int facets = 0;
        for (word = next(); word == "facet"; word = next(), ++facets) {
            if (!expect("normal") || !numbers(3) || !expect("outer") || !expect("loop")) {
                return false;
            }
            for (int k = 0; k < 3; ++k) {
                if (!expect("vertex") || !numbers(3)) {
                    return false;
                }
            }
            if (!expect("endloop") || !expect("endfacet")) {
                return false;
            }
        }
        if (word != "endsolid") {
            return fail("expected \"facet\" or \"endsolid\", found \"" + word.substr(0, 32) + "\"");
        }
        if (facets == 0) {
            return fail("a solid without facets");
        }
        restOfLine(); // the name again
        word = next();
    }
    return word.empty() ? true : fail("expected \"solid\" or the end of the file");
}

// What assimp is allowed to see. Without this a damaged file would be handed to whichever of
// its other importers claims the bytes.
bool LooksLike(const unsigned char* data, std::size_t size, VxMeshFormat format,
               std::string& error) {
    switch (format) {
    case VxMeshFormat::Ply:
        return true; // PlyReader checks its own header
    case VxMeshFormat::Stl: {
        if (size >= 84) {
            std::uint32_t count = 0;
            std::memcpy(&count, data + 80, 4);
            if (84 + 50 * std::uint64_t(count) == size) {
                return true;
            }
        }
        if (StartsWith(data, size, "solid")) {
            return AsciiStlWellFormed(data, size, error);
        }
        error = "header: neither binary STL (size does not match the triangle count) nor ASCII "
                "STL (no \"solid\")";
        return false;
    }
    case VxMeshFormat::Obj:
        for (std::size_t i = 0; i < size; ++i) {
            if (data[i] == 0) {
                error = "byte " + std::to_string(i) + ": an OBJ file is text, found a zero byte";
                return false;
            }
        }
        return true;
    default:
        error = "file: unknown mesh format (expected .stl, .ply or .obj)";
        return false;
    }
}

// OBJ is read here rather than by the importer: the importer splits every face corner into a
// vertex of its own and regroups faces by material, which loses both numberings. Only "v" and
// "f" lines matter; "f" takes "v", "v/vt", "v//vn" and "v/vt/vn" corners, negative (relative)
// numbers, and polygons, fanned from their first corner.
bool ParseObj(const char* text, std::size_t size, std::vector<Float3>& positions,
              std::vector<int>& triangles, std::string& error) {
    std::string line;
    std::size_t pos = 0;
    std::size_t lineNo = 0;
    std::vector<long long> corners;
    while (pos < size) {
        std::size_t end = pos;
        while (end < size && text[end] != '\n' && text[end] != '\r') {
            ++end;
        }
        line.assign(text + pos, end - pos);
        pos = end + 1;
        ++lineNo;
        const char* c = line.c_str();
        while (*c == ' ' || *c == '\t') {
            ++c;
        }
        const bool isVertex = c[0] == 'v' && (c[1] == ' ' || c[1] == '\t');
        const bool isFace = c[0] == 'f' && (c[1] == ' ' || c[1] == '\t');
        if (!isVertex && !isFace) {
            continue;
        }
        c += 2;
        if (isVertex) {
            Float3 v{{0, 0, 0}};
            for (int k = 0; k < 3; ++k) {
                char* next = nullptr;
                v.v[k] = std::strtof(c, &next);
                if (next == c) {
                    error = "vertex " + std::to_string(positions.size()) +
                            ": fewer than three coordinates";
                    return false;
                }
                c = next;
            }
            if (!Finite(v)) {
                error = "vertex " + std::to_string(positions.size()) + ": coordinate is not finite";
                return false;
            }
            positions.push_back(v);
            continue;
        }
        corners.clear();
        for (;;) {
            while (*c == ' ' || *c == '\t') {
                ++c;
            }
            if (*c == '\0' || *c == '#') {
                break;
            }
            char* next = nullptr;
            const long long n = std::strtoll(c, &next, 10);
            if (next == c || n == 0 || n > INT32_MAX || n < -static_cast<long long>(INT32_MAX)) {
                error = "line " + std::to_string(lineNo) + ": unreadable face corner";
                return false;
            }
            // Relative numbers count back from the last vertex read so far.
            corners.push_back(n > 0 ? n - 1 : static_cast<long long>(positions.size()) + n);
            c = next;
            while (*c != '\0' && *c != ' ' && *c != '\t') {
                ++c;
            }
        }
        if (corners.size() < 3) {
            error = "line " + std::to_string(lineNo) + ": a face needs three corners";
            return false;
        }
        for (long long k : corners) {
            if (k < 0) {
                error = "line " + std::to_string(lineNo) + ": corner refers before vertex 1";
                return false;
            }
        }
        if (triangles.size() / 3 + corners.size() > static_cast<std::size_t>(INT32_MAX / 3)) {
            error = "line " + std::to_string(lineNo) + ": too many faces";
            return false;
        }
        for (std::size_t k = 1; k + 1 < corners.size(); ++k) {
            triangles.push_back(static_cast<int>(corners[0]));
            triangles.push_back(static_cast<int>(corners[k]));
            triangles.push_back(static_cast<int>(corners[k + 1]));
        }
    }
    return true;
}

bool BuildMesh(const std::vector<Float3>& positions, const std::vector<int>& triangles, VxMesh& out,
               std::string& error) {
    const int n = static_cast<int>(positions.size());
    for (int i = 0; i < n; ++i) {
        if (!Finite(positions[static_cast<std::size_t>(i)])) {
            error = "vertex " + std::to_string(i) + ": coordinate is not finite";
            return false;
        }
    }
    for (std::size_t f = 0; f * 3 < triangles.size(); ++f) {
        const int* t = &triangles[f * 3];
        for (int k = 0; k < 3; ++k) {
            if (t[k] < 0 || t[k] >= n) {
                error = "face " + std::to_string(f) + ": vertex id " + std::to_string(t[k]) +
                        " out of range (" + std::to_string(n) + " vertices)";
                return false;
            }
        }
        if (t[0] == t[1] || t[1] == t[2] || t[0] == t[2]) {
            error = "face " + std::to_string(f) + ": repeats a vertex";
            return false;
        }
    }
    // Everything is checked above, so the target is only touched once nothing can fail. Clear
    // keeps the target's own identity (type, flags); only the geometry is replaced.
    out.Clear();
    out.Reserve(n, static_cast<int>(triangles.size() / 3));
    for (const Float3& p : positions) {
        out.AddVertex(VxPoint(p.v[0], p.v[1], p.v[2]));
    }
    for (std::size_t f = 0; f * 3 < triangles.size(); ++f) {
        out.AddFace(triangles[f * 3], triangles[f * 3 + 1], triangles[f * 3 + 2]);
    }
    out.Finish();
    return true;
}

void PutU32(std::string& s, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) {
        s.push_back(static_cast<char>((v >> (8 * i)) & 0xFFu));
    }
}

} // namespace

VxMeshFormat VxMeshFile::FormatFromPath(const std::string& path) {
    const std::size_t dot = path.find_last_of('.');
    const std::size_t slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) {
        return VxMeshFormat::Unknown;
    }
    std::string ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ext == "stl") {
        return VxMeshFormat::Stl;
    }
    if (ext == "ply") {
        return VxMeshFormat::Ply;
    }
    if (ext == "obj") {
        return VxMeshFormat::Obj;
    }
    return VxMeshFormat::Unknown;
}

bool VxMeshFile::Load(const std::string& path, VxMesh& out, std::string& error) {
    const VxMeshFormat format = FormatFromPath(path);
    if (format == VxMeshFormat::Unknown) {
        error = "file: unknown mesh format (expected .stl, .ply or .obj)";
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "file: cannot be opened";
        return false;
    }
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size < 0 || static_cast<std::uint64_t>(size) > kMaxFileBytes) {
        error = "file: cannot be read or larger than 1 GiB";
        return false;
    }
    in.seekg(0, std::ios::beg);
    std::vector<char> bytes(static_cast<std::size_t>(size));
    if (size > 0 && !in.read(bytes.data(), size)) {
        error = "file: cannot be read";
        return false;
    }
    return LoadFromMemory(bytes.data(), bytes.size(), format, out, error);
}

bool VxMeshFile::LoadFromMemory(const void* data, std::size_t size, VxMeshFormat format,
                                VxMesh& out, std::string& error) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (size == 0 || data == nullptr) {
        error = "file: empty";
        return false;
    }
    if (size > kMaxFileBytes) {
        error = "file: larger than 1 GiB";
        return false;
    }
    if (!LooksLike(bytes, size, format, error)) {
        return false;
    }
    std::vector<Float3> positions;
    std::vector<int> triangles;
    if (format == VxMeshFormat::Obj) {
        if (!ParseObj(static_cast<const char*>(data), size, positions, triangles, error)) {
            return false;
        }
        return BuildMesh(positions, triangles, out, error);
    }
    if (format == VxMeshFormat::Ply) {
        if (!PlyReader(bytes, size).Read(positions, triangles, error)) {
            return false;
        }
        return BuildMesh(positions, triangles, out, error);
    }
    try {
        Assimp::Importer importer;
        // No post-processing at all: assimp's triangulation step aborts the process on some
        // damaged polygons, and every other step would renumber. Polygons are fanned below.
        const aiScene* scene = importer.ReadFileFromMemory(data, size, 0, Hint(format));
        if (scene == nullptr) {
            error = std::string("file: cannot be imported (") + importer.GetErrorString() + ")";
            return false;
        }
        std::size_t faceNo = 0;
        for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
            const aiMesh* mesh = scene->mMeshes ? scene->mMeshes[m] : nullptr;
            if (mesh == nullptr || (mesh->mNumVertices > 0 && mesh->mVertices == nullptr) ||
                (mesh->mNumFaces > 0 && mesh->mFaces == nullptr)) {
                continue;
            }
            const std::size_t base = positions.size();
            if (base + mesh->mNumVertices > static_cast<std::size_t>(INT32_MAX / 3)) {
                error = "file: too many vertices";
                return false;
            }
            for (unsigned i = 0; i < mesh->mNumVertices; ++i) {
                const aiVector3D& p = mesh->mVertices[i];
                positions.push_back(Float3{{p.x, p.y, p.z}});
            }
            for (unsigned f = 0; f < mesh->mNumFaces; ++f, ++faceNo) {
                const aiFace& face = mesh->mFaces[f];
                if (face.mNumIndices < 3 || face.mIndices == nullptr) {
                    error = "face " + std::to_string(faceNo) + ": has " +
                            std::to_string(face.mNumIndices) + " corners, not a polygon";
                    return false;
                }
                for (unsigned k = 0; k < face.mNumIndices; ++k) {
                    if (face.mIndices[k] >= mesh->mNumVertices) {
                        error = "face " + std::to_string(faceNo) + ": vertex id " +
                                std::to_string(face.mIndices[k]) + " out of range (" +
                                std::to_string(mesh->mNumVertices) + " vertices)";
                        return false;
                    }
                }
                if (triangles.size() / 3 + face.mNumIndices >
                    static_cast<std::size_t>(INT32_MAX / 3)) {
                    error = "file: too many faces";
                    return false;
                }
                for (unsigned k = 1; k + 1 < face.mNumIndices; ++k) {
                    triangles.push_back(static_cast<int>(base + face.mIndices[0]));
                    triangles.push_back(static_cast<int>(base + face.mIndices[k]));
                    triangles.push_back(static_cast<int>(base + face.mIndices[k + 1]));
                }
            }
        }
    } catch (...) {
        error = "file: cannot be imported";
        return false;
    }

    if (format == VxMeshFormat::Stl) {
        // An STL is nothing but its triangles; one without any is a damaged file.
        if (triangles.empty()) {
            error = "file: no triangles";
            return false;
        }
        for (std::size_t c = 0; c < triangles.size(); ++c) {
            if (!Finite(positions[static_cast<std::size_t>(triangles[c])])) {
                error = "triangle " + std::to_string(c / 3) + ": coordinate is not finite";
                return false;
            }
        }
        std::unordered_map<PosKey, int, PosKeyHash> index;
        std::vector<Float3> joined;
        std::vector<int> kept;
        kept.reserve(triangles.size());
        for (std::size_t f = 0; f * 3 < triangles.size(); ++f) {
            int t[3];
            for (int k = 0; k < 3; ++k) {
                const Float3& p = positions[static_cast<std::size_t>(triangles[f * 3 + k])];
                const auto ins = index.emplace(KeyOf(p), static_cast<int>(joined.size()));
                if (ins.second) {
                    joined.push_back(p);
                }
                t[k] = ins.first->second;
            }
            // A sliver whose corners coincide has no place in an indexed mesh.
            if (t[0] != t[1] && t[1] != t[2] && t[0] != t[2]) {
                kept.insert(kept.end(), t, t + 3);
            }
        }
        positions = std::move(joined);
        triangles = std::move(kept);
    }
    return BuildMesh(positions, triangles, out, error);
}

bool VxMeshFile::WritePly(const VxMesh& mesh, const std::string& path, std::string& error) {
    const auto& vertices = mesh.GetVertices();
    const auto& faces = mesh.GetFaces();
    std::string body;
    body.reserve(vertices.size() * 12 + faces.size() * 13);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const VxPoint& p = vertices[i].GetPos();
        for (int k = 0; k < 3; ++k) {
            if (!std::isfinite(p[k]) || std::fabs(p[k]) > std::numeric_limits<float>::max()) {
                error = "vertex " + std::to_string(i) + ": coordinate is not a finite float";
                return false;
            }
            const float f = static_cast<float>(p[k]);
            std::uint32_t bits = 0;
            std::memcpy(&bits, &f, 4);
            PutU32(body, bits);
        }
    }
    for (const VxFace& f : faces) {
        body.push_back(3);
        for (int k = 0; k < 3; ++k) {
            PutU32(body, static_cast<std::uint32_t>(f.GetVtxId(k)));
        }
    }
    std::string header = "ply\nformat binary_little_endian 1.0\ncomment vxcase mesh\n";
    header += "element vertex " + std::to_string(vertices.size()) + "\n";
    header += "property float x\nproperty float y\nproperty float z\n";
    header += "element face " + std::to_string(faces.size()) + "\n";
    header += "property list uchar int vertex_indices\nend_header\n";
    std::ofstream os(path, std::ios::binary | std::ios::trunc);
    if (!os) {
        error = "file: cannot be created";
        return false;
    }
    os.write(header.data(), static_cast<std::streamsize>(header.size()));
    os.write(body.data(), static_cast<std::streamsize>(body.size()));
    if (!os.flush()) {
        error = "file: cannot be written";
        return false;
    }
    return true;
}
