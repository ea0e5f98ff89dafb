// SPDX-License-Identifier: Apache-2.0
#include "heron/TrellisCosts.h"

namespace heron {

constexpr std::array<S_MagnitudePrices, kModels> kMagnitudePrices = [] {
  std::array<S_MagnitudePrices, kModels> prices{};
  for (std::size_t m = 0; m < kModels; ++m) {
    for (std::size_t n = 0; n < kMagnitudeTables; ++n) {
      for (std::size_t q = 0; q < kQuantisers; ++q) {
        for (std::size_t s = 0; s < kMagnitudeSymbols; ++s) {
          prices[m][n][q][s] = kBitWeight * SymbolCost(kMagnitudeFrequencies[m][q][n][s]);
        }
      }
    }
  }
  return prices;
}();

}  // namespace heron
