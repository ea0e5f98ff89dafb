#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the fuzzers, makes their seeds and runs every fuzzer (or only those named) for a while, as
# many at a time as there are processors. A fuzzer stops at its first crash, leak, hang or excessive
# use of memory. The script fails then, and the input is in build/fuzz/findings.
#
#   scripts/fuzz.sh [SECONDS [FUZZER...]]     (20 seconds each unless given)
#
# Each run begins with past findings in fuzz/findings and the corpus in fuzz/corpora, and keeps what it
# finds in build/fuzz/corpus.
#
#   scripts/fuzz.sh --minimise [FUZZER...]    puts the smallest set of inputs that reaches the same
#                                             code into fuzz/corpora. The inputs come from
#                                             fuzz/corpora, the seeds, build/fuzz/corpus and, if
#                                             $FUZZ_FOLDER is set, the campaign in that folder
#   scripts/fuzz.sh --coverage [AIM...]       shows how many lines of the files that fuzzers aim at (the
#                                             lines of fuzz/aims.txt) their corpora reach. Fails
#                                             where too few of all files in a line are reached
#   scripts/fuzz.sh --campaign FOLDER [SECONDS [FUZZER...]]
#                                             runs the fuzzers in turn, one at a time, until each has
#                                             made the runs that fuzz/CMakeLists.txt wants. FOLDER
#                                             gets all files and the programs, so the tree may change.
#                                             The file FOLDER/stop ends it after the present turn
#   scripts/fuzz.sh --totals FOLDER           shows what a campaign has done since its last finding
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# Inputs are small, so little freed memory need be kept to find what uses it. That saves an eighth.
export ASAN_OPTIONS=quarantine_size_mb=8:malloc_context_size=8${ASAN_OPTIONS:+:$ASAN_OPTIONS}
# The weights of libFuzzer's usual schedule take up to a third of the time of a fast fuzzer.
export options="-timeout=10 -rss_limit_mb=2048 -malloc_limit_mb=160 -entropic=0 -print_final_stats=1"
# Corpora reach at least this percentage of the lines that they aim at.
least_reached=90

build() {
  cmake --preset fuzz ${VOXPLAY_CONFIGURE:-} >/dev/null
  cmake --build build/fuzz --parallel "$(nproc)" --target make_seeds corpus_pack "$@" >/dev/null
  rm -rf build/fuzz/seeds
  build/fuzz/bin/make_seeds build/fuzz/seeds
}

# Prints the fuzzers that are named, or all.
fuzzers() {
  if (($#)); then printf '%s\n' "$@"; else cut -d ' ' -f 1 build/fuzz/fuzzers.txt; fi
}

# Splits the pack of a fuzzer into a folder.
unpack() {
  mkdir -p "$2"
  if [[ -e fuzz/corpora/$1.pack ]]; then build/fuzz/bin/corpus_pack split "fuzz/corpora/$1.pack" "$2"; fi
}

# Prints the number of runs, the runs per second and the edges that a log of libFuzzer states.
figures() {
  awk '/ cov: / { for (i = 1; i < NF; i++) if ($i == "cov:") cov = $(i + 1) }
    /number_of_executed_units/ { runs = $2 } /average_exec_per_sec/ { rate = $2 }
    END { print runs + 0, rate + 0, cov + 0 }' "$1"
}

run_for_a_while() {
  local name=$1 log=build/fuzz/logs/$1.log findings=fuzz/findings/$1 max_len
  max_len=$(awk -v name="$name" '$1 == name { print $2 }' build/fuzz/fuzzers.txt)
  mkdir -p "build/fuzz/corpus/$name" "build/fuzz/seeds/$name"
  unpack "$name" "build/fuzz/packed/$name"
  # shellcheck disable=SC2086  # the options are many words
  local run=("build/fuzz/bin/$name" $options -artifact_prefix="build/fuzz/findings/$name-")
  if { [[ ! -d $findings ]] || "${run[@]}" "$findings"/* >"$log" 2>&1; } &&
    "${run[@]}" -max_total_time="$seconds" -max_len="$max_len" \
      "build/fuzz/corpus/$name" "build/fuzz/packed/$name" "build/fuzz/seeds/$name" >"$log" 2>&1; then
    figures "$log" | awk -v name="$name" '{ printf "%-24s %10d runs %8d/s %6d edges\n", name, $1, $2, $3 }'
  else
    tail -n 60 "$log"
    echo "fuzz: $name failed"
    return 1
  fi
}
export -f figures run_for_a_while unpack

minimise() {
  build all
  local name merged max_len more
  for name in $(fuzzers "$@"); do
    merged=build/fuzz/merged/$name
    rm -rf "$merged" "build/fuzz/packed/$name"
    mkdir -p "$merged" "build/fuzz/corpus/$name" "build/fuzz/seeds/$name"
    unpack "$name" "build/fuzz/packed/$name"
    more=("build/fuzz/packed/$name" "build/fuzz/seeds/$name" "build/fuzz/corpus/$name")
    if [[ -n ${FUZZ_FOLDER:-} ]]; then more+=("$FUZZ_FOLDER/corpus/$name"); fi
    max_len=$(awk -v name="$name" '$1 == name { print $2 }' build/fuzz/fuzzers.txt)
    # Values that were compared, libFuzzer's finest measure, would keep several times as many inputs
    # that differ in nothing else.
    "build/fuzz/bin/$name" -merge=1 -use_cmp=0 -max_len="$max_len" -rss_limit_mb=2048 \
      "$merged" "${more[@]}" >"build/fuzz/logs/$name.merge.log" 2>&1
    mkdir -p fuzz/corpora
    build/fuzz/bin/corpus_pack join "$merged" "fuzz/corpora/$name.pack"
    printf '%-24s %6d inputs %8d bytes\n' "$name" "$(find "$merged" -type f | wc -l)" \
      "$(stat -c %s "fuzz/corpora/$name.pack")"
  done
}

# The lines of one file that the counters say were reached.
reached() {
  find build/coverage -name "${1##*/}.gcda" -exec gcov -n {} + 2>/dev/null |
    awk -v file="/$1'" '/^File / { here = index($0, file) > 0; next }
      here && /^Lines executed/ { sub("Lines executed:", ""); print; found = 1; exit }
      END { if (!found) print "nothing" }'
}

# Adds up what was reached of the files in a line of fuzz/aims.txt, as coverage shows them. Fails when
# that is too little, or when a file has no counters.
enough_reached() {
  awk -v names="$1" -v least="$least_reached" '
    $3 == "nothing" { missing = 1; next }
    { lines += $5; hit += $5 * $3 / 100 }
    END {
      percent = lines ? 100 * hit / lines : 0
      if (NR > 1) printf "%-34s %-38s %.2f%% of %d\n", names, "all of these", percent, lines
      exit missing || percent < least
    }'
}

# What one line of fuzz/aims.txt reaches must not count for the next, so the counters are removed.
coverage() {
  local names name files file shown low=()
  cmake --preset coverage >/dev/null
  cmake --build build/coverage --parallel "$(nproc)" --target fuzz_replay >/dev/null
  while read -r names files; do
    [[ -n $names && $names != "#" ]] || continue
    (($#)) && [[ " $* " != *" $names "* ]] && continue
    find build/coverage -name '*.gcda' -delete
    for name in ${names//+/ }; do
      build/coverage/bin/fuzz_replay "$name" "fuzz/corpora/$name.pack" "fuzz/findings/$name" >/dev/null
    done
    shown=$(for file in $files; do printf '%-34s %-38s %s\n' "$names" "$file" "$(reached "$file")"; done)
    printf '%s\n' "$shown"
    enough_reached "$names" <<<"$shown" || low+=("$names")
  done <fuzz/aims.txt
  ((${#low[@]})) || return 0
  echo "fuzz: less than $least_reached % is reached of what these aim at: ${low[*]}" >&2
  return 1
}

# A line of the totals: name, runs, edges, seconds of running, seconds since the last new edge.
totals() {
  printf '%-22s %12s %12s %7s %8s %10s %s\n' fuzzer runs wanted /s edges 'edge age' findings
  local name max_len wanted
  while read -r name max_len wanted; do
    awk -v name="$name" -v wanted="$wanted" -v found="$(find "$1/findings" -name "$name-*" | wc -l)" '
      $1 == name { runs = $2; edges = $3; seconds = $4; age = $5 }
      END { printf "%-22s %12d %12d %7d %8d %9ds %d\n", name, runs, wanted * 1000,
              (seconds > 0 ? runs / seconds : 0), edges, age, found }' "$1/totals.txt"
  done <"$1/fuzzers.txt"
}

# One turn of one fuzzer. After a finding the fuzzer counts from nothing, and rests until the
# finding is removed.
turn() {
  local folder=$1 seconds=$2 name=$3 max_len=$4 since=$SECONDS runs edges took
  local log=$folder/logs/$name.log ok=1
  mkdir -p "$folder/corpus/$name"
  # A campaign may run at the lowest priority, where ten seconds can pass without any work.
  # shellcheck disable=SC2086
  "$folder/bin/$name" $options -timeout=100 -max_total_time="$seconds" -max_len="$max_len" \
    -artifact_prefix="$folder/findings/$name-" "$folder/corpus/$name" >"$log" 2>&1 || ok=0
  took=$((SECONDS - since))
  read -r runs _ edges < <(figures "$log")
  if ((!ok)); then cp "$log" "$folder/findings/$name.log"; fi
  awk -v name="$name" -v runs="$runs" -v edges="$edges" -v took="$took" -v ok="$ok" '
    $1 != name { print; next }
    { old = $0; split(old, was) }
    END {
      fresh = edges > was[3]
      print name, ok ? was[2] + runs : 0, fresh ? edges : was[3] + 0, was[4] * ok + took, fresh ? 0 : was[5] + took
    }' "$folder/totals.txt" >"$folder/totals.new"
  mv "$folder/totals.new" "$folder/totals.txt"
}

campaign() {
  local folder seconds=${2:-120} name max_len wanted runs left=1
  folder=$(realpath -m "$1")
  shift $(($# > 1 ? 2 : 1))
  build all
  mkdir -p "$folder"/{bin,logs,findings,corpus}
  touch "$folder/totals.txt"
  grep -E "^($(fuzzers "$@" | paste -sd '|')) " build/fuzz/fuzzers.txt >"$folder/fuzzers.txt"
  while read -r name max_len wanted; do
    cp "build/fuzz/bin/$name" "$folder/bin/"
    mkdir -p "$folder/corpus/$name" "build/fuzz/seeds/$name"
    unpack "$name" "$folder/corpus/$name"
    find "build/fuzz/seeds/$name" -type f -exec cp -t "$folder/corpus/$name" {} +
  done <"$folder/fuzzers.txt"
  cd "$folder"
  while ((left)) && [[ ! -e $folder/stop ]]; do
    left=0
    while read -r name max_len wanted <&3; do
      [[ ! -e $folder/stop ]] || break
      [[ -z $(find "$folder/findings" -name "$name-*") ]] || continue
      runs=$(awk -v name="$name" '$1 == name { print $2 }' "$folder/totals.txt")
      ((${runs:-0} < wanted * 1000)) || continue
      left=1
      turn "$folder" "$seconds" "$name" "$max_len"
    done 3<"$folder/fuzzers.txt"
  done
}

case ${1:-} in
  --minimise) shift && mkdir -p build/fuzz/logs && minimise "$@" ;;
  --coverage) shift && coverage "$@" ;;
  --campaign) shift && campaign "$@" ;;
  --totals) totals "$2" ;;
  *)
    export seconds=${1:-20}
    shift $(($# > 0))
    build all
    mkdir -p build/fuzz/findings build/fuzz/logs
    fuzzers "$@" | tr '\n' '\0' | xargs -0 -n 1 -P "$(nproc)" bash -euo pipefail -c 'run_for_a_while "$1"' _
    ;;
esac
