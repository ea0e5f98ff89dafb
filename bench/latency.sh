#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Counts gaps in what the player plays, in both modes, on PulseAudio and on PipeWire, beside programs
# that keep the processors busy. It is for the choice of kLatencyMs, how far ahead the player is, in
# platform/toolbox/output/CubebStream.cpp. For a machine that does nothing else, as root.
#
#   bench/latency.sh [PLAYS [LOAD [LATENCY...]]]     10 plays of 5 s beside 13 busy programs, at 100,
#                                                    200, 300 and 400 ms, unless given
#
# Prints a table: of the recordings of each kind, those that are exact, those with gaps, and those in
# which something is missing or different. Ten plays take about five minutes for each latency.
set -euo pipefail
if [[ ${1:-} == -h || ${1:-} == --help ]]; then
  sed -n '4,12s/^# \{0,1\}//p' "$0"
  exit 0
fi
cd "$(dirname "${BASH_SOURCE[0]}")/.."
plays=${1:-10} load=${2:-13}
shift $(($# < 2 ? $# : 2))
latencies=("$@")
((${#latencies[@]})) || latencies=(100 200 300 400)

# The player is built from a copy of the tree, because the latency is a constant there.
top=$PWD/build/latency
source=$top/tree/platform/toolbox/output/CubebStream.cpp
scripts/install-deps.sh test >&2
rm -rf "$top/tree"
mkdir -p "$top/tree"
git ls-files -z | tar --null -T - -cf - | tar -C "$top/tree" -xf -
cmake -S "$top/tree" -B "$top/build" -DCMAKE_BUILD_TYPE=Release -DVOXPLAY_TESTS=ON >/dev/null
for latency in "${latencies[@]}"; do
  sed -i "s/\(kLatencyMs = \)[0-9]*;/\1$latency;/" "$source"
  grep -q "kLatencyMs = $latency;" "$source"
  cmake --build "$top/build" --parallel "$(nproc)" --target VoxplaySampleCode HeardGaps >/dev/null
  cp "$top/build/bin/VoxplaySampleCode" "$top/player-$latency"
done

busy=()
end_load() {
  ((${#busy[@]})) || return 0
  kill "${busy[@]}"
  wait "${busy[@]}" 2>/dev/null || true
  busy=()
}
trap end_load EXIT
for ((i = 0; i < load; ++i)); do
  while :; do :; done &
  busy+=($!)
done

echo "| latency, $load busy programs | server | mode | exact | gaps | wrong |"
echo "|---|---|---|---|---|---|"
for latency in "${latencies[@]}"; do
  (cd "$top" && build/bin/HeardGaps "player-$latency" "$plays") | sed "s/^/| $latency ms | /"
done
