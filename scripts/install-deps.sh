#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Installs the Debian packages that building, testing or checking needs. Does nothing and prints
# nothing when all of them are installed. Several kinds may be named.
#
#   scripts/install-deps.sh library  what builds the library and its examples; no audio packages
#   scripts/install-deps.sh player   what builds and runs the player (the default)
#   scripts/install-deps.sh tool     the same and what builds voxtool (-DVOXPLAY_TOOL=ON)
#   scripts/install-deps.sh test     the same and what the tests need
#   scripts/install-deps.sh ci       the same and the checkers, fuzzers and benchmarks
#   scripts/install-deps.sh budgets  what counts the instructions of the library
#   scripts/install-deps.sh bench    what builds the benchmarks and what they compare with
#   scripts/install-deps.sh training what trains the Heron tables
#   scripts/install-deps.sh architectures what builds and runs the library for other machines
#   scripts/install-deps.sh docs     what builds the reference
#   scripts/install-deps.sh abi      what compares the ABI of the library
#   scripts/install-deps.sh python   what builds and tests the module for Python
#   scripts/install-deps.sh package  what builds, checks and tries the Debian packages
#   scripts/install-deps.sh coverage what the tests need and the coverage reporter
set -euo pipefail

library=(g++ cmake make)
# cubeb finds the sound service's client library at run time, so no package depends on it.
player=("${library[@]}" pkg-config libcubeb-dev libpulse0 libsndfile1-dev libmpg123-dev libsoxr-dev)
# What voxtool needs beside what the player needs.
tool=(libcli11-dev nlohmann-json3-dev libcairo2-dev libpango1.0-dev libkissfft-dev
  libsqlite3-dev fonts-dejavu-core)
tests=("${player[@]}" "${tool[@]}" libgtest-dev libgmock-dev pulseaudio pulseaudio-utils pipewire
  pipewire-pulse wireplumber sox ffmpeg)
# What the tests of voxtool use.
tests+=(tmux zsh fish man-db mandoc python3-minimal desktop-file-utils appstream libxml2-utils
  shared-mime-info libglib2.0-bin file fonts-droid-fallback slurm-wlm munge parallel procps)
# What the benchmarks measure beside the library. Only the program peers_bench links libsox and FFmpeg.
peers=(libsndfile1-dev libsox-dev libavformat-dev libavcodec-dev libavutil-dev)
ci=(git ninja-build clang clang-tidy clang-format libclang-rt-14-dev libbenchmark-dev "${peers[@]}")
# The cross compilers bring their C and C++ libraries; static programs need nothing else to run.
architectures=(g++-aarch64-linux-gnu g++-arm-linux-gnueabihf g++-s390x-linux-gnu qemu-user-static)

abi=("${library[@]}" abigail-tools)
# The packages for arm64 are built with the cross compiler, and name the packages of the libraries
# that they need, which must therefore be here.
package=("${player[@]}" "${tool[@]}" python3-dev pybind11-dev dh-python ninja-build debhelper dpkg-dev fakeroot lintian doxygen debootstrap
  g++-aarch64-linux-gnu qemu-user-static libc6:arm64 libstdc++6:arm64)

# numpy and all below it are for the tests and the tutorial.
python=("${library[@]}" python3-dev pybind11-dev python3-numpy python3-pytest python3-soundfile python3-matplotlib
  python3-pandas mypy)

(($#)) || set -- player
wanted=()
for kind in "$@"; do
  case $kind in
    library) wanted+=("${library[@]}") ;;
    player) wanted+=("${player[@]}") ;;
    tool) wanted+=("${player[@]}" "${tool[@]}") ;;
    test) wanted+=("${tests[@]}") ;;
    ci) wanted+=("${tests[@]}" "${ci[@]}") ;;
    budgets) wanted+=("${library[@]}" valgrind) ;;
    bench) wanted+=("${library[@]}" libbenchmark-dev pkg-config "${peers[@]}" ffmpeg wavpack valgrind) ;;
    training) wanted+=("${library[@]}" libbenchmark-dev clang-format) ;;
    coverage) wanted+=("${tests[@]}" gcovr) ;;
    architectures) wanted+=("${library[@]}" "${architectures[@]}") ;;
    docs) wanted+=(doxygen) ;;
    abi) wanted+=("${abi[@]}") ;;
    python) wanted+=("${python[@]}") ;;
    package) wanted+=("${package[@]}") ;;
    *)
      echo "usage: ${0##*/} KIND..., as its first lines say" >&2
      exit 2
      ;;
  esac
done

if ! command -v apt-get >/dev/null; then
  echo "${0##*/}: no apt-get here; these Debian packages are needed: ${wanted[*]}" >&2
  exit 0
fi

missing=()
for package in "${wanted[@]}"; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $state == installed* ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "${0##*/}: needs root or sudo to install: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)

echo "Installing: ${missing[*]}" >&2
if [[ ${missing[*]} == *:arm64* ]]; then "${as_root[@]}" dpkg --add-architecture arm64; fi
# A machine with a stale index and no network may still have the packages in its cache.
"${as_root[@]}" "${apt[@]}" -q update >/dev/null || echo "${0##*/}: could not refresh the index" >&2
"${as_root[@]}" "${apt[@]}" install -y --no-install-recommends "${missing[@]}" >/dev/null </dev/null
