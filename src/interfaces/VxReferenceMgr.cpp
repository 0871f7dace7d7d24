// VxReferenceMgr: singleton, ownership and the raw-pointer view of the tooth references.
#include <interfaces/VxReferenceMgr.h>

VxReferenceMgr* VxReferenceMgr::GetInstance() {
    static VxReferenceMgr s_instance;
    return &s_instance;
}

VxToothRef* VxReferenceMgr::Get(int fdi) const {
    auto it = m_view.find(fdi);
    return it == m_view.end() ? nullptr : it->second;
}

VxToothRef* VxReferenceMgr::Add(const VxToothRef& ref) {
    auto stored = std::make_unique<VxToothRef>(ref);
    VxToothRef* raw = stored.get();
    m_refs[ref.GetFDI()] = std::move(stored);
    m_view[ref.GetFDI()] = raw;
    return raw;
}

bool VxReferenceMgr::Remove(int fdi) {
    m_view.erase(fdi);
    return m_refs.erase(fdi) != 0;
}

VxJawRef* VxReferenceMgr::SetJawRef(const VxJawRef& ref) {
    auto& slot = m_jaw[ref.IsUp() ? 0 : 1];
    slot = std::make_unique<VxJawRef>(ref);
    return slot.get();
}

void VxReferenceMgr::Clear() {
    m_view.clear();
    m_refs.clear();
    m_jaw[0].reset();
    m_jaw[1].reset();
}
