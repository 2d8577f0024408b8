#!/usr/bin/env bash
# Puts the libraries that a build for ARCHITECTURE needs into FOLDER: Debian's packages, taken apart.
# Quick when they are there. The machine's own packages are left alone: to install others beside them
# would hold both at one version, and stop apt wherever a mirror has one architecture newer.
# Usage: scripts/sysroot.sh ARCHITECTURE FOLDER
set -euo pipefail

if [ "$#" -ne 2 ]; then
  echo "Usage: scripts/sysroot.sh ARCHITECTURE FOLDER" >&2
  exit 2
fi
architecture=$1
folder=$2
packages=(libxml2-dev libxml2 libicu72 zlib1g liblzma5 libfmt-dev libfmt9 libssl-dev libssl3)

[ "$(cat "$folder/complete" 2>/dev/null || true)" != "${packages[*]}" ] || exit 0
echo "fetching for $architecture: ${packages[*]}" >&2
rm -rf "$folder"
mkdir -p "$folder"/apt/{lists/partial,archives/partial}
folder=$(cd "$folder" && pwd)
: >"$folder/apt/status"

# apt with a memory of its own, and the machine's sources and keys.
options=(-q -o APT::Architecture="$architecture" -o APT::Architectures="$architecture"
  -o Dir::State="$folder/apt" -o Dir::State::status="$folder/apt/status"
  -o Dir::Cache="$folder/apt" -o APT::Sandbox::User="$(id -un)")
{
  # Sources that have nothing for this architecture may fail; the download says what is missing.
  apt-get "${options[@]}" update || echo "some sources could not be read" >&2
  (cd "$folder/apt" && apt-get "${options[@]}" download "${packages[@]}")
} >"$folder/log" 2>&1 || {
  cat "$folder/log" >&2
  echo "the libraries for $architecture could not be fetched" >&2
  exit 2
}
for package in "$folder"/apt/*.deb; do
  dpkg-deb -x "$package" "$folder"
done
rm -rf "$folder/apt"
echo "${packages[*]}" >"$folder/complete"
