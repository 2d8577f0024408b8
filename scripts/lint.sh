#!/usr/bin/env bash
# Runs clang-tidy over the library, the explanation and the command, each source by itself.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
cmake --preset clang -B build/lint -DTAMZO_BUILD_TESTS=OFF -DTAMZO_BUILD_EXAMPLES=OFF \
  -DCMAKE_UNITY_BUILD=OFF >/dev/null
git ls-files 'base/*.cc' 'net/*.cc' 'xml/*.cc' 'sdk/*.cc' 'vast/*.cc' \
    'capi/*.cc' 'explain/*.cc' 'tools/*.cc' | grep -v NoCurlReader |
  xargs -P "$(nproc)" -n 3 clang-tidy -p build/lint --quiet 2>/dev/null
