#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the library for other machines and runs the portable tests there, each machine emulated. One
# compares what the library puts out with tests/portable/outputs.txt, as the tests on this machine
# do, so all of them put out the same. The other compares each way to code a frame with the plain way.
#
#   scripts/architectures.sh [ARCHITECTURE...]
#
# arm64 stands for the machines that most people have, armhf for 32 bits, s390x for bytes in
# big-endian order. On all three, "char" is unsigned.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh architectures

architectures=("$@")
((${#architectures[@]})) || architectures=(arm64 armhf s390x)
for architecture in "${architectures[@]}"; do
  cmake --preset "$architecture"
  cmake --build --preset "$architecture" --parallel "$(nproc)"
  ctest --preset "$architecture"
  scripts/check-hardening.sh $(find "build/$architecture" -name '*.a')
done
