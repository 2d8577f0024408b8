#!/usr/bin/env bash
# Runs the tests with coverage and prints the lines of vast/, xml/ and sdk/ that they reach. Fails
# below 97 %.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" gcovr
cmake --preset coverage >/dev/null
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j "$(nproc)"
gcovr --root . --filter 'vast/' --filter 'xml/' --filter 'sdk/' --exclude-throw-branches --gcov-ignore-parse-errors \
  --fail-under-line 97 build/coverage
