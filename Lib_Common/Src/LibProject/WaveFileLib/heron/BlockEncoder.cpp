// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockEncoder.h"

#include <algorithm>

#include "heron/EntropyCoder.h"
#include "heron/Loudness.h"
#include "heron/StepPath.h"

namespace heron {
namespace {

// The loudness of a part, from its coefficients.
int LoudnessOf(std::span<const std::int32_t> coefficients) noexcept {
  std::uint64_t qwSquares = 0;
  for (const std::int64_t nCoefficient : coefficients) {
    qwSquares += static_cast<std::uint64_t>(nCoefficient * nCoefficient);
  }
  return Loudness(qwSquares >> 2 * kCoefficientQ, coefficients.size());
}

}  // namespace

C_BlockEncoder::C_BlockEncoder(int nSampleRate, int nSlope)
    : m_nUnitLength(UnitLength(nSampleRate)), m_nSlope(nSlope), m_transforms(m_nUnitLength) {}

void C_BlockEncoder::Take(std::span<const std::int16_t> samples, std::size_t nCount,
                          std::span<const C_Division> divisions) {
  m_nCount = nCount;
  m_parts.clear();
  m_splits.clear();
  for (std::size_t n = 0; n < divisions.size(); ++n) {
    m_splits.push_back(0);
    AddParts(divisions[n], 1, n * kSectionUnits, kPartSizes - 1);
    m_splits.pop_back();
  }
  Transform(samples);
}

// m_splits has one number more than m_parts while parts are added: the splits before the next part.
void C_BlockEncoder::AddParts(const C_Division& division, std::size_t nNode, std::size_t nUnit,
                              std::size_t nSize) {
  if (nUnit * m_nUnitLength >= m_nCount) return;
  if (nSize == 0 || !division.IsMarked(nNode)) {
    m_parts.push_back({nUnit, nSize,
                       division.IsMarked(nNode) ? E_PartKind::kPlain : E_PartKind::kNear});
    m_splits.push_back(0);
    return;
  }
  ++m_splits.back();
  AddParts(division, 2 * nNode, nUnit, nSize - 1);
  AddParts(division, 2 * nNode + 1, nUnit + (std::size_t{1} << (nSize - 1)), nSize - 1);
}

void C_BlockEncoder::Transform(std::span<const std::int16_t> samples) {
  m_values.resize(samples.size());
  m_loudness.clear();
  for (std::size_t n = 0; n < m_parts.size(); ++n) {
    const S_Part& part = m_parts[n];
    S_Lapped lapped{part.nUnit * m_nUnitLength, part.Units() * m_nUnitLength, {}, {}};
    if (n > 0) lapped.before = m_transforms.Between(m_parts[n - 1], part);
    if (n + 1 < m_parts.size()) lapped.after = m_transforms.Between(part, m_parts[n + 1]);
    const std::span values(m_values.data() + lapped.nAt, lapped.nLength);
    if (part.kind == E_PartKind::kPlain) {
      for (std::size_t k = 0; k < values.size(); ++k) {
        values[k] = std::int32_t{samples[lapped.nAt + k]} * (1 << kCoefficientQ);
      }
    } else {
      Fold(samples, lapped, values);
      m_transforms.Dct(part.nSize).Transform(values);
    }
    m_loudness.push_back(LoudnessOf(values));
  }
}

template <typename T_Sink>
S_RunCost C_BlockEncoder::Write(T_Sink& sink, const S_Coarseness& coarseness) const {
  std::vector<S_StepWish> wishes;
  for (std::size_t n = 0; n < m_parts.size(); ++n) {
    const bool bCoarser = m_parts[n].nUnit / kSectionUnits >= coarseness.nCoarserFrom;
    const int nOffset = bCoarser ? coarseness.nCoarser : coarseness.nOffset;
    wishes.push_back(
        {WantedStep(m_loudness[n], m_nSlope, nOffset), m_parts[n].Units() * m_nUnitLength});
  }
  const std::vector<int> steps = ChooseSteps(wishes);
  C_PartWriter<T_Sink> writer(sink, m_nUnitLength);
  for (std::size_t n = 0; n < m_parts.size(); ++n) {
    S_Part part = m_parts[n];
    part.nIndex = steps[n];
    const std::size_t nAt = part.nUnit * m_nUnitLength;
    std::size_t nLength = part.Units() * m_nUnitLength;
    for (std::size_t nSplit = m_splits[n]; nSplit > 0; --nSplit) {
      writer.WriteSplit(part.nSize + nSplit);
    }
    if (part.kind == E_PartKind::kPlain) nLength = std::min(nLength, m_nCount - nAt);
    writer.Write(part, {m_values.data() + nAt, nLength});
  }
  return {0, writer.Error(), writer.NonZero()};
}

std::vector<std::uint8_t> C_BlockEncoder::Run(const S_Coarseness& coarseness) const {
  std::vector<std::uint8_t> run;
  C_EntropyEncoder encoder(run);
  static_cast<void>(Write(encoder, coarseness));
  encoder.Finish();
  return run;
}

S_RunCost C_BlockEncoder::CostOfRun(const S_Coarseness& coarseness) const {
  C_SizeCounter counter;
  S_RunCost cost = Write(counter, coarseness);
  cost.nBytes = counter.Size();
  return cost;
}

}  // namespace heron
