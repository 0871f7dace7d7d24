// VxAppTypes: the choices the programs offer (layout, render path, display mode, jaws) with the
// words that name them on a command line, shared by vxrender and vxview so the two spell them
// alike. Plain standard C++ with no library types, so the option parser stays testable without
// a GL context; mapping to the library's enumerations is VxAppScene's business.
#pragma once

#include <array>
#include <string>

enum class VxAppLayout { Single, Jaws, Compare, Four, Five };
enum class VxAppRenderPath { Fixed, Shader };
enum class VxAppDisplay { Solid, SolidEdges, Edges, Points };
enum class VxAppJaws { Both, Upper, Lower };
enum class VxAppPictureKind { None, Front, Profile, Xray, Panoramic };

template <typename E> struct VxAppName {
    E value;
    const char* word;
    const char* meaning;
};

inline constexpr std::array<VxAppName<VxAppLayout>, 5> kVxAppLayouts{{
    {VxAppLayout::Single, "single", "one view from the front"},
    {VxAppLayout::Jaws, "jaws", "upper and lower arch side by side, seen square on"},
    {VxAppLayout::Compare, "compare", "initial and final treatment state side by side"},
    {VxAppLayout::Four, "four", "four views: as set, front, left, right"},
    {VxAppLayout::Five, "five", "left, front, right above; both arches from the bite below"},
}};

inline constexpr std::array<VxAppName<VxAppRenderPath>, 2> kVxAppRenderPaths{{
    {VxAppRenderPath::Fixed, "fixed", "fixed-function GL (display lists, stencil picking)"},
    {VxAppRenderPath::Shader, "shader",
     "GLSL 3.30 programs, lit and textured (default where GL >= 4.3)"},
}};

inline constexpr std::array<VxAppName<VxAppDisplay>, 4> kVxAppDisplays{{
    {VxAppDisplay::Solid, "solid", "shaded surfaces"},
    {VxAppDisplay::SolidEdges, "solid+edges", "shaded surfaces with their triangle edges"},
    {VxAppDisplay::Edges, "edges", "triangle edges only"},
    {VxAppDisplay::Points, "points", "vertices only"},
}};

inline constexpr std::array<VxAppName<VxAppJaws>, 3> kVxAppJaws{{
    {VxAppJaws::Both, "both", "upper and lower jaw"},
    {VxAppJaws::Upper, "upper", "upper jaw only"},
    {VxAppJaws::Lower, "lower", "lower jaw only"},
}};

// The patient pictures an overlay can show, in the order vxview's key cycles them.
inline constexpr std::array<VxAppName<VxAppPictureKind>, 5> kVxAppPictures{{
    {VxAppPictureKind::None, "none", "no picture overlay"},
    {VxAppPictureKind::Front, "front", "frontal smile photograph"},
    {VxAppPictureKind::Profile, "profile", "profile photograph"},
    {VxAppPictureKind::Xray, "xray", "lateral cephalometric X-ray"},
    {VxAppPictureKind::Panoramic, "panoramic", "panoramic film with its landmark markers"},
}};

// Exact, case-sensitive match of a word; false leaves `out` alone.
template <typename E, std::size_t N>
bool VxAppParseName(const std::array<VxAppName<E>, N>& names, const std::string& word, E& out) {
    for (const auto& n : names) {
        if (word == n.word) {
            out = n.value;
            return true;
        }
    }
    return false;
}

template <typename E, std::size_t N>
const char* VxAppNameOf(const std::array<VxAppName<E>, N>& names, E value) {
    for (const auto& n : names) {
        if (n.value == value) {
            return n.word;
        }
    }
    return "?";
}

// "a, b, c" of all words, for messages and help.
template <typename E, std::size_t N>
std::string VxAppWordList(const std::array<VxAppName<E>, N>& names) {
    std::string s;
    for (const auto& n : names) {
        s += (s.empty() ? "" : ", ") + std::string(n.word);
    }
    return s;
}
