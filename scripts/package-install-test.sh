#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Makes a bare Debian system in a folder, installs packages there, builds and runs the examples
# against them, and removes them again. scripts/package.sh calls it.
#
#   scripts/package-install-test.sh FOLDER PACKAGE...
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bare=$1
shift
fail() {
  echo "package-install-test: $*" >&2
  exit 1
}
((EUID == 0)) || fail "only root can make a system in a folder"

# The system there has make, and not what this machine may prefer.
unset CMAKE_GENERATOR
# What a program needs to be built, and nothing else.
tools=gcc,g++,libc6-dev,clang,cmake,make,pkg-config
mirror=${MIRROR:-http://deb.debian.org/debian}
log=$bare.log
rm -rf "$bare"
debootstrap --variant=minbase --include="$tools" bookworm "$bare" "$mirror" >"$log" 2>&1 || {
  tail -n 20 "$log" >&2
  fail "no bare system can be made"
}
# A folder of ours for temporary files is not there.
inside() { LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive TMPDIR=/tmp chroot "$bare" "$@"; }
files() { (cd "$bare" && find . \( -path ./proc -o -path ./var/log -o -path ./var/cache -o -path ./var/lib/dpkg \
  -o -path ./var/lib/apt -o -path ./tmp -o -path ./root \) -prune -o -print | LC_ALL=C sort); }

mkdir "$bare/tmp/packages"
packages=()
for package in "$@"; do
  [[ $package == *-dbgsym_* ]] && continue
  cp "$package" "$bare/tmp/packages/"
  packages+=("/tmp/packages/${package##*/}")
done
library=()
for package in "${packages[@]}"; do
  [[ $package == */voxplay_* || $package == */python3-* ]] || library+=("$package")
done

files >"$bare.before"
names() { inside dpkg-query -W -f '${Package}\n' | LC_ALL=C sort; }
names >"$bare.names-before"

echo "  installs the library"
inside apt-get -qq install --no-install-recommends "${library[@]}" >>"$log" 2>&1 ||
  { tail -n 20 "$log" >&2; fail "the library's packages cannot be installed"; }
# The library brings nothing along.
others=$(names | LC_ALL=C comm -13 "$bare.names-before" - | grep -v voxplay || true)
[[ -z $others ]] || fail "the library's packages bring along: $others"

cp -r "$bare/usr/share/doc/voxplay-doc/examples" "$bare/tmp/examples"
cp "$root/tests/examples/run-examples.sh" "$root/samples/Test.kst" "$bare/tmp/"
run() {
  inside bash /tmp/run-examples.sh "$1" /tmp/Test.kst || fail "the examples of $1 do not work"
}
try() {
  local place=/tmp/$1
  shift
  "$@" >>"$log" 2>&1 || { tail -n 30 "$log" >&2; fail "the examples do not build in $place"; }
}
for compilers in "gcc g++" "clang clang++"; do
  read -r cc cxx <<<"$compilers"
  echo "  builds and runs the examples with $cc"
  try "cmake-$cc" inside env CC="$cc" CXX="$cxx" cmake -S /tmp/examples -B "/tmp/cmake-$cc"
  try "cmake-$cc" inside cmake --build "/tmp/cmake-$cc" --parallel "$(nproc)"
  run "/tmp/cmake-$cc"
  mkdir "$bare/tmp/make-$cc"
  try "make-$cc" inside make -C /tmp/examples CC="$cc" CXX="$cxx" PROGRAMS="/tmp/make-$cc" -j "$(nproc)"
  run "/tmp/make-$cc"
done
mkdir "$bare/tmp/static"
try static inside make -C /tmp/examples STATIC=1 PROGRAMS=/tmp/static -j "$(nproc)"
run /tmp/static
asked=$(inside ldd /tmp/static/read)
[[ $asked != *voxplay* ]] || fail "a program that holds the library asks for it"

echo "  installs and runs the player"
inside apt-get -qq install --no-install-recommends "${packages[@]}" >>"$log" 2>&1 ||
  { tail -n 20 "$log" >&2; fail "the player's package cannot be installed"; }
[[ $(inside VoxplaySampleCode /tmp/Test.kst 2 | tail -n 1) == Length:5 ]] || fail "the player does not know the length"

echo "  runs voxtool"
[[ $(inside voxtool info /tmp/Test.kst) == *"Length     0:05.040"* ]] || fail "voxtool does not know the length"
inside voxtool convert -q /tmp/Test.kst -o /tmp/Test.wav || fail "voxtool does not convert"
inside voxtool plot /tmp/Test.wav -o /tmp/Test.png || fail "voxtool does not draw"
[[ $(head -c 8 "$bare/tmp/Test.png" | od -An -tx1) == *"89 50 4e 47"* ]] || fail "voxtool draws no picture"
inside voxtool check -q /tmp/Test.wav || fail "what voxtool converts is not whole"

echo "  runs the tutorial for Python"
inside apt-get -qq install --no-install-recommends python3-matplotlib python3-pandas >>"$log" 2>&1 ||
  { tail -n 20 "$log" >&2; fail "what the tutorial uses cannot be installed"; }
inside apt-mark auto python3-matplotlib python3-pandas >>"$log" 2>&1
examples=/usr/share/doc/python3-voxplay/examples
table=$(inside env -C /tmp MPLBACKEND=Agg MPLCONFIGDIR=/tmp /usr/bin/python3 "$examples/tutorial.py") ||
  fail "the tutorial for Python fails"
[[ $table == *"27.2 s in 6 files, 1 of them cut"* ]] || fail "the tutorial for Python says: $table"
[[ -s $bare/tmp/python-events.png && -s $bare/tmp/python-rates.png ]] || fail "the tutorial draws nothing"

echo "  removes everything"
inside apt-get -qq purge '*voxplay*' >>"$log" 2>&1
# What came along goes, even if something that was there before would like to have it.
inside apt-get -qq autoremove --purge -o APT::AutoRemove::RecommendsImportant=false \
  -o APT::AutoRemove::SuggestsImportant=false >>"$log" 2>&1
names | LC_ALL=C diff "$bare.names-before" - || fail "packages are left"
files | LC_ALL=C diff "$bare.before" - || fail "files are left, or gone"
rm -rf "$bare"
