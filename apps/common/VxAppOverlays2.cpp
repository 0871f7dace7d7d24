// VxAppOverlays2: the cache's IPR, collision, attachment and grid overlays on the scene's case.
#include "VxAppOverlays2.h"

#include "VxAppScene.h"

#include <VxCase.h>
#include <VxSyntheticCollision.h>

#include <interfaces/VxAttachment.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxCacheStuff.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

struct State {
    std::set<std::string> on;
    // The views and zooms the grid was last refreshed for.
    std::vector<VxViewRegion*> gridViews;
    std::vector<double> gridRatios;
};

State& S() {
    static State s;
    return s;
}

VxCacheStuff* Cache() {
    return VxCacheStuff::GetInstance();
}

// Where a tooth's crown stands at the case's current step.
VxPoint ToothCentre(VxCase& c, const VxTooth* tooth) {
    const VxPoint centre = tooth->GetBBox().Center();
    auto e = c.placements.find(tooth);
    if (e == c.placements.end()) {
        return centre;
    }
    auto s = e->second.find(c.currentStep);
    if (s == e->second.end() || s->second.empty()) {
        return centre;
    }
    return s->second.begin()->matrix.Transform(centre);
}

// The middle of the arches at the current step: the labels fan out from it.
VxPoint ArchCentre(VxCase& c) {
    VxPoint sum;
    int n = 0;
    for (const auto& t : c.teeth) {
        const VxPoint p = ToothCentre(c, t.get());
        for (int i = 0; i < 3; ++i) {
            sum[i] += p[i];
        }
        ++n;
    }
    if (n > 0) {
        for (int i = 0; i < 3; ++i) {
            sum[i] /= n;
        }
    }
    return sum;
}

void ShowIpr(VxCase& c) {
    Cache()->ClearRemoveGlazeInfo();
    const VxPoint middle = ArchCentre(c);
    for (const VxIPR& ipr : c.scheme.GetIPRInfo()) {
        const VxTooth* first = ipr.GetFirstTooth();
        if (first == nullptr) {
            continue;
        }
        // A reference behind the gap, on the midline and towards the bite: each label comes
        // forward out of the teeth, away from its jaw's biting edge and from the middle.
        const VxPoint gap = ipr.GetGapPos();
        const double towardsBite = first->IsUp() ? -8.0 : 8.0;
        const VxPoint ref(middle[0], gap[1] - 10.0, gap[2] + towardsBite);
        Cache()->ShowRemoveGlaze(ipr, ref);
    }
}

const VxMatrix* Placement(VxCase& c, const VxTooth* tooth) {
    auto e = c.placements.find(tooth);
    if (e == c.placements.end()) {
        return nullptr;
    }
    auto s = e->second.find(c.currentStep);
    return s == e->second.end() || s->second.empty() ? nullptr : &s->second.begin()->matrix;
}

// The case's records cover neighbours within a jaw. Where the case has no contact across the
// jaws (the synthetic patient's bite stays open by about 1.3 mm), the occlusal contacts are
// measured with the lower teeth closed onto the upper ones by kBiteClosure mm, so that the map
// shows where the teeth meet first when the patient bites down.
constexpr double kBiteClosure = 2.8;

std::vector<VxGapInfo> ClosedBiteContacts(VxCase& c) {
    std::vector<VxGapInfo> out;
    const VxMatrix lift = VxMatrix::Translation(VxVector(0.0, 0.0, kBiteClosure));
    for (const auto& u : c.teeth) {
        const int fdi = u->GetFDI();
        if (!u->IsUp() || fdi % 10 < 4) {
            continue; // premolars and molars: where a bite lands
        }
        // The opposing tooth of the same position and its distal neighbour.
        const int lowerQuadrant = fdi / 10 == 1 ? 4 : 3;
        for (int pos : {fdi % 10, fdi % 10 + 1}) {
            const VxTooth* l = c.FindTooth(lowerQuadrant * 10 + pos);
            const VxMatrix* pu = Placement(c, u.get());
            const VxMatrix* pl = Placement(c, l);
            if (l == nullptr || pu == nullptr || pl == nullptr) {
                continue;
            }
            VxGapInfo g;
            if (VxSyntheticCollision::Measure(u.get(), *pu, const_cast<VxTooth*>(l), lift * *pl,
                                              0.0, g) &&
                !g.IsGap()) {
                // The label stands where the teeth are drawn, not where they would close.
                const VxPoint p = g.GetValuePos();
                g.SetValuePos(VxPoint(p[0], p[1], p[2] - 0.5 * kBiteClosure));
                out.push_back(g);
            }
        }
    }
    return out;
}

void ShowCollision(VxCase& c) {
    std::vector<VxGapInfo> closed;
    bool across = false;
    for (const VxGapInfo& g : c.gapInfos) {
        const auto* a = dynamic_cast<const VxTooth*>(g.GetMesh(0));
        const auto* b = dynamic_cast<const VxTooth*>(g.GetMesh(1));
        across = across || (a != nullptr && b != nullptr && a->IsUp() != b->IsUp());
    }
    if (!across) {
        closed = ClosedBiteContacts(c);
    }
    std::vector<VxGapInfo*> gaps;
    for (VxGapInfo& g : c.gapInfos) {
        gaps.push_back(&g);
    }
    for (VxGapInfo& g : closed) {
        gaps.push_back(&g);
    }
    Cache()->ShowCollisionInfo(gaps);
}

void ShowAttachments(VxCase& c) {
    std::vector<VxAttachment*> list;
    for (const auto& a : c.attachments) {
        list.push_back(a.get());
    }
    VxPoint centre = ArchCentre(c);
    Cache()->ShowAttachmentInfo(list, centre);
}

void RememberGrid() {
    State& s = S();
    s.gridViews = VxViewManager::GetInstance()->GetAllViews();
    s.gridRatios.clear();
    for (VxViewRegion* v : s.gridViews) {
        s.gridRatios.push_back(v->GetpixelmodelRatio());
    }
}

void ShowGrid() {
    // A grid is built for the views of its moment: after a change of layout it is made anew.
    if (S().gridViews != VxViewManager::GetInstance()->GetAllViews()) {
        Cache()->DeleteGrid();
    }
    Cache()->DrawGrid(1);
    RememberGrid();
}

void Remove(const std::string& name) {
    if (name == "ipr") {
        Cache()->ClearRemoveGlazeInfo();
    } else if (name == "collision") {
        Cache()->RemoveCollisionStuff();
    } else if (name == "attachments") {
        Cache()->RemoveAttachmentHelper();
    } else if (name == "grid") {
        Cache()->DeleteGrid();
        S().gridViews.clear();
    }
}

void Show(VxCase& c, const std::string& name) {
    if (name == "ipr") {
        ShowIpr(c);
    } else if (name == "collision") {
        ShowCollision(c);
    } else if (name == "attachments") {
        ShowAttachments(c);
    } else if (name == "grid") {
        ShowGrid();
    }
}

} // namespace

const std::vector<std::string>& VxAppOverlays2::Names() {
    static const std::vector<std::string> names = {"ipr", "collision", "attachments", "grid"};
    return names;
}

bool VxAppOverlays2::IsName(const std::string& name) {
    const auto& n = Names();
    return std::find(n.begin(), n.end(), name) != n.end();
}

std::string VxAppOverlays2::Help() {
    return "ipr          IPR labels of the plan: \" step(gap mm)\" on a green leader\n"
           "collision    contacts across the jaws coloured by depth (blue 0, green 0.5,\n"
           "             red 1 mm and more) and the measured value of every contact and gap\n"
           "attachments  \" first(last)\" step of each attachment on a green leader\n"
           "grid         millimetre grid over each view and its 1mm / 10mm scale bar\n";
}

bool VxAppOverlays2::Set(VxAppScene& scene, const std::string& name, bool on, std::string& error) {
    if (!IsName(name)) {
        error = "unknown overlay '" + name + "'";
        return false;
    }
    if (!on) {
        Remove(name);
        S().on.erase(name);
        return true;
    }
    if (scene.GetCase() == nullptr) {
        error = "the " + name + " overlay needs a case";
        return false;
    }
    // Labels are placed through the matrices of the last frame and the grid reads its zoom.
    scene.RenderFrame();
    S().on.insert(name);
    Show(*scene.GetCase(), name);
    return true;
}

bool VxAppOverlays2::Toggle(VxAppScene& scene, const std::string& name, std::string& error) {
    return Set(scene, name, !IsOn(name), error);
}

bool VxAppOverlays2::IsOn(const std::string& name) {
    return S().on.count(name) != 0;
}

void VxAppOverlays2::Refresh(VxAppScene& scene) {
    if (S().on.empty() || scene.GetCase() == nullptr) {
        return;
    }
    scene.RenderFrame();
    for (const std::string& name : S().on) {
        Show(*scene.GetCase(), name);
    }
}

bool VxAppOverlays2::AfterFrame() {
    if (!IsOn("grid")) {
        return false;
    }
    const State& s = S();
    const std::vector<VxViewRegion*>& views = VxViewManager::GetInstance()->GetAllViews();
    if (views != s.gridViews) {
        ShowGrid();
        return true;
    }
    for (size_t i = 0; i < views.size(); ++i) {
        if (views[i]->GetpixelmodelRatio() != s.gridRatios[i]) {
            Cache()->RefreshMeshBenchmark(0.0);
            RememberGrid();
            return true;
        }
    }
    return false;
}

void VxAppOverlays2::RemoveAll() {
    for (const std::string& name : Names()) {
        Remove(name);
    }
}

void VxAppOverlays2::Reset() {
    RemoveAll();
    S().on.clear();
}
