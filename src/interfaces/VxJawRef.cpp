// VxJawRef: the existence rules of the jaw planes.
#include <interfaces/VxJawRef.h>

bool VxJawRef::GetMiddlePlane(VxFrame& frame, double& length) const {
    if (!m_hasMiddle)
        return false;
    frame = m_middleFrame;
    length = m_middleLength;
    return true;
}

bool VxJawRef::GetBackBoundaryPlane(VxFrame& frame, double& length) const {
    if (!m_hasBack)
        return false;
    frame = m_backFrame;
    length = m_backLength;
    return true;
}

bool VxJawRef::GetBackBoundaryPlanePts(std::vector<VxPoint>& points) const {
    if (m_backPts.empty())
        return false;
    points = m_backPts;
    return true;
}

bool VxJawRef::SetMiddlePlane(const VxFrame& frame, double length) {
    if (!frame.IsValid())
        return false;
    m_middleFrame = frame;
    m_middleLength = length;
    m_hasMiddle = true;
    return true;
}

bool VxJawRef::SetBackBoundaryPlane(const VxFrame& frame, double length) {
    if (!frame.IsValid())
        return false;
    m_backFrame = frame;
    m_backLength = length;
    m_hasBack = true;
    return true;
}
