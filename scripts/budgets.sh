#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Fails when something takes over a tenth more instructions than bench/counted/budgets.txt allows, so
# that speed is not lost without being noticed. Instructions are counted, so other work on the
# machine changes nothing. What has become faster than its budget by a tenth is printed, too: its
# budget can be lowered.
#
#   scripts/budgets.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-deps.sh budgets

cmake --preset library -B build/library-alone -DVOXPLAY_COUNTED=ON >/dev/null
cmake --build build/library-alone --parallel "$(nproc)" --target counted >/dev/null
export VOXPLAY_COUNTED=build/library-alone/bin/counted

failed=0
for instructions in avx2 base plain; do
  if [[ $instructions == avx2 ]] && ! grep -qw bmi2 /proc/cpuinfo; then continue; fi
  mapfile -t subjects < <(awk -v set="$instructions" '$1 == set { print $2 }
    $1 == "door" && set == "avx2" { print $2 }' bench/counted/budgets.txt)
  ((${#subjects[@]})) || continue
  VOXPLAY_INSTRUCTIONS=$instructions bench/count.sh "${subjects[@]}" |
    awk -v set="$instructions" '
      NR == FNR { if ($1 == set) budget[$2] = $3; if ($1 == "door" && set == "avx2") inside[$2] = $3; next }
      { counted[$1] = $3 }
      END {
        for (subject in budget) {
          share = subject in counted ? counted[subject] / budget[subject] : 99
          printf "%-6s %-24s %12.2f %12.2f  %s\n", set, subject, counted[subject], budget[subject],
            (share > 1.1 ? "too many" : (share < 0.9 ? "fewer" : "as expected"))
          if (share > 1.1) bad = 1
        }
        for (subject in inside) {
          share = subject in counted && inside[subject] in counted ? counted[subject] / counted[inside[subject]] : 99
          printf "door   %-24s %12.2f %12.2f  %s\n", subject, counted[subject], counted[inside[subject]],
            (share > 1.05 ? "too many" : "as expected")
          if (share > 1.05) bad = 1
        }
        exit bad
      }' bench/counted/budgets.txt - || failed=1
done
if ((failed)); then
  echo "budgets: too many instructions" >&2
  exit 1
fi
