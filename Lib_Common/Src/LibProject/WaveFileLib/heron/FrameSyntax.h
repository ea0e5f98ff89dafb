// SPDX-License-Identifier: Apache-2.0
//
// A frame of coefficients in the stream: its step index, then its levels from the lowest frequency
// to the highest. Writer and reader carry the same state from frame to frame.
//
// The step index is coded as its difference from that of the previous frame (for the first frame,
// from kFirstIndex). A difference of -15..15 is coded as symbol difference + 15. Any other is coded
// as symbol 31, followed by the index itself as 7 raw bits.
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
  C_PreviousFrame m_before;
  C_Trellis m_trellis;
  std::vector<std::int32_t> m_levels;  // once written: magnitudes in half steps
};

class C_FrameReader {
 public:
  explicit C_FrameReader(int nLength);
  // Reads the coefficients (Q8) of the next frame. False for data that no writer writes: a step
  // index out of range or a coefficient above kMaxCoefficient.
  bool Read(C_EntropyDecoder& decoder, std::span<std::int32_t> coefficients) noexcept;
  // The step index of the frame that was read last.
  [[nodiscard]] int StepIndex() const noexcept { return m_nIndex; }

 private:
  bool ReadIndex(C_EntropyDecoder& decoder) noexcept;

  int m_nIndex = kFirstIndex;
  C_PreviousFrame m_before;
  std::vector<std::int32_t> m_magnitudes;
};

}  // namespace heron
