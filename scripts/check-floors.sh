#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Checks the table of floors in docs/ARCHITECTURE.md against the code. It fails when
#   - a folder with sources is not in the table, or the table names a folder without any,
#   - a file includes one from a higher floor, or from another room of its own floor,
#   - the platform includes something of the library,
#   - an include between quotes names no file of ours, could mean several, or is not written plainly.
#
#   scripts/check-floors.sh            checks
#   scripts/check-floors.sh --rooms    prints the rooms, one a line, and checks nothing
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
table=docs/ARCHITECTURE.md
library=Lib_Common/Src/LibProject  # the table leaves this out
failed=0
fail() {
  echo "check-floors: $*" >&2
  failed=1
}

# The rows look like this: | 7 | `player/`, `platform/` | what lives there |
declare -A floor
while IFS='|' read -r _ number names _; do
  for name in $names; do
    name=${name//[\`,]/}
    name=${name%/}
    [[ -d $library/$name ]] && name=$library/$name
    floor[$name]=${number// /}
  done
done < <(grep -E '^\| *[0-9]+ *\| *`' "$table")
if [[ ${1:-} == --rooms ]]; then
  printf '%s\n' "${!floor[@]}" | LC_ALL=C sort
  exit
fi
((${#floor[@]})) || fail "$table has no table of floors"

# Tests may include what they like; what they share has a floor.
mapfile -t files < <(scripts/sources.sh | tr '\0' '\n' | sed 's|^\./||' |
  grep -vE '^tests/' || true)
mapfile -t -O "${#files[@]}" files < <(find tests/support -name '*.cpp' -o -name '*.h')
declare -A peopled
for file in "${files[@]}"; do peopled[${file%/*}]=1; done
for room in "${!peopled[@]}"; do
  [[ -n ${floor[$room]:-} ]] || fail "$room/ is not in the table of floors in $table"
done
for room in "${!floor[@]}"; do
  [[ -n ${peopled[$room]:-} ]] || fail "$table lists $room/, where no source stands"
done

# The folders in which an include is looked up, after the folder of the file itself and the top
# folder that it is in.
roots=(api api/include common "$library/WaveFileLib" "$library/FileUtil" platform platform/toolbox player fuzz tests/support)

# Sets found to the files that an include of the file could mean.
resolve() {
  local file=$1 name=$2 root
  found=()
  for root in "${file%/*}" "${file%%/*}"; do
    [[ -f $root/$name ]] && found=("$root/$name") && return
  done
  for root in "${roots[@]}"; do
    [[ -f $root/$name ]] && found+=("$root/$name")
  done
  return 0
}

while IFS=: read -r file line include; do
  if [[ ! $include =~ ^'#include '[\"\<]([^\">]+)[\"\>] || ${BASH_REMATCH[1]} == *..* ]]; then
    fail "$file:$line: this include is not written plainly"
    continue
  fi
  name=${BASH_REMATCH[1]}
  resolve "$file" "$name"
  if ((${#found[@]} == 0)); then
    [[ $include != *\"* ]] || fail "$file:$line: \"$name\" is no file of ours"
    continue
  fi
  ((${#found[@]} == 1)) || fail "$file:$line: \"$name\" could be ${found[*]}"
  from=${file%/*}
  to=${found[0]%/*}
  [[ $from != "$to" ]] || continue
  if [[ -z ${floor[$to]:-} ]] || ((floor[$to] >= ${floor[$from]:-0})); then
    fail "$file:$line: an include goes up: $from/ (floor ${floor[$from]:-?}) to $to/ (floor ${floor[$to]:-?})"
  fi
  [[ $from != platform* || $to != "$library"* ]] || fail "$file:$line: the platform knows the library"
done < <(grep -nHE '#[[:space:]]*include' "${files[@]}" | grep -vE '^[^:]*:[0-9]+:[[:space:]]*//' || true)
exit "$failed"
