#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs every test with coverage counters and shows what the tests reach: a summary on standard
# output, the lines themselves in build/coverage/html/index.html.
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
# Branches that only an exception takes are left out: the test that makes every allocation fail
# takes care of them, so a reader of the report need not.
gcovr --root . --object-directory build/coverage --exclude-throw-branches \
  --filter common/ --filter Lib_Common/ --filter platform/ --filter player/ \
  --html-details build/coverage/html/index.html --print-summary -j "$(nproc)"
