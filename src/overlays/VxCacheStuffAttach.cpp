// VxCacheStuff: the attachment labels and the measuring grid. An attachment label says in which
// steps the attachment is worn; its leader points away from the host's centre (the arch's middle
// as seen) so that labels fan out around the arch instead of crossing it.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <overlays/VxMeasureGrid.h>
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

void DropLabels(std::vector<VxTextHelper*>& labels) {
    for (VxTextHelper* label : labels) {
        label->Remove();
        delete label;
    }
    labels.clear();
}

} // namespace

void VxCacheStuff::ShowAttachmentInfo(const std::vector<VxAttachment*>& attachments,
                                      VxPoint& centre) {
    RemoveAttachmentHelper();
    for (VxAttachment* attachment : attachments) {
        ShowAttachmentHelper(attachment, centre);
    }
}

void VxCacheStuff::UpdateAttachmentInfo(bool isUp, int show) {
    for (VxTextHelper* label : m_attachLabels) {
        if (label->IsUp() == isUp) {
            label->SetVisible(show);
        }
    }
}

void VxCacheStuff::HideAttachmentInfo() {
    RemoveAttachmentHelper();
}

void VxCacheStuff::RemoveAttachmentHelper() {
    // The helpers are of no further use once their billboards are gone.
    DropLabels(m_attachLabels);
}

void VxCacheStuff::ShowAttachmentHelper(VxAttachment* attachment, VxPoint& centre) {
    // An attachment without a tooth has no jaw, side or visibility to go by: no label.
    if (attachment == nullptr || attachment->GetTooth() == nullptr) {
        return;
    }
    VxTooth* tooth = attachment->GetTooth();
    VxFrame frame = attachment->GetCurFrame();
    frame.Transform(attachment->GetCurrentMatrix());
    const VxPoint p = frame.GetOrigin();

    auto* helper = new VxTextHelper(VxRenderStatus::GetInstance()->GetAuxRender());
    helper->SetIsUp(tooth->IsUp());

    const VxStdAttach* shape = attachment->GetStdAttachment();
    const CString identifier = shape != nullptr ? shape->GetAttachIdentifier() : CString();
    double distance = 10.0;
    if (!VxOverlayLayout::IsFixedDistanceAttach(identifier)) {
        // Which way the attachment faces from the middle of the tooth as the clinician sees it.
        const VxPoint seeCentre = GetToothSeeCenter(tooth);
        const double side = tooth->GetFrame().DirY() % (p - seeCentre);
        distance = VxOverlayLayout::AttachLabelDistance(identifier, tooth->GetFDI(), side);
    }
    const CString text =
        VxOverlayLayout::AttachText(attachment->GetStartStep(), attachment->GetEndStep());

    bool centreLeft = false;
    if (VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender()) {
        centreLeft = render->MapModelPointToScreen(centre).x < render->MapModelPointToScreen(p).x;
    }
    const VxPoint labelPos = VxOverlayLayout::AttachLabelPos(p, centre, distance, centreLeft);

    // Kept with the label, though the billboard shows its own green.
    helper->SetTextColor(VxColor(255, 0, 0, 100));
    helper->SetBackColor(VxColor(20, 254, 250, 100));
    helper->Show(p, labelPos, text);
    PaintLeader(helper);
    helper->SetVisible(tooth->IsVisible() ? 1 : 0);
    m_attachLabels.push_back(helper);
}

void VxCacheStuff::DrawGrid(int show) {
    if (m_measureGrid == nullptr) {
        m_measureGrid = new VxMeasureGrid(VxRenderStatus::GetInstance()->GetAuxRender());
        m_measureGrid->SetCellSize(10, 10);
        m_measureGrid->Build();
    }
    m_measureGrid->Refresh(show);
}

void VxCacheStuff::DeleteGrid() {
    delete m_measureGrid;
    m_measureGrid = nullptr;
}

void VxCacheStuff::RefreshMeshBenchmark(double /*ratio*/) {
    // Only the views the grid was built for; the ratio each view keeps is what counts.
    if (m_measureGrid != nullptr) {
        m_measureGrid->RefreshBuiltViews();
    }
}
