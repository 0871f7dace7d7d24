#!/usr/bin/env bash
# The main job for now: build the library and vxinfo, then report the GL context this machine
# gives the library. Usage: scripts/main.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
build=${1:-build-main}
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVX_BUILD_TESTS=OFF "${launcher[@]}"
cmake --build "$build" --target vxinfo -j"$(nproc)"
"$build/bin/vxinfo"
