#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Checks what no compiler checks: the rules of the tree that CONTRIBUTING.md states.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
failed=0
fail() {
  echo "check-tree: $*" >&2
  failed=1
}
mapfile -d '' sources < <(scripts/sources.sh)
mapfile -d '' code < <(find api common Lib_Common platform player -name '*.cpp' -print0 -o -name '*.h' -print0)

# What no target builds is never compiled, and a test that no program has never runs. Programs of one
# source are listed without its suffix.
cmake_lists=$(cat CMakeLists.txt $(find . -mindepth 2 -name CMakeLists.txt -not -path './build/*'))
while IFS= read -r file; do
  name=$(basename "$file" .cpp)
  listed=$name.cpp
  [[ $file =~ ^(fuzz|bench|examples|training)/[^/]*$ ]] && listed=$name
  grep -qwF -e "$listed" -e "add_server_test($name" <<<"$cmake_lists" ||
    fail "$file is listed in no CMakeLists.txt"
done < <(find api common player platform python tool fuzz bench examples training tests -name '*.cpp')
while IFS= read -r -d '' file; do
  grep -qwF "${file#Lib_Common/Src/LibProject/}" Lib_Common/Src/LibProject/CMakeLists.txt ||
    fail "$file is not listed in Lib_Common/Src/LibProject/CMakeLists.txt"
done < <(find Lib_Common -name '*.cpp' -print0)
for file in "${sources[@]}"; do
  # This one is for C compilers of any age, too.
  [[ $file != ./api/include/voxplay.h ]] || continue
  [[ $(head -n 1 "$file") == "// SPDX-License-Identifier: Apache-2.0" ]] || fail "$file: no licence line"
  [[ $file != *.h ]] || grep -q '^#pragma once$' "$file" || fail "$file: no #pragma once"
done
while IFS= read -r file; do
  [[ $(head -n 2 "$file") == *'SPDX-License-Identifier: Apache-2.0'* ]] || fail "$file: no licence line"
done < <(find . \( -path ./build -o -path ./.git \) -prune -o \
  \( -name CMakeLists.txt -o -name '*.cmake' -o -name '*.sh' -o -path ./.ci/run \) -type f -print)

# A picture that no document shows is never looked at again.
for file in docs/pictures/*; do
  grep -qF "pictures/${file##*/})" README.md docs/*.md || fail "$file is shown in no document"
done

# Nothing in the environment of a process may influence the code.
if grep -nE '\b(secure_)?getenv\b' "${code[@]}"; then fail "the environment is read"; fi
if grep -nE '\btemp_directory_path\b' "${code[@]}"; then fail "the environment chooses the temporary folder"; fi

# The library speaks through its results: only its assertion writes to a standard stream, and the
# row of dots that one codec shows on request.
mapfile -d '' library < <(find api common Lib_Common \( -name '*.cpp' -o -name '*.h' \) \
  ! -name 'VcmAssert.*' ! -name 'HeronDots.*' -print0)
if grep -nE '\bstd(out|err)\b|std::c(out|err|log)\b|\b(printf|vprintf|puts|putchar|perror)\(' "${library[@]}"; then
  fail "the library prints"
fi
# Streams are opened in these four modes and no other way.
if grep -nE '\b(VCM_tfopen|OpenFile|fopen|fdopen)\([^;]*"' "${library[@]}" | grep -vE '"(rb|wb|w\+b|r\+b)"\)'; then
  fail "a file is opened in another mode"
fi
if grep -nE '\b(i|o)?fstream\b' "${library[@]}"; then fail "a file is opened as an iostream"; fi

scripts/check-floors.sh || fail "the floors are not kept"

# The library's rooms but for the frame coders, whose names are in namespaces under rules of their own.
wave=Lib_Common/Src/LibProject/WaveFileLib
mapfile -t rooms < <(scripts/check-floors.sh --rooms | grep "^$wave" | grep -vE '/(kestrel|heron)$')
((${#rooms[@]})) || fail "the library has no rooms"

# The families of classes that callers know: each is a pair of files under its own name. So is every
# other source of the library, except those that divide the operations of C_WavData.
for stem in "$wave"/{WavFileFormat,annotation/{EventTag,EventTagMgr},chunk/WavDataInfo} \
  "$wave"/codec/{KestrelCodec,HeronCodec} "$wave"/sound/{WavData,WavDataBuffer,WavInfo,AudioCodecParam} \
  "$wave"/file/{WavFileBase,WavFile,VefFileBase,VefFile,CodecFileBase,KestrelFile,HeronFile,SpHeader} \
  Lib_Common/Src/LibProject/FileUtil/RiffFile common/{CLString,VCM} player/{Voxplay,FileType,PcmQueue}; do
  [[ -e $stem.h && -e $stem.cpp ]] || fail "$stem.h and $stem.cpp belong together"
done
while IFS= read -r file; do
  [[ -e ${file%.cpp}.h || $file == */sound/WavData[A-Z]*.cpp ]] || fail "$file has no header of its name"
done < <(find "${rooms[@]}" -maxdepth 1 -name '*.cpp')
# Programs of users may be in C, and one header of theirs is for C++ alone.
while IFS= read -r file; do fail "$file: sources end in .cpp and .h"; done < <(
  find . \( -path ./build -o -path ./.git \) -prune -o -type f -regextype egrep \
    -regex '.*\.(cc|cxx|c|hpp|hh|hxx|inc|inl|ipp)' -print |
    grep -vE '^\./(examples/[^/]*\.c|tests/consumer/.*\.c|api/include/voxplay\.hpp)$')
while IFS= read -r file; do
  [[ $(head -n 1 "$file") == *"SPDX-License-Identifier: Apache-2.0"* ]] || fail "$file: no licence line"
done < <(find examples tests/consumer -name '*.c' -o -path examples/Makefile)
while IFS= read -r line; do fail "$line: not named as an interface, class, record or enumeration is"; done < <(
  find "${rooms[@]}" Lib_Common/Src/LibProject/FileUtil -maxdepth 1 -name '*.h' -exec \
    grep -nHE '^(class|struct|enum) ' {} + |
    grep -vE ':class (\[\[.*\]\] |alignas\(.*\) )?[IC]_[A-Z]|:struct S_[A-Z]|:enum (tag[A-Z]|E_EventPosUnit)')
while IFS= read -r file; do
  # A pure interface: every virtual operation is "= 0", except for the destructor.
  statements=$(sed 's|//.*||' "$file" | tr '\n' ' ' | grep -oE 'virtual [^;{]*[;{]' || true)
  statements=$(grep -vE '= 0;$|~I_[A-Za-z]+\(\) = default;$' <<<"$statements" || true)
  if [[ -n $statements ]]; then
    fail "$file: an operation of an interface is not pure"
  fi
done < <(find "${rooms[@]}" Lib_Common/Src/LibProject/FileUtil player -maxdepth 1 -name 'I_*.h')
if grep -nE '\b(TODO|FIXME|XXX)\b' "${sources[@]}"; then fail "unfinished work is marked"; fi
if grep -nE '\b(GTEST_SKIP|DISABLED_)' "${sources[@]}"; then fail "a test is switched off"; fi


# What must be the same everywhere and is not checked by clang-format or clang-tidy.
comparison='(EXPECT|ASSERT)_(EQ|NE|STREQ|STRNE|LT|LE|GT|GE|NEAR|DOUBLE_EQ|FLOAT_EQ)'
constant="-?[0-9][0-9a-fA-FxXuUlL.']*|\"[^\"]*\"|'[^']+'|true|false|nullptr|noErr|(AUDIO_FILE|WAV_CODING|WAVE_TAG|I_Voxplay::k)[A-Za-z0-9_]*"
if grep -nE "$comparison\(($constant), " "${sources[@]}"; then
  fail "an expectation expects the constant first; the actual value comes first"
fi
# A body on its own line has braces, and a short body without a comment is on the line above.
if ! awk -v most=100 '
  function indent(line) { return match(line, /[^ ]/) }
  function is_head(line) {
    return line ~ /^ *((} )?else if|for|while|if) / && gsub(/\(/, "(", line) == gsub(/\)/, ")", line)
  }
  FNR == 1 { before = above = "" }
  is_head(above) && above ~ /\)$/ && indent($0) == indent(above) + 2 && !/^ *(\{|\/\/)/ {
    print FILENAME ":" FNR ": a body on its own line has no braces"; bad = 1
  }
  is_head(before) && before !~ /else/ && before ~ /\) \{$/ && /^ *}$/ && indent($0) == indent(before) &&
    above ~ /;$/ && before above !~ /\/\// && indent(above) == indent(before) + 2 &&
    above !~ /^ *(for|while|if|do|switch|case|else|EXPECT|ASSERT)/ &&
    length(before) - 1 + length(above) - indent(above) + 1 <= most {
    print FILENAME ":" FNR - 1 ": this body fits on the line above"; bad = 1
  }
  { before = above; above = $0 }
  END { exit bad }' "${sources[@]}"; then
  fail "a body is not laid out as everywhere else"
fi

# What the README shows in C is part of a program that is built and run.
shown=$(awk '/^```c$/ { shown = 1; next } /^```$/ { shown = 0 } shown' README.md | tail -n +3)
[[ -n $shown && $(<examples/read.c) == *"$shown"* ]] || fail "README.md shows other lines than examples/read.c has"

while IFS= read -r file; do fail "$file is larger than 1.9 MB"; done < <(
  find . \( -path ./build -o -path ./.git \) -prune -o -type f -size +1900k -print)

# What the README shows is part of a program that compiles.
snippet=$(sed -n '/^```cpp$/,/^```$/p' README.md | sed '/^```/d')
[[ -n $snippet && $(<examples/convert.cpp) == *"$snippet"* ]] ||
  fail "the README's code is not part of examples/convert.cpp"

# Every kept oddity names the test that pins it, and the test exists.
# Macros may span lines: join them first.
mapfile -t names < <(find tests -name '*.cpp' -exec cat {} + | tr '\n' ' ' |
  grep -oE '\<(TYPED_)?TEST(_[FP])?\( *[A-Za-z0-9_]+, *[A-Za-z0-9_]+' | sed 's/.*, *//')
declare -A is_test
for name in "${names[@]}"; do
  is_test[$name]=1
  [[ $name =~ ^[A-Z][A-Za-z0-9]*_[A-Za-z0-9_]+$ ]] || fail "the test name $name does not have the form What_Outcome"
done
mapfile -t keeping < <(grep -lE 'Kept:|Pinned by' "${code[@]}")
for file in "${keeping[@]}"; do
  # Comments flow over lines: join them first.
  text=$(sed -E 's|^[[:space:]]*//[[:space:]]?||' "$file" | tr '\n' ' ')
  kept=$(grep -oF 'Kept:' <<<"$text" | wc -l || true)
  mapfile -t pins < <(grep -oE 'Pinned by [A-Za-z0-9_]+(,? (and )?[A-Z][A-Za-z0-9]*_[A-Za-z0-9_]+)*' <<<"$text" |
    sed 's/^Pinned by //')
  ((${#pins[@]} >= kept)) || fail "$file: $kept times Kept:, ${#pins[@]} times Pinned by"
  for pin in "${pins[@]}"; do
    for name in ${pin//,/ }; do
      [[ $name == and || -n ${is_test[$name]:-} ]] || fail "$file: no test is called $name"
    done
  done
done
exit "$failed"
