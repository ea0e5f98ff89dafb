// SPDX-License-Identifier: Apache-2.0
//
// Decodes coded audio (Encoder.h) frame by frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "heron/EntropyCoder.h"
#include "heron/FrameSyntax.h"
#include "heron/Transform.h"

namespace heron {

// The sample count that coded audio begins with.
struct S_Count {
  std::uint64_t qwCount;
  std::size_t nBytes;  // bytes that the count takes
};
// Empty when the count does not end within five bytes.
std::optional<S_Count> ReadCount(std::span<const std::uint8_t> coded) noexcept;

class C_Decoder {
 public:
  // Reads the count. Empty for a rate that is not supported, and for a count that is missing, 0 or
  // longer than 32 bits. Also empty when the count needs more frames than there are bytes, which no
  // encoder writes. coded must outlive the object.
  static std::optional<C_Decoder> Open(std::span<const std::uint8_t> coded, int nSampleRate);

  // Samples in all frames together, 1..2^32-1.
  [[nodiscard]] std::size_t SampleCount() const noexcept { return m_nSamples; }
  // Samples per frame; the last frame holds the rest.
  [[nodiscard]] std::size_t Length() const noexcept { return m_coefficients.size(); }
  // Decodes the next frame into samples, which has Length() values. False for data that no encoder
  // writes; the object is then unusable.
  bool DecodeFrame(std::span<std::int16_t> samples) noexcept;
  // Call this after the last frame: true when no more bytes are left than an encoder leaves.
  [[nodiscard]] bool IsAtTheEnd() const noexcept;

 private:
  C_Decoder(std::span<const std::uint8_t> frames, std::size_t nSamples, int nLength);

  std::size_t m_nSamples;
  bool m_bPadded = false;
  bool m_bLapRead = false;
  C_EntropyDecoder m_decoder;
  C_FrameReader m_reader;
  C_InverseTransform m_transform;
  std::vector<std::int32_t> m_coefficients;
};

}  // namespace heron
