// VxWindowHandle: the window-handle types the library's interface passes around. A host hands the
// library an HWND; on this platform that is a pointer to a VxNativeWindow the host keeps alive.
// Only declarations: nothing here pulls in X11 or EGL headers, so any header may include it.
#pragma once

class VxNativeWindow;

using HWND = VxNativeWindow*;
