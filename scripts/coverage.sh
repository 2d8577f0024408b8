#!/usr/bin/env bash
# Runs the tests with coverage and prints the lines of the library that they reach. Fails
# below 97 %.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" gcovr
cmake --preset coverage >/dev/null
cmake --build --preset coverage --target tamzo_tests tamzo_allocation_tests
find build/coverage -name '*.gcda' -delete
# All tests in two processes: each writes its counts once, at its end.
build/coverage/tests/tamzo_tests --gtest_brief=1
build/coverage/tests/tamzo_allocation_tests --gtest_brief=1
gcovr --root . --filter '(base|net|sdk|vast|xml)/' --filter 'include/tamzo/' \
  --exclude-throw-branches --gcov-ignore-parse-errors --fail-under-line 97 build/coverage
