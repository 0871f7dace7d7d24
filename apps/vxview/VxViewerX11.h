// VxViewerX11: the few X11 calls the viewer makes itself, kept in one file because Xlib's
// headers define macros (None, Status, Bool) that clash with ordinary names elsewhere.
// It does not create windows or read events; GLFW does.
#pragma once

struct GLFWwindow;

// The X11 Display* and Window behind a GLFW window; false when GLFW does not run on X11.
bool VxViewerX11Handles(GLFWwindow* window, void** display, unsigned long* x11Window);
// Puts a press and release of the Escape key into the window's own event queue, as the server
// would deliver them, so the quit path is the one a user's key takes.
bool VxViewerSendEscape(GLFWwindow* window);
