#!/usr/bin/env bash
# Builds the Debian packages from a clean copy of what git has of this tree, uncommitted changes
# included, into FOLDER/packages; the copy, built, is FOLDER/tamzo-vast. Quick when FOLDER has them of
# the same tree.
# Usage: scripts/debian-build.sh FOLDER
set -euo pipefail
if [ "$#" -ne 1 ]; then
  echo "Usage: scripts/debian-build.sh FOLDER" >&2
  exit 2
fi
mkdir -p "$1"
folder=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh "${build_packages[@]}" "${packaging_packages[@]}"

commit=$(git stash create)
tree=$(git rev-parse "${commit:-HEAD}^{tree}")
[ "$(cat "$folder/tree" 2>/dev/null || true)" != "$tree" ] || exit 0
rm -rf "${folder:?}"/{tree,log,packages,tamzo-vast,tamzo-vast_*,tamzo-vast-*,libtamzovast*}
mkdir "$folder/tamzo-vast" "$folder/packages"
git archive "$tree" | tar -x -C "$folder/tamzo-vast"

export DEB_BUILD_OPTIONS=${DEB_BUILD_OPTIONS-parallel=$(nproc)}
(cd "$folder/tamzo-vast" && dpkg-buildpackage -us -uc) >"$folder/log" 2>&1 || {
  tail -n 40 "$folder/log" >&2
  echo "the packages could not be built: $folder/log" >&2
  exit 1
}
mv "$folder"/*.{deb,dsc,tar.xz,buildinfo,changes} "$folder/packages"
echo "$tree" >"$folder/tree"
