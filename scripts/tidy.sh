#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs clang-tidy over the given sources. When no file is given, it checks everything but the tests
# and the fuzzers, because walking through the test framework takes as long as everything else. Two
# compilers and the sanitizers check the tests.
#
#   scripts/tidy.sh [FILE...]
#   scripts/tidy.sh --all        the tests and the fuzzers, too
set -euo pipefail
here=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")/.."
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# This preset is only configured, never built. It gives a database of every target, with flags that
# clang understands.
cmake --preset tidy >"$log" 2>&1 || {
  cat "$log" >&2
  exit 1
}
database=build/tidy/compile_commands.json

# A source that several targets build is checked only once, as the first of them builds it.
mkdir -p build/tidy/once
awk 'BEGIN { printf "[" }
  /^\{/ { entry = ""; next }
  /^\}/ { if (!seen[file]++) { printf "%s\n{\n%s}", separator, entry; separator = "," } next }
  /^ / { entry = entry $0 "\n" }
  /^  "file": / { file = $0 }
  END { print "\n]" }' "$database" >build/tidy/once/compile_commands.json

# The static analyser takes a third of the time, so it only looks at the library and the player.
# What the compiler warns of is a finding like all others, and can be excused like them.
check() {
  local output checks=''
  [[ ! $1 =~ ^(\./)?(bench|fuzz|python|tool|training)/ ]] || checks=-clang-analyzer-*
  output=$(clang-tidy --quiet --checks="$checks" --extra-arg=-Wno-error -p build/tidy/once "$1" 2>/dev/null) && return
  printf '%s\n' "$output" "clang-tidy: $1 is not clean"
  return 1
}
export -f check

if [[ ${1:-} == --all ]]; then
  # A consumer of the library is a project of its own.
  scripts/sources.sh cpp | grep -zv '^\./tests/consumer/'
elif (($#)); then
  for file in "$@"; do (cd "$here" && realpath -z --relative-to="$OLDPWD" "$file"); done
else
  scripts/sources.sh cpp | grep -zvE '^\./(fuzz|tests)/'
fi >"$log"
# A source that no target builds would be checked with guessed flags, so it counts as an error.
while IFS= read -r -d '' file; do
  grep -qF "\"file\": \"$PWD/${file#./}\"" "$database" || {
    echo "tidy: no target builds $file" >&2
    exit 1
  }
done <"$log"
xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' _ <"$log"
