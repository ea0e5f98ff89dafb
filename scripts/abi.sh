#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Compares the ABI of libvoxplay.so with abi/libvoxplay.so.0.abi, and fails when more than additions
# have changed. Additions are told.
#
#   scripts/abi.sh [--update] [LIBRARY]     with --update: makes the present ABI the one to compare with
#
# LIBRARY is a build with debug information. Without it, one is made.
#
# docs/RELEASING.md says when the ABI may change. Dumps are for machines with addresses of 64 bits.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh abi
kept=abi/libvoxplay.so.0.abi
build=build/abi

update=''
if [[ ${1:-} == --update ]]; then
  update=1
  shift
fi
library=${1:-$build/libvoxplay.so}
mkdir -p "$build"

if ((!$#)); then
  # Without the optimiser, because it may make one function of several that do the same, and the types
  # of all but one of them are lost. The folder of the build is no part of the ABI.
  cmake --preset library -B "$build" -DVOXPLAY_EXAMPLES=OFF -DVOXPLAY_HARDENING=OFF \
    -DVOXPLAY_WARNINGS_AS_ERRORS=OFF -DCMAKE_BUILD_TYPE=None \
    -DCMAKE_CXX_FLAGS="-O0 -g -fdebug-prefix-map=$PWD/=" >/dev/null
  cmake --build "$build" --parallel "${JOBS:-$(nproc)}" --target voxplay >/dev/null
fi

abidw --headers-dir api/include --drop-private-types --exported-interfaces-only --type-id-style hash \
  --no-architecture --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
  --out-file "$build/now.abi" "$library"
declared=$(grep -c '<function-decl .*elf-symbol-id=' "$build/now.abi")
exported=$(nm --dynamic --defined-only "$library" | grep -c ' T voxplay_')
((declared == exported)) || {
  echo "abi: $exported functions are exported, but the types of $declared are known" >&2
  exit 1
}

if [[ $update ]]; then
  mkdir -p "${kept%/*}"
  cp "$build/now.abi" "$kept"
  exit
fi
# What only adds a function changes nothing for programs that exist.
abidiff --no-added-syms --no-show-locs "$kept" "$build/now.abi" || {
  echo "abi: programs that were built against $kept may not run with this library." >&2
  echo "abi: if they do (see docs/RELEASING.md), scripts/abi.sh --update takes the change in." >&2
  exit 1
}
abidiff --no-show-locs "$kept" "$build/now.abi" ||
  echo "abi: the additions are compatible; scripts/abi.sh --update takes them in"
