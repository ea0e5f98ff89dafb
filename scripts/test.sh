#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Installs what the tests need, builds them and runs all of them.
#
#   scripts/test.sh [PRESET [CTEST ARGUMENTS...]]     (preset dev unless given)
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${1:-dev}
shift $(($# > 0))

# The sanitizer builds use clang.
packages=test
[[ $preset == *san* || $preset == fuzz ]] && packages=ci
"$root/scripts/install-deps.sh" "$packages"
# Words of VOXPLAY_CONFIGURE are further arguments for CMake.
cmake -S "$root" --preset "$preset" ${VOXPLAY_CONFIGURE:-}
cmake --build "$root/build/$preset" --parallel "$(nproc)"
# One more than there are processors, because many tests only wait for a sound to end.
exec ctest --test-dir "$root/build/$preset" --parallel $(($(nproc) + 1)) --output-on-failure "$@"
