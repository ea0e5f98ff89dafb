#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs clang-tidy over the given sources; when none is given over all but the tests, for which walking
# the test framework takes as long as everything else. Two compilers and the sanitizers check those.
#
#   scripts/tidy.sh [FILE...]
#   scripts/tidy.sh --all        the tests, too
set -euo pipefail
here=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Configured only, never built: a database whose flags clang understands, for every target there is.
cmake --preset tidy >"$log" 2>&1 || {
  cat "$log" >&2
  exit 1
}
database=build/tidy/compile_commands.json

# A source that several targets build is checked as the first of them builds it, not once for each.
mkdir -p build/tidy/once
awk 'BEGIN { printf "[" }
  /^\{/ { entry = ""; next }
  /^\}/ { if (!seen[file]++) { printf "%s\n{\n%s}", separator, entry; separator = "," } next }
  /^ / { entry = entry $0 "\n" }
  /^  "file": / { file = $0 }
  END { print "\n]" }' "$database" >build/tidy/once/compile_commands.json

check() {
  local output
  output=$(clang-tidy --quiet -p build/tidy/once "$1" 2>/dev/null) && return
  printf '%s\n' "$output" "clang-tidy: $1 is not clean"
  return 1
}
export -f check

if [[ ${1:-} == --all ]]; then
  scripts/sources.sh cpp
elif (($#)); then
  for file in "$@"; do (cd "$here" && realpath -z --relative-to="$OLDPWD" "$file"); done
else
  scripts/sources.sh cpp | grep -zv '^\./tests/'
fi >"$log"
# A source that no target builds would be checked with guessed flags: it is an error by itself.
while IFS= read -r -d '' file; do
  grep -qF "\"file\": \"$PWD/${file#./}\"" "$database" || {
    echo "tidy: no target builds $file" >&2
    exit 1
  }
done <"$log"
xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' _ <"$log"
