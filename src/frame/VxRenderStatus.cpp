// VxRenderStatus: construction order of the owned objects and the select-type queries.
#include <frame/VxRenderStatus.h>

#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <select/VxOpenGLSelect.h>

#include <algorithm>

VxRenderStatus* VxRenderStatus::GetInstance() {
    static VxRenderStatus instance;
    return &instance;
}

VxRenderStatus::VxRenderStatus()
    : m_selectTypes{ObjectType_Jaw,         ObjectType_Gum,        ObjectType_Tooth,
                    ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Mesh} {
    // Built in the order render, selecter, aux render; the constructors touch no GL, so this
    // runs fine before any context exists.
    m_render = new VxOpenGLRender();
    m_selecter = new VxOpenGLSelect();
    m_auxRender = new VxAuxRender();
}

VxRenderStatus::~VxRenderStatus() {
    // Deleted in the order render, aux render, selecter.
    delete m_render;
    m_render = nullptr;
    delete m_auxRender;
    m_auxRender = nullptr;
    delete m_selecter;
    m_selecter = nullptr;
}

bool VxRenderStatus::ExistSelectType(ObjectType_e type) const {
    if (type == ObjectType_None && m_selectTypes.empty()) {
        return true;
    }
    return std::find(m_selectTypes.begin(), m_selectTypes.end(), type) != m_selectTypes.end();
}

bool VxRenderStatus::ExistSelectType(const std::vector<ObjectType_e>& types) const {
    for (ObjectType_e t : types) {
        if (ExistSelectType(t)) {
            return true;
        }
    }
    return false;
}

void VxRenderStatus::StartZoomArea(const CPoint& p) {
    m_zoomArea.left = p.x;
    m_zoomArea.top = p.y;
}

void VxRenderStatus::UnderZoomArea(const CPoint& p) {
    m_zoomArea.right = p.x;
    m_zoomArea.bottom = p.y;
}
