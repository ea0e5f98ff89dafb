// SPDX-License-Identifier: Apache-2.0
//
// A frame of coefficients in the stream: its step index, then its levels from the lowest frequency
// to the highest. Writer and reader carry the same state from frame to frame.
//
// The step index is coded as its difference from the frame before (kFirstIndex for the first one):
// symbol difference + 15 for -15..15, else symbol 31 and the index as 7 raw bits.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "heron/EntropyCoder.h"
#include "heron/Neighbourhood.h"
#include "heron/Trellis.h"

namespace heron {

inline constexpr int kFirstIndex = 32;

class C_FrameWriter {
 public:
  // nLength: coefficients per frame.
  explicit C_FrameWriter(int nLength);
  // Quantises the coefficients (Q8) with step index nIndex and writes them.
  void Write(C_EntropyEncoder& encoder, std::span<const std::int32_t> coefficients, int nIndex);

 private:
  void WriteIndex(C_EntropyEncoder& encoder, int nIndex);
  void WriteLevels(C_EntropyEncoder& encoder, std::span<const std::int32_t> coefficients);

  int m_nIndex = kFirstIndex;
  C_FrameBefore m_before;
  C_Trellis m_trellis;
  std::vector<std::int32_t> m_levels;  // then, as they are written, magnitudes in half steps
};

class C_FrameReader {
 public:
  explicit C_FrameReader(int nLength);
  // Reads the coefficients (Q8) of the next frame. False for what no writer writes: a step index
  // above the highest, a coefficient above kMaxCoefficient.
  bool Read(C_EntropyDecoder& decoder, std::span<std::int32_t> coefficients) noexcept;
  // Of the frame read last.
  [[nodiscard]] int StepIndex() const noexcept { return m_nIndex; }

 private:
  bool ReadIndex(C_EntropyDecoder& decoder) noexcept;

  int m_nIndex = kFirstIndex;
  C_FrameBefore m_before;
  std::vector<std::int32_t> m_magnitudes;
};

}  // namespace heron
