// CWnd: the host's window as the library's interface passes it: a holder of the window handle.
// It does not create, show, or destroy windows, and routes no messages; the host owns the
// VxNativeWindow the handle points to.
#pragma once

#include <interfaces/CRect.h>
#include <platform/VxWindowHandle.h>

class CWnd {
public:
    CWnd() = default;
    explicit CWnd(HWND window) : m_hWnd(window) {}
    virtual ~CWnd() = default;

    // The handle; null when no window is attached.
    HWND GetSafeHwnd() const { return m_hWnd; }
    void Attach(HWND window) { m_hWnd = window; }
    HWND Detach() {
        HWND window = m_hWnd;
        m_hWnd = nullptr;
        return window;
    }
    // The client area as (0, 0, width, height); empty when no window is attached or the window
    // cannot be asked.
    void GetClientRect(CRect* rect) const;

    HWND m_hWnd = nullptr;
};
