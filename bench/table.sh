#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Prints the tables of docs/PERFORMANCE.md: instructions a unit, times beside others in the same run,
# speeds of edits, codecs, files and annotations, and memory. It takes about twenty minutes; other work
# on the machine makes the times less certain, and changes neither the instructions nor the memory.
#
#   bench/table.sh [PART...]      all parts, or some of: instructions others edits speeds memory
#
# Times are processor time, which other work on the machine changes least.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh bench >&2
cmake --preset bench >&2
cmake --build build/bench --parallel "$(nproc)" >&2
bin=build/bench/bin
# What is compared is measured in turns; what stands by itself, a short time.
in_turns=(--benchmark_enable_random_interleaving=true --benchmark_repetitions=9)
briefly=(--benchmark_min_time=0.05 --benchmark_repetitions=3)

parts=" ${*:-instructions others edits speeds memory} "

instructions() {
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
}

# The median of each benchmark: name, milliseconds, items a second.
medians() {
  "$@" --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
    awk -F, '/_median"/ { gsub(/"/, "", $1); sub(/_median.*/, "", $1)
      print $1, $4 * ($5 == "ns" ? 1e-6 : ($5 == "us" ? 1e-3 : 1)), $7 + 0 }'
}

# Ours and the others, in one run. The last column is the time of the fastest of the others by ours.
others() {
  echo "100 MB of PCM, medians of nine (ms)   ours  libsndfile     libsox     FFmpeg  times as fast"
  medians "$bin/peers_bench" "${in_turns[@]}" | awk '
    { who = $1; sub(/.*\//, "", who); what = $1; sub(/\/[^\/]*$/, "", what); time[what, who] = $2; all[what] }
    END {
      for (what in all) {
        best = time[what, "libsndfile"]
        if (time[what, "libsox"] < best) best = time[what, "libsox"]
        if (time[what, "FFmpeg"] < best) best = time[what, "FFmpeg"]
        printf "%-30s %11.4f %11.4f %10.4f %10.4f %14.2f\n", what, time[what, "ours"],
          time[what, "libsndfile"], time[what, "libsox"], time[what, "FFmpeg"], best / time[what, "ours"]
      }
    }' | sort
  echo
  echo "beside the system's calls alone                       ours (ms)  calls (ms)  times as fast"
  medians "$bin/wav_bench" '--benchmark_filter=LongSave|LookAt' "${in_turns[@]}" | awk '
    { time[$1] = $2 }
    function line(text, ours, calls) {
      printf "%-50s %12.4f %11.4f %14.2f\n", text, time[ours], time[calls], time[calls] / time[ours]
    }
    END {
      line("save 16 bits, one write at the same place", "LongSave", "LongSaveWrite")
      line("open and read the format, open-read-close", "LookAt_Factory", "LookAt_System")
    }'
}

edits() {
  echo "edits of a sound in memory, GB/s             16 bits  least of the other widths"
  "$bin/edit_bench" --benchmark_format=csv 2>/dev/null | awk -F, '
    /^"/ && $6 > 0 {
      gsub(/"/, "", $1); split($1, part, "/"); speed = $6 / 1e9
      if (part[2] == "16" || (part[1] == "ToMono" && part[2] == "16stereo")) mono[part[1]] = speed
      else if (!(part[1] in least) || speed < least[part[1]]) least[part[1]] = speed
    }
    END { for (name in least) printf "%-40s %10.2f %10.2f\n", name, mono[name], least[name] }' | sort
}

speeds() {
  echo "Kestrel, thousands of frames a second   encode     decode"
  medians "$bin/kestrel_bench" "${briefly[@]}" | awk '
    { split($1, part, "/"); speed[part[1], part[2]] = $3 / 1e3; rates[part[2]] }
    END { for (rate in rates) printf "%-34s %11.1f %10.1f\n", rate " bit/s", speed["EncodeFrame", rate],
        speed["DecodeFrame", rate] }' | sort -n
  echo
  echo "Heron, millions of samples a second     encode     decode"
  medians "$bin/heron_speed_bench" "${briefly[@]}" | awk '
    { split($1, part, "/"); gsub(/[^0-9]/, "", part[2]); gsub(/[^0-9]/, "", part[3])
      kind = part[2] " bits, " part[3] " Hz"; speed[part[1], kind] = $3 / 1e6; kinds[kind] }
    END { for (kind in kinds) printf "%-34s %11.2f %10.2f\n", kind, speed["EncodeSound", kind],
        speed["DecodeSound", kind] }' | sort
  echo
  echo "files of ten seconds, us                  save       load     decode"
  medians "$bin/container_bench" '--benchmark_filter=(Save|Load|Decode)/' "${briefly[@]}" | awk '
    { split($1, part, "/"); time[part[1], part[2]] = $2 * 1e3; kinds[part[2]] }
    END { for (kind in kinds) {
        printf "%-34s", kind
        split("Save Load Decode", columns, " ")
        for (i = 1; i <= 3; ++i) {
          known = (columns[i], kind) in time
          printf "%11s", (known ? sprintf("%.1f", time[columns[i], kind]) : "-")
        }
        print ""
      } }' | sort
  echo
  echo "SP headers of a file of 20 KB, us"
  medians "$bin/container_bench" --benchmark_filter=SpHeader "${briefly[@]}" | awk '
    { sub(/SpHeader_/, "", $1); sub(/\/.*/, "", $1); printf "%-34s %10.1f\n", $1, $2 * 1e3 }'
  echo
  echo "annotations, us for one of          1000      10000     100000"
  medians "$bin/annotation_bench" "${briefly[@]}" | awk '
    { split($1, part, "/"); time[part[1], part[2]] = $2 * 1e3 / part[2]; names[part[1]] }
    END { for (name in names) printf "%-29s %10.3f %10.3f %10.3f\n", name, time[name, 1000],
        time[name, 10000], time[name, 100000] }' | sort
}

memory() {
  echo "memory above the sound (MiB), 600 seconds of 16 kHz; 3 MiB of it are the program itself"
  folder=$(mktemp -d)
  trap 'rm -rf "$folder"' EXIT
  "$bin/growth" | awk '$2 == "seconds" { print $1 }' | while read -r name; do
    "$bin/growth" "$name" 600 "$folder/file" |
      awk -v name="$name" '{
        # Only putting a header before a file needs no sound.
        sound = name == "put-sp-header" ? 0 : 600 * 32000
        printf "%-40s %10.1f\n", name, ($2 * 1024 - sound) / 1048576 }'
  done
}

for part in instructions others edits speeds memory; do
  if [[ $parts != *" $part "* ]]; then continue; fi
  "$part"
  echo
done
