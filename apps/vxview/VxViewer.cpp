// VxViewer: event handling of the interactive viewer.
//
// Start-up:
//   1. GLFW window with GLFW_NO_API, so GLFW makes no context;
//   2. its X11 display and window wrapped by VxNativeWindow::FromX11;
//   3. VxAppScene::Open makes the library's context on it and the single view;
//   4. the case goes in, the layout is applied, the key list is printed.
// Each event changes the views or the scene and marks the window dirty; the loop draws a frame
// (RenderScene, then Flush for the swap) only when something changed.
// A click is a left press and release that moved less than a few pixels; any more is a turn.
#include "VxViewer.h"

#include "VxViewerOverlays.h"
#include "VxAppOverlays2.h"

#include "VxAppCase.h"
#include "VxArcball.h"
#include "VxViewerX11.h"

#include <VxCase.h>

#include <frame/VxOpenGLRender.h>
#include <interfaces/VxObject.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GLFW/glfw3.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

// A press and release closer than this, in pixels (|dx| + |dy|), is a click, not a drag.
constexpr int kClickSlop = 3;
// One notch of the wheel.
constexpr double kZoomStep = 1.1;

const char* PickKindName(VxAppScene::PickKind kind) {
    switch (kind) {
    case VxAppScene::PickKind::Entity:
        return "whole objects";
    case VxAppScene::PickKind::Vertex:
        return "vertices";
    case VxAppScene::PickKind::Edge:
        return "edges";
    }
    return "?";
}

void GlfwError(int code, const char* description) {
    std::fprintf(stderr, "vxview: GLFW error %d: %s\n", code, description);
}

} // namespace

VxViewer::VxViewer() = default;

VxViewer::~VxViewer() {
    // The context is released from the window's surface before the surface goes, and the X11
    // window outlives its wrapper.
    if (m_native && m_scene.Render()->GetGLContext()) {
        m_scene.Render()->GetGLContext()->DoneCurrent();
    }
    m_native.reset();
    if (m_window) {
        glfwDestroyWindow(m_window);
        glfwTerminate();
    }
}

std::string VxViewer::KeyHelp() {
    return "vxview keys and mouse:\n"
           "  left drag        turn the view (arcball)\n"
           "  right drag       move the view\n"
           "  wheel            zoom in and out\n"
           "  left click       pick what lies under the cursor and toggle its selection\n"
           "  1 2 3 4 5        layout: single, two jaws, compare, four views, five views\n"
           "  S                synchronised views on/off (a turn, zoom or move acts on all)\n"
           "  M                display mode: solid, solid+edges, edges, points\n"
           "  U  L  B          show the upper jaw, the lower jaw, both\n"
           "  Right / Left     next / previous treatment step (Home, End: first, last)\n"
           "  P                render path: shader or fixed\n"
           "  K                what a click picks: whole objects, vertices, edges\n"
           "  X                clear the selection\n"
           "  A                aux sample on/off; with it on, a click first tries the aux\n"
           "                   objects: the hit one is highlighted and its selection toggled\n"
           "  T                manipulator on the selected tooth (else a molar), cycling: frame\n"
           "                   handle, position handle move modes 0 to 7, off; left-drag a ball,\n"
           "                   arrow or arc to move or turn the tooth (Shift: a tenth as far)\n"
           "  O                axis cross in the views' corners on/off\n"
           "  I                patient picture in the patient's place: none, front, profile,\n"
           "                   xray, panoramic (with its landmark markers), in turn\n"
           "  F10 F11 F12      IPR labels, collision map, attachment labels on/off\n"
           "  G                millimetre grid with its 1mm / 10mm scale bar on/off\n"
           "  C                save a snapshot (vxview_snapshot_NNN.png in the working folder)\n"
           "  R                reset the view\n"
           "  E                gap editor on/off (one view, shader path): hover the cards,\n"
           "                   click the arrows to step a reduction or space by 0.1 mm, the\n"
           "                   lock to lock it, a square to open its list and a row to add\n"
           "                   or remove; each change is printed (\"IPR 11|21 0.3 -> 0.4 mm\")\n" +
           std::string(VxViewerOverlays::KeyHelp()) +
           "  H                this list\n"
           "  Q or Esc         quit\n";
}

VxViewer* VxViewer::From(GLFWwindow* window) {
    return static_cast<VxViewer*>(glfwGetWindowUserPointer(window));
}

CPoint VxViewer::ToPixel(double x, double y) const {
    // Framebuffer pixels can differ from window coordinates on a scaled screen.
    int ww = 1;
    int wh = 1;
    glfwGetWindowSize(m_window, &ww, &wh);
    const double sx = ww > 0 ? double(m_scene.Width()) / ww : 1.0;
    const double sy = wh > 0 ? double(m_scene.Height()) / wh : 1.0;
    return CPoint(static_cast<int>(std::lround(x * sx)), static_cast<int>(std::lround(y * sy)));
}

void VxViewer::PrintState(const std::string& what) const {
    std::printf("%s\n", what.c_str());
    std::fflush(stdout);
}

void VxViewer::Redraw() {
    m_scene.RenderFrame();
    if (VxAppOverlays2::AfterFrame()) {
        m_scene.RenderFrame(); // the grid followed a zoom
    }
    m_scene.Present();
    m_dirty = false;
}

void VxViewer::SetLayout(VxAppLayout layout) {
    m_scene.SetLayout(layout);
    if (m_scene.GetLayout() != layout) {
        PrintState("layout " + std::string(VxAppNameOf(kVxAppLayouts, layout)) +
                   " needs a jaw in the case; staying in one view");
    } else {
        PrintState("layout: " + std::string(VxAppNameOf(kVxAppLayouts, layout)));
    }
}

void VxViewer::Snapshot() {
    char name[64];
    std::snprintf(name, sizeof name, "vxview_snapshot_%03d.png", m_snapshots++);
    std::string error;
    m_scene.RenderFrame();
    if (m_scene.SaveSnapshot(name, error)) {
        PrintState(std::string("snapshot saved: ") + name);
    } else {
        std::fprintf(stderr, "vxview: %s\n", error.c_str());
    }
    m_scene.Present();
    m_dirty = false;
}

void VxViewer::PickAt(const CPoint& pixel) {
    if (m_scene.IsAuxDemo()) {
        const std::string aux = m_scene.AuxHit(pixel, true);
        if (!aux.empty()) {
            PrintState("aux hit: " + aux);
            m_dirty = true;
            return;
        }
    }
    VxObject* hit = m_scene.Pick(pixel, m_pickKind);
    if (!hit) {
        PrintState("picked nothing");
    } else {
        hit->SetSelected(hit->IsSelected() ? 0 : 1);
        PrintState("picked " + m_scene.Describe(hit) +
                   (hit->IsSelected() ? " (selected)" : " (unselected)"));
    }
    m_dirty = true;
}

void VxViewer::OnKey(int key, int action, int /*mods*/) {
    if (action == GLFW_RELEASE) {
        return;
    }
    VxViewManager* views = VxViewManager::GetInstance();
    switch (key) {
    case GLFW_KEY_ESCAPE:
    case GLFW_KEY_Q:
        m_quitKey = true;
        glfwSetWindowShouldClose(m_window, GLFW_TRUE);
        return;
    case GLFW_KEY_H:
        std::fputs(KeyHelp().c_str(), stdout);
        std::fflush(stdout);
        return;
    case GLFW_KEY_1:
        SetLayout(VxAppLayout::Single);
        break;
    case GLFW_KEY_2:
        SetLayout(VxAppLayout::Jaws);
        break;
    case GLFW_KEY_3:
        SetLayout(VxAppLayout::Compare);
        break;
    case GLFW_KEY_4:
        SetLayout(VxAppLayout::Four);
        break;
    case GLFW_KEY_5:
        SetLayout(VxAppLayout::Five);
        break;
    case GLFW_KEY_S:
        views->EnableSynView(!views->IsSynView());
        PrintState(views->IsSynView() ? "synchronised views: on" : "synchronised views: off");
        break;
    case GLFW_KEY_M: {
        const int next = (static_cast<int>(m_scene.GetDisplay()) + 1) % int(kVxAppDisplays.size());
        m_scene.SetDisplay(static_cast<VxAppDisplay>(next));
        PrintState("display: " + std::string(VxAppNameOf(kVxAppDisplays, m_scene.GetDisplay())));
        break;
    }
    case GLFW_KEY_U:
        m_scene.SetJaws(VxAppJaws::Upper);
        PrintState("jaws: upper");
        break;
    case GLFW_KEY_L:
        m_scene.SetJaws(VxAppJaws::Lower);
        PrintState("jaws: lower");
        break;
    case GLFW_KEY_B:
        m_scene.SetJaws(VxAppJaws::Both);
        PrintState("jaws: both");
        break;
    case GLFW_KEY_RIGHT:
    case GLFW_KEY_LEFT:
    case GLFW_KEY_HOME:
    case GLFW_KEY_END: {
        int step = m_scene.GetStep();
        step = key == GLFW_KEY_RIGHT  ? step + 1
               : key == GLFW_KEY_LEFT ? step - 1
               : key == GLFW_KEY_HOME ? 0
                                      : m_scene.StepCount() - 1;
        m_scene.SetStep(step);
        PrintState("step " + std::to_string(m_scene.GetStep()) + " of " +
                   std::to_string(m_scene.StepCount() - 1));
        break;
    }
    case GLFW_KEY_P: {
        const VxAppRenderPath want = m_scene.GetRenderPath() == VxAppRenderPath::Fixed
                                         ? VxAppRenderPath::Shader
                                         : VxAppRenderPath::Fixed;
        std::string error;
        if (m_scene.SetRenderPath(want, error)) {
            PrintState("render path: " + std::string(VxAppNameOf(kVxAppRenderPaths, want)));
        } else {
            PrintState(error);
        }
        break;
    }
    case GLFW_KEY_K:
        m_pickKind = static_cast<VxAppScene::PickKind>((static_cast<int>(m_pickKind) + 1) % 3);
        PrintState(std::string("a click picks ") + PickKindName(m_pickKind));
        return;
    case GLFW_KEY_F10:
    case GLFW_KEY_F11:
    case GLFW_KEY_F12:
    case GLFW_KEY_G: {
        const char* name = key == GLFW_KEY_F10   ? "ipr"
                           : key == GLFW_KEY_F11 ? "collision"
                           : key == GLFW_KEY_F12 ? "attachments"
                                                 : "grid";
        std::string error;
        const bool ok = VxAppOverlays2::Toggle(m_scene, name, error);
        PrintState(ok ? std::string(name) + (VxAppOverlays2::IsOn(name) ? ": on" : ": off")
                      : error);
        m_dirty = true;
        return;
    }
    case GLFW_KEY_A: {
        VxAppOverlays2::RemoveAll(); // the sample clears the registry the overlays live in
        std::string error;
        if (m_scene.SetAuxDemo(!m_scene.IsAuxDemo(), error)) {
            PrintState(m_scene.IsAuxDemo() ? "aux sample: on" : "aux sample: off");
        } else {
            PrintState(error);
        }
        break;
    }
    case GLFW_KEY_T:
        PrintState(m_handle.Cycle(m_scene, VxAppHandle::DefaultTooth(m_scene)));
        break;
    case GLFW_KEY_I: {
        // Pictures the case lacks are passed over.
        std::string error;
        VxAppPictureKind kind = m_scene.GetPicture();
        do {
            kind = VxAppScene::NextPicture(kind);
        } while (!m_scene.SetPicture(kind, error));
        PrintState(std::string("picture: ") + VxAppNameOf(kVxAppPictures, kind));
        break;
    }
    case GLFW_KEY_O:
        m_scene.SetAxisCross(!m_scene.IsAxisCross());
        PrintState(m_scene.IsAxisCross() ? "axis cross: on" : "axis cross: off");
        break;
    case GLFW_KEY_X:
        m_scene.ClearSelection();
        PrintState("selection cleared");
        break;
    case GLFW_KEY_C:
        Snapshot();
        return;
    case GLFW_KEY_R:
        m_scene.ResetView();
        if (m_editor.IsOn() && m_case) {
            VxAppEditor::FrameDentition(m_case->model, m_scene.ViewAt(CPoint(0, 0)));
        }
        PrintState("view reset");
        m_editor.Rebuild();
        break;
    case GLFW_KEY_E:
        ToggleEditor();
        break;
    default:
        if (key >= GLFW_KEY_F1 && key <= GLFW_KEY_F9) {
            const std::string what = VxViewerOverlays::OnFunctionKey(key - GLFW_KEY_F1 + 1);
            PrintState(what.empty() ? "the overlays need a case" : what);
            break;
        }
        return;
    }
    // Labels stand where the step, layout and jaws of now put them.
    VxAppOverlays2::Refresh(m_scene);
    m_dirty = true;
}

void VxViewer::OnMouseButton(int button, int action) {
    double x = 0;
    double y = 0;
    glfwGetCursorPos(m_window, &x, &y);
    const CPoint pixel = ToPixel(x, y);
    if (action == GLFW_PRESS) {
        if (m_button != -1) {
            return; // one drag at a time
        }
        m_button = button;
        m_pressPixel = m_lastPixel = pixel;
        m_dragged = false;
        VxViewManager::GetInstance()->SetActiveView(m_scene.ViewAt(pixel));
        m_lastSphere = m_scene.Render()->MapScreenCoordToSphere(pixel);
        if (button == GLFW_MOUSE_BUTTON_LEFT && m_handle.IsAttached()) {
            // The handle is hit against the frame on screen, as a host does.
            m_scene.RenderFrame();
            m_handleDrag = m_handle.Grab(pixel);
            m_dirty = true;
        }
        return;
    }
    if (action != GLFW_RELEASE || button != m_button) {
        return;
    }
    m_button = -1;
    if (m_handleDrag) {
        m_handleDrag = false;
        return;
    }
    if (button == GLFW_MOUSE_BUTTON_LEFT && !m_dragged) {
        const std::string line = m_editor.Release(pixel.x, pixel.y, m_scene.ViewAt(pixel));
        if (!line.empty()) {
            PrintState(line);
        }
        m_dirty = true;
        if (!m_editor.TookClick()) {
            PickAt(pixel);
        }
    } else if (m_dragged) {
        m_editor.Rebuild(); // the leaders follow the new view
    }
}

void VxViewer::OnCursor(double x, double y) {
    const CPoint pixel = ToPixel(x, y);
    if (m_button == -1) {
        if (m_editor.IsOn()) {
            m_editor.Move(pixel.x, pixel.y, m_scene.ViewAt(pixel));
            m_dirty = true;
        }
        return;
    }
    if (!m_dragged &&
        std::abs(pixel.x - m_pressPixel.x) + std::abs(pixel.y - m_pressPixel.y) < kClickSlop) {
        return;
    }
    m_dragged = true;
    VxViewManager* views = VxViewManager::GetInstance();
    VxViewRegion* view = views->GetActiveView();
    if (!view) {
        return;
    }
    if (m_handleDrag) {
        const bool slow = glfwGetKey(m_window, GLFW_KEY_LEFT_SHIFT) == GLFW_PRESS ||
                          glfwGetKey(m_window, GLFW_KEY_RIGHT_SHIFT) == GLFW_PRESS;
        m_handle.Drag(m_lastPixel, pixel, slow);
    } else if (m_button == GLFW_MOUSE_BUTTON_LEFT) {
        const VxPoint sphere = m_scene.Render()->MapScreenCoordToSphere(pixel);
        views->RotateView(view, VxArcballRotation(m_lastSphere, sphere));
        m_lastSphere = sphere;
    } else if (m_button == GLFW_MOUSE_BUTTON_RIGHT) {
        const VxXForm& xf = view->GetXForm();
        views->TranslateView(view, VxPanToModel(xf.GetRotation(), xf.GetScale(), view->Width(),
                                                view->Height(), pixel.x - m_lastPixel.x,
                                                pixel.y - m_lastPixel.y));
    }
    m_lastPixel = pixel;
    m_dirty = true;
}

void VxViewer::OnScroll(double yOffset) {
    double x = 0;
    double y = 0;
    glfwGetCursorPos(m_window, &x, &y);
    VxViewRegion* view = m_scene.ViewAt(ToPixel(x, y));
    if (view && yOffset != 0.0) {
        VxViewManager::GetInstance()->ScaleView(view, std::pow(kZoomStep, yOffset));
        m_dirty = true;
    }
}

void VxViewer::OnFramebufferSize(int width, int height) {
    m_scene.Resize(width, height);
    m_dirty = true;
}

int VxViewer::Run(const VxViewerOptions& options, std::string& error) {
    m_case = VxAppLoadCase(options.caseDir, options.seed, error);
    if (!m_case) {
        return 1;
    }
    glfwSetErrorCallback(GlfwError);
    if (!glfwInit()) {
        error = "cannot open a window: no X display (is DISPLAY set?)";
        return 1;
    }
    glfwWindowHint(GLFW_CLIENT_API, GLFW_NO_API);
    m_window = glfwCreateWindow(options.width, options.height, "vxview", nullptr, nullptr);
    if (!m_window) {
        glfwTerminate();
        error = "cannot open a window";
        return 1;
    }
    void* display = nullptr;
    unsigned long x11Window = 0;
    if (!VxViewerX11Handles(m_window, &display, &x11Window)) {
        error = "the window is not an X11 window (vxview needs X11)";
        return 1;
    }
    m_native = VxNativeWindow::FromX11(display, x11Window);
    int fbw = options.width;
    int fbh = options.height;
    glfwGetFramebufferSize(m_window, &fbw, &fbh);
    if (!m_native || !m_scene.Open(m_native.get(), fbw, fbh, options.background, error)) {
        if (error.empty()) {
            error = "cannot wrap the X11 window";
        }
        return 1;
    }
    m_scene.SetCase(m_case.get());
    m_scene.SetLayout(options.layout);

    glfwSetWindowUserPointer(m_window, this);
    glfwSetKeyCallback(m_window, [](GLFWwindow* w, int key, int, int action, int mods) {
        From(w)->OnKey(key, action, mods);
    });
    glfwSetMouseButtonCallback(m_window, [](GLFWwindow* w, int button, int action, int) {
        From(w)->OnMouseButton(button, action);
    });
    glfwSetCursorPosCallback(m_window,
                             [](GLFWwindow* w, double x, double y) { From(w)->OnCursor(x, y); });
    glfwSetScrollCallback(m_window,
                          [](GLFWwindow* w, double, double dy) { From(w)->OnScroll(dy); });
    glfwSetFramebufferSizeCallback(m_window, [](GLFWwindow* w, int width, int height) {
        From(w)->OnFramebufferSize(width, height);
    });

    std::fputs(KeyHelp().c_str(), stdout);
    std::fflush(stdout);

    if (!options.smokeTestSnapshot.empty()) {
        return RunSmokeTest(options.smokeTestSnapshot, error);
    }
    while (!glfwWindowShouldClose(m_window)) {
        if (m_dirty) {
            Redraw();
        }
        glfwWaitEventsTimeout(0.5);
    }
    return 0;
}

int VxViewer::RunSmokeTest(const std::string& path, std::string& error) {
    // A few frames that go through the same calls as the mouse: a turn, a zoom, a pick.
    VxViewManager* views = VxViewManager::GetInstance();
    VxOpenGLRender* render = m_scene.Render();
    const CPoint centre(m_scene.Width() / 2, m_scene.Height() / 2);
    for (int i = 0; i < 3; ++i) {
        glfwPollEvents();
        Redraw();
    }
    VxViewRegion* view = m_scene.ViewAt(centre);
    const VxPoint from = render->MapScreenCoordToSphere(centre);
    const VxPoint to = render->MapScreenCoordToSphere(CPoint(centre.x + 20, centre.y - 10));
    views->RotateView(view, VxArcballRotation(from, to));
    views->ScaleView(view, 1.05);
    Redraw();
    VxObject* hit = m_scene.Pick(centre, VxAppScene::PickKind::Entity);
    PrintState("smoke test: the centre shows " + m_scene.Describe(hit));

    m_scene.RenderFrame();
    if (!m_scene.SaveSnapshot(path, error)) {
        return 1;
    }
    m_scene.Present();
    PrintState("smoke test: snapshot saved: " + path);

    if (!VxViewerSendEscape(m_window)) {
        error = "could not send the quit key to the window";
        return 1;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!m_quitKey && std::chrono::steady_clock::now() < deadline) {
        glfwWaitEventsTimeout(0.1);
    }
    if (!m_quitKey) {
        error = "the quit key never arrived through the event loop";
        return 1;
    }
    PrintState("smoke test: quit key received");
    return 0;
}
