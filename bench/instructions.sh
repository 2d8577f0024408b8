#!/bin/sh
# Instructions that one parse, writing its record as JSON, and the floor of both take, counted by
# callgrind. Each is run with two
# different counts, and what they have in common (start-up, the generator, the first parse) drops
# out of the difference.
#
#   bench/instructions.sh [--check] [BUILD_FOLDER]
#
# With --check: exit status 1 when a ratio is above the limit.
set -eu

limit=1.05
json_limit=0.7
check=no
if [ "${1:-}" = --check ]; then
  check=yes
  shift
fi
program=${1:-build/bench}/bench/tamzo_bench_instructions
[ -x "$program" ] || { echo "$program: build the preset \"bench\" first" >&2; exit 2; }

log=$(mktemp)
trap 'rm -f "$log"' EXIT

count() {
  if ! valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" "$3" \
      >"$log" 2>&1; then
    cat "$log" >&2
    exit 2
  fi
  sed -n 's/^.*Collected : \([0-9]*\).*$/\1/p' "$log"
}

each() {
  few=$(count "$1" "$2" "$3")
  many=$(count "$1" "$2" "$4")
  echo $(((many - few) / ($4 - $3)))
}

ratio() { awk "BEGIN { printf \"%.3f\", $1 / $2 }"; }
is_above() { awk "BEGIN { exit !($1 / $2 > $3) }"; }

status=0
printf '%-10s %12s %12s %8s %12s %8s\n' document floor parse ratio json ratio
for document in a b c d d+xmlns; do
  case $document in
    c) few=1 many=4 ;;
    *) few=20 many=120 ;;
  esac
  floor=$(each floor "$document" $few $many)
  parse=$(each parse "$document" $few $many)
  json=$(each json "$document" $few $many)
  printf '%-10s %12d %12d %8s %12d %8s\n' "$document" "$floor" \
    "$parse" "$(ratio "$parse" "$floor")" "$json" "$(ratio "$json" "$floor")"
  # The limit is one on documents without a default namespace; that row only shows what it costs.
  if [ "$document" != d+xmlns ] && is_above "$parse" "$floor" $limit; then
    echo "  parse above $limit"
    status=1
  fi
  # Writing is held to its limit on the document that has something of everything.
  if [ "$document" = a ] && is_above "$json" "$floor" $json_limit; then
    echo "  json above $json_limit"
    status=1
  fi
done
[ $check = no ] || exit $status
