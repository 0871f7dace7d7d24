// VxDriverQuirks: the registry itself. Entries are added only for behaviour seen on a real driver.
#include <platform/VxDriverQuirks.h>

#include <EGL/egl.h>
#include <GL/gl.h>

#include <cstring>

namespace {

const std::vector<VxDriverQuirk>& Registry() {
    static const std::vector<VxDriverQuirk> quirks = {
        {"glew-glx-error-under-egl", "", "",
         "GLEW as packaged is built for GLX. Under an EGL context glewInit loads every GL entry "
         "point and then fails its GLX part with GLEW_ERROR_NO_GLX_DISPLAY (4), for which "
         "glewGetErrorString has no text. The GL entry points are usable; the context goes on."},
        {"egl-choose-config-deep-colour-first", "", "",
         "eglChooseConfig sorts by total colour bits, largest first, so a request for 8 bits a "
         "channel comes back from Mesa with a 10-bit, alpha-less config in front. The config is "
         "ranked by our own rules instead (exactly 8 bits a channel, alpha, no multisampling). "
         "Handled for every driver, since the choice is made before GL strings exist."},
        {"llvmpipe-x11-resize-at-swap", "llvmpipe", "",
         "Mesa's software rasteriser on an X11 window (Xvfb, or any server without DRI3) learns a "
         "window's new size only when a buffer swap invalidates the drawable; rebinding the "
         "context does not. The first frame after a resize is drawn and shown at the old size, "
         "the next one at the new size. Hosts redraw on resize anyway; tests swap once first."},
        {"mesa-popattrib-current-colour", "llvmpipe", "",
         "Mesa 22's glPopAttrib does not restore the current colour when the colour was set "
         "inside a push whose group also holds an enable or lighting bit that is popped. The "
         "fixed-function drawers save and restore the colour themselves around the places they "
         "set one (VxFixedDrawSteps::CurrentColourKeeper), on every driver."},
    };
    return quirks;
}

bool Contains(const char* haystack, const char* needle) {
    if (!needle || !*needle) {
        return true;
    }
    return haystack && std::strstr(haystack, needle) != nullptr;
}

const VxDriverQuirk* Find(const char* name) {
    if (!name) {
        return nullptr;
    }
    for (const VxDriverQuirk& q : Registry()) {
        if (std::strcmp(q.name, name) == 0) {
            return &q;
        }
    }
    return nullptr;
}

} // namespace

const std::vector<VxDriverQuirk>& VxDriverQuirks::All() {
    return Registry();
}

bool VxDriverQuirks::IsKnown(const char* name) {
    return Find(name) != nullptr;
}

bool VxDriverQuirks::Applies(const char* name, const char* renderer, const char* vendor) {
    const VxDriverQuirk* q = Find(name);
    return q && Contains(renderer, q->renderer) && Contains(vendor, q->vendor);
}

bool VxDriverQuirks::Applies(const char* name) {
    const char* renderer = nullptr;
    const char* vendor = nullptr;
    // glGetString without a current context is undefined behaviour on some drivers.
    if (eglGetCurrentContext() != EGL_NO_CONTEXT) {
        renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        vendor = reinterpret_cast<const char*>(glGetString(GL_VENDOR));
    }
    return Applies(name, renderer, vendor);
}

std::vector<std::string> VxDriverQuirks::Active(const char* renderer, const char* vendor) {
    std::vector<std::string> names;
    for (const VxDriverQuirk& q : Registry()) {
        if (Contains(renderer, q.renderer) && Contains(vendor, q.vendor)) {
            names.emplace_back(q.name);
        }
    }
    return names;
}
