// VxAppScene: the host side that both programs share. It brings the library up in the order a
// host must follow (background, Create, total size, single view, models), frames the patient in
// the views, switches layouts, jaws, display modes and treatment steps, picks, and writes
// snapshots. One scene per process: the library's state is process-wide.
// It owns neither the window nor the case, opens no window and reads no file but the snapshot it
// writes; the programs do that.
#pragma once

#include "VxAppTypes.h"

#include <interfaces/CPoint.h>
#include <platform/VxWindowHandle.h>

#include <string>
#include <vector>

class VxCase;
class VxObject;
class VxOpenGLRender;
class VxViewRegion;

class VxAppScene {
public:
    enum class PickKind { Entity, Vertex, Edge };

    VxAppScene() = default;
    VxAppScene(const VxAppScene&) = delete;
    VxAppScene& operator=(const VxAppScene&) = delete;

    // Makes the library's context on the window (depth 24, stencil 8) and makes the single view.
    // The render path stays as set before (the shader path by default) unless the context's
    // version forces the fixed one. `background` is a BMP or empty. False with
    // `error` set when no context can be made or the background does not load.
    bool Open(HWND window, int width, int height, const std::string& background,
              std::string& error);
    // Installs the case and hands its model to the renderer and the selecter; frames the patient
    // and returns to the single layout.
    void SetCase(VxCase* c);
    VxCase* GetCase() const { return m_case; }

    // The front view of the patient, filling the views.
    void ResetView();
    void SetLayout(VxAppLayout layout);
    VxAppLayout GetLayout() const { return m_layout; }
    void SetJaws(VxAppJaws jaws);
    VxAppJaws GetJaws() const { return m_jaws; }
    void SetDisplay(VxAppDisplay display);
    VxAppDisplay GetDisplay() const { return m_display; }
    // False, with the fixed path in force, for the shader path on a context whose version is
    // below the test (4.3); before a context exists any path is accepted.
    bool SetRenderPath(VxAppRenderPath path, std::string& error);
    VxAppRenderPath GetRenderPath() const;

    // Treatment steps: 0 .. StepCount() - 1, at least one.
    int StepCount() const;
    int GetStep() const;
    void SetStep(int step);

    void Resize(int width, int height);
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // One frame into the back buffer, without the swap: the scene, then the aux registry.
    void RenderFrame();
    // Puts the sample of aux objects on the patient (true) or clears the registry (false).
    // False with `error` set when the case cannot carry the sample.
    bool SetAuxDemo(bool on, std::string& error);
    bool IsAuxDemo() const { return m_auxDemo; }
    // One of the case's patient pictures, shown through the overlay cache as a host would (the
    // overlays "xray", "front", "profile", "panoramic"), in the patient's place while it is
    // shown: the view that shows it (the first, or the active one after a layout change) leaves
    // the patient out so that the picture stays legible (None: no picture, the patient again). The
    // panoramic film carries its landmark markers. Any other picture shown goes. False with `error`
    // set, and no picture, when the case has no such picture.
    bool SetPicture(VxAppPictureKind kind, std::string& error);
    // The picture shown, by SetPicture or by the overlay of its name; None without one.
    VxAppPictureKind GetPicture() const;
    // The kind after `kind` in the cycle none, front, profile, xray, panoramic.
    static VxAppPictureKind NextPicture(VxAppPictureKind kind);
    // The small axis cross in each view's lower-right corner (on from the start).
    void SetAxisCross(bool on) { m_axisCross = on; }
    bool IsAxisCross() const { return m_axisCross; }
    // Hit test of the aux registry at a pixel (y from the top) after a frame; the hit object is
    // highlighted in the next frames. Its description, or empty when nothing is hit. With
    // `toggle` the hit object's selection flips as well.
    std::string AuxHit(const CPoint& pixel, bool toggle);
    // The swap (and glFlush) of a frame.
    void Present();
    // The whole window as a PNG; call between RenderFrame and Present.
    bool SaveSnapshot(const std::string& path, std::string& error);

    // Draws a frame, reads the stencil under the pixel (y from the top) and picks; the view under
    // the pixel becomes the active one. Null where nothing of the kind is there.
    VxObject* Pick(const CPoint& pixel, PickKind kind);
    // "tooth 36", "vertex 120 of tooth 36", "edge 7 of gum (upper)" and the like.
    std::string Describe(const VxObject* object) const;
    // Marks a tooth selected / highlighted; false when the case has no such tooth.
    bool SelectTooth(int fdi, bool selected);
    bool HighlightTooth(int fdi, bool highlighted);
    void ClearSelection();

    // The view under a pixel (y from the top), or the active one.
    VxViewRegion* ViewAt(const CPoint& pixel) const;
    VxOpenGLRender* Render() const;
    // Adds the plan's final placements as limit positions while the compare layout is up.
    void ApplyComparePlacements(bool compare);

private:
    void ApplyJaws();

    VxCase* m_case = nullptr;
    int m_width = 0;
    int m_height = 0;
    VxAppLayout m_layout = VxAppLayout::Single;
    VxAppJaws m_jaws = VxAppJaws::Both;
    VxAppDisplay m_display = VxAppDisplay::Solid;
    bool m_auxDemo = false;
    bool m_axisCross = true;
    // The jaw mask each view got from its layout, before the jaw choice narrows it.
    std::vector<unsigned int> m_layoutMasks;
};
