// CStateHolder: save on construction, restore on ReSetState and on destruction.
#include <frame/CStateHolder.h>

#include <frame/VxRenderStatus.h>

CStateHolder::CStateHolder()
    : m_selectTypes(VxRenderStatus::GetInstance()->GetSelectType()),
      m_allowMultiSel(VxRenderStatus::GetInstance()->IsAllowMultiSel()) {}

CStateHolder::~CStateHolder() {
    ReSetState();
}

void CStateHolder::ReSetState() {
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    status->SetSelectType(m_selectTypes);
    status->SetAllowMultiSel(m_allowMultiSel);
}
