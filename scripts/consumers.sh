#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Checks that the library can be used without the player: built by itself where no audio package can
# be found, installed, and as a subfolder of another project, with position-independent archives and
# with shared libraries. What is built by itself is a release, so its protections are checked, too.
#
#   scripts/consumers.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh library
jobs=$(nproc)

# Switches off both ways in which CMake finds the player's packages.
cmake --preset library -B build/library-alone -DVOXPLAY_PYTHON=OFF \
  -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON -DCMAKE_DISABLE_FIND_PACKAGE_cubeb=ON
cmake --build build/library-alone --parallel "$jobs"
scripts/check-hardening.sh build/library-alone/bin/convert build/library-alone/libvoxplay.so \
  $(find build/library-alone -name '*.a')

# What is installed can be moved, and names nothing of the place where it was built.
rm -rf build/installed build/moved build/consumer-installed
cmake --install build/library-alone --prefix "$PWD/build/installed" >/dev/null
if grep -rlF "$PWD" build/installed --include='*.cmake' --include='*.pc' --include='*.h*'; then
  echo "consumers: these files name the folder that they were built in" >&2
  exit 1
fi
mv build/installed build/moved
cmake -S tests/consumer/installed -B build/consumer-installed -DCMAKE_PREFIX_PATH="$PWD/build/moved"
cmake --build build/consumer-installed --parallel "$jobs"
ctest --test-dir build/consumer-installed --output-on-failure
# Every header of the classes can be included by itself.
find build/moved/include/voxplay-classes -name '*.h' -print0 |
  xargs -0 -I{} -P "$jobs" "${CXX:-c++}" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror \
    -I build/moved/include/voxplay-classes -include {} -x c++ /dev/null

build() {
  local folder=build/consumer-$1
  shift
  cmake -S tests/consumer -B "$folder" "$@"
  cmake --build "$folder" --parallel "$jobs"
  ctest --test-dir "$folder" --output-on-failure
  # The consumer's own test is the only one: the library brings none along.
  [[ $(ctest --test-dir "$folder" -N) == *"Total Tests: 1" ]] || {
    echo "consumers: the library brings its tests into a consumer's project" >&2
    exit 1
  }
}
# Consumers may join sources, too; it also saves time here.
build archives -DCMAKE_POSITION_INDEPENDENT_CODE=ON -DCMAKE_UNITY_BUILD=ON
build shared -DBUILD_SHARED_LIBS=ON -DCMAKE_CXX_VISIBILITY_PRESET=hidden -DCMAKE_UNITY_BUILD=ON
