#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the Debian packages from a copy of the tree, and checks them with lintian.
#
#   scripts/package.sh [OPTION...] [FOLDER]     FOLDER is build/package unless given
#
#   --twice         builds them a second time, in another folder, time zone and language, at
#                   another time of day, and compares: all packages must be equal
#   --install-test  tries them on a bare system: installs them, builds all examples against them
#                   with CMake and with pkg-config, gcc and clang, runs them, plays a file, removes
#                   everything, and looks for what is left
#   --arm64         builds the library's packages for arm64, and runs their tests, emulated
#   --all           all of these
#
# The bare system is made with debootstrap from the mirror that apt uses, or from $MIRROR. Needs root.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
twice='' install_test='' arm64='' folder=build/package
for argument in "$@"; do
  case $argument in
    --twice) twice=1 ;;
    --install-test) install_test=1 ;;
    --arm64) arm64=1 ;;
    --all) twice=1 install_test=1 arm64=1 ;;
    -*)
      sed -n 's/^# \{0,1\}//; 4,/^$/p' "${BASH_SOURCE[0]}" >&2
      exit 2
      ;;
    *) folder=$argument ;;
  esac
done
scripts/install-deps.sh package
jobs=${JOBS:-$(nproc)}
rm -rf "$folder"
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)

# A compiler cache would compare a build with itself, and flags of ours are not those of a package.
unset CMAKE_CXX_COMPILER_LAUNCHER CFLAGS CXXFLAGS CPPFLAGS LDFLAGS

# A folder with a copy of the tree, without what git leaves out.
copy_to() {
  mkdir -p "$1"
  if git -C "$root" rev-parse --git-dir >/dev/null 2>&1; then
    git -C "$root" ls-files -z --cached --others --exclude-standard
  else
    (cd "$root" && find . -path ./build -prune -o -type f -print0)
  fi | (cd "$root" && xargs -0 cp --parents --no-dereference -t "$1" --)
}

# build COPY LOG ARGUMENTS...: the packages come to the folder above the copy.
build() {
  local copy=$1 log=$2
  shift 2
  copy_to "$copy"
  (cd "$copy" && dpkg-buildpackage --no-sign "$@") >"$log" 2>&1 || {
    tail -n 60 "$log" >&2
    echo "package: the build fails; all of its output is in $log" >&2
    exit 1
  }
}

echo "package: builds the packages"
build "$folder/one/voxplay" "$folder/one.log" -j"$jobs"
packages=("$folder"/one/*.deb)
lintian --allow-root --fail-on error,warning "$folder"/one/*.changes

needed=$(readelf -dW "$folder"/one/voxplay/build/debian/libvoxplay.so |
  sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p')
while read -r library; do
  case $library in
    libstdc++.so.* | libgcc_s.so.* | libm.so.* | libc.so.* | ld-linux*.so.*) ;;
    *) echo "package: libvoxplay.so needs $library" >&2 && exit 1 ;;
  esac
done <<<"$needed"

if [[ $twice ]]; then
  echo "package: builds them again"
  again=$folder/another/and/longer/place
  TZ=Pacific/Kiritimati LC_ALL=C.UTF-8 DEB_BUILD_OPTIONS=nocheck \
    build "$again/voxplay" "$folder/again.log" -b -j"$jobs"
  for package in "${packages[@]}"; do
    cmp "$package" "$again/${package##*/}" || {
      echo "package: ${package##*/} differs from build to build" >&2
      exit 1
    }
  done
  echo "package: ${#packages[@]} packages are equal in both builds"
fi

if [[ $arm64 ]]; then
  echo "package: builds the library's packages for arm64"
  build "$folder/arm64/voxplay" "$folder/arm64.log" -B -d -aarm64 -Pcross,pkg.voxplay.noplayer -j"$jobs"
  grep -E 'tests passed' "$folder/arm64.log"
  [[ $(dpkg-deb --field "$folder"/arm64/libvoxplay0_*_arm64.deb Architecture) == arm64 ]]
fi

if [[ $install_test ]]; then
  echo "package: tries them on a bare system"
  scripts/package-install-test.sh "$folder/bare" "${packages[@]}"
fi
