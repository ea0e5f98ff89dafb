// SPDX-License-Identifier: Apache-2.0
//
// The quantiser of a category and a power entry as thresholds: a coefficient's bin is the number of
// thresholds that its magnitude exceeds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kestrel/Configuration.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/TablesQuantiser.h"

namespace kestrel {

// Power entries of regions that are ready to be coded.
inline constexpr int kLowestPowerEntry = 7;
inline constexpr int kHighestPowerEntry = 40;
inline constexpr std::size_t kPowerEntries = kHighestPowerEntry - kLowestPowerEntry + 1;

// Where the thresholds of a category begin.
constexpr auto MakeFirstThresholds() {
  std::array<std::size_t, kCategories> first{};
  for (std::size_t k = 0; k < kNoiseCategory; ++k) first[k + 1] = first[k] + Index(kMaxBin[k]);
  return first;
}
inline constexpr auto kFirstThreshold = MakeFirstThresholds();
using S_Thresholds = std::array<std::int16_t, kFirstThreshold[kNoiseCategory]>;

// By power entry, from kLowestPowerEntry on. They are made from the quantiser's constants when
// TablesThresholds.cpp is compiled.
extern const std::array<S_Thresholds, kPowerEntries> kThresholds;

}  // namespace kestrel
