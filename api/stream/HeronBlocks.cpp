// SPDX-License-Identifier: Apache-2.0
#include "stream/HeronBlocks.h"

#include <algorithm>

#include "base/Failure.h"
#include "heron/Configuration.h"

namespace api {
namespace {

// More than the samples of a block can take: a coefficient takes at most 4 bytes of symbols and 73
// raw bits, and the nodes and steps of a section take less than a byte for each of its samples. The
// decoder refuses runs with more than 8 bytes that it does not use, so longer ones need not be in
// memory.
constexpr std::uint64_t kMostBytesPerSample = 16;
constexpr std::uint64_t kMostUnused = 64;

}  // namespace

C_HeronBlocks::C_HeronBlocks(I_ByteSource& source, S_ByteRange coded, std::size_t nSamples,
                             int nSampleRate)
    : m_coded(source, coded),
      m_nLength(heron::BlockLength(nSampleRate)),
      m_index(nSamples, m_nLength),
      m_decoder(nSampleRate) {
  if (!m_index.IsOnlyBlock()) m_index.Walk(m_coded);
  if (m_index.IsComplete()) return;
  if (Count() > 0) CheckUpTo(Count() - 1);
  if (!m_bSearched) SearchFrom(m_nChecked);
}

void C_HeronBlocks::CheckUpTo(std::size_t nBlock) {
  while (!m_bSearched && m_nChecked < Count() && m_nChecked <= nBlock) {
    if (IsRight(m_nChecked)) {
      ++m_nChecked;
    } else {
      SearchFrom(m_nChecked);
    }
  }
  if (!m_bMostlyMissing) return;
  throw C_Failure(VOXPLAY_DAMAGED, "Heron stream: most of its blocks are missing or damaged");
}

// The whole block is read at once, so that decoding it needs no second reading.
bool C_HeronBlocks::IsRight(std::size_t nBlock) {
  const heron::S_Run run = *m_index.Run(nBlock);
  if (!IsTooLong(run)) {
    m_coded.Whole({run.qwAt - heron::kBlockHeadBytes, run.qwBytes + heron::kBlockHeadBytes});
  }
  return m_index.IsRight(m_coded, nBlock);
}

void C_HeronBlocks::SearchFrom(std::size_t nBlock) {
  m_index.Search(m_coded, nBlock);
  m_bSearched = true;
  m_bMostlyMissing = m_index.IsMostlyMissing();
}

bool C_HeronBlocks::IsTooLong(const heron::S_Run& run) const noexcept {
  return run.qwBytes > kMostBytesPerSample * m_nLength + kMostUnused;
}

bool C_HeronBlocks::Decode(std::size_t nBlock, std::span<std::int16_t> samples) {
  const auto run = m_index.Run(nBlock);
  if (run && !IsTooLong(*run) && m_decoder.Decode(m_coded.Whole(*run), samples)) return true;
  std::ranges::fill(samples, std::int16_t{0});
  return false;
}

}  // namespace api
