#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Plays in both modes under the thread sanitizer, with a sound server and without, and tries the
# parts that threads share.
#
#   scripts/races.sh
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

"$root/scripts/install-deps.sh" test
cmake -S "$root" --preset tsan
cmake --build "$root/build/tsan" --parallel "$(nproc)" --target \
  PcmQueueTest RealTimePlayerTest VoxplayTest PlaybackTest OutputUnitTest AudioGraphTest \
  VoxplayOnServerTest CommandLineTest HeardTest
# Clearing the queue takes the sanitizer so long that recordings of real-time mode have gaps: it is
# played where nobody listens.
exec ctest --test-dir "$root/build/tsan" --parallel "$(nproc)" --output-on-failure -R \
  '^(PcmQueue|RealTimePlayer|Voxplay.*|PlaybackTest|OutputUnitTest|AudioGraphTest)\.|^CommandLine\.(Normal|RealTime)Mode|^Heard\.NormalMode'
