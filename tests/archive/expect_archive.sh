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

# The process that works on a piece of the first round; "" when there is none.
process_of() {
  local file
  for file in /proc/[0-9]*/cmdline; do
    if [[ $(tr '\0' ' ' <"$file" 2>/dev/null) == *" convert --manifest $1 "* ]]; then
      file=${file%/cmdline}
      [[ $(readlink "$file/exe") == "$(realpath "$voxtool")" ]] && echo "${file#/proc/}"
    fi
  done 2>/dev/null | head -n 1
}

# Every good file is there once and whole, and every damaged one is listed with its reason.
expect_archive() {
  local status damaged good
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
  # Decoded, they are what a conversion of the whole archive at once makes.
  "$voxtool" convert -r "$folder/in" -d "$folder/plain" --to heron6 -qq 2>/dev/null || true
  find "$folder/out" -type f ! -name '*.hrn' -delete
  diff -r "$folder/out" "$folder/plain" >&2 || fail "a target differs from a plain conversion"
}
