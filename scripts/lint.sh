#!/usr/bin/env bash
# Runs clang-tidy over the library, the explanation, the command and the bridge to Java: over the
# sources as they are compiled together, so that each header is read a few times and not two hundred.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" clang clang-tidy openjdk-17-jdk-headless
cmake --preset clang -B build/lint -DTAMZO_BUILD_TESTS=OFF -DTAMZO_BUILD_EXAMPLES=OFF \
  -DTAMZO_BUILD_JNI=ON >/dev/null
{ find build/lint -name 'unity_*.cxx' -print0; printf '%s\0' bindings/java/jni/*.cc; } |
  xargs -0 -P "$(nproc)" -n 1 clang-tidy -p build/lint --quiet 2>/dev/null || {
  echo "clang-tidy: faults, as above; where none is, it could not run" >&2
  exit 1
}
