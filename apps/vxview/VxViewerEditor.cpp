// VxViewer: the gap editor mode (key E). The editor is meant for one full-window view on the
// shader path, so turning it on brings the viewer there.
#include "VxViewer.h"

#include <VxCase.h>

void VxViewer::ToggleEditor() {
    if (m_editor.IsOn()) {
        m_editor.Stop();
        PrintState("gap editor: off");
        return;
    }
    if (!m_case) {
        return;
    }
    if (m_scene.GetLayout() != VxAppLayout::Single) {
        SetLayout(VxAppLayout::Single);
    }
    if (m_scene.GetRenderPath() != VxAppRenderPath::Shader) {
        std::string error;
        if (!m_scene.SetRenderPath(VxAppRenderPath::Shader, error)) {
            PrintState("gap editor: " + error);
            return;
        }
    }
    VxAppEditor::FrameDentition(m_case->model, m_scene.ViewAt(CPoint(0, 0)));
    // The records are placed from the matrices of a drawn frame.
    m_scene.RenderFrame();
    m_editor.Start(&m_case->model);
    PrintState("gap editor: on");
}
