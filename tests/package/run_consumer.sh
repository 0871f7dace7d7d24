#!/usr/bin/env bash
# Installs the built library into a scratch prefix, builds examples/minimal_host against it with
# find_package(vxrender) as an outside host would, and runs it. Usage:
#   run_consumer.sh <source dir> <build dir> <scratch dir>
set -euo pipefail
src=$1 build=$2 scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch"
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$src/examples/minimal_host" -B "$scratch/host" -G Ninja \
      -DCMAKE_PREFIX_PATH="$scratch/prefix" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$scratch/host" >/dev/null
LD_LIBRARY_PATH="$scratch/prefix/lib:${LD_LIBRARY_PATH:-}" "$scratch/host/minimal_host" "$scratch/five_views.png"
