#!/usr/bin/env bash
# Builds the library for phones' processors as an app does, without libcurl: runs the tests under an
# emulator, stopping at undefined behaviour, and holds its size to a limit.
# Usage: scripts/cross.sh [arm64|armhf...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

architectures=("$@")
[ "$#" -gt 0 ] || architectures=(arm64 armhf)
for architecture in "${architectures[@]}"; do
  if [ ! -f "cmake/debian-$architecture.cmake" ]; then
    echo "no toolchain file cmake/debian-$architecture.cmake" >&2
    exit 2
  fi
done

# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${cross_packages[@]}"

for architecture in "${architectures[@]}"; do
  begin=$SECONDS
  sysroot=$PWD/build/sysroot-$architecture
  scripts/sysroot.sh "$architecture" "$sysroot"
  toolchain=(--toolchain "$PWD/cmake/debian-$architecture.cmake" -DTAMZO_SYSROOT="$sysroot")

  build=build/$architecture
  cmake --preset phone -B "$build" "${toolchain[@]}" >/dev/null
  cmake --build "$build"
  built=$SECONDS
  ctest --test-dir "$build" --output-on-failure --no-tests=error
  tested=$SECONDS
  TAMZO_SIZE_BUILD=$build-size scripts/size.sh "${toolchain[@]}"
  printf '%s: built in %d s, tested in %d s, size in %d s\n' "$architecture" \
    $((built - begin)) $((tested - built)) $((SECONDS - tested))
done
