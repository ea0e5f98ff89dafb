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
# A file that the program has made, under a name that says nothing.
made() {
  "$voxtool" convert -qq -f --to "$1" -o "$folder/made" "$sources/samples/Test.kst" 2>/dev/null
  mv "$folder/made" "$folder/$2"
}

cp "$sources/samples/Test.kst" "$folder/speech.kst"
cp "$sources/samples/Test.kst" "$folder/no-extension"
sp "VOXELTRONIC@SP" 21 | tr '@' ' ' >"$folder/heron"
sp "ORBITAL@SPEECH" 0e | tr '@' ' ' >"$folder/old-kestrel"
sp "VOXELTRONIC@SP" 63 | tr '@' ' ' >"$folder/unknown-codec"
made vef vef.pcm
made vemd vemd.pcm
made heron4 heron.bin
riff VEFF >"$folder/short-vef"
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
expect heron.bin audio/x-heron
expect short-vef audio/x-vef
# What is not ours stays what it was.
case $(type_of "$folder/unknown-codec")$(type_of "$folder/wave")$(type_of "$folder/raw.pcm") in
  *kestrel* | *heron* | *vef* | *vemd*) fail "a type of ours is seen where there is none" ;;
esac
# The entries offer themselves for all of them.
for type in audio/x-kestrel audio/x-heron audio/x-vef audio/x-vemd; do
  for entry in applications/voxtool.desktop thumbnailers/voxtool.thumbnailer; do
    grep -q "^MimeType=.*$type;" "$share/$entry" || fail "$entry does not name $type"
  done
done

# command_of ENTRY FIELD WORD...: the words of its command line, with these in place of %FIELD
command_of() {
  local entry=$1 word
  shift
  read -ra command < <(sed -n 's/^Exec=//p' "$share/$entry")
  for ((n = 0; n < ${#command[@]}; ++n)); do
    word=${command[n]}
    for field in "$@"; do word=${word//%${field%%=*}/"${field#*=}"}; done
    command[n]=$word
  done
}
# As file managers do it: without a terminal, and with a home where nothing is yet.
in_desktop() {
  env -i HOME="$folder/home" PATH="$(dirname "$voxtool"):/usr/bin:/bin" "$@" </dev/null >"$folder/said" 2>&1 ||
    fail "\"$*\" fails: $(cat "$folder/said")"
}

mkdir "$folder/pictures"
for name in speech.kst heron.bin vef.pcm vemd.pcm; do
  cp "$folder/$name" "$folder/Grüße an 100% $name"
  for size in 128 256; do
    picture=$folder/pictures/$name-$size.png
    command_of thumbnailers/voxtool.thumbnailer "i=$folder/Grüße an 100% $name" "o=$picture" "s=$size"
    in_desktop "${command[@]}"
    [[ ! -s $folder/said ]] || fail "the thumbnailer says: $(cat "$folder/said")"
    [[ $(file -b "$picture") == "PNG image data, $size x $size, "* ]] ||
      fail "the thumbnail of $name is no picture of $size pixels: $(file -b "$picture")"
  done
done

# The entry plays what it is given. Without a device, that takes as long as the sound.
command_of applications/voxtool.desktop "F=$folder/short.wav"
printf 'RIFF\x2c\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\x3e\0\0\0\x7d\0\0\2\0\x10\0data\x08\0\0\0\0\0\0\0\0\0\0\0' \
  >"$folder/short.wav"
in_desktop "${command[@]}"
