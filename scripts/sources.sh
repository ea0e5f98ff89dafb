#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Lists the C++ files of the project, relative to its root and sorted, each followed by a NUL.
#
#   scripts/sources.sh [SUFFIX...]     (cpp and h unless given)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

names=()
for suffix in "${@:-cpp}"; do names+=(-o -name "*.$suffix"); done
(($#)) || names+=(-o -name '*.h')
find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print0 |
  LC_ALL=C sort -z
