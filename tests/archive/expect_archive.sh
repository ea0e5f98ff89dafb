# SPDX-License-Identifier: Apache-2.0
#
# What the tests of archives have in common. To be sourced with $voxtool and $folder set.
fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# make_archive COUNT DAMAGED: sounds in $folder/in, planned in $folder/archive.db
make_archive() {
  python3 "$(dirname "${BASH_SOURCE[0]}")/made_sounds.py" "$folder/in" "$1" "$2" >"$folder/damaged"
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

# Every good file is there once and whole, and every damaged one is listed with its reason.
expect_archive() {
  local status damaged good some
  damaged=$(wc -l <"$folder/damaged")
  good=$((count - damaged))
  status=$("$voxtool" manifest status --json "$folder/archive.db")
  [[ $status == *"\"done\": $good,"* ]] || fail "not all good files are done: $status"
  [[ $status == *"\"failed\": $damaged,"* ]] || fail "not all damaged files have failed: $status"
  sed -E "s|^$folder/in/(.*)\.wav$|\1|" <(find "$folder/in" -name '*.wav') |
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
