// SPDX-License-Identifier: Apache-2.0
//
// Codes a whole sound. The coded audio is
//
//   count of samples   7 bits a byte, lowest first, bit 7 set on all but the last; 1..2^32-1
//   frames             ceil(count / N) + 1 frames of N coefficients (FrameSyntax.h) in the two
//                      sequences of EntropyCoder.h; samples behind the last one count as silence
//
// Padding gives it at least as many bytes as the samples have frames.
//
// How coarsely a frame is quantised follows its loudness: its step rises by 5/8 of what its level
// rises (both in dB). Louder frames get more bits and, in proportion, less noise; a steady step
// would sound worse in soft passages, a steady ratio would waste bits there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace heron {

class C_Encoder {
 public:
  // Told how many frames a pass has done: after each 32 and after the last.
  using S_Progress = std::function<void(unsigned int nFramesDone)>;

  // samples (1..2^32-1 of them) must outlive the object; nSampleRate is a supported one.
  C_Encoder(std::span<const std::int16_t> samples, int nSampleRate);

  // The coded audio for an offset of the step sizes in 256ths of a step index; higher is coarser.
  // Offsets outside the range give the same as its ends.
  [[nodiscard]] std::vector<std::uint8_t> Encode(int nOffset, const S_Progress& fnProgress) const;
  // Frames that the samples fill, the last one perhaps in part.
  [[nodiscard]] std::size_t FrameCount() const noexcept;

  static constexpr int kFinestOffset = -12 * 1024;
  static constexpr int kCoarsestOffset = 18 * 1024;

 private:
  std::span<const std::int16_t> m_samples;
  int m_nLength;
};

}  // namespace heron
