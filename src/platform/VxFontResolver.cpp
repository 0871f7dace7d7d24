// VxFontResolver: fontconfig look-ups with a small cache, since text bitmaps make a font for
// every label they draw and a match costs far more than the drawing.
#include <platform/VxFontResolver.h>

#include <fontconfig/fontconfig.h>

#include <map>
#include <tuple>

namespace {

std::string Lower(const std::string& s) {
    std::string r = s;
    for (char& c : r) {
        if (c >= 'A' && c <= 'Z') {
            c = char(c - 'A' + 'a');
        }
    }
    return r;
}

bool IsAscii(const std::string& s) {
    for (unsigned char c : s) {
        if (c >= 0x80) {
            return false;
        }
    }
    return true;
}

using CacheKey = std::tuple<std::string, bool, bool, bool>;

std::map<std::string, std::string>& Routes() {
    static std::map<std::string, std::string> routes;
    return routes;
}

std::map<CacheKey, VxFontResolver::Match>& Cache() {
    static std::map<CacheKey, VxFontResolver::Match> cache;
    return cache;
}

// One fontconfig match. needCjk adds characters that the face must hold, which outrank the family
// in fontconfig's order of criteria: a Chinese character and the digits and Latin letters that
// labels are mostly made of, so that a CJK-only fallback face (no Latin glyphs) never wins over a
// Latin face for a label of digits.
bool MatchOnce(const std::string& family, bool bold, bool italic, bool needCjk,
               VxFontResolver::Match& out, bool& familyFound) {
    FcPattern* pattern = FcPatternCreate();
    if (!pattern) {
        return false;
    }
    if (!family.empty()) {
        FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    }
    FcPatternAddInteger(pattern, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    if (needCjk) {
        FcCharSet* cs = FcCharSetCreate();
        FcCharSetAddChar(cs, 0x4E2D);
        for (FcChar32 c = 0x30; c <= 0x5A; ++c) {
            FcCharSetAddChar(cs, c);
        }
        FcPatternAddCharSet(pattern, FC_CHARSET, cs);
        FcCharSetDestroy(cs);
    }
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (!match) {
        return false;
    }
    bool ok = false;
    FcChar8* file = nullptr;
    if (FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch && file) {
        ok = true;
        out.path = reinterpret_cast<const char*>(file);
        int index = 0;
        out.index = FcPatternGetInteger(match, FC_INDEX, 0, &index) == FcResultMatch ? index : 0;
        familyFound = false;
        FcChar8* name = nullptr;
        for (int i = 0; FcPatternGetString(match, FC_FAMILY, i, &name) == FcResultMatch; ++i) {
            const std::string n = reinterpret_cast<const char*>(name);
            if (i == 0) {
                out.family = n;
            }
            if (Lower(n) == Lower(family)) {
                familyFound = true;
            }
        }
        int weight = FC_WEIGHT_REGULAR;
        FcPatternGetInteger(match, FC_WEIGHT, 0, &weight);
        out.bold = weight >= FC_WEIGHT_DEMIBOLD;
        int slant = FC_SLANT_ROMAN;
        FcPatternGetInteger(match, FC_SLANT, 0, &slant);
        out.italic = slant != FC_SLANT_ROMAN;
    }
    FcPatternDestroy(match);
    return ok;
}

} // namespace

bool VxFontResolver::Resolve(const std::string& family, int weight, bool italic, int charset,
                             Match& out) {
    const bool bold = weight >= 600;
    auto route = Routes().find(Lower(family));
    if (route != Routes().end()) {
        out = Match{};
        out.path = route->second;
        out.family = family;
        out.bold = bold;
        out.italic = italic;
        return true;
    }
    const bool wantCjk = charset == 134 && !IsAscii(family);
    const CacheKey key{family, bold, italic, wantCjk};
    auto hit = Cache().find(key);
    if (hit != Cache().end()) {
        out = hit->second;
        return true;
    }
    static const bool initialised = FcInit() == FcTrue;
    if (!initialised) {
        return false;
    }
    Match m;
    bool familyFound = false;
    if (!MatchOnce(family, bold, italic, false, m, familyFound)) {
        return false;
    }
    // A Chinese face name under the GB2312 character set that nothing here knows: the text is
    // most likely Chinese, so a face that holds it beats the default Latin face.
    if (wantCjk && !familyFound) {
        Match cjk;
        bool unused = false;
        if (MatchOnce(family, bold, italic, true, cjk, unused)) {
            m = cjk;
        }
    }
    Cache()[key] = m;
    out = m;
    return true;
}

void VxFontResolver::SetFamilyFile(const std::string& family, const std::string& path) {
    if (path.empty()) {
        Routes().erase(Lower(family));
    } else {
        Routes()[Lower(family)] = path;
    }
}

void VxFontResolver::ClearFamilyFiles() {
    Routes().clear();
}
