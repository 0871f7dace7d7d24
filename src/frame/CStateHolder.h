// CStateHolder: a scope guard for the selection regime. It saves the select types and the
// multi-selection flag of VxRenderStatus when built and writes them back when it dies, so an
// operation can change them for its own duration. It saves nothing else.
#pragma once

#include <interfaces/VxObjectType.h>

#include <vector>

class CStateHolder {
public:
    CStateHolder();
    CStateHolder(const CStateHolder& other) = default;
    CStateHolder& operator=(const CStateHolder& other) = default;
    virtual ~CStateHolder();

    void ReSetState();

private:
    std::vector<ObjectType_e> m_selectTypes;
    bool m_allowMultiSel = false;
};
