#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Builds a program and an archive without any protection, and expects scripts/check-hardening.sh to
# miss each of them.
#
#   tests/scripts/check-hardening-test.sh COMPILER
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

echo 'int main() { return 0; }' >plain.cpp
"$1" -U_FORTIFY_SOURCE -fno-stack-protector -no-pie -fno-pie -Wl,-z,norelro,-z,lazy plain.cpp -o plain
"$1" -U_FORTIFY_SOURCE -fno-stack-protector -c plain.cpp -o plain.o
ar rc plain.a plain.o

failed=0
# expect FILE TEXT...: the check of the file must fail and say these texts.
expect() {
  local file=$1 output text
  shift
  if output=$("$root/scripts/check-hardening.sh" "$file" 2>&1); then
    echo "check-hardening-test: $file passes" >&2
    failed=1
  fi
  for text in "$@"; do
    [[ $output == *"$text"* ]] && continue
    printf 'check-hardening-test: of %s, "%s" is missing from:\n%s\n' "$file" "$text" "$output" >&2
    failed=1
  done
}
expect plain "not PIE" "no BIND_NOW" "no GNU_RELRO" "no stack protector" "no fortified calls"
case $(uname -m) in
  x86_64) expect plain.a "0 of 1 objects are marked IBT, SHSTK" ;;
  aarch64) expect plain.a "0 of 1 objects are marked BTI, PAC" ;;
esac
exit "$failed"
