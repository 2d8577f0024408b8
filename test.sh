#!/usr/bin/env bash
# Builds everything and runs the tests. Installs what is missing on Debian first. Arguments go to
# ctest, so "./test.sh -R Macro" runs those tests alone.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${test_packages[@]}"

[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release
ctest --preset release -j "$(nproc)" "$@"

for engine in chromium webkit; do
  lacks=$(tests/page/run-engine.sh --missing "$engine" | tr '\n' ' ')
  [ -z "$lacks" ] || echo "skipped: the VPAID page in $engine, for lack of $lacks(browser_packages)"
done
