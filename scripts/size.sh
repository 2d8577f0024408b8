#!/usr/bin/env bash
# Builds the library as an app carries it (shared, without libcurl, for size, stripped) and prints
# how many bytes it has. Fails beyond the limit. Other arguments go to cmake, as a toolchain file.
# Usage: scripts/size.sh [CMAKE ARGUMENT...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}"
limit=350000
build=${TAMZO_SIZE_BUILD:-build/size}

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=MinSizeRel -DBUILD_SHARED_LIBS=ON \
  -DTAMZO_WITH_CURL=OFF -DTAMZO_BUILD_TOOLS=OFF -DTAMZO_BUILD_TESTS=OFF "$@" >/dev/null
scripts/quietly.sh cmake --build "$build" --target tamzo_vast || exit 2
rm -rf "$build/stage"
cmake --install "$build" --prefix "$build/stage" --strip >/dev/null
library=$(find "$build/stage" -name 'libtamzovast.so*' -type f)
bytes=$(stat -c %s "$library")
size -A -d "$library" | awk '$1 ~ /^\./ && $2 >= 4096 { printf "  %-18s %7d\n", $1, $2 }'
printf '%s: %d bytes, at most %d\n' "${library##*/}" "$bytes" "$limit"
[ "$bytes" -le "$limit" ]
