// What keeping the colour INI promise costs: the fixed-function drawers read "ColorRenderTooth.ini"
// (and the jaw and gum files) on every draw of an object in its default state, so that an edited
// file shows at the next frame. The read is skipped when the file's size and modification time
// are unchanged. These benchmarks time one read with the file unchanged, one that parses the
// file every time (what the read would cost without the check), and one with no file at all.
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxMaterialIni.h>

#include <benchmark/benchmark.h>

#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

namespace {

std::string Dir() {
    static const std::string dir = [] {
        std::string d = "/tmp/vxrender_bench_material_ini";
        ::mkdir(d.c_str(), 0755);
        VxDrawerFiles::SetDirectoryOverride(CString::FromUtf8(d));
        return d;
    }();
    return dir;
}

void WriteToothIni() {
    const std::string path = Dir() + "/ColorRenderTooth.ini";
    {
        std::ofstream f(path);
        f << "[TOOTH_AMBIENT]\nR=110\nG=110\nB=110\nA=153\n[TOOTH_DIFFUSE]\nR=100\nG=50\nB=20\nA="
             "255\n"
             "[TOOTH_SPECULAR]\nR=86\nG=80\nB=80\nA=255\n[TOOTH_EMISSION]\nR=153\nG=143\nB=133\n"
             "A=255\n[TOOTH_SHINNESS]\nV=100\n";
    }
    // Older than the window in which a same-size rewrite could go unseen, so the stamp check
    // is allowed to skip it.
    const time_t old = std::time(nullptr) - 100;
    utimbuf times{old, old};
    ::utime(path.c_str(), &times);
}

void BM_ToothIniUnchanged(benchmark::State& state) {
    WriteToothIni();
    VxMaterialIni::ReadToothColorIni();
    for (auto _ : state) {
        VxMaterialIni::ReadToothColorIni();
    }
}
BENCHMARK(BM_ToothIniUnchanged);

void BM_ToothIniParsedEveryTime(benchmark::State& state) {
    WriteToothIni();
    for (auto _ : state) {
        VxMaterialIni::ForgetStamps();
        VxMaterialIni::ReadToothColorIni();
    }
}
BENCHMARK(BM_ToothIniParsedEveryTime);

void BM_ToothIniMissing(benchmark::State& state) {
    std::remove((Dir() + "/ColorRenderTooth.ini").c_str());
    VxMaterialIni::ReadToothColorIni();
    for (auto _ : state) {
        VxMaterialIni::ReadToothColorIni();
    }
}
BENCHMARK(BM_ToothIniMissing);

} // namespace

BENCHMARK_MAIN();
