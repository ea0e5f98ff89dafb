// SPDX-License-Identifier: Apache-2.0
//
// Codes a whole sound. The coded audio is
//
//   count of samples   7 bits a byte, lowest first, bit 7 set on all but the last; 1..2^32-1
//   blocks             of BlockLength samples each, the last one of the rest (Block.h)
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "heron/BlockEncoder.h"
#include "heron/PartChoice.h"

namespace heron {

class C_Encoder {
 public:
  // Called with the number of samples that are done.
  using S_Progress = std::function<void(std::size_t nSamplesDone)>;

  // samples holds 1..2^32-1 values and must outlive the object. nSampleRate must be a supported
  // rate. nOffset is about the one that will be used. Divides the sound into parts.
  C_Encoder(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth, int nOffset,
            const S_Progress& fnProgress);

  // The coded audio, and what it costs. nCoarseness counts steps that each make the whole sound a
  // little coarser: StepsPerOctave of them double the step sizes. Values outside Finest..Coarsest
  // count as the nearer of these two.
  [[nodiscard]] std::vector<std::uint8_t> Encode(std::int64_t nCoarseness);
  [[nodiscard]] S_RunCost CostAt(std::int64_t nCoarseness);

  // A sound of steady loudness changes all its step indices at the same coarseness, so that no
  // coarseness may fill its size. After this call, the steps are those in which one section after
  // the other changes by a whole step index.
  void UseWholeIndices() noexcept { m_nOffsetStep = 256; }

  [[nodiscard]] std::int64_t StepsPerOctave() const noexcept {
    return std::int64_t{kOffsetsPerOctave / m_nOffsetStep} * SectionCount();
  }
  // At the finest even the loudest part has step index 0: its loudness (Loudness.h) adds 17/16 of
  // 30 * 256, less than 12 octaves. At the coarsest every part has the last index: the indices span
  // 18 octaves in all.
  [[nodiscard]] std::int64_t Finest() const noexcept { return -12 * StepsPerOctave(); }
  [[nodiscard]] std::int64_t Coarsest() const noexcept { return 18 * StepsPerOctave(); }
  // The coarseness of an offset in 256ths of a step index, and the other way round.
  [[nodiscard]] std::int64_t FromOffset(int nOffset) const noexcept {
    return std::int64_t{nOffset / m_nOffsetStep} * SectionCount();
  }
  [[nodiscard]] int ToOffset(std::int64_t nCoarseness) const noexcept {
    return static_cast<int>(nCoarseness / SectionCount()) * m_nOffsetStep;
  }
  [[nodiscard]] std::int64_t SectionCount() const noexcept {
    return static_cast<std::int64_t>((m_samples.size() + m_nSectionLength - 1) / m_nSectionLength);
  }
  // An octave of step size: four step indices (StepSize.h) of 256 each.
  static constexpr int kOffsetsPerOctave = 4 * 256;

 private:
  [[nodiscard]] std::size_t BlockCount() const noexcept;
  // The samples of a block, with silence up to the end of its last section.
  std::span<const std::int16_t> BlockSamples(std::size_t nBlock);
  [[nodiscard]] S_Coarseness OfBlock(std::int64_t nCoarseness, std::size_t nBlock) const noexcept;
  // Makes the block encoder hold this block.
  void TakeBlock(std::size_t nBlock);

  std::span<const std::int16_t> m_samples;
  std::size_t m_nSectionLength;
  std::vector<C_Division> m_divisions;
  std::vector<std::int16_t> m_padded;  // the last block
  C_BlockEncoder m_block;
  int m_nOffsetStep = 16;
  std::size_t m_nTaken;  // the block that m_block holds
};

}  // namespace heron
