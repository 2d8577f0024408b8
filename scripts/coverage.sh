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
# In two processes, each of which writes its counts once, at its end. What repeats whole parses very
# often reaches no further line and takes minutes with counters in it.
build/coverage/tests/tamzo_tests --gtest_brief=1 \
  --gtest_filter='-*HostileShapes*:*Truncation*:BatchCommand*:AnswerQueue*:ThreadsTest*'
build/coverage/tests/tamzo_allocation_tests --gtest_brief=1
gcovr --root . --filter '(base|net|sdk|vast|xml)/' --filter 'include/tamzo/' \
  --exclude-throw-branches --gcov-ignore-parse-errors --fail-under-line 97 build/coverage
