// SPDX-License-Identifier: Apache-2.0
#include "heron/MagnitudeCode.h"

namespace heron {
namespace {

template <typename Row, typename Convert>
constexpr auto ForEachTable(Convert convert) {
  std::array<S_MagnitudeRows<Row>, kModels> rows{};
  for (std::size_t m = 0; m < kModels; ++m) {
    for (std::size_t n = 0; n < kMagnitudeTables; ++n) {
      for (std::size_t q = 0; q < kQuantisers; ++q) {
        rows[m][n][q] = convert(kMagnitudeFrequencies[m][q][n]);
      }
    }
  }
  return rows;
}

constexpr S_MagnitudeCosts CostsOf(const S_MagnitudeFrequencies& frequencies) {
  S_MagnitudeCosts costs{};
  for (std::size_t n = 0; n < kMagnitudeSymbols; ++n) costs[n] = SymbolCost(frequencies[n]);
  return costs;
}

}  // namespace

constexpr std::array<S_MagnitudeRows<S_MagnitudeCumulative>, kModels> kMagnitudeCumulative =
    ForEachTable<S_MagnitudeCumulative>(Accumulate<kMagnitudeSymbols>);
static_assert(std::ranges::all_of(kMagnitudeCumulative, [](const auto& ofTables) {
  return std::ranges::all_of(ofTables, [](const auto& ofQuantisers) {
    return std::ranges::all_of(ofQuantisers, IsWhole<kMagnitudeSymbols>);
  });
}));
constexpr std::array<S_MagnitudeRows<S_MagnitudeCosts>, kModels> kMagnitudeCosts =
    ForEachTable<S_MagnitudeCosts>(CostsOf);

std::uint64_t ReadEscape(C_EntropyDecoder& decoder) noexcept {
  int nRest = 0;
  while (decoder.ReadRaw(1) == 0) {
    if (++nRest > kLevelBits) return std::uint64_t{1} << 32;
  }
  return std::uint64_t{1} << nRest | decoder.ReadRaw(nRest);
}

}  // namespace heron
