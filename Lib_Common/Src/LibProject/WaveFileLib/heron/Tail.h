// SPDX-License-Identifier: Apache-2.0
//
// The last sections of a sound, which are coded as often as it takes to fill the size that is left
// for them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "heron/BlockEncoder.h"

namespace heron {

// What coding a tail gives.
struct S_TailRuns {
  std::vector<std::vector<std::uint8_t>> runs;  // of the blocks that the tail ends
  std::size_t nBytes = 0;                       // of all together
};

class C_Tail {
 public:
  // The tail begins with section nFirst of the first of these blocks; writer has written what comes
  // before it in that block. There is at least one section. encoder must outlive the object.
  C_Tail(C_BlockEncoder& encoder, C_PartWriter writer, std::size_t nFirst,
         std::vector<S_DividedBlock> blocks);

  // Codes the tail. nCoarseness counts steps that each make one section after the other a little
  // coarser, from the last one to the first: StepsPerOctave of them double the step sizes. Each one
  // above Coarsest loses a section, from the last one to the first. Values outside
  // Finest..AllLost count as the nearer of these two.
  [[nodiscard]] S_TailRuns Encode(std::int64_t nCoarseness);

  // The step indices of all parts of the tail in its first block, at a coarseness.
  [[nodiscard]] std::vector<int> FirstSteps(std::int64_t nCoarseness) const;

  // A sound of steady loudness changes all its step indices at the same coarseness, so that no
  // coarseness may fill its size. After this call, one section after the other changes by a whole
  // step index, from near one to near the next.
  void UseWholeIndices() noexcept;

  [[nodiscard]] std::int64_t StepsPerOctave() const noexcept {
    return std::int64_t{kOffsetsPerOctave / m_nOffsetStep} * m_nSections;
  }
  // At the finest even the loudest part has step index 0: its loudness (Loudness.h) adds 17/16 of
  // 30 * 256, less than 12 octaves. At the coarsest every part has the last index: the indices span
  // 18 octaves in all.
  [[nodiscard]] std::int64_t Finest() const noexcept { return -12 * StepsPerOctave(); }
  [[nodiscard]] std::int64_t Coarsest() const noexcept { return 18 * StepsPerOctave(); }
  [[nodiscard]] std::int64_t AllLost() const noexcept { return Coarsest() + m_nSections; }
  // The coarseness of an offset in 256ths of a step index, and the other way round.
  [[nodiscard]] std::int64_t FromOffset(int nOffset) const noexcept {
    return std::int64_t{(nOffset - m_nPhase) / m_nOffsetStep} * m_nSections;
  }
  [[nodiscard]] int ToOffset(std::int64_t nCoarseness) const noexcept {
    return static_cast<int>(nCoarseness / m_nSections) * m_nOffsetStep + m_nPhase;
  }
  [[nodiscard]] std::int64_t SectionCount() const noexcept { return m_nSections; }
  // An octave of step size: four step indices (StepSize.h) of 256 each.
  static constexpr int kOffsetsPerOctave = 4 * 256;

 private:
  // The sections of the tail in its first block, at a coarseness.
  [[nodiscard]] S_Sections FirstSections(std::int64_t nCoarseness) const noexcept;

  C_BlockEncoder& m_encoder;
  C_PartWriter m_writer;
  std::size_t m_nFirst;
  std::vector<S_DividedBlock> m_blocks;
  std::int64_t m_nSections;
  int m_nOffsetStep = 16;
  int m_nPhase = 0;  // the offset at coarseness 0
};

}  // namespace heron
