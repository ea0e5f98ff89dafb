#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Measures how much faster voxtool converts a folder with two threads than with one, and prints the
# table of docs/PERFORMANCE.md. Both take turns, and medians count. For a calm machine.
#
#   bench/jobs.sh [FILES [SECONDS [TURNS]]]     2000 files of 5 s, 5 turns unless given
#
# $VOXTOOL names the program, $TMPDIR a folder with room for the files.
set -euo pipefail
if [[ ${1:-} == -h || ${1:-} == --help ]]; then
  sed -n '4,9s/^# \{0,1\}//p' "$0"
  exit 0
fi
voxtool=${VOXTOOL:-voxtool}
files=${1:-2000} seconds=${2:-5} turns=${3:-5}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$voxtool" convert -q "$root/samples/Test.kst" -o "$folder/speech.wav"
mkdir "$folder/in"
python3 - "$folder" "$files" "$seconds" <<'PYTHON'
import sys
import wave

folder, count, seconds = sys.argv[1], int(sys.argv[2]), float(sys.argv[3])
with wave.open(f"{folder}/speech.wav") as file:
    speech = file.readframes(file.getnframes())
wanted = int(16000 * seconds) * 2
for number in range(count):
    at = number * 64 % len(speech)
    with wave.open(f"{folder}/in/{number:06d}.wav", "wb") as file:
        file.setparams((1, 2, 16000, 0, "NONE", ""))
        file.writeframes((speech[at:] + speech * (wanted // len(speech) + 1))[:wanted])
PYTHON

# took TO THREADS: the seconds of one conversion
took() {
  rm -rf "$folder/out"
  local begin=$EPOCHREALTIME
  "$voxtool" convert -qq -r "$folder/in" -d "$folder/out" --to "$1" -j "$2"
  awk -v a="$begin" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.2f\n", b - a }'
}
# The middle one of the numbers that it reads.
median() { sort -g | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'; }

echo "| $files files of $seconds s to | one thread | two threads | times as fast |"
echo "|---|---|---|---|"
for to in kestrel heron4 wav; do
  took "$to" 2 >/dev/null
  for ((turn = 0; turn < turns; ++turn)); do
    took "$to" 1 >>"$folder/one-$to"
    took "$to" 2 >>"$folder/two-$to"
  done
  awk -v to="$to" -v one="$(median <"$folder/one-$to")" -v two="$(median <"$folder/two-$to")" \
    'BEGIN { printf "| %s | %.2f s | %.2f s | %.2f |\n", to, one, two, one / two }'
done
