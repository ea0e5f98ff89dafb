#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Plays in both modes under the thread sanitizer, with and without a sound server, and tests the
# parts that threads share. Eight threads read and write with objects of their own.
#
#   scripts/races.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh ci
cmake --preset tsan ${VOXPLAY_CONFIGURE:-}
cmake --build build/tsan --parallel "$(nproc)" --target \
  PcmQueueTest RealTimePlayerTest PlaybackTest VoxplayOnServerTest CommandLineTest HeardTest \
  PublicThreadsTest

# The thread of real-time mode is never joined.
export TSAN_OPTIONS=report_thread_leaks=0
try() { build/tsan/bin/"$@" --gtest_brief=1; }
try PublicThreadsTest
try PcmQueueTest
try RealTimePlayerTest
try PlaybackTest
TSAN_OPTIONS+=:suppressions=$PWD/tests/support/tsan-suppressions.txt try VoxplayOnServerTest
# Under the sanitizer, clearing the queue takes so long that recordings of real-time mode have gaps.
# So that mode is played only where nothing is recorded.
try CommandLineTest --gtest_filter='CommandLine.NormalMode*:CommandLine.RealTimeMode*'
try HeardTest --gtest_filter='Heard.NormalMode*'
