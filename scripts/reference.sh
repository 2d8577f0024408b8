#!/usr/bin/env bash
# Makes the reference of the public headers in build/reference/html, and fails where a public name is
# not documented.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
scripts/install-packages.sh doxygen
mkdir -p build/reference
doxygen docs/Doxyfile
echo "build/reference/html/index.html"
