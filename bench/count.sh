#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Counts instructions with callgrind: for each subject, those of many times less those of few, by
# unit. Start-up does not count.
#
#   bench/count.sh [SUBJECT...]       prints subject, unit and instructions a unit
#
# VOXPLAY_INSTRUCTIONS=plain|base|avx2 limits the instruction sets that may be used, VOXPLAY_COUNTED
# names another program than the benchmarks' own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [[ -z ${VOXPLAY_COUNTED:-} ]]; then
  cmake --preset bench >&2
  cmake --build build/bench --parallel "$(nproc)" --target counted >&2
fi
export program=${VOXPLAY_COUNTED:-build/bench/bin/counted}

instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 |
    awk '/Collected :/ { print $4; found = 1 } END { exit !found }'
}
count() {
  local subject=$1 unit=$2 units=$3 few=$4 many=$5 low high
  low=$(instructions "$subject" "$few")
  high=$(instructions "$subject" "$many")
  awk -v name="$subject" -v unit="$unit" -v work=$((high - low)) -v units=$(((many - few) * units)) \
    'BEGIN { printf "%-24s %-8s %12.2f\n", name, unit, work / units }'
}
export -f instructions count

"$program" | while read -r subject rest; do
  if (($#)) && [[ " $* " != *" $subject "* ]]; then continue; fi
  echo "$subject $rest"
done | xargs -P "$(nproc)" -L 1 bash -euo pipefail -c 'count "$@"' _ | sort
