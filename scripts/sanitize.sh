#!/usr/bin/env bash
# Builds the library, programs and tests with AddressSanitizer and UBSan, then runs the whole
# suite headless with leak detection on. Undefined behaviour aborts the test that meets it; the
# only leaks let through are third-party ones, each named with its reason in
# tests/sanitizers/lsan.supp. Usage: scripts/sanitize.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-asan}
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
# -O1 with line tables only: a sanitizer build is for finding faults, and a two-core CI machine
# builds it in a fraction of the time of full debug information. No benchmarks.
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1" \
  -DVX_ENABLE_ASAN=ON -DVX_WERROR=ON -DVX_BUILD_TESTS=ON -DVX_BUILD_BENCH=OFF "${launcher[@]}"
cmake --build "$build" -j"$(nproc)"
supp=$PWD/tests/sanitizers/lsan.supp
# Mesa unloads its driver when the last EGL display goes; the driver's own allocations would then
# look leaked, from an unknown module. A preloaded no-op dlclose keeps every module mapped (and
# so the preload may come before the ASan runtime).
cc -shared -fPIC -O1 -o "$build/libvx_keep_modules.so" tests/sanitizers/keep_modules.c
export LD_PRELOAD=$PWD/$build/libvx_keep_modules.so
case $build in /*) export LD_PRELOAD=$build/libvx_keep_modules.so ;; esac
export ASAN_OPTIONS=detect_leaks=1:verify_asan_link_order=0:strict_string_checks=1
export LSAN_OPTIONS=suppressions=$supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export LIBGL_ALWAYS_SOFTWARE=${LIBGL_ALWAYS_SOFTWARE:-1}
export VX_REQUIRE_GL=${VX_REQUIRE_GL:-1}
# LeakSanitizer's own tracer now and then dies at exit ("Tracer caught signal 11") while llvmpipe's
# threads go away; a test that fails that way gets one more run. A real leak or fault fails both.
# A few test programs make the tracer die every time with the driver kept mapped (its leak scan
# reads a thread's TLS at a near-null address, 0x9d0 or 0xcb0, in every attempt): they run on their
# own with ASan and UBSan but no leak scan. Without the preload they pass and report only Mesa's
# own allocations.
retry=(--repeat until-pass:2)
no_leak_scan='^(MeshDrawerGLTest\.ColourFilesFeedTheDefaultRecordsAtTheNextFrame|FrameRenderTest\..*)$'
run_ctest() {
  if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
    xvfb-run -a -s "-screen 0 1600x1000x24" \
      ctest --test-dir "$build" --output-on-failure -j"$(nproc)" --timeout 600 "${retry[@]}" "$@"
  else
    ctest --test-dir "$build" --output-on-failure -j"$(nproc)" --timeout 600 "${retry[@]}" "$@"
  fi
}
run_ctest -E "$no_leak_scan"
ASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0:strict_string_checks=1 run_ctest -R "$no_leak_scan"
