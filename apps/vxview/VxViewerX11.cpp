// VxViewerX11: native handles and a synthetic key event. The event goes through the server
// (XSendEvent to our own window), not straight into GLFW, so it arrives by the same route as a
// real key and shows that the event loop is alive.
#include "VxViewerX11.h"

#include <GLFW/glfw3.h>
#define GLFW_EXPOSE_NATIVE_X11
#include <GLFW/glfw3native.h>

#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <initializer_list>

bool VxViewerX11Handles(GLFWwindow* window, void** display, unsigned long* x11Window) {
    Display* d = glfwGetX11Display();
    const Window w = glfwGetX11Window(window);
    if (d == nullptr || w == 0) {
        return false;
    }
    *display = d;
    *x11Window = w;
    return true;
}

bool VxViewerSendEscape(GLFWwindow* window) {
    Display* d = glfwGetX11Display();
    const Window w = glfwGetX11Window(window);
    if (d == nullptr || w == 0) {
        return false;
    }
    XKeyEvent key{};
    key.display = d;
    key.window = w;
    key.root = DefaultRootWindow(d);
    key.subwindow = 0;
    key.time = CurrentTime;
    key.same_screen = True;
    key.keycode = XKeysymToKeycode(d, XK_Escape);
    bool ok = key.keycode != 0;
    for (int type : {KeyPress, KeyRelease}) {
        key.type = type;
        XEvent event{};
        event.xkey = key;
        ok =
            XSendEvent(d, w, True, type == KeyPress ? KeyPressMask : KeyReleaseMask, &event) != 0 &&
            ok;
    }
    XFlush(d);
    return ok;
}
