// VxSchemeMgr: the process-wide list of treatment schemes and which one is current. It owns the
// schemes added to it; the overlays read the current one. It does not load or compare schemes.
#pragma once

#include <interfaces/VxScheme.h>

#include <memory>
#include <vector>

class VxSchemeMgr {
public:
    // Function-local static: built on first use, destroyed at process exit.
    static VxSchemeMgr* GetInstance();

    // Takes ownership and gives the stored scheme back (null for a null argument). The first
    // scheme added while none is current becomes current, so a host with one plan needs no
    // further call.
    VxScheme* AddScheme(std::unique_ptr<VxScheme> scheme);
    // Deletes the scheme; if it was current, no scheme is current afterwards. False for a scheme
    // this manager does not hold.
    bool RemoveScheme(VxScheme* scheme);
    int GetSchemeCount() const { return static_cast<int>(m_schemes.size()); }
    // Null outside 0..count-1.
    VxScheme* GetScheme(int index) const;

    // Null when no scheme is current.
    VxScheme* GetCurScheme() const { return m_cur; }
    // Only a scheme held by this manager, or null, can become current; anything else answers
    // false and leaves the current one.
    bool SetCurScheme(VxScheme* scheme);

    // Deletes every scheme; none is current afterwards.
    void Clear();

private:
    VxSchemeMgr() = default;
    VxSchemeMgr(const VxSchemeMgr&) = delete;
    VxSchemeMgr& operator=(const VxSchemeMgr&) = delete;

    std::vector<std::unique_ptr<VxScheme>> m_schemes;
    VxScheme* m_cur = nullptr;
};
