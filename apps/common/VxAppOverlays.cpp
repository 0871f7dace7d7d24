// VxAppOverlays: the overlay table and the programs' shown set.
#include "../common/VxAppOverlays.h"
#include "VxAppOverlays2.h"

#include <VxCase.h>
#include <VxCaseOverlays.h>

#include <overlays/VxCacheStuff.h>

#include <algorithm>

namespace {

// One registration function an overlay.
void ShowNumbers(VxCacheStuff* c, bool on) {
    c->SetShowToothFDI(on);
}
void ShowMarks(VxCacheStuff* c, bool on) {
    c->SetShowMoveDiff(on);
}
void ShowFacc(VxCacheStuff* c, bool on) {
    c->SetShowFacc(on);
}
void ShowRefs(VxCacheStuff* c, bool on) {
    c->SetShowToothRef(on);
}
void ShowKeyPoint(VxCacheStuff* c, bool on) {
    c->SetShowKeyPoint(on);
}
void ShowArchWire(VxCacheStuff* c, bool on) {
    c->SetShowArchWire(on);
}
void ShowMidPlane(VxCacheStuff* c, bool on) {
    c->SetShowMiddlePlane(on);
}
void ShowBackPlane(VxCacheStuff* c, bool on) {
    c->SetShowBackBoundaryPlane(on);
}
void ShowBeauty(VxCacheStuff* c, bool on) {
    c->SetShowBeautyPlane(on);
}
void ShowUpPlane(VxCacheStuff* c, bool on) {
    c->SetShowUpJawPlane(on);
}
void ShowLowPlane(VxCacheStuff* c, bool on) {
    c->SetShowDownJawPlane(on);
}
void ShowUpLine(VxCacheStuff* c, bool on) {
    c->SetShowUpToothLine(on);
}
void ShowLowLine(VxCacheStuff* c, bool on) {
    c->SetShowDownToothLine(on);
}
void ShowXray(VxCacheStuff* c, bool on) {
    c->SetShowXImg(on);
}
void ShowFront(VxCacheStuff* c, bool on) {
    c->SetShowFrontImg(on);
}
void ShowProfile(VxCacheStuff* c, bool on) {
    c->SetShowProfile(on);
}
void ShowPanoramic(VxCacheStuff* c, bool on) {
    c->SetShowPanoramic(on);
}

struct State {
    VxCaseOverlays overlays;
    VxCase* c = nullptr;
    std::set<std::string> shown;
    int paused = 0;
};

State& S() {
    // The cache first, so that it outlives the state, which takes its overlays back at exit.
    static VxCacheStuff* const cache = VxCacheStuff::GetInstance();
    static State s;
    (void)cache;
    return s;
}

void Apply(const std::string& name, bool on) {
    if (const VxAppOverlay* o = VxAppOverlays::Find(name)) {
        o->show(VxCacheStuff::GetInstance(), on);
    }
}

} // namespace

const std::vector<VxAppOverlay>& VxAppOverlays::Table() {
    static const std::vector<VxAppOverlay> table = {
        {"numbers", "tooth numbers on every crown", &ShowNumbers},
        {"marks", "movement marks: blue within the limits, black past them", &ShowMarks},
        {"facc", "red Facc curves on the crowns", &ShowFacc},
        {"refs", "reference curves and points of every tooth", &ShowRefs},
        {"keypoint", "the cephalometric key point", &ShowKeyPoint},
        {"archwire", "yellow arch wire through the crown middles", &ShowArchWire},
        {"midplane", "middle (sagittal) plane", &ShowMidPlane},
        {"backplane", "back boundary plane", &ShowBackPlane},
        {"beauty", "beauty plane with its points", &ShowBeauty},
        {"upplane", "upper occlusal plane (green)", &ShowUpPlane},
        {"lowplane", "lower occlusal plane (blue)", &ShowLowPlane},
        {"upline", "upper tooth arch line (green)", &ShowUpLine},
        {"lowline", "lower tooth arch line (blue)", &ShowLowLine},
        {"xray", "cephalometric X-ray", &ShowXray},
        {"front", "frontal smile photograph", &ShowFront},
        {"profile", "profile photograph", &ShowProfile},
        {"panoramic", "panoramic film with its landmarks", &ShowPanoramic},
    };
    return table;
}

const VxAppOverlay* VxAppOverlays::Find(const std::string& name) {
    for (const VxAppOverlay& o : Table()) {
        if (name == o.name) {
            return &o;
        }
    }
    return nullptr;
}

std::string VxAppOverlays::NameList() {
    std::string out;
    for (const VxAppOverlay& o : Table()) {
        out += (out.empty() ? "" : ", ") + std::string(o.name);
    }
    for (const std::string& name : VxAppOverlays2::Names()) {
        out += ", " + name;
    }
    return out;
}

bool VxAppOverlays::Parse(const std::string& list, std::vector<std::string>& names,
                          std::string& error) {
    const auto add = [&names](const std::string& n) {
        if (std::find(names.begin(), names.end(), n) == names.end()) {
            names.push_back(n);
        }
    };
    size_t start = 0;
    while (true) {
        const size_t comma = list.find(',', start);
        const std::string name =
            list.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        if (name == "all") {
            for (const VxAppOverlay& o : Table()) {
                add(o.name);
            }
            for (const std::string& n : VxAppOverlays2::Names()) {
                add(n);
            }
        } else if (Find(name) != nullptr || VxAppOverlays2::IsName(name)) {
            add(name);
        } else {
            error = name.empty()
                        ? "an empty overlay name"
                        : "unknown overlay '" + name + "' (known: " + NameList() + ", all)";
            return false;
        }
        if (comma == std::string::npos) {
            return true;
        }
        start = comma + 1;
    }
}

void VxAppOverlays::Attach(VxCase* c) {
    State& s = S();
    if (s.c != nullptr) {
        if (s.paused == 0) {
            for (const std::string& name : s.shown) {
                Apply(name, false);
            }
        }
        s.overlays.Uninstall();
        s.c = nullptr;
    }
    if (c == nullptr) {
        return;
    }
    s.c = c;
    s.overlays.Install(*c);
    if (s.paused == 0) {
        for (const std::string& name : s.shown) {
            Apply(name, true);
        }
    }
}

bool VxAppOverlays::Show(const std::string& name, bool on) {
    State& s = S();
    if (Find(name) == nullptr || s.c == nullptr) {
        return false;
    }
    if (on) {
        s.shown.insert(name);
    } else {
        s.shown.erase(name);
    }
    if (s.paused == 0) {
        Apply(name, on);
    }
    return true;
}

bool VxAppOverlays::IsShown(const std::string& name) {
    return S().shown.count(name) != 0;
}

bool VxAppOverlays::Toggle(const std::string& name) {
    return Show(name, !IsShown(name));
}

const std::set<std::string>& VxAppOverlays::Shown() {
    return S().shown;
}

void VxAppOverlays::Pause() {
    State& s = S();
    if (s.paused++ == 0 && s.c != nullptr) {
        for (const std::string& name : s.shown) {
            Apply(name, false);
        }
    }
}

void VxAppOverlays::Resume() {
    State& s = S();
    if (s.paused > 0 && --s.paused == 0 && s.c != nullptr) {
        for (const std::string& name : s.shown) {
            Apply(name, true);
        }
    }
}
