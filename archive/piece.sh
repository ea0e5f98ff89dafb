#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Works on one piece of a manifest until nothing of it is left, and starts again when the work dies.
#
#   piece.sh PIECE [OPTION...]      options of "voxtool convert", such as -j 4
#
# Ends with 0 when every file is done or has failed. $VOXTOOL names the program.
set -euo pipefail
if (($# == 0)) || [[ $1 == -* ]]; then
  sed -n '4,8s/^# \{0,1\}//p' "$0"
  [[ ${1:-} == -h || ${1:-} == --help ]] && exit 0
  exit 2
fi
voxtool=${VOXTOOL:-voxtool}
piece=$1
shift

left() {
  "$voxtool" manifest status --json "$piece" |
    sed -nE 's/.*"(planned|claimed)": *([0-9]+).*/\2/p' | { read -r a && read -r b && echo $((a + b)); }
}

# Nobody else works on a piece, so what is claimed in it was claimed by a machine that is gone.
for try in 1 2 3 4 5; do
  ((try == 1)) || sleep 1
  code=0
  "$voxtool" convert --manifest "$piece" --reclaim -q "$@" || code=$?
  # What cannot be meant does not get better, and who interrupts it means it.
  ((code == 2 || code == 130)) && exit "$code"
  [[ $(left) == 0 ]] && exit 0
done
echo "piece.sh: $piece: is not done: given up after $try tries" >&2
exit 1
