#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Asks whether the tests would notice a mistake. Makes small mistakes in the library, one at a time, and
# runs its tests until one of them fails. A mistake that no test notices "survives"; it is listed at the
# end.
#
#   scripts/mutants.sh [COUNT [FILE...]]
#
#   COUNT   how many mistakes to try, spread over the files; always the same ones. 240 unless given
#   FILE    where to make them, instead of all sources of common/ and Lib_Common/
#
# The mistakes are made in a copy of the tree, in build/mutants. Mistakes that do not compile do not
# count. A program that takes much longer than without the mistake has noticed it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
count=${1:-240}
shift $(($# > 0))
files=("$@")
((${#files[@]})) || mapfile -t files < <(git ls-files common/*.cpp 'Lib_Common/*.cpp')

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

# A mistake that writes or allocates without end must not fill the machine.
ulimit -f $((16 << 20)) -v $((16 << 20))

top=$PWD/build/mutants
tree=$top/tree
rm -rf "$tree"
mkdir -p "$tree"
git ls-files -z | xargs -0 tar -cf - | tar -C "$tree" -xf -
# Two builds. Almost every mistake is noticed by the programs that test the library's rooms; with shared
# libraries they need not be linked again for each mistake. What they do not notice is shown to the
# tests of what holds across the modules, which need archives.
rooms=$top/rooms
whole=$top/whole
for build in "$rooms" "$whole"; do
  shared=OFF
  [[ $build == "$rooms" ]] && shared=ON
  cmake -S "$tree" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG= -DVOXPLAY_TESTS=ON \
    -DBUILD_SHARED_LIBS=$shared -DCMAKE_LINK_DEPENDS_NO_SHARED=ON >/dev/null
done
test_folders=("$rooms"/tests/common "$rooms"/tests/Lib_Common)
mapfile -t programs < <(find "${test_folders[@]}" -name '*Test.dir' -printf '%f\n' | sed 's/\.dir$//')
across=(fuzz_replay portable_outputs RefusedCallsTest RiffReadErrorTest IoFailureTest AllocationFailureTest SystemCallFailureTest)
across_tests='^(Fuzz|Portable|portable|.*(IoFailure|FullDisk|AllocationFailure|SystemCallFailure)Test|RefusedCalls|InPlace|RiffReadError)'
cmake --build "$rooms" --parallel "$(nproc)" --target "${programs[@]}" >/dev/null
cmake --build "$whole" --parallel "$(nproc)" --target "${across[@]}" >/dev/null

# How long each program takes without a mistake; the quickest come first.
declare -A usual
for program in "${programs[@]}"; do
  before=$(date +%s%N)
  "$rooms/bin/$program" --gtest_brief=1 >"$top/log.txt" 2>&1 || {
    echo "$program fails without any mistake" >&2
    exit 1
  }
  usual[$program]=$(($(date +%s%N) - before))
done
mapfile -t programs < <(for program in "${programs[@]}"; do echo "${usual[$program]} $program"; done |
  sort -n | cut -d ' ' -f 2)

# Lines of code that are no comments, directives or assertions, with the rules that change them.
changes() {
  local file i
  for file in "${files[@]}"; do
    for i in "${!rules[@]}"; do
      paste -d '\t' "$tree/$file" <(sed -E "${rules[i]}" "$tree/$file") | awk -F '\t' -v OFS='\t' \
        -v file="$file" -v rule="$i" '$1 != $2 && $1 !~ /^ *(\/\/|#|static_assert|template|using|case )/ &&
          $1 !~ /VCM_ASSERT|kSource|constexpr const char|^[A-Za-z].*\{$/ { print file, NR, rule }'
    done
  done
}
list=$top/list.txt
# In the order of the files, so that only one is compiled for each mistake.
changes | shuf -n "$count" --random-source=<(yes) | sort -s -k 1,1 >"$list"

# The programs that test the room of FILE, then all others.
in_order() {
  local own
  own=$(find "$rooms/tests/$(dirname "$1")/CMakeFiles" -maxdepth 1 -name '*Test.dir' -printf ' %f ' 2>/dev/null || true)
  for program in "${programs[@]}"; do [[ $own != *" $program.dir "* ]] || echo "$program"; done
  for program in "${programs[@]}"; do [[ $own == *" $program.dir "* ]] || echo "$program"; done
}

# notices FILE: prints the name of a program that fails with what is in the tree now, or nothing when
# none does. The result is 1 when it does not compile.
notices() {
  local program
  cmake --build "$rooms" --target WaveFileLib >"$top/log.txt" 2>&1 || return 1
  while read -r program; do
    timeout $((10 + 5 * usual[$program] / 1000000000)) \
      "$rooms/bin/$program" --gtest_brief=1 --gtest_fail_fast >/dev/null 2>&1 || {
      echo "$program"
      return 0
    }
  done < <(in_order "$1")
  cmake --build "$whole" --parallel "$(nproc)" --target "${across[@]}" >"$top/log.txt" 2>&1 || return 2
  ctest --test-dir "$whole" --parallel "$(nproc)" --stop-on-failure --timeout 300 -R "$across_tests" \
    >"$top/log.txt" 2>&1 || sed -nE 's/^[ \t]*[0-9]+ - (.*) \(.*/\1/p' "$top/log.txt" | head -n 1
}

made=0
senseless=0
survivors=()
while IFS=$'\t' read -r file line rule <&3; do
  cp "$tree/$file" "$top/before.cpp"
  sed -E -i "${line}${rules[rule]}" "$tree/$file"
  result=0
  program=$(notices "$file") || result=$?
  if ((result == 2)); then
    tail -n 20 "$top/log.txt" >&2
    exit 1
  elif ((result == 1)); then
    senseless=$((senseless + 1))
  else
    made=$((made + 1))
    change=$(diff "$top/before.cpp" "$tree/$file" | grep '^[<>]' | sed -E 's/^([<>]) +/\1 /' | tr '\n' ' ' || true)
    [[ $program ]] || survivors+=("$file:$line: $change")
    printf '%4d %-22s %s:%s: %s\n' "$made" "${program:-SURVIVED}" "${file##*/}" "$line" "$change"
  fi
  cp "$top/before.cpp" "$tree/$file"
done 3<"$list"

printf '\n%d of %d mistakes were noticed; %d more did not compile.\n' \
  $((made - ${#survivors[@]})) "$made" "$senseless"
((${#survivors[@]} == 0)) || printf 'survived: %s\n' "${survivors[@]}"
