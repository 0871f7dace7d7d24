// VxMessageSink: where the library's few user-facing messages go (the stand-in for a message box).
// By default a message is printed to stderr as "title: text"; a host replaces the sink to show
// its own dialog or to collect messages in tests. Not thread-safe, like the rest of the library.
#pragma once

#include <functional>
#include <string>

class VxMessageSink {
public:
    using Handler = std::function<void(const std::string& text, const std::string& title)>;

    // Replaces the sink; an empty handler restores the stderr default.
    static void SetHandler(Handler handler);
    static void Reset();
    static void Show(const std::string& text, const std::string& title);
};

// The call the library's code makes where a desktop system would open a modal box. The window
// and style arguments are kept for the shape of the call and ignored. Returns 1 ("OK").
int MessageBoxA(void* window, const char* text, const char* caption, unsigned int type);
