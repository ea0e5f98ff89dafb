#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Checks that programs and archives of a release build have the protections of
# cmake/VoxplayHardening.cmake.
#
#   scripts/check-hardening.sh FILE...
set -euo pipefail
export LC_ALL=C
failed=0
fail() {
  echo "check-hardening: $*" >&2
  failed=1
}

# Counts the lines of standard input that match.
count() { grep -cE "$1" || true; }

# What is marked for jumps and returns is each object of an archive: a program has the mark only when
# the system's own start-up objects have it.
check_archive() {
  local file=$1 mark=$2 objects marked
  objects=$(readelf -h "$file" | count '^ +Type: +REL')
  marked=$(readelf -nW "$file" 2>/dev/null | count "$mark")
  ((objects > 0 && marked == objects)) || fail "$file: $marked of $objects objects are marked $mark"
}

check_program() {
  local file=$1 dynamic
  dynamic=$(readelf -dW "$file")
  [[ $file == *.so* || $dynamic == *PIE* ]] || fail "$file: not PIE"
  [[ $dynamic == *BIND_NOW* || $dynamic == *"Flags: NOW"* ]] || fail "$file: no BIND_NOW"
  [[ $(readelf -lW "$file") == *GNU_RELRO* ]] || fail "$file: no GNU_RELRO"
  local imported
  imported=$(readelf --dyn-syms -W "$file")
  [[ $imported == *__stack_chk_fail* ]] || fail "$file: no stack protector"
  (($(grep -v __stack_chk <<<"$imported" | count '__[a-z]+_chk(@|$)'))) ||
    fail "$file: no fortified calls"
}

(($#)) || {
  echo "usage: ${0##*/} FILE..." >&2
  exit 2
}
for file in "$@"; do
  case $(readelf -h "$file" | sed -n 's/^ *Machine: *//p;T;q') in
    *X86-64*) mark='IBT, SHSTK' ;;
    *AArch64*) mark='BTI, PAC' ;;
    *) mark= ;;
  esac
  if [[ $file != *.a ]]; then
    check_program "$file"
  elif [[ -n $mark ]]; then
    check_archive "$file" "$mark"
  fi
done
exit "$failed"
