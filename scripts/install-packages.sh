#!/usr/bin/env bash
# Installs those of the named Debian packages that are missing; silent and quick when none is.
# Usage: scripts/install-packages.sh PACKAGE...
set -euo pipefail

missing=()
for package in "$@"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ "${#missing[@]}" -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "missing packages, and neither root nor sudo to install them: ${missing[*]}" >&2
    exit 2
  fi
  as_root=(sudo)
fi
echo "installing: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
{
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
} >&2
