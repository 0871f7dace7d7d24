// Replays a libFuzzer corpus without libFuzzer: every file under the given paths is fed once to
// LLVMFuzzerTestOneInput. Lets a gcc build keep past crashers as regression cases.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static void RunFile(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        fs::path root(argv[i]);
        if (fs::is_directory(root)) {
            for (const auto& e : fs::recursive_directory_iterator(root)) {
                if (e.is_regular_file()) {
                    RunFile(e.path());
                    ++count;
                }
            }
        } else if (fs::is_regular_file(root)) {
            RunFile(root);
            ++count;
        }
    }
    // An empty input is always worth a try: parsers must accept it quietly.
    LLVMFuzzerTestOneInput(nullptr, 0);
    std::printf("replayed %zu inputs\n", count);
    return 0;
}
