#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the fuzzers, makes their seeds and runs every fuzzer (or only those named) for a while, as
# many at a time as there are processors. A fuzzer stops at its first crash, leak, hang or excessive
# use of memory. The script fails then, and the input is in build/fuzz/findings.
#
#   scripts/fuzz.sh [SECONDS [FUZZER...]]     (20 seconds each unless given)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:-20}
shift $(($# > 0))
export seconds

cmake --preset fuzz >/dev/null
cmake --build build/fuzz --parallel "$(nproc)" >/dev/null
build/fuzz/bin/make_seeds build/fuzz/seeds
mkdir -p build/fuzz/findings build/fuzz/logs

fuzz() {
  local name=$1 log=build/fuzz/logs/$1.log
  mkdir -p "build/fuzz/corpus/$name" "build/fuzz/seeds/$name"
  if "build/fuzz/bin/$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$name-" \
    "build/fuzz/corpus/$name" "build/fuzz/seeds/$name" >"$log" 2>&1; then
    awk -v name="$name" '/ cov: /{for(i=1;i<NF;i++)if($i=="cov:")cov=$(i+1)}
      /number_of_executed_units/{runs=$2} /average_exec_per_sec/{rate=$2}
      END{printf "%-24s %10d runs %8d/s %6d edges\n", name, runs, rate, cov}' "$log"
  else
    tail -n 60 "$log"
    echo "fuzz: $name failed"
    return 1
  fi
}
export -f fuzz

if (($#)); then printf '%s\0' "$@"; else tr '\n' '\0' <build/fuzz/fuzzers.txt; fi |
  xargs -0 -n 1 -P "$(nproc)" bash -euo pipefail -c 'fuzz "$1"' _
