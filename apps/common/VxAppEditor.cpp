#include "VxAppEditor.h"

#include <gapeditor/EventInfoCreateModify.h>
#include <gapeditor/ModelCreateModify.h>
#include <gapeditor/ViewControllerCreateModify.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <tuple>

namespace {

// No event value: set before a release so that an untouched mailbox reads as "nothing new".
constexpr auto kNoNews = static_cast<EnumEventInfoCreateModify>(0);

double Tenth(double v) {
    return std::round(v * 10.0) / 10.0;
}

std::string Format(const char* what, int first, int second, double before, double after) {
    char line[96];
    std::snprintf(line, sizeof(line), "%s %d|%d %.1f -> %.1f mm", what, first, second,
                  Tenth(before) + 0.0, Tenth(after) + 0.0);
    return line;
}

} // namespace

std::vector<std::pair<int, int>> VxAppEditor::PairGaps(bool upper) const {
    std::vector<std::pair<int, int>> pairs;
    if (!m_model) {
        return pairs;
    }
    std::vector<const VxTooth*> teeth;
    for (VxTooth* t : m_model->GetTeeth()) {
        if (t && t->IsUp() == upper) {
            teeth.push_back(t);
        }
    }
    ModelCreateModify* editor = ModelCreateModify::getInstance();
    const std::vector<VxPoint> points =
        upper ? editor->GetupGumGapStartPointList() : editor->GetdownGumGapStartPointList();
    for (const VxPoint& p : points) {
        // The two crowns nearest to the gap's anchor are the gap's teeth.
        std::vector<std::pair<double, int>> byDistance;
        for (const VxTooth* t : teeth) {
            byDistance.emplace_back((t->GetBBox().Center() - p).Magnitude(), t->GetFDI());
        }
        std::sort(byDistance.begin(), byDistance.end());
        if (byDistance.size() < 2) {
            pairs.emplace_back(0, 0);
            continue;
        }
        const int a = byDistance[0].second;
        const int b = byDistance[1].second;
        pairs.emplace_back(std::min(a, b), std::max(a, b));
    }
    return pairs;
}

void VxAppEditor::FrameDentition(VxModel& model, VxViewRegion* view) {
    if (!view || view->Width() <= 0 || view->Height() <= 0) {
        return;
    }
    // The crown centres (the teeth's frame origins): a tooth's box holds its root as well, which
    // would frame the gums rather than the gaps.
    std::vector<VxPoint> centres;
    VxBBox box;
    for (VxTooth* t : model.GetTeeth()) {
        if (t) {
            const VxPoint& o = t->GetFrame().GetOrigin();
            if (std::isfinite(o[0]) && std::isfinite(o[1]) && std::isfinite(o[2])) {
                centres.push_back(o);
                box.Add(o);
            }
        }
    }
    if (centres.empty()) {
        return;
    }
    const VxMatrix rotation = VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                              VxViewManager::GetReferenceRotation(model);
    const VxPoint c = box.Center();
    // Half extents across and up the front view, a crown's half size added on each side.
    double across = 5.0;
    double up = 6.0;
    for (const VxPoint& p : centres) {
        const VxVector v = rotation.Transform(p - c);
        across = std::max(across, std::fabs(v[0]) + 5.0);
        up = std::max(up, std::fabs(v[1]) + 6.0);
    }
    // The shorter side of a view spans two view units. The arch fills nine tenths of the width;
    // the crowns leave room above and below for the cards and the lists.
    const double w = view->Width();
    const double h = view->Height();
    const double unitsAcross = 2.0 * w / std::min(w, h);
    const double unitsUp = 2.0 * h / std::min(w, h);
    VxXForm xf;
    xf.SetRotation(rotation);
    xf.SetScale(std::min(0.9 * unitsAcross / (2.0 * across), 0.6 * unitsUp / (2.0 * up)));
    xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    view->SetXForm(xf);
}

void VxAppEditor::Start(VxModel* model) {
    m_model = model;
    m_on = true;
    ModelCreateModify* editor = ModelCreateModify::getInstance();
    // Drawing and picking have a switch each; a host sets both.
    editor->SetIsShowIPR(true);
    editor->SetIsOnCreateModified(true);
    editor->SetupGumIsVisible(true);
    editor->SetdownGumIsVisible(true);
    // A first build finds the gaps on the gums; the pairs then name them.
    editor->InitData(model, {}, {});
    m_upPairs = PairGaps(true);
    m_downPairs = PairGaps(false);
    if (m_plan.empty()) {
        // A plan to start from: a reduction between the central incisors, a wide space, a
        // locked smallest reduction and one at the top of its range, spread over the arch so
        // that no card covers another in the framed front view.
        SetGapValue(11, 21, 0.3);
        SetGapValue(21, 22, -1.2);
        SetGapValue(41, 42, 0.2);
        m_plan[{41, 42}].locked = true;
        SetGapValue(43, 44, 0.5);
    }
    Rebuild();
}

void VxAppEditor::Stop() {
    m_on = false;
    ModelCreateModify* editor = ModelCreateModify::getInstance();
    editor->SetIsShowIPR(false);
    editor->SetIsOnCreateModified(false);
    editor->InitData(nullptr, {}, {});
}

void VxAppEditor::SetGapValue(int first, int second, double value) {
    Gap& gap = m_plan[{std::min(first, second), std::max(first, second)}];
    gap.first = std::min(first, second);
    gap.second = std::max(first, second);
    gap.value = value;
}

std::vector<VxAppEditor::Gap> VxAppEditor::Gaps(bool upper) const {
    std::vector<Gap> gaps;
    for (const auto& pair : upper ? m_upPairs : m_downPairs) {
        const auto found = m_plan.find(pair);
        Gap gap = found != m_plan.end() ? found->second : Gap{};
        gap.first = pair.first;
        gap.second = pair.second;
        gaps.push_back(gap);
    }
    return gaps;
}

void VxAppEditor::Rebuild() {
    if (!m_on) {
        return;
    }
    const auto list = [this](bool upper) {
        std::vector<std::tuple<int, int, bool, double>> out;
        for (const Gap& g : Gaps(upper)) {
            out.emplace_back(g.first, g.second, g.locked, g.value);
        }
        return out;
    };
    ModelCreateModify::getInstance()->InitDatawithLock(m_model, list(true), list(false));
}

void VxAppEditor::Move(int x, int y, VxViewRegion* view) {
    if (!m_on || !view) {
        return;
    }
    ViewControllerCreateModify* controller = ViewControllerCreateModify::getInstance();
    controller->SetupCurrentMouseState(x, y, view);
    controller->MouseLeftMoving();
}

std::string VxAppEditor::Release(int x, int y, VxViewRegion* view) {
    m_tookClick = false;
    if (!m_on || !view) {
        return std::string();
    }
    EventInfoCreateModify* events = EventInfoCreateModify::getInstance();
    ViewControllerCreateModify* controller = ViewControllerCreateModify::getInstance();
    // The controller answers every release off its elements with "none"; only where a list
    // was open does that close something, otherwise the click is the program's.
    bool listOpen = false;
    for (const auto& records : {ModelCreateModify::getInstance()->GetUpGumGapGraphicsObjects(),
                                ModelCreateModify::getInstance()->GetDownGumGapGraphicsObjects()}) {
        for (const GumGapGraphicsObject& r : records) {
            listOpen = listOpen || r.listState > 1;
        }
    }
    events->SetEventInfo(kNoNews);
    controller->SetupCurrentMouseState(x, y, view);
    controller->MouseLeftReleased();
    m_tookClick = controller->GetsomeSelected();
    const EnumEventInfoCreateModify event = events->GetEventInfo();
    // The host owns the mailbox: it is left empty after each reading.
    events->SetEventInfo(EventNone);
    if (event == kNoNews || (event == EventNone && !listOpen)) {
        m_tookClick = m_tookClick && event != EventNone;
        return std::string();
    }
    m_tookClick = true;
    if (event == EventListOpened) {
        return "list opened";
    }
    if (event == EventNone) {
        return "list closed";
    }
    const EventIPRinfo info = events->GetIPRInfo();
    Gap& gap =
        m_plan[{std::min(info.firstId, info.secondId), std::max(info.firstId, info.secondId)}];
    gap.first = std::min(info.firstId, info.secondId);
    gap.second = std::max(info.firstId, info.secondId);
    const double before = Tenth(info.value);
    std::string line;
    switch (event) {
    case EventValueUp:
    case EventValueDown: {
        // Up always means a larger magnitude, for a space as for a reduction.
        const double step = (event == EventValueUp ? 0.1 : -0.1) * (before < 0 ? -1.0 : 1.0);
        gap.value = Tenth(before + step);
        line = Format(before < 0 ? "Space" : "IPR", info.firstId, info.secondId, before, gap.value);
        break;
    }
    case EventAddReduction:
        gap.value = 0.2;
        line = Format("IPR", info.firstId, info.secondId, before, gap.value);
        break;
    case EventAddGap:
        gap.value = -0.2;
        line = Format("Space", info.firstId, info.secondId, before, gap.value);
        break;
    case EventDeleteReduction:
    case EventDeleteGap:
        gap.value = 0.0;
        line = Format(event == EventDeleteGap ? "Space" : "IPR", info.firstId, info.secondId,
                      before, 0.0);
        break;
    case EventLocked:
    case EventUnlocked: {
        gap.locked = event == EventLocked;
        char text[64];
        std::snprintf(text, sizeof(text), "Lock %d|%d %s", info.firstId, info.secondId,
                      gap.locked ? "on" : "off");
        // Only a lock changed: the records keep their values and hover states.
        const auto list = [this](bool upper) {
            std::vector<std::tuple<int, int, bool, double>> out;
            for (const Gap& g : Gaps(upper)) {
                out.emplace_back(g.first, g.second, g.locked, g.value);
            }
            return out;
        };
        ModelCreateModify::getInstance()->UpdateDatajustLock(m_model, list(true), list(false));
        return text;
    }
    default:
        return std::string();
    }
    Rebuild();
    return line;
}
