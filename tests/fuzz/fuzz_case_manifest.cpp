// Fuzz target: a case manifest. The bytes are the text of case.json; the files it names are
// looked up in the tiny test case, so a mutated manifest reaches the mesh and picture readers
// too. Read must answer true or false with one message, never crash, hang or leak.
#include <VxCase.h>
#include <VxCaseIO.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {
std::string TinyCaseDir() {
    std::string here = __FILE__;
    const std::size_t slash = here.find_last_of('/');
    here = slash == std::string::npos ? std::string(".") : here.substr(0, slash);
    return here + "/../data/cases/tiny";
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string dir = TinyCaseDir();
    const std::string text(reinterpret_cast<const char*>(data), size);
    VxCase c;
    std::string error;
    if (!VxCaseIO::ReadManifest(text, dir, c, error)) {
        // A failed read names a file and a field, on one line, and leaves the case empty.
        if (error.empty() || error.find('\n') != std::string::npos || !c.IsEmpty()) {
            __builtin_trap();
        }
    }
    return 0;
}
