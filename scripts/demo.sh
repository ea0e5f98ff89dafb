#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Installs what is missing, builds the player and plays a file:
#
#   scripts/demo.sh [FILE [PLAYTYPE]]     (samples/Test.kst in play type 0 unless given)
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build/release
player=$build/bin/VoxplaySampleCode

"$root/scripts/install-deps.sh" player

log=$(mktemp)
trap 'rm -f "$log"' EXIT
quietly() {
  "$@" >"$log" 2>&1 && return
  cat "$log" >&2
  return 1
}
[[ -x $player ]] || echo "Building the player, once ..." >&2
quietly cmake -S "$root" --preset release -DVOXPLAY_TESTS=OFF
quietly cmake --build "$build" --target VoxplaySampleCode --parallel "$(nproc)"

"$player" "${1:-$root/samples/Test.kst}" "${2:-0}"
