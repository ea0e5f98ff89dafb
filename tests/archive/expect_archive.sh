# SPDX-License-Identifier: Apache-2.0
#
# What the tests of archives have in common. To be sourced with $voxtool and $folder set.
fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# make_lossy: a cut WAV, a cut FLAC and a damaged Kestrel file, of which something is left to convert
make_lossy() {
  local in=$folder/in/lossy whole=$folder/in/000/00000.wav
  mkdir "$in"
  head -c 5000 "$whole" >"$in/wav.wav"
  sox "$whole" "$folder/whole.flac" repeat 20
  head -c $(($(stat -c %s "$folder/whole.flac") / 2)) "$folder/whole.flac" >"$in/flac.flac"
  "$voxtool" convert "$whole" -o "$in/kestrel.kst" -qq
  # The second frame of its stream.
  dd if=/dev/zero of="$in/kestrel.kst" bs=40 count=1 seek=94 oflag=seek_bytes conv=notrunc status=none
}

# make_archive COUNT DAMAGED: sounds in $folder/in, planned in $folder/archive.db
make_archive() {
  python3 "$(dirname "${BASH_SOURCE[0]}")/made_sounds.py" "$folder/in" "$1" "$2" >"$folder/damaged"
  make_lossy
  count=$1
  "$voxtool" convert --manifest "$folder/archive.db" -r "$folder/in" -d "$folder/out" --to heron6 \
    --plan-only -qq
}

# The process that works on a piece; "" when there is none.
process_of() {
  local process
  for process in $(pgrep -f "convert --manifest $1 "); do
    [[ $(readlink "/proc/$process/exe") == "$voxtool" ]] && echo "$process" && return
  done
  return 0
}

# expect_archive REPORT: every good file is there once and whole, and every damaged one is listed with
# its reason.
expect_archive() {
  local status damaged good some report=$1
  damaged=$(wc -l <"$folder/damaged")
  good=$((count - damaged))
  status=$("$voxtool" manifest status --json "$folder/archive.db")
  [[ $status == *"\"done\": $((good + 3)),"* ]] || fail "not all good files are done: $status"
  [[ $status == *"\"failed\": $damaged,"* ]] || fail "not all damaged files have failed: $status"
  [[ $status == *"\"damaged\": 1,"*"\"cut\": 2,"* ]] || fail "damage is not counted: $status"
  for some in "wav.wav: the file is cut: 2,478 of 4,000 frames" "flac.flac: the file is cut: " \
    "kestrel.kst: [0-9,]+ of [0-9,]+ frames are damaged"; do
    grep -qE "^$folder/in/lossy/$some" "$report" || fail "the report has no line with $some"
  done
  sed -E "s|^$folder/in/(.*)\.[a-z]+$|\1|" <(find "$folder/in" -type f) |
    grep -vxFf <(sed -E "s|^$folder/in/(.*)\.wav$|\1|" "$folder/damaged") | sort >"$folder/expected"
  (cd "$folder/out" && find . -name '*.hrn' | sed -E 's|^\./(.*)\.hrn$|\1|' | sort) >"$folder/made"
  diff "$folder/expected" "$folder/made" >&2 || fail "other files are there than should be"
  find "$folder/out" -name '*.hrn' -print0 | xargs -0 "$voxtool" check -q || fail "a target is not whole"
  "$voxtool" manifest failed "$folder/archive.db" >"$folder/failed"
  while read -r name; do
    grep -qE "^$name: [^:]+" "$folder/failed" || fail "$name is not listed with a reason"
  done <"$folder/damaged"
  [[ $(wc -l <"$folder/failed") == "$damaged" ]] || fail "more has failed than was damaged"
  # A tenth of the folders is what a conversion without a manifest makes.
  find "$folder/out" -type f ! -name '*.hrn' -delete
  (cd "$folder/in" && find ??0 -name '*.wav') >"$folder/some"
  (cd "$folder/in" && "$voxtool" convert --files-from "$folder/some" -d "$folder/plain" --to heron6 -qq \
    2>/dev/null) || true
  for some in "$folder"/plain/*; do
    diff -r "$folder/out/${some##*/}" "$some" >&2 || fail "a target differs from a plain conversion"
  done
}
