#!/usr/bin/env bash
# Checks the script of the VPAID page, and its tests: ESLint, and types by TypeScript.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-packages.sh eslint node-typescript
export NODE_PATH=/usr/share/nodejs
eslint --format unix --ext .js,.mjs sdk/page tests/page
tsc --project sdk/page
