// VxViewManager: owns the view regions of the window and builds the layouts (one view, two jaws,
// compare, four and five views) from the reference jaw's frame, keeps their rectangles right on
// resize, and turns, zooms and pans one view or, when synchronised, all of them.
// It does not draw and holds no GL object; ViewLookAt reads the renderer's stored matrices.
#pragma once

#include <frame/VxRenderEnums.h>
#include <interfaces/CPoint.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

#include <vector>

class VxModel;
class VxViewRegion;

class VxViewManager {
public:
    static VxViewManager* GetInstance();
    ~VxViewManager();

    // Plain store; rectangles change only in CreateSingleView and the Adjust/Switch calls.
    void SetTotalViewSize(int width, int height);
    void GetTotalViewSize(int& width, int& height) const;

    // Appends a new active region of the whole window with id 0, whatever is there already.
    void CreateSingleView();
    void Clear();
    void AdjustSingleView();
    // The rectangles of the current layout for the current size; transforms are not touched.
    void AdjustMultiView();
    void SwitchToSingleView();
    // Upper and lower jaw side by side. No guard: called in a multi-view layout it adds a view.
    void SwitchTo2View(VxModel& model);
    // Initial and final state side by side; the second model is not used.
    void SwitchTo2View(VxModel& model, VxModel& secondModel);
    void SwitchToMultiView(VxModel& model);
    void SwitchTo5View(VxModel& model);
    bool IsMultiView() const { return m_views.size() > 1; }

    const std::vector<VxViewRegion*>& GetAllViews() const { return m_views; }
    // First region in order containing a pixel (y downwards); shared borders go to the first.
    VxViewRegion* GetView(CPoint point) const;
    VxViewRegion* GetView(int id) const;
    // First region whose stored model-view matrix equals the given one in its first 15 numbers.
    VxViewRegion* GetView(const double* modelView) const;
    VxViewRegion* GetActiveView() const;
    void SetActiveView(int id);
    void SetActiveView(VxViewRegion* view);

    Display_Mode GetDisplayMode() const { return m_displayMode; }
    void SetDisplayMode(Display_Mode mode) { m_displayMode = mode; }
    void EnableSynView(bool enable) { m_synchronised = enable; }
    bool IsSynView() const { return m_synchronised; }

    // m is a 3 x 3 rotation (the upper-left block of a 4 x 4 is used if one is given).
    void RotateView(VxViewRegion* view, const VxMatrix& m);
    void ScaleView(VxViewRegion* view, double factor);
    void TranslateView(VxViewRegion* view, const VxVector& v);
    // Turns the view so the frame of directions a and b is square to the screen, and moves it so
    // that p stays where it was on screen. Needs a frame drawn and an active view.
    void ViewLookAt(VxViewRegion* view, const VxPoint& p, const VxVector& a, const VxVector& b);

    // The rotation that brings the reference jaw's frame to the screen axes: the first jaw that
    // is not empty and has a valid frame; the identity without one. 3 x 3.
    static VxMatrix GetReferenceRotation(VxModel& model);
    // The fixed view matrices the layouts multiply with the reference rotation. 3 x 3.
    enum FixedView : int {
        View_Front,
        View_Left,
        View_Right,
        View_Back,
        View_OcclusalUpper,
        View_OcclusalLower
    };
    static VxMatrix GetFixedMatrix(FixedView which);

    int GetPreviousWidth() const { return m_previousWidth; }
    int GetPreviousHeight() const { return m_previousHeight; }

private:
    VxViewManager() = default;
    VxViewManager(const VxViewManager&) = delete;
    VxViewManager& operator=(const VxViewManager&) = delete;

    VxViewRegion* NewView(CPoint origin, int width, int height, int id);

    bool m_synchronised = false;
    int m_totalWidth = 0;
    int m_totalHeight = 0;
    int m_previousWidth = 0;
    int m_previousHeight = 0;
    Display_Mode m_displayMode = Display_Mode_Normal;
    std::vector<VxViewRegion*> m_views;
    std::vector<VxViewRegion*> m_spare; // kept empty
};
