// SPDX-License-Identifier: Apache-2.0
#include "heron/Encoder.h"

#include <algorithm>

#include "heron/Block.h"
#include "heron/Configuration.h"
#include "heron/Loudness.h"

namespace heron {
namespace {

void WriteCount(std::vector<std::uint8_t>& bytes, std::size_t nCount) {
  for (; nCount >= 0x80; nCount >>= 7) bytes.push_back(static_cast<std::uint8_t>(nCount | 0x80));
  bytes.push_back(static_cast<std::uint8_t>(nCount));
}

std::size_t SizeOfCount(std::size_t nCount) {
  std::size_t nBytes = 1;
  for (; nCount >= 0x80; nCount >>= 7) ++nBytes;
  return nBytes;
}

}  // namespace

C_Encoder::C_Encoder(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                     int nOffset, const S_Progress& fnProgress)
    : m_samples(samples),
      m_nSectionLength(SectionLength(nSampleRate)),
      m_block(nSampleRate, SlopeOf(nBitDepth)),
      m_nTaken(BlockCount()) {
  const std::size_t nLength = kBlockSections * m_nSectionLength;
  const std::size_t nRest = samples.size() - (BlockCount() - 1) * nLength;
  m_padded.resize((nRest + m_nSectionLength - 1) / m_nSectionLength * m_nSectionLength);
  std::ranges::copy(samples.last(nRest), m_padded.begin());
  C_PartChoice choice(nSampleRate, SlopeOf(nBitDepth), nOffset);
  for (std::size_t n = 0; n < BlockCount(); ++n) {
    const std::size_t nCount = std::min(nLength, samples.size() - n * nLength);
    choice.Choose(BlockSamples(n), nCount, m_divisions);
    if (fnProgress) fnProgress(n * nLength + nCount);
  }
}

std::size_t C_Encoder::BlockCount() const noexcept {
  const std::size_t nLength = kBlockSections * m_nSectionLength;
  return (m_samples.size() + nLength - 1) / nLength;
}

std::span<const std::int16_t> C_Encoder::BlockSamples(std::size_t nBlock) {
  if (nBlock + 1 == BlockCount()) return m_padded;
  const std::size_t nLength = kBlockSections * m_nSectionLength;
  return m_samples.subspan(nBlock * nLength, nLength);
}

void C_Encoder::TakeBlock(std::size_t nBlock) {
  if (m_nTaken == nBlock) return;
  const std::size_t nLength = kBlockSections * m_nSectionLength;
  const auto samples = BlockSamples(nBlock);
  m_block.Take(samples, std::min(nLength, m_samples.size() - nBlock * nLength),
               std::span(m_divisions)
                   .subspan(nBlock * kBlockSections, samples.size() / m_nSectionLength));
  m_nTaken = nBlock;
}

// The sections of the whole sound become coarser from the last one to the first.
S_Coarseness C_Encoder::OfBlock(std::int64_t nCoarseness, std::size_t nBlock) const noexcept {
  const std::int64_t nSections = SectionCount();
  const std::int64_t nClamped = std::clamp(nCoarseness, Finest(), Coarsest());
  // Rounded down, also below 0.
  const std::int64_t nWhole = (nClamped - Finest()) / nSections + Finest() / nSections;
  const std::int64_t nCoarser = nClamped - nWhole * nSections;
  const auto nFirst = static_cast<std::int64_t>(nBlock * kBlockSections);
  const int nOffset = static_cast<int>(nWhole) * m_nOffsetStep;
  return {nOffset, nOffset + m_nOffsetStep,
          static_cast<std::size_t>(std::max<std::int64_t>(nSections - nCoarser - nFirst, 0))};
}

std::vector<std::uint8_t> C_Encoder::Encode(std::int64_t nCoarseness) {
  std::vector<std::uint8_t> coded;
  WriteCount(coded, m_samples.size());
  for (std::size_t n = 0; n < BlockCount(); ++n) {
    TakeBlock(n);
    const auto run = m_block.Run(OfBlock(nCoarseness, n));
    if (BlockCount() == 1) {
      AppendOnlyBlock(coded, run);
    } else {
      AppendBlock(coded, n, run);
    }
  }
  return coded;
}

S_RunCost C_Encoder::CostAt(std::int64_t nCoarseness) {
  S_RunCost all{SizeOfCount(m_samples.size()) +
                (BlockCount() == 1 ? kCheckBytes : BlockCount() * kBlockHeadBytes)};
  for (std::size_t n = 0; n < BlockCount(); ++n) {
    TakeBlock(n);
    all += m_block.CostOfRun(OfBlock(nCoarseness, n));
  }
  return all;
}

}  // namespace heron
