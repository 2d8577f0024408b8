#!/usr/bin/env bash
# Plays the VPAID page in a browser.
# Usage: tests/page/run-engine.sh ENGINE            chromium or webkit; exits with 77 where it is not
#        tests/page/run-engine.sh --missing ENGINE  prints what is not installed, if anything
# TAMZO_COMMAND names the command tamzo-vast. TAMZO_SCENARIO, a part of a name, picks scenarios;
# TAMZO_PICTURES, a folder, is given pictures of the page.
set -euo pipefail

need() { command -v "$1" >/dev/null || echo "$1"; }

has_webkit_view() {
  /usr/bin/python3 -c 'import gi; gi.require_version("WebKit2", "4.1"); import gi.repository.WebKit2' \
    2>/dev/null
}

missing() {
  need node
  need openssl
  case $1 in
    chromium) need chromium; need chromedriver ;;
    webkit) need Xvfb; has_webkit_view || echo "gir1.2-webkit2-4.1" ;;
    *) echo "no such engine: $1" ;;
  esac
}

if [ "$1" = --missing ]; then
  missing "$2"
  exit
fi
lacks=$(missing "$1")
if [ -n "$lacks" ]; then
  echo "not installed: $(tr '\n' ' ' <<<"$lacks")"
  exit 77
fi
TAMZO_ENGINE=$1 exec node --test "$(dirname "${BASH_SOURCE[0]}")/Engines.test.mjs"
