#!/usr/bin/env bash
# Runs a command. What it says is shown, on standard error, only when it fails; its status is kept.
# Usage: scripts/quietly.sh COMMAND [ARGUMENT...]
set -euo pipefail

if said=$("$@" 2>&1); then
  exit 0
else
  status=$?
fi
printf '%s\n' "$said" >&2
exit "$status"
