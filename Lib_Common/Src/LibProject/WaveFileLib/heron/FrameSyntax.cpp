// SPDX-License-Identifier: Apache-2.0
#include "heron/FrameSyntax.h"

#include <cstddef>
#include <cstdlib>

#include "heron/MagnitudeCode.h"
#include "heron/Quantiser.h"
#include "heron/StepSize.h"
#include "heron/Tables.h"

namespace heron {
namespace {

constexpr int kMostDifference = 15;
constexpr std::size_t kIndexEscape = 2 * kMostDifference + 1;
static_assert(kIndexEscape + 1 == kIndexSymbols);
constexpr int kIndexBits = 7;
constexpr auto kIndexCumulative = Accumulate(kIndexFrequencies);
static_assert(IsWhole(kIndexCumulative));

}  // namespace

C_FrameWriter::C_FrameWriter(int nLength)
    : m_before(nLength), m_trellis(nLength), m_levels(static_cast<std::size_t>(nLength)) {}

void C_FrameWriter::Write(C_EntropyEncoder& encoder, std::span<const std::int32_t> coefficients,
                          int nIndex) {
  WriteIndex(encoder, nIndex);
  m_before.Begin(nIndex);
  m_trellis.Search(coefficients, nIndex, m_before, m_levels);
  WriteLevels(encoder, coefficients);
  m_before.End(m_levels);
}

void C_FrameWriter::WriteIndex(C_EntropyEncoder& encoder, int nIndex) {
  const int nDifference = nIndex - m_nIndex;
  m_nIndex = nIndex;
  const bool bEscaped = std::abs(nDifference) > kMostDifference;
  const auto nSymbol =
      bEscaped ? kIndexEscape : static_cast<std::size_t>(nDifference + kMostDifference);
  encoder.WriteSymbol(kIndexCumulative, nSymbol);
  if (bEscaped) encoder.WriteRaw(static_cast<std::uint32_t>(nIndex), kIndexBits);
}

void C_FrameWriter::WriteLevels(C_EntropyEncoder& encoder,
                                std::span<const std::int32_t> coefficients) {
  S_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < m_levels.size(); ++k) {
    const std::int32_t nLevel = m_levels[k];
    const std::size_t nQuantiser = QuantiserOf(nState);
    WriteLevel(encoder, nQuantiser, ClassOf(m_before.Expectation(k) + FromBelow(below)), nLevel,
               coefficients[k] < 0);
    m_levels[k] = HalfSteps(nQuantiser, nLevel);
    below = below.Then(m_levels[k]);
    nState = NextState(nState, static_cast<std::uint64_t>(nLevel));
  }
}

C_FrameReader::C_FrameReader(int nLength)
    : m_before(nLength), m_magnitudes(static_cast<std::size_t>(nLength)) {}

bool C_FrameReader::Read(C_EntropyDecoder& decoder, std::span<std::int32_t> coefficients) noexcept {
  if (!ReadIndex(decoder)) return false;
  m_before.Begin(m_nIndex);
  const std::int32_t nHalfStep = HalfStep(m_nIndex);
  const auto qwLargest = static_cast<std::uint64_t>(LargestMultiple(m_nIndex));
  // Work on a copy, so that its state can stay in registers while coefficients are written.
  C_EntropyDecoder local = decoder;
  S_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < coefficients.size(); ++k) {
    const std::size_t nQuantiser = QuantiserOf(nState);
    const std::uint64_t qwLevel =
        ReadLevel(local, nQuantiser, ClassOf(m_before.Expectation(k) + FromBelow(below)));
    std::int32_t nMagnitude = 0;
    std::int32_t nCoefficient = 0;
    if (qwLevel != 0) {
      const std::uint64_t qwMagnitude = 2 * qwLevel - nQuantiser;
      if (qwMagnitude > qwLargest) return false;
      nMagnitude = static_cast<std::int32_t>(qwMagnitude);
      nCoefficient = (local.ReadRaw(1) != 0 ? -nMagnitude : nMagnitude) * nHalfStep;
    }
    coefficients[k] = nCoefficient;
    m_magnitudes[k] = nMagnitude;
    below = below.Then(nMagnitude);
    nState = NextState(nState, qwLevel);
  }
  decoder = local;
  m_before.End(m_magnitudes);
  return true;
}

bool C_FrameReader::ReadIndex(C_EntropyDecoder& decoder) noexcept {
  const std::size_t nSymbol = decoder.ReadSymbol<kIndexSymbols>(kIndexCumulative);
  m_nIndex = nSymbol == kIndexEscape ? static_cast<int>(decoder.ReadRaw(kIndexBits))
                                     : m_nIndex + static_cast<int>(nSymbol) - kMostDifference;
  return m_nIndex >= 0 && m_nIndex < kSteps;
}

}  // namespace heron
