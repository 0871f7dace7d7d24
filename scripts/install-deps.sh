#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the programs need, only when one is missing.
# Safe to run again: apt is not touched when everything is there.
set -euo pipefail

pkgs=(
  build-essential cmake ninja-build pkg-config ccache
  libgtest-dev libbenchmark-dev
  libgl-dev libegl-dev libgl1-mesa-dri libegl-mesa0 libglx-mesa0 libglu1-mesa-dev libglew-dev libx11-dev
  libfreetype-dev libfontconfig-dev fontconfig fonts-liberation fonts-dejavu-core fonts-wqy-microhei
  libglm-dev libstb-dev libassimp-dev nlohmann-json3-dev libglfw3-dev libxrandr-dev
  xvfb xauth python3
)
# clang and libclang-rt-dev are needed only to build the libFuzzer targets (README, fuzzing).

missing=()
for p in "${pkgs[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  SUDO=""
  if [ "$(id -u)" != 0 ]; then SUDO="sudo"; fi
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
