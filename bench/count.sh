#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Counts instructions with callgrind: for each subject, those of many units less those of few, by
# unit. Start-up does not count.
#
#   bench/count.sh [SUBJECT...]       prints subject, unit and instructions a unit
#
# VOXPLAY_INSTRUCTIONS=plain|base|avx2 limits the instruction sets that may be used.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
program=${VOXPLAY_COUNTED:-build/bench/bin/counted}

instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 |
    awk '/Collected :/ { print $4; found = 1 } END { exit !found }'
}

"$program" | while read -r subject unit few many; do
  if (($#)) && [[ " $* " != *" $subject "* ]]; then continue; fi
  low=$(instructions "$subject" "$few")
  high=$(instructions "$subject" "$many")
  awk -v name="$subject" -v unit="$unit" -v work=$((high - low)) -v units=$((many - few)) \
    'BEGIN { printf "%-28s %-8s %12.2f\n", name, unit, work / units }'
done
