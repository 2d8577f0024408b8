#!/usr/bin/env bash
# Builds tamzo-vast and shows the record of a response: of INPUT (a file, "-" for standard input, or
# a URL; options of "tamzo-vast parse" may come with it), or of the sample that comes with it.
# Installs what is missing on Debian first. Quick when nothing has changed.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
"$root/scripts/install-packages.sh" "${build_packages[@]}"

build="$root/build/run"
if [ ! -f "$build/build.ninja" ]; then
  (cd "$root" && cmake --preset release -B "$build" -DTAMZO_BUILD_TESTS=OFF \
    -DTAMZO_BUILD_EXAMPLES=OFF) >&2
fi
"$root/scripts/quietly.sh" cmake --build "$build" || exit 2

if [ "$#" -eq 0 ]; then
  set -- "$root/examples/sample-response.xml"
fi
exec "$build/tools/tamzo-vast" parse "$@"
