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
list=$top/list.txt
jobs=2

# fresh_tree FOLDER: a copy of the tree. What an earlier run changed there must be compiled again;
# everything else need not.
fresh_tree() {
  rm -rf "$1"
  mkdir -p "$1"
  git ls-files -z | xargs -0 tar -cf - | tar -C "$1" -xf -
  [[ ! -e $list ]] || (cd "$1" && cut -f 1 "$list" | xargs -r touch -c)
}
configure() {
  cmake -S "$1" -B "$2" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG= "${@:3}" >/dev/null
}

# Almost every mistake is noticed by the programs that test the library's rooms. They are built once,
# with shared libraries. Each worker makes mistakes in a tree of its own, compiles the libraries and
# runs the programs with them. What goes unnoticed is shown to the tests of what holds across the
# modules, which need archives.
rooms=$top/rooms
whole=$top/whole
fresh_tree "$top/tree"
configure "$top/tree" "$rooms" -DVOXPLAY_TESTS=ON -DBUILD_SHARED_LIBS=ON
configure "$top/tree" "$whole" -DVOXPLAY_TESTS=ON -DBUILD_SHARED_LIBS=OFF
test_folders=("$rooms"/tests/common "$rooms"/tests/Lib_Common)
mapfile -t programs < <(find "${test_folders[@]}" -name '*Test.dir' -printf '%f\n' | sed 's/\.dir$//')
across=(fuzz_replay portable_outputs RefusedCallsTest RiffReadErrorTest VefReadErrorTest IoFailureTest
  AllocationFailureTest SystemCallFailureTest)
across_tests='^(Fuzz|Portable|.*(IoFailure|FullDisk|AllocationFailure|SystemCallFailure)Test|RefusedCalls|InPlace|(Riff|Vef)ReadError)'
cmake --build "$rooms" --parallel "$jobs" --target "${programs[@]}" >/dev/null
cmake --build "$whole" --parallel "$jobs" --target "${across[@]}" >/dev/null
for ((i = 0; i < jobs; ++i)); do
  fresh_tree "$top/worker$i/tree"
  configure "$top/worker$i/tree" "$top/worker$i/build" -DVOXPLAY_TESTS=OFF -DVOXPLAY_PLAYER=OFF \
    -DVOXPLAY_EXAMPLES=OFF -DBUILD_SHARED_LIBS=ON
  cmake --build "$top/worker$i/build" --parallel "$jobs" >/dev/null
done

# How long each program takes without a mistake; the quickest come first.
declare -A usual used
for program in "${programs[@]}"; do
  before=$(date +%s%N)
  "$rooms/bin/$program" --gtest_brief=1 >"$top/log.txt" 2>&1 || {
    echo "$program fails without any mistake" >&2
    exit 1
  }
  usual[$program]=$(($(date +%s%N) - before))
  used[$program]=$(ldd "$rooms/bin/$program")
done
mapfile -t programs < <(for program in "${programs[@]}"; do echo "${usual[$program]} $program"; done |
  sort -n | cut -d ' ' -f 2)

# Lines of code that are no comments, directives or assertions, with the rules that change them.
changes() {
  local file i
  for file in "${files[@]}"; do
    for i in "${!rules[@]}"; do
      paste -d '\t' "$file" <(sed -E "${rules[i]}" "$file") | awk -F '\t' -v OFS='\t' \
        -v file="$file" -v rule="$i" '$1 != $2 && $1 !~ /^ *(\/\/|#|static_assert|template|using|case )/ &&
          $1 !~ /VCM_ASSERT|kSource|constexpr const char|^[A-Za-z].*\{$/ { print file, NR, rule }'
    done
  done
}
# In the order of the files, so that only one is compiled for each mistake.
changes | shuf -n "$count" --random-source=<(yes) | sort -s -k 1,1 >"$list"

library_of() {
  case $1 in
    common/*) echo voxplay_common ;;
    */kestrel/*) echo KestrelFrameCoder ;;
    */heron/*) echo HeronFrameCoder ;;
    *) echo WaveFileLib ;;
  esac
}

# The programs that test the room of FILE, and all others that use its library.
own_programs() {
  local own program
  own=$(find "$rooms/tests/$(dirname "$1")/CMakeFiles" -maxdepth 1 -name '*Test.dir' -printf ' %f ' 2>/dev/null || true)
  for program in "${programs[@]}"; do [[ $own != *" $program.dir "* ]] || echo "$program"; done
}
other_programs() {
  local program
  for program in "${programs[@]}"; do
    [[ ${used[$program]} != *"lib$(library_of "$1")."* ]] || echo "$program"
  done | grep -vxFf <(own_programs "$1"; echo none)
}

# try WORKER FILE LINE RULE PROGRAMS: makes the mistake, runs the programs that the function PROGRAMS
# names, and puts the file back. Prints the first program that fails, "nobody" when none does, or
# "senseless" when the mistake does not compile; then a tab and the change.
try() {
  local tree=$top/worker$1/tree build=$top/worker$1/build noticed=nobody program
  cp "$tree/$2" "$top/worker$1/before.cpp"
  sed -E -i "${3}${rules[$4]}" "$tree/$2"
  if ! cmake --build "$build" >"$top/worker$1/log.txt" 2>&1; then
    noticed=senseless
  else
    while read -r program; do
      LD_LIBRARY_PATH=$build/Lib_Common/Src/LibProject:$build/common \
        timeout $((5 + 3 * usual[$program] / 1000000000)) \
        "$rooms/bin/$program" --gtest_brief=1 --gtest_fail_fast >/dev/null 2>&1 || {
        noticed=$program
        break
      }
    done < <("$5" "$2")
  fi
  printf '%s\t%s\n' "$noticed" \
    "$(diff "$top/worker$1/before.cpp" "$tree/$2" | grep '^[<>]' | sed -E 's/^([<>]) +/\1 /' | tr '\n' ' ')"
  cp "$top/worker$1/before.cpp" "$tree/$2"
}

# all PROGRAMS FROM TO: tries every mistake in the table FROM and adds the results to the table TO.
all() {
  local i
  : >"$3"
  for ((i = 0; i < jobs; ++i)); do
    awk -v i="$i" -v jobs="$jobs" 'NR % jobs == i' "$2" | while IFS=$'\t' read -r file line rule _; do
      printf '%s\t%s\t%s\t%s\n' "$file" "$line" "$rule" "$(try "$i" "$file" "$line" "$rule" "$1" </dev/null)" |
        tee -a "$3"
    done &
  done
  wait
}

all own_programs "$list" "$top/first.txt"
awk -F '\t' '$4 == "nobody"' "$top/first.txt" | sort -s -k 1,1 >"$top/second-list.txt"
all other_programs "$top/second-list.txt" "$top/second.txt"

# What nobody has noticed so far, among the tests that need archives.
survivors=()
while IFS=$'\t' read -r file line rule noticed change <&3; do
  [[ $noticed == nobody ]] || continue
  cp "$top/tree/$file" "$top/before.cpp"
  sed -E -i "${line}${rules[rule]}" "$top/tree/$file"
  cmake --build "$whole" --parallel "$jobs" --target "${across[@]}" >"$top/log.txt" 2>&1
  if ctest --test-dir "$whole" --parallel "$jobs" --stop-on-failure --timeout 300 -R "$across_tests" \
    >"$top/log.txt" 2>&1; then
    survivors+=("$file:$line: $change")
    echo "SURVIVED $file:$line: $change"
  fi
  cp "$top/before.cpp" "$top/tree/$file"
done 3<"$top/second.txt"

made=$(awk -F '\t' '$4 != "senseless"' "$top/first.txt" | wc -l)
printf '\n%d of %d mistakes were noticed.\n' $((made - ${#survivors[@]})) "$made"
((${#survivors[@]} == 0)) || printf 'survived: %s\n' "${survivors[@]}"
