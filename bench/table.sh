#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Prints the table of docs/PERFORMANCE.md: instructions a unit, times beside others in the same run,
# speeds of edits, and memory. It takes about ten minutes; other work on the machine makes the times
# less certain, and changes neither the instructions nor the memory.
#
#   bench/table.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh bench >&2
cmake --preset bench >&2
cmake --build build/bench --parallel "$(nproc)" >&2
bin=build/bench/bin
repeated=(--benchmark_enable_random_interleaving=true --benchmark_repetitions=9
  --benchmark_report_aggregates_only=true --benchmark_format=csv)

echo "instructions a unit (callgrind)             AVX2         base        plain"
for set in avx2 base plain; do
  VOXPLAY_INSTRUCTIONS=$set VOXPLAY_COUNTED=$bin/counted bench/count.sh | sed "s/^/$set /"
done | awk '
  { unit[$2] = $3; count[$2, $1] = $4 }
  END {
    for (subject in unit) {
      printf "%-24s %-8s %12.2f %12.2f %12.2f\n", subject, unit[subject], count[subject, "avx2"],
        count[subject, "base"], count[subject, "plain"]
    }
  }' | sort

# The median of each benchmark in milliseconds: name, time.
medians() {
  "$@" "${repeated[@]}" 2>/dev/null |
    awk -F, '/_median"/ { gsub(/"/, "", $1); sub(/_median.*/, "", $1)
      print $1, $3 * ($5 == "ns" ? 1e-6 : ($5 == "us" ? 1e-3 : 1)) }'
}

echo
echo "100 MB of PCM, medians of nine                       ours (ms)   other (ms)   times as fast"
medians "$bin/wav_bench" '--benchmark_filter=Long|LookAt' | awk '
  { time[$1] = $2 }
  function line(text, ours, other) {
    if (time[ours] && time[other]) {
      printf "%-48s %12.4f %12.4f %12.2f\n", text, time[ours], time[other], time[other] / time[ours]
    }
  }
  END {
    line("load 16 bits, libsndfile", "LongLoad_Tag/1", "LongLoadSndfile_Tag/1")
    line("load Microsoft ADPCM, libsndfile", "LongLoad_Tag/2", "LongLoadSndfile_Tag/2")
    line("load A-law, libsndfile", "LongLoad_Tag/6", "LongLoadSndfile_Tag/6")
    line("load mu-law, libsndfile", "LongLoad_Tag/7", "LongLoadSndfile_Tag/7")
    line("load IMA ADPCM, libsndfile", "LongLoad_Tag/11", "LongLoadSndfile_Tag/11")
    line("save 16 bits, one write at the same place", "LongSave", "LongSaveWrite")
    line("open and read the format, open-read-close alone", "LookAt_Factory", "LookAt_System")
  }'

echo
echo "edits of a sound in memory, GB/s             16 bits  least of the other widths"
"$bin/edit_bench" --benchmark_format=csv 2>/dev/null | awk -F, '
  /^"/ && $6 > 0 {
    gsub(/"/, "", $1); split($1, part, "/"); speed = $6 / 1e9
    if (part[2] == "16" || (part[1] == "ToMono" && part[2] == "16stereo")) mono[part[1]] = speed
    else if (!(part[1] in least) || speed < least[part[1]]) least[part[1]] = speed
  }
  END { for (name in least) printf "%-40s %10.2f %10.2f\n", name, mono[name], least[name] }' | sort

echo
echo "memory above the sound (MiB), 600 seconds of 16 kHz; 3 MiB of it are the program itself"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$bin/growth" | awk '$2 == "seconds" { print $1 }' | while read -r name; do
  "$bin/growth" "$name" 600 "$folder/file" |
    awk -v name="$name" '{
      # What loads a file holds the sound that was written, too.
      sounds = name ~ /load/ ? 2 : 1
      printf "%-40s %10.1f\n", name, ($2 * 1024 - sounds * 600 * 32000) / 1048576 }'
done
