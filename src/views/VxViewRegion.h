// VxViewRegion: one view rectangle of the window (origin bottom-left, y upwards), with the
// transform of the model in it, the jaw mask and treatment step it shows, the model-view matrix
// read back at the end of its last draw, and its own camera. It does not draw; regions are made
// and deleted by VxViewManager and are not copied.
#pragma once

#include <frame/VxRenderEnums.h>
#include <interfaces/CPoint.h>
#include <interfaces/CString.h>
#include <interfaces/VxXForm.h>

#include <memory>

class VxCamera;

class VxViewRegion {
public:
    // Stores the rectangle, creates the camera and gives it the same rectangle as viewport.
    VxViewRegion(CPoint origin, int width, int height);
    virtual ~VxViewRegion();
    VxViewRegion(const VxViewRegion&) = delete;
    VxViewRegion& operator=(const VxViewRegion&) = delete;

    // Changes the rectangle and the camera's viewport together.
    void Set(CPoint origin, int width, int height);
    const CPoint& Origin() const { return m_origin; }
    int Width() const { return m_width; }
    int Height() const { return m_height; }
    // point in window pixels with y downwards; both ends of both ranges are inclusive.
    bool IsContain(CPoint point) const;

    bool IsActive() const { return m_active; }
    void SetActive(bool active) { m_active = active; }
    int GetViewId() const { return m_viewId; }
    void SetViewId(int id) { m_viewId = id; }

    VxXForm& GetXForm() { return m_xform; }
    const VxXForm& GetXForm() const { return m_xform; }
    void SetXForm(const VxXForm& xform) { m_xform = xform; }
    VxCamera* GetCamera() const { return m_camera.get(); }

    // Column-major, as glGetDoublev gives it.
    const double* GetModelViewMatrix() const { return m_modelView; }
    void SetModelViewMatrix(const double* m16);

    void SelectJawShow(Display_Selec selec) { m_jawShow = static_cast<unsigned int>(selec); }
    unsigned int GetUpDownSelec() const { return m_jawShow; }
    void SetDisplayStep(Display_Step step) { m_displayStep = static_cast<unsigned int>(step); }
    unsigned int GetDisplayStep() const { return m_displayStep; }
    double GetpixelmodelRatio() const { return m_pixelRatio; }
    void SetpixelmodelRatio(double ratio) { m_pixelRatio = ratio; }
    CString GetTitle() const { return m_title; }
    void SetTitle(CString title) { m_title = title; }

private:
    CPoint m_origin;
    int m_width = 0;
    int m_height = 0;
    bool m_active = false;
    // Identity until the first draw; mappings before a frame read this placeholder.
    double m_modelView[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    int m_viewId = 0;
    VxXForm m_xform;
    unsigned int m_jawShow = Display_Selec_All;
    unsigned int m_displayStep = Display_Step_Both;
    double m_pixelRatio = 0.0;
    CString m_title;
    std::unique_ptr<VxCamera> m_camera;
};
