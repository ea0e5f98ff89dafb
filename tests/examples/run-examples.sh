#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs the examples that stand in a folder, and fails when one does not do what it is there to show.
#
#   tests/examples/run-examples.sh FOLDER SAMPLE
#
# SAMPLE is samples/Test.kst.
set -euo pipefail
programs=$(cd "$1" && pwd)
sample=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
cd "$work"

expect() {
  local wanted=$1 got
  shift
  got=$("$@" 2>stderr) || {
    printf 'run-examples: %s fails: %s\n' "$*" "$(<stderr)" >&2
    exit 1
  }
  [[ $got == "$wanted" ]] || {
    printf 'run-examples: %s prints\n%s\ninstead of\n%s\n' "$*" "$got" "$wanted" >&2
    exit 1
  }
}
refuse() {
  ! "$@" >/dev/null 2>stderr || {
    echo "run-examples: $* does not fail" >&2
    exit 1
  }
  [[ -s stderr ]] || {
    echo "run-examples: $* does not say why it fails" >&2
    exit 1
  }
}

expect '' "$programs/write_progress" tone.vef
grep -qx '90 %' stderr || {
  echo "run-examples: write_progress tells no progress" >&2
  exit 1
}
expect '16000 Hz, 1 channels, 160000 frames, peak 8000' "$programs/read" tone.vef
expect $'frame,seconds,main,sub,data,description\n16000,1.000000,1,2,7,""' \
  "$programs/events_to_csv" tone.vef
expect 'heard 100 frames, 10 of them lost' "$programs/socket_stream"
refuse "$programs/read" missing.kst
refuse "$programs/write_progress" missing/tone.vef
expect '' "$programs/convert" "$sample" hello.wav
frames=$((($(stat -c %s hello.wav) - 44) / 2))
[[ $("$programs/read" hello.wav) == "16000 Hz, 1 channels, $frames frames, "* ]] || {
  echo "run-examples: read does not read what convert writes" >&2
  exit 1
}
expect '' "$programs/to_wav" tone.vef tone.wav
expect 'event   16000  1 2 0' "$programs/list_notes" tone.wav
expect 'event   16000  1 2 7' "$programs/list_notes" tone.vef
refuse "$programs/list_notes" missing.vef
