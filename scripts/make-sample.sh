#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes samples/Test.kst: espeak-ng speaks a sentence of ours, sox turns it into 16 kHz mono 16-bit
# PCM, and our own encoder (examples/convert.cpp) writes it as a Kestrel file of 24000 bit/s.
#
#   scripts/make-sample.sh [TARGET]     (samples/Test.kst unless given)
#
# Needs espeak-ng and sox (Debian packages of those names). The file in the tree was made with
# espeak-ng 1.51 and sox 14.4.2; other versions speak a little differently.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
target=$(realpath -m "${1:-$root/samples/Test.kst}")  # before we change the directory

sentence="Hello. This is Voxplay, and what you hear is compressed speech."
bit_rate=24000

for tool in espeak-ng sox; do
  command -v "$tool" >/dev/null || {
    echo "${0##*/}: $tool is missing (apt-get install espeak-ng sox)" >&2
    exit 1
  }
done

cd "$root"
cmake --preset library >/dev/null
cmake --build --preset library --target convert -j "$(nproc)" >/dev/null

work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
espeak-ng -v en-gb -s 150 -w "$work/spoken.wav" "$sentence"
# Without dither, so that every run gives the same samples. A quarter of a second of silence before
# and after keeps devices that start slowly from cutting off the first word.
sox -D "$work/spoken.wav" -r 16000 -c 1 -b 16 "$work/speech.wav" norm -3 pad 0.25 0.25
build/library/bin/convert "$work/speech.wav" "$work/speech.kst" "$bit_rate"
mv "$work/speech.kst" "$target"
