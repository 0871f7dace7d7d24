// VxCacheStuff: the interproximal reduction labels. Every show form comes down to one label: a
// leader from the gap to a billboard with the record's number and amount. The forms differ only
// in where the teeth, the number and the gap point come from, in how far the leader reaches and
// in the text; ShowIprLabel below does the rest once for all of them.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxOverlayLayout.h>
#include <overlays/VxTextHelper.h>

namespace {

// The leader and the plate's rim take the billboard's own label green, so that the pin reads as
// one object pointing at its gap; the text stays black on the white plate.
void PaintLeader(VxTextHelper* helper) {
    if (VxAuxBillBoard3d* board = helper->GetBillBoard()) {
        board->SetComponentsColor(board->GetColor(), board->GetColor(), VxColor(0, 0, 0));
    }
}

enum class IprLeader {
    Flat,   // 9 or 14 out from the reference, by the screen side of the reference
    Tilted, // 16.5 out, leaning towards the teeth's axes
};

struct IprLabel {
    const VxTooth* first;
    const VxTooth* second;
    VxPoint gap;
    VxPoint ref;
    IprLabel(const VxTooth* a, const VxTooth* b, const VxPoint& g, const VxPoint& r)
        : first(a), second(b), gap(g), ref(r) {}
};

bool RefLeftOfGap(const VxPoint& ref, const VxPoint& gap) {
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    if (render == nullptr) {
        return false;
    }
    return render->MapModelPointToScreen(ref).x < render->MapModelPointToScreen(gap).x;
}

// `withCentre`: the second form of Show, with the reference as the billboard's centre and the
// mark; the forms that take a start point use it, ShowRemoveGlaze does not.
void ShowIprLabel(std::vector<VxTextHelper*>& labels, const IprLabel& l, IprLeader leader,
                  bool withCentre, int mark, const CString& text) {
    auto* helper = new VxTextHelper(VxRenderStatus::GetInstance()->GetAuxRender());
    const bool firstUp = l.first->IsUp();
    const bool secondUp = l.second->IsUp();
    // A pair across the jaws belongs to neither jaw's toggle.
    if (firstUp == secondUp) {
        helper->SetIsUp(firstUp);
    }
    const VxPoint labelPos =
        leader == IprLeader::Flat
            ? VxOverlayLayout::IprLabelFlat(l.gap, l.ref, RefLeftOfGap(l.ref, l.gap))
            : VxOverlayLayout::IprLabelTilted(l.gap, l.ref, l.first->GetFrame().DirZ(),
                                              l.second->GetFrame().DirZ());
    // Kept with the label, though the billboard shows its own green.
    helper->SetTextColor(VxColor(255, 255, 0, 100));
    helper->SetBackColor(VxColor(0, 0, 50, 100));
    if (withCentre) {
        helper->Show(l.ref, mark, l.gap, labelPos, text);
    } else {
        helper->Show(l.gap, labelPos, text);
    }
    PaintLeader(helper);
    helper->SetVisible(l.first->IsVisible() && l.second->IsVisible() ? 1 : 0);
    labels.push_back(helper);
}

// The record's own pair; false for a record without one, which then gets no label.
bool RecordPair(const VxIPR& ipr, const VxTooth*& first, const VxTooth*& second) {
    first = ipr.GetFirstTooth();
    second = ipr.GetSecondTooth();
    return first != nullptr && second != nullptr;
}

void DeleteLabels(std::vector<VxTextHelper*>& labels) {
    for (VxTextHelper* label : labels) {
        label->Remove();
        delete label;
    }
    labels.clear();
}

} // namespace

void VxCacheStuff::ShowRemoveGlaze(VxIPR ipr, VxPoint ref) {
    const VxTooth* first = nullptr;
    const VxTooth* second = nullptr;
    if (!RecordPair(ipr, first, second)) {
        return;
    }
    // The label shows the widest gap the reduction opens, not the amount removed.
    ShowIprLabel(m_iprLabels, IprLabel(first, second, ipr.GetGapPos(), ref), IprLeader::Flat, false,
                 0, VxOverlayLayout::IprText(ipr.GetStep(), ipr.GetmaxGapValue()));
}

void VxCacheStuff::ShowRemoveGlazeWithStartPoint(VxPoint start, VxIPR ipr, VxPoint ref) {
    ShowRemoveGlazeWithStartPointwithMark(0, start, ipr, ref);
}

void VxCacheStuff::ShowRemoveGlazeWithStartPoint(VxTooth first, VxTooth second, int number,
                                                 double value, VxPoint start, VxIPR /*ipr*/,
                                                 VxPoint ref) {
    ShowIprLabel(m_iprLabels, IprLabel(&first, &second, start, ref), IprLeader::Tilted, true, 0,
                 VxOverlayLayout::IprText(number, value));
}

void VxCacheStuff::ShowRemoveGlazeWithStartPointwithMark(int mark, VxPoint start, VxIPR ipr,
                                                         VxPoint ref) {
    const VxTooth* first = nullptr;
    const VxTooth* second = nullptr;
    if (!RecordPair(ipr, first, second)) {
        return;
    }
    ShowIprLabel(m_iprLabels, IprLabel(first, second, start, ref), IprLeader::Tilted, true, mark,
                 VxOverlayLayout::IprText(ipr.GetStep(), ipr.GetmaxGapValue()));
}

void VxCacheStuff::ShowRemoveGlazeWithStartPointwithMark(VxTooth first, VxTooth second, int number,
                                                         double value, int mark, VxPoint start,
                                                         VxIPR /*ipr*/, VxPoint ref) {
    ShowIprLabel(m_iprLabels, IprLabel(&first, &second, start, ref), IprLeader::Tilted, true, mark,
                 VxOverlayLayout::IprText(number, value));
}

void VxCacheStuff::NuRenderShowRemoveGlazeWithStartPoint(const VxTooth& first,
                                                         const VxTooth& second, int /*number*/,
                                                         double value, VxPoint start,
                                                         const VxIPR& /*ipr*/, VxPoint ref) {
    // The short form: the amount alone, ".3" rather than "0.3".
    ShowIprLabel(m_iprLabels, IprLabel(&first, &second, start, ref), IprLeader::Tilted, true, 0,
                 VxOverlayLayout::IprShortText(value));
}

void VxCacheStuff::NuRenderShowRemoveGlazeWithStartPointwithMark(
    const VxTooth& first, const VxTooth& second, int number, double value, int mark, VxPoint start,
    const VxIPR& /*ipr*/, VxPoint ref) {
    ShowIprLabel(m_iprLabels, IprLabel(&first, &second, start, ref), IprLeader::Tilted, true, mark,
                 VxOverlayLayout::IprText(number, value));
}

void VxCacheStuff::UpdateRemoveGlazeInfo(bool isUp, int show) {
    for (VxTextHelper* label : m_iprLabels) {
        if (label->IsUp() == isUp) {
            label->SetVisible(show);
        }
    }
}

void VxCacheStuff::HideRemoveGlazeInfo() {
    // The helpers are of no further use once their billboards are gone.
    DeleteLabels(m_iprLabels);
}

void VxCacheStuff::ClearRemoveGlazeInfo() {
    DeleteLabels(m_iprLabels);
}

// The shader path's own names for these three do nothing: a host on either path hides and
// clears the labels with HideRemoveGlazeInfo and ClearRemoveGlazeInfo.
void VxCacheStuff::NuRenderUpdateRemoveGlazeInfo(bool /*isUp*/, int /*show*/) {}

void VxCacheStuff::NuRenderHideRemoveGlazeInfo() {}

void VxCacheStuff::NuRenderClearRemoveGlazeInfo() {}
