#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes the pictures of the documents, docs/pictures/: voxtool draws samples/Test.kst and sounds that
# sox makes. Every run gives the same bytes with the same versions of cairo, pango and sox.
#
#   scripts/make-pictures.sh [FOLDER]     (docs/pictures unless given)
#
# Needs sox. VOXTOOL may name the program; otherwise it is built first.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
target=$(realpath -m "${1:-$root/docs/pictures}")  # before we change the directory
command -v sox >/dev/null || { echo "${0##*/}: sox is missing (apt-get install sox)" >&2; exit 1; }

cd "$root"
if [[ -z ${VOXTOOL:-} ]]; then
  cmake --preset release -DVOXPLAY_TOOL=ON >/dev/null
  cmake --build --preset release --target voxtool -j "$(nproc)" >/dev/null
  VOXTOOL=$root/build/release/bin/voxtool
fi
voxtool=$(realpath "$VOXTOOL")

work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
mkdir -p "$target"
cd "$work"
cp "$root/samples/Test.kst" speech.kst

# Notes that are plucked one after the other, the last one too loud, with marks of every kind. Never
# dither, so that every run gives the same samples.
gain=-8
for note in C3 E3 G3 C4 E4 G4; do
  sox -D -n -r 16000 -b 16 plucked.wav synth 0.5 pluck "$note" gain -8
  # sox says that the last one is too loud.
  sox -D plucked.wav "$note.wav" fade 0 0.5 0.05 gain "$gain" 2>/dev/null
  gain=$((gain + 5))
done
sox -D C3.wav E3.wav G3.wav C4.wav E4.wav G4.wav notes.wav pad 0 0.6
"$voxtool" tags add cue notes.wav --at 0 --name "low C"
"$voxtool" tags add cue notes.wav --at 1.5 --name "high C"
"$voxtool" tags add event notes.wav --at 0.5 --main 1 --sub 2
"$voxtool" tags add event notes.wav --at 0.62 --main 3 --sub 4
"$voxtool" tags add region notes.wav --at 1 --length 0.5
"$voxtool" tags add loop notes.wav --at 2 --length 0.5
"$voxtool" tags add silence notes.wav --at 3 --length 0.6

sox -D -n -r 48000 -c 2 -b 24 sweep.wav synth 8 sine 50-20000 sine 8000-100 gain -8

"$voxtool" plot speech.kst -o "$target/speech.png" --size 720x340 -f
"$voxtool" plot speech.kst -o "$target/samples.png" --size 720x300 --waveform --from 0.50 --to 0.52 -f
"$voxtool" plot notes.wav -o "$target/marks.png" --size 720x360 -f
"$voxtool" plot sweep.wav -o "$target/sweep.png" --size 720x450 --theme dark -f
