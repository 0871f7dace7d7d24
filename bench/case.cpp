// Case benchmarks: making the synthetic patient, writing it as a case directory, and reading
// that directory back with VxCaseIO::Read (the load a program does at start). No GL.
#include <VxCase.h>
#include <VxCaseIO.h>
#include <VxSyntheticPatient.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

std::string CaseDir() {
    static const std::string dir = [] {
        const std::filesystem::path d =
            std::filesystem::temp_directory_path() / ("vxbench_case_" + std::to_string(::getpid()));
        std::filesystem::create_directories(d);
        return d.string();
    }();
    return dir;
}

void BM_GenerateSynthetic(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(VxSyntheticPatient::Generate(1));
    }
}
BENCHMARK(BM_GenerateSynthetic)->Unit(benchmark::kMillisecond);

void BM_WriteCase(benchmark::State& state) {
    const std::unique_ptr<VxCase> c = VxSyntheticPatient::Generate(1);
    std::string error;
    for (auto _ : state) {
        if (!VxCaseIO::Write(*c, CaseDir(), error)) {
            state.SkipWithError(error.c_str());
            return;
        }
    }
}
BENCHMARK(BM_WriteCase)->Unit(benchmark::kMillisecond);

void BM_ReadCase(benchmark::State& state) {
    std::string error;
    {
        const std::unique_ptr<VxCase> c = VxSyntheticPatient::Generate(1);
        if (!VxCaseIO::Write(*c, CaseDir(), error)) {
            state.SkipWithError(error.c_str());
            return;
        }
    }
    for (auto _ : state) {
        VxCase c;
        if (!VxCaseIO::Read(CaseDir(), c, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
        benchmark::DoNotOptimize(c.teeth.size());
    }
    std::error_code ec;
    std::filesystem::remove_all(CaseDir(), ec);
}
BENCHMARK(BM_ReadCase)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
