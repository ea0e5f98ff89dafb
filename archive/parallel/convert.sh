#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Converts what a manifest has planned with GNU parallel, on this machine and on others over ssh.
#
#   convert.sh [-S HOSTS] [-n PIECES] [-c CPUS] [-r ROUNDS] [-w FOLDER] [-t] DB
#
#   -S HOSTS   as parallel takes them: 4/one,4/two,: for four tasks at a time on the hosts one and two,
#              and as many as there are processors on this one (:)
#   -n PIECES  to divide the work into (16); a few times as many as there are tasks at a time
#   -c CPUS    processors of each task (1)
#   -r ROUNDS  at most (3): what a lost host has left is divided anew
#   -w FOLDER  where the pieces and the logs go (DB.work)
#   -t         try again what has failed before
#
# First plan, with the paths that all hosts know:
#   voxtool convert --manifest DB -r IN -d OUT --to kestrel --plan-only
# All hosts see the sources, the targets, FOLDER and this script. Ends as report.sh does, whose report
# it prints. $VOXTOOL names the program.
set -euo pipefail

usage() {
  sed -n '4,20s/^# \{0,1\}//p' "$0"
  exit "$1"
}

tell_failure() {
  echo "convert.sh: some tasks have failed: $in/tasks.log ends with" >&2
  tail -n 5 "$in/tasks.log" >&2
}

archive=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
hosts=: pieces=16 cpus=1 rounds=3 retry='' folder=
while getopts S:n:c:r:w:th option; do
  case $option in
    S) hosts=$OPTARG ;;
    n) pieces=$OPTARG ;;
    c) cpus=$OPTARG ;;
    r) rounds=$OPTARG ;;
    w) folder=$OPTARG ;;
    t) retry=1 ;;
    h) usage 0 ;;
    *) usage 2 >&2 ;;
  esac
done
shift $((OPTIND - 1))
(($# == 1)) || usage 2 >&2
export VOXTOOL=${VOXTOOL:-voxtool}
for program in parallel "$VOXTOOL"; do
  command -v "$program" >/dev/null || { echo "convert.sh: $program: is not installed" >&2 && exit 1; }
done
# The tasks begin in another folder.
[[ $VOXTOOL != */* ]] || VOXTOOL=$(realpath -- "$VOXTOOL")
manifest=$(realpath -- "$1")
folder=$(realpath -m -- "${folder:-$manifest.work}")
mkdir -p -- "$folder"
# Tasks on this machine hold the lock, too: those of a start that was killed may still be at work.
exec 9>"$folder/lock"
flock -w 5 9 || { echo "convert.sh: $folder: another start is at work there" >&2 && exit 1; }

# What an earlier start has done and not brought back. Its report does not matter.
earlier=("$folder"/round-*/piece-*.db)
[[ ! -e ${earlier[0]} ]] || "$archive/report.sh" "$manifest" "${earlier[@]}" >/dev/null || true
[[ -z $retry ]] || "$VOXTOOL" convert --manifest "$manifest" --plan-only --retry-failed

for ((round = 1; round <= rounds; ++round)); do
  in=$folder/round-$round
  mkdir -p "$in"
  "$VOXTOOL" manifest split "$pieces" "$manifest" -f -o "$in/piece-%d.db" >"$in/pieces.txt"
  # A task that fails is tried again, on another host if there is one. The host's shell reads the
  # command.
  seq -f "$in/piece-%.0f.db" "$pieces" |
    parallel --will-cite --sshlogin "$hosts" --env VOXTOOL --retries 3 --joblog "$in/joblog" \
      "$(printf %q "$archive/piece.sh")" {} -j "$cpus" >"$in/tasks.log" 2>&1 || tell_failure
  code=0
  "$archive/report.sh" "$manifest" "$in"/piece-*.db >"$folder/report.txt" || code=$?
  ((code == 3)) || break
done
cat "$folder/report.txt"
exit "$code"
