#!/usr/bin/env bash
# Usage: fuzz/run.sh SECONDS [FUZZER...]
#
# Builds the preset "fuzz" and runs each fuzzer, or those named, that long. What a run learns stays
# in the build folder, in corpus/FUZZER, for the next one. Exits with 1 when there is a finding,
# after naming the file that reproduces it; the other fuzzers run all the same.
#
# As many run at a time as there are cores. TAMZO_FUZZ_BUILD names another build folder than the
# preset's.
set -euo pipefail

if [ $# -lt 1 ]; then
  sed -n '2,9s/^# \{0,1\}//p' "$0"
  exit 2
fi
seconds=$1
shift

cd "$(dirname "$0")/.."
build=${TAMZO_FUZZ_BUILD:-build/fuzz}
[ $# -gt 0 ] || set -- response chain xpath collapse conversions macros extra_actions batch

cmake --preset fuzz -B "$build" >/dev/null
targets=
for fuzzer in "$@"; do
  targets="$targets fuzz_$fuzzer"
done
# shellcheck disable=SC2086  # a list of words
cmake --build "$build" --target $targets

# Inputs beyond these sizes cost time and find nothing more. What grows with size alone is the
# matter of the benchmark's hostile shapes.
largest_input() {
  case $1 in
    response) echo 16384 ;;       # twice the seed that holds everything: room to repeat any part
    chain) echo 32768 ;;          # six documents of a few kilobytes
    xpath) echo 2048 ;;           # each node is asked from, so that time is quadratic in the size
    collapse) echo 1024 ;;        # many declarations and long runs between them
    conversions) echo 2048 ;;     # a double has 767 significant digits at most
    macros) echo 4096 ;;          # every macro's name several times; the slow version is slow
    extra_actions) echo 4096 ;;   # 512 levels take 1024 bytes
    batch) echo 16384 ;;          # the response of above, escaped
    *) echo "$1: no such fuzzer" >&2 && exit 2 ;;
  esac
}

run() {
  local fuzzer=$1 size corpus findings log status=0
  size=$(largest_input "$fuzzer")
  corpus=$build/corpus/$fuzzer
  findings=$build/findings/$fuzzer
  log=$build/findings/$fuzzer.log
  mkdir -p "$corpus" "$findings"
  "$build/fuzz/fuzz_$fuzzer" "$corpus" "fuzz/seeds/$fuzzer" -dict=fuzz/vast.dict \
    -max_len="$size" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -artifact_prefix="$findings/" -print_final_stats=1 >"$log" 2>&1 || status=$?
  echo "== $fuzzer, $seconds seconds, inputs of up to $size bytes"
  grep -E 'stat::(number_of_executed_units|peak_rss_mb)|DONE' "$log" || true
  if [ "$status" -ne 0 ]; then
    grep -E 'FINDING|ERROR|SUMMARY|runtime error' "$log" || tail -n 20 "$log"
    artifact=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    echo "== $fuzzer: FINDING, reproduce with: $build/fuzz/fuzz_$fuzzer ${artifact:-(see $log)}"
    return 1
  fi
}

found=0
running=0
for fuzzer in "$@"; do
  if [ "$running" -ge "$(nproc)" ]; then
    wait -n || found=1
    running=$((running - 1))
  fi
  run "$fuzzer" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || found=1
  running=$((running - 1))
done
exit "$found"
