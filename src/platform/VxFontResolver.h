// VxFontResolver: turns a face name as the library's code asks for it ("Arial", "Times New Roman",
// "楷体_GB2312") into an installed font file, through fontconfig. Metric-compatible substitutes
// come from fontconfig's own alias rules (Arial -> Liberation Sans, Times New Roman -> Liberation
// Serif); a name nothing knows falls back to the system's default sans-serif face. A host may
// route a face name to a file of its own (a bundled font, or a test's file).
// It does not load fonts (CFont does that with FreeType), and it does not fall back glyph by
// glyph: the one face found is the face used for every character.
#pragma once

#include <string>

class VxFontResolver {
public:
    struct Match {
        std::string path;   // font file
        int index = 0;      // face index inside the file (collections)
        std::string family; // family name of the face found
        bool bold = false;  // the face itself is bold (weight at least semi-bold)
        bool italic = false;
    };

    // Best installed face for the request; false only when no font can be found at all.
    // weight is on the 100-900 scale (0 means normal); charset 134 (GB2312) asks for a face that
    // covers simplified Chinese when the family itself is unknown.
    static bool Resolve(const std::string& family, int weight, bool italic, int charset,
                        Match& out);

    // Routes a face name (compared without regard to ASCII case) to a file; the face's own
    // family, bold and italic flags are then left for the loader to read. An empty path removes
    // the route.
    static void SetFamilyFile(const std::string& family, const std::string& path);
    static void ClearFamilyFiles();
};
