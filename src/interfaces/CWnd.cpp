// CWnd: client size through the native window; nothing else.
#include <interfaces/CWnd.h>

#include <platform/VxNativeWindow.h>

void CWnd::GetClientRect(CRect* rect) const {
    if (!rect) {
        return;
    }
    int width = 0;
    int height = 0;
    if (m_hWnd) {
        m_hWnd->GetClientSize(&width, &height);
    }
    rect->SetRect(0, 0, width, height);
}
