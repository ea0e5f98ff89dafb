#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes the speech that the Heron tables were trained on, from the recorded prompts of Debian's
# packages asterisk-core-sounds-{en,es,fr,it,ru}-{wav,g722} and asterisk-prompt-it-menardi-wav. The
# 8 kHz files are copied as they are, the 16 kHz files are decoded from G.722 by ffmpeg. Install
# these packages and ffmpeg first. None of the speech is committed.
#
#   training/make_speech.sh FOLDER     (FOLDER/8k/*.wav and FOLDER/16k/*.wav)
set -euo pipefail
(($# == 1)) || { echo "usage: make_speech.sh FOLDER" >&2; exit 2; }
out=$1
sounds=/usr/share/asterisk/sounds
mkdir -p "$out/8k" "$out/16k"

milliseconds() { echo $(($(stat -c %s "$1") / 16)); }

# The English measurements of the codec use prompts of 3 to 12 s, in the order of their names, until
# they add up to 110 s. These prompts are left out here, in the other languages as well.
measured=$(
  total=0
  cd "$sounds/en_US_f_Allison"
  for file in $(LC_ALL=C ls ./*.g722); do
    name=${file%.g722}
    length=$(($(stat -c %s "$file") / 8))
    [[ -f $name.wav ]] && ((length >= 3000 && length <= 12000)) || continue
    echo "$name.wav"
    total=$((total + length))
    ((total < 110000)) || break
  done
)

# take VOICE TAG SECONDS: copies prompts of 1.5 to 15 s, in an order that is shuffled the same way
# each time, until they add up to SECONDS.
take() {
  local voice=$1 tag=$2 left=$(($3 * 1000)) file name
  while IFS= read -r file; do
    if grep -qxF "$file" <<<"$measured"; then continue; fi
    local length
    length=$(milliseconds "$sounds/$voice/$file")
    ((length >= 1500 && length <= 15000)) || continue
    name=$tag-$(tr / _ <<<"${file#./}")
    cp "$sounds/$voice/$file" "$out/8k/$name"
    if [[ -f $sounds/$voice/${file%.wav}.g722 ]]; then
      ffmpeg -nostdin -v error -y -f g722 -i "$sounds/$voice/${file%.wav}.g722" \
        -ar 16000 -ac 1 -c:a pcm_s16le -bitexact "$out/16k/$name"
    fi
    left=$((left - length))
    ((left > 0)) || break
  done < <(cd "$sounds/$voice" && find . -name '*.wav' | LC_ALL=C sort -R --random-source=/etc/services)
}

take en_US_f_Allison en 120
take es_MX_f_Allison es 60
take fr_CA_f_June fr 120
take it_IT_f_Menardi itf 120
take it_IT_m_Carlo itm 120
take ru_RU_f_IvrvoiceRU ru 120
