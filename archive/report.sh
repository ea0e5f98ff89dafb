#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Takes the results of pieces into their manifest, and prints what is done, what has failed, and what
# is done but damaged or cut.
#
#   report.sh DB PIECE...
#
# Ends with 0 when all files of the manifest are done, 1 when some have failed, and 3 when some are
# left. $VOXTOOL names the program.
set -euo pipefail
if (($# < 2)); then
  sed -n '4,10s/^# \{0,1\}//p' "$0"
  [[ ${1:-} == -h || ${1:-} == --help ]] && exit 0
  exit 2
fi
voxtool=${VOXTOOL:-voxtool}
manifest=$1
shift

count() { sed -nE "s/.*\"$1\": *([0-9]+).*/\\1/p" <<<"$status"; }

# A piece that cannot be read does not keep the others from being taken.
printf '%s\0' "$@" | xargs -0 -n 500 "$voxtool" manifest merge "$manifest" >/dev/null || true
"$voxtool" manifest status "$manifest"
"$voxtool" manifest failed "$manifest"
"$voxtool" manifest damaged "$manifest"
status=$("$voxtool" manifest status --json "$manifest")
(($(count planned) + $(count claimed) == 0)) || exit 3
(($(count failed) == 0)) || exit 1
