#!/usr/bin/env bash
# What takes too long for every change: clang-tidy, libc++, the thread sanitizer, the fuzzers.
# Usage: scripts/check-more.sh [SECONDS for each fuzzer, default 60]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
step() { printf '\n== %s (%ds)\n' "$1" "$SECONDS"; }

step "clang-tidy"
scripts/lint.sh

step "tests: clang, libc++"
cmake --preset libc++ >/dev/null
cmake --build --preset libc++
ctest --preset libc++ -j "$(nproc)"

step "tests: thread sanitizer"
cmake --preset thread >/dev/null
cmake --build --preset thread --target tamzo_tests
ctest --preset thread -j "$(nproc)" -R 'Thread|Golden|Batch|State|Logger'

step "fuzzers"
fuzz/run.sh "${1:-60}"

