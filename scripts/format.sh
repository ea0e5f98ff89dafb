#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Formats every source file in place. With --check it changes nothing and fails when a file would
# change.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

case "${1:-}" in
  '') how=(-i) ;;
  --check) how=(--dry-run -Werror) ;;
  *)
    echo "usage: ${0##*/} [--check]" >&2
    exit 2
    ;;
esac
scripts/sources.sh | xargs -0 clang-format "${how[@]}"
