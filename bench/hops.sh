#!/bin/sh
# Instructions of a hop over https with all of the system's certificates, on the thread that fetches,
# counted by callgrind: the first hop of a process, a later one on a new connection, and one on a
# connection that is kept.
#
#   bench/hops.sh [BUILD_FOLDER]
set -eu

program=${1:-build/bench}/bench/tamzo_bench_chains
[ -x "$program" ] || { echo "$program: build the preset \"bench\" first" >&2; exit 2; }

log=$(mktemp)
trap 'rm -f "$log"' EXIT

count() {
  if ! valgrind --tool=callgrind --callgrind-out-file=/dev/null --toggle-collect='*fetchCounted*' \
      "$program" "$1" "$2" >"$log" 2>&1; then
    cat "$log" >&2
    exit 2
  fi
  sed -n 's/^.*Collected : \([0-9]*\).*$/\1/p' "$log"
}

first=$(count --hops 1)
printf '%-34s %12d\n' "first hop" "$first"
printf '%-34s %12d\n' "later hop, new connection" "$((($(count --hops 6) - first) / 5))"
printf '%-34s %12d\n' "later hop, kept connection" "$((($(count --kept-hops 6) - first) / 5))"
