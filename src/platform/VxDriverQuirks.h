// VxDriverQuirks: the one list of driver and library misbehaviours the code works around, each
// named, matched against the GL_RENDERER / GL_VENDOR strings, and explained where it is listed.
// Code asks by name instead of testing renderer strings itself, so every workaround can be found
// from here. It does not change any behaviour itself and holds no per-context state.
#pragma once

#include <string>
#include <vector>

struct VxDriverQuirk {
    const char* name;
    // Substrings of GL_RENDERER and GL_VENDOR; empty matches every driver.
    const char* renderer;
    const char* vendor;
    const char* why;
};

class VxDriverQuirks {
public:
    // Whether the named quirk applies to a driver with these strings (null counts as empty).
    // An unknown name never applies.
    static bool Applies(const char* name, const char* renderer, const char* vendor);
    // The same for the driver of the current context; with no context current only quirks that
    // match every driver apply.
    static bool Applies(const char* name);
    static bool IsKnown(const char* name);
    static const std::vector<VxDriverQuirk>& All();
    // Names of every quirk that applies to these strings.
    static std::vector<std::string> Active(const char* renderer, const char* vendor);
};
