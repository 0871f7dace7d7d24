#!/usr/bin/env bash
# The main job: installs what is missing, builds everything in Release, and renders the synthetic
# patient in the five-view (on both render paths) and the compare layouts into out/. With --view,
# on a machine with a display, it opens the interactive viewer instead of rendering.
# Usage: scripts/main.sh [--view] [build-dir]     (default build-dir: build-main)
set -euo pipefail
cd "$(dirname "$0")/.."

view=0
build=build-main
for arg in "$@"; do
  case "$arg" in
    --view) view=1 ;;
    -h|--help)
      sed -n '2,5p' "$0" | sed 's/^# \{0,1\}//'
      exit 0 ;;
    -*) echo "main.sh: unknown option '$arg' (use --view or a build directory)" >&2; exit 2 ;;
    *) build=$arg ;;
  esac
done

bash scripts/install-deps.sh
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVX_BUILD_TESTS=OFF "${launcher[@]}"
cmake --build "$build" -j"$(nproc)"

# The fixed-function path is drawn the same by every Mesa driver; llvmpipe needs no GPU.
export LIBGL_ALWAYS_SOFTWARE=${LIBGL_ALWAYS_SOFTWARE:-1}

if [ "$view" = 1 ]; then
  if [ -z "${DISPLAY:-}" ]; then
    echo "main.sh: --view needs a display (DISPLAY is not set); rendering pictures instead" >&2
  elif [ ! -x "$build/bin/vxview" ]; then
    echo "main.sh: vxview was not built (GLFW missing?); rendering pictures instead" >&2
  else
    exec "$build/bin/vxview"
  fi
fi

"$build/bin/vxinfo" | sed -n '1,6p'
mkdir -p out
# The synthetic patient is also written out as a case directory: an example of the format and a
# starting point for a case made by hand.
# The shader path (the default where GL is 4.3 or later) and the fixed-function path side by side.
"$build/bin/vxrender" --layout five --size 1600x1000 -o out/five.png -q --write-case out/synthetic-case
"$build/bin/vxrender" --layout five --path fixed --size 1600x1000 -o out/five_fixed.png -q
"$build/bin/vxrender" --layout compare --size 1600x800 -o out/compare.png -q
"$build/bin/vxrender" --layout single --size 1280x800 --select 11,21 -o out/single.png -q
echo
echo "Pictures of the synthetic patient:"
for f in out/five.png out/five_fixed.png out/compare.png out/single.png; do
  echo "  $(pwd)/$f"
done
echo "The synthetic patient as a case directory: $(pwd)/out/synthetic-case/case.json"
echo "Render your own: $build/bin/vxrender --help    Interactive: $build/bin/vxview (needs X11)"
