#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the reference of voxplay.h and voxplay.hpp in build/docs/html. A warning is an error.
#
#   scripts/docs.sh                installs doxygen first, if it is missing
#   scripts/docs.sh --no-install   does not
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [[ ${1:-} != --no-install ]]; then scripts/install-deps.sh docs; fi
rm -rf build/docs
mkdir -p build/docs
doxygen docs/Doxyfile
cp docs/FORMATS.md docs/HERON.md build/docs/
