// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Noise.h"

#include <algorithm>
#include <cstddef>

#include "kestrel/BasicOperators.h"
#include "kestrel/TablesQuantiser.h"

namespace kestrel {

std::int16_t NextNoise(S_NoiseGenerator& generator) noexcept {
  auto& seeds = generator.seeds;
  int nNext = Wrap16(seeds[0] + seeds[3]);
  if (nNext < 0) ++nNext;
  std::shift_right(seeds.begin(), seeds.end(), 1);
  seeds[0] = static_cast<std::int16_t>(nNext);
  return seeds[0];
}

void FillWithNoise(S_NoiseGenerator& generator, int nCategory, std::int16_t nDeviation,
                   S_Region region) noexcept {
  if (nCategory < kFirstNoiseFillCategory) return;
  const auto nFactor = static_cast<std::size_t>(nCategory - kFirstNoiseFillCategory);
  const std::int16_t nLevel = MulQ15(nDeviation, kNoiseFillFactor[nFactor]);
  int nSigns = 0;
  for (std::size_t i = 0; i < kRegionSize; ++i) {
    // One random number supplies the signs for half a region; a coefficient that is kept does not
    // use up a sign.
    if (i % (kRegionSize / 2) == 0) nSigns = NextNoise(generator);
    if (nCategory < kNoiseCategory && region[i] != 0) continue;
    region[i] = (nSigns & 1) != 0 ? nLevel : Neg(nLevel);
    nSigns >>= 1;
  }
}

}  // namespace kestrel
