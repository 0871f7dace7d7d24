// Fuzzes CIniReader::LoadFromString: any bytes must parse without a crash, an out-of-bounds read
// or a hang, and every lookup afterwards must answer. Lookups use names taken from the input so
// that the fuzzer can steer them onto keys that exist.
#include <interfaces/CIniReader.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CIniReader ini;
    ini.LoadFromString(text);

    // Section and key from the first line, split at its first '=' and stripped of brackets.
    const std::size_t eol = text.find('\n');
    const std::string first = text.substr(0, eol);
    const std::size_t eq = first.find('=');
    std::string section = first.substr(0, eq);
    const std::string key = eq == std::string::npos ? std::string() : first.substr(eq + 1);
    if (!section.empty() && section.front() == '[') {
        section.erase(0, 1);
    }
    volatile std::size_t sink = ini.Get(section, key).size();
    sink = sink + ini.Get("", key).size() + ini.Get(section, "").size();
    sink = sink + ini.Get("TOOTH_AMBIENT", "R").size();
    (void)ini.HasKey(section, key);
    (void)ini.HasSection(section);

    // Loading twice must give the same answers: nothing of the first parse may leak through.
    CIniReader again;
    again.LoadFromString("[TOOTH_AMBIENT]\nR=1\n");
    again.LoadFromString(text);
    if (again.Get("TOOTH_AMBIENT", "R") != ini.Get("TOOTH_AMBIENT", "R") ||
        again.Get(section, key) != ini.Get(section, key)) {
        __builtin_trap();
    }
    return 0;
}
