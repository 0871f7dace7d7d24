// VxAppOverlays: the clinical overlays as the two programs offer them. One table names every
// overlay ("numbers", "marks", "archwire", "xray", ...) with a line of help and the function that
// shows or hides it on the overlay cache; an overlay is added by one registration function and
// one row. The programs keep a set of shown names: the cache itself does not know what is on.
// Changing the case, the layout or the aux registry hides the shown overlays first and shows
// them again after (VxAppOverlaysPause), since the registry would otherwise free what the cache
// holds, and pictures fit the view they are made in.
#pragma once

#include <set>
#include <string>
#include <vector>

class VxCacheStuff;
class VxCase;

struct VxAppOverlay {
    const char* name;
    const char* help;
    void (*show)(VxCacheStuff* cache, bool on);
};

class VxAppOverlays {
public:
    static const std::vector<VxAppOverlay>& Table();
    static const VxAppOverlay* Find(const std::string& name);
    // "numbers,marks" or "all" into names (the cache's labels, contacts and grid of
    // VxAppOverlays2 included) (appended, without repeats); false with `error` set
    // for an empty or unknown name.
    static bool Parse(const std::string& list, std::vector<std::string>& names, std::string& error);
    // "numbers, marks, facc, ..." for help texts.
    static std::string NameList();

    // Hands the case to the overlay cache (null: takes it back), keeping the shown set.
    static void Attach(VxCase* c);
    // Shows or hides by name; false for an unknown name or without a case.
    static bool Show(const std::string& name, bool on);
    static bool IsShown(const std::string& name);
    static bool Toggle(const std::string& name);
    static const std::set<std::string>& Shown();

    // While a pause lives, the shown overlays are off; nested pauses count as one.
    static void Pause();
    static void Resume();
};

class VxAppOverlaysPause {
public:
    VxAppOverlaysPause() { VxAppOverlays::Pause(); }
    ~VxAppOverlaysPause() { VxAppOverlays::Resume(); }
    VxAppOverlaysPause(const VxAppOverlaysPause&) = delete;
    VxAppOverlaysPause& operator=(const VxAppOverlaysPause&) = delete;
};
