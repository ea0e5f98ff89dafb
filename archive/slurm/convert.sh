#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Converts what a manifest has planned with Slurm: a job array with a task for each piece of it, and
# a last job that takes the results back and reports.
#
#   convert.sh [-n PIECES] [-c CPUS] [-r ROUNDS] [-w FOLDER] [-t] DB [-- OPTION...]
#
#   -n PIECES  tasks of the array (16); a few times as many as can run at a time
#   -c CPUS    processors of each task (1)
#   -r ROUNDS  arrays at most (3): what a lost task has left is divided anew
#   -w FOLDER  where the pieces and the logs go (DB.work)
#   -t         try again what has failed before
#   OPTION     of sbatch, for all jobs: -p PARTITION, --time=4:00:00
#
# First plan, on any machine, with the paths that the nodes know:
#   voxtool convert --manifest DB -r IN -d OUT --to kestrel --plan-only
# All nodes see the sources, the targets and FOLDER. FOLDER/report.txt is written after each round; its
# first line is the exit code of report.sh: 3 while there is more to do. $VOXTOOL names the program.
set -euo pipefail

usage() {
  sed -n '4,21s/^# \{0,1\}//p' "$1"
  exit "$2"
}

# Slurm runs a copy of this script, so the jobs are told where the others are.
case ${1:-} in
  task)
    archive=$2 folder=$3
    exec "$archive/piece.sh" "$folder/piece-$SLURM_ARRAY_TASK_ID.db" -j "${SLURM_CPUS_PER_TASK:-1}"
    ;;
  last)
    archive=$2 folder=$3 manifest=$4 round=$5 rounds=$6
    shift 6
    code=0
    "$archive/report.sh" "$manifest" "$folder/round-$round"/piece-*.db >"$folder/report.new" || code=$?
    # If the next round cannot begin, this is what there is to know.
    { echo "$code" && cat "$folder/report.new"; } >"$folder/report.tmp"
    rm "$folder/report.new"
    mv "$folder/report.tmp" "$folder/report.txt"
    if ((code == 3 && round < rounds)); then
      exec "$archive/slurm/convert.sh" round "$folder" "$manifest" $((round + 1)) "$rounds" "$@"
    fi
    exit "$code"
    ;;
esac

archive=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export VOXTOOL=${VOXTOOL:-voxtool}

# submit_round FOLDER DB ROUND ROUNDS PIECES CPUS OPTION...
submit_round() {
  local folder=$1 manifest=$2 round=$3 rounds=$4 pieces=$5 cpus=$6
  local self=$archive/slurm/convert.sh in=$1/round-$3
  shift 6
  mkdir -p "$in"
  "$VOXTOOL" manifest split "$pieces" "$manifest" -f -o "$in/piece-%d.db" >"$in/pieces.txt"
  local array
  # A task of a node that is lost begins again on another one.
  array=$(sbatch --parsable --requeue --job-name=voxtool --array="1-$pieces" --cpus-per-task="$cpus" \
    --chdir="$folder" --output="$in/task-%a.log" --open-mode=append "$@" "$self" task "$archive" "$in")
  sbatch --parsable --requeue --job-name=voxtool-last --dependency="afterany:${array%%;*}" \
    --chdir="$folder" --output="$in/last.log" --open-mode=append "$@" \
    "$self" last "$archive" "$folder" "$manifest" "$round" "$rounds" "$pieces" "$cpus" "$@" >/dev/null
  echo "voxtool: round $round: job ${array%%;*}, $pieces tasks"
}

if [[ ${1:-} == round ]]; then
  shift
  submit_round "$@"
  exit
fi

pieces=16 cpus=1 rounds=3 retry='' folder=
while getopts n:c:r:w:th option; do
  case $option in
    n) pieces=$OPTARG ;;
    c) cpus=$OPTARG ;;
    r) rounds=$OPTARG ;;
    w) folder=$OPTARG ;;
    t) retry=1 ;;
    h) usage "$0" 0 ;;
    *) usage "$0" 2 >&2 ;;
  esac
done
shift $((OPTIND - 1))
(($# > 0)) || usage "$0" 2 >&2
for program in sbatch "$VOXTOOL"; do
  command -v "$program" >/dev/null || { echo "convert.sh: $program: is not installed" >&2 && exit 1; }
done
# The tasks begin in another folder.
[[ $VOXTOOL != */* ]] || VOXTOOL=$(realpath -- "$VOXTOOL")
manifest=$(realpath -- "$1")
shift
[[ ${1:-} != -- ]] || shift
folder=$(realpath -m -- "${folder:-$manifest.work}")
# All jobs are sent with this folder as theirs.
queue=$(squeue -h -o '%Z')
if grep -qxF -- "$folder" <<<"$queue"; then
  echo "convert.sh: $folder: another start is at work there" >&2
  exit 1
fi
rm -f "$folder/report.txt"
# What an earlier start has done and not brought back. Its report does not matter.
earlier=("$folder"/round-*/piece-*.db)
[[ ! -e ${earlier[0]} ]] || "$archive/report.sh" "$manifest" "${earlier[@]}" >/dev/null || true
[[ -z $retry ]] || "$VOXTOOL" convert --manifest "$manifest" --plan-only --retry-failed
submit_round "$folder" "$manifest" 1 "$rounds" "$pieces" "$cpus" "$@"
