#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs the tests with coverage counters and shows what they reach: a summary on standard output, the
# lines themselves in build/coverage/html/index.html.
#
#   scripts/coverage.sh [CTEST ARGUMENTS...]     (all tests unless told otherwise)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh coverage
mkdir -p build
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
scripts/test.sh coverage "$@" >build/coverage.log 2>&1 || {
  tail -n 40 build/coverage.log >&2
  exit 1
}
mkdir -p build/coverage/html
# Branches that only an exception takes are left out: the test that makes every allocation fail
# takes care of them, so a reader of the report need not. So are those that only the compiler sees:
#   dynamic_cast<...>(&x), delete this   is the address of an object null?
#   (x.*y)(), (x->*y)()                  is the function that y points to virtual?
#   ~C_Name() = default                  does this object have to free its memory, too?
#   operator==(...) = default            which of the members is the first to differ?
compilers='dynamic_cast<[^;]*\(&|delete this;|(\.|->)\*|(~C_|operator==\().*= default;'
gcovr --root . --exclude-throw-branches --exclude-branches-by-pattern ".*($compilers).*" \
  --filter api/ --filter common/ --filter Lib_Common/ --filter platform/ --filter player/ --filter tool/ \
  --html-details build/coverage/html/index.html --print-summary -j "$(nproc)" build/coverage
