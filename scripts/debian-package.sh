#!/usr/bin/env bash
# Builds the Debian packages, holds them to lintian, lists what they export, weigh and depend on,
# installs them into a bare Debian of this machine's release, and uses them there: the command, and
# programs in C, C++, Python and Java. The packages stay in build/debian/packages. Needs root, for the
# bare Debian, and its mirror, which is that of the machine's apt.
# Usage: scripts/debian-package.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What apt's lists say of this machine's release; nothing where there are no lists.
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
debian_sources() {
  apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(REPO_URI) $(COMPONENT)' \
    "Created-By: Packages" |
    awk -v name="$codename" '$1 == "Debian" && ($2 == name || index($2, name "-") == 1) &&
      $4 == "main" { print "deb", $3, $2, $4 }' | sort -u
}
if [ "$(id -u)" -ne 0 ]; then
  echo "no bare Debian to install into: that needs root" >&2
  exit 2
fi
sources=$(debian_sources)
if [ -z "$sources" ]; then
  scripts/quietly.sh apt-get update
  sources=$(debian_sources)
fi
if [ -z "$sources" ]; then
  echo "no bare Debian to install into: apt has no sources of Debian $codename" >&2
  exit 2
fi

begin=$SECONDS
scripts/debian-build.sh build/debian
packages=$PWD/build/debian/packages
printf 'packages built in %d s\n' $((SECONDS - begin))

begin=$SECONDS
lintian --fail-on error,warning "$packages"/*.changes
printf 'lintian: nothing to say, in %d s\n' $((SECONDS - begin))

# What a program in C or C++ may use, and what each package asks for.
contents=$(mktemp -d)
trap 'rm -rf --one-file-system "$contents"' EXIT
for package in "$packages"/*.deb; do
  name=$(dpkg-deb -f "$package" Package)
  [[ $name != *-dbgsym ]] || continue
  printf '%s: %d bytes, %d KB installed\n  Depends: %s\n' "$name" "$(stat -c %s "$package")" \
    "$(dpkg-deb -f "$package" Installed-Size)" "$(dpkg-deb -f "$package" Depends)"
  dpkg-deb -x "$package" "$contents"
done
library=$(find "$contents" -name 'libtamzovast.so.*' -type f)
for file in "$library" "$contents/usr/bin/tamzo-vast"; do
  printf '%s: %d bytes, needs %s\n' "${file##*/}" "$(stat -c %s "$file")" \
    "$(objdump -p "$file" | awk '$1 == "NEEDED" { printf "%s%s", comma, $2; comma = ", " }')"
done
nm -D --defined-only "$library" |
  awk '$3 ~ /@@TAMZO_VAST_C_/ { c++ } $3 ~ /@@TAMZO_VAST_[0-9]/ { cc++ }
    END { printf "exported: %d functions for C, %d symbols for C++\n", c, cc }'

# Runs what the packages' own tests are, in a Debian that has nothing else. It is never kept.
begin=$SECONDS
mkdir "$contents/given"
cp "$packages"/*.deb "$contents/given"
rm -f "$contents"/given/*-dbgsym_*.deb
cp -r debian examples scripts/quietly.sh "$contents/given"
cat >"$contents/given/run" <<'END'
set -eu
cd /given
install() { ./quietly.sh apt-get install -qq --no-install-recommends "$@"; }
export DEBIAN_FRONTEND=noninteractive
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER  # nothing like these is there
install ./tamzo-vast_*.deb
debian/tests/command
install ./libtamzovast8_*.deb
install ./libtamzovast-dev_*.deb
test -z "$(dpkg --audit)"
install cmake g++ make pkg-config python3
debian/tests/consumer
install default-jdk-headless ./libtamzovast-j*.deb
debian/tests/java
./quietly.sh apt-get purge -qq tamzo-vast 'libtamzovast*'
left=$(find / -xdev -path /given -prune -o -path /proc -prune -o -path /tmp -prune -o \
  -iname '*tamzo*' -print)
test -z "$left" || { echo "left behind: $left"; exit 1; }
END
# Its mounts and processes are seen by itself alone and end with it, also where it is killed. Its folder
# is below what the trap removes, and readable by the user whom apt downloads as.
chmod 755 "$contents"
TMPDIR=$contents unshare --pid --fork --kill-child --mount-proc \
  mmdebstrap --quiet --mode=root --variant=minbase --format=null \
  --customize-hook="cp -r '$contents/given' \"\$1/\"" \
  --customize-hook='chroot "$1" sh /given/run >&2' "$codename" - <<<"$sources"
printf 'used in a bare Debian, in %d s\n' $((SECONDS - begin))
