// VxViewer: the interactive viewer. A GLFW window without a GL context of GLFW's own: its X11
// handles go to VxNativeWindow::FromX11, so the library makes and owns the context as it would in
// a host's window. Mouse and keys drive the views (arcball turn, zoom, pan, pick) and the scene
// (layouts, synchronised views, display modes, jaws, steps, snapshots).
// It does not read or write cases beyond the one it opens, and holds no GL object of its own.
#pragma once

#include "VxAppHandle.h"
#include "VxAppEditor.h"
#include "VxAppScene.h"
#include "VxAppTypes.h"

#include <interfaces/VxPoint.h>

#include <memory>
#include <string>

class VxCase;
class VxNativeWindow;
struct GLFWwindow;

struct VxViewerOptions {
    std::string caseDir;
    unsigned seed = 1;
    int width = 1280;
    int height = 800;
    VxAppLayout layout = VxAppLayout::Single;
    std::string background;
    // Non-empty: draw a few frames, save this snapshot, send ourselves the quit key, exit.
    std::string smokeTestSnapshot;
};

class VxViewer {
public:
    VxViewer();
    ~VxViewer();
    VxViewer(const VxViewer&) = delete;
    VxViewer& operator=(const VxViewer&) = delete;

    // The exit status; on failure `error` holds one line.
    int Run(const VxViewerOptions& options, std::string& error);

    static std::string KeyHelp();

private:
    static VxViewer* From(GLFWwindow* window);
    void OnKey(int key, int action, int mods);
    void OnMouseButton(int button, int action);
    void OnCursor(double x, double y);
    void OnScroll(double yOffset);
    void OnFramebufferSize(int width, int height);

    CPoint ToPixel(double x, double y) const;
    void Redraw();
    void PickAt(const CPoint& pixel);
    void SetLayout(VxAppLayout layout);
    void Snapshot();
    void PrintState(const std::string& what) const;
    int RunSmokeTest(const std::string& path, std::string& error);

    VxAppScene m_scene;
    std::unique_ptr<VxCase> m_case;
    std::unique_ptr<VxNativeWindow> m_native;
    GLFWwindow* m_window = nullptr;
    bool m_dirty = true;
    bool m_quitKey = false;
    VxAppScene::PickKind m_pickKind = VxAppScene::PickKind::Entity;
    int m_snapshots = 0;

    // Drag state: the button held, where it went down, where it was last, the arcball point.
    int m_button = -1;
    CPoint m_pressPixel;
    CPoint m_lastPixel;
    VxPoint m_lastSphere;
    bool m_dragged = false;
    // The manipulator of key T, and whether the drag under way moves it (and its tooth).
    VxAppHandle m_handle;
    bool m_handleDrag = false;

    // The in-view gap editor (key E): the viewer is its host.
    VxAppEditor m_editor;
    void ToggleEditor();
};
