// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Envelope.h"

#include <algorithm>
#include <cstddef>

#include "kestrel/BasicOperators.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/Transform.h"

namespace kestrel {
namespace {

constexpr int kLowestFirstPower = -6;
constexpr int kSteepestRise = 11;

std::int32_t Energy(S_ConstRegion region) {
  std::int64_t nEnergy = 0;
  for (const std::int16_t nValue : region) nEnergy += std::int64_t{nValue} * nValue;
  return Saturate32(nEnergy);
}

// Only damaged frames have entries outside the table, and they are never played.
std::int16_t StandardDeviation(int nEntry) {
  const bool bInside = nEntry >= 0 && nEntry < static_cast<int>(kStandardDeviation.size());
  return bInside ? kStandardDeviation[Index(nEntry)] : std::int16_t{0};
}

}  // namespace

int RegionPower(S_ConstRegion region, int nShift) noexcept {
  std::int32_t nMantissa = Energy(region);
  int nPower = 0;
  for (; nMantissa > 0xFFFF; ++nPower) nMantissa >>= 1;
  for (; nMantissa <= 32767 && nPower >= -15; --nPower) nMantissa *= 2;
  if (nMantissa >> 1 >= kRoundPowerUpFrom) ++nPower;
  return nPower - 2 * nShift + 11;
}

S_Envelope MeasureEnvelope(const S_Frame& coefficients, int nShift, int nRegions) noexcept {
  S_Envelope envelope{};
  for (std::size_t r = 0; r < Index(nRegions); ++r) {
    envelope[r] = RegionPower(RegionOf(coefficients, r), nShift);
  }
  return envelope;
}

void ShapeEnvelope(S_Envelope& envelope, int nRegions) noexcept {
  for (std::size_t r = Index(nRegions - 1); r-- > 0;) {
    envelope[r] = std::max(envelope[r], envelope[r + 1] - kSteepestRise);
  }
  envelope[0] = std::clamp(envelope[0], kLowestFirstPower, kHighestPower);
  for (std::size_t r = 1; r < Index(nRegions); ++r) {
    envelope[r] = std::clamp(envelope[r], kLowestPower, kHighestPower);
  }
}

void WriteEnvelope(C_BitWriter& writer, S_Envelope& envelope, int nRegions) noexcept {
  writer.Put(static_cast<std::uint32_t>(envelope[0] + kFirstPowerOffset), kFirstPowerBits);
  for (std::size_t r = 1; r < Index(nRegions); ++r) {
    const int nStep = std::max(envelope[r] - envelope[r - 1], kLowestPowerStep);
    const S_Code code = kPowerStepCodes[r - 1][Index(nStep - kLowestPowerStep)];
    writer.Put(code.wWord, code.byBits);
    envelope[r] = envelope[r - 1] + nStep;
  }
}

S_Envelope ReadEnvelope(C_BitReader& reader, int nRegions) noexcept {
  S_Envelope envelope{};
  envelope[0] = reader.Bits(kFirstPowerBits) - kFirstPowerOffset;
  for (std::size_t r = 1; r < Index(nRegions); ++r) {
    const int nSymbol = DecodeSymbol(kPowerStepTrees[r - 1], [&] { return reader.Bit(); });
    envelope[r] = envelope[r - 1] + nSymbol + kLowestPowerStep;
  }
  return envelope;
}

bool IsValidEnvelope(const S_Envelope& envelope, int nRegions) noexcept {
  return std::all_of(envelope.begin(), envelope.begin() + nRegions,
                     [](int nPower) { return nPower >= kLowestPower && nPower <= kHighestPower; });
}

S_Scale ScaleOf(const S_Envelope& envelope, int nRegions) noexcept {
  std::int16_t nSum = 0;
  int nTop = 0;
  for (int r = 0; r < nRegions; ++r) {
    const int nEntry = envelope[Index(r)] + kPowerIndexZero;
    nSum = Add(nSum, StandardDeviation(nEntry));
    nTop = std::max(nTop, nEntry);
  }
  S_Scale scale{.nShift = kHighestShift, .deviation = {}};
  for (; scale.nShift >= 0 && (nSum >= 8 || nTop > 28); --scale.nShift, nTop -= 2) {
    nSum = static_cast<std::int16_t>(nSum >> 1);
  }
  for (int r = 0; r < nRegions; ++r) {
    scale.deviation[Index(r)] =
        StandardDeviation(envelope[Index(r)] + kPowerIndexZero + 2 * scale.nShift);
  }
  return scale;
}

}  // namespace kestrel
