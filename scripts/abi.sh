#!/usr/bin/env bash
# Compares what the shared library shows to hosts with what this major version has promised, which is
# kept in abi/libtamzovast.abi: exported functions, and the types in public headers. Additions are no
# fault. Without a LIBRARY (shared, with debug information) it builds one.
# Usage: scripts/abi.sh [--renew] [LIBRARY]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh abigail-tools python3
renew=
if [ "${1:-}" = --renew ]; then
  renew=1
  shift
fi

library=${1:-}
if [ -z "$library" ]; then
  scripts/install-packages.sh "${build_packages[@]}"
  # As Debian builds it: what is inlined decides which copies of templates a library has.
  cmake -S . -B build/abi -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_SHARED_LIBS=ON \
    -DTAMZO_BUILD_TOOLS=OFF -DTAMZO_BUILD_TESTS=OFF -DTAMZO_DEVELOPER=OFF >/dev/null
  scripts/quietly.sh cmake --build build/abi --target tamzo_vast
  library=build/abi/libtamzovast.so
fi
python3 scripts/check-abi.py ${renew:+--renew} "$library"
