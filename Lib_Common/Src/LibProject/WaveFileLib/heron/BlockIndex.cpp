// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockIndex.h"

#include <algorithm>
#include <limits>

namespace heron {
namespace {

// The bytes that a search for the next block may check, as a multiple of all bytes. Bytes that were
// made to look like the heads of long blocks would otherwise be checked over and over again.
constexpr std::uint64_t kChecksPerByte = 16;
// The bytes of a run by samples of a block. No coefficient takes as many bits. Bytes of a damaged
// block often look like the head of one, but nearly all of these claim more.
constexpr std::uint64_t kMostPerSample = 8;
// Blocks that may be missing in one place; half of the numbers that there are.
constexpr std::size_t kMostMissing = 127;
// Samples by which more may be missing than is there: 64 MiB.
constexpr std::size_t kMostMissingSamples = (std::size_t{64} << 20) / sizeof(std::int16_t);

// Finds the blocks of coded audio one after another.
class C_BlockSearch {
 public:
  C_BlockSearch(C_CodedBytes& bytes, std::uint64_t qwAt, std::size_t nLength)
      : m_bytes(bytes),
        m_qwAt(qwAt),
        m_qwMost(kBlockHeadBytes + nLength * kMostPerSample),
        m_qwChecksLeft(CheckedProduct(bytes.Size())) {}

  // The next block at or after the present place. The bytes before it are passed over.
  std::optional<S_Block> Next() {
    for (; FindSync(); ++m_qwAt) {
      const std::uint64_t qwCost = ClaimedBytes(m_bytes, m_qwAt);
      if (qwCost > m_qwMost) continue;
      const auto block = ReadBlock(m_bytes, m_qwAt);
      if (block) {
        m_qwAt = block->run.End();
        return block;
      }
      if (qwCost > m_qwChecksLeft) break;
      m_qwChecksLeft -= qwCost;
    }
    return std::nullopt;
  }

 private:
  static std::uint64_t CheckedProduct(std::uint64_t qwBytes) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    return qwBytes > kMost / kChecksPerByte ? kMost : qwBytes * kChecksPerByte;
  }

  // False at the end.
  bool FindSync() {
    while (m_qwAt < m_bytes.Size()) {
      const auto view = m_bytes.View(m_qwAt, 1, C_CodedBytes::kPiece);
      const auto found = std::ranges::find(view, kBlockSync);
      m_qwAt += static_cast<std::uint64_t>(found - view.begin());
      if (found != view.end()) return true;
    }
    return false;
  }

  C_CodedBytes& m_bytes;
  std::uint64_t m_qwAt;
  std::uint64_t m_qwMost;  // bytes of a block
  std::uint64_t m_qwChecksLeft;
};

}  // namespace

C_BlockIndex::C_BlockIndex(std::size_t nSamples, std::size_t nLength)
    : m_nSamples(nSamples), m_nLength(nLength), m_nBlocks((nSamples - 1) / nLength + 1) {}

void C_BlockIndex::Search(C_CodedBytes& bytes, std::size_t nFrom) {
  m_runs.resize(nFrom);
  if (IsOnlyBlock()) {
    if (const auto run = ReadOnlyBlock(bytes)) m_runs.emplace_back(run);
    return;
  }
  C_BlockSearch search(bytes, nFrom == 0 ? 0 : m_runs.back()->End(), m_nLength);
  while (!IsComplete()) {
    const auto block = search.Next();
    if (!block) break;
    Add(*block);
  }
}

// A block that has been passed, or is there twice, seems to be far ahead.
void C_BlockIndex::Add(const S_Block& block) {
  const std::size_t nMissing = (block.byNumber - m_runs.size()) & 0xFF;
  if (nMissing > kMostMissing || nMissing >= m_nBlocks - m_runs.size()) return;
  m_runs.resize(m_runs.size() + nMissing);
  m_runs.emplace_back(block.run);
}

void C_BlockIndex::Walk(C_CodedBytes& bytes) {
  m_runs.clear();
  std::uint64_t qwAt = 0;
  while (!IsComplete()) {
    const auto head = ReadHead(bytes, qwAt);
    if (!head || head->byNumber != (m_runs.size() & 0xFF)) break;
    m_runs.emplace_back(head->run);
    qwAt = head->run.End();
  }
}

bool C_BlockIndex::IsRight(C_CodedBytes& bytes, std::size_t nBlock) const {
  return ReadBlock(bytes, m_runs[nBlock]->qwAt - kBlockHeadBytes).has_value();
}

std::size_t C_BlockIndex::SampleCount() const noexcept {
  return IsComplete() ? m_nSamples : m_runs.size() * m_nLength;
}

std::size_t C_BlockIndex::SamplesOf(std::size_t nBlock) const noexcept {
  return std::min(m_nLength, m_nSamples - nBlock * m_nLength);
}

bool C_BlockIndex::IsMostlyMissing() const noexcept {
  std::size_t nMissing = 0;
  for (const auto& run : m_runs) nMissing += run ? 0U : 1U;
  const std::size_t nThere = m_runs.size() - nMissing;
  return nMissing > nThere && (nMissing - nThere) * m_nLength > kMostMissingSamples;
}

}  // namespace heron
