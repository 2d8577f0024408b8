#!/usr/bin/env bash
# Runs the tests with coverage and prints the lines of the library that they reach. Fails
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
gcovr --root . --filter '(base|net|sdk|vast|xml)/' --filter 'include/tamzo/' --exclude-throw-branches --gcov-ignore-parse-errors \
  --fail-under-line 97 build/coverage
