#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Shows how the time and the memory of the library grow with the length of sounds and with the
# number of what is attached to them. Where both grow in proportion, the last columns of all lines
# of an operation are about equal.
#
#   bench/growth.sh [LONGEST [OPERATION...]]   LONGEST is in seconds (3600 unless given, 36000 takes
#                                              an hour); the operations are those that
#                                              build/bench/bin/growth prints, or all
#
# The time is the processor's. The memory is the most that the whole program has during the operation:
# the sound, what the operation needs, and 3 MiB for the program itself. A sound of 512 MiB and more
# counts too few samples, and Kestrel encodes as many as it counts; 16000 seconds are less than that.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
growth=$root/build/bench/bin/growth
longest=${1:-3600}
shift $(($# > 0 ? 1 : 0))

cmake -S "$root" --preset bench >&2
cmake --build "$root/build/bench" --target growth --parallel "$(nproc)" >&2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

printf '%-26s %9s %-9s %12s %10s %12s\n' operation size of 'time (ms)' 'peak (MiB)' 'us for one'
"$growth" | while read -r name counts; do
  if (($#)) && ! [[ " $* " == *" $name "* ]]; then continue; fi
  sizes='100 1000 10000 100000'
  [[ $counts == seconds ]] && sizes='1 10 60 600 3600 16000 36000'
  for size in $sizes; do
    if [[ $counts == seconds ]] && ((size > longest)); then continue; fi
    # The best of three runs; one of very long sounds, where chance matters less.
    runs=(1 2 3)
    if [[ $counts == seconds ]] && ((size > 3600)); then runs=(1); fi
    for _ in "${runs[@]}"; do "$growth" "$name" "$size" "$folder/file"; done | sort -n | head -n 1 |
      awk -v name="$name" -v size="$size" -v counts="$counts" '{
        printf "%-26s %9d %-9s %12.1f %10.1f %12.3f\n", name, size, counts, $1, $2 / 1024, $1 * 1000 / size }'
  done
done
