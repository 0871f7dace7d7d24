// VxRenderStatus: the process-wide render state. Owns the renderer, the selecter and the
// off-screen frame buffer and the aux registry, and keeps the select types,
// display mode, feedback type under the cursor and the zoom rectangle. It draws nothing and
// touches no GL.
#pragma once

#include <frame/VxFrameBufferObj.h>
#include <frame/VxRenderEnums.h>
#include <interfaces/CPoint.h>
#include <interfaces/CRect.h>
#include <interfaces/VxObjectType.h>

#include <vector>

class VxOpenGLRender;
class VxAuxRender;
class VxOpenGLSelect;

class VxRenderStatus {
public:
    static VxRenderStatus* GetInstance();
    virtual ~VxRenderStatus();

    VxOpenGLRender* GetRender() const { return m_render; }
    VxAuxRender* GetAuxRender() const { return m_auxRender; }
    VxOpenGLSelect* GetSelecter() const { return m_selecter; }
    VxFrameBufferObj* GetFrameBufObj() { return &m_frameBufObj; }

    DisplayMode_e GetDisplayMode() const { return m_displayMode; }
    void SetDisplayMode(DisplayMode_e mode) { m_displayMode = mode; }
    FeedbackType_e GetFeedbackType() const { return m_feedbackType; }
    void SetFeedbackType(FeedbackType_e type) { m_feedbackType = type; }

    std::vector<ObjectType_e> GetSelectType() const { return m_selectTypes; }
    void SetSelectType(const std::vector<ObjectType_e>& types) { m_selectTypes = types; }
    // Value 0 on an empty list answers true: an empty list means anything may be chosen.
    bool ExistSelectType(ObjectType_e type) const;
    // True if any element exists; an empty argument gives false.
    bool ExistSelectType(const std::vector<ObjectType_e>& types) const;

    CPoint GetLastCursorPoint() const { return m_lastCursorPoint; }
    void SetLastCursorPoint(const CPoint& p) { m_lastCursorPoint = p; }
    bool IsAllowMultiSel() const { return m_allowMultiSel; }
    void SetAllowMultiSel(bool allow) { m_allowMultiSel = allow; }
    bool IsShowBackupRoot() const { return m_showBackupRoot; }
    void SetShowBackupRoot(bool show) { m_showBackupRoot = show; }

    const CRect& GetZoomArea() const { return m_zoomArea; }
    // Left-top becomes the point; right-bottom keeps its value.
    void StartZoomArea(const CPoint& p);
    void UnderZoomArea(const CPoint& p);
    void FinishZoomArea() { m_zoomArea.SetRectEmpty(); }

private:
    VxRenderStatus();
    VxRenderStatus(const VxRenderStatus&) = delete;
    VxRenderStatus& operator=(const VxRenderStatus&) = delete;

    VxOpenGLRender* m_render = nullptr;
    VxAuxRender* m_auxRender = nullptr;
    VxOpenGLSelect* m_selecter = nullptr;
    VxFrameBufferObj m_frameBufObj;
    DisplayMode_e m_displayMode = DisplayMode_Solid;
    std::vector<ObjectType_e> m_selectTypes;
    CPoint m_lastCursorPoint;
    FeedbackType_e m_feedbackType = FeedbackType_None;
    CRect m_zoomArea;
    bool m_allowMultiSel = false;
    bool m_showBackupRoot = false;
};
