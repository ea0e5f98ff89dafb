// SPDX-License-Identifier: Apache-2.0
#include "heron/PartSyntax.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "heron/FixedPoint.h"
#include "heron/MagnitudeCode.h"
#include "heron/Quantiser.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

constexpr int kMostDifference = 15;
constexpr std::size_t kIndexEscape = 2 * kMostDifference + 1;
static_assert(kIndexEscape + 1 == kIndexSymbols);
constexpr int kIndexBits = 7;
constexpr auto kIndexCumulative = Accumulate(kIndexFrequencies);
static_assert(IsWhole(kIndexCumulative));

// By context and by size.
constexpr auto kKindCumulative = [] {
  std::array<std::array<S_Cumulative<kPartKinds>, kPartSizes>, kKindContexts> all{};
  for (std::size_t nContext = 0; nContext < kKindContexts; ++nContext) {
    for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
      all[nContext][nSize] = Accumulate(kKindFrequencies[nContext][nSize]);
    }
  }
  return all;
}();
static_assert(std::ranges::all_of(kKindCumulative, [](const auto& ofSizes) {
  return std::ranges::all_of(ofSizes, IsWhole<kPartKinds>);
}));

constexpr auto kIndexCosts = [] {
  std::array<int, kIndexSymbols> costs{};
  for (std::size_t n = 0; n < kIndexSymbols; ++n) {
    costs[n] = kFrequencyBits * 256 - Log2Q8(kIndexFrequencies[n]);
  }
  costs[kIndexEscape] += kIndexBits * 256;
  return costs;
}();

}  // namespace

int IndexCost(int nDifference) noexcept {
  const bool bEscaped = std::abs(nDifference) > kMostDifference;
  return kIndexCosts[bEscaped ? kIndexEscape
                              : static_cast<std::size_t>(nDifference + kMostDifference)];
}

void C_PartWriter::Write(const S_Part& part, std::span<const std::int32_t> coefficients,
                         S_WriterTools& tools) {
  const std::span levels(tools.levels.data(), coefficients.size());
  S_Part written = part;
  if (part.kind == E_PartKind::kPlain) {
    m_state.Begin(written, levels.size());
  } else {
    m_state.BeginChosen(tools.choice, written, coefficients);
  }
  tools.trellis.Search(written.kind == E_PartKind::kSteady, coefficients, part.nIndex,
                       m_state.Before(), levels);
  // A plain part stays plain: its neighbours were transformed without an overlap on its side.
  if (part.kind != E_PartKind::kPlain &&
      std::ranges::all_of(levels, [](std::int32_t nLevel) { return nLevel == 0; })) {
    WriteSilence(part.nSize);
    return;
  }
  WriteKind(part.nSize, written.kind);
  WriteIndex(part.nIndex);
  if (written.kind == E_PartKind::kSteady) {
    WriteLevels<C_SteadyBelow>(coefficients, levels);
  } else {
    WriteLevels<C_NearBelow>(coefficients, levels);
  }
  m_state.End(written, levels);
}

void C_PartWriter::WriteSilence(std::size_t nSize) {
  WriteKind(nSize, E_PartKind::kSilent);
  m_state.PassSilence();
}

void C_PartWriter::WriteKind(std::size_t nSize, E_PartKind kind) {
  m_encoder.WriteSymbol(kKindCumulative[m_state.KindContext()][nSize],
                        static_cast<std::size_t>(kind));
}

void C_PartWriter::WriteIndex(int nIndex) {
  const int nDifference = nIndex - m_state.StepIndex();
  const bool bEscaped = std::abs(nDifference) > kMostDifference;
  if (m_state.HasStepIndex()) {
    m_encoder.WriteSymbol(
        kIndexCumulative,
        bEscaped ? kIndexEscape : static_cast<std::size_t>(nDifference + kMostDifference));
    if (!bEscaped) return;
  }
  m_encoder.WriteRaw(static_cast<std::uint32_t>(nIndex), kIndexBits);
}

// Turns the levels into magnitudes in half steps as well.
template <typename T_Below>
void C_PartWriter::WriteLevels(std::span<const std::int32_t> coefficients,
                               std::span<std::int32_t> levels) {
  const std::uint32_t* pExpected = m_state.Before().Expectations().data();
  // Works on a moved object, so that its state can stay in registers.
  C_EntropyEncoder encoder = std::move(m_encoder);
  T_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < levels.size(); ++k) {
    const std::int32_t nLevel = levels[k];
    const std::size_t nQuantiser = QuantiserOf(nState);
    WriteLevel(encoder, kMagnitudeCumulative[ModelOf<T_Below>()], nQuantiser,
               ClassOf(*pExpected++ + below.Expectation()), nLevel, coefficients[k] < 0);
    levels[k] = HalfSteps(nQuantiser, nLevel);
    below = below.Then(levels[k]);
    nState = NextState(nState, static_cast<std::uint64_t>(nLevel));
  }
  m_encoder = std::move(encoder);
}

bool C_PartReader::ReadSection(std::span<std::int32_t> values, std::size_t nSamples,
                               std::size_t nUnit, std::vector<S_Part>& parts) {
  return ReadNode({nUnit, kPartSizes - 1}, values, nSamples, parts);
}

bool C_PartReader::ReadNode(const S_Part& node, std::span<std::int32_t> values,
                            std::size_t nSamples, std::vector<S_Part>& parts) {
  S_Part part = node;
  part.kind = static_cast<E_PartKind>(
      m_decoder.ReadSymbol(kKindCumulative[m_state.KindContext()][node.nSize]));
  switch (part.kind) {
    case E_PartKind::kSplit: {
      if (node.nSize == 0) return false;
      part.nSize = node.nSize - 1;
      const std::size_t nHalf = values.size() / 2;
      if (!ReadNode(part, values.first(nHalf), nSamples, parts)) return false;
      std::ranges::fill(values.last(nHalf), 0);
      if (nSamples <= nHalf) return true;
      part.nUnit = part.End();
      return ReadNode(part, values.last(nHalf), nSamples - nHalf, parts);
    }
    case E_PartKind::kSilent:
      std::ranges::fill(values, 0);
      m_state.PassSilence();
      break;
    case E_PartKind::kNear:
    case E_PartKind::kSteady:
      if (!ReadCoefficients(part, values)) return false;
      break;
    case E_PartKind::kPlain: {
      if (node.nSize != 0) return false;
      const std::size_t nThere = std::min(nSamples, values.size());
      std::ranges::fill(values.subspan(nThere), 0);
      if (!ReadCoefficients(part, values.first(nThere))) return false;
      break;
    }
  }
  parts.push_back(part);
  return true;
}

bool C_PartReader::ReadCoefficients(S_Part& part, std::span<std::int32_t> coefficients) noexcept {
  if (!ReadIndex(&part.nIndex)) return false;
  m_state.Begin(part, coefficients.size());
  const bool bRead = part.kind == E_PartKind::kSteady
                         ? ReadLevels<C_SteadyBelow>(coefficients, part.nIndex)
                         : ReadLevels<C_NearBelow>(coefficients, part.nIndex);
  if (!bRead) return false;
  m_state.End(part, {m_magnitudes.data(), coefficients.size()});
  return true;
}

template <typename T_Below>
bool C_PartReader::ReadLevels(std::span<std::int32_t> coefficients, int nIndex) noexcept {
  const std::int32_t nHalfStep = HalfStep(nIndex);
  const auto qwLargest = static_cast<std::uint64_t>(LargestMultiple(nIndex));
  // Work on a copy, so that its state can stay in registers while coefficients are written.
  C_EntropyDecoder local = m_decoder;
  T_Below below;
  std::size_t nState = kFirstState;
  const std::uint32_t* pExpected = m_state.Before().Expectations().data();
  std::int32_t* pMagnitude = m_magnitudes.data();
  for (std::int32_t& nCoefficient : coefficients) {
    const std::size_t nQuantiser = QuantiserOf(nState);
    const std::uint64_t qwLevel =
        ReadLevel(local, kMagnitudeCumulative[ModelOf<T_Below>()], nQuantiser,
                  ClassOf(*pExpected++ + below.Expectation()));
    nState = NextState(nState, qwLevel);
    if (qwLevel == 0) {
      nCoefficient = 0;
      *pMagnitude++ = 0;
      below = below.Then(0);
      continue;
    }
    const std::uint64_t qwMagnitude = 2 * qwLevel - nQuantiser;
    if (qwMagnitude > qwLargest) return false;
    const auto nMagnitude = static_cast<std::int32_t>(qwMagnitude);
    const std::int32_t nSize = nMagnitude * nHalfStep;
    nCoefficient = local.ReadRaw(1) != 0 ? -nSize : nSize;
    *pMagnitude++ = nMagnitude;
    below = below.Then(nMagnitude);
  }
  m_decoder = local;
  return true;
}

bool C_PartReader::ReadIndex(int* pIndex) noexcept {
  if (m_state.HasStepIndex()) {
    const std::size_t nSymbol = m_decoder.ReadSymbol<kIndexSymbols>(kIndexCumulative);
    if (nSymbol != kIndexEscape) {
      *pIndex = m_state.StepIndex() + static_cast<int>(nSymbol) - kMostDifference;
      return *pIndex >= 0 && *pIndex < kSteps;
    }
  }
  *pIndex = static_cast<int>(m_decoder.ReadRaw(kIndexBits));
  return *pIndex < kSteps;
}

}  // namespace heron
