#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes sounds to measure the Heron codec with, from recordings in these Debian packages, none of
# which the tables are trained on (training/make_speech.sh):
#
#   codec2-examples             English speech, also by radio and in noise, LGPL 2.1
#   fillets-ng-data-nl          Dutch actors, GPL 2
#   asterisk-prompt-es-co       Spanish prompts, coded by GSM, GPL 2
#   asterisk-prompt-fr-armelle  French prompts, coded by GSM, a licence like BSD
#
# Packages that are not installed are downloaded into build/packages and unpacked there. Needs
# ffmpeg. Makes the same files each time. None of the sounds is committed.
#
#   bench/make_heldout.sh FOLDER     (FOLDER/8k/*.wav and FOLDER/16k/*.wav)
set -euo pipefail
export LC_ALL=C
(($# == 1)) || { echo "usage: ${0##*/} FOLDER" >&2; exit 2; }
out=$1
unpack=$(dirname "${BASH_SOURCE[0]}")/../scripts/unpack.sh
mkdir -p "$out/8k" "$out/16k"
# Sounds of an earlier run would be measured as well.
rm -f "$out"/{8k,16k}/*.wav

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}
# convert_to RATE NAME INPUT...: the input of ffmpeg as 16-bit mono sound.
convert_to() {
  local rate=$1 name=$2
  shift 2
  ffmpeg -nostdin -v error -y "$@" -af "aresample=$rate:filter_size=64:cutoff=0.97" \
    -ac 1 -c:a pcm_s16le -bitexact "$out/$((rate / 1000))k/$name.wav"
}

# What is speech there. The other files are modem signals, or other copies of these.
speech=$("$unpack" codec2-examples)/usr/share/codec2
for name in cq_ref cross big_dog forig g3plx hts1a hts2a kristoff mmt1 morig ve9qrp_10s vk5qi f2400 m2400; do
  convert_to 8000 "c2-$name" -f s16le -ar 8000 -ac 1 -i "$speech/raw/$name.raw"
done
convert_to 16000 c2-wia -t 12 -i "$speech/wav/wia_16kHz.wav"
convert_to 16000 c2-orig16 -i "$speech/raw/speech_orig_16k.wav"

# The languages of an installed package may lie beside those of others. sort shuffles these in the
# same way each time, because it takes only the first 16 bytes of its random source, and the first
# line of that file is a comment that never changes.
actors=$("$unpack" fillets-ng-data-nl)
number=0
while IFS= read -r file; do
  for rate in 8000 16000; do convert_to "$rate" "nl-$number" -i "$actors/$file"; done
  number=$((number + 1))
done < <(cd "$actors/" && find ./usr/share/games/fillets-ng/sound -path '*/nl/*.ogg' -size +25k |
  sort -R --random-source=/etc/services | sed 24q)
((number == 24)) || fail "$actors has too few sounds"

for voice in es-co/es fr-armelle/fr; do
  prompts=$("$unpack" "asterisk-prompt-${voice%/*}")/usr/share/asterisk/sounds/${voice#*/}
  number=0
  while IFS= read -r file; do
    convert_to 8000 "${voice%/*}-$number" -i "$prompts/$file"
    number=$((number + 1))
  done < <(cd "$prompts" && find . -name '*.gsm' -size +6k | sort | sed 10q)
  ((number == 10)) || fail "$prompts has too few sounds"
done
