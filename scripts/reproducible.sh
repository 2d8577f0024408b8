#!/usr/bin/env bash
# Builds the packages twice, in folders of different names, as users with different masks, at other
# times, in other zones and languages, on other numbers of processors, and without a cache of
# compilations the second time; compares them byte by byte. The first are those that
# scripts/debian-package.sh has left, where they are of this tree.
# Usage: scripts/reproducible.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

first=$PWD/build/debian
scripts/debian-build.sh "$first"
second=$(mktemp -d /var/tmp/a-folder-of-another-name.XXXXXX)
trap 'rm -rf "$second"' EXIT

(
  unset CMAKE_CXX_COMPILER_LAUNCHER
  export CCACHE_DISABLE=1 TZ=Pacific/Kiritimati LC_ALL=C LANG=xx HOME=/nonexistent
  export DEB_BUILD_OPTIONS="parallel=$(($(nproc) + 1)) nocheck"
  umask 0077
  scripts/debian-build.sh "$second"
)

status=0
for package in "$first"/packages/*.deb; do
  name=${package##*/}
  if ! cmp "$package" "$second/packages/$name"; then
    status=1
    mkdir "$second/a" "$second/b"
    dpkg-deb -R "$package" "$second/a"
    dpkg-deb -R "$second/packages/$name" "$second/b"
    diff -rq "$second/a" "$second/b" || true
    rm -rf "$second/a" "$second/b"
  fi
done
[ "$status" -ne 0 ] || echo "equal: $(cd "$first/packages" && echo *.deb)"
exit "$status"
