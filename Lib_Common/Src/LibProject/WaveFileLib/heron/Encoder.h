// SPDX-License-Identifier: Apache-2.0
//
// Codes a whole sound. The coded audio is
//
//   count of samples   7 bits a byte, lowest first, bit 7 set on all but the last; 1..2^32-1
//   frames             ceil(count / N) + 1 frames of N coefficients (FrameSyntax.h) in the two
//                      sequences of EntropyCoder.h; samples after the last one count as silence
//
// Padding makes the coded audio at least as many bytes long as the samples have frames.
//
// How coarsely a frame is quantised follows its loudness: its step rises by 5/8 as much as its
// level (both in dB). Louder frames get more bits and, in proportion, less noise. A constant step
// would sound worse in soft passages; a constant ratio of level to step would waste bits there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace heron {

class C_Encoder {
 public:
  // Called with the number of frames that a pass has done: after every 32 frames and after the
  // last.
  using S_Progress = std::function<void(unsigned int nFramesDone)>;

  // samples holds 1..2^32-1 values and must outlive the object. nSampleRate must be a supported
  // rate.
  C_Encoder(std::span<const std::int16_t> samples, int nSampleRate);

  // Returns the coded audio for an offset of the step sizes, in 256ths of a step index; a higher
  // offset is coarser. Offsets outside kFinestOffset..kCoarsestOffset count as the nearer of these
  // two.
  [[nodiscard]] std::vector<std::uint8_t> Encode(int nOffset, const S_Progress& fnProgress) const;
  // The number of frames that the samples fill; the last one may be filled only in part.
  [[nodiscard]] std::size_t FrameCount() const noexcept;

  // An octave of step size: four step indices (StepSize.h) of 256 each.
  static constexpr int kOffsetsPerOctave = 4 * 256;
  // At the finest offset even the loudest frame has step index 0: its loudness (Loudness.h) adds
  // 5/4 of 30 * 256, less than 12 octaves. At the coarsest offset every frame has the last index:
  // the indices span 18 octaves in all.
  static constexpr int kFinestOffset = -12 * kOffsetsPerOctave;
  static constexpr int kCoarsestOffset = 18 * kOffsetsPerOctave;

 private:
  std::span<const std::int16_t> m_samples;
  int m_nLength;
};

}  // namespace heron
