#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs the tests with coverage counters and prints the table of docs/RELIABILITY.md: how many lines and
# branches of each room they reach. The lines themselves are in build/coverage/html/index.html. Fails
# when a room is below its floor, unless only some of the tests are run.
#
#   scripts/coverage.sh [CTEST ARGUMENTS...]     (all tests unless told otherwise)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Percentages, of every room and of all together.
least_lines=99
least_branches=95
# Rooms and a file that parse and decode what anybody may have written: every line.
whole='FileUtil/ chunk/ compressed/ heron/ kestrel/ file/SpHeader.cpp'
# Rooms with less, and how much less. What is left there are second looks that nothing else in the
# library needs, and clean-up that only the compiler sees: "What is not reached" in docs/RELIABILITY.md.
fewer_branches='WaveFileLib/=92 file/=94 common/=94'

scripts/install-deps.sh coverage
mkdir -p build
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
scripts/test.sh coverage "$@" >build/coverage.log 2>&1 || {
  tail -n 40 build/coverage.log >&2
  exit 1
}
mkdir -p build/coverage/html
# Branches that only an exception takes are left out: the test that makes every allocation fail
# takes care of them, so a reader of the report need not. So are those that only the compiler sees:
#   dynamic_cast<...>(&x), delete this   is the address of an object null?
#   (x.*y)(), (x->*y)()                  is the function that y points to virtual?
#   ~C_Name() = default                  does this object have to free its memory, too?
#   operator==(...) = default            which of the members is the first to differ?
compilers='dynamic_cast<[^;]*\(&|delete this;|(\.|->)\*|(~C_|operator==\().*= default;'
gcovr --root . --exclude-throw-branches --exclude-branches-by-pattern ".*($compilers).*" \
  --filter api/ --filter common/ --filter Lib_Common/ --filter platform/ --filter player/ --filter tool/ \
  --html-details build/coverage/html/index.html --csv build/coverage/files.csv -j "$(nproc)" build/coverage

# Adds up the files of each room. Rooms of the classes are named as in docs/ARCHITECTURE.md; api/, platform/
# and tool/ have many, which count together.
awk -F , -v least_lines="$least_lines" -v least_branches="$least_branches" -v whole="$whole" \
  -v fewer="$fewer_branches" -v judge=$(($# == 0)) '
  function short_name(file) {
    sub("^Lib_Common/Src/LibProject/", "", file)
    if (file ~ "^WaveFileLib/.*/") sub("^WaveFileLib/", "", file)
    return file
  }
  function add(room) { lines[room] += $2; hit[room] += $3; branches[room] += $5; taken[room] += $6 }
  function percent(part, all) { return all ? 100 * part / all : 100 }
  function show(room, name) {
    l = percent(hit[room], lines[room])
    b = percent(taken[room], branches[room])
    # What is nearly all must not look like all.
    printf "| %s | %.1f %% | %.1f %% |\n", name, int(l * 10) / 10, int(b * 10) / 10
    if (l < (room in of_lines ? of_lines[room] : least_lines)) low = low "\n  " name ": lines"
    if (b < (room in of_branches ? of_branches[room] : least_branches)) low = low "\n  " name ": branches"
  }
  BEGIN {
    for (i = split(whole, words, " "); i > 0; --i) of_lines[words[i]] = 100
    for (i = split(fewer, words, " "); i > 0; --i) {
      split(words[i], pair, "=")
      of_branches[pair[1]] = pair[2]
    }
  }
  NR > 1 {
    room = file = short_name($1)
    files[file]
    sub("/.*", "/", room)
    if (file in of_lines && $3 < $2) low = low "\n  " file ": lines"
    if (!(room in lines)) order[++rooms] = room
    add(room)
    add("")
  }
  END {
    if (!rooms) low = "\n  nothing was counted"
    for (room in of_branches) if (!(room in lines)) low = low "\n  " room ": is no room"
    for (room in of_lines) if (!(room in lines) && !(room in files)) low = low "\n  " room ": is no room or file"
    print "| room | lines | branches |\n|---|---|---|"
    for (i = 1; i <= rooms; ++i) show(order[i], "`" order[i] "`")
    show("", "all of these")
    if (!judge || low == "") exit
    print "coverage: below the floors at the top of scripts/coverage.sh:" low >"/dev/stderr"
    exit 1
  }' build/coverage/files.csv
