// VxMoveDiffDataMgr: singleton and lookup.
#include <interfaces/VxMoveDiffDataMgr.h>

VxMoveDiffDataMgr* VxMoveDiffDataMgr::GetInstance() {
    static VxMoveDiffDataMgr s_instance;
    return &s_instance;
}

const ThreeMovementDiff_s* VxMoveDiffDataMgr::GetMovementDiff(int fdi) const {
    auto it = m_diffs.find(fdi);
    return it == m_diffs.end() ? nullptr : &it->second;
}
