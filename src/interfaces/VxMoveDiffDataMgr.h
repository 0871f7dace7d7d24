// VxMoveDiffDataMgr: the process-wide table of movement limits, one ThreeMovementDiff_s per tooth
// by FDI number. The host fills it from its clinical settings; the movement marks read it. It
// does not compute movements.
#pragma once

#include <interfaces/ThreeMovementDiff_s.h>

#include <map>

class VxMoveDiffDataMgr {
public:
    // Function-local static: built on first use, destroyed at process exit.
    static VxMoveDiffDataMgr* GetInstance();

    const std::map<int, ThreeMovementDiff_s>& GetMovementDiff() const { return m_diffs; }
    // Null when the tooth has no entry.
    const ThreeMovementDiff_s* GetMovementDiff(int fdi) const;
    void SetMovementDiff(const std::map<int, ThreeMovementDiff_s>& diffs) { m_diffs = diffs; }
    void SetMovementDiff(int fdi, const ThreeMovementDiff_s& diff) { m_diffs[fdi] = diff; }
    void RemoveMovementDiff(int fdi) { m_diffs.erase(fdi); }
    void Clear() { m_diffs.clear(); }

private:
    VxMoveDiffDataMgr() = default;
    VxMoveDiffDataMgr(const VxMoveDiffDataMgr&) = delete;
    VxMoveDiffDataMgr& operator=(const VxMoveDiffDataMgr&) = delete;

    std::map<int, ThreeMovementDiff_s> m_diffs;
};
