// SPDX-License-Identifier: Apache-2.0
#include "heron/PartChoice.h"

#include <algorithm>

#include "heron/Coefficients.h"
#include "heron/Loudness.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

// What a part takes beside its coefficients: its kind, its step index, and contexts that begin
// again. In units of 1/256 bit; measured over whole sounds.
constexpr std::int64_t kPartPrice = std::int64_t{8} * 256;
// A plain part leaves its neighbours without an overlap. It has to be this much better.
constexpr std::int64_t kPlainPrice = std::int64_t{40} * 256;

// When the halves of a part together are dearer than the part by more than this share of its price,
// quarters are not tried, unless plain units may be cheaper still. That saves a tenth of the work
// and costs 0.01 dB.
constexpr std::int64_t kHopeless = 20;

// The loudness that a part is judged by is that of this many units around its middle.
constexpr std::size_t kReferenceUnits = 12;

// The prices of all parts that a block may have.
class C_Prices {
 public:
  C_Prices(const S_BlockToDivide& block, C_Transforms& transforms, const S_SeeSection& fnSee)
      : m_block(block),
        m_nUnitLength(transforms.UnitLength()),
        m_transforms(transforms),
        m_fnSee(fnSee),
        m_values(m_nUnitLength * kSectionUnits) {
    m_energies.push_back(0);
    for (std::size_t nAt = 0; nAt < block.samples.size(); nAt += m_nUnitLength) {
      std::uint64_t qwEnergy = m_energies.back();
      for (const int nSample : block.samples.subspan(nAt, m_nUnitLength)) {
        qwEnergy += static_cast<std::uint64_t>(nSample * nSample);
      }
      m_energies.push_back(qwEnergy);
    }
  }

  std::int64_t OfSection(std::size_t nUnit, C_Division& division) {
    return Best(1, nUnit, kPartSizes - 1, OfPart(nUnit, kPartSizes - 1), division);
  }

 private:
  // The price of one node with all below it. Marks what makes it so low.
  std::int64_t Best(std::size_t nNode, std::size_t nUnit, std::size_t nSize, std::int64_t nWhole,
                    C_Division& division) {
    if (nUnit * m_nUnitLength >= m_block.nCount) return 0;
    if (nSize == 0) {
      const std::int64_t nPlain = OfPlain(nUnit, 0);
      if (nPlain < nWhole) division.Mark(nNode);
      return std::min(nPlain, nWhole);
    }
    const std::size_t nHalf = std::size_t{1} << (nSize - 1);
    const std::int64_t nFirst = OfPart(nUnit, nSize - 1);
    const std::int64_t nSecond = OfPart(nUnit + nHalf, nSize - 1);
    if (nFirst + nSecond > nWhole + nWhole / kHopeless && OfPlain(nUnit, nSize) > nWhole) {
      return nWhole;
    }
    C_Division split = division;
    split.Mark(nNode);
    const std::int64_t nHalves = Best(2 * nNode, nUnit, nSize - 1, nFirst, split) +
                                 Best(2 * nNode + 1, nUnit + nHalf, nSize - 1, nSecond, split);
    if (nHalves < nWhole) division = split;
    return std::min(nHalves, nWhole);
  }

  // Every size is judged as if its neighbours had it too. With the real overlaps, which depend on
  // all other choices, the choice is no better.
  std::int64_t OfPart(std::size_t nUnit, std::size_t nSize) {
    if (nUnit * m_nUnitLength >= m_block.nCount) return 0;
    const std::size_t nLength = m_nUnitLength << nSize;
    const std::size_t nAt = nUnit * m_nUnitLength;
    const auto laps = m_transforms.Laps(nSize);
    S_Lapped lapped{nAt, nLength, laps, laps};
    if (nAt == 0) lapped.before = {};
    if (nAt + nLength == m_block.samples.size()) lapped.after = {};
    const std::span values(m_values.data(), nLength);
    Fold(m_block.samples, lapped, values);
    m_transforms.Dct(nSize).Transform(values);
    const bool bSection = nSize == kPartSizes - 1;
    if (bSection && m_fnSee) m_fnSee(m_block.samples.subspan(nAt, nLength), values);
    return SumOfLogs(values, StepAt(nUnit, nSize)) + kPartPrice;
  }

  // Of plain units; what comes beside the samples counts only once.
  std::int64_t OfPlain(std::size_t nUnit, std::size_t nSize) {
    const std::size_t nAt = nUnit * m_nUnitLength;
    const std::span values(m_values.data(), std::min(m_nUnitLength << nSize, m_block.nCount - nAt));
    for (std::size_t k = 0; k < values.size(); ++k) {
      values[k] = std::int32_t{m_block.samples[nAt + k]} * (1 << kCoefficientQ);
    }
    const int nStep = StepAt(nUnit, nSize);
    // At the finest step there are bits to spare, and plain units lose nothing: a transform could
    // spread a click so thinly that it vanishes.
    return SumOfLogs(values, nStep) + kPartPrice + (nStep == 0 ? 0 : kPlainPrice);
  }

  [[nodiscard]] int StepAt(std::size_t nUnit, std::size_t nSize) const {
    const std::size_t nUnits = m_energies.size() - 1;
    const std::size_t nAround = std::max(kReferenceUnits, std::size_t{1} << nSize);
    const std::size_t nMiddle = nUnit + (std::size_t{1} << nSize) / 2;
    const std::size_t nFirst = nMiddle - std::min(nMiddle, nAround / 2);
    const std::size_t nEnd = std::min(nMiddle + nAround / 2, nUnits);
    const int nLoudness =
        Loudness(m_energies[nEnd] - m_energies[nFirst], (nEnd - nFirst) * m_nUnitLength);
    const int nWanted = WantedStep(nLoudness, m_block.nSlope, m_block.nOffset);
    return std::clamp((nWanted + 128) >> 8, 0, kSteps - 1);
  }

  const S_BlockToDivide& m_block;
  std::size_t m_nUnitLength;
  C_Transforms& m_transforms;
  const S_SeeSection& m_fnSee;
  std::vector<std::uint64_t> m_energies;  // [n]: of the units before unit n
  std::vector<std::int32_t> m_values;
};

}  // namespace

std::vector<C_Division> ChooseParts(const S_BlockToDivide& block, C_Transforms& transforms,
                                    const S_SeeSection& fnSee) {
  C_Prices prices(block, transforms, fnSee);
  const std::size_t nLength = transforms.UnitLength() * kSectionUnits;
  std::vector<C_Division> divisions(block.samples.size() / nLength);
  for (std::size_t n = 0; n < divisions.size(); ++n) {
    static_cast<void>(prices.OfSection(n * kSectionUnits, divisions[n]));
  }
  return divisions;
}

}  // namespace heron
