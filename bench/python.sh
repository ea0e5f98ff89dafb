#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Measures the module for Python; see bench/python.py.
#
#   bench/python.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh python
cmake --preset library -B build/library-alone -DVOXPLAY_PYTHON=ON >/dev/null
cmake --build build/library-alone --parallel "$(nproc)" --target voxplay_python >/dev/null
PYTHONPATH=$PWD/build/library-alone/python LD_LIBRARY_PATH=$PWD/build/library-alone \
  /usr/bin/python3 bench/python.py
