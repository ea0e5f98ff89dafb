#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# What desktops are told about the program and its files: that it is valid, that it works on files,
# and that it is installed where they look.
#
#   desktop_test.sh SOURCES VOXTOOL BUILD
set -euo pipefail
sources=$1 voxtool=$2 build=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  echo "desktop_test: $*" >&2
  exit 1
}

desktop-file-validate "$sources/desktop/voxtool.desktop"
appstreamcli validate --no-net "$sources"/desktop/*.metainfo.xml >/dev/null || fail "the metainfo is not valid"
xmllint --noout "$sources"/desktop/*.xml

cmake --install "$build" --component player --prefix "$folder/prefix" >/dev/null
share=$folder/prefix/share
for file in applications/voxtool.desktop bash-completion/completions/voxtool \
  fish/vendor_completions.d/voxtool.fish man/man1/VoxplaySampleCode.1 man/man1/voxtool.1 \
  man/man1/voxtool-play.1 metainfo/org.voxplay.voxtool.metainfo.xml mime/packages/voxplay.xml \
  thumbnailers/voxtool.thumbnailer zsh/vendor-completions/_voxtool; do
  [[ -s $share/$file ]] || fail "$file is not installed"
done
[[ -x $folder/prefix/bin/voxtool ]] || fail "the program is not installed"
# Each command of the program has a page.
while read -r page; do [[ -s $share/man/man1/$page ]] || fail "$page is not installed"; done < <(
  mkdir "$folder/pages" && "$voxtool" manual --all -d "$folder/pages" && ls "$folder/pages")

# With what is installed there, and with what the system knows already.
XDG_DATA_HOME=$share update-mime-database "$share/mime"
type_of() {
  XDG_DATA_HOME=$share gio info -a standard::content-type "$1" |
    sed -n 's/.*standard::content-type: //p'
}
expect() {
  [[ $(type_of "$folder/$1") == "$2" ]] || fail "$1 is $(type_of "$folder/$1"), not $2"
}
# An SP header with this text, where "@" stands for a space, and this identifier.
sp() { printf '\x00\xff\x00\xff%-16s\xfe\x02\x'"$2"'\x00\x10\x00\x40\x1f\0\0' "$1" | tr ' ' '\0'; }
riff() { printf 'RIFF\x04\0\0\0%s' "$1"; }

cp "$sources/samples/Test.kst" "$folder/speech.kst"
cp "$sources/samples/Test.kst" "$folder/no-extension"
sp "VOXELTRONIC@SP" 21 | tr '@' ' ' >"$folder/heron"
sp "ORBITAL@SPEECH" 0e | tr '@' ' ' >"$folder/old-kestrel"
sp "VOXELTRONIC@SP" 63 | tr '@' ' ' >"$folder/unknown-codec"
riff VEFF >"$folder/vef.pcm"
riff VEMD >"$folder/vemd.pcm"
riff WAVE >"$folder/wave"
printf 'samples' >"$folder/raw.pcm"
printf '\1\2\3\200' >"$folder/bare.hrn"
expect speech.kst audio/x-kestrel
expect no-extension audio/x-kestrel
expect old-kestrel audio/x-kestrel
expect heron audio/x-heron
expect bare.hrn audio/x-heron
expect vef.pcm audio/x-vef
expect vemd.pcm audio/x-vemd
# What is not ours stays what it was.
case $(type_of "$folder/unknown-codec")$(type_of "$folder/wave")$(type_of "$folder/raw.pcm") in
  *kestrel* | *heron* | *vef* | *vemd*) fail "a type of ours is seen where there is none" ;;
esac
# The entry offers itself for all of them, and the picture of a file is made by the program.
for type in audio/x-kestrel audio/x-heron audio/x-vef audio/x-vemd; do
  for entry in applications/voxtool.desktop thumbnailers/voxtool.thumbnailer; do
    grep -q "^MimeType=.*$type;" "$share/$entry" || fail "$entry does not name $type"
  done
done
