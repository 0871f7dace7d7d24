// VxMidCurve: the reference-vertex list is the only part with a rule (no null entries).
#include <interfaces/VxMidCurve.h>

void VxMidCurve::SetAllRefVtx(const std::vector<VxVertex*>& vertices) {
    m_refVtx.clear();
    for (VxVertex* v : vertices)
        if (v != nullptr)
            m_refVtx.push_back(v);
}
