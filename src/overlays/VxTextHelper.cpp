// VxTextHelper: builds and removes one billboard label.
#include <overlays/VxTextHelper.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>

VxTextHelper::VxTextHelper(VxAuxRender* auxRender) : m_auxRender(auxRender) {}

VxTextHelper::~VxTextHelper() = default;

void VxTextHelper::Show(VxPoint anchor, VxPoint labelPos, CString text) {
    Build(nullptr, 0, anchor, labelPos, text);
}

void VxTextHelper::Show(VxPoint centre, int mark, VxPoint anchor, VxPoint labelPos, CString text) {
    Build(&centre, mark, anchor, labelPos, text);
}

void VxTextHelper::Build(const VxPoint* centre, int mark, const VxPoint& anchor,
                         const VxPoint& labelPos, const CString& text) {
    m_billboard = new VxAuxBillBoard3d(nullptr);
    m_billboard->SetTextType(Text_ModelDepth);
    m_billboard->SetSize(10);
    m_billboard->SetText(text);
    m_billboard->SetIsFront(true);
    m_billboard->SetColor(VxColor(2, 187, 112, 255));
    m_billboard->SetVisible(true);
    m_billboard->SetLine(anchor, labelPos);
    m_billboard->SetIsUp(m_isUp);
    if (centre != nullptr) {
        m_billboard->SetMark(mark);
        m_billboard->SetcenterPt(*centre);
    }
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    if (render != nullptr) {
        const CPoint label = render->MapModelPointToScreen(labelPos);
        const CPoint at = render->MapModelPointToScreen(anchor);
        m_billboard->SetAnchorPosition(label.x < at.x ? AnchorPosition_Side : AnchorPosition_Below);
    }
    if (m_auxRender != nullptr)
        m_auxRender->AddAuxObject(m_billboard);
}

void VxTextHelper::SetVisible(int visible) {
    if (m_billboard != nullptr)
        m_billboard->SetVisible(visible);
}

void VxTextHelper::Remove() {
    if (m_billboard == nullptr)
        return;
    if (m_auxRender != nullptr)
        m_auxRender->RemoveAuxObject(m_billboard, true);
    else
        delete m_billboard;
    m_billboard = nullptr;
}
