#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds the module for Python and tests it: pytest, the examples in its documentation, the tutorial,
# and mypy. It can be imported afterwards with PYTHONPATH=build/library-alone/python.
#
#   scripts/python.sh [PYTEST ARGUMENTS...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh python

# The library is that of scripts/consumers.sh.
cmake --preset library -B build/library-alone -DVOXPLAY_PYTHON=ON
cmake --build build/library-alone --parallel "$(nproc)" --target voxplay_python

# Debian's Python has Debian's packages.
python=/usr/bin/python3
export PYTHONPATH=$PWD/build/library-alone/python PYTHONDONTWRITEBYTECODE=1
"$python" -m pytest -q -p no:cacheprovider "$@" tests/python
"$python" -m mypy --strict --no-incremental --cache-dir=/dev/null python/voxplay
