#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs every test with coverage counters and lists what they reach: a table on standard output, the
# lines themselves in build/coverage/html/index.html.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh coverage
mkdir -p build
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
scripts/test.sh coverage >build/coverage.log 2>&1 || {
  tail -n 40 build/coverage.log >&2
  exit 1
}
mkdir -p build/coverage/html
# Branches that only an exception takes are the allocation sweep's, not a reader's.
gcovr --root . --object-directory build/coverage --exclude-throw-branches \
  --filter common/ --filter Lib_Common/ --filter platform/ --filter player/ \
  --html-details build/coverage/html/index.html --print-summary -j "$(nproc)"
