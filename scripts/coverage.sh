#!/usr/bin/env bash
# Runs the tests with coverage and prints the lines of the library and of the
# explanation that they reach. Fails below 97 %.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${test_packages[@]}" gcovr
cmake --preset coverage >/dev/null
programs=(tamzo_tests tamzo_allocation_tests)
others=(capi/tamzo_capi_tests capi/tamzo_use_from_c capi/tamzo_capi_allocation_tests
  explain/tamzo_explain_tests)
cmake --build --preset coverage --target "${programs[@]}" "${others[@]##*/}"
find build/coverage -name '*.gcda' -delete
# In a process each, which writes its counts once, at its end. What repeats whole parses very
# often reaches no further line and takes minutes with counters in it.
build/coverage/tests/tamzo_tests --gtest_brief=1 \
  --gtest_filter='-*HostileShapes*:*HostileInLine*:*Truncation*:BatchCommand*:AnswerQueue*:ThreadsTest*'
for program in tamzo_allocation_tests "${others[@]}"; do
  GTEST_BRIEF=1 "build/coverage/tests/$program" >/dev/null
done
gcovr --root . --filter '(base|net|sdk|vast|xml|capi|explain)/' --filter 'include/tamzo/' \
  --exclude-throw-branches --gcov-ignore-parse-errors --fail-under-line 97 build/coverage
