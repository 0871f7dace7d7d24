#!/usr/bin/env bash
# Installs the built library into a scratch prefix, builds examples/minimal_host against it with
# find_package(vxrender) as an outside host would, and runs it. Usage:
#   run_consumer.sh <source dir> <build dir> <scratch dir>
set -euo pipefail
src=$1 build=$2 scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
log="$scratch/steps.log"
step() {
  if ! "$@" >>"$log" 2>&1; then
    echo "run_consumer: failed: $*" >&2
    tail -n 40 "$log" >&2
    exit 1
  fi
}
# A sanitizer build's library needs its runtime in the host too.
flags=$(sed -n 's/^CMAKE_CXX_FLAGS:STRING=//p' "$build/CMakeCache.txt")
if grep -q '^VX_ENABLE_ASAN:BOOL=ON' "$build/CMakeCache.txt"; then
  flags="$flags -fsanitize=address,undefined"
fi
step cmake --install "$build" --prefix "$scratch/prefix"
# The package names nothing a host does not use itself: the case library's assimp and JSON
# dependencies are its own business.
if grep -l -E 'assimp|nlohmann' "$scratch"/prefix/lib/cmake/vxrender/*.cmake; then
  echo "run_consumer: the installed package refers to the case library's private dependencies" >&2
  exit 1
fi
step cmake -S "$src/examples/minimal_host" -B "$scratch/host" -G Ninja \
     -DCMAKE_PREFIX_PATH="$scratch/prefix" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS=$flags"
step cmake --build "$scratch/host"
# Neither the host nor the installed programs may need LD_LIBRARY_PATH: the host's build gives it
# the prefix's lib folder, and the programs look in ../lib beside their bin folder.
unset LD_LIBRARY_PATH
"$scratch/host/minimal_host" "$scratch/five_views.png"
if [ -x "$scratch/prefix/bin/vxrender" ]; then
  step "$scratch/prefix/bin/vxrender" --help
  step "$scratch/prefix/bin/vxrender" --layout five --size 640x400 -q -o "$scratch/installed_five.png"
  python3 "$src/tests/package/check_png.py" "$scratch/installed_five.png" 640 400
fi
