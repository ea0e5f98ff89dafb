#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Trains the tables of the Heron codec on folders of speech (16-bit mono WAV files) and writes them
# to heron/Tables.h. It starts from the tables in that file; three rounds are enough from any
# starting point.
#
#   training/train_heron.sh FOLDER...
#
# The tables in the tree were trained on what make_speech.sh makes. Installs what it needs.
set -euo pipefail
(($#)) || { echo "usage: train_heron.sh FOLDER..." >&2; exit 2; }
cd "$(dirname "${BASH_SOURCE[0]}")/.."
tables=Lib_Common/Src/LibProject/WaveFileLib/heron/Tables.h
mapfile -d '' sounds < <(find "$@" -name '*.wav' -print0 | LC_ALL=C sort -z)

scripts/install-deps.sh training
cmake --preset bench >/dev/null
for round in 1 2 3; do
  cmake --build build/bench --parallel "$(nproc)" --target heron_tables >/dev/null
  # The beginning of the file stays; everything after its last fixed line is written again.
  {
    sed '/^using S_MagnitudeFrequencies/q' "$tables"
    echo
    build/bench/bin/heron_tables "${sounds[@]}"
    printf '\n}  // namespace heron\n'
  } >"$tables.new"
  mv "$tables.new" "$tables"
  clang-format -i "$tables"
  echo "round $round done"
done
