// VxViewRegion: rectangle bookkeeping and the containment test.
#include <views/VxViewRegion.h>

#include <views/VxCamera.h>
#include <views/VxViewManager.h>

VxViewRegion::VxViewRegion(CPoint origin, int width, int height)
    : m_origin(origin), m_width(width), m_height(height), m_camera(new VxCamera()) {
    m_camera->SetViewPort(origin.x, origin.y, width, height);
}

VxViewRegion::~VxViewRegion() = default;

void VxViewRegion::Set(CPoint origin, int width, int height) {
    m_origin = origin;
    m_width = width;
    m_height = height;
    m_camera->SetViewPort(origin.x, origin.y, width, height);
}

bool VxViewRegion::IsContain(CPoint point) const {
    // Mouse pixels count y from the top, regions from the bottom of the whole window.
    int totalWidth = 0;
    int totalHeight = 0;
    VxViewManager::GetInstance()->GetTotalViewSize(totalWidth, totalHeight);
    const int y = totalHeight - point.y;
    return m_origin.x <= point.x && point.x <= m_origin.x + m_width && m_origin.y <= y &&
           y <= m_origin.y + m_height;
}

void VxViewRegion::SetModelViewMatrix(const double* m16) {
    for (int i = 0; i < 16; ++i) {
        m_modelView[i] = m16[i];
    }
}
