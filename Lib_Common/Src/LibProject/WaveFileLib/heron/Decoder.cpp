// SPDX-License-Identifier: Apache-2.0
#include "heron/Decoder.h"

#include <algorithm>
#include <limits>

#include "heron/Block.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"

namespace heron {
namespace {

// The bytes that a search for the next block may check, as a multiple of all bytes. Bytes that were
// made to look like the heads of long blocks would otherwise be checked over and over again.
constexpr std::size_t kChecksPerByte = 16;
// Blocks that may be missing in one place; half of the numbers that there are.
constexpr std::size_t kMostMissing = 127;
// Samples by which more may be missing than is there: 64 MiB.
constexpr std::size_t kMostMissingSamples = (std::size_t{64} << 20) / sizeof(std::int16_t);

// Finds the blocks of coded audio one after another.
class C_BlockSearch {
 public:
  explicit C_BlockSearch(std::span<const std::uint8_t> bytes)
      : m_bytes(bytes), m_qwChecksLeft(std::uint64_t{bytes.size()} * kChecksPerByte) {}

  // The next block at or after the present place. The bytes before it are passed over.
  std::optional<S_Block> Next() {
    for (; m_nAt < m_bytes.size(); ++m_nAt) {
      if (m_bytes[m_nAt] != kBlockSync) continue;
      const auto block = ReadBlock(m_bytes.subspan(m_nAt));
      if (block) {
        m_nAt += block->nBytes;
        return block;
      }
      const std::uint64_t qwCost = ClaimedBytes(m_bytes.subspan(m_nAt));
      if (qwCost > m_qwChecksLeft) break;
      m_qwChecksLeft -= qwCost;
    }
    return std::nullopt;
  }

 private:
  std::span<const std::uint8_t> m_bytes;
  std::size_t m_nAt = 0;
  std::uint64_t m_qwChecksLeft;
};

}  // namespace

std::optional<C_Decoder> C_Decoder::Open(std::span<const std::uint8_t> coded, int nSampleRate) {
  if (!IsSupportedSampleRate(nSampleRate)) return std::nullopt;
  const auto count = ReadCount(coded);
  if (!count || count->qwCount == 0) return std::nullopt;
  if (count->qwCount > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  C_Decoder decoder(nSampleRate, static_cast<std::size_t>(count->qwCount));
  decoder.FindBlocks(coded.subspan(count->nBytes));
  if (decoder.m_runs.empty()) return std::nullopt;
  return decoder;
}

C_Decoder::C_Decoder(int nSampleRate, std::size_t nSamples)
    : m_nSamples(nSamples), m_nLength(BlockLength(nSampleRate)), m_decoder(nSampleRate) {}

void C_Decoder::FindBlocks(std::span<const std::uint8_t> bytes) {
  if (m_nSamples <= m_nLength) {
    if (const auto run = ReadOnlyBlock(bytes)) m_runs.emplace_back(run);
    return;
  }
  const std::size_t nBlocks = (m_nSamples - 1) / m_nLength + 1;
  C_BlockSearch search(bytes);
  while (m_runs.size() < nBlocks) {
    const auto block = search.Next();
    if (!block) break;
    // Blocks that are missing before this one. A block that has been passed, or is there twice,
    // seems to be far ahead.
    const std::size_t nMissing = (block->byNumber - m_runs.size()) & 0xFF;
    if (nMissing > kMostMissing || nMissing >= nBlocks - m_runs.size()) continue;
    m_runs.resize(m_runs.size() + nMissing);
    m_runs.emplace_back(block->run);
  }
  if (m_runs.size() < nBlocks) m_nSamples = m_runs.size() * m_nLength;
}

bool C_Decoder::IsMostlyMissing() const noexcept {
  std::size_t nMissing = 0;
  for (const auto& run : m_runs) nMissing += run ? 0U : 1U;
  const std::size_t nThere = m_runs.size() - nMissing;
  return nMissing > nThere && (nMissing - nThere) * m_nLength > kMostMissingSamples;
}

bool C_Decoder::DecodeBlock(std::size_t nBlock, std::span<std::int16_t> samples) {
  const auto& run = m_runs[nBlock];
  if (run && m_decoder.Decode(*run, samples)) return true;
  std::ranges::fill(samples, std::int16_t{0});
  return false;
}

bool C_Decoder::DecodeAll(std::span<std::int16_t> samples) {
  bool bAny = false;
  for (std::size_t n = 0; n < m_runs.size(); ++n) {
    const std::size_t nAt = n * m_nLength;
    bAny |= DecodeBlock(n, samples.subspan(nAt, std::min(m_nLength, samples.size() - nAt)));
  }
  return bAny;
}

}  // namespace heron
