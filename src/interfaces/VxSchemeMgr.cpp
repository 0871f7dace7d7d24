// VxSchemeMgr: ownership and the current-scheme rule.
#include <interfaces/VxSchemeMgr.h>

#include <algorithm>
#include <utility>

VxSchemeMgr* VxSchemeMgr::GetInstance() {
    static VxSchemeMgr s_instance;
    return &s_instance;
}

VxScheme* VxSchemeMgr::AddScheme(std::unique_ptr<VxScheme> scheme) {
    if (!scheme)
        return nullptr;
    VxScheme* stored = scheme.get();
    m_schemes.push_back(std::move(scheme));
    if (m_cur == nullptr)
        m_cur = stored;
    return stored;
}

bool VxSchemeMgr::RemoveScheme(VxScheme* scheme) {
    auto it =
        std::find_if(m_schemes.begin(), m_schemes.end(),
                     [scheme](const std::unique_ptr<VxScheme>& s) { return s.get() == scheme; });
    if (scheme == nullptr || it == m_schemes.end())
        return false;
    if (m_cur == scheme)
        m_cur = nullptr;
    m_schemes.erase(it);
    return true;
}

VxScheme* VxSchemeMgr::GetScheme(int index) const {
    if (index < 0 || index >= GetSchemeCount())
        return nullptr;
    return m_schemes[static_cast<size_t>(index)].get();
}

bool VxSchemeMgr::SetCurScheme(VxScheme* scheme) {
    if (scheme != nullptr &&
        std::none_of(m_schemes.begin(), m_schemes.end(),
                     [scheme](const std::unique_ptr<VxScheme>& s) { return s.get() == scheme; }))
        return false;
    m_cur = scheme;
    return true;
}

void VxSchemeMgr::Clear() {
    m_cur = nullptr;
    m_schemes.clear();
}
