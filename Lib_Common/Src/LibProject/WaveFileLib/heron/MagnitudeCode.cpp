// SPDX-License-Identifier: Apache-2.0
#include "heron/MagnitudeCode.h"

#include "heron/FixedPoint.h"

namespace heron {
namespace {

using S_Frequencies = std::array<std::uint16_t, kMagnitudeSymbols>;

template <typename T_Out, typename T_Convert>
constexpr auto ForEachTable(T_Convert convert) {
  std::array<std::array<T_Out, kMagnitudeTables>, kQuantisers> out{};
  for (std::size_t q = 0; q < kQuantisers; ++q) {
    for (std::size_t n = 0; n < kMagnitudeTables; ++n)
      out[q][n] = convert(kMagnitudeFrequencies[q][n]);
  }
  return out;
}

constexpr S_MagnitudeCosts CostsOf(const S_Frequencies& frequencies) {
  S_MagnitudeCosts costs{};
  for (std::size_t n = 0; n < kMagnitudeSymbols; ++n)
    costs[n] = static_cast<std::uint16_t>(kFrequencyBits * 256 - Log2Q8(frequencies[n]));
  return costs;
}

void WriteLongRaw(C_RangeEncoder& encoder, std::uint32_t nValue, int nBits) {
  if (nBits > kMaxRawBits) {
    encoder.WriteRaw(nValue >> kMaxRawBits, nBits - kMaxRawBits);
    nBits = kMaxRawBits;
  }
  if (nBits > 0) encoder.WriteRaw(nValue & ((1u << nBits) - 1), nBits);
}

std::uint32_t ReadLongRaw(C_RangeDecoder& decoder, int nBits) noexcept {
  std::uint32_t nHigh = 0;
  if (nBits > kMaxRawBits) {
    nHigh = decoder.ReadRaw(nBits - kMaxRawBits) << kMaxRawBits;
    nBits = kMaxRawBits;
  }
  return nBits > 0 ? nHigh | decoder.ReadRaw(nBits) : nHigh;
}

}  // namespace

constexpr std::array<std::array<S_MagnitudeCumulative, kMagnitudeTables>, kQuantisers>
    kMagnitudeCumulative = ForEachTable<S_MagnitudeCumulative>(Accumulate<kMagnitudeSymbols>);
constexpr std::array<std::array<S_MagnitudeCosts, kMagnitudeTables>, kQuantisers> kMagnitudeCosts =
    ForEachTable<S_MagnitudeCosts>(CostsOf);

void WriteEscape(C_RangeEncoder& encoder, std::uint32_t nExcess) {
  const int nRest = 31 - std::countl_zero(nExcess);
  for (int n = 0; n < nRest; ++n) encoder.WriteRaw(0, 1);
  encoder.WriteRaw(1, 1);
  WriteLongRaw(encoder, nExcess & ((1u << nRest) - 1), nRest);
}

std::uint32_t ReadEscape(C_RangeDecoder& decoder) noexcept {
  int nRest = 0;
  while (!decoder.ReadBit()) {
    if (++nRest >= kLevelBits) return 0;
  }
  return 1u << nRest | ReadLongRaw(decoder, nRest);
}

void WriteLevel(C_RangeEncoder& encoder, int nQuantiser, const S_MagnitudeClass& magnitudeClass,
                std::int32_t nLevel, bool bNegative) {
  const auto& cumulative =
      kMagnitudeCumulative[static_cast<std::size_t>(nQuantiser)][magnitudeClass.nTable];
  const auto nValue = static_cast<std::uint32_t>(nLevel);
  const std::uint32_t nTop = nValue >> magnitudeClass.nShift;
  const std::size_t nSymbol = std::min(nTop, kEscapeSymbol);
  encoder.WriteSymbol(cumulative[nSymbol],
                      static_cast<std::uint32_t>(cumulative[nSymbol + 1] - cumulative[nSymbol]));
  if (nSymbol == kEscapeSymbol) WriteEscape(encoder, nTop - kEscapeSymbol + 1);
  WriteLongRaw(encoder, nValue, magnitudeClass.nShift);
  if (nLevel != 0) encoder.WriteRaw(bNegative ? 1 : 0, 1);
}

}  // namespace heron
