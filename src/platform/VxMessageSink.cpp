#include <platform/VxMessageSink.h>

#include <cstdio>

namespace {
VxMessageSink::Handler& CurrentHandler() {
    static VxMessageSink::Handler handler;
    return handler;
}
} // namespace

void VxMessageSink::SetHandler(Handler handler) {
    CurrentHandler() = std::move(handler);
}

void VxMessageSink::Reset() {
    CurrentHandler() = nullptr;
}

void VxMessageSink::Show(const std::string& text, const std::string& title) {
    const Handler& h = CurrentHandler();
    if (h) {
        h(text, title);
        return;
    }
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
}

int MessageBoxA(void* /*window*/, const char* text, const char* caption, unsigned int /*type*/) {
    VxMessageSink::Show(text ? text : "", caption ? caption : "");
    return 1;
}
