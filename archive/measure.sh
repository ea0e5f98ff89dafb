#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Measures how fast archives are converted, and prints the tables of docs/ARCHIVES.md: files and hours
# of sound for each second of a core, at several numbers of threads, and what manifests cost.
#
#   measure.sh [SPEECH.wav]         a file of speech; without it, a made sound
#
# $VOXTOOL names the program, $TMPDIR a folder with 2 GB of room.
set -euo pipefail
if [[ ${1:-} == -h || ${1:-} == --help ]]; then
  sed -n '4,9s/^# \{0,1\}//p' "$0"
  exit 0
fi
voxtool=$(realpath "$(command -v "${VOXTOOL:-voxtool}")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cores=$(nproc)

# seconds COMMAND...: sets took, and busy, the seconds of all processors
seconds() {
  local TIMEFORMAT='%R %U %S' said
  said=$( { time "$@" >"$folder/printed" 2>&1; } 2>&1) || { cat "$folder/printed" >&2 && exit 1; }
  read -r took busy < <(awk '{ print $1, $2 + $3 }' <<<"$said")
}

# make_files FOLDER COUNT SECONDS: of one sound, which is repeated or cut
make_files() {
  mkdir -p "$folder/$1"
  python3 - "$folder/$1" "$2" "$3" "${4:-}" <<'PYTHON'
import array, math, os, struct, sys

folder, count, seconds = sys.argv[1], int(sys.argv[2]), float(sys.argv[3])
wanted = int(16000 * seconds)
if sys.argv[4]:
    with open(sys.argv[4], "rb") as file:
        speech = file.read()[44:]
else:
    speech = array.array("h", [int(6000 * math.sin(n / 9) * math.sin(n / 1500) + n * 7919 % 1500)
                               for n in range(160000)]).tobytes()
for number in range(count):
    at = number * 3200 % max(len(speech) - 3200, 1) // 2 * 2
    data = (speech[at:] + speech * (2 * wanted // len(speech) + 1))[:2 * wanted]
    head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 1, 1,
                       16000, 32000, 2, 16, b"data", len(data))
    with open(os.path.join(folder, "%06d.wav" % number), "wb") as file:
        file.write(head + data)
PYTHON
}

# row SET COUNT SECONDS TO JOBS
row() {
  rm -rf "$folder/out" "$folder/a.db"
  "$voxtool" convert --manifest "$folder/a.db" -r "$folder/$1" -d "$folder/out" --to "$4" \
    --plan-only -qq
  seconds "$voxtool" convert --manifest "$folder/a.db" -j "$5" -qq
  awk -v to="$4" -v count="$2" -v long="$3" -v jobs="$5" -v took="$took" -v busy="$busy" 'BEGIN {
    printf "| %s | %d of %g s | %d | %.1f | %.1f | %.0f | %.2f |\n", to, count, long, jobs, took, busy,
      count / busy, count * long / 3600 / busy }'
}

make_files tiny 4000 1 "${1:-}"
make_files usual 400 30 "${1:-}"
echo "| to | files | threads | seconds | seconds of the processors | files a core and second | hours of sound a core and second |"
echo "|---|---|---|---|---|---|---|"
for to in kestrel heron4 wav; do
  for ((jobs = 1; jobs <= cores; jobs *= 2)); do
    row tiny 4000 1 "$to" "$jobs"
    row usual 400 30 "$to" "$jobs"
  done
done

echo
echo "| with a manifest of a million files | seconds | of the processors |"
echo "|---|---|---|"
seq -f "rec/%.0f.wav" 1000000 | awk -F/ '{ printf "rec/%03d/%s\n", NR % 1000, $2 }' >"$folder/list"
cd "$folder"
seconds "$voxtool" convert --manifest m.db --files-from list -d out --to kestrel --plan-only -qq
echo "| plan it | $took | $busy |"
seconds "$voxtool" convert --manifest m.db --files-from list -d out --to kestrel --plan-only -qq
echo "| plan it again | $took | $busy |"
seconds "$voxtool" manifest split 200 m.db -o 'piece-%d.db'
echo "| split it into 200 pieces | $took | $busy |"
# As if all of it had been converted.
python3 - piece-*.db <<'PYTHON'
import sqlite3
import sys

for name in sys.argv[1:]:
    piece = sqlite3.connect(name)
    piece.execute("UPDATE files SET state = 2, own = 1, target_bytes = 20000, rate = 16000, frames = 160000,"
                  " damaged = 0, checksum = printf('%016x', id)")
    piece.commit()
PYTHON
seconds "$voxtool" manifest merge m.db piece-*.db
echo "| merge them | $took | $busy |"
seconds "$voxtool" manifest status m.db
echo "| show its status | $took | $busy |"
