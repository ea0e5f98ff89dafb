#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# An archive with GNU parallel on two hosts, which are this machine under two names. A process is
# killed, and a host is lost, while some files are damaged.
#
#   parallel_test.sh VOXTOOL [FILES]
set -euo pipefail
voxtool=$(realpath "$1")
files=${2:-2000}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d /tmp/voxparallel-XXXXXX)
trap 'rm -rf "$folder"' EXIT
# shellcheck source=tests/archive/expect_archive.sh
source "$here/expect_archive.sh"

# In place of ssh: "HOST COMMAND". A host that is gone does not answer, and whatever ran on it is gone.
cat >"$folder/ssh" <<'SSH'
#!/usr/bin/env bash
folder=$(dirname "$0")
while [[ $1 == -* ]]; do [[ $1 == -[lop] ]] && shift; shift; done
host=$1
shift
[[ ${1:-} != -- ]] || shift
[[ ! -e $folder/gone-$host ]] || exit 255
touch "$folder/asked-$host"
# Whoever logs in has a shell, also where the tests have none in their environment.
SHELL=/bin/bash setsid bash -c "$*" <&0 &
process=$!
while kill -0 $process 2>/dev/null; do
  if [[ -e $folder/gone-$host ]]; then
    ps -o pid= -s $process | xargs -r kill -KILL
    exit 255
  fi
  sleep 0.05
done
wait $process
SSH
chmod +x "$folder/ssh"
export PARALLEL_SSH=$folder/ssh VOXTOOL=$voxtool PARALLEL_HOME=$folder/parallel
mkdir "$PARALLEL_HOME"

make_archive "$files" 9
# Their own path may have a blank.
mkdir "$folder/with blank"
cp -r "$here/../../archive" "$folder/with blank/"
"$folder/with blank/archive/parallel/convert.sh" -S 1/one,1/two -n 8 "$folder/archive.db" >"$folder/said" &
job=$!
end=$((SECONDS + 60)) process=
until [[ -n $process ]]; do
  ((SECONDS < end)) && kill -0 "$job" 2>/dev/null || fail "no process begins: $(cat "$folder/said")"
  for piece in 1 2 3 4; do
    process=$(process_of "$folder/archive.db.work/round-1/piece-$piece.db")
    [[ -z $process ]] || break
  done
done
flock -n "$folder/archive.db.work/lock" true && fail "the work is not kept from a second start"
kill -KILL "$process"
until [[ -n $(process_of "$folder/archive.db.work/round-1/piece-4.db") ]]; do
  ((SECONDS < end)) || fail "no more processes begin"
  sleep 0.02
done
touch "$folder/gone-two"
code=0
wait "$job" || code=$?
((code == 1)) || fail "ends with $code, not with 1 for files that failed"
[[ -e $folder/asked-one && -e $folder/asked-two ]] || fail "a host had nothing to do"
grep -qE "^ *failed +$(wc -l <"$folder/damaged")$" "$folder/said" || fail "the report does not count what has failed"
expect_archive "$folder/said"

# What was made before everything ended at once is not made again, and in nobody's way.
again() { "$here/../../archive/parallel/convert.sh" -S 2/: -n 20 "$folder/again.db"; }
export -f again
export here folder
"$voxtool" convert --manifest "$folder/again.db" -r "$folder/in/001" -d "$folder/again" --to heron2 --plan-only -qq
setsid bash -c again >"$folder/said" 2>&1 &
job=$!
end=$((SECONDS + 60))
until (($(find "$folder/again" -name '*.hrn' 2>/dev/null | wc -l) >= 10)); do
  ((SECONDS < end)) || fail "the first start makes nothing"
  sleep 0.02
done
ps -o pid= -s "$job" | xargs -r kill -KILL 2>/dev/null || true
wait "$job" 2>/dev/null || true
made=$(find "$folder/again" -name '*.hrn' | wc -l)
((made < 90)) || fail "there is nothing left for the second start"
# As if the second round had begun.
mv "$folder/again.db.work/round-1" "$folder/again.db.work/round-2"
code=0
again >"$folder/said" 2>&1 || code=$?
grep -qE "^ *done +$((100 - $(grep -c /in/001/ "$folder/damaged" || true)))$" "$folder/said" ||
  fail "the second start ends with $code: $(cat "$folder/said")"

code=0
flock "$folder/again.db.work/lock" "$here/../../archive/parallel/convert.sh" "$folder/again.db" 2>"$folder/told" ||
  code=$?
[[ $code == 1 && $(<"$folder/told") == "convert.sh: $folder/again.db.work: another start is at work there" ]] ||
  fail "a second start at the same time ends with $code: $(<"$folder/told")"

# What goes wrong is told on the terminal.
"$voxtool" convert --manifest "$folder/archive.db" --plan-only --retry-failed -qq
printf '#!/bin/sh\necho no such host >&2\nexit 255\n' >"$folder/ssh"
"$folder/with blank/archive/parallel/convert.sh" -S 1/none -n 2 -r 1 -w "$folder/lost" "$folder/archive.db" \
  >"$folder/said" 2>"$folder/told" && fail "a host that is not there is no failure"
grep -q "no such host" "$folder/told" || fail "the reason is not told: $(cat "$folder/told")"
grep -q "$folder/lost/round-1/tasks.log" "$folder/told" || fail "the log is not named"
code=0
PATH=/bin:/usr/bin VOXTOOL=none "$folder/with blank/archive/parallel/convert.sh" "$folder/archive.db" \
  2>"$folder/told" || code=$?
[[ $code == 1 && $(cat "$folder/told") == "convert.sh: none: is not installed" ]] || fail "voxtool is not missed"
echo "parallel_test: after $SECONDS s"
