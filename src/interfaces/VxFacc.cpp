// VxFacc: the reference-vertex list is the only part with a rule (no null entries).
#include <interfaces/VxFacc.h>

void VxFacc::SetAllRefVtx(const std::vector<VxVertex*>& vertices) {
    m_refVtx.clear();
    for (VxVertex* v : vertices)
        if (v != nullptr)
            m_refVtx.push_back(v);
}
