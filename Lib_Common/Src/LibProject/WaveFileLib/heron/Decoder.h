// SPDX-License-Identifier: Apache-2.0
//
// Decodes coded audio (Encoder.h) frame by frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "heron/FrameCode.h"
#include "heron/RangeCoder.h"
#include "heron/Transform.h"

namespace heron {

class C_Decoder {
 public:
  // Reads the count. Empty for a rate that is not supported, for a count of 0 or more than 32 bits,
  // and for a count of more frames than there are bytes, which no encoder writes. coded must
  // outlive the object.
  static std::optional<C_Decoder> Open(std::span<const std::uint8_t> coded, int nSampleRate);

  // Samples that all frames give together, 1..2^32-1.
  [[nodiscard]] std::size_t SampleCount() const noexcept { return m_nSamples; }
  // Samples per frame; the last frame holds the rest.
  [[nodiscard]] std::size_t Length() const noexcept { return m_coefficients.size(); }
  // Decodes the next frame into samples, Length() of them. False for what no encoder writes; the
  // object is of no use then.
  bool DecodeFrame(std::span<std::int16_t> samples) noexcept;

 private:
  C_Decoder(std::span<const std::uint8_t> frames, std::size_t nSamples, int nLength);

  std::size_t m_nSamples;
  bool m_bLapRead = false;
  C_RangeDecoder m_decoder;
  C_FrameReader m_reader;
  C_InverseTransform m_transform;
  std::vector<std::int32_t> m_coefficients;
};

}  // namespace heron
