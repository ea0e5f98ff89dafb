#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes the speech that the Heron tables were trained on, from recordings in these Debian packages:
#
#   asterisk-core-sounds-{en,es,fr}-{wav,g722}  prompts, CC BY-SA 3.0
#   asterisk-core-sounds-{it,ru}-{wav,g722}     prompts, CC BY 3.0
#   asterisk-prompt-it-menardi-wav              prompts, CC BY-SA 3.0 Italy
#   fillets-ng-data-cs                          Czech actors, GPL 2
#   festvox-ru                                  Russian sentences, a licence like BSD
#
# Packages that are not installed are downloaded into build/packages and unpacked there. Needs
# ffmpeg. Makes the same files each time. None of the speech is committed.
#
# These packages must not be used here, because bench/make_heldout.sh makes the sounds from them that
# the codec is measured with: codec2-examples, fillets-ng-data-nl, asterisk-prompt-es-co and
# asterisk-prompt-fr-armelle.
#
#   training/make_speech.sh FOLDER     (FOLDER/8k/*.wav and FOLDER/16k/*.wav)
set -euo pipefail
export LC_ALL=C
(($# == 1)) || { echo "usage: ${0##*/} FOLDER" >&2; exit 2; }
out=$1
unpack=$(dirname "${BASH_SOURCE[0]}")/../scripts/unpack.sh
mkdir -p "$out/8k" "$out/16k"
# Sounds of an earlier run could otherwise get copies of their own.
rm -f "$out"/{8k,16k}/*.wav

fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}
convert() { ffmpeg -nostdin -v error -y "$@"; }
# convert_to RATE FILE INPUT...: the input of ffmpeg as 16-bit mono sound.
convert_to() {
  local rate=$1 file=$2
  shift 2
  convert "$@" -af "aresample=$rate:filter_size=64:cutoff=0.97" -ac 1 -c:a pcm_s16le -bitexact "$file"
}
# Shuffles lines in the same way each time: sort takes only the first 16 bytes of its random source,
# and the first line of this file is a comment that never changes.
shuffled() { sort -R --random-source=/etc/services; }

# The folder of a voice in a package of prompts.
voice_in() { echo "$("$unpack" "$1")/usr/share/asterisk/sounds/$2"; }

english_wav=$(voice_in asterisk-core-sounds-en-wav en_US_f_Allison)
english_g722=$(voice_in asterisk-core-sounds-en-g722 en_US_f_Allison)
# The English measurements of the codec use prompts of 3 to 12 s, in the order of their names, until
# they add up to 110 s. These prompts are left out here, in the other languages as well.
measured=$(
  total=0
  cd "$english_g722"
  for file in ./*.g722; do
    name=${file%.g722}
    length=$(($(stat -c %s "$file") / 8))
    if [[ ! -f $english_wav/$name.wav ]] || ((length < 3000 || length > 12000)); then continue; fi
    echo "$name.wav"
    total=$((total + length))
    ((total < 110000)) || break
  done
)

# take TAG SECONDS WAV [G722]: takes prompts of 1.5 to 15 s from the folder WAV until they add up to
# SECONDS, those that the folder G722 has as well at both rates.
take() {
  local tag=$1 left=$(($2 * 1000)) wav=$3 g722=${4:-} file name length
  while IFS= read -r file; do
    if grep -qxF "$file" <<<"$measured"; then continue; fi
    length=$(($(stat -c %s "$wav/$file") / 16))
    ((length >= 1500 && length <= 15000)) || continue
    name=$tag-$(tr / _ <<<"${file#./}")
    cp "$wav/$file" "$out/8k/$name"
    if [[ -n $g722 && -f $g722/${file%.wav}.g722 ]]; then
      convert -f g722 -i "$g722/${file%.wav}.g722" -ar 16000 -ac 1 -c:a pcm_s16le -bitexact \
        "$out/16k/$name"
    fi
    left=$((left - length))
    ((left > 0)) || break
  done < <(cd "$wav" && find . -name '*.wav' | shuffled)
  ((left <= 0)) || fail "$wav has too few prompts"
}
# take_core LANGUAGE VOICE SECONDS
take_core() {
  take "$1" "$3" "$(voice_in "asterisk-core-sounds-$1-wav" "$2")" \
    "$(voice_in "asterisk-core-sounds-$1-g722" "$2")"
}
# take_some TAG COUNT FOLDER PATTERN SIZE: takes COUNT of the files above this size at both rates.
# The pattern names the language where an installed package may have others beside it.
take_some() {
  local tag=$1 count=$2 folder=$3 pattern=$4 size=$5 number=0 file
  while IFS= read -r file; do
    convert_to 8000 "$out/8k/$tag-$number.wav" -i "$folder/$file"
    convert_to 16000 "$out/16k/$tag-$number.wav" -i "$folder/$file"
    number=$((number + 1))
  done < <(cd "$folder" && find . -path "$pattern" -size "$size" | shuffled | sed "${count}q")
  ((number == count)) || fail "$folder has too few sounds"
}

take en 60 "$english_wav" "$english_g722"
take_core es es_MX_f_Allison 60
take_core fr fr_CA_f_June 60
take_core it it_IT_m_Carlo 60
take_core ru ru_RU_f_IvrvoiceRU 60
take itf 60 "$(voice_in asterisk-prompt-it-menardi-wav it_IT_f_Menardi)"
take_some cs 24 "$("$unpack" fillets-ng-data-cs)/usr/share/games/fillets-ng/sound" '*/cs/*.ogg' +25k
take_some fvru 16 "$("$unpack" festvox-ru)/usr/share/festival/voices/russian" '*.wav' +100k

# Every third sound gets a copy as bad lines, rooms and microphones make it: one of these in turn,
# with noise of a colour and a level.
conditions=(
  'highpass=f=300,lowpass=f=3000' 'c=pink:a=0.01'
  'highpass=f=300,lowpass=f=2700,volume=0.3' 'c=white:a=0.02'
  'volume=0.15' 'c=brown:a=0.003'
  'aecho=0.8:0.8:40|75:0.4|0.25' 'c=pink:a=0.005'
  'acompressor=threshold=0.05:ratio=8:makeup=4,highpass=f=300,lowpass=f=3400' 'c=white:a=0.03'
)
clean=("$out"/8k/*.wav "$out"/16k/*.wav)
number=0
for ((n = 2; n < ${#clean[@]}; n += 3)); do
  file=${clean[n]}
  rate=8000
  [[ $file != "$out"/16k/* ]] || rate=16000
  kind=$((number % ${#conditions[@]}))
  number=$((number + 2))
  noise="anoisesrc=r=$rate:seed=$n:${conditions[kind + 1]}"
  convert -i "$file" -filter_complex \
    "[0:a]${conditions[kind]}[a];${noise}[n];[a][n]amix=inputs=2:duration=first:normalize=0" \
    -ar "$rate" -ac 1 -c:a pcm_s16le -bitexact "${file%.wav}-worse.wav"
done
