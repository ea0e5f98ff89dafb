// SPDX-License-Identifier: Apache-2.0
//
// Where the runs of a sound's blocks are. Damage ends with its block: a block that is missing, or
// whose check is wrong, has no run, and the others are in their places. A sound whose end is
// missing ends with its last block that is there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "heron/Block.h"
#include "heron/CodedBytes.h"

namespace heron {

class C_BlockIndex {
 public:
  // For a sound that claims nSamples samples, at least 1, in blocks of nLength. No block is listed
  // yet.
  C_BlockIndex(std::size_t nSamples, std::size_t nLength);

  // Looks for the blocks from block nFrom on. Those before it must be listed with their runs, and
  // their checks be right. Reads all bytes after them, some more than once: sixteen times at most.
  void Search(C_CodedBytes& bytes, std::size_t nFrom = 0);
  // Lists the blocks as far as their heads stand in order from the first byte on. Reads nothing
  // else, and looks at no check. Only for a sound of several blocks.
  void Walk(C_CodedBytes& bytes);
  // Whether block nBlock, which has a run and a head, has a right check.
  [[nodiscard]] bool IsRight(C_CodedBytes& bytes, std::size_t nBlock) const;

  // The blocks that are listed; those of the whole sound when it IsComplete.
  [[nodiscard]] std::size_t Count() const noexcept { return m_runs.size(); }
  [[nodiscard]] bool IsComplete() const noexcept { return m_runs.size() == m_nBlocks; }
  // A sound of one block, which has no head.
  [[nodiscard]] bool IsOnlyBlock() const noexcept { return m_nBlocks == 1; }
  // Samples in all blocks that are listed.
  [[nodiscard]] std::size_t SampleCount() const noexcept;
  // Samples of block nBlock.
  [[nodiscard]] std::size_t SamplesOf(std::size_t nBlock) const noexcept;
  // The run of block nBlock; empty when the block is missing.
  [[nodiscard]] std::optional<S_Run> Run(std::size_t nBlock) const { return m_runs[nBlock]; }
  // Whether too much is missing to be taken for a sound: more blocks than are there, by more than
  // 64 MiB of samples. Zeros stand for missing blocks, and a block of a few bytes may claim that
  // the 127 before it are missing.
  [[nodiscard]] bool IsMostlyMissing() const noexcept;

 private:
  void Add(const S_Block& block);

  std::size_t m_nSamples;
  std::size_t m_nLength;
  std::size_t m_nBlocks;
  // In pieces, so that growing takes no more memory than there are blocks.
  std::deque<std::optional<S_Run>> m_runs;
};

}  // namespace heron
