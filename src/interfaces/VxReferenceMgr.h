// VxReferenceMgr: the process-wide reference data of the patient: one VxToothRef per tooth, by
// FDI number, and one VxJawRef per jaw. It owns what is stored in it; pointers it hands out stay
// valid until that entry is replaced or removed, or Clear runs. It does not compute references.
#pragma once

#include <interfaces/VxJawRef.h>
#include <interfaces/VxToothRef.h>

#include <map>
#include <memory>

class VxReferenceMgr {
public:
    // Function-local static: built on first use, destroyed at process exit.
    static VxReferenceMgr* GetInstance();

    // Null when the tooth has no reference.
    VxToothRef* Get(int fdi) const;
    // Every reference by FDI number; no null values.
    const std::map<int, VxToothRef*>& GetAll() const { return m_view; }
    // The jaw's planes; null when none were set. Without an argument, the upper jaw.
    VxJawRef* GetJawRef(bool up = true) const { return m_jaw[up ? 0 : 1].get(); }

    // Stores a copy under its own FDI number, replacing (and deleting) an earlier one.
    VxToothRef* Add(const VxToothRef& ref);
    bool Remove(int fdi);
    // Stores a copy for its jaw (VxJawRef::IsUp), replacing an earlier one.
    VxJawRef* SetJawRef(const VxJawRef& ref);
    void RemoveJawRef(bool up) { m_jaw[up ? 0 : 1].reset(); }
    // Drops all tooth and jaw references.
    void Clear();

private:
    VxReferenceMgr() = default;
    VxReferenceMgr(const VxReferenceMgr&) = delete;
    VxReferenceMgr& operator=(const VxReferenceMgr&) = delete;

    std::map<int, std::unique_ptr<VxToothRef>> m_refs;
    // Raw-pointer mirror of m_refs, the form GetAll's readers take.
    std::map<int, VxToothRef*> m_view;
    std::unique_ptr<VxJawRef> m_jaw[2]; // [0] upper, [1] lower
};
