// SPDX-License-Identifier: Apache-2.0
#include "kestrel/TablesThresholds.h"

#include <algorithm>

namespace kestrel {
namespace {

// The quantiser rounds twice: the bin of a magnitude m is
//
//   (m * (q >> 2) + o + (m * (q & 3) + p >> 2)) >> 13
//
// where q is the inverse of the step in Q15, and o and p are the rounding offset in Q13 and two
// bits below it. All numbers are whole and none is negative, so both divisions are one: (m * q + 4
// * o + p) >> 15. That rises with m, so each bin has a smallest magnitude.
constexpr std::int16_t LargestBelowBin(std::size_t nCategory, std::size_t nPowerEntry, int nBin) {
  constexpr std::int64_t kHighest = 32767;
  const std::int64_t nInverse =
      (kStepSizeInverse[nCategory] * kStandardDeviationInverse[nPowerEntry] + 4096) >> 13;
  if (nInverse == 0) return kHighest;
  const std::int64_t nOffset = 4 * kDeadZone[nCategory] + kDeadZoneLowBits[nCategory];
  const std::int64_t nSmallest = ((std::int64_t{nBin} << 15) - nOffset + nInverse - 1) / nInverse;
  return static_cast<std::int16_t>(std::min(nSmallest - 1, kHighest));
}

constexpr auto MakeThresholds() {
  std::array<S_Thresholds, kPowerEntries> thresholds{};
  for (std::size_t nEntry = 0; nEntry < kPowerEntries; ++nEntry) {
    for (std::size_t k = 0; k < kNoiseCategory; ++k) {
      for (int nBin = 1; nBin <= kMaxBin[k]; ++nBin) {
        thresholds[nEntry][kFirstThreshold[k] + Index(nBin - 1)] =
            LargestBelowBin(k, nEntry + kLowestPowerEntry, nBin);
      }
    }
  }
  return thresholds;
}

}  // namespace

constexpr decltype(kThresholds) kThresholds = MakeThresholds();

}  // namespace kestrel
