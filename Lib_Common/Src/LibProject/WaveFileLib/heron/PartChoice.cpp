// SPDX-License-Identifier: Apache-2.0
#include "heron/PartChoice.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "heron/FixedPoint.h"
#include "heron/Loudness.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

// What a part takes beside its coefficients: its kind, its step index, and contexts that begin
// again. In units of 1/256 bit; measured over whole sounds.
constexpr std::int64_t kPartPrice = 8 * 256;
// A plain part leaves its neighbours without an overlap. It has to be this much better.
constexpr std::int64_t kPlainPrice = 40 * 256;

// The loudness that a part is judged by is that of this many units around its middle.
constexpr std::size_t kReferenceUnits = 12;

// Adds up log2(1 + value) of values in half steps: an estimate of the bits of a coefficient. The
// product of all numbers is kept as a mantissa of 32 bits and an exponent.
class C_Bits {
 public:
  void Add(std::int64_t nScaled) noexcept {
    constexpr std::int64_t kOne = std::int64_t{1} << kScaledQ;
    constexpr std::int64_t kMost = (std::int64_t{1} << 31) - 1;
    m_qwMantissa *= static_cast<std::uint64_t>(std::min(nScaled + kOne, kMost));
    const int nUp = 32 - std::countl_zero(m_qwMantissa);
    m_qwMantissa >>= nUp;
    m_nExponent += nUp - kScaledQ;
  }
  // In units of 1/256 bit.
  [[nodiscard]] std::int64_t Total() const noexcept {
    return std::int64_t{m_nExponent} * 256 + Log2Q8(m_qwMantissa) - 31 * 256;
  }

 private:
  std::uint64_t m_qwMantissa = std::uint64_t{1} << 31;
  int m_nExponent = 0;
};

}  // namespace

C_PartChoice::C_PartChoice(int nSampleRate, int nSlope, int nOffset)
    : m_nUnitLength(UnitLength(nSampleRate)),
      m_nSlope(nSlope),
      m_nOffset(nOffset),
      m_transforms(m_nUnitLength),
      m_values(m_nUnitLength * kSectionUnits) {}

void C_PartChoice::Choose(std::span<const std::int16_t> samples, std::size_t nCount,
                          std::vector<C_Division>& divisions) {
  m_samples = samples;
  m_nCount = nCount;
  m_energies.assign(1, 0);
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += m_nUnitLength) {
    std::uint64_t qwEnergy = m_energies.back();
    for (const int nSample : samples.subspan(nAt, m_nUnitLength)) {
      qwEnergy += static_cast<std::uint64_t>(nSample * nSample);
    }
    m_energies.push_back(qwEnergy);
  }
  for (std::size_t nUnit = 0; nUnit * m_nUnitLength < samples.size(); nUnit += kSectionUnits) {
    C_Division division;
    static_cast<void>(PriceOf(1, nUnit, kPartSizes - 1, division));
    divisions.push_back(division);
  }
}

std::int64_t C_PartChoice::PriceOf(std::size_t nNode, std::size_t nUnit, std::size_t nSize,
                                   C_Division& division) {
  if (nUnit * m_nUnitLength >= m_nCount) return 0;
  const std::int64_t nWhole = PriceOfPart(nUnit, nSize);
  if (nSize == 0) {
    const std::int64_t nPlain = PriceOfPlain(nUnit) + kPlainPrice;
    if (nPlain < nWhole) division.Mark(nNode);
    return std::min(nPlain, nWhole);
  }
  const std::size_t nHalf = std::size_t{1} << (nSize - 1);
  C_Division split = division;
  split.Mark(nNode);
  const std::int64_t nHalves = PriceOf(2 * nNode, nUnit, nSize - 1, split) +
                               PriceOf(2 * nNode + 1, nUnit + nHalf, nSize - 1, split);
  if (nHalves < nWhole) division = split;
  return std::min(nHalves, nWhole);
}

// Every size is judged as if its neighbours had it too. With the real overlaps, which depend on
// all other choices, the choice is no better.
std::int64_t C_PartChoice::PriceOfPart(std::size_t nUnit, std::size_t nSize) {
  const std::size_t nLength = m_nUnitLength << nSize;
  const std::size_t nAt = nUnit * m_nUnitLength;
  const auto laps = m_transforms.Laps(nSize);
  const std::span values(m_values.data(), nLength);
  Fold(m_samples,
       {nAt, nLength, nAt == 0 ? std::span<const S_Lap>() : laps,
        nAt + nLength == m_samples.size() ? std::span<const S_Lap>() : laps},
       values);
  m_transforms.Dct(nSize).Forward(values);
  const C_ToHalfSteps toHalfSteps(StepAt(nUnit, nSize));
  C_Bits bits;
  for (const std::int32_t nValue : values) bits.Add(toHalfSteps(std::abs(nValue)));
  return bits.Total() + kPartPrice;
}

std::int64_t C_PartChoice::PriceOfPlain(std::size_t nUnit) const {
  const C_ToHalfSteps toHalfSteps(StepAt(nUnit, 0));
  const std::size_t nAt = nUnit * m_nUnitLength;
  C_Bits bits;
  for (const int nSample :
       m_samples.subspan(nAt, std::min(m_nUnitLength, m_nCount - nAt))) {
    bits.Add(toHalfSteps(std::abs(nSample) << kCoefficientQ));
  }
  return bits.Total() + kPartPrice;
}

int C_PartChoice::StepAt(std::size_t nUnit, std::size_t nSize) const {
  const std::size_t nUnits = m_energies.size() - 1;
  const std::size_t nAround = std::max(kReferenceUnits, std::size_t{1} << nSize);
  const std::size_t nMiddle = nUnit + (std::size_t{1} << nSize) / 2;
  const std::size_t nFirst = nMiddle - std::min(nMiddle, nAround / 2);
  const std::size_t nEnd = std::min(nMiddle + nAround / 2, nUnits);
  const int nLoudness = Loudness(m_energies[nEnd] - m_energies[nFirst],
                                 (nEnd - nFirst) * m_nUnitLength);
  return std::clamp((WantedStep(nLoudness, m_nSlope, m_nOffset) + 128) >> 8, 0, kSteps - 1);
}

}  // namespace heron
