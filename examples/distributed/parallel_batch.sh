#!/bin/sh
# Parses JSON lines, {"id": ..., "vast": "..."}, with GNU parallel: standard input in blocks, each
# piped through tamzo-vast batch, the answers on standard output in the order of the input.
#
#     parallel_batch.sh [OPTION OF BATCH...] < responses.jsonl > answers.jsonl
#
# JOBS (default: one for each core) and BLOCK (default: 16M, cut at ends of lines) are parallel's,
# COMMAND (default: tamzo-vast) is what is run. A block that fails is tried three times.
#
# Exit status, as that of batch: 0 when no ad failed, 1 when one did, 2 when a line could
# not be read; and 3 when a block failed on every try, which is said on standard error. The answers
# of all other blocks are there then.
set -eu

# Run by parallel, for one block. Before the answers stands how many lines there were, by which
# number_lines counts on, and the status: one other than 0 would have the block tried again.
parse_block() {
  folder=$(mktemp -d)
  trap 'rm -rf "$folder"' EXIT
  # A byte order mark is dropped at the beginning of the input only: others have a blank line first.
  if [ "$PARALLEL_SEQ" -gt 1 ]; then echo; fi >"$folder/lines"
  cat >>"$folder/lines"
  status=0
  "${COMMAND:-tamzo-vast}" batch -j 1 "$@" <"$folder/lines" >"$folder/answers" \
    2>"$folder/complaints" || status=$?
  # Status 2 without an answer is wrong usage.
  if [ "$status" -gt 2 ] || { [ "$status" -eq 2 ] && [ ! -s "$folder/answers" ]; }; then
    echo "block $PARALLEL_SEQ: status $status: $(tail -n 3 "$folder/complaints")" >&2
    exit 3
  fi
  echo "$(wc -l <"$folder/lines")" "$status"
  cat "$folder/answers"
}

# Takes what stands before the answers of each block away, and adds the lines of all blocks before to
# the number of one that could not be read. Ends with the highest status.
number_lines() {
  LC_ALL=C awk '
    /^[0-9]+ [0-9]$/ {
      before += lines - (lines ? 1 : 0)  # the blank line
      lines = $1
      if ($2 > status) { status = $2 }
      next
    }
    match($0, /"line": *[0-9]+, *"error": *"([^"\\]|\\.)*"}$/) {
      start = RSTART + match(substr($0, RSTART), /[0-9]/) - 1
      match(substr($0, start), /^[0-9]+/)
      $0 = substr($0, 1, start - 1) (substr($0, start, RLENGTH) + before) substr($0, start + RLENGTH)
    }
    { print }
    END { exit status }'
}

if [ "${1-}" = --one-block ]; then
  shift
  parse_block "$@"
  exit
fi

# As "sh parallel_batch.sh" is called, the name would be looked for in PATH.
case $0 in
  */*) self=$0 ;;
  *) self=./$0 ;;
esac
log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
parallel --pipe --keep-order --block "${BLOCK:-16M}" --jobs "${JOBS:-100%}" --retries 3 \
  --joblog "$log" --quote sh "$self" --one-block "$@" | number_lines || status=$?
if awk -F '\t' 'NR > 1 { failed += $7 != 0 || $8 != 0 } END { exit !failed }' "$log"; then
  status=3
fi
exit "$status"
