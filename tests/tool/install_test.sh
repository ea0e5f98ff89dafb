#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# What is installed works where it is, and after it has been moved: the program finds its library.
#
#   install_test.sh BUILD SOUND
set -euo pipefail
build=$1 sound=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  echo "install_test: $*" >&2
  exit 1
}

for component in runtime player; do
  cmake --install "$build" --component $component --prefix "$folder/first" >/dev/null
done

# works PREFIX: the program runs with the library beside it
works() {
  local voxtool=$1/bin/voxtool library
  library=$(ldd "$voxtool" | sed -n 's/.*libvoxplay\.so[^ ]* => \(.*\) (0x.*/\1/p')
  [[ $(realpath "$library") == "$1"/lib/* ]] || fail "the library of $voxtool is ${library:-not found}"
  [[ $("$voxtool" --version) == "voxtool "* ]] || fail "$voxtool does not tell its version"
  "$voxtool" convert -q -f -o "$folder/out.wav" "$sound" 2>/dev/null || fail "$voxtool does not convert"
  "$voxtool" check -q "$folder/out.wav" || fail "what $voxtool makes is not whole"
  "$voxtool" plot -q -f -o "$folder/out.png" "$sound" || fail "$voxtool does not draw"
  [[ $(file -b "$folder/out.png") == "PNG image data, 1200 x 600, "* ]] || fail "$voxtool draws no picture"
}
works "$folder/first"
mkdir "$folder/elsewhere"
mv "$folder/first" "$folder/elsewhere/second"
works "$folder/elsewhere/second"
# They look there and nowhere else, so that no other folder can put a library in between.
# shellcheck disable=SC2016
for place in 'bin/voxtool $ORIGIN/../lib' 'libexec/voxplay/voxtool-plot $ORIGIN/../../lib'; do
  read -r program wanted <<<"$place"
  paths=$(readelf -dW "$folder/elsewhere/second/$program" |
    sed -n 's/.*(R\(UN\)\{0,1\}PATH).*\[\(.*\)\].*/\2/p')
  [[ $paths == "$wanted"* && $paths != *:* ]] || fail "$program looks in ${paths:-no folder}"
done

rm -r "$folder/elsewhere/second/libexec"
code=0
said=$("$folder/elsewhere/second/bin/voxtool" plot -f -o "$folder/out.png" "$sound" 2>&1) || code=$?
[[ $code == 1 && $said == "voxtool-plot: cannot be run: No such file or directory" ]] ||
  fail "without the program that draws, it ends with $code and says: $said"
