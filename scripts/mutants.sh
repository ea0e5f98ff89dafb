#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Asks whether the tests would notice a mistake. Makes small mistakes in the parsers, the file classes
# and the operations on sounds, one at a time, and runs the tests until one of them fails. A mistake
# that no test notices "survives"; it is listed at the end.
#
#   scripts/mutants.sh [COUNT [FILE...]]
#
#   COUNT   how many mistakes to make, spread over the files; always the same ones. 200 unless given
#   FILE    where to make them, instead of the files listed below
#
# The mistakes are made in a copy of the tree, in build/mutants. Mistakes that do not compile do not
# count.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
count=${1:-200}
shift $(($# > 0))
wave=Lib_Common/Src/LibProject/WaveFileLib
files=("$@")
((${#files[@]})) || files=(
  common/{StdioFile,Replacement,TargetFile,TempFile}.cpp
  Lib_Common/Src/LibProject/FileUtil/RiffFile.cpp
  "$wave"/chunk/*.cpp "$wave"/compressed/*.cpp "$wave"/file/*.cpp
  "$wave"/annotation/*.cpp "$wave"/sound/*.cpp
)
# The programs that test these files, the quickest first.
programs=(StdioFileTest TempFileTest TargetFileTest RiffFileTest SpHeaderTest PcmFormatTest WavDataInfoTest
  WavInfoTest AudioCodecParamTest WavDataBufferTest SampleRangeTest EventTagTest EventTagMgrTest WavTagsTest
  WavFileCodecInfoTest WavDecodersTest AdpcmCodecTest WavFileBaseTest WavLabelsTest MonoMixTest FalseLengthTest
  CompressedWavTest WavFileTest WavDataTest VefFileTest KestrelFileTest HeronFileTest WavFileFormatTest
  WavFileSweepTest)

# Each rule replaces the first match in a line.
rules=(
  's/ == / != /' 's/ != / == /'
  's/ < / <= /' 's/ <= / < /' 's/ > / >= /' 's/ >= / > /'
  's/ && / || /' 's/ \|\| / \&\& /'
  's/ \+ / - /' 's/ - / + /' 's/ \* / + /' 's/ \/ / * /' 's/ % / + /'
  's/\+\+/--/' 's/ \+= / -= /' 's/ \|= / = /' 's/ << / >> /' 's/ & / | /'
  's/\btrue\b/false/' 's/\bfalse\b/true/'
  's/([^A-Za-z0-9_.'"'"'])([0-9]+)(U?)\b/\1(\2\3 + 1)/'
  's/return ([A-Za-z_].*);$/return !(\1);/'
  's/^( +)[A-Za-z_][A-Za-z0-9_:.>-]*\([^=]*\);$/\1;/'
)

tree=$PWD/build/mutants/tree
rm -rf "$tree"
mkdir -p "$tree"
git ls-files -z | xargs -0 tar -cf - | tar -C "$tree" -xf -
build=$PWD/build/mutants/build
# With shared libraries the test programs need not be linked again for each mistake.
cmake -S "$tree" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DVOXPLAY_TESTS=ON \
  -DBUILD_SHARED_LIBS=ON -DCMAKE_LINK_DEPENDS_NO_SHARED=ON >/dev/null
cmake --build "$build" --parallel "$(nproc)" --target "${programs[@]}" >/dev/null

# Lines of code that are no comments, directives or assertions, with the rules that change them.
list=$build/list.txt
for file in "${files[@]}"; do
  for i in "${!rules[@]}"; do
    paste -d '\t' "$tree/$file" <(sed -E "${rules[i]}" "$tree/$file") | awk -F '\t' -v OFS='\t' \
      -v file="$file" -v rule="$i" '$1 != $2 && $1 !~ /^ *(\/\/|#|static_assert|template|using|case )/ &&
        $1 !~ /VCM_ASSERT|kSource|constexpr const char|^[A-Za-z].*\{$/ { print file, NR, rule }'
  done
done | shuf --random-source=<(yes) | head -n $((count * 2)) >"$list"

# notices FILE: whether a test fails on what is in the tree now. Fails itself when it does not compile.
notices() {
  local program
  cmake --build "$build" --parallel "$(nproc)" --target "${programs[@]}" >"$build/log.txt" 2>&1 || return 2
  for program in "${programs[@]}"; do
    timeout 120 "$build/bin/$program" --gtest_brief=1 --gtest_fail_fast >/dev/null 2>&1 || return 0
  done
  return 1
}

made=0
survivors=()
while IFS=$'\t' read -r file line rule && ((made < count)); do
  cp "$tree/$file" "$build/before.cpp"
  sed -E -i "${line}${rules[rule]}" "$tree/$file"
  result=0
  notices || result=$?
  if ((result < 2)); then
    made=$((made + 1))
    change=$(diff "$build/before.cpp" "$tree/$file" | grep '^[<>]' | sed -E 's/^([<>]) +/\1 /' | tr '\n' ' ' || true)
    ((result == 0)) || survivors+=("$file:$line: $change")
    printf '%4d %s %s:%s: %s\n' "$made" "$([[ $result == 0 ]] && echo noticed || echo SURVIVED)" \
      "${file##*/}" "$line" "$change"
  fi
  cp "$build/before.cpp" "$tree/$file"
done <"$list"

printf '\n%d of %d mistakes were noticed.\n' $((made - ${#survivors[@]})) "$made"
((${#survivors[@]} == 0)) || printf 'survived: %s\n' "${survivors[@]}"
