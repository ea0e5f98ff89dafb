#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# An archive on a Slurm of two nodes, which stand on this machine and talk over the loopback alone. A
# task and a process are killed, and a node is lost, while some files are damaged.
#
#   slurm_test.sh VOXTOOL [FILES]       as root; 77 says that it is not
set -euo pipefail
((EUID == 0)) || exit 77
voxtool=$(realpath "$1")
files=${2:-5000}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d /tmp/voxslurm-XXXXXX)
# shellcheck source=tests/archive/expect_archive.sh
source "$here/expect_archive.sh"

started=()
end() {
  local code=$?
  ((code == 0)) || tail -n 15 "$folder"/slurm/*.log "$folder"/archive.db.work/round-*/*.log >&2 || true
  for process in "${started[@]}"; do kill -KILL "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$folder"
}
trap end EXIT

# Each in the background, with a log of its own.
start() {
  local name=$1
  shift
  "$@" >"$folder/slurm/$name.out" 2>&1 &
  started+=($!)
}
# A node counts its processes apart, as a machine would, and they end with it. The shell, which is its
# first process, takes in those whose parents have ended.
start_node() {
  start "$1" unshare --pid --fork --kill-child --mount-proc \
    bash -c 'slurmd -D -N "$1"; exit' bash "$1"
}

# wait_for SECONDS WHAT COMMAND...
wait_for() {
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    ((SECONDS < end)) || fail "$what takes too long"
    sleep 0.05
  done
}

mkdir -p "$folder"/slurm/{state,run}
chmod 755 "$folder" "$folder/slurm" "$folder/slurm/run"
mapfile -t ports < <(python3 -c '
import socket
sockets = [socket.socket() for _ in range(3)]
for one in sockets: one.bind(("127.0.0.1", 0))
for one in sockets: print(one.getsockname()[1])')
host=$(hostname -s)
export SLURM_CONF=$folder/slurm/slurm.conf
cat >"$SLURM_CONF" <<CONF
ClusterName=voxtest
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/slurm/run/munge.socket,cred_expire=5
CredType=cred/munge
SlurmctldPort=${ports[0]}
StateSaveLocation=$folder/slurm/state
SlurmdSpoolDir=$folder/slurm/spool-%n
SlurmctldPidFile=$folder/slurm/run/slurmctld.pid
SlurmdPidFile=$folder/slurm/run/slurmd-%n.pid
SlurmctldLogFile=$folder/slurm/slurmctld.log
SlurmdLogFile=$folder/slurm/slurmd-%n.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
MpiDefault=none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SlurmdParameters=config_overrides
SlurmdTimeout=4
MessageTimeout=2
TCPTimeout=1
KillWait=2
SchedulerParameters=sched_interval=1,bf_interval=1
NodeName=one NodeAddr=127.0.0.1 NodeHostname=$host Port=${ports[1]} CPUs=2
NodeName=two NodeAddr=127.0.0.1 NodeHostname=$host Port=${ports[2]} CPUs=2
PartitionName=all Nodes=one,two Default=YES MaxTime=INFINITE State=UP
CONF

dd if=/dev/urandom of="$folder/slurm/munge.key" bs=1024 count=1 status=none
chmod 400 "$folder/slurm/munge.key"
start munged munged --foreground --force --key-file="$folder/slurm/munge.key" \
  --socket="$folder/slurm/run/munge.socket" --pid-file="$folder/slurm/run/munged.pid" \
  --log-file="$folder/slurm/munged.log" --seed-file="$folder/slurm/munged.seed"
wait_for 20 munged test -S "$folder/slurm/run/munge.socket"
start slurmctld slurmctld -D
start_node one
start_node two
node_two=${started[-1]}
make_archive "$files" 9
idle() { [[ $(sinfo -h -o %T 2>/dev/null | sort -u) == idle ]]; }
wait_for 60 Slurm idle

export VOXTOOL=$voxtool
work=$folder/archive.db.work
begun() { compgen -G "$folder/out/*/*.hrn" >/dev/null; }
none() { [[ -z $(squeue -h) ]]; }
"$here/../../archive/slurm/convert.sh" -n 10 "$folder/archive.db"
wait_for 60 "the first target" begun
"$here/../../archive/slurm/convert.sh" -n 10 "$folder/archive.db" 2>"$folder/told" &&
  fail "a second start divides the same work"
[[ $(<"$folder/told") == "convert.sh: $work: another start is at work there" ]] ||
  fail "a second start is refused with: $(<"$folder/told")"
# Everything is cancelled, the last job first, and started again, as if the second round had begun.
scancel -t PENDING -u "$(id -un)"
scancel -u "$(id -un)"
wait_for 60 "what is cancelled" none
mv "$work/round-1" "$work/round-2"
"$here/../../archive/slurm/convert.sh" -n 10 "$folder/archive.db"

# Sets piece and process to a piece that has begun and the process that works on it.
working() {
  local number
  for number in $(squeue -h -t R -n voxtool -o %K "$@"); do
    piece=$work/round-1/piece-$number.db
    process=$(process_of "$piece")
    [[ -n $process && $number != "${before:-}" ]] && before=$number && return
  done
  return 1
}
wait_for 60 "the first task" working
kill -KILL "$process"
wait_for 60 "another task" working
scancel "$(squeue -h -t R -n voxtool -o '%K %i' | sed -n "s/^$before //p")"
wait_for 60 "a task on the second node" working -w two
kill -KILL "$node_two"

# Where thousands of jobs wait, and where nobody tells which ones do.
mkdir "$folder/fake"
printf '#!/bin/sh\necho "%s"\nseq 100000\n' "$work" >"$folder/fake/squeue"
chmod +x "$folder/fake/squeue"
PATH=$folder/fake:$PATH "$here/../../archive/slurm/convert.sh" "$folder/archive.db" 2>"$folder/told" &&
  fail "a long queue hides the first start"
[[ $(<"$folder/told") == *"another start is at work there" ]] || fail "told: $(<"$folder/told")"
printf '#!/bin/sh\nexit 1\n' >"$folder/fake/squeue"
PATH=$folder/fake:$PATH "$here/../../archive/slurm/convert.sh" "$folder/archive.db" &&
  fail "a second start does not need to know the queue"

reported() { [[ -e $work/report.txt && $(head -n 1 "$work/report.txt") != 3 ]]; }
wait_for 240 "the report" reported
[[ $(head -n 1 "$work/report.txt") == 1 ]] || fail "the report does not say that files have failed"
expect_archive "$work/report.txt"
[[ $(sinfo -h -n two -o %T) == down* ]] || fail "the second node is not lost"
grep -q . "$work"/round-*/task-*.log || fail "the tasks have said nothing"
echo "slurm_test: $(find "$work" -maxdepth 1 -name 'round-*' | wc -l) rounds, after $SECONDS s"
