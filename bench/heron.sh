#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Measures the Heron codec on a folder of 16-bit mono WAV files: bits, signal-to-noise ratios and
# what other coders reach with the same bits, then the instructions per sample for encoding and
# decoding. Installs what it needs.
#
#   bench/heron.sh FOLDER [FILE]     (instructions are counted on FILE, by default on the
#                                     folder's file of median size)
set -euo pipefail
(($# == 1 || $# == 2)) || {
  echo "usage: ${0##*/} FOLDER [FILE]" >&2
  exit 2
}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bench=$root/build/bench/bin/heron_bench

"$root/scripts/install-deps.sh" bench
cmake -S "$root" --preset bench >&2
cmake --build "$root/build/bench" --target heron_bench --parallel "$(nproc)" >&2

# The number of instructions that a run of the program executes.
instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$bench" "$@" 2>&1 >/dev/null |
    sed -n 's/.*Collected : //p'
}
middle_file() {
  find "$1" -maxdepth 1 -name '*.wav' -printf '%s\t%p\n' | sort -n | cut -f 2 |
    awk '{ path[NR] = $0 } END { print path[int((NR + 1) / 2)] }'
}

"$bench" "$1"

file=${2:-$(middle_file "$1")}
samples=$("$bench" load 2 "$file")
loaded=$(instructions load 2 "$file")
printf '\nInstructions per sample, %s (%d samples)\n\n' "${file##*/}" "$samples"
printf '| b | encoding | decoding |\n|---|---------:|---------:|\n'
for depth in 2 3 4 5 6; do
  encoded=$(instructions encode "$depth" "$file")
  decoded=$(instructions decode "$depth" "$file")
  printf '| %d | %8d | %8d |\n' "$depth" $(((encoded - loaded) / samples)) \
    $(((decoded - encoded) / samples))
done
