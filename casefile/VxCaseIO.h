// VxCaseIO: reads and writes a case directory: the manifest "case.json", the mesh files it
// names (PLY written, PLY, STL and OBJ read) and the patient pictures (PNG). casefile/README.md
// documents the layout and every manifest field.
//
// Reading is all or nothing: the case is built aside and swapped into the target only when
// everything has been read and checked, so a failed Read leaves the target as it was. Every
// failure gives one message "<file>: <field path>: <what is wrong>", the file relative to the
// case directory. It deliberately does not repair input (no clamping, no dropping of bad
// records) and does not merge into an existing case.
#pragma once

#include <cstddef>
#include <string>

class VxCase;

class VxCaseIO {
public:
    static constexpr int kFormatVersion = 1;
    static constexpr const char* kManifestName = "case.json";
    // Larger manifests are refused before parsing; deeper JSON nesting is refused before the
    // document is built.
    static constexpr std::size_t kMaxManifestBytes = std::size_t(256) << 20;
    static constexpr int kMaxNesting = 64;

    // Reads dir/case.json and what it names into `out` (replacing its content) or, on failure,
    // sets `error` and leaves `out` untouched. An installed target is installed again with the
    // new content.
    static bool Read(const std::string& dir, VxCase& out, std::string& error);
    // The same with the manifest's text given; files it names are looked up under `dir`.
    static bool ReadManifest(const std::string& manifestText, const std::string& dir, VxCase& out,
                             std::string& error);

    // Writes the case into `dir` (created if needed): the manifest, meshes under "meshes/",
    // pictures under "images/". Files of an earlier case in the directory are not removed.
    // False with `error` set for a case that has no file form (a non-finite number, a pointer
    // to an object the case does not own, two teeth with one number).
    static bool Write(const VxCase& c, const std::string& dir, std::string& error);
};
