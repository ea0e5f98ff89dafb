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
}
works "$folder/first"
mkdir "$folder/elsewhere"
mv "$folder/first" "$folder/elsewhere/second"
works "$folder/elsewhere/second"
# It looks there and nowhere else, so that no other folder can put a library in between.
paths=$(readelf -dW "$folder/elsewhere/second/bin/voxtool" |
  sed -n 's/.*(R\(UN\)\{0,1\}PATH).*\[\(.*\)\].*/\2/p')
# shellcheck disable=SC2016
[[ $paths == '$ORIGIN/../lib'* && $paths != *:* ]] || fail "the program looks in ${paths:-no folder}"
