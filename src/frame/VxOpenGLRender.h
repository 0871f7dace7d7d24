// VxOpenGLRender: owns the window's GL context and drives one frame: clears, sets up the cameras,
// paints the background and layout lines, then view by view hands every entity of the model to
// the drawer of the render path in force. It also maps between screen, GL window coordinates and
// the model, reads the stencil under the cursor, and draws the zoom rectangle and corner icons.
// It knows nothing of tooth or gum geometry, never swaps buffers inside a frame, and never
// releases the GL context (the host must not rely on GL objects being released).
#pragma once

#include <frame/VxRenderEnums.h>
#include <interfaces/CPoint.h>
#include <interfaces/CString.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxPoint.h>
#include <platform/VxWindowHandle.h>

#include <vector>

class CImage;
class CRect;
class CWnd;
class VxAuxText;
class VxCamera;
class VxEntity;
class VxGLContext;
class VxModel;
class VxViewRegion;

class VxOpenGLRender {
public:
    // Touches no GL; the one renderer is built by VxRenderStatus.
    VxOpenGLRender();
    virtual ~VxOpenGLRender();
    VxOpenGLRender(const VxOpenGLRender&) = delete;
    VxOpenGLRender& operator=(const VxOpenGLRender&) = delete;

    // Device context, pixel format, context, make current; false at the first step that fails,
    // with nothing torn down, so IsValid already answers true after a failed Create.
    bool Create(HWND window, int depthBits, int stencilBits);
    bool IsValid() const { return m_window != nullptr; }
    // Binds the held context to the window of wnd; the result of the bind is ignored.
    void MakeCurrent(CWnd* wnd);
    void ResizeViewport(int width, int height);
    // Stores the pointer only: no buffers, no eye distance.
    void SetModel(VxModel* model) { m_model = model; }
    VxModel* GetModel() const { return m_model; }

    // One frame without the swap. With drawModel false only the background and layout lines are
    // painted. Always true.
    bool RenderScene(bool drawModel = true);
    void Prepare();
    void SetupCamera();
    void SetupCamera(VxViewRegion* view);
    void SetupLight();
    void SetUpMaterial();
    void ProcessFeedback(CPoint point);
    // glFlush, then the buffer swap of the held context.
    void Flush();

    VxCamera* GetCamera() const { return m_camera; }
    double GetYExtRat() const { return m_yExtRat; }
    void SetYExtRat(double ratio) { m_yExtRat = ratio; }
    // Distance of the eye from the model; starts at -10 and only ever grows.
    double GetEyeDistance() const { return m_eyeDistance; }
    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    HWND GetWindow() const { return m_window; }
    VxGLContext* GetGLContext() const { return m_glContext; }

    // Takes effect only in a following Create: Initialize loads it.
    void SetBkGround(const CString& path) { m_bkPath = path; }
    void SetLeftDownBmp(const std::vector<CString>& paths) { m_leftDownPaths = paths; }
    // A small axis cross in the lower-right corner of each view, 100 pixels high, turning with
    // the view's rotation but not with its zoom or pan. Leaves the last axis viewport in force.
    void DrawCoordinateSystem();
    void DrawZoomArea();

    // Coordinate mapping. Screen pixels count y from the top, GL window coordinates from the
    // bottom; H is the window height held here. Projections use the matrix now in GL and the
    // view's stored model-view matrix, so these mean something only after a frame.
    CPoint MapModelPointToScreen(VxViewRegion* view, const VxPoint& p, double* depth);
    CPoint MapModelPointToScreen(const VxPoint& p);
    CPoint MapModelPointToScreen(const VxPoint& p, bool* visible);
    VxPoint MapModelPointToWorld(const VxPoint& p);
    VxPoint MapScreenPoint(VxPoint& w);
    VxPoint MapScreenPointToModel(VxViewRegion* view, const CPoint& pixel, double depth);
    VxPoint MapScreenPointToModel(const CPoint& pixel, double depth);
    VxPoint MapScreenPointToModel(const CPoint& pixel);
    VxPoint MapScreenPointToModelForText(const CPoint& pixel, double depth);
    VxPoint MapScreenCoordToSphere(const CPoint& pixel);
    VxLine GetCursorRay(const CPoint& pixel);
    double GetpixelmodelRatio(VxViewRegion* view);
    // The vectors are taken by value, so the caller receives nothing; the signature is kept.
    void Get1mmModelPointIndex(VxViewRegion* view, std::vector<int> first, std::vector<int> second);
    bool IsMouseOnModel(const CPoint& pixel);

    // Off-screen capture: a new picture of a rectangle of the back buffer (screen pixels, y from
    // the top), owned by the caller; null for an empty rectangle. It belongs before Flush: after
    // the swap the back buffer's contents are undefined.
    CImage* CreateSnapshot(const CRect& rect);

private:
    void CreateAxisText();
    void DeleteAxisText();
    friend class VxOpenGLRenderTestAccess;

    bool Initialize();
    bool DrawModel(VxViewRegion* view);
    bool DrawModel();
    bool IsShowEntity(VxEntity* entity, Display_Selec selec);
    bool SkipBySelType(int stencil);
    bool LoadBkTexture();
    void DrawBackgroud() const;
    bool LoadLeftInfoImage();
    void DrawLeftDownInfo();
    // Viewport of a view and the projection now in GL, for the mapping operations.
    void GetViewportAndProjection(VxViewRegion* view, int viewport[4], double projection[16]);
    float ReadDepth(int x, int y);

    int m_width = 100;
    int m_height = 100;
    double m_eyeDistance = -10.0;
    HWND m_window = nullptr;
    // The EGL display standing for the window's device context.
    void* m_deviceContext = nullptr;
    // Never deleted: nothing releases the context.
    VxGLContext* m_glContext = nullptr;
    unsigned int m_bkTexture = 0;
    std::vector<unsigned int> m_leftDownTextures;
    std::vector<CString> m_leftDownPaths;
    VxCamera* m_camera = nullptr;
    VxModel* m_model = nullptr;
    CString m_bkPath;
    // The axis letters "X", "Y", "Z", each built once by Create rather than re-texted in every
    // view of every frame.
    VxAuxText* m_axisText[3] = {nullptr, nullptr, nullptr};
    double m_yExtRat = 1.0;
};
