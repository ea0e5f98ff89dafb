// SPDX-License-Identifier: Apache-2.0
#include "heron/MagnitudeCode.h"

#include "heron/FixedPoint.h"

namespace heron {
namespace {

template <typename Row, typename Convert>
constexpr auto ForEachTable(Convert convert) {
  S_MagnitudeRows<Row> rows{};
  for (std::size_t n = 0; n < kMagnitudeTables; ++n) {
    for (std::size_t q = 0; q < kQuantisers; ++q) rows[n][q] = convert(kMagnitudeFrequencies[q][n]);
  }
  return rows;
}

constexpr S_MagnitudeCosts CostsOf(const S_MagnitudeFrequencies& frequencies) {
  S_MagnitudeCosts costs{};
  for (std::size_t n = 0; n < kMagnitudeSymbols; ++n) {
    costs[n] = static_cast<std::uint16_t>(kFrequencyBits * 256 - Log2Q8(frequencies[n]));
  }
  return costs;
}

}  // namespace

constexpr S_MagnitudeRows<S_MagnitudeCumulative> kMagnitudeCumulative =
    ForEachTable<S_MagnitudeCumulative>(Accumulate<kMagnitudeSymbols>);
static_assert(std::ranges::all_of(kMagnitudeCumulative, [](const auto& ofQuantisers) {
  return std::ranges::all_of(ofQuantisers, IsWhole<kMagnitudeSymbols>);
}));
constexpr S_MagnitudeRows<S_MagnitudeCosts> kMagnitudeCosts =
    ForEachTable<S_MagnitudeCosts>(CostsOf);

void WriteEscape(C_EntropyEncoder& encoder, std::uint32_t nExcess) {
  const int nRest = 31 - std::countl_zero(nExcess);
  for (int n = 0; n < nRest; ++n) encoder.WriteRaw(0, 1);
  encoder.WriteRaw(1, 1);
  encoder.WriteRaw(nExcess & ((1u << nRest) - 1), nRest);
}

std::uint64_t ReadEscape(C_EntropyDecoder& decoder) noexcept {
  int nRest = 0;
  while (decoder.ReadRaw(1) == 0) {
    if (++nRest > kLevelBits) return std::uint64_t{1} << 32;
  }
  return std::uint64_t{1} << nRest | decoder.ReadRaw(nRest);
}

void WriteLevel(C_EntropyEncoder& encoder, std::size_t nQuantiser,
                const S_MagnitudeClass& magnitudeClass, std::int32_t nLevel, bool bNegative) {
  const auto& cumulative = kMagnitudeCumulative[magnitudeClass.nTable][nQuantiser];
  const auto nValue = static_cast<std::uint32_t>(nLevel);
  const std::uint32_t nTop = nValue >> magnitudeClass.nShift;
  const std::size_t nSymbol = std::min(nTop, kEscapeSymbol);
  encoder.WriteSymbol(cumulative, nSymbol);
  if (nSymbol == kEscapeSymbol) WriteEscape(encoder, nTop - kEscapeSymbol + 1);
  encoder.WriteRaw(nValue & ((1u << magnitudeClass.nShift) - 1), magnitudeClass.nShift);
  if (nLevel != 0) encoder.WriteRaw(bNegative ? 1 : 0, 1);
}

}  // namespace heron
